// The engine finds what the slow reference matcher of the tests finds.
#include "fuzz/targets.h"
#include "tests/support/reference_matcher.h"

namespace corvane_fuzz {

void reference(const Input& input) {
    const std::u16string_view pattern = input.text(0, 60);
    const std::u16string_view subject = input.text(1, 20);
    const std::size_t offset = input.number() % (subject.size() + 1);
    // Recursive and without a memo: the limit also bounds its stack.
    const auto expected = corvane_tests::reference::search(pattern, input.flags(), subject, offset, {4000});
    if (!expected) {
        return;
    }
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    const auto found = engine.searchWithin(subject, offset, kLimits);
    require(!found || *found == *expected,
            "expected " + describe(*expected) + ", got " + (found ? describe(*found) : ""), pattern, subject);
}

}  // namespace corvane_fuzz
