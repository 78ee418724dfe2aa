// The default output: every line that holds a match or a part of one, once, with the matches marked.
//
// A line cannot be printed when its first match is found, as further matches on it have to be marked too.
// Hence the block, which is held back until a match begins after it.
#include "tools/highlight.h"
#include "tools/line_index.h"
#include "tools/report.h"

#include <algorithm>
#include <vector>

namespace tool {
namespace {

// Matches may share a line and may span several. The lines that are joined by matches form a block, which is
// printed when a match begins beyond it. A block has at least one match.
class LineReporter : public Reporter {
public:
    LineReporter(const ReportStyle& style, std::ostream& out) : style_(style), out_(out) {}

    void beginText(const Input& input) override {
        input_ = &input;
        text_ = input.text.view();
        cursor_ = LineCursor(text_);
    }

    // Adds the match to the block, after printing a block that it does not touch.
    bool match(const RE_Results& found) override {
        const Extent extent{found.matchStart, found.matchLength};
        // Matches ascend, as the cursor needs it.
        cursor_.advanceTo(extent.start);
        if (!matches_.empty() && cursor_.lineBegin() >= blockEnd_) printBlock();
        if (matches_.empty()) {
            blockBegin_ = cursor_.lineBegin();
            blockEnd_ = blockBegin_;
            blockLine_ = cursor_.line();
        }
        // An empty match belongs to the line it is on; a match that ends with a line feed does not reach the
        // next line.
        const std::size_t lastUnit = extent.length == 0 ? extent.start : extent.end() - 1;
        if (matches_.empty() || lastUnit >= blockEnd_) blockEnd_ = lineEndAfter(text_, lastUnit);
        matches_.push_back(extent);
        return true;
    }

    void endText() override {
        if (!matches_.empty()) printBlock();
    }

private:
    // `matches` shrinks along with the lines, so that a block is printed in time linear in its size.
    void printBlock() {
        std::string printed;
        std::size_t begin = blockBegin_;
        std::span<const Extent> matches = matches_;
        do {
            const std::size_t next = lineEndAfter(text_, begin);
            appendPrefix(printed, style_, *input_, blockLine_++);
            matches = matchesFrom(matches, begin);
            appendLine(printed, {begin, next - begin}, matches);
            begin = next;
        } while (begin < blockEnd_);
        out_ << printed;
        matches_.clear();
    }

    // Without those that end before the line, so that a long block is not scanned again for each line.
    static std::span<const Extent> matchesFrom(std::span<const Extent> matches, std::size_t lineBegin) {
        const auto first =
            std::ranges::find_if(matches, [=](const Extent& m) { return m.end() > lineBegin; });
        return matches.subspan(static_cast<std::size_t>(first - matches.begin()));
    }

    // Without the line feed, so that the last line of a text gets one too.
    void appendLine(std::string& printed, Extent line, std::span<const Extent> matches) {
        if (line.length != 0 && text_[line.end() - 1] == u'\n') --line.length;
        if (style_.color) {
            // Only the matches up to the line's end: the others would be looked at again for each line.
            const auto beyond =
                std::ranges::find_if(matches, [=](const Extent& m) { return m.start >= line.end(); });
            appendHighlighted(printed, text_, line, {matches.begin(), beyond});
        } else {
            appendHighlighted(printed, text_, line, {});
        }
        printed += '\n';
    }

    ReportStyle style_;
    std::ostream& out_;
    const Input* input_ = nullptr;
    std::u16string_view text_;
    LineCursor cursor_{{}};
    std::vector<Extent> matches_;  // of the block; empty when there is none
    // The extent of the block in units, and the number of its first line.
    std::size_t blockBegin_ = 0;
    std::size_t blockEnd_ = 0;
    std::size_t blockLine_ = 1;
};

}  // namespace

std::unique_ptr<Reporter> makeLineReporter(const ReportStyle& style, std::ostream& out) {
    return std::make_unique<LineReporter>(style, out);
}

}  // namespace tool
