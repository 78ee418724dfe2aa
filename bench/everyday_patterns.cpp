// Reads the table of everyday patterns. A line that is not as expected ends the program: a table that is half read
// would measure something else.
#include "bench/everyday_patterns.h"

#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace corvane_bench {
namespace {

// All of it lies in the basic plane.
std::u16string fromUtf8(const std::string& text) {
    std::u16string units;
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i++]);
        unsigned value = first < 0x80 ? first : first < 0xE0 ? first & 0x1FU : first & 0x0FU;
        for (int more = first < 0x80 ? 0 : first < 0xE0 ? 1 : 2; more > 0; --more) {
            value = value << 6U | (static_cast<unsigned char>(text.at(i++)) & 0x3FU);
        }
        units += static_cast<char16_t>(value);
    }
    return units;
}

std::deque<Everyday_Pattern> readTable() {
    std::ifstream file(CORVANE_BENCH_DATA "/everyday.tsv");
    std::deque<Everyday_Pattern> patterns;
    for (std::string line; std::getline(file, line);) {
        std::array<std::string, 4> fields;
        std::istringstream rest(line);
        for (std::string& field : fields) {
            std::getline(rest, field, '\t');
        }
        patterns.emplace_back(fromUtf8(fields[1]), fromUtf8(fields[3]), fromUtf8(fields[2]));
    }
    if (patterns.empty()) {
        throw std::runtime_error("everyday.tsv cannot be read");
    }
    return patterns;
}

}  // namespace

const std::deque<Everyday_Pattern>& everydayPatterns() {
    static const std::deque<Everyday_Pattern> patterns = readTable();
    return patterns;
}

std::u16string everydaySet(bool others) {
    std::u16string all;
    for (const Everyday_Pattern& each : everydayPatterns()) {
        all += (all.empty() ? u"" : u"\n") +
               (others && !each.peerPattern.empty() ? each.peerPattern : each.pattern);
    }
    return all;
}

}  // namespace corvane_bench
