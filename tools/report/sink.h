// Receivers of the selected lines: one class for each kind of output.
//
// A sink formats; it neither searches nor reads. It appends to the text of the output, where a line is either there as a
// whole or not at all whenever a function returns.
#pragma once

#include "tools/report/style.h"
#include "tools/search/line_blocks.h"
#include "tools/search/line_finder.h"
#include "tools/search/output.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tool {

// What is said about a text as a whole.
struct TextInfo {
    std::string label;            // what the output calls it: the file name as given, or "(standard input)"
    std::string path;             // of the file, for hyperlinks; empty for what is no file
    std::uint64_t firstLine = 1;  // its number, which is another one in a part of a file
};

// What a search has found, for the exit status and --stats.
struct SearchTotals {
    std::uint64_t texts = 0;
    std::uint64_t textsSelected = 0;  // with a selected line
    std::uint64_t lines = 0;          // selected
    std::uint64_t matches = 0;        // where the form counts them
    std::uint64_t bytes = 0;

    void add(const SearchTotals& other) {
        texts += other.texts;
        textsSelected += other.textsSelected;
        lines += other.lines;
        matches += other.matches;
        bytes += other.bytes;
    }
};

// Called in the order beginText; for each block beginBlock, selected for its lines from top to bottom, endBlock; endText.
// Block, finder and output live as long as the calls in between.
class LineSink {
public:
    virtual ~LineSink() = default;

    virtual void beginText(const TextInfo& text, LineOutput& output) = 0;
    virtual void beginBlock(const LineBlock& block, LineFinder& finder) = 0;
    // One line, or the lines that matches touch together. Under --invert-match none of them has a match.
    virtual void selected(const Span& lines) = 0;
    // Whether the place of the lines does not matter; then `count` does in place of `selected`, for one line.
    virtual bool onlyCounts() const { return false; }
    void count() { ++lines_; }
    virtual void endBlock() = 0;
    virtual void endText() = 0;

    // Whether further lines would change anything: selected ones, and those after them.
    virtual bool wantsMore() const = 0;
    // Whether the bytes of lines are printed, so that those of a binary file are better not.
    virtual bool printsLines() const = 0;
    // In place of the first selected line of a binary file.
    virtual void binaryMatch() = 0;

    // Of the current text.
    std::uint64_t lines() const { return lines_; }
    std::uint64_t matches() const { return matches_; }

protected:
    std::uint64_t lines_ = 0;
    std::uint64_t matches_ = 0;
};

std::unique_ptr<LineSink> makeSink(const ReportStyle& style);
// The makers of the kinds, one file each.
std::unique_ptr<LineSink> makeLinePrinter(const ReportStyle& style);
std::unique_ptr<LineSink> makeMatchPrinter(const ReportStyle& style);
std::unique_ptr<LineSink> makeSummary(const ReportStyle& style);

}  // namespace tool
