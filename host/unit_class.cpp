// Character properties from ICU's common library. The engine reads these functions into tables once per
// process, so their speed does not matter to searches; only the case adjustment of replacements calls them
// for each unit.

#include "host/unit_class.h"

#include <unicode/uchar.h>

namespace {

// A mapping outside of the basic plane has no single unit; such a unit counts as having no mapping.
char16_t asUnit(UChar32 mapped, char16_t original) {
    return mapped >= 0 && mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : original;
}

}  // namespace

bool cvu_isalpha(char16_t unit) {
    return u_isalpha(unit) != 0;
}

bool cvu_isalnum(char16_t unit) {
    return u_isalnum(unit) != 0;
}

bool cvu_isdigit(char16_t unit) {
    return u_isdigit(unit) != 0;
}

bool cvu_isspace(char16_t unit) {
    return u_isspace(unit) != 0;
}

bool cvu_isxdigit(char16_t unit) {
    return u_isxdigit(unit) != 0;
}

bool cvu_islower(char16_t unit) {
    return u_islower(unit) != 0;
}

bool cvu_isupper(char16_t unit) {
    return u_isupper(unit) != 0;
}

char16_t cvu_tolower(char16_t unit) {
    return asUnit(u_tolower(unit), unit);
}

char16_t cvu_toupper(char16_t unit) {
    return asUnit(u_toupper(unit), unit);
}
