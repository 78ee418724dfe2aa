// Written by system calls, as an error has to be known before the change.
#include "tools/replace/patch_file.h"

#include "tools/signals_held.h"
#include "tools/system_failure.h"
#include "tools/write_all.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {
namespace {}  // namespace

PatchFile::PatchFile(const std::string& name) : name_(name) {
    if (::access(name.c_str(), F_OK) == 0) failOn(name, EEXIST);
}

PatchFile::~PatchFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void PatchFile::create() {
    descriptor_ = ::open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) failOn(name_);
}

void PatchFile::append(std::string_view text) {
    const SignalsHeld held;
    if (descriptor_ < 0) create();
    before_ = size_;
    try {
        writeAll(descriptor_, name_, text);
    } catch (...) {
        takeBack();
        throw;
    }
    size_ += static_cast<off_t>(text.size());
    if (::fdatasync(descriptor_) != 0) failOn(name_);
}

void PatchFile::takeBack() noexcept {
    [[maybe_unused]] const int cut = ::ftruncate(descriptor_, before_);
    ::lseek(descriptor_, before_, SEEK_SET);
    size_ = before_;
}

}  // namespace tool
