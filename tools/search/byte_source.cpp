// Reading in pieces. A signal ends a read that waits; one of a regular file is short.
#include "tools/search/byte_source.h"

#include "tools/interrupt.h"
#include "tools/system_failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace tool {
namespace {

// A signal that is no request to stop, such as a change of the window's size, does not end a read.
template <class Read>
std::size_t readAgain(const std::string& name, Read read) {
    for (;;) {
        const ssize_t got = read();
        if (got >= 0) return static_cast<std::size_t>(got);
        if (errno != EINTR) failOn(name);
        if (interruptPending()) throw Interrupted();
    }
}

}  // namespace

FileSource::FileSource(const std::string& name)
    : name_(name),
      // Without O_NONBLOCK, so that a FIFO is waited for, as other programs do.
      descriptor_(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
    if (descriptor_ < 0) failOn(name_);
    struct stat status;
    if (::fstat(descriptor_, &status) != 0) return;
    directory_ = S_ISDIR(status.st_mode);
    waits_ = !S_ISREG(status.st_mode) && !directory_;
    // What was partly read before it was handed to us is continued, not restarted, and has no parts.
    if (S_ISREG(status.st_mode) && (name != "-" || ::lseek(descriptor_, 0, SEEK_CUR) == 0))
        size_ = static_cast<std::uint64_t>(status.st_size);
}

FileSource::~FileSource() {
    if (descriptor_ > STDIN_FILENO) ::close(descriptor_);
}

std::size_t FileSource::read(char* to, std::size_t room) {
    if (waits_ && !waitForInput(descriptor_)) throw Interrupted();
    if (interruptPending()) throw Interrupted();
    // Most files are small, and a call that only says that this was all would be a large part of the work.
    if (size_ != 0 && done_ == size_) return 0;
    const std::size_t got = readAgain(name_, [&] { return ::read(descriptor_, to, room); });
    done_ += got;
    return got;
}

std::size_t PartSource::read(char* to, std::size_t room) {
    if (interruptPending()) throw Interrupted();
    const std::size_t wanted = std::min<std::uint64_t>(room, end_ - at_);
    const std::size_t got = readAgain(
        "part of a file", [&] { return ::pread(file_.descriptor(), to, wanted, static_cast<off_t>(at_)); });
    at_ += got;
    return got;
}

std::size_t ResumedSource::read(char* to, std::size_t room) {
    if (used_ == begun_.size()) return rest_.read(to, room);
    const std::size_t count = std::min(room, begun_.size() - used_);
    std::memcpy(to, begun_.data() + used_, count);
    used_ += count;
    return count;
}

}  // namespace tool
