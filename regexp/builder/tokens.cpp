#include "regexp/builder/tokens.h"

#include <atomic>

namespace RE_Builder_Space {

// 0 is no token's.
RE_Token::RE_Token() {
    static std::atomic<std::uint64_t> last{0};
    identity = ++last;
}

}  // namespace RE_Builder_Space
