// The files of a tree, in the order of their names.
#pragma once

#include "tools/walk/ignore_rules.h"

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace tool {

struct WalkSettings {
    bool ignoreFiles = true;  // .gitignore and .ignore count
    bool hidden = false;      // names that begin with a dot are wanted, too
    bool followsLinks = false;
    std::size_t maxDepth = std::numeric_limits<std::size_t>::max();  // 1: the files of the directory itself
    std::vector<std::string>
        globs;  // wanted names; with "!" in front unwanted ones; the last that matches decides
};

// Whether this is a directory; "" is the working one, and "-" is standard input.
bool isDirectory(const std::string& name);

class Walker {
public:
    // `found` is called with each wanted file; false ends the walk. `problem` is called with what cannot be read.
    using Found = std::function<bool(const std::string& path)>;
    using Problem = std::function<void(const std::string& message)>;

    explicit Walker(const WalkSettings& settings);

    // Below this directory, or in the working directory, if it is empty. Paths begin with the name as given. False when
    // `found` has ended it, or a signal.
    bool walk(const std::string& directory, const Found& found, const Problem& problem) const;

    // The same for each of the names in turn: the files of what is a directory, and all else as it is, which `named`
    // is called with.
    bool walkAll(const std::vector<std::string>& names, const Found& named, const Found& found,
                 const Problem& problem) const;

private:
    bool isWanted(std::string_view relative, std::string_view name, bool isDirectory) const;

    WalkSettings settings_;
    IgnoreRules globs_{true};
    bool wantsGlob_ = false;  // some glob says what is wanted, so that all else is not
};

}  // namespace tool
