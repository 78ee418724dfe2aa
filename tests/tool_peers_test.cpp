// The lines that `cvregexp match` selects beside those of grep and ripgrep: random patterns of what the three have in
// common, random lines, random options. Skipped where the peers are missing. CORVANE_TOOL_PEER_RUNS sets how many.
#include "tests/support/command.h"
#include "tests/support/list_random.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#ifdef CORVANE_TOOL_PATH

namespace {

namespace fs = std::filesystem;

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " > /dev/null 2>&1").c_str()) == 0;
}

/// What a command prints; its status in the last line, as 0 or 1 and more.
std::string answerOf(const std::string& command) {
    const corvane_tests::CommandResult result = corvane_tests::runCommand("LC_ALL=C.UTF-8; export LC_ALL; " + command);
    return result.output + "status " + std::to_string(result.status) + "\n";
}

std::string randomLines(corvane_tests::ListRandom& random) {
    static const std::string pieces[] = {"a", "b",        "ab",           "c", "A", " ", "-", "_",
                                         "1", "\xC3\xA9", "\xE2\x82\xAC", "\""};
    std::string text;
    for (std::size_t line = random.below(40) + 1; line != 0; --line) {
        for (std::size_t piece = random.below(8); piece != 0; --piece) text += random.of(pieces);
        text += '\n';
    }
    return text;
}

std::string randomAtom(corvane_tests::ListRandom& random, int depth);

// Of what means the same to extended expressions of grep, to ripgrep and here.
std::string randomPattern(corvane_tests::ListRandom& random, int depth) {
    std::string pattern;
    for (std::size_t items = random.below(3) + 1; items != 0; --items) {
        static const std::string quantifiers[] = {"", "", "", "*", "+", "?", "{2}", "{1,2}"};
        pattern += randomAtom(random, depth) + random.of(quantifiers);
    }
    return random.below(4) == 0 ? pattern + "|" + randomAtom(random, depth) : pattern;
}

std::string randomAtom(corvane_tests::ListRandom& random, int depth) {
    static const std::string atoms[] = {"a",    "b",     "c", "ab", ".",        "[ab]",
                                        "[^a]", "[^b ]", "-", " ",  "\xC3\xA9", "[a-c]"};
    if (depth > 0 && random.below(4) == 0) return "(" + randomPattern(random, depth - 1) + ")";
    return random.of(atoms);
}

struct Options {
    std::string common;
    std::string pattern;  // with anchors
};

Options randomOptions(corvane_tests::ListRandom& random) {
    static const std::string modes[] = {"", "", "-i ", "-v ", "-x ", "-w "};
    static const std::string forms[] = {"-n ", "-c ", "-b ", "-n -C1 ", "-n -A2 ", "-B1 ", "-n -m2 ", "-q "};
    Options options{random.of(modes) + random.of(forms), randomPattern(random, 2)};
    if (random.below(6) == 0) options.pattern = "^" + randomAtom(random, 1);
    if (random.below(6) == 0) options.pattern = randomAtom(random, 1) + "$";
    // About words of no letters the peers do not agree.
    if (options.common.starts_with("-w")) std::erase_if(options.pattern, [](char c) { return c == '*' || c == '?'; });
    return options;
}

TEST(CommandLineTool, SelectsTheLinesThatItsPeersSelect) {
    const bool hasGrep = isInstalled("grep");
    const bool hasRipgrep = isInstalled("rg");
    if (!hasGrep && !hasRipgrep) GTEST_SKIP() << "neither grep nor ripgrep is installed";
    const char* const wanted = std::getenv("CORVANE_TOOL_PEER_RUNS");
    const int runs = wanted != nullptr ? std::atoi(wanted) : 150;
    std::string folder = (fs::temp_directory_path() / "corvane-peers-XXXXXX").string();
    ASSERT_NE(::mkdtemp(folder.data()), nullptr);
    const std::string file = folder + "/lines";
    const std::string pattern = folder + "/pattern";
    const unsigned seed = 20261122;
    corvane_tests::ListRandom random(seed);
    for (int run = 0; run != runs && !::testing::Test::HasFailure(); ++run) {
        const std::string text = randomLines(random);
        std::ofstream(file, std::ios::binary) << text;
        const Options options = randomOptions(random);
        std::ofstream(pattern, std::ios::binary) << options.pattern << '\n';
        const std::string arguments = options.common + "-f " + pattern + " " + file;
        SCOPED_TRACE("run " + std::to_string(run) + ": " + options.common + options.pattern + "\n" + text);
        const std::string ours = answerOf("'" CORVANE_TOOL_PATH "' match " + arguments);
        // A shorter match at the same place may be a whole word: grep looks for one, as do we, by another order of choice.
        if (hasGrep) {
            EXPECT_EQ(answerOf("grep -E " + arguments), ours);
        }
        // Of a file without a match ripgrep prints no count.
        if (hasRipgrep && options.common.find("-c") == std::string::npos) {
            EXPECT_EQ(answerOf("rg --no-config -N --color never " + arguments +
                               (options.common.find("-n") != std::string::npos ? " -n" : "")),
                      ours);
        }
    }
    fs::remove_all(folder);
}

}  // namespace

#endif
