// Comparing the engine with the reference matcher and with its own plain graph, and collecting the differences so that
// the shortest are shown.
//
// Equal means: all matches of a walk, all tokens with their names, and the calls of the host. Counters of what was
// compared are there so that a test can fail when it compares next to nothing.
#pragma once

#include "tests/support/match_walk.h"
#include "tests/support/pattern_random.h"

#include <string>
#include <vector>

namespace corvane_tests {
namespace reference {
struct Pattern;
}

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

/// Enough to repeat the comparison by hand.
struct Difference {
    std::u16string pattern;
    RE_Flags flags = kPlain;
    std::u16string subject;
    size_t offset = 0;
    std::string where;  ///< the setting and the walk
    std::string expected;
    std::string got;
};

/// One for each test. Runs compare and collect; `report` shows.
class Comparison {
public:
    /// Walks through every subject from its start, or from every offset, with the reference, and compares.
    void run(const std::u16string& pattern, RE_Flags flags, const EngineConfig& config,
             const std::vector<std::u16string>& subjects, bool everyOffset);

    /// The plain graph against the reference where that can answer, and each of the settings against the plain
    /// graph: matches, tokens and calls of the host, over subjects, offsets and walks that are drawn.
    void referee(PatternSource& source, const DrawnPattern& pattern, const std::vector<EngineConfig>& configs);
    /// The same over all short subjects of two letters.
    void refereeDense(PatternSource& source, const DrawnPattern& pattern, const std::vector<EngineConfig>& configs);

    size_t compared() const { return m_compared; }
    /// How many walks the reference judged, and how many of these found something.
    size_t judged() const { return m_judged; }
    size_t matched() const { return m_matched; }
    /// Empty when everything agreed, otherwise the shortest differences, one a line.
    std::string report() const;

private:
    struct Parties;

    void refereeOn(const std::u16string& subject, PatternSource& source, Parties& parties);
    /// A walk to be judged.
    struct Question {
        const DrawnPattern& pattern;
        const std::u16string& subject;
        size_t offset;
        Walk walk;
    };
    void note(const Question& question, const std::string& where, const std::string& expected, const std::string& got);
    void judgeBySetting(const Question& question, const EngineConfig& config, const TestedPattern::Found& expected,
                        const TestedPattern::Found& got);
    void judgeByReference(const Question& question, const reference::Pattern& parsed, const std::vector<Outcome>& got);

    std::vector<Difference> m_differences;
    size_t m_compared = 0;
    size_t m_judged = 0;
    size_t m_matched = 0;
    size_t m_differing = 0;
};

}  // namespace corvane_tests
