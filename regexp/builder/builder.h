// Pattern text put together by a program.
#pragma once

#include "regexp/export.h"

#include <string>
#include <utility>

namespace RE_Builder_Space {

/// Holds the text of a pattern. A value type.
class CORVANE_REGEXP_EXPORT RE_Builder {
public:
    RE_Builder() = default;
    /// `pattern` is pattern text, taken as it stands.
    explicit RE_Builder(std::u16string pattern) : text(std::move(pattern)) {}

    const std::u16string& pattern() const { return text; }

private:
    std::u16string text;
};

}  // namespace RE_Builder_Space
