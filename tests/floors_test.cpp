// The folders of the engine are floors: a file includes files of its own floor and of those below it, never of one above.
//
// The list is the map of the house. A new folder gets its place here.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace corvane_tests {
namespace {

namespace fs = std::filesystem;

/// From the ground up.
const std::vector<std::string> kFloors = {
    "host",                     // what the application supplies
    "regexp/base",              // memory, flags, sizes
    "regexp/units",             // sets of units, case, likelihood
    "regexp/seek",              // vector scans and finders: units and pointers only
    "regexp/graph",             // the protocol of nodes, and what is known of a finished graph
    "regexp/state",             // what changes while a pattern is searched
    "regexp/options",           // compile options
    "regexp/eval",              // the host's context, warnings, evaluation values
    "regexp/nodes",             // the node classes
    "regexp/parser",            // from text to graph
    "regexp/analysis",          // from graph to facts
    "regexp/passes",            // from graph to graph, by facts
    "regexp/program",           // from graph to flat instructions
    "regexp/dfa",               // from graph to automaton
    "regexp/machine",           // from program to machine code
    "regexp/search",            // from start to start, by the fastest means
    "regexp",                   // the compiled pattern and its searches: the public interface
    "regexp/builder",           // patterns as values
    "regexp/replace",           // replacement texts
    "regexp/eval/expressions",  // expressions of the host, which are read as replacement texts
    "regexp/translate",         // quoting and wildcards
    "regexp/inspect",           // growth, outlines and hints
    "regexp/text",              // text in other encodings
    "host/adapters",            // what the default host makes of the engine's own interfaces
};

/// The header that includes the whole interface stands above all floors.
const std::string kUmbrella = "regexp/regexp.h";

size_t floorOf(const std::string& file) {
    if (file == kUmbrella) {
        return kFloors.size();
    }
    const std::string folder = fs::path(file).parent_path().generic_string();
    return static_cast<size_t>(std::find(kFloors.begin(), kFloors.end(), folder) - kFloors.begin());
}

/// The files of the project that a file includes, by their names from the root.
std::vector<std::string> includesOf(const fs::path& path) {
    std::vector<std::string> found;
    std::ifstream in(path);
    const std::string opening = "#include \"";
    for (std::string line; std::getline(in, line);) {
        const size_t end = line.rfind('"');
        if (line.starts_with(opening) && end > opening.size()) {
            found.push_back(line.substr(opening.size(), end - opening.size()));
        }
    }
    return found;
}

TEST(Floors, IncludeNothingFromAbove) {
    const fs::path root(CORVANE_SOURCE_DIR);
    size_t files = 0;
    for (const char* part : {"host", "regexp"}) {
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / part)) {
            const std::string file = entry.path().lexically_relative(root).generic_string();
            if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") {
                continue;
            }
            ++files;
            ASSERT_TRUE(file == kUmbrella || floorOf(file) < kFloors.size()) << file << " is on no floor";
            for (const std::string& included : includesOf(entry.path())) {
                EXPECT_LE(floorOf(included), floorOf(file)) << file << " includes " << included;
            }
        }
    }
    EXPECT_GT(files, 200U) << "or nothing was read";
}

}  // namespace
}  // namespace corvane_tests
