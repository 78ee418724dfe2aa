// What `cvregexp match` prints: one reporter class for each form of output, each in a file of its own.
//
// A reporter formats; it neither searches nor reads. It builds a line in a string and writes it as a whole,
// since streams are slow for small pieces.
#pragma once

#include "tools/input.h"

#include "regexp/regexp.h"

#include <memory>
#include <ostream>

namespace tool {

// lines: those with a match; parts: the matches alone; tokens: matches with their tokens; json: the same for
// programs; count, names: a line for each file; silent: nothing.
enum class ReportForm { lines, parts, tokens, json, count, names, silent };

// What the options select. A form may override parts of it that make no sense for it.
struct ReportStyle {
    ReportForm form = ReportForm::lines;
    bool fileNames = false;
    bool lineNumbers = false;
    bool nulAfterName = false;
    bool color = false;
};

// Called in the order beginText, match for each match from left to right, endText; then the next text. The
// input lives from beginText to endText.
class Reporter {
public:
    virtual ~Reporter() = default;

    virtual void beginText(const Input& input) = 0;
    // False when further matches of this text would change nothing.
    virtual bool match(const RE_Results& found) = 0;
    virtual void endText() = 0;
};

// The reporter for the form of the style. It writes to `out`, which has to outlive it.
std::unique_ptr<Reporter> makeReporter(const ReportStyle& style, std::ostream& out);

// The makers of the single forms, one file each.
std::unique_ptr<Reporter> makeLineReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makePartReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makeTokenReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makeJsonReporter(std::ostream& out);
std::unique_ptr<Reporter> makeSummaryReporter(const ReportStyle& style, std::ostream& out);

// "NAME:LINE:" as far as the style has them; a NUL replaces the colon after the name if the style says so.
void appendPrefix(std::string& out, const ReportStyle& style, const Input& input, std::size_t line);

// Views into the subject, which outlives the results. A token that took no part has an empty text.
std::u16string_view matchText(const RE_Results& found);
std::u16string_view tokenText(const RE_Results& found, const RE_TokenInfo& token);

}  // namespace tool
