// The patterns of one search. Several are joined into one pattern of alternatives where that says the same, as one
// search then looks for all of them at once; else they are searched with side by side.
#include "tools/search/search_pattern.h"

#include "tools/search/pattern_text.h"
#include "tools/usage_error.h"

#include "regexp/base/flags.h"

namespace tool {
namespace {

// Without lines that are apart each line is searched alone: expressions may ask where they are.
RE_Flags flagsFor(const PatternRequest& request, const SearchModes& modes) {
    if (modes.multiline) return request.flags;
    RE_Flags flags = request.flags | RE_FLAG_ALLOW_EMPTY;
    if (request.refuseEmpty) flags &= ~RE_FLAG_ALLOW_EMPTY;
    return modes.terminator == '\n' ? flags | RE_FLAG_LINES_APART : flags;
}

// Between anchors, if the modes ask for it.
std::u16string anchored(const std::u16string& text, const SearchModes& modes, RE_Flags flags) {
    if (!modes.wholeLines && !modes.wholeWords) return text;
    const std::optional<std::u16string> inner = selfContained(text, flags);
    if (!inner)
        throw UsageError("--word-regexp and --line-regexp need a pattern in which everything is closed");
    if (!modes.wholeLines) return grouped(u"\\<", *inner, u"\\>", flags);
    return grouped(modes.multiline ? u"(?m:^)" : u"^", *inner, modes.multiline ? u"(?m:$)" : u"$", flags);
}

}  // namespace

SearchPattern::SearchPattern(const PatternRequest& request, const SearchModes& modes,
                             const Corvane::regexp::CompileOptions& options)
    : options_(options), speedUp_(request.speedUp), scripts_(startScripts(request.scripts)) {
    const RE_Flags flags = flagsFor(request, modes);
    std::vector<std::u16string> texts;
    for (const std::u16string& given : request.texts) {
        PatternRequest one = request;
        one.text = given;
        one.flags = flags;
        given_.push_back(std::make_unique<CompiledPattern>(std::move(one), options, scripts_));
        texts.push_back(anchored(given, modes, flags));
        const bool asGiven = texts.back() == given;
        each_.push_back(asGiven ? &given_.back()->tree() : compile(texts.back(), flags));
        if (asGiven) given_.back()->prepareForSearches();
    }
    joinAll(texts, flags);
    patterns_.terminator = modes.terminator;
    patterns_.selecting = joined_.empty() ? each_ : joined_;
    patterns_.detailed = modes.attributes ? std::span<const RE_Tree* const>(each_) : patterns_.selecting;
    const bool blocks = modes.terminator == '\n' && scripts_ == nullptr && patterns_.selecting.size() == 1;
    patterns_.unit = modes.multiline ? SearchUnit::text : blocks ? SearchUnit::block : SearchUnit::line;
}

const RE_Tree* SearchPattern::compile(std::u16string text, RE_Flags flags) {
    PatternRequest request;
    request.text = std::move(text);
    request.flags = flags;
    request.speedUp = speedUp_;
    made_.push_back(std::make_unique<CompiledPattern>(std::move(request), options_, scripts_));
    made_.back()->prepareForSearches();
    return &made_.back()->tree();
}

void SearchPattern::joinAll(const std::vector<std::u16string>& texts, RE_Flags flags) {
    if (texts.size() == 1) {
        joined_ = each_;
        return;
    }
    std::vector<std::u16string> closed;
    for (const std::u16string& text : texts) {
        std::optional<std::u16string> one = selfContained(text, flags);
        if (!one) return;
        closed.push_back(*std::move(one));
    }
    if (std::optional<std::u16string> joined = joinedPattern(closed, flags))
        joined_ = {compile(*std::move(joined), flags)};
}

}  // namespace tool
