// Which files of a tree its .gitignore and .ignore files leave out.
#pragma once

#include "tools/walk/glob.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The rules of one file. The last one that matches decides.
class IgnoreRules {
public:
    enum class Verdict { none, ignored, wanted };

    // `braces` as in PathGlob.
    explicit IgnoreRules(bool braces = false) : braces_(braces) {}

    void add(std::string_view rule) { rules_.emplace_back(rule, braces_); }
    // One rule a line; empty lines and those that begin with # have none.
    void addLines(std::string_view text);
    bool isEmpty() const { return rules_.empty(); }
    // The path is relative to the place of the rules.
    Verdict verdict(std::string_view path, std::string_view name, bool isDirectory) const;

private:
    bool braces_;
    std::vector<PathGlob> rules_;
};

// The rules that hold in a directory: its own and those of the directories around it, of which inner ones come first, and
// .ignore before .gitignore.
class IgnoreLevel {
public:
    using Pointer = std::shared_ptr<const IgnoreLevel>;

    // Reads the files of the directory. Null, or `outer`, where it has none. `path` ends with a slash or is empty.
    static Pointer read(const std::string& path, bool hasIgnore, bool hasGitignore, const Pointer& outer);
    // The rules from outside of the place where a walk begins: .ignore files up to the root, and .gitignore files up to the
    // top of the repository, if the place is in one.
    static Pointer around(const std::string& path);

    // `path` is as the walk has it, beginning with the path of each level.
    static bool isIgnored(const Pointer& level, std::string_view path, std::string_view name,
                          bool isDirectory);

private:
    Pointer outer_;
    std::size_t prefix_ = 0;  // of a path: characters in front of what is relative to this level
    std::string inside_;      // in front of it: from the place of outer rules down to where the walk begins
    IgnoreRules ignore_;
    IgnoreRules gitignore_;
};

}  // namespace tool
