// The search of one text after the other, by one thread.
#pragma once

#include "tools/report/sink.h"
#include "tools/search/line_blocks.h"
#include "tools/search/line_finder.h"
#include "tools/search/text_source.h"

#include <functional>

namespace tool {

// What to do with a text that holds a NUL. `skip`: it is not searched any further; `tell`: of its lines only that there are
// some that match; `print`: as of any other text.
enum class BinaryFiles { skip, tell, print };

class TextSearch {
public:
    // Called between blocks with the number of bytes that were searched since the last call.
    using Progressed = std::function<void(std::uint64_t bytes)>;

    // The patterns must outlive it.
    TextSearch(const FinderPatterns& patterns, const ReportStyle& style, const EncodingChoice& encoding,
               Progressed progressed);

    // Whether a line was selected. What is printed is in the output when this returns; where output was complete lines only,
    // also when it throws. Throws std::system_error, and Interrupted.
    bool run(ByteSource& bytes, const TextInfo& text, BinaryFiles binary, LineOutput& output);
    // The same for a part of a text that begins at this byte. What is said of the text as a whole is left to the caller.
    bool runPart(ByteSource& bytes, std::uint64_t begin, const TextInfo& text, BinaryFiles binary,
                 LineOutput& output);

    const SearchTotals& totals() const { return totals_; }

private:
    void searchBlocks(TextSource& source, std::uint64_t begin, BinaryFiles binary, LineOutput& output);
    bool searchBlock(const LineBlock& block);
    bool select(const Span& lines);
    bool selectOthers(std::string_view block);
    bool selectEach(std::string_view block, std::size_t begin, std::size_t end);

    ReportStyle style_;
    const EncodingChoice& encoding_;
    Progressed progressed_;
    LineBlocks blocks_;
    LineFinder finder_;
    std::unique_ptr<LineSink> sink_;
    SearchTotals totals_;
    bool tellsOnly_ = false;  // the text is binary
    bool isSkipped_ = false;  // for that
};

}  // namespace tool
