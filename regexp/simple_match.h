// Does this pattern match anywhere in this text? For narrow strings, without objects.
#pragma once

#include "regexp/base/export.h"

/// Text and pattern in the local code page; the subject comes first. A pattern that matches only the empty
/// text does not match.
CORVANE_REGEXP_EXPORT bool reMatch(const char* subject, const char* pattern);
/// The same, ignoring case.
CORVANE_REGEXP_EXPORT bool reMatchi(const char* subject, const char* pattern);
