// Wildcards for file names, by patterns of the library's own making.
#include "tools/walk/glob.h"

#include "tools/convert_text.h"

namespace tool {
namespace {

constexpr std::string_view special = "*?[\\";

// A set of the pattern language for what is between brackets; `at` is moved past it. False when it is not closed.
bool appendSet(std::u16string& pattern, const std::u16string& wildcard, std::size_t& at) {
    std::size_t from = at + 1;
    const bool negated = from < wildcard.size() && (wildcard[from] == u'!' || wildcard[from] == u'^');
    if (negated) ++from;
    // A bracket that comes first is a member.
    const std::size_t close = wildcard.find(u']', from + 1);
    if (close == std::u16string::npos) return false;
    pattern += negated ? u"[^" : u"[";
    for (std::size_t i = from; i != close; ++i) {
        const char16_t unit = wildcard[i];
        if (unit == u'\\' || unit == u'[' || unit == u']' || unit == u'^') pattern += u'\\';
        pattern += unit;
    }
    pattern += u']';
    at = close + 1;
    return true;
}

std::u16string patternOf(const std::u16string& wildcard, bool braces) {
    std::u16string pattern = u"^(?:";
    std::size_t depth = 0;
    for (std::size_t at = 0; at != wildcard.size();) {
        const char16_t unit = wildcard[at];
        if (unit == u'[' && appendSet(pattern, wildcard, at)) continue;
        if (unit == u'\\' && at + 1 != wildcard.size()) {
            pattern += RE_Translate::escape(wildcard.substr(++at, 1));
        } else if (braces && unit == u'{') {
            pattern += u"(?:";
            ++depth;
        } else if (braces && depth != 0 && unit == u'}') {
            pattern += u')';
            --depth;
        } else if (braces && depth != 0 && unit == u',') {
            pattern += u'|';
        } else {
            pattern += RE_Translate::translateWildcard({&unit, 1});
        }
        ++at;
    }
    pattern.append(depth, u')');
    return pattern + u")$";
}

}  // namespace

NameGlob::NameGlob(std::string_view wildcard, bool braces) {
    const bool hasBraces = braces && wildcard.find('{') != std::string_view::npos;
    if (!hasBraces && wildcard.find_first_of(special) == std::string_view::npos) {
        kind_ = Kind::literal;
        text_ = wildcard;
    } else if (!hasBraces && wildcard.starts_with('*') &&
               wildcard.find_first_of(special, 1) == std::string_view::npos) {
        kind_ = Kind::ending;
        text_ = wildcard.substr(1);
    } else {
        kind_ = Kind::pattern;
        const std::u16string pattern = patternOf(toUtf16(wildcard), braces);
        tree_ = std::make_unique<RE_Tree>(pattern.data(), pattern.size(),
                                          RE_FLAG_DOT_ALL | RE_FLAG_ALLOW_EMPTY, nullptr);
    }
}

bool NameGlob::matches(std::string_view name) const {
    switch (kind_) {
        case Kind::literal:
            return name == text_;
        case Kind::ending:
            return name.ends_with(text_);
        case Kind::pattern:
            break;
    }
    return std::unique_ptr<RE_Results>(tree_->match(toUtf16(name), 0)) != nullptr;
}

PathGlob::PathGlob(std::string_view rule, bool braces) {
    if (rule.starts_with('!')) {
        negated_ = true;
        rule.remove_prefix(1);
    }
    if (rule.ends_with('/')) {
        directoriesOnly_ = true;
        rule.remove_suffix(1);
    }
    tied_ = rule.find('/') != std::string_view::npos;
    if (rule.starts_with('/')) rule.remove_prefix(1);
    while (!rule.empty()) {
        const std::size_t slash = std::min(rule.find('/'), rule.size());
        const std::string_view part = rule.substr(0, slash);
        if (!part.empty())
            parts_.push_back(part == "**" ? nullptr : std::make_unique<NameGlob>(part, braces));
        rule.remove_prefix(std::min(slash + 1, rule.size()));
    }
}

bool PathGlob::matches(std::string_view path, std::string_view name, bool isDirectory) const {
    if (parts_.empty() || (directoriesOnly_ && !isDirectory)) return false;
    if (!tied_) return parts_.front() == nullptr || parts_.front()->matches(name);
    return matchesPath(path);
}

// Goes through the parts of the path with the set of places in the rule that may be reached, so that several ** cost no
// more than one.
bool PathGlob::matchesPath(std::string_view path) const {
    std::vector<bool> reached(parts_.size() + 1);
    // Past a **, which may be nothing; but one that ends the rule is about what is inside.
    const auto reach = [&](std::size_t place) {
        reached[place] = true;
        while (place + 1 < parts_.size() && parts_[place] == nullptr) reached[++place] = true;
    };
    reach(0);
    while (!path.empty()) {
        const std::size_t slash = std::min(path.find('/'), path.size());
        const std::string_view part = path.substr(0, slash);
        path.remove_prefix(std::min(slash + 1, path.size()));
        std::vector<bool> before(parts_.size() + 1);
        std::swap(before, reached);
        for (std::size_t place = 0; place != parts_.size(); ++place) {
            if (!before[place]) continue;
            if (parts_[place] == nullptr) {
                reach(place);
                if (place + 1 == parts_.size()) reached[place + 1] = true;
            } else if (parts_[place]->matches(part)) {
                reach(place + 1);
            }
        }
    }
    return reached.back();
}

}  // namespace tool
