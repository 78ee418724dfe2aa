// Byte order marks and the names of encodings.
#include "tools/search/encoding.h"

#include "tools/usage_error.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <array>

namespace tool {
namespace {

struct Mark {
    std::string_view bytes;
    const char* encoding;

    bool isUtf8() const { return encoding == std::string_view("UTF-8"); }
};

// The longer one first where one begins another.
constexpr std::array<Mark, 5> marks{{
    {{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
    {{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},
    {{"\xFF\xFE", 2}, "UTF-16LE"},
    {{"\xFE\xFF", 2}, "UTF-16BE"},
}};

bool sameEncoding(const std::string& name, const char* other) {
    return ucnv_compareNames(name.c_str(), other) == 0;
}

}  // namespace

EncodingChoice::EncodingChoice(const std::string& name) {
    if (name == "auto") return;
    name_ = name;
    UErrorCode problem = U_ZERO_ERROR;
    UConverter* const converter = ucnv_open(name.c_str(), &problem);
    if (U_FAILURE(problem)) throw UsageError("no encoding is named " + name);
    isUtf8_ = ucnv_getType(converter) == UCNV_UTF8;
    ucnv_close(converter);
}

TextStart startOfText(std::string_view bytes, const EncodingChoice& choice) {
    const auto mark =
        std::ranges::find_if(marks, [&](const Mark& known) { return bytes.starts_with(known.bytes); });
    const bool hasMark =
        mark != marks.end() && (choice.isAutomatic() || sameEncoding(choice.name(), mark->encoding) ||
                                (choice.isUtf8() && mark->isUtf8()));
    TextStart start;
    if (hasMark) start.markSize = mark->bytes.size();
    if (!choice.isAutomatic() && !choice.isUtf8()) {
        start.encoding = choice.name();
    } else if (hasMark && !mark->isUtf8()) {
        start.encoding = mark->encoding;
    }
    return start;
}

bool mayBecomeMark(std::string_view begun) {
    return std::ranges::any_of(marks, [&](const Mark& mark) {
        return begun.size() < mark.bytes.size() && mark.bytes.starts_with(begun);
    });
}

}  // namespace tool
