// Translation of our flags and of PCRE2's answers. Empty when PCRE2 is not installed.
#ifdef CORVANE_HAVE_PCRE2
#define PCRE2_CODE_UNIT_WIDTH 16
#include "tests/support/pcre2_peer.h"

#include <algorithm>
#include <pcre2.h>

namespace corvane_tests {
namespace {

// Of one match. A peer that gives up judges nothing.
constexpr std::uint32_t kMostSteps = 50000;

/// Our `$` never matches before a final line feed. The peer's own shortcuts are off: in version 10.42 automatic
/// possessive loops and start optimisations lose rare matches.
std::uint32_t compileOptions(std::uint32_t flags) {
    std::uint32_t options = PCRE2_DOLLAR_ENDONLY | PCRE2_NO_AUTO_POSSESS | PCRE2_NO_START_OPTIMIZE;
    options |= (flags & 0x01U) != 0 ? PCRE2_CASELESS : 0U;
    options |= (flags & 0x02U) != 0 ? PCRE2_DOTALL : 0U;
    options |= (flags & 0x04U) != 0 ? PCRE2_MULTILINE : 0U;
    options |= (flags & 0x08U) != 0 ? PCRE2_EXTENDED : 0U;
    return options;
}

/// A view of nothing may be null, which the peer takes for an error.
PCRE2_SPTR16 units(std::u16string_view text) {
    static const char16_t empty = 0;
    return reinterpret_cast<PCRE2_SPTR16>(text.empty() ? &empty : text.data());
}

// Group 0 is the match. A group that is unset is a token that is empty at 0.
Outcome toOutcome(pcre2_match_data_16* data) {
    const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer_16(data);
    Outcome outcome{true, ovector[0], ovector[1] - ovector[0], {}};
    for (std::uint32_t pair = 1; pair < pcre2_get_ovector_count_16(data); ++pair) {
        const bool set = ovector[2 * pair] != PCRE2_UNSET;
        outcome.tokens.push_back(set ? Token{ovector[2 * pair], ovector[2 * pair + 1] - ovector[2 * pair], {}}
                                     : Token{});
    }
    return outcome;
}

}  // namespace

struct Pcre2Pattern::Code {
    pcre2_code_16* code = nullptr;
};

// Line ends are line feeds alone, as here; the library's default may be another.
Pcre2Pattern::Pcre2Pattern(std::u16string_view pattern, std::uint32_t flags)
    : m_code(std::make_unique<Code>()), m_matchOptions((flags & 0x20U) != 0 ? 0 : PCRE2_NOTEMPTY) {
    pcre2_compile_context_16* context = pcre2_compile_context_create_16(nullptr);
    pcre2_set_newline_16(context, PCRE2_NEWLINE_LF);
    int error = 0;
    PCRE2_SIZE place = 0;
    m_code->code = pcre2_compile_16(units(pattern), pattern.size(), compileOptions(flags), &error, &place, context);
    pcre2_compile_context_free_16(context);
}

Pcre2Pattern::~Pcre2Pattern() {
    pcre2_code_free_16(m_code->code);
}

bool Pcre2Pattern::valid() const {
    return m_code->code != nullptr;
}

std::optional<Outcome> Pcre2Pattern::search(std::u16string_view subject, size_t offset) const {
    pcre2_match_data_16* data = pcre2_match_data_create_from_pattern_16(m_code->code, nullptr);
    pcre2_match_context_16* context = pcre2_match_context_create_16(nullptr);
    pcre2_set_match_limit_16(context, kMostSteps);
    const int result =
        pcre2_match_16(m_code->code, units(subject), subject.size(), offset, m_matchOptions, data, context);
    pcre2_match_context_free_16(context);
    std::optional<Outcome> outcome;
    if (result > 0) {
        outcome = toOutcome(data);
    } else if (result == PCRE2_ERROR_NOMATCH) {
        outcome = Outcome();
    }
    pcre2_match_data_free_16(data);
    return outcome;
}

std::optional<std::vector<Outcome>> Pcre2Pattern::searchAll(std::u16string_view subject, size_t offset) const {
    std::vector<Outcome> found;
    while (offset <= subject.size()) {
        const std::optional<Outcome> match = search(subject, offset);
        if (!match) {
            return std::nullopt;
        }
        if (!match->matched) {
            break;
        }
        found.push_back(*match);
        offset = match->start + std::max<size_t>(match->length, 1);
    }
    return found;
}

}  // namespace corvane_tests
#endif
