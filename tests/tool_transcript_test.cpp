// Runs the command-line program on the transcripts in tests/tool and compares everything it says.
//
// A transcript is a sequence of cases. The first character of a line says what the line is:
//   =   begins a case; the rest is its title
//   @   the lines that follow are the content of a file of this name (without one: of standard input)
//   |   one line of that content, after one blank; "|%" instead: C escapes are decoded and no line feed is added
//   $   the command, for the shell, run in a directory of its own
//   >   one expected line of standard output, after one blank
//   !   one expected line of standard error, after one blank
//   ?   the expected exit status
//   #   a remark
// Control characters in the output are compared as \xHH. What is not mentioned is expected to be empty, and the
// status to be 0.
//
// README.md and the pages in docs are transcripts too: of their indented lines, one that begins with "$ " is a command,
// run at the top of the source tree, and those below are what it says on both channels.
#include "tests/support/differential.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#ifdef CORVANE_TOOL_PATH

namespace {

namespace fs = std::filesystem;

constexpr const char* standardInput = "standard-input";

/// A command with all that it is given and all that is expected of it.
struct Case {
    std::string title;
    std::map<std::string, std::string> files{{standardInput, ""}};
    std::string command;
    std::string output;
    std::string errors;
    int status = 0;
    bool fromPage = false;  // runs in the source tree, says all in `output`, and may have any status
};

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string decodeEscapes(const std::string& text) {
    std::string decoded;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\' || at + 1 == text.size()) {
            decoded += text[at];
        } else if (text[++at] == 'x') {
            decoded += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            decoded += text[at] == 'n' ? '\n' : text[at];
        }
    }
    return decoded;
}

// Output is compared in a form that a transcript can hold.
std::string showControls(const std::string& text) {
    static const char digits[] = "0123456789ABCDEF";
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && c != '\n') {
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
            shown += c;
        }
    }
    return shown;
}

// `file` is the one whose content the transcript is giving. False for a line of no known kind.
bool addLine(Case& current, std::string& file, const std::string& line) {
    const std::string rest = line.size() > 2 ? line.substr(2) : "";
    switch (line[0]) {
        case '@':
            file = rest;
            current.files[file].clear();
            return true;
        case '|':
            current.files[file] += line.starts_with("|%") ? decodeEscapes(line.substr(3)) : rest + '\n';
            return true;
        case '$':
            current.command = rest;
            return true;
        case '>':
            current.output += rest + '\n';
            return true;
        case '!':
            current.errors += rest + '\n';
            return true;
        case '?':
            current.status = std::stoi(rest);
            return true;
        default:
            return line[0] == '#';
    }
}

std::vector<Case> readTranscript(const fs::path& path) {
    std::vector<Case> cases;
    std::string file;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("= ")) {
            cases.emplace_back().title = line.substr(2);
            file = standardInput;
        } else if (!line.empty() && !cases.empty() && !addLine(cases.back(), file, line)) {
            throw std::runtime_error(path.string() + ": cannot read \"" + line + "\"");
        }
    }
    return cases;
}

std::vector<Case> readExamples(const fs::path& page) {
    std::vector<Case> cases;
    bool open = false;
    std::ifstream in(page);
    for (std::string line; std::getline(in, line);) {
        const bool indented = line.starts_with("    ");
        if (line.starts_with("    $ ")) {
            Case& example = cases.emplace_back();
            example.fromPage = true;
            example.command = "exec 2>&1; " + line.substr(6);
        } else if (open && indented) {
            cases.back().output += line.substr(4) + '\n';
        }
        open = indented && (open || line.starts_with("    $ "));
    }
    return cases;
}

const fs::path sourceTree = fs::path(CORVANE_TEST_DATA_DIR).parent_path().parent_path();

class Directory {
public:
    Directory() {
        std::string name = (fs::temp_directory_path() / "corvane-transcript-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory for the transcript");
        path_ = name;
    }
    ~Directory() { fs::remove_all(path_); }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

#ifdef CORVANE_HAVE_LUA
constexpr bool hasLua = true;
#else
constexpr bool hasLua = false;
#endif

// Each case has an empty directory of its own. The shell's variables that change output (locale, terminal, colours) are
// set, so a transcript means the same everywhere.
void runCase(const Case& expected) {
    if (!hasLua && expected.command.find("--lua") != std::string::npos) return;
    // Sanitizers reserve more addresses than any limit here leaves.
    if (corvane_tests::sanitized() && expected.command.find("ulimit -v") != std::string::npos) return;
    const Directory work;
    const Directory results;  // apart from the files of the case, which the command may list
    for (const auto& [name, content] : expected.files) {
        const fs::path& folder = name == standardInput ? results.path() : work.path();
        std::ofstream(folder / name, std::ios::binary) << content;
    }
    const fs::path& place = expected.fromPage ? sourceTree : work.path();
    const std::string script = "cd '" + place.string() + "' || exit 99\n" +
                               "unset NO_COLOR; LC_ALL=C.UTF-8; TERM=xterm; export LC_ALL TERM\n" +
                               "cvregexp='" CORVANE_TOOL_PATH "'\n" +
                               "cvregexp() { \"$cvregexp\" \"$@\"; }\n"
                               "exec < '" +
                               (results.path() / standardInput).string() + "'\n" + expected.command + '\n';
    std::ofstream(results.path() / "script") << script;
    const std::string in = results.path().string();
    const int status =
        std::system(("sh '" + in + "/script' > '" + in + "/out' 2> '" + in + "/err' < /dev/null").c_str());
    std::string output = showControls(readFile(results.path() / "out"));
    if (expected.fromPage && !output.ends_with('\n')) output += '\n';  // pages cannot show that there is none
    EXPECT_EQ(expected.output, output);
    EXPECT_EQ(expected.errors, showControls(readFile(results.path() / "err")));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_TRUE(expected.fromPage || expected.status == WEXITSTATUS(status)) << "status " << WEXITSTATUS(status);
}

std::vector<fs::path> filesIn(const std::string& folder, const std::string& extension) {
    std::vector<fs::path> paths;
    for (const fs::directory_entry& entry : fs::directory_iterator(sourceTree / folder))
        if (entry.path().extension() == extension) paths.push_back(entry.path());
    std::ranges::sort(paths);
    return paths;
}

TEST(CommandLineTool, SaysWhatThePagesOfTheDocumentationSay) {
    size_t count = 0;
    std::vector<fs::path> pages = filesIn("docs", ".md");
    pages.push_back(sourceTree / "README.md");
    for (const fs::path& page : pages) {
        for (const Case& example : readExamples(page)) {
            SCOPED_TRACE(page.filename().string() + "\n" + example.command);
            runCase(example);
            ++count;
        }
    }
    EXPECT_GT(count, 10u);
}

TEST(CommandLineTool, SaysWhatItsTranscriptsSay) {
    size_t count = 0;
    for (const fs::path& path : filesIn("tests/tool", ".transcript")) {
        for (const Case& expected : readTranscript(path)) {
            SCOPED_TRACE(path.filename().string() + ": " + expected.title + "\n$ " + expected.command);
            runCase(expected);
            ++count;
        }
    }
    EXPECT_GT(count, 0u);
    RecordProperty("cases", static_cast<int>(count));
}

}  // namespace

#else

TEST(CommandLineTool, SaysWhatItsTranscriptsSay) {
    GTEST_SKIP() << "the command-line tool was not built";
}

#endif
