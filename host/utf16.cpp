// UTF-16 string functions on top of the standard string view.

#include "host/utf16.h"

#include <string_view>

#include "host/unit_class.h"

namespace {

using View = std::u16string_view;

char16_t sameUnit(char16_t unit) {
    return unit;
}

template <char16_t (*Fold)(char16_t)>
int compare(const char16_t* left, const char16_t* right, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const char16_t l = Fold(left[i]);
        const char16_t r = Fold(right[i]);
        if (l != r) return l < r ? -1 : 1;
        if (l == 0) return 0;
    }
    return 0;
}

const char16_t* placeOf(const char16_t* text, size_t index) {
    return index == View::npos ? nullptr : text + index;
}

}  // namespace

size_t utf16_strlen(const char16_t* text) {
    return View::traits_type::length(text);
}

int utf16_strcmp(const char16_t* left, const char16_t* right) {
    return compare<sameUnit>(left, right, static_cast<size_t>(-1));
}

int utf16_strncmp(const char16_t* left, const char16_t* right, size_t count) {
    return compare<sameUnit>(left, right, count);
}

int utf16_strnicmp(const char16_t* left, const char16_t* right, size_t count) {
    return compare<cvu_tolower>(left, right, count);
}

const char16_t* utf16_strnchr(const char16_t* text, size_t length, char16_t unit) {
    return placeOf(text, View(text, length).find(unit));
}

const char16_t* utf16_strnrchr(const char16_t* text, size_t length, char16_t unit) {
    return placeOf(text, View(text, length).rfind(unit));
}

const char16_t* utf16_strnstr(const char16_t* text, size_t length, const char16_t* part, size_t partLength) {
    return placeOf(text, View(text, length).find(View(part, partLength)));
}

const char16_t* utf16_strnrstr(const char16_t* text, size_t length, const char16_t* part, size_t partLength) {
    return placeOf(text, View(text, length).rfind(View(part, partLength)));
}
