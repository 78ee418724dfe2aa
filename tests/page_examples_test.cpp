// What the documentation shows is tried: its programs are built, its output is compared, its commands are run, and the
// files it names are there.
//
//   ```cpp          a part of the program of the page, which is in examples/
//   ```output       what that program prints, together with the other such blocks of the page
//   ```cmake        a part of a project in tests/consumer, each of which a test of its own configures
//       $ ...       run by tool_transcript_test.cpp, with what it says
//       cmake ...   run by tests/consumer/page_commands.sh
//
// Other indented lines are figures, or commands whose parts are looked up here. A block of a kind that nothing tries
// fails. Pages are scanned with plain string functions: g++ 12 warns falsely of std::regex under the sanitizers.
#include "tests/support/command.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "regexp/regexp.h"

namespace corvane_tests {
namespace {

namespace fs = std::filesystem;

const fs::path kTop = CORVANE_TEST_DATA_DIR "/../..";

/// The pages with C++ in them, and the program that has it.
const std::map<std::string, std::string> kPrograms = {{"README.md", "find_all"},
                                                      {"docs/builder.md", "builder"},
                                                      {"docs/embedding.md", "faster"},
                                                      {"docs/host.md", "own_host"},
                                                      {"docs/pattern-sets.md", "pattern_set"},
                                                      {"docs/replacement.md", "replace"},
                                                      {"docs/seeing-inside.md", "seeing_inside"},
                                                      {"docs/text.md", "text"}};

std::string contentOf(const fs::path& file) {
    std::ifstream in(kTop / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// All projects that use the library as applications do.
std::string consumerProjects() {
    std::string all;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kTop / "tests/consumer")) {
        if (entry.path().filename() == "CMakeLists.txt") {
            all += contentOf(fs::relative(entry.path(), kTop));
        }
    }
    return all;
}

std::vector<std::string> pages() {
    std::vector<std::string> names{"README.md", "CONTRIBUTING.md"};
    for (const fs::directory_entry& entry : fs::directory_iterator(kTop / "docs")) {
        if (entry.path().extension() == ".md") {
            names.push_back("docs/" + entry.path().filename().string());
        }
    }
    std::ranges::sort(names);
    return names;
}

/// A stretch of a page that is set as code.
struct Block {
    std::string kind;  // the word after the ```; "indented" without them
    std::vector<std::string> lines;

