// Reader of the match case tables. A line that cannot be understood is an exception with file and line, never a case
// that is skipped: a table in which a typing error disables a case would go on passing.
#include "tests/support/case_file.h"

#include "regexp/base/within_size.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace corvane_tests {
namespace {

// Without an empty part at the end: missing last columns are filled in later.
std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

// Letters toggle bits of the plain modes, so "d" takes a bit away.
std::uint32_t flagsOf(const std::string& modes) {
    static const std::map<char, std::uint32_t> bits = {{'.', 0},    {'i', 0x01}, {'m', 0x04}, {'x', 0x08},
                                                       {'E', 0x20}, {'d', 0x02}, {'K', 0x40}};
    std::uint32_t flags = 0x12;
    for (const char letter : modes) {
        flags ^= bits.at(letter);
    }
    return flags;
}

// "start,length", "start,length=name" or "~" with an optional name. Extents are read as tokens too.
Token tokenOf(const std::string& text) {
    const std::vector<std::string> halves = split(text, '=');
    const std::u16string name = halves.size() > 1 ? widen(halves[1]) : u"";
    if (halves.at(0) == "~") {
        return {0, 0, name, false};
    }
    const std::vector<std::string> numbers = split(halves.at(0), ',');
    return {std::stoul(numbers.at(0)), std::stoul(numbers.at(1)), name};
}

void readExtent(const std::string& text, Outcome& outcome) {
    if (text != "-") {
        const Token extent = tokenOf(text);
        outcome = {true, extent.start, extent.length, {}};
    }
}

void readTokens(const std::string& text, MatchCase& result) {
    result.checksTokens = text != "?";
    if (text == "-" || text == "?") {
        return;
    }
    for (const std::string& token : split(text, ' ')) {
        result.expected.tokens.push_back(tokenOf(token));
    }
}

void readWarnings(const std::string& text, MatchCase& result) {
    result.checksWarnings = text != "?";
    if (text == "-" || text == "?") {
        return;
    }
    for (const std::string& warning : split(text, ' ')) {
        const std::vector<std::string> parts = split(warning, '@');
        result.warnings.push_back({static_cast<unsigned>(std::stoul(parts.at(0))), std::nullopt});
        if (parts.size() > 1) {
            result.warnings.back().position = std::stoul(parts[1]);
        }
    }
}

// Seven columns, of which the last two may be missing.
MatchCase readLine(const std::string& line) {
    std::vector<std::string> columns = split(line, '\t');
    if (columns.size() < 5) {
        throw std::runtime_error("too few columns");
    }
    columns.resize(7, "-");
    MatchCase result;
    result.pattern = expand(columns[0]);
    result.flags = flagsOf(columns[1]);
    result.subject = expand(columns[2]);
    result.offset = withinSize(std::stoull(columns[3]));
    readExtent(columns[4], result.expected);
    readTokens(columns[5], result);
    readWarnings(columns[6], result);
    return result;
}

}  // namespace

std::vector<MatchCase> readCaseFile(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    std::vector<MatchCase> cases;
    size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line.rfind("# ", 0) == 0) {
            continue;
        }
        const std::string place = std::filesystem::path(path).filename().string() + ":" + std::to_string(number);
        try {
            cases.push_back(readLine(line));
        } catch (const std::exception& error) {
            throw std::runtime_error(place + ": " + error.what());
        }
        cases.back().place = place;
    }
    return cases;
}

}  // namespace corvane_tests
