// What all forms of output share: the choice of a form, the prefix of a line, and the texts of results.
#include "tools/report.h"

namespace tool {

// A switch without a default, so that the compiler asks for a case when a form is added.
std::unique_ptr<Reporter> makeReporter(const ReportStyle& style, std::ostream& out) {
    switch (style.form) {
        case ReportForm::lines:
            return makeLineReporter(style, out);
        case ReportForm::parts:
            return makePartReporter(style, out);
        case ReportForm::tokens:
            return makeTokenReporter(style, out);
        case ReportForm::json:
            return makeJsonReporter(out);
        // The three that print no match share a reporter.
        case ReportForm::count:
        case ReportForm::names:
        case ReportForm::silent:
            break;
    }
    return makeSummaryReporter(style, out);
}

// The order is that of the usual search tools, which editors read: name, then line.
void appendPrefix(std::string& out, const ReportStyle& style, const Input& input, std::size_t line) {
    if (style.fileNames) {
        out += input.label;
        out += style.nulAfterName ? '\0' : ':';
    }
    if (style.lineNumbers) {
        out += std::to_string(line);
        out += ':';
    }
}

std::u16string_view matchText(const RE_Results& found) {
    return {found.subjectBegin + found.matchStart, found.matchLength};
}

std::u16string_view tokenText(const RE_Results& found, const RE_TokenInfo& token) {
    return {found.subjectBegin + token.start, token.length};
}

}  // namespace tool
