// Machine-readable output, one JSON object for each line. Keys keep their order, so that the lines also read
// well, and no key is ever left out: what is missing is null or empty.
#include "tools/json_output.h"

#include "tools/line_index.h"
#include "tools/report.h"
#include "tools/warning_report.h"

#include "regexp/eval/warning_text.h"

#include <nlohmann/json.hpp>

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// File names may hold any bytes; what is not UTF-8 is replaced, since JSON has no other way to write it.
void writeLine(std::ostream& out, const Json& object) {
    out << object.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

// A token that took no part has an empty text too, which only `tookPart` tells from an empty match.
Json tokenObject(const RE_Results& found, std::size_t index) {
    const RE_TokenInfo& token = *found.tokens->get(index);
    return {{"number", index + 1},
            {"name", token.name == nullptr ? Json() : Json(toUtf8(token.name))},
            {"start", token.start},
            {"length", token.length},
            {"text", toUtf8(tokenText(found, token))},
            {"tookPart", token.tookPart}};
}

class JsonReporter : public Reporter {
public:
    explicit JsonReporter(std::ostream& out) : out_(out) {}

    // A new text begins at line 1, so the cursor begins anew.
    void beginText(const Input& input) override {
        input_ = &input;
        cursor_ = LineCursor(input.text.view());
    }

    bool match(const RE_Results& found) override {
        cursor_.advanceTo(found.matchStart);
        Json tokens = Json::array();
        // Tokens in effect; those after them have no text.
        for (std::size_t index = 0; index != found.tokens->count; ++index)
            tokens.push_back(tokenObject(found, index));
        writeLine(out_, {{"file", input_->label},
                         {"line", cursor_.line()},
                         {"column", cursor_.column()},
                         {"start", found.matchStart},
                         {"length", found.matchLength},
                         {"text", toUtf8(matchText(found))},
                         {"tokens", std::move(tokens)}});
        return true;
    }

    void endText() override {}

private:
    std::ostream& out_;
    const Input* input_ = nullptr;
    LineCursor cursor_{{}};
};

}  // namespace

std::unique_ptr<Reporter> makeJsonReporter(std::ostream& out) {
    return std::make_unique<JsonReporter>(out);
}

void writeJsonWarning(std::ostream& out, std::u16string_view pattern, const PatternWarning& warning) {
    // Two places: where the compiler raised the warning, and the part of the pattern that it is about.
    const RE_Warning_Span span = locateWarning(warning.number, pattern, warning.position);
    const PatternPlace place = locate(pattern, span.start);
    writeLine(out, {{"number", static_cast<unsigned>(warning.number)},
                    {"name", describe(warning.number).name},
                    {"sentence", describe(warning.number).sentence},
                    {"position", warning.position},
                    {"start", span.start},
                    {"length", span.length},
                    {"correction", span.correction ? Json(toUtf8(*span.correction)) : Json()},
                    {"line", place.line},
                    {"column", place.column}});
}

}  // namespace tool
