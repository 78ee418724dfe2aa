// What the tool shows on a terminal and nowhere else: hints, colours and the progress line. `script` makes the terminal.
// Skipped where it is missing.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#ifdef CORVANE_TOOL_PATH

namespace {

namespace fs = std::filesystem;

class Terminal : public testing::Test {
protected:
    void SetUp() override {
        if (std::system("script -qec true /dev/null < /dev/null > /dev/null 2>&1") != 0)
            GTEST_SKIP() << "script is not installed, or of another kind";
        std::string name = (fs::temp_directory_path() / "corvane-terminal-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder = name;
        std::ofstream(folder / "text") << "the cat\n";
    }
    void TearDown() override {
        if (!folder.empty()) fs::remove_all(folder);
    }

    /// What a terminal gets from the tool, or with pipes on both channels what these get. `before` is a command in front of
    /// it, such as one that feeds it.
    std::string shown(const std::string& arguments, bool onTerminal, const std::string& before = "") const {
        std::ofstream(folder / "command") << "unset NO_COLOR\nTERM=xterm; export TERM\n"
                                          << before << "'" CORVANE_TOOL_PATH "' " << arguments << '\n';
        const std::string run = onTerminal ? "script -qec 'sh ./command' /dev/null" : "sh ./command 2>&1 | cat";
        const std::string whole = "cd '" + folder.string() + "' && " + run + " < /dev/null > said";
        static_cast<void>(std::system(whole.c_str()));
        std::ifstream in(folder / "said", std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    fs::path folder;
};

TEST_F(Terminal, ShowsHintsColoursAndProgressThatPipesDoNotGet) {
    struct Case {
        const char* what;
        std::string arguments;
        const char* sign;
    };
    const Case cases[] = {
        {"hints of match", "match '\\bcat' text", "hint at column 1"},
        {"hints of replace, of both texts", "replace '(c)at' '\\1' text", "hint at column 1"},
        {"colours of matches", "match cat text", "\033[1;31mcat\033[0m"},
        {"colours of names and numbers", "match -nH cat text", "\033[35mtext\033[0m"},
    };
    for (const Case& one : cases) {
        EXPECT_NE(std::string::npos, shown(one.arguments, true).find(one.sign)) << one.what;
        EXPECT_EQ(std::string::npos, shown(one.arguments, false).find(one.sign)) << one.what;
        EXPECT_EQ(std::string::npos, shown(one.arguments, false).find('\033')) << one.what;
    }
}

// The line waits half a second, so the input has to last longer; it is there only while the terminal shows nothing else.
TEST_F(Terminal, ShowsHowFarALongSearchHasCome) {
    const std::string slowly = "for i in 1 2 3 4 5 6 7 8; do cat text; sleep 0.2; done | ";
    const std::string seen = shown("match dog > found", true, slowly);
    EXPECT_NE(std::string::npos, seen.find("MB/s")) << seen;
    EXPECT_TRUE(seen.ends_with("\r\033[K")) << "the line is not taken away: " << seen;
    EXPECT_EQ("", shown("match dog > found", false, slowly));
}

}  // namespace

#endif
