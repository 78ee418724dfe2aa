// The texts that are searched, by name. All are the same in every run.
#pragma once

#include "bench/text.h"

#include <string_view>

namespace corvane_bench {

/// Made on first use, and kept. Throws for a name that no text has.
const Text& textNamed(std::string_view name);

}  // namespace corvane_bench
