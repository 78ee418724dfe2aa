// The examples in the documentation are those that are built: each ```cpp block of a page stands in a program of
// examples/, and the ```output blocks together are what the program prints.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

namespace corvane_tests {
namespace {

std::string fileText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct Page {
    const char* path;
    const char* program;
};

class PageExamples : public testing::TestWithParam<Page> {};

TEST_P(PageExamples, AreBuiltAsTheyStandAndPrintWhatThePageSays) {
    const std::string root = std::string(CORVANE_TEST_DATA_DIR) + "/../../";
    const std::string program = fileText(root + "examples/" + GetParam().program + ".cpp");
    std::istringstream page(fileText(root + GetParam().path));
    std::string output, block, kind;
    size_t quoted = 0;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("```")) {
            block += line + "\n";
            continue;
        }
        if (kind == "```cpp") {
            ++quoted;
            EXPECT_NE(std::string::npos, program.find(block)) << block;
        } else if (kind == "```output") {
            output += block;
        }
        kind = kind.empty() ? line : "";
        block.clear();
    }
    EXPECT_GT(quoted, 0u);
    const std::string command = std::string(CORVANE_EXAMPLE_PATH) + "/example_" + GetParam().program;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string printed;
    for (int c = 0; (c = std::fgetc(pipe.get())) != EOF;) {
        printed += static_cast<char>(c);
    }
    EXPECT_EQ(output, printed);
}

INSTANTIATE_TEST_SUITE_P(All, PageExamples,
                         testing::Values(Page{"docs/builder.md", "builder"}, Page{"README.md", "find_all"}));

}  // namespace
}  // namespace corvane_tests
