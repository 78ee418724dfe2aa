// Patches of `cvregexp replace` through `patch`: random files, random replacements. The patch of --dry-run makes of the old
// files what --in-place makes of them, and what --save-patch keeps makes the old files again. Skipped where `patch` is
// missing. CORVANE_TOOL_PATCH_RUNS sets how many.
#include "tests/support/list_random.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#ifdef CORVANE_TOOL_PATH

namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

// Few different lines, so that patches have to find the right ones; with ends of all kinds, or none.
std::string randomContent(corvane_tests::ListRandom& random) {
    static const std::string lines[] = {"a",     "b",  "ab",         "",    "-- a", "++ b", "@@ -1 +1 @@", "a b\r",
                                        "\\ No", "aa", "\xC3\xA9 a", "bab", "b b",  "c",    "d d d",       "- x"};
    std::string content;
    for (size_t left = random.below(random.below(3) == 0 ? 4 : 60); left != 0; --left)
        content += random.of(lines) + '\n';
    if (!content.empty() && random.below(3) == 0) content.pop_back();
    return content;
}

Files randomFiles(corvane_tests::ListRandom& random) {
    static const std::string names[] = {"x",        "d/y", "d/e/z z", "d/\"q\"", "d/caf\xC3\xA9", "d/back\\slash",
                                        "tab\there"};
    Files files;
    for (const std::string& name : names)
        if (random.below(3) != 0) files[name] = randomContent(random);
    return files;
}

void write(const fs::path& folder, const Files& files) {
    fs::remove_all(folder);
    fs::create_directories(folder);
    for (const auto& [name, content] : files) {
        fs::create_directories((folder / name).parent_path());
        std::ofstream(folder / name, std::ios::binary) << content;
    }
}

Files read(const fs::path& folder) {
    Files files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        files[fs::relative(entry.path(), folder).string()] = {std::istreambuf_iterator<char>(in), {}};
    }
    return files;
}

int run(const fs::path& folder, const std::string& command) {
    return std::system(("cd '" + folder.string() + "' && { " + command + "; } > ../said 2>&1").c_str());
}

TEST(CommandLineTool, WritesPatchesThatLeadThereAndBack) {
    if (std::system("command -v patch > /dev/null") != 0) GTEST_SKIP() << "patch is not installed";
    const char* const wanted = std::getenv("CORVANE_TOOL_PATCH_RUNS");
    const int runs = wanted != nullptr ? std::atoi(wanted) : 60;
    static const std::string patterns[] = {"a",  "b\\n", "\\n",    "(a)(.*\\n)b", "^.",
                                           ".+", "a$",   "\\n\\n", "b|c",         "(?i)[^\\n]*\\z"};
    static const std::string texts[] = {"", "x", "\\n", "$0$0", "a\\n$0", "<$0>\\n", "b"};
    std::string root = (fs::temp_directory_path() / "corvane-patch-XXXXXX").string();
    ASSERT_NE(::mkdtemp(root.data()), nullptr);
    const fs::path folder = fs::path(root) / "tree";
    corvane_tests::ListRandom random(20261123);
    for (int round = 0; round != runs && !::testing::Test::HasFailure(); ++round) {
        const Files before = randomFiles(random);
        const std::string& pattern = random.of(patterns);
        const std::string& text = random.of(texts);
        SCOPED_TRACE("round " + std::to_string(round) + ": " + pattern + " -> " + text);
        const std::string replace = "'" CORVANE_TOOL_PATH "' replace -r " +
                                    std::string(random.below(2) == 0 ? "" : "--which 2 ") + "'" + pattern + "' '" +
                                    text + "' ";
        write(folder, before);
        run(folder, replace + "--in-place --save-patch ../undo");
        const Files after = read(folder);
        if (after != before) {
            EXPECT_EQ(run(folder, "patch -s -R -p1 < ../undo"), 0);
        }
        EXPECT_EQ(before, read(folder));
        write(folder, before);
        EXPECT_EQ(run(folder, replace + "--dry-run > ../forth; patch -s -p1 < ../forth"), 0);
        EXPECT_EQ(after, read(folder));
        fs::remove(fs::path(root) / "undo");
    }
    fs::remove_all(root);
}

// Whenever it comes, and also the second one, which ends the program at once: each file is as it was or as it was to be,
// there is no other, and the patch leads back from what was done.
TEST(CommandLineTool, LeavesWholeFilesWhenASignalEndsIt) {
    std::string root = (fs::temp_directory_path() / "corvane-signal-XXXXXX").string();
    ASSERT_NE(::mkdtemp(root.data()), nullptr);
    const fs::path folder = fs::path(root) / "tree";
    Files before;
    std::string content;
    for (int line = 0; line != 2000; ++line) content += "line with a cat\n";
    for (int file = 0; file != 60; ++file) before["f" + std::to_string(file)] = content;
    std::string changed = content;
    for (size_t at; (at = changed.find("cat")) != std::string::npos;) changed.replace(at, 3, "dog");
    const bool hasPatch = std::system("command -v patch > /dev/null") == 0;
    for (const char* const delay : {"0.01", "0.03", "0.06", "0.1", "0.2"}) {
        write(folder, before);
        run(folder, "'" CORVANE_TOOL_PATH "' replace -r --in-place --save-patch ../undo cat dog & sleep " +
                        std::string(delay) + "; kill -TERM $!; kill -TERM $!; wait $!; true");
        const Files after = read(folder);
        EXPECT_EQ(before.size(), after.size());
        for (const auto& [name, now] : after) EXPECT_TRUE(now == content || now == changed) << name;
        if (hasPatch && after != before) {
            // The last change may be in the patch and not in the tree: patch says so, and goes on.
            run(folder, "patch -s -R -N -p1 -r - < ../undo");
            EXPECT_EQ(before, read(folder)) << delay;
        }
        fs::remove(fs::path(root) / "undo");
    }
    fs::remove_all(root);
}

}  // namespace

#endif
