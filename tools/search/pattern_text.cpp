// Pattern text put into other pattern text. What brackets pair with is decided over a whole pattern, so a pattern is only
// put between others when it says of itself that nothing in it is left open.
#include "tools/search/pattern_text.h"

#include "tools/console_context.h"

#include "host/unit_class.h"

#include <algorithm>

namespace tool {
namespace {

std::vector<PatternWarning> warningsOf(const std::u16string& pattern, RE_Flags flags) {
    const Corvane::regexp::CompileOptions options;
    ConsoleContext context(options);
    const RE_Tree tree(pattern.data(), pattern.size(), flags, &context);
    return context.warnings();
}

// Those of constructs that would be closed by something further on.
bool leavesOpen(const PatternWarning& warning) {
    switch (warning.number) {
        case RE_WARNING_TRAILING_BACKSLASH:
        case RE_WARNING_UNMATCHED_OPEN:
        case RE_WARNING_UNMATCHED_CLOSE:
        case RE_WARNING_UNCLOSED_SET:
        case RE_WARNING_UNCLOSED_QUANTIFIER:
        case RE_WARNING_UNCLOSED_CONDITION:
            return true;
        default:
            return false;
    }
}

// From the last to the first, so that the places of the others stay where they are. False when there was none to apply.
bool applyCorrections(std::u16string& pattern, const std::vector<PatternWarning>& warnings) {
    bool applied = false;
    std::size_t limit = pattern.size();
    const std::u16string source = pattern;
    for (auto warning = warnings.rbegin(); warning != warnings.rend(); ++warning) {
        const RE_Warning_Span span = locateWarning(warning->number, source, warning->position);
        if (!span.correction || span.start + span.length > limit) continue;
        pattern.replace(span.start, span.length, *span.correction);
        limit = span.start;
        applied = true;
    }
    return applied;
}

// Whether comments may reach to the end of the text. Errs on the side of yes.
bool mayEndInComment(std::u16string_view pattern, RE_Flags flags) {
    if (pattern.find(u'#') == std::u16string_view::npos) return false;
    if ((flags & RE_FLAG_FREE_SPACING) != 0) return true;
    for (std::size_t at = pattern.find(u"(?"); at != std::u16string_view::npos;
         at = pattern.find(u"(?", at + 2)) {
        const std::size_t end = pattern.find_first_not_of(u"imsxe-", at + 2);
        if (pattern.substr(at, end - at).find(u'x') != std::u16string_view::npos) return true;
    }
    return false;
}

// A backslash and what it escapes are looked at as one.
template <class Visit>
bool anyEscapeOr(std::u16string_view pattern, Visit visit) {
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const bool escaped = pattern[at] == u'\\' && at + 1 < pattern.size();
        if (escaped) ++at;
        if (visit(escaped, at)) return true;
    }
    return false;
}

// Numbers, and names, which may be those of another pattern as well.
bool refersToTokens(std::u16string_view pattern) {
    return anyEscapeOr(pattern, [&](bool escaped, std::size_t at) {
        const char16_t unit = pattern[at];
        if (escaped) return (unit >= u'1' && unit <= u'9') || unit == u'k';
        return pattern.substr(at).starts_with(u"(?(") || pattern.substr(at).starts_with(u"(??") ||
               pattern.substr(at).starts_with(u"(?@");
    });
}

}  // namespace

// A few rounds, as a correction may uncover the next mistake; some never end.
std::u16string correctedPattern(std::u16string pattern, RE_Flags flags) {
    constexpr int mostRounds = 20;
    for (int round = 0; round != mostRounds && applyCorrections(pattern, warningsOf(pattern, flags));
         ++round) {
    }
    return pattern;
}

std::optional<std::u16string> selfContained(std::u16string_view pattern, RE_Flags flags) {
    std::u16string text(pattern);
    constexpr int mostRounds = 20;
    for (int round = 0; round != mostRounds; ++round) {
        std::vector<PatternWarning> open = warningsOf(text, flags);
        std::erase_if(open, [](const PatternWarning& warning) { return !leavesOpen(warning); });
        if (open.empty()) return text;
        if (!applyCorrections(text, open)) break;
    }
    return std::nullopt;
}

std::u16string grouped(std::u16string_view before, std::u16string_view pattern, std::u16string_view after,
                       RE_Flags flags) {
    std::u16string text(before);
    text.append(u"(?:").append(pattern);
    if (mayEndInComment(pattern, flags)) text += u'\n';
    return text.append(u")").append(after);
}

// Alternatives bind weakest, so only what changes modes, or may end in a comment, needs a group of its own.
std::optional<std::u16string> joinedPattern(const std::vector<std::u16string>& patterns, RE_Flags flags) {
    std::u16string joined;
    for (const std::u16string& pattern : patterns) {
        if (refersToTokens(pattern)) return std::nullopt;
        // Outside of free spacing a line feed after a comment would be a literal.
        const bool comment = mayEndInComment(pattern, flags);
        if (comment && (flags & RE_FLAG_FREE_SPACING) == 0) return std::nullopt;
        if (!joined.empty() || &pattern != &patterns.front()) joined += u'|';
        const bool needsGroup = comment || pattern.find(u"(?") != std::u16string::npos;
        joined += needsGroup ? grouped(u"", pattern, u"", flags) : pattern;
    }
    return joined;
}

bool hasLiteralCapital(std::u16string_view pattern) {
    return anyEscapeOr(pattern, [&](bool escaped, std::size_t at) {
        return !escaped && pattern[at] >= u'A' && cvu_isupper(pattern[at]);
    });
}

}  // namespace tool
