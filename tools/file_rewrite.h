// Changing a file in place so that at every moment either the old content or the new one is there as a whole.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

// A file that the program will not change, and why.
class FileRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A file that is about to be read and then rewritten. Functions throw std::system_error for what the system
// refuses.
class FileRewrite {
public:
    // Looks at the file without opening it, so that a pipe is not drained. A symbolic link is followed, not
    // replaced. FileRefused unless it is a regular file.
    explicit FileRewrite(const std::string& fileName);

    // Writes a temporary file beside the old one, with its permissions and (where allowed) its owner and
    // group, brings it to the disk, and renames it. FileRefused when the file was changed since this object
    // looked at it; a change between that look and the renaming is lost. On an exception the file is as it
    // was and the temporary one gone. Where the file system has files without a name, that holds for whatever
    // ends the program before the very last step.
    void write(std::string_view content) const;

    // The file itself, with all links resolved.
    const std::filesystem::path& target() const { return target_; }

private:
    void refuseIfChanged() const;

    // As the user gave it, for messages.
    std::string fileName_;
    // With all links resolved.
    std::filesystem::path target_;
    struct stat old_ {};
};

}  // namespace tool
