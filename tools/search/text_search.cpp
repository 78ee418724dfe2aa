// The search of one text: blocks from the source, lines from the finder, and the sink that receives them.
#include "tools/search/text_search.h"

#include <cstring>

namespace tool {

TextSearch::TextSearch(const FinderPatterns& patterns, const ReportStyle& style,
                       const EncodingChoice& encoding, Progressed progressed)
    : style_(style),
      encoding_(encoding),
      progressed_(std::move(progressed)),
      blocks_(patterns.terminator, patterns.unit == SearchUnit::text),
      finder_(patterns),
      sink_(makeSink(style)) {}

bool TextSearch::run(ByteSource& bytes, const TextInfo& text, BinaryFiles binary, LineOutput& output) {
    TextSource source(bytes, encoding_);
    sink_->beginText(text, output);
    ++totals_.texts;
    searchBlocks(source, 0, binary, output);
    if (isSkipped_) return false;
    sink_->endText();
    output.flush();
    totals_.textsSelected += sink_->lines() != 0 ? 1 : 0;
    return sink_->lines() != 0;
}

bool TextSearch::runPart(ByteSource& bytes, std::uint64_t begin, const TextInfo& text, BinaryFiles binary,
                         LineOutput& output) {
    TextSource source(bytes, encoding_, begin == 0);
    sink_->beginText(text, output);
    searchBlocks(source, begin, binary, output);
    return !isSkipped_ && sink_->lines() != 0;
}

void TextSearch::searchBlocks(TextSource& source, std::uint64_t begin, BinaryFiles binary,
                              LineOutput& output) {
    blocks_.use(source);
    tellsOnly_ = isSkipped_ = false;
    // Where lines end with a NUL, one is no sign of anything.
    const bool looksForNul = binary != BinaryFiles::print && style_.terminator != '\0';
    LineBlock block;
    while (sink_->wantsMore() && blocks_.next(block)) {
        // The mark is a part of the file, if not of the text.
        block.offset += begin + source.markSize();
        const bool hasNul =
            looksForNul && std::memchr(block.bytes.data(), '\0', block.bytes.size()) != nullptr;
        isSkipped_ = hasNul && binary == BinaryFiles::skip;
        if (isSkipped_) return;
        tellsOnly_ = tellsOnly_ || hasNul;
        totals_.bytes += block.bytes.size();
        const bool more = searchBlock(block);
        output.flush();
        if (progressed_) progressed_(block.bytes.size());
        if (!more) break;
    }
    totals_.lines += sink_->lines();
    totals_.matches += sink_->matches();
}

// False when the text is decided.
bool TextSearch::searchBlock(const LineBlock& block) {
    finder_.use(block.bytes);
    sink_->beginBlock(block, finder_);
    bool more = true;
    if (style_.invert) {
        more = selectOthers(block.bytes);
    } else if (sink_->onlyCounts() && finder_.findsSingleLines()) {
        while (more && finder_.next()) {
            sink_->count();
            more = sink_->wantsMore();
        }
    } else {
        while (more && sink_->lines() < style_.maxCount) {
            if (!finder_.next()) break;
            more = select(finder_.lines());
        }
    }
    if (more) sink_->endBlock();
    return more;
}

bool TextSearch::select(const Span& lines) {
    if (tellsOnly_ && sink_->printsLines()) {
        sink_->binaryMatch();
        return false;
    }
    sink_->selected(lines);
    return sink_->wantsMore();
}

// The lines between those that the finder finds.
bool TextSearch::selectOthers(std::string_view block) {
    std::size_t at = 0;
    for (;;) {
        const bool found = finder_.next();
        if (!selectEach(block, at, found ? finder_.lines().begin : block.size())) return false;
        if (!found) return true;
        at = finder_.lines().end;
    }
}

bool TextSearch::selectEach(std::string_view block, std::size_t begin, std::size_t end) {
    while (begin < end && sink_->lines() < style_.maxCount) {
        const void* const stop = std::memchr(block.data() + begin, style_.terminator, end - begin);
        const std::size_t next =
            stop == nullptr ? end
                            : static_cast<std::size_t>(static_cast<const char*>(stop) - block.data()) + 1;
        if (!select({begin, next})) return false;
        begin = next;
    }
    return true;
}

}  // namespace tool
