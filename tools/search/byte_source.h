// Bytes as they come: from a file, standard input, or a part of a file, without waiting for more than there is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tool {

// Used by one thread.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Reads what there is, at least one byte unless the source has ended, and at most `room`. Returns how many; 0 at
    // the end. Throws std::system_error for what the system refuses, and Interrupted when a signal came.
    virtual std::size_t read(char* to, std::size_t room) = 0;
};

// An open file; "-" is standard input, which is borrowed.
class FileSource : public ByteSource {
public:
    // Throws std::system_error.
    explicit FileSource(const std::string& name);
    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    std::size_t read(char* to, std::size_t room) override;

    // Bytes, or 0 for what is no regular file or was partly read before.
    std::uint64_t size() const { return size_; }
    bool isDirectory() const { return directory_; }
    int descriptor() const { return descriptor_; }

private:
    std::string name_;
    int descriptor_;
    std::uint64_t size_ = 0;
    std::uint64_t done_ = 0;  // bytes that were read
    bool waits_ = false;      // a pipe or a terminal, from which reading may take time
    bool directory_ = false;
};

// The bytes of an open file from `begin` up to `end`, however the descriptor is positioned. The file must outlive it.
class PartSource : public ByteSource {
public:
    PartSource(const FileSource& file, std::uint64_t begin, std::uint64_t end)
        : file_(file), at_(begin), end_(end) {}

    std::size_t read(char* to, std::size_t room) override;

private:
    const FileSource& file_;
    std::uint64_t at_;
    std::uint64_t end_;
};

// Some bytes that were read before, and then what another source has.
class ResumedSource : public ByteSource {
public:
    ResumedSource(std::string begun, ByteSource& rest) : begun_(std::move(begun)), rest_(rest) {}

    std::size_t read(char* to, std::size_t room) override;

private:
    std::string begun_;
    std::size_t used_ = 0;
    ByteSource& rest_;
};

}  // namespace tool
