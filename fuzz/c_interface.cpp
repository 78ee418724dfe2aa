// Whatever C programs pass is answered by a status, and well-made arguments by what the engine answers.
#include "bindings/c/corvane/corvane.h"
#include "fuzz/targets.h"

#include <cstring>

namespace corvane_fuzz {
namespace {

cvre_text textOf(std::u16string_view units) {
    return {units.data(), units.size() * sizeof(char16_t), CVRE_UTF16};
}

/// The same bytes, as something else, perhaps with a size that does not fit.
cvre_text misread(std::u16string_view units, std::size_t number) {
    return {units.data(), units.size() * sizeof(char16_t) - (units.empty() ? 0 : number & 1),
            static_cast<cvre_encoding>(number % 5)};
}

bool isStatus(cvre_status status) {
    return std::strcmp(cvre_status_text(status), cvre_status_text(-1)) != 0;
}

void searchMisread(const cvre_pattern* pattern, const cvre_replacement* replacement, cvre_text subject,
                   std::size_t number, std::u16string_view text) {
    cvre_matcher* matcher = nullptr;
    cvre_limits limits{sizeof limits, kLimits.steps, kLimits.bytes, 0, nullptr};
    require(cvre_matcher_new(pattern, &matcher) == CVRE_OK, "no matcher", text);
    cvre_status status = cvre_matcher_use(matcher, subject, static_cast<cvre_offsets>(number % 4), &limits);
    for (int i = 0; i < 20 && status == CVRE_OK; ++i) {
        size_t start = 0, length = 0;
        cvre_text part{};
        status = i % 5 == 4   ? cvre_matcher_find(matcher, number % 50)
                 : i % 5 == 3 ? cvre_matcher_match_at(matcher, number % 40)
                              : cvre_matcher_next(matcher);
        status = status == CVRE_NO_MATCH && i % 5 == 3 ? CVRE_OK : status;
        require(isStatus(cvre_matcher_extent(matcher, &start, &length)), "an extent", text);
        require(isStatus(cvre_matcher_token_text(matcher, number % 3, &part)), "a token", text);
    }
    require(isStatus(status), "a search", text);
    cvre_matcher_free(matcher);
    cvre_replace_options options{sizeof options, number % 3, 0, 0, &limits};
    cvre_buffer result{};
    require(isStatus(cvre_replace(pattern, subject, replacement, &options, &result, nullptr)),
            "a replacement", text);
    cvre_free(result.data);
}

}  // namespace

void c_interface(const Input& input) {
    const std::u16string_view text = input.text(0, 60);
    const std::u16string_view subject = input.text(1, 60);
    cvre_compile_options options{};
    options.size = sizeof options;
    options.flags = input.flags();
    cvre_pattern* pattern = nullptr;
    cvre_replacement* replacement = nullptr;
    require(cvre_compile(textOf(text), &options, &pattern) == CVRE_OK, "it is not compiled", text);
    require(cvre_replacement_compile(textOf(input.text(2, 60)), &options, &replacement) == CVRE_OK,
            "nor is this", text);
    for (size_t i = 0; i < cvre_pattern_warning_count(pattern); ++i) {
        cvre_warning warning{};
        warning.size = sizeof warning;
        require(cvre_pattern_warning(pattern, i, &warning) == CVRE_OK &&
                    warning.position <= 2 * text.size() &&
                    warning.extent.start + warning.extent.length <= 2 * text.size(),
                "a warning outside", text);
    }
    const corvane_tests::Engine engine(text, input.flags(), input.config());
    cvre_matcher* matcher = nullptr;
    cvre_limits limits{sizeof limits, kLimits.steps, kLimits.bytes, 0, nullptr};
    require(cvre_matcher_new(pattern, &matcher) == CVRE_OK &&
                cvre_matcher_use(matcher, textOf(subject), CVRE_UNITS, &limits) == CVRE_OK,
            "it is not searched", text);
    for (const RE_Results& match : engine.tree().find_all(subject, 0, kLimits)) {
        const cvre_status status = cvre_matcher_next(matcher);
        if (status == CVRE_STEPS_SPENT) {
            break;
        }
        size_t start = 0, length = 0;
        require(status == CVRE_OK && cvre_matcher_extent(matcher, &start, &length) == CVRE_OK &&
                    start == match.matchStart && length == match.matchLength,
                "another match", text, subject);
    }
    cvre_matcher_free(matcher);
    searchMisread(pattern, replacement, misread(subject, input.number()), input.number(), text);
    cvre_pattern* other = nullptr;
    require(isStatus(cvre_compile(misread(text, input.number()), &options, &other)), "a status", text);
    cvre_pattern_free(other);
    cvre_replacement_free(replacement);
    cvre_pattern_free(pattern);
}

}  // namespace corvane_fuzz
