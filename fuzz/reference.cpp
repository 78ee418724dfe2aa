// The engine finds what the slow reference matcher of the tests finds.
//
// The tests draw patterns that are well-formed by construction; the fuzzer comes by those that nobody thought
// of drawing.
#include "fuzz/targets.h"
#include "tests/support/reference_matcher.h"

namespace corvane_fuzz {
namespace {

/// The reference knows the classes and the case of ASCII.
std::u16string ascii(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& unit : result) {
        unit &= 0x7F;
    }
    return result;
}

}  // namespace

void reference(const Input& input) {
    const std::u16string pattern = ascii(input.text(0, 60));
    const std::u16string subject = ascii(input.text(1, 100));
    // Any place, the end included.
    const std::size_t offset = input.number() % (subject.size() + 1);
    // Recursive and without a memo: the limit also bounds its stack.
    const auto expected = corvane_tests::reference::search(pattern, input.flags(), subject, offset, {4000});
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    // What degraded forms mean is written in the tables of the tests.
    if (!expected || !engine.warnings().empty()) {
        return;
    }
    const auto found = engine.searchWithin(subject, offset, kLimits);
    require(!found || *found == *expected,
            "expected " + describe(*expected) + ", got " + (found ? describe(*found) : ""), pattern, subject);
}

}  // namespace corvane_fuzz
