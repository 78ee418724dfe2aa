// A walk with a stack of its own, so that deep trees cost no native stack. A directory is read as a whole and closed before
// its files are reported, which keeps no descriptor open.
#include "tools/walk/walker.h"

#include "tools/interrupt.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace tool {
namespace {

struct Entry {
    std::string name;
    bool isDirectory;
};

// A directory on the way, and which of its entries comes next.
struct Frame {
    std::string path;  // ends with a slash, or is empty
    std::vector<Entry> entries;
    std::size_t next = 0;
    IgnoreLevel::Pointer rules;
    std::pair<dev_t, ino_t> identity{};
};

enum class EntryKind { file, directory, other };

EntryKind kindOf(mode_t mode) {
    return S_ISREG(mode) ? EntryKind::file : S_ISDIR(mode) ? EntryKind::directory : EntryKind::other;
}

// Most file systems tell the kind with the name. Links are no files unless they are followed.
EntryKind kindOf(const dirent& entry, const std::string& path, bool followsLinks) {
    if (entry.d_type == DT_REG) return EntryKind::file;
    if (entry.d_type == DT_DIR) return EntryKind::directory;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return EntryKind::other;
    struct stat status;
    const std::string whole = path + static_cast<const char*>(entry.d_name);
    const int result = followsLinks ? ::stat(whole.c_str(), &status) : ::lstat(whole.c_str(), &status);
    return result == 0 ? kindOf(status.st_mode) : EntryKind::other;
}

struct Listing {
    std::vector<Entry> entries;
    bool hasIgnore = false;
    bool hasGitignore = false;
};

// False, with errno, when the directory cannot be read.
bool list(const std::string& path, bool followsLinks, Listing& listing) {
    const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(path.empty() ? "." : path.c_str()), ::closedir);
    if (open == nullptr) return false;
    while (const dirent* const entry = ::readdir(open.get())) {
        std::string name = static_cast<const char*>(entry->d_name);
        if (name == "." || name == "..") continue;
        listing.hasIgnore = listing.hasIgnore || name == ".ignore";
        listing.hasGitignore = listing.hasGitignore || name == ".gitignore";
        const EntryKind kind = kindOf(*entry, path, followsLinks);
        if (kind != EntryKind::other)
            listing.entries.push_back({std::move(name), kind == EntryKind::directory});
    }
    std::ranges::sort(listing.entries, {}, &Entry::name);
    return true;
}

}  // namespace

bool isDirectory(const std::string& name) {
    struct stat status;
    return name.empty() || (name != "-" && ::stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode));
}

Walker::Walker(const WalkSettings& settings) : settings_(settings) {
    for (const std::string& glob : settings.globs) {
        // A glob says what is wanted; as a rule it says what is left out.
        const bool unwanted = glob.starts_with('!');
        globs_.add(unwanted ? glob.substr(1) : "!" + glob);
        wantsGlob_ = wantsGlob_ || !unwanted;
    }
}

bool Walker::isWanted(std::string_view relative, std::string_view name, bool isDirectory) const {
    if (globs_.isEmpty()) return true;
    switch (globs_.verdict(relative, name, isDirectory)) {
        case IgnoreRules::Verdict::wanted:
            return true;
        case IgnoreRules::Verdict::ignored:
            return false;
        case IgnoreRules::Verdict::none:
            break;
    }
    return isDirectory || !wantsGlob_;
}

bool Walker::walk(const std::string& directory, const Found& found, const Problem& problem) const {
    std::vector<Frame> stack;
    const std::size_t base =
        directory.empty() || directory.ends_with('/') ? directory.size() : directory.size() + 1;

    const auto enter = [&](std::string path, const IgnoreLevel::Pointer& rules) {
        Listing listing;
        if (!list(path, settings_.followsLinks, listing)) {
            problem((path.empty() ? "." : path.substr(0, path.size() - 1)) + ": " +
                    std::generic_category().message(errno));
            return;
        }
        Frame frame;
        frame.entries = std::move(listing.entries);
        frame.rules = settings_.ignoreFiles
                          ? IgnoreLevel::read(path, listing.hasIgnore, listing.hasGitignore, rules)
                          : nullptr;
        frame.path = std::move(path);
        if (settings_.followsLinks) {
            struct stat status;
            if (::stat(frame.path.empty() ? "." : frame.path.c_str(), &status) == 0)
                frame.identity = {status.st_dev, status.st_ino};
            // A link that leads back up would never end.
            if (std::ranges::any_of(stack,
                                    [&](const Frame& outer) { return outer.identity == frame.identity; }))
                return;
        }
        stack.push_back(std::move(frame));
    };

    std::string start = directory;
    if (!start.empty() && !start.ends_with('/')) start += '/';
    enter(start, settings_.ignoreFiles ? IgnoreLevel::around(start) : nullptr);
    while (!stack.empty()) {
        if (interruptPending()) return false;
        Frame& frame = stack.back();
        if (frame.next == frame.entries.size()) {
            stack.pop_back();
            continue;
        }
        const Entry& entry = frame.entries[frame.next++];
        if (!settings_.hidden && entry.name.starts_with('.')) continue;
        const std::string path = frame.path + entry.name;
        if (!isWanted(std::string_view(path).substr(base), entry.name, entry.isDirectory)) continue;
        if (settings_.ignoreFiles && IgnoreLevel::isIgnored(frame.rules, path, entry.name, entry.isDirectory))
            continue;
        if (entry.isDirectory) {
            if (stack.size() < settings_.maxDepth) {
                const IgnoreLevel::Pointer rules = frame.rules;
                enter(path + '/', rules);  // `frame` and `entry` are not valid after this
            }
        } else if (!found(path)) {
            return false;
        }
    }
    return true;
}

bool Walker::walkAll(const std::vector<std::string>& names, const Found& named, const Found& found,
                     const Problem& problem) const {
    return std::ranges::all_of(names, [&](const std::string& name) {
        return isDirectory(name) ? walk(name, found, problem) : named(name);
    });
}

}  // namespace tool
