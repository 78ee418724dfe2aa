// The examples in the documentation are those that are built: each ```cpp block of a page stands in a program of
// examples/, and the ```output blocks together are what the program prints.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace corvane_tests {
namespace {

std::ifstream opened(const std::string& path) {
    return std::ifstream(CORVANE_TEST_DATA_DIR "/../../" + path);
}

void expectBuiltAsItStands(const std::string& path, const std::string& name) {
    std::ifstream page = opened(path), source = opened("examples/" + name + ".cpp");
    const std::string program{std::istreambuf_iterator<char>(source), {}};
    std::string output, block, kind;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("```")) {
            block += line + "\n";
            continue;
        }
        EXPECT_TRUE(kind != "```cpp" || program.find(block) != program.npos) << path << ":\n" << block;
        output += kind == "```output" ? block : "";
        kind = kind.empty() ? line : "";
        block.clear();
    }
    std::string command = CORVANE_EXAMPLE_PATH "/example_";
    command += name;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string printed;
    for (int c = 0; (c = std::fgetc(pipe.get())) != EOF;) {
        printed += static_cast<char>(c);
    }
    EXPECT_FALSE(printed.empty());
    EXPECT_EQ(output, printed);
}

TEST(PageExamples, AreBuiltAsTheyStandAndPrintWhatThePageSays) {
    expectBuiltAsItStands("README.md", "find_all");
    expectBuiltAsItStands("docs/builder.md", "builder");
    expectBuiltAsItStands("docs/seeing-inside.md", "seeing_inside");
    expectBuiltAsItStands("docs/replacement.md", "replace");
}

}  // namespace
}  // namespace corvane_tests
