// Wildcards for file names: * and ? and [...] within a name, and paths of such names with ** between them.
#pragma once

#include "regexp/regexp.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// A wildcard for one name, which has no slash. Most are a literal or an ending, and are compared as such.
class NameGlob {
public:
    // With `braces`, {a,b} is one or the other.
    NameGlob(std::string_view wildcard, bool braces);

    bool matches(std::string_view name) const;

private:
    enum class Kind { literal, ending, pattern };

    Kind kind_;
    std::string text_;               // the literal, or the ending
    std::unique_ptr<RE_Tree> tree_;  // of a pattern
};

// A rule as ignore files have them: "!" in front means the contrary, "/" at the end directories only, and a slash
// elsewhere ties it to the place of the file; otherwise it is about names at any depth.
class PathGlob {
public:
    PathGlob(std::string_view rule, bool braces);

    bool isNegated() const { return negated_; }
    // `path` is relative to where the rule was found, without a slash at either end; `name` is its last part.
    bool matches(std::string_view path, std::string_view name, bool isDirectory) const;

private:
    bool matchesPath(std::string_view path) const;

    bool negated_ = false;
    bool directoriesOnly_ = false;
    bool tied_ = false;
    // Null for **, which is any number of parts.
    std::vector<std::unique_ptr<NameGlob>> parts_;
};

}  // namespace tool
