// Reading of whole files: regular files are mapped, so that their bytes are not copied before the conversion;
// pipes and terminals are read to their end.
//
// A mapped file that somebody shortens meanwhile raises SIGBUS where it is read. Only the conversion reads it, so the
// danger is as short as that.
#include "tools/input.h"

#include "tools/interrupt.h"
#include "tools/system_failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {
namespace {

// An open descriptor; standard input is borrowed and stays open.
class OpenFile {
public:
    explicit OpenFile(const std::string& name)
        : name_(name), descriptor_(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (descriptor_ < 0) failOn(name_);
    }
    ~OpenFile() {
        if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return descriptor_; }
    const std::string& name() const { return name_; }

private:
    const std::string& name_;  // the caller's, which outlives the file
    int descriptor_;
};

}  // namespace

// A mapping of the whole file, or nothing when the file cannot be mapped (a pipe, an empty file, a file
// system that does not support it); the caller then reads it.
class FileMapping {
public:
    explicit FileMapping(const OpenFile& file) {
        struct stat status;
        if (::fstat(file.descriptor(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size == 0)
            return;
        // A descriptor that was partly read before it was handed to us must be continued, not restarted.
        if (::lseek(file.descriptor(), 0, SEEK_CUR) != 0) return;
        const auto size = static_cast<std::size_t>(status.st_size);
        void* bytes = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.descriptor(), 0);
        if (bytes == MAP_FAILED) return;
        bytes_ = bytes;
        size_ = size;
    }
    ~FileMapping() {
        if (bytes_ != nullptr) ::munmap(bytes_, size_);
    }
    FileMapping(const FileMapping&) = delete;
    FileMapping& operator=(const FileMapping&) = delete;

    explicit operator bool() const { return bytes_ != nullptr; }
    std::string_view bytes() const { return {static_cast<const char*>(bytes_), size_}; }

private:
    void* bytes_ = nullptr;
    std::size_t size_ = 0;
};

namespace {

// Grows by half of what is there, so the copying is linear. A signal ends a blocked read, after which the
// interrupt shows.
std::string readToEnd(const OpenFile& file) {
    constexpr std::size_t chunk = std::size_t{256} * 1024;
    std::string content;
    for (std::size_t used = 0;;) {
        if (content.size() - used < chunk) content.resize(used + chunk + used / 2);
        const ssize_t got = ::read(file.descriptor(), content.data() + used, content.size() - used);
        if (interruptPending()) throw Interrupted();
        // A signal that is no request to stop, such as a change of the window's size.
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) failOn(file.name());
        if (got == 0) {
            content.resize(used);
            return content;
        }
        used += static_cast<std::size_t>(got);
    }
}

// A byte order mark says how the text is encoded; it is no part of it.
std::string_view withoutByteOrderMark(std::string_view bytes) {
    return bytes.starts_with(byteOrderMark) ? bytes.substr(byteOrderMark.size()) : bytes;
}

}  // namespace

// The bytes of a whole file, mapped or read.
class FileBytes {
public:
    explicit FileBytes(const OpenFile& file) : mapping_(file) {
        if (!mapping_) read_ = readToEnd(file);
    }

    std::string_view view() const { return mapping_ ? mapping_.bytes() : read_; }

private:
    FileMapping mapping_;
    std::string read_;
};

Input::Input(const std::string& fileName) : bytes_(std::make_unique<FileBytes>(OpenFile(fileName))) {
    text_.useUtf8(withoutByteOrderMark(bytes_->view()));
    text_.convert(RE_Text::all);
}

Input::~Input() = default;

std::string readBytes(const std::string& fileName) {
    const std::string content = readAllBytes(fileName);
    return std::string(withoutByteOrderMark(content));
}

// Not mapped: what replaces a file needs bytes of its own, as it writes to the same name.
std::string readAllBytes(const std::string& fileName) {
    return readToEnd(OpenFile(fileName));
}

}  // namespace tool
