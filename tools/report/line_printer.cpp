// The default output: selected lines as the file has them, the matches marked, with lines of context around them.
//
// What is in front of a selected line may be in blocks that have gone, so the last lines of a block are held, as many as
// the context takes. What follows it is printed when it comes.
#include "tools/report/block_printer.h"
#include "tools/report/prefix.h"

#include <algorithm>
#include <cstring>
#include <deque>

namespace tool {
namespace {

class LinePrinter : public BlockPrinter {
public:
    explicit LinePrinter(const ReportStyle& style)
        : BlockPrinter(style, style.lineNumbers),
          needsMatches_((style.color || style.columns) && !style.invert) {}

    void beginText(const TextInfo& text, LineOutput& output) override {
        BlockPrinter::beginText(text, output);
        held_.clear();
        due_ = 0;
        gap_ = false;
        printedAny_ = false;
    }

    void beginBlock(const LineBlock& block, LineFinder& finder) override {
        BlockPrinter::beginBlock(block, finder);
        at_ = 0;
    }

    void selected(const Span& lines) override {
        printDue(lines.begin);
        printBefore(lines.begin);
        gatherMatches(lines);
        std::size_t begin = lines.begin;
        do {
            const std::size_t end = endOfLine(begin, lines.end);
            if (lines_ == style_.maxCount) break;
            ++lines_;
            printLine({begin, end}, ':');
            begin = end;
        } while (begin < lines.end);
        at_ = begin;
        due_ = style_.after;
        output_->flushIfLarge();
    }

    void endBlock() override {
        const std::size_t size = block_.bytes.size();
        printDue(size);
        if (at_ < size) hold(size);
        BlockPrinter::endBlock();
    }

    bool wantsMore() const override { return lines_ < style_.maxCount || due_ != 0 || style_.passthru; }
    bool printsLines() const override { return true; }

private:
    // A line of an earlier block.
    struct Held {
        std::string bytes;
        std::uint64_t number;
        std::uint64_t offset;
    };

    // The context after the lines before, and all lines under --passthru, up to `limit`.
    void printDue(std::size_t limit) {
        while (at_ < limit && (due_ != 0 || style_.passthru)) {
            const std::size_t end = endOfLine(at_, limit);
            matchesOfLines_.clear();
            printLine({at_, end}, '-');
            at_ = end;
            if (due_ != 0) --due_;
        }
    }

    // The context in front of a line: in this block, and what is held of those before. Whatever is older was skipped.
    void printBefore(std::size_t begin) {
        std::size_t from = begin;
        std::size_t count = 0;
        for (; count != style_.before && from > at_; ++count) from = lineBefore(at_, from);
        const std::size_t wanted = from == 0 ? std::min(style_.before - count, held_.size()) : 0;
        gap_ = gap_ || from > at_ || wanted < held_.size();
        if (gap_ && printedAny_ && style_.hasContext()) printGap();
        gap_ = false;
        matchesOfLines_.clear();
        for (std::size_t i = held_.size() - wanted; i != held_.size(); ++i)
            printText(held_[i].bytes, {held_[i].number, 0, held_[i].offset}, '-', {});
        held_.clear();
        for (at_ = from; at_ < begin;) {
            const std::size_t end = endOfLine(at_, begin);
            printLine({at_, end}, '-');
            at_ = end;
        }
    }

    void printGap() {
        appendColored(out(), style_.color, separatorColor, "--");
        out() += '\n';
    }

    // The last lines of the block that were not printed. Fewer than are wanted are there only from its first line on, and
    // then the lines that were held before come first.
    void hold(std::size_t size) {
        std::size_t from = size;
        std::size_t count = 0;
        std::vector<Span> lines;
        for (; count != style_.before && from > at_; ++count) {
            const std::size_t begin = lineBefore(at_, from);
            lines.push_back({begin, from});
            from = begin;
        }
        if (from > 0) {
            gap_ = gap_ || from > at_ || !held_.empty();
            held_.clear();
        }
        for (auto line = lines.rbegin(); line != lines.rend(); ++line)
            held_.push_back({std::string(bytesOf(*line)), style_.lineNumbers ? numbers_.at(line->begin) : 0,
                             block_.offset + line->begin});
        while (held_.size() > style_.before) {
            held_.pop_front();
            gap_ = true;
        }
        if (style_.before == 0) gap_ = true;
    }

    void gatherMatches(const Span& lines) {
        matchesOfLines_.clear();
        if (!needsMatches_) return;
        finder_->forEachMatch(lines, [this](const LineMatch& match) {
            matchesOfLines_.push_back(match.bytes);
            return style_.color;
        });
    }

    void printLine(const Span& line, char separator) {
        LinePlace place;
        if (style_.lineNumbers || style_.hyperlinks) place.line = numbers_.at(line.begin);
        place.byte = block_.offset + line.begin;
        const auto first = std::ranges::find_if(matchesOfLines_, [&](const Span& match) {
            return match.end > line.begin || match.begin >= line.begin;
        });
        if (first != matchesOfLines_.end() && first->begin < line.end)
            place.column = std::max(first->begin, line.begin) - line.begin + 1;
        printText(bytesOf(line), place, separator, line);
    }

    // `line` is where the text is in the block, for its matches; empty for one that is not.
    void printText(std::string_view text, const LinePlace& place, char separator, const Span& line) {
        std::string& out = this->out();
        appendPrefix(out, style_, *text_, place, separator);
        if (text.ends_with(style_.terminator)) text.remove_suffix(1);
        if (style_.toTerminal && std::memchr(text.data(), '\0', text.size()) != nullptr) {
            out += withoutControls(text);
        } else if (style_.color && !matchesOfLines_.empty()) {
            appendMarked(out, text, line.begin);
        } else {
            out += text;
        }
        out += style_.terminator;
        printedAny_ = true;
    }

    // A match may begin on an earlier line or continue on a later one; only its part on this line counts. Matches that end
    // before the line are dropped, so that many lines with many matches take linear time.
    void appendMarked(std::string& out, std::string_view text, std::size_t begin) {
        std::size_t at = 0;
        for (const Span& match : matchesOfLines_) {
            if (match.begin >= begin + text.size()) break;
            const std::size_t from = std::max(match.begin, begin + at) - begin;
            const std::size_t to = std::min(match.end > begin ? match.end - begin : 0, text.size());
            if (to <= from) continue;
            out += text.substr(at, from - at);
            appendColored(out, true, matchColor, text.substr(from, to - from));
            at = to;
        }
        out += text.substr(at);
        const auto beyond = std::ranges::find_if(
            matchesOfLines_, [&](const Span& match) { return match.end > begin + text.size() + 1; });
        matchesOfLines_.erase(matchesOfLines_.begin(), beyond);
    }

    bool needsMatches_;
    std::vector<Span> matchesOfLines_;  // in the lines that are being printed, bytes of the block
    std::deque<Held> held_;
    std::size_t at_ = 0;   // bytes of the block: what is before was printed or is not wanted
    std::size_t due_ = 0;  // lines of context still to come
    bool gap_ = false;     // something was skipped since the last line that was printed
    bool printedAny_ = false;
};

}  // namespace

std::unique_ptr<LineSink> makeLinePrinter(const ReportStyle& style) {
    return std::make_unique<LinePrinter>(style);
}

}  // namespace tool
