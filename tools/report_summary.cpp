// Output that only counts (--count), only names files (--files-with-matches) or is none at all (--quiet). The
// last two need one match of a text, and then end its search.
#include "tools/report.h"

namespace tool {
namespace {

class SummaryReporter : public Reporter {
public:
    // A count belongs to no line, so --line-number is without effect.
    SummaryReporter(const ReportStyle& style, std::ostream& out) : style_(style), out_(out) {
        style_.lineNumbers = false;
    }

    void beginText(const Input& input) override {
        input_ = &input;
        count_ = 0;
    }

    // Counting needs every match; for the others one decides.
    bool match(const RE_Results&) override {
        ++count_;
        return style_.form == ReportForm::count;
    }

    void endText() override {
        if (style_.form == ReportForm::count) {
            std::string printed;
            appendPrefix(printed, style_, *input_, 0);
            out_ << printed << count_ << '\n';
        } else if (style_.form == ReportForm::names && count_ != 0) {
            // Without a colon: the name is all that the line has. A NUL replaces the line feed, for programs.
            out_ << input_->label << (style_.nulAfterName ? '\0' : '\n');
        }
    }

private:
    ReportStyle style_;
    std::ostream& out_;
    const Input* input_ = nullptr;
    std::size_t count_ = 0;
};

}  // namespace

std::unique_ptr<Reporter> makeSummaryReporter(const ReportStyle& style, std::ostream& out) {
    return std::make_unique<SummaryReporter>(style, out);
}

}  // namespace tool
