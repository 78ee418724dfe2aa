// Comparing the engine with the reference matcher, and collecting the differences so that the shortest are
// shown.
#pragma once

#include "tests/support/engine_run.h"

#include <string>
#include <vector>

namespace corvane_tests {

/// A number from the environment, or `fallback` when the variable is missing or no number.
unsigned long environmentNumber(const char* name, unsigned long fallback);

/// True when a sanitizer slows everything down and sizes should shrink.
constexpr bool sanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

struct Difference {
    std::u16string pattern;
    RE_Flags flags = kPlain;
    std::u16string subject;
    size_t offset = 0;
    EngineConfig config;
    Outcome expected;
    Outcome got;
};

class Comparison {
public:
    /// Searches every subject from every offset, with one seek table a subject, and compares.
    void run(const std::u16string& pattern, RE_Flags flags, const EngineConfig& config,
             const std::vector<std::u16string>& subjects, bool everyOffset);

    size_t compared() const { return m_compared; }
    /// Empty when everything agreed, otherwise the shortest differences, one a line.
    std::string report() const;

private:
    std::vector<Difference> m_differences;
    size_t m_compared = 0;
    size_t m_differing = 0;
};

}  // namespace corvane_tests
