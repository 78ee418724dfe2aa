// The choice of a sink.
#include "tools/report/sink.h"

namespace tool {

// A switch without a default, so that the compiler asks for a case when a form is added.
std::unique_ptr<LineSink> makeSink(const ReportStyle& style) {
    switch (style.form) {
        case ReportForm::lines:
            return makeLinePrinter(style);
        case ReportForm::parts:
        case ReportForm::tokens:
        case ReportForm::json:
            return makeMatchPrinter(style);
        case ReportForm::count:
        case ReportForm::matches:
        case ReportForm::names:
        case ReportForm::others:
        case ReportForm::silent:
            break;
    }
    return makeSummary(style);
}

}  // namespace tool
