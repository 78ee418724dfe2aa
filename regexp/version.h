// Which version of the engine an application is built for, and which it runs with.
//
// Versions are MAJOR.MINOR.PATCH. While MAJOR is 0 each MINOR has a binary interface of its own, and from 1.0 on each MAJOR:
// the name of the shared library holds what has to be the same (libcorvane_regexp.so.0.1, later .so.1), and
// `find_package(corvane_regexp VERSION)` accepts what has the same name and is not older.
#pragma once

#include "regexp/base/export.h"

#define CORVANE_REGEXP_VERSION_MAJOR 0
#define CORVANE_REGEXP_VERSION_MINOR 1
#define CORVANE_REGEXP_VERSION_PATCH 0
/// One number, for comparisons of the preprocessor: 1.2.3 is 10203.
#define CORVANE_REGEXP_VERSION \
    (CORVANE_REGEXP_VERSION_MAJOR * 10000 + CORVANE_REGEXP_VERSION_MINOR * 100 + CORVANE_REGEXP_VERSION_PATCH)

/// The same number of the library that runs. Any thread.
CORVANE_REGEXP_EXPORT int reVersion() noexcept;
/// As text, `"1.2.3"`, which is never freed. Any thread.
CORVANE_REGEXP_EXPORT const char* reVersionText() noexcept;