    std::string text() const {
        std::string all;
        for (const std::string& line : lines) {
            all += line + '\n';
        }
        return all;
    }
};

/// The fenced and the indented blocks in their order. An indented block begins after an empty line only: elsewhere
/// indented lines continue an item of a list.
std::vector<Block> blocksOf(const std::string& page) {
    std::vector<Block> blocks;
    bool fenced = false, open = false;
    std::string before;
    std::ifstream in(kTop / page);
    for (std::string line; std::getline(in, line); before = line) {
        if (line.starts_with("```")) {
            fenced = !fenced;
            open = false;
            if (fenced) {
                blocks.push_back({line.substr(3), {}});
            }
        } else if (fenced) {
            blocks.back().lines.push_back(line);
        } else if (line.starts_with("    ") && (open || before.empty())) {
            if (!open) {
                blocks.push_back({"indented", {}});
            }
            open = true;
            blocks.back().lines.push_back(line.substr(4));
        } else {
            open = open && line.empty();
        }
    }
    return blocks;
}

/// What the command prints; nothing when it fails.
std::optional<std::string> printedBy(const std::string& command) {
    const CommandResult result = runCommand(command);
    return result.status == 0 ? std::optional(result.output) : std::nullopt;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isLowerCase(char c) {
    return c >= 'a' && c <= 'z';
}
bool isUpperCase(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isWordCharacter(char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

/// The longest beginning of the text whose characters pass the test.
template <class Test>
std::string_view takeWhile(std::string_view text, Test test) {
    const auto end = std::ranges::find_if_not(text, test);
    return text.substr(0, static_cast<size_t>(end - text.begin()));
}

/// Whether the name matches the filter, in which a star stands for any text.
bool matchesFilter(std::string_view name, std::string_view filter) {
    const size_t star = filter.find('*');
    if (star == filter.npos) {
        return name == filter;
    }
    if (!name.starts_with(filter.substr(0, star))) {
        return false;
    }
    for (size_t at = star; at <= name.size(); ++at) {
        if (matchesFilter(name.substr(at), filter.substr(star + 1))) {
            return true;
        }
    }
    return false;
}

bool namesATest(std::string_view filter) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int k = 0; k < suite.total_test_count(); ++k) {
            if (matchesFilter(suite.name() + std::string(".") + suite.GetTestInfo(k)->name(), filter)) {
                return true;
            }
        }
    }
    return false;
}

/// Whether every command of a list like "match|replace" is in the table of the tool.
bool namesCommands(std::string_view list) {
    const std::string table = contentOf("tools/command_table.cpp");
    for (;;) {
        const std::string_view name = takeWhile(list, isLowerCase);
        if (table.find('"' + std::string(name) + '"') == std::string::npos) {
            return false;
        }
        list.remove_prefix(name.size());
        if (!list.starts_with('|') || list.size() == 1 || !isLowerCase(list[1])) {
            return true;
        }
        list.remove_prefix(1);
    }
}

/// Whether the line looks like something that a shell, a compiler or CMake would be given.
bool isCode(std::string_view line) {
    const std::string_view variable = takeWhile(line, [](char c) { return isUpperCase(c) || c == '_'; });
    const bool setsVariable = !variable.empty() && line.substr(variable.size()).starts_with('=');
    const bool callsTool = line.starts_with("cvregexp ") && !line.starts_with("cvregexp --");
    const bool isPath =
        line.starts_with("/") || line.starts_with("./") || line.starts_with("../") || line.starts_with("build/");
    return setsVariable || callsTool || isPath || line.starts_with("#include") || line.ends_with(';') ||
           line.ends_with('{');
}

/// Nothing for a line of a figure. For one that somebody might type: whether it is run by a test, or what it names is
/// known to be there.
std::optional<bool> isTried(std::string_view line) {
    constexpr std::string_view script = "./dev ", tool = "cvregexp ", filter = "corvane_tests --gtest_filter='";
    if (line.starts_with("$ ") || line.starts_with("cmake ")) {
        return true;  // run, see above
    }
    if (line.starts_with(script) && line.size() > script.size() && isWordCharacter(line[script.size()])) {
        const std::string_view task = takeWhile(line.substr(script.size()), isWordCharacter);
        return contentOf("dev").find("\n  " + std::string(task) + " ") != std::string::npos;
    }
    if (const size_t at = line.find(filter); at != line.npos) {
        return namesATest(takeWhile(line.substr(at + filter.size()), [](char c) { return c != '\''; }));
    }
    if (line.starts_with(tool) && line.size() > tool.size() && isLowerCase(line[tool.size()])) {
        return namesCommands(line.substr(tool.size()));
    }
    return isCode(line) ? std::optional(false) : std::nullopt;
}

void expectTried(const std::string& page, const Block& block) {
    if (block.kind == "cpp" || block.kind == "output") {
        EXPECT_TRUE(kPrograms.contains(page)) << "no program has this:\n" << block.text();
    } else if (block.kind == "cmake") {
        EXPECT_NE(std::string::npos, consumerProjects().find(block.text())) << block.text();
    } else if (block.kind != "indented") {
        ADD_FAILURE() << "nothing tries blocks of this kind: " << block.kind;
    } else if (!block.lines.front().starts_with("$ ")) {
        for (const std::string& line : block.lines) {
            EXPECT_TRUE(isTried(line).value_or(true)) << line;
        }
    }
}

// The counts at the end keep the test from passing because no block was found.
TEST(Pages, ShowNothingThatIsNotTried) {
    std::map<std::string, int> kinds;
    for (const std::string& page : pages()) {
        SCOPED_TRACE(page);
        for (const Block& block : blocksOf(page)) {
            expectTried(page, block);
            ++kinds[block.kind];
        }
    }
    EXPECT_GT(kinds["cpp"], 10);
    EXPECT_GT(kinds["cmake"], 0);
    EXPECT_GT(kinds["indented"], 20);
}

TEST(Pages, ShowProgramsAsTheyAreBuiltAndWhatThesePrint) {
    for (const auto& [page, name] : kPrograms) {
        SCOPED_TRACE(page);
        const std::string program = contentOf("examples/" + name + ".cpp");
        std::string output;
        for (const Block& block : blocksOf(page)) {
            EXPECT_TRUE(block.kind != "cpp" || program.find(block.text()) != std::string::npos) << block.text();
            output += block.kind == "output" ? block.text() : "";
        }
        EXPECT_EQ(output, printedBy(CORVANE_EXAMPLE_PATH "/example_" + name));
    }
}

// The remarks on the right of its lines are the page's own.
TEST(Pages, ShowWhatTheEmbeddedHostSays) {
    std::vector<std::string> said;
    std::ifstream in(kTop / "examples/embedded_host/expected.txt");
    for (std::string line; std::getline(in, line);) {
        said.push_back(line);
    }
    int shown = 0;
    for (const Block& block : blocksOf("docs/embedding.md")) {
        for (const std::string& line : block.lines) {
            if (block.lines.front().starts_with("pattern ")) {
                const auto isStart = [&line](const std::string& start) { return line.starts_with(start); };
                EXPECT_TRUE(std::ranges::any_of(said, isStart)) << line;
                ++shown;
            }
        }
    }
    EXPECT_GT(shown, 10);
}

/// The labels of nodes in a line of a figure: at its start and after each arrow, in front of a remark, an arrow or the
/// line's end. In a graph backslashes are doubled.
std::vector<std::string> labelsIn(std::string_view line) {
    constexpr std::string_view arrow = "--> ";
    std::vector<std::string> labels;
    for (;;) {
        if (!line.empty() && isUpperCase(line[0])) {
            std::string& label = labels.emplace_back();
            for (const char c : line.substr(0, std::min(line.find("  "), line.find(" --item")))) {
                label += c == '\\' ? std::string(2, c) : std::string(1, c);
            }
        }
        const size_t next = line.find(arrow);
        if (next == line.npos) {
            return labels;
        }
        line.remove_prefix(next + arrow.size());
    }
}

// The figure at the top of README.md is drawn by hand; its nodes have to be those of the pattern that it shows.
TEST(Pages, ShowTheLabelsOfTheGraph) {
    const std::string graph = RE_Tree(u"(\\w+) (?:Holmes|Watson)", false).graph();
    int labels = 0;
    for (const Block& block : blocksOf("README.md")) {
        const bool isFigure = block.lines.front().starts_with("pattern ");
        for (std::string line : isFigure ? block.lines : std::vector<std::string>()) {
            line.erase(0, line.starts_with("graph") ? 5 : 0);
            line.erase(0, line.find_first_not_of(' '));
            for (const std::string& label : labelsIn(line)) {
                EXPECT_NE(std::string::npos, graph.find(label)) << label << "\n" << graph;
                ++labels;
            }
        }
    }
    EXPECT_EQ(8, labels);
}

/// The file of this tree that the text begins with, as far as its path has the characters of one; empty without one.
std::string_view fileNameAt(std::string_view text) {
    static constexpr std::string_view folders[] = {"host/",     "regexp/", "tests/", "tools/", "fuzz/",
                                                   "examples/", "bench/",  "cmake/", "docs/"};
    static constexpr std::string_view endings[] = {".h", ".cpp", ".md", ".txt", ".cmake"};
    if (std::ranges::none_of(folders, [text](std::string_view folder) { return text.starts_with(folder); })) {
        return {};
    }
    const auto isPathCharacter = [](char c) { return isWordCharacter(c) || c == '.' || c == '/' || c == '-'; };
    for (std::string_view name = takeWhile(text, isPathCharacter); !name.empty(); name.remove_suffix(1)) {
        const bool isCut = name.size() < text.size() && isWordCharacter(text[name.size()]);
        const bool isFile = std::ranges::any_of(endings, [name](std::string_view ending) {
            return name.ends_with(ending) && isWordCharacter(name[name.size() - ending.size() - 1]);
        });
        if (isFile && !isCut) {
            return name;
        }
    }
    return {};
}

// Pages mention files in running text; one that was moved is found here. NAME is a placeholder.
TEST(Pages, NameFilesThatAreThere) {
    size_t named = 0;
    for (const std::string& page : pages()) {
        const std::string text = contentOf(page);
        for (size_t at = 0; at < text.size();) {
            const bool isInWord = at > 0 && isWordCharacter(text[at - 1]);
            const std::string_view name = isInWord ? std::string_view() : fileNameAt(std::string_view(text).substr(at));
            const bool isPattern = name.find("NAME") != name.npos;
            EXPECT_TRUE(name.empty() || isPattern || fs::exists(kTop / name)) << page << ": " << name;
            named += name.empty() ? 0 : 1;
            at += std::max<size_t>(name.size(), 1);
        }
    }
    EXPECT_GT(named, 100U);
}

}  // namespace
}  // namespace corvane_tests
