// The version of the library itself, whatever an application was built for.
#include "regexp/version.h"

#define CORVANE_TEXT_OF(number) #number
#define CORVANE_TEXT(number) CORVANE_TEXT_OF(number)

int reVersion() noexcept {
    return CORVANE_REGEXP_VERSION;
}

const char* reVersionText() noexcept {
    return CORVANE_TEXT(CORVANE_REGEXP_VERSION_MAJOR) "." CORVANE_TEXT(
        CORVANE_REGEXP_VERSION_MINOR) "." CORVANE_TEXT(CORVANE_REGEXP_VERSION_PATCH);
}
