// Runs every file under DIRECTORY/TARGET through its target, without a fuzzer: what was once found stays
// mended. Part of the ordinary tests, as it needs no special compiler.
#include "fuzz/targets.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::string contents(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// The number of files that were run.
std::size_t replay(const corvane_fuzz::Target& target, const std::filesystem::path& folder) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::printf("%s\n", entry.path().c_str());
        std::fflush(stdout);  // a finding ends the program: the last line tells where
        const std::string bytes = contents(entry.path());
        run(target, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
        ++count;
    }
    return count;
}

int replayAll(const std::filesystem::path& root) {
    for (const corvane_fuzz::Target& target : corvane_fuzz::kTargets) {
        // A folder that is empty or gone would make the test pass by doing nothing.
        if (replay(target, root / target.name) == 0) {
            std::fprintf(stderr, "no files for %s\n", target.name.data());
            return 1;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_replay DIRECTORY\n");
        return 2;
    }
    try {
        return replayAll(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_replay: %s\n", error.what());
        return 1;
    }
}
