// Changing a file in place.
#include "tools/file_rewrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tool {
namespace {

[[noreturn]] void failOn(const std::string& name, int error = errno) {
    throw std::system_error(error, std::generic_category(), name);
}

// Exists until it is renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::filesystem::path& directory)
        : name_((directory / ".cvregexp.XXXXXX").string()), descriptor_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (descriptor_ < 0) failOn(name_);
    }
    ~TemporaryFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
        if (!renamed_) ::unlink(name_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::string_view content) {
        while (!content.empty()) {
            const ssize_t written = ::write(descriptor_, content.data(), content.size());
            if (written < 0 && errno != EINTR) failOn(name_);
            if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    // The owner comes first, since changing it may clear bits of the mode; only root may give files away.
    void takePermissionsOf(const struct stat& old) {
        [[maybe_unused]] const int ignored = ::fchown(descriptor_, old.st_uid, old.st_gid);
        if (::fchmod(descriptor_, old.st_mode & 07777) != 0) failOn(name_);
    }

    void replace(const std::string& fileName) {
        if (::fsync(descriptor_) != 0) failOn(name_);
        if (::close(std::exchange(descriptor_, -1)) != 0) failOn(name_);
        if (::rename(name_.c_str(), fileName.c_str()) != 0) failOn(fileName);
        renamed_ = true;
    }

private:
    std::string name_;
    int descriptor_;
    bool renamed_ = false;
};

// The rename itself is on the disk once the directory is. Some file systems cannot do that; the content is safe.
void syncDirectory(const std::filesystem::path& directory) {
    const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}  // namespace

void rewriteFile(const std::string& fileName, std::string_view content) {
    std::error_code failure;
    const std::filesystem::path target = std::filesystem::canonical(fileName, failure);
    if (failure) failOn(fileName, failure.value());
    struct stat old {};
    if (::stat(target.c_str(), &old) != 0) failOn(fileName);
    if (!S_ISREG(old.st_mode)) failOn(fileName + ": not a regular file", EINVAL);
    TemporaryFile temporary(target.parent_path());
    temporary.write(content);
    temporary.takePermissionsOf(old);
    temporary.replace(target.string());
    syncDirectory(target.parent_path());
}

}  // namespace tool
