// Output of matches by themselves: their text, with all tokens, or as JSON.
#include "tools/convert_text.h"
#include "tools/json_output.h"
#include "tools/report/block_printer.h"
#include "tools/report/prefix.h"

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

class MatchPrinter : public BlockPrinter {
public:
    explicit MatchPrinter(const ReportStyle& style)
        : BlockPrinter(style, style.lineNumbers || style.form != ReportForm::parts) {}

    void beginText(const TextInfo& text, LineOutput& output) override {
        BlockPrinter::beginText(text, output);
        units_ = 0;
    }

    // Lines without a match have nothing to show.
    void selected(const Span& lines) override {
        ++lines_;
        if (style_.invert) return;
        lineBegin_ = lines.begin;
        lineUnit_.reset();
        finder_->forEachMatch(lines, [this](const LineMatch& match) {
            ++matches_;
            print(match);
            return true;
        });
        output_->flushIfLarge();
    }

    void endBlock() override {
        BlockPrinter::endBlock();
        units_ += finder_->unitCount();
    }

    bool wantsMore() const override { return lines_ < style_.maxCount; }
    bool printsLines() const override { return style_.form == ReportForm::parts; }

private:
    // Of the line on which a match begins, which under --multiline may be a later one of those that were selected.
    LinePlace placeOf(const LineMatch& match) {
        LinePlace place;
        const std::size_t before = match.bytes.begin;
        const std::size_t begin = lineHolding(lineBegin_, before);
        if (begin != lineBegin_) {
            lineBegin_ = begin;
            lineUnit_.reset();
        }
        if (countsLines_) place.line = numbers_.at(lineBegin_);
        place.column = before - lineBegin_ + 1;
        place.byte = block_.offset + before;
        return place;
    }

    void print(const LineMatch& match) {
        // Nothing is to be seen of an empty match.
        if (style_.form == ReportForm::parts && match.bytes.size() == 0) return;
        const LinePlace place = placeOf(match);
        switch (style_.form) {
            case ReportForm::parts:
                printPart(match, place);
                return;
            case ReportForm::tokens:
                printTokens(match, place);
                return;
            default:
                printJson(match, place);
                return;
        }
    }

    void printPart(const LineMatch& match, const LinePlace& place) {
        std::string& out = this->out();
        appendPrefix(out, style_, *text_, place, ':');
        const std::string_view bytes = bytesOf(match.bytes);
        if (style_.toTerminal && bytes.find('\0') != std::string_view::npos) {
            out += withoutControls(bytes);
        } else {
            appendColored(out, style_.color, matchColor, bytes);
        }
        out += style_.terminator;
    }

    // The place in units: that of the line is found by counting back from the first match on it.
    std::uint64_t columnInUnits(const LineMatch& match) {
        if (!lineUnit_) {
            const std::string_view before = block_.bytes.substr(lineBegin_, match.bytes.begin - lineBegin_);
            lineUnit_ = match.unit - toUtf16(before).size();
        }
        return match.unit - *lineUnit_ + 1;
    }

    void printTokens(const LineMatch& match, const LinePlace& place) {
        std::string& out = this->out();
        ReportStyle style = style_;
        style.lineNumbers = true;
        style.columns = style.byteOffsets = false;
        appendPrefix(out, style, *text_, place, ':');
        out += std::to_string(columnInUnits(match));
        const RE_Results& found = *match.results;
        appendExtent(out, match, found.matchStart, found.matchLength);
        for (std::size_t index = 0; index != found.tokens->slots.size(); ++index)
            appendToken(out, match, index);
    }

    // From the beginning of the text.
    std::uint64_t unitInText(const LineMatch& match, std::size_t position) const {
        return units_ + match.unit + position - match.results->matchStart;
    }

    // Start and length in code units, and the text on one line.
    void appendExtent(std::string& out, const LineMatch& match, std::size_t start, std::size_t length) const {
        out += " [" + std::to_string(unitInText(match, start)) + "," + std::to_string(length) + "]";
        if (length != 0) out += " " + toPrintableUtf8(match.text.substr(start, length));
        out += '\n';
    }

    // Numbered as in patterns and replacements, from 1. A token that is absent is not in effect; one that took no part was
    // gone past by the match.
    void appendToken(std::string& out, const LineMatch& match, std::size_t index) const {
        out += "    $" + std::to_string(index + 1);
        const RE_TokenInfo* token = match.results->tokens->get(index);
        if (token == nullptr) {
            out += " absent\n";
            return;
        }
        if (token->name != nullptr) out += " <" + toUtf8(token->name) + ">";
        if (!token->tookPart) {
            out += " took no part\n";
            return;
        }
        appendExtent(out, match, token->start, token->length);
    }

    void printJson(const LineMatch& match, const LinePlace& place) {
        MatchRecord record;
        record.file = text_->label;
        record.line = place.line;
        record.column = columnInUnits(match);
        record.byte = place.byte;
        record.base = unitInText(match, 0);
        record.text = match.text;
        record.results = match.results;
        if (style_.attributes) record.pattern = match.pattern + 1;
        out() += jsonLine(record);
    }

    std::uint64_t units_ = 0;              // of the blocks before
    std::size_t lineBegin_ = 0;            // bytes of the block: of the line that holds the last match
    std::optional<std::size_t> lineUnit_;  // the same in units, once it is known
};

}  // namespace

std::unique_ptr<LineSink> makeMatchPrinter(const ReportStyle& style) {
    return std::make_unique<MatchPrinter>(style);
}

}  // namespace tool
