// The texts of one match that a replacement can refer to.
#pragma once

#include "regexp/state/results.h"

#include <cstddef>
#include <string_view>

/// The part of the subject, empty where the results have none: those of narrow text keep no subject.
std::u16string_view subjectPart(const RE_Results& results, std::size_t start, std::size_t length);
std::u16string_view textBefore(const RE_Results& results);
std::u16string_view matchedText(const RE_Results& results);
std::u16string_view textAfter(const RE_Results& results);

/// How many tokens are in effect.
std::size_t tokensInEffect(const RE_Results& results);
