// The file that keeps what a run changes, for `patch -R`.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace tool {

// Made with the first change. What it says is on the disk before the file that it is about is changed, so that whatever
// ends the program, no change is without its way back. Functions throw std::system_error.
class PatchFile {
public:
    // Refuses a file that exists: it may be the way back from an earlier run.
    explicit PatchFile(const std::string& name);
    ~PatchFile();
    PatchFile(const PatchFile&) = delete;
    PatchFile& operator=(const PatchFile&) = delete;

    void append(std::string_view text);
    // The change that was appended last has not come about.
    void takeBack() noexcept;

private:
    void create();

    std::string name_;
    int descriptor_ = -1;
    off_t size_ = 0;
    off_t before_ = 0;  // the size without what was appended last
};

}  // namespace tool
