// The handle of a walk through the matches of a subject.
#pragma once

#include "bindings/c/compiled.h"
#include "regexp/text/text_search.h"

#include <memory>
#include <optional>

struct cvre_matcher {
    explicit cvre_matcher(std::shared_ptr<corvane_c::Compiled> pattern) : compiled(std::move(pattern)) {}
    /// A view of one match, for a callback.
    cvre_matcher(std::shared_ptr<corvane_c::Compiled> pattern, const RE_Text_Match& match)
        : compiled(std::move(pattern)), current(match) {}

    const RE_Text_Match& match() const;

    std::shared_ptr<corvane_c::Compiled> compiled;
    RE_Text text;
    RE_Offsets offsets = RE_Offsets::bytes;
    std::optional<RE_Text_Matches> walk;  ///< null while there is no subject, and in a view
    std::optional<RE_Text_Match> current;
};
