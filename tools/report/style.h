// What `cvregexp match` prints, as the options select it.
#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace tool {

// lines: the selected ones; parts: the matches alone; tokens: matches with their tokens; json: the same for programs;
// count: of lines; matches: their count; names, others: of files with and without a selected line; silent: nothing.
enum class ReportForm { lines, parts, tokens, json, count, matches, names, others, silent };

struct ReportStyle {
    static constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

    ReportForm form = ReportForm::lines;
    bool fileNames = false;
    bool lineNumbers = false;
    bool columns = false;
    bool byteOffsets = false;
    bool nulAfterName = false;
    bool color = false;
    bool hyperlinks = false;
    bool passthru = false;  // lines that are not selected are printed, too
    bool invert = false;
    bool attributes = false;  // several patterns: the JSON says which
    bool toTerminal = false;
    char terminator = '\n';
    std::size_t before = 0;  // lines of context
    std::size_t after = 0;
    std::size_t maxCount = unlimited;  // selected lines of each text

    bool hasContext() const { return before != 0 || after != 0; }
};

// "auto" colours only a terminal that understands colours, and respects NO_COLOR; "always" and "never" do what they say;
// anything else is a UsageError.
bool colorWanted(const std::string& when);
// Likewise; "auto" is for terminals that are known to show them.
bool hyperlinksWanted(const std::string& when);
bool standardOutputIsTerminal();

}  // namespace tool
