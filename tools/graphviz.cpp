// The text goes to `dot` through a temporary file and the picture comes back through a pipe, so that neither
// side can wait for the other: with two pipes both could be full.
#include "tools/graphviz.h"

#include "tools/usage_error.h"

#include <unistd.h>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace tool {
namespace {

// Closed before `dot` reads it, removed when the picture is there.
class GraphFile {
public:
    explicit GraphFile(const std::string& content) {
        const int file = ::mkstemp(name_);
        // The system's reason, with the name: usually there is no room or no permission.
        if (file < 0) throw std::system_error(errno, std::generic_category(), name_);
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(::fdopen(file, "w"), std::fclose);
        const bool written = stream != nullptr &&
                             std::fwrite(content.data(), 1, content.size(), stream.get()) == content.size() &&
                             std::fflush(stream.get()) == 0;
        if (!written) throw std::system_error(errno, std::generic_category(), name_);
    }
    ~GraphFile() { ::unlink(name_); }
    GraphFile(const GraphFile&) = delete;
    GraphFile& operator=(const GraphFile&) = delete;

    const char* name() const { return name_; }

private:
    // mkstemp replaces the X's.
    char name_[32] = "/tmp/cvregexp-graph-XXXXXX";
};

}  // namespace

std::string drawGraph(const std::string& text, const std::string& format) {
    if (format == "dot") return text;
    // The list is short on purpose: the word becomes part of a command for the shell.
    if (format != "svg" && format != "png") throw UsageError("the format must be dot, svg or png");
    const GraphFile file(text);
    // Format and name are words of our own that the shell leaves alone.
    std::FILE* const pipe = ::popen(("dot -T" + format + " " + file.name()).c_str(), "r");
    if (pipe == nullptr) throw std::system_error(errno, std::generic_category(), "dot");
    std::string picture;
    char part[4096];
    // Read to the end before pclose, which waits for a program that may be writing.
    while (const std::size_t size = std::fread(part, 1, sizeof part, pipe)) picture.append(part, size);
    if (::pclose(pipe) != 0)
        throw std::runtime_error("Graphviz could not draw the graph; is its dot installed?");
    return picture;
}

}  // namespace tool
