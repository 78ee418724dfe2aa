// What the printers of lines and of matches have in common: the text and the block they are at, and the places in it.
#pragma once

#include "tools/report/line_numbers.h"
#include "tools/report/sink.h"

#include <cstddef>
#include <cstring>
#include <string>

namespace tool {

class BlockPrinter : public LineSink {
public:
    void beginText(const TextInfo& text, LineOutput& output) override {
        text_ = &text;
        output_ = &output;
        lines_ = matches_ = 0;
        numbers_.beginText(text.firstLine);
    }
    void beginBlock(const LineBlock& block, LineFinder& finder) override {
        block_ = block;
        finder_ = &finder;
        numbers_.beginBlock(block.bytes);
    }
    void endBlock() override {
        if (countsLines_) numbers_.endBlock();
    }
    void endText() override {}
    void binaryMatch() override {
        // Not under a number or a separator: it is no line of the file.
        out() += "cvregexp: " + text_->label + ": binary file matches\n";
        ++lines_;
    }

protected:
    // `countsLines`: the numbers of lines are asked for.
    BlockPrinter(const ReportStyle& style, bool countsLines)
        : style_(style), countsLines_(countsLines), numbers_(style.terminator) {}

    std::string& out() { return output_->text(); }
    std::string_view bytesOf(const Span& span) const { return block_.bytes.substr(span.begin, span.size()); }

    // The beginning of the line that holds the byte before `byte`, at `least` at the lowest. Bytes of the block.
    std::size_t lineBefore(std::size_t least, std::size_t byte) const {
        return byte == least ? least : lineHolding(least, byte - 1);
    }
    // The beginning of the line that `byte` is on, or would be.
    std::size_t lineHolding(std::size_t least, std::size_t byte) const {
        const char* const bytes = block_.bytes.data();
        const void* const end =
            byte == least ? nullptr : ::memrchr(bytes + least, style_.terminator, byte - least);
        return end == nullptr ? least : static_cast<std::size_t>(static_cast<const char*>(end) - bytes) + 1;
    }
    // Past the terminator of the line that begins at `begin`, or `limit`.
    std::size_t endOfLine(std::size_t begin, std::size_t limit) const {
        const char* const bytes = block_.bytes.data();
        const void* const end =
            begin == limit ? nullptr : std::memchr(bytes + begin, style_.terminator, limit - begin);
        return end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - bytes) + 1;
    }

    ReportStyle style_;
    bool countsLines_;
    LineNumbers numbers_;
    const TextInfo* text_ = nullptr;
    LineOutput* output_ = nullptr;
    LineBlock block_{};
    LineFinder* finder_ = nullptr;
};

}  // namespace tool
