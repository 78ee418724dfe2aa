// Reading of bytes. Every sequence of bytes is an input, none is refused, and the same bytes always mean the
// same.
#include "fuzz/input.h"

#include "regexp/base/tuning.h"

#include <optional>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace corvane_fuzz {
namespace {

// A byte that no text of the dialect's signs has a use for.
constexpr std::uint8_t kSeparator = 1;

// Units with unusual case, line ends, halves of pairs, and the ends of the range.
constexpr char16_t kRare[] = {0,     0xE9,   0xC9, 0x130, 0x131,  0x17F,  0x212A, 0x3A3,
                              0x3C2, 0x2028, 0x85, 0xA0,  0xD800, 0xDC00, 0xFFFE, 0xFFFF};

char16_t unitOf(std::uint8_t byte) {
    return byte < 0x80 ? byte : kRare[byte % std::size(kRare)];
}

}  // namespace

// Missing head bytes are 0, which is a plain setting; the texts begin after them.
Input::Input(const std::uint8_t* data, std::size_t size) : texts(1) {
    const std::size_t head = std::min(size, std::size(bytes));
    std::copy(data, data + head, bytes);
    for (std::size_t i = head; i < size; ++i) {
        if (data[i] == kSeparator) {
            texts.emplace_back();
        } else {
            texts.back() += unitOf(data[i]);
        }
    }
}

// A text without units still has an address: a null one would be no subject.
std::u16string_view Input::text(std::size_t index, std::size_t most) const {
    const std::u16string_view whole = index < texts.size() ? texts[index] : std::u16string_view(u"");
    return whole.substr(0, most);
}

// The usual delays are read once, before anything has changed them.
void beginMemo(bool atOnce) {
    static std::optional<RE_Tuning::Scope> scope;
    scope.reset();
    if (atOnce) {
        scope.emplace(RE_Tuning{.memoChoices = 0, .memoChoicesPerUnit = 0, .neededLiteralSteps = 0});
    }
}

void require(bool holds, std::string_view what, std::u16string_view pattern, std::u16string_view subject) {
    if (!holds) {
        std::fprintf(stderr, "finding: %.*s\n  pattern '%s'\n  subject '%s'\n", static_cast<int>(what.size()),
                     what.data(), corvane_tests::printable(pattern).c_str(),
                     corvane_tests::printable(subject).c_str());
        std::abort();
    }
}

}  // namespace corvane_fuzz
