// All matches of a subject, by each of the ways in which callers walk through them. What the ways keep between their
// searches (a seek table, a search state, a memo) is what a comparison of them tests.
#pragma once

#include "tests/support/engine_run.h"
#include "tests/support/scripted_host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane_tests {

enum class Walk {
    fresh,     ///< a search of its own for each match
    table,     ///< the same with a seek table
    sequence,  ///< a match sequence
    range      ///< find_all, which leaves out an empty match that directly follows a match
};
inline constexpr Walk kWalks[] = {Walk::fresh, Walk::table, Walk::sequence, Walk::range};

std::ostream& operator<<(std::ostream& out, Walk walk);

/// What a walk finds of the matches that one search after the other finds.
std::vector<Outcome> seenBy(Walk walk, std::vector<Outcome> matches);

/// All matches by this walk. The table may know the subject from walks before, and must not know another subject.
std::vector<Outcome> walkThrough(const RE_Tree& tree, std::u16string_view subject, size_t offset, Walk walk,
                                 RE_Seek_Table& table);

std::string describe(const std::vector<Outcome>& matches);

/// A pattern under one setting, with a host that answers by the script of expression_script.h.
class TestedPattern {
public:
    TestedPattern(std::u16string_view pattern, RE_Flags flags, const EngineConfig& config);

    struct Found {
        std::vector<Outcome> matches;
        std::string calls;  ///< of the host, in their order

        bool operator==(const Found&) const = default;
    };
    /// Nothing when the host was called too often. One seek table lasts as long as the subject stays the same.
    std::optional<Found> walk(const std::u16string& subject, size_t offset, Walk walk);
    const RE_Tree& tree() const { return m_run.tree(); }
    const EngineConfig& config() const { return m_config; }

private:
    EngineConfig m_config;
    HostJournal m_host;
    ScriptedRun m_run;
    std::u16string m_subject;
    std::optional<RE_Seek_Table> m_table;
};

}  // namespace corvane_tests
