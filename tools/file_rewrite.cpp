// Changing a file in place: a temporary file in the same directory, so that renaming it stays within one file
// system and is atomic.
//
// The order matters. The permissions are set while the content is only in the temporary file, the check for
// somebody else's change follows all writing, and the content is on the disk before the rename.
#include "tools/file_rewrite.h"

#include "tools/signals_held.h"
#include "tools/system_failure.h"
#include "tools/write_all.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace tool {
namespace {

// The mode for a new file that may not have the owner or the group of the old one. A program must not run
// with the rights of a new owner or group, so the set-id bits go; and a new group gets only the rights that
// everybody has.
mode_t modeFor(const struct stat& old, const struct stat& current) {
    mode_t mode = old.st_mode & 07777u;
    if (old.st_uid != current.st_uid || old.st_gid != current.st_gid) mode &= 01777u;
    if (old.st_gid != current.st_gid) mode &= 01707u | ((mode & 07u) << 3);
    return mode;
}

bool sameTime(const struct timespec& one, const struct timespec& other) {
    return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
}

// A file in the directory of the one to be replaced. It has no name until it is complete, so that it goes with the
// program whatever ends that; where the file system has no such files it has one from the beginning, and the destructor
// removes it unless it was renamed.
class TemporaryFile {
public:
    // Readable by the owner alone: the content may be secret, and nobody may read it before it has the permissions of the
    // old file.
    explicit TemporaryFile(const std::filesystem::path& directory)
        : name_((directory / ".cvregexp.XXXXXX").string()), descriptor_(openNameless(directory)) {
        if (descriptor_ >= 0) return;
        held_.emplace();
        descriptor_ = ::mkostemp(name_.data(), O_CLOEXEC);
        if (descriptor_ < 0) failOn(name_);
        isNamed_ = true;
    }
    ~TemporaryFile() {
        // Errors no longer matter: the file is about to be removed.
        if (descriptor_ >= 0) ::close(descriptor_);
        if (isNamed_) ::unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view content) { writeAll(descriptor_, name_, content); }

    // The owner comes first, since changing it may clear bits of the mode; only root may give files away, but
    // others may keep the group.
    void takePermissionsOf(const struct stat& old) {
        constexpr uid_t unchanged = static_cast<uid_t>(-1);
        if (::fchown(descriptor_, old.st_uid, old.st_gid) != 0) {
            [[maybe_unused]] const int ignored = ::fchown(descriptor_, unchanged, old.st_gid);
        }
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0) failOn(name_);
        if (::fchmod(descriptor_, modeFor(old, status)) != 0) failOn(name_);
    }

    // Errors of close matter: a network file system reports a full disk there.
    void replace(const std::string& fileName) {
        if (::fsync(descriptor_) != 0) failOn(name_);
        if (!held_) held_.emplace();
        if (!isNamed_) giveName();
        if (::close(std::exchange(descriptor_, -1)) != 0) failOn(name_);
        if (::rename(name_.c_str(), fileName.c_str()) != 0) failOn(fileName);
        isNamed_ = false;
    }

private:
    // Negative where such a file is not to be had, or could not be given a name: that takes the links of /proc.
    static int openNameless(const std::filesystem::path& directory) {
        if (::access("/proc/self/fd", X_OK) != 0) return -1;
        return ::open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    }

    // A name that nobody has, found as mkstemp does it: by trying.
    void giveName() {
        const std::string self = "/proc/self/fd/" + std::to_string(descriptor_);
        const std::size_t stem = name_.size() - 6;
        for (unsigned attempt = 0;; ++attempt) {
            char suffix[8];
            std::snprintf(suffix, sizeof suffix, "%06X",
                          (static_cast<unsigned>(::getpid()) + attempt * 0x10001U) & 0xFFFFFFU);
            name_.replace(stem, 6, suffix);
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name_.c_str(), AT_SYMLINK_FOLLOW) == 0) break;
            if (errno != EEXIST || attempt == mostAttempts) failOn(name_);
        }
        isNamed_ = true;
    }

    static constexpr unsigned mostAttempts = 1000;

    std::string name_;
    int descriptor_;
    bool isNamed_ = false;
    std::optional<SignalsHeld> held_;
};

// The rename itself is on the disk once the directory is. Some file systems cannot do that; the content is
// safe.
void syncDirectory(const std::filesystem::path& directory) {
    const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}  // namespace

FileRewrite::FileRewrite(const std::string& fileName) : fileName_(fileName) {
    std::error_code failure;
    // Resolves links, so that the rename replaces the file and not the link to it.
    target_ = std::filesystem::canonical(fileName, failure);
    if (failure) failOn(fileName, failure.value());
    if (::stat(target_.c_str(), &old_) != 0) failOn(fileName);
    if (!S_ISREG(old_.st_mode)) throw FileRefused(fileName + ": not a regular file");
}

// Looks again at what the constructor saw.
void FileRewrite::refuseIfChanged() const {
    struct stat now {};
    if (::stat(target_.c_str(), &now) != 0) failOn(fileName_);
    // The same file with the same size and time. A change within the clock's resolution that keeps the size
    // is missed.
    const bool same = now.st_dev == old_.st_dev && now.st_ino == old_.st_ino && now.st_size == old_.st_size &&
                      sameTime(now.st_mtim, old_.st_mtim);
    if (!same) throw FileRefused(fileName_ + ": changed by somebody else meanwhile, left as it is");
}

void FileRewrite::write(std::string_view content) const {
    TemporaryFile temporary(target_.parent_path());
    temporary.write(content);
    temporary.takePermissionsOf(old_);
    refuseIfChanged();
    temporary.replace(target_.string());
    syncDirectory(target_.parent_path());
}

}  // namespace tool
