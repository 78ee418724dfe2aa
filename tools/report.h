// What `cvregexp match` prints: one reporter class for each form of output.
#pragma once

#include "tools/input.h"

#include "regexp/regexp.h"

#include <memory>
#include <ostream>

namespace tool {

enum class ReportForm { lines, parts, tokens, json, count, names, silent };

struct ReportStyle {
    ReportForm form = ReportForm::lines;
    bool fileNames = false;
    bool lineNumbers = false;
    bool nulAfterName = false;
    bool color = false;
};

// Called in the order beginText, match for each match from left to right, endText; then the next text.
class Reporter {
public:
    virtual ~Reporter() = default;

    virtual void beginText(const Input& input) = 0;
    // False when further matches of this text would change nothing.
    virtual bool match(const RE_Results& found) = 0;
    virtual void endText() = 0;
};

std::unique_ptr<Reporter> makeReporter(const ReportStyle& style, std::ostream& out);

// The makers of the single forms, one file each.
std::unique_ptr<Reporter> makeLineReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makePartReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makeTokenReporter(const ReportStyle& style, std::ostream& out);
std::unique_ptr<Reporter> makeJsonReporter(std::ostream& out);
std::unique_ptr<Reporter> makeSummaryReporter(const ReportStyle& style, std::ostream& out);

// "NAME:LINE:" as far as the style asks for them; a NUL replaces the colon after the name where asked.
void appendPrefix(std::string& out, const ReportStyle& style, const Input& input, std::size_t line);

std::u16string_view matchText(const RE_Results& found);
std::u16string_view tokenText(const RE_Results& found, const RE_TokenInfo& token);

}  // namespace tool
