// All ways of walking, written as a caller would write them. They have to find the same matches, but for the one that
// `seenBy` leaves out.
#include "tests/support/match_walk.h"

#include "regexp/find_all.h"

#include <ostream>

namespace corvane_tests {
namespace {

// Of the host in one walk. Patterns that call the host are not pruned and may call without end.
constexpr long kMostCalls = 2000;

/// `search` answers what is found from an offset on.
template <typename Search>
std::vector<Outcome> matchAfterMatch(size_t length, size_t offset, const Search& search) {
    std::vector<Outcome> found;
    while (offset <= length) {
        Outcome match = search(offset);
        if (!match.matched) {
            break;
        }
        // An empty match is passed by a unit; whether a search finds it again at its end is up to the search.
        offset = match.start + std::max<size_t>(match.length, 1);
        found.push_back(std::move(match));
    }
    return found;
}

HostJournal scripted() {
    HostJournal host;
    host.knowsScript = true;
    return host;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, Walk walk) {
    static constexpr const char* names[] = {"fresh", "table", "sequence", "range"};
    return out << names[static_cast<size_t>(walk)];
}

// A range leaves out an empty match at the end of a match; the others report it.
std::vector<Outcome> seenBy(Walk walk, std::vector<Outcome> matches) {
    if (walk != Walk::range) {
        return matches;
    }
    std::vector<Outcome> seen;
    size_t end = static_cast<size_t>(-1);
    for (Outcome& match : matches) {
        const bool adjacent = match.length == 0 && match.start == end;
        end = match.start + match.length;
        if (!adjacent) {
            seen.push_back(std::move(match));
        }
    }
    return seen;
}

std::vector<Outcome> walkThrough(const RE_Tree& tree, std::u16string_view subject, size_t offset, Walk walk,
                                 RE_Seek_Table& table) {
    if (walk == Walk::range) {
        std::vector<Outcome> found;
        for (auto& match : tree.find_all(subject, offset)) {
            found.push_back(toOutcome(&match));
        }
        return found;
    }
    if (walk == Walk::sequence) {
        RE_Match_Sequence sequence(tree, subject);
        return matchAfterMatch(subject.size(), offset, [&](size_t from) { return toOutcome(sequence.find(from)); });
    }
    RE_Seek_Table* const known = walk == Walk::table ? &table : nullptr;
    return matchAfterMatch(subject.size(), offset, [&](size_t from) {
        const std::unique_ptr<RE_Results> found(tree.match(subject.data(), subject.size(), from, known));
        return toOutcome(found.get());
    });
}

std::string describe(const std::vector<Outcome>& matches) {
    std::string text;
    for (const Outcome& match : matches) {
        text += (text.empty() ? "" : "; ") + describe(match);
    }
    return text.empty() ? "null" : text;
}

TestedPattern::TestedPattern(std::u16string_view pattern, RE_Flags flags, const EngineConfig& config)
    : m_config(config), m_host(scripted()), m_run(pattern, m_host, flags, config) {}

std::optional<TestedPattern::Found> TestedPattern::walk(const std::u16string& subject, size_t offset, Walk walk) {
    // The table knows one subject by its address, so the subject is kept here too.
    if (!m_table || subject != m_subject) {
        m_subject = subject;
        m_table.emplace();
    }
    m_host.calls.clear();
    m_host.throwAt = kMostCalls;
    try {
        std::vector<Outcome> matches = walkThrough(m_run.tree(), m_subject, offset, walk, *m_table);
        return Found{std::move(matches), m_host.text()};
    } catch (const HostFailure&) {
        return std::nullopt;
    }
}

}  // namespace corvane_tests
