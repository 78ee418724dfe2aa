// Any text is a replacement, and what it writes is what the plain model of the tests writes.
#include "fuzz/targets.h"
#include "tests/support/replace_model.h"

namespace corvane_fuzz {
namespace {

/// The model knows the escapes of these only.
bool isKnownToTheModel(std::u16string_view replacement) {
    for (std::size_t at = replacement.find(u'\\'); at != replacement.npos;
         at = replacement.find(u'\\', at + 2)) {
        const char16_t next = at + 1 < replacement.size() ? replacement[at + 1] : u' ';
        if (next >= 0x80 ||
            std::u16string_view(u"na01234567$\\<>{}&`'.").find(next) == std::u16string_view::npos) {
            return false;
        }
    }
    return true;
}

}  // namespace

void replace(const Input& input) {
    const std::u16string_view pattern = input.text(0, 60);
    const std::u16string_view subject = input.text(1, 60);
    const std::u16string_view text = input.text(2, 60);
    const bool adjustCase = (input.number() & 1) != 0;
    const std::size_t which = input.number() >> 1 & 3;
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    RE_Search_Report report;
    const RE_Replace replacement(text.data(), text.size());
    const std::u16string result =
        replacement.replace(subject, engine.tree(), adjustCase, which, kLimits, report);
    // Given up: what was written by then is checked nowhere.
    if (!report.isComplete()) {
        return;
    }
    require(result == replacement.replace(subject, engine.tree(), adjustCase, which),
            "limits change the text", pattern, subject);
    require(!isKnownToTheModel(text) ||
                result == corvane_tests::modelReplace(subject, engine.tree(), text, adjustCase, which),
            "another text for " + corvane_tests::printable(text) + ": " + corvane_tests::printable(result),
            pattern, subject);
}

}  // namespace corvane_fuzz
