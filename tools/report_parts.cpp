// Output of the matched text alone (--only-matching), each match on a line of its own. A match that spans
// lines is printed with its line feeds.
#include "tools/highlight.h"
#include "tools/line_index.h"
#include "tools/report.h"

namespace tool {
namespace {

class PartReporter : public Reporter {
public:
    PartReporter(const ReportStyle& style, std::ostream& out) : style_(style), out_(out) {}

    void beginText(const Input& input) override {
        input_ = &input;
        cursor_ = LineCursor(input.text.view());
    }

    // A prefix says where the match begins, even if it ends on a later line.
    bool match(const RE_Results& found) override {
        const Extent extent{found.matchStart, found.matchLength};
        // One write for each match.
        printed_.clear();
        cursor_.advanceTo(extent.start);
        appendPrefix(printed_, style_, *input_, cursor_.line());
        // The match itself is the "line", all of it marked or none.
        const std::span<const Extent> marked(&extent, style_.color ? 1 : 0);
        appendHighlighted(printed_, input_->text.view(), extent, marked);
        printed_ += '\n';
        out_ << printed_;
        return true;
    }

    void endText() override {}

private:
    ReportStyle style_;
    std::ostream& out_;
    const Input* input_ = nullptr;
    LineCursor cursor_{{}};
    std::string printed_;  // kept for its capacity
};

}  // namespace

std::unique_ptr<Reporter> makePartReporter(const ReportStyle& style, std::ostream& out) {
    return std::make_unique<PartReporter>(style, out);
}

}  // namespace tool
