// What the documentation shows is tried: its programs are built, its output is compared, its commands are run, and the
// files it names are there.
//
//   ```cpp          a part of the program of the page, which is in examples/
//   ```output       what that program prints, together with the other such blocks of the page
//   ```cmake        a part of tests/consumer/CMakeLists.txt, which is built against the installed library
//       $ ...       run by tool_transcript_test.cpp, with what it says
//       cmake ...   run by tests/consumer/page_commands.sh
//
// Other indented lines are figures, or commands whose parts are looked up here. A block of a kind that nothing tries fails.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "regexp/regexp.h"

namespace corvane_tests {
namespace {

namespace fs = std::filesystem;

const fs::path kTop = CORVANE_TEST_DATA_DIR "/../..";

/// The pages with C++ in them, and the program that has it.
const std::map<std::string, std::string> kPrograms = {
    {"README.md", "find_all"},        {"docs/builder.md", "builder"},         {"docs/embedding.md", "faster"},
    {"docs/host.md", "own_host"},     {"docs/replacement.md", "replace"},     {"docs/seeing-inside.md", "seeing_inside"}};

std::string contentOf(const fs::path& file) {
    std::ifstream in(kTop / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
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

struct Block {
    std::string kind;  // what stands behind the ```; "indented" without them
    std::vector<std::string> lines;

    std::string text() const {
        std::string all;
        for (const std::string& line : lines) {
            all += line + '\n';
        }
        return all;
    }
};

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

/// What it prints; nothing when it fails.
std::optional<std::string> outputOf(const std::string& command) {
    FILE* const pipe = popen(command.c_str(), "r");
    std::string printed;
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;) {
        printed += static_cast<char>(c);
    }
    const int status = pclose(pipe);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? std::optional(printed) : std::nullopt;
}

bool namesATest(const std::string& filter) {
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    const std::regex pattern(std::regex_replace(filter, std::regex("\\*"), ".*"));
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int k = 0; k < suite.total_test_count(); ++k) {
            if (std::regex_match(suite.name() + std::string(".") + suite.GetTestInfo(k)->name(), pattern)) {
                return true;
            }
        }
    }
    return false;
}

/// Whether the line says what the engine, the tool or the build would be told: it must be tried then.
std::optional<bool> isTried(const std::string& line) {
    std::smatch found;
    if (std::regex_search(line, found, std::regex("^(\\$|cmake) "))) {
        return true;  // run, see above
    }
    if (std::regex_search(line, found, std::regex("^\\./dev (\\w+)"))) {
        return contentOf("dev").find("\n  " + found[1].str() + " ") != std::string::npos;
    }
    if (std::regex_search(line, found, std::regex("corvane_tests --gtest_filter='([^']+)'"))) {
        return namesATest(found[1]);
    }
    if (std::regex_search(line, found, std::regex("^cvregexp ([a-z]+)(?:\\|([a-z]+))*"))) {
        const std::string commands = contentOf("tools/command_table.cpp");
        return std::ranges::all_of(found, [&](const std::ssub_match& name) {
            return &name == &found[0] || !name.matched || commands.find('"' + name.str() + '"') != std::string::npos;
        });
    }
    const bool isCode = std::regex_search(line, std::regex("^(cvregexp (?!--)|[A-Z_]+=|\\.{0,2}/|build/|#include)|[;{]$"));
    return isCode ? std::optional(false) : std::nullopt;
}

void expectTried(const std::string& page, const Block& block) {
    if (block.kind == "cpp" || block.kind == "output") {
        EXPECT_TRUE(kPrograms.contains(page)) << "no program has this:\n" << block.text();
    } else if (block.kind == "cmake") {
        EXPECT_NE(std::string::npos, contentOf("tests/consumer/CMakeLists.txt").find(block.text())) << block.text();
    } else if (block.kind != "indented") {
        ADD_FAILURE() << "nothing tries blocks of this kind: " << block.kind;
    } else if (!block.lines.front().starts_with("$ ")) {
        for (const std::string& line : block.lines) {
            EXPECT_TRUE(isTried(line).value_or(true)) << line;
        }
    }
}

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
        EXPECT_EQ(output, outputOf(CORVANE_EXAMPLE_PATH "/example_" + name));
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
                EXPECT_TRUE(std::ranges::any_of(said, [&](const std::string& start) { return line.starts_with(start); }))
                    << line;
                ++shown;
            }
        }
    }
    EXPECT_GT(shown, 10);
}

TEST(Pages, ShowTheLabelsOfTheGraph) {
    const std::string graph = RE_Tree(u"(\\w+) (?:Holmes|Watson)", false).graph();
    const std::regex label("(?:^|--> )([A-Z][^-]*?)(?= {2}| --item|$)");
    int labels = 0;
    for (const Block& block : blocksOf("README.md")) {
        const bool isFigure = block.lines.front().starts_with("pattern ");
        for (std::string line : isFigure ? block.lines : std::vector<std::string>()) {
            line.erase(0, line.starts_with("graph") ? 5 : 0);
            line.erase(0, line.find_first_not_of(' '));
            for (std::sregex_iterator it(line.begin(), line.end(), label), end; it != end; ++it, ++labels) {
                std::string name = std::regex_replace((*it)[1].str(), std::regex("\\\\"), "\\\\");
                EXPECT_NE(std::string::npos, graph.find(name)) << name << "\n" << graph;
            }
        }
    }
    EXPECT_EQ(8, labels);
}

TEST(Pages, NameFilesThatAreThere) {
    const std::regex path("\\b(?:host|regexp|tests|tools|fuzz|examples|bench|cmake|docs)/[\\w./-]*\\w\\.(?:h|cpp|md|txt|cmake)\\b");
    for (const std::string& page : pages()) {
        const std::string text = contentOf(page);
        for (std::sregex_iterator it(text.begin(), text.end(), path), end; it != end; ++it) {
            const std::string name = it->str();
            const bool isPattern = name.find("NAME") != std::string::npos;
            EXPECT_TRUE(isPattern || fs::exists(kTop / name)) << page << ": " << name;
        }
    }
}

}  // namespace
}  // namespace corvane_tests
