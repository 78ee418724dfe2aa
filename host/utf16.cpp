// UTF-16 string functions on top of the standard string view.

#include "host/utf16.h"

#include <string_view>

#include "host/unit_class.h"

namespace {

using View = std::u16string_view;

char16_t sameUnit(char16_t unit) {
    return unit;
}

// Units are unsigned, so the order is that of the units themselves, not that of code points: a surrogate
// sorts before U+E000 to U+FFFF. The check for NUL comes after that for a difference, so a text that ends
// first is the lesser one.
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

// Turns the answer of a string view into the pointer that these functions return.
const char16_t* placeOf(const char16_t* text, size_t index) {
    return index == View::npos ? nullptr : text + index;
}

}  // namespace

size_t utf16_strlen(const char16_t* text) {
    return View::traits_type::length(text);
}

int utf16_strcmp(const char16_t* left, const char16_t* right) {
    // No count ends the comparison; the NUL that the caller promises does.
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
