#include "regexp/replace/match_text.h"

namespace {

std::size_t subjectLength(const RE_Results& results) {
    return static_cast<std::size_t>(results.subjectEnd - results.subjectBegin);
}

}  // namespace

std::u16string_view subjectPart(const RE_Results& results, std::size_t start, std::size_t length) {
    const std::size_t whole = subjectLength(results);
    const bool inside = start <= whole && length <= whole - start;
    return inside ? std::u16string_view(results.subjectBegin + start, length) : std::u16string_view();
}

std::u16string_view textBefore(const RE_Results& results) {
    return subjectPart(results, 0, results.matchStart);
}

std::u16string_view matchedText(const RE_Results& results) {
    return subjectPart(results, results.matchStart, results.matchLength);
}

std::u16string_view textAfter(const RE_Results& results) {
    const std::size_t end = results.matchStart + results.matchLength;
    const std::size_t whole = subjectLength(results);
    return end <= whole ? subjectPart(results, end, whole - end) : std::u16string_view();
}

std::size_t tokensInEffect(const RE_Results& results) {
    return results.tokens != nullptr ? results.tokens->count : 0;
}
