// Facts about the machine; none that would tell whose it is.
#include "bench/machine.h"

#include <ctime>
#include <fstream>
#include <thread>

namespace corvane_bench {

std::string processorName() {
    std::ifstream file("/proc/cpuinfo");
    std::string model = "unknown processor";
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("model name")) {
            model = line.substr(line.find(':') + 2);
            break;
        }
    }
    return model + ", " + std::to_string(std::thread::hardware_concurrency()) + " cores";
}

std::string compilerName() {
#ifdef __clang__
    return "clang " __clang_version__;
#else
    return "g++ " __VERSION__;
#endif
}

// In UTC, as records of different machines are compared.
std::string today() {
    const std::time_t now = std::time(nullptr);
    char text[11];
    std::strftime(text, sizeof text, "%Y-%m-%d", std::gmtime(&now));
    return text;
}

}  // namespace corvane_bench
