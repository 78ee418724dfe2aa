// Machine-readable output, one JSON object for each line. Keys keep their order, so that the lines also read
// well, and no key is ever left out: what is missing is null or empty.
#include "tools/json_output.h"

#include "tools/convert_text.h"
#include "tools/warning_report.h"

#include "regexp/eval/warning_text.h"

#include <nlohmann/json.hpp>

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// File names may hold any bytes; what is not UTF-8 is replaced, since JSON has no other way to write it.
std::string toLine(const Json& object) {
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

// A token that took no part has an empty text too, which only `tookPart` tells from an empty match.
Json tokenObject(const MatchRecord& match, std::size_t index) {
    const RE_TokenInfo& token = *match.results->tokens->get(index);
    return {{"number", index + 1},
            {"name", token.name == nullptr ? Json() : Json(toUtf8(token.name))},
            {"start", match.base + token.start},
            {"length", token.length},
            {"text", toUtf8(match.text.substr(token.start, token.length))},
            {"tookPart", token.tookPart}};
}

}  // namespace

std::string jsonLine(const MatchRecord& match) {
    const RE_Results& found = *match.results;
    Json tokens = Json::array();
    // Tokens in effect; those after them have no text.
    for (std::size_t index = 0; index != found.tokens->count; ++index)
        tokens.push_back(tokenObject(match, index));
    Json object{{"file", match.file},
                {"line", match.line},
                {"column", match.column},
                {"start", match.base + found.matchStart},
                {"length", found.matchLength},
                {"byte", match.byte},
                {"text", toUtf8(match.text.substr(found.matchStart, found.matchLength))},
                {"tokens", std::move(tokens)}};
    if (match.pattern) object["pattern"] = *match.pattern;
    return toLine(object);
}

namespace {

// What a warning or a hint says of a part of the pattern.
struct Remark {
    Json number;
    std::string_view name;
    std::string_view sentence;
    std::size_t position;  // where it was raised
    std::size_t start;
    std::size_t length;
    const std::optional<std::u16string>& correction;
};

void writeRemark(std::ostream& out, std::u16string_view pattern, const Remark& remark) {
    const PatternPlace place = locate(pattern, remark.start);
    out << toLine({{"number", remark.number},
                   {"name", remark.name},
                   {"sentence", remark.sentence},
                   {"position", remark.position},
                   {"start", remark.start},
                   {"length", remark.length},
                   {"correction", remark.correction ? Json(toUtf8(*remark.correction)) : Json()},
                   {"line", place.line},
                   {"column", place.column}});
}

}  // namespace

void writeJsonWarning(std::ostream& out, std::u16string_view pattern, const PatternWarning& warning) {
    // Two places: where the compiler raised the warning, and the part of the pattern that it is about.
    const RE_Warning_Span span = locateWarning(warning.number, pattern, warning.position);
    writeRemark(
        out, pattern,
        {static_cast<unsigned>(warning.number), describe(warning.number).name,
         describe(warning.number).sentence, warning.position, span.start, span.length, span.correction});
}

void writeJsonHint(std::ostream& out, std::u16string_view pattern, const RE_Hint& hint) {
    writeRemark(out, pattern,
                {Json(), "hint", hint.sentence, hint.start, hint.start, hint.length, hint.correction});
}

}  // namespace tool
