// Output that only counts, only names files, or is none at all. Those that need one selected line end the search of a text
// with it.
#include "tools/report/prefix.h"
#include "tools/report/sink.h"

#include <algorithm>

namespace tool {
namespace {

class Summary : public LineSink {
public:
    explicit Summary(const ReportStyle& style) : style_(style) {}

    void beginText(const TextInfo& text, LineOutput& output) override {
        text_ = &text;
        output_ = &output;
        lines_ = matches_ = 0;
    }
    void beginBlock(const LineBlock& block, LineFinder& finder) override {
        block_ = block.bytes;
        finder_ = &finder;
    }
    void selected(const Span& lines) override {
        // Several lines only where matches may span them.
        const std::string_view text = block_.substr(lines.begin, lines.size());
        const auto ends = std::count(text.begin(), text.end(), style_.terminator);
        lines_ += std::max<std::uint64_t>(
            1, static_cast<std::uint64_t>(ends) + (text.ends_with(style_.terminator) ? 0 : 1));
        if (style_.form == ReportForm::matches && !style_.invert)
            finder_->forEachMatch(lines, [this](const LineMatch&) { return ++matches_ != 0; });
    }
    bool onlyCounts() const override { return style_.form != ReportForm::matches; }
    void endBlock() override {}

    void endText() override {
        std::string& out = output_->text();
        const bool listed = (style_.form == ReportForm::names && lines_ != 0) ||
                            (style_.form == ReportForm::others && lines_ == 0);
        if (style_.form == ReportForm::count || style_.form == ReportForm::matches) {
            appendCount(out, style_, *text_, style_.form == ReportForm::count ? lines_ : matches_);
        } else if (listed) {
            // Without a colon: the name is all that the line has. A NUL replaces the line feed, for programs.
            appendName(out, style_, *text_, 0);
            out += style_.nulAfterName ? '\0' : '\n';
        }
    }

    bool wantsMore() const override {
        const bool counts = style_.form == ReportForm::count || style_.form == ReportForm::matches;
        return lines_ < (counts ? style_.maxCount : std::min<std::size_t>(1, style_.maxCount));
    }
    bool printsLines() const override { return false; }
    void binaryMatch() override {}

private:
    ReportStyle style_;
    const TextInfo* text_ = nullptr;
    LineOutput* output_ = nullptr;
    std::string_view block_;
    LineFinder* finder_ = nullptr;
};

}  // namespace

std::unique_ptr<LineSink> makeSummary(const ReportStyle& style) {
    return std::make_unique<Summary>(style);
}

}  // namespace tool
