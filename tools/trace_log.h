// What happened in one search, event by event, as it is printed and replayed. A log is data: nothing in it
// refers to the search, the tree or the subject.
#pragma once

#include "regexp/regexp.h"
#include "regexp/search/observer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace tool {

using TokenState =
    std::vector<std::pair<std::size_t, std::size_t>>;  // start and length of the tokens in effect

struct LoggedEvent {
    RE_Trace_Event event;  // without its node, which may be gone: those of dynamic texts go during the search
    std::uint64_t nodeId;  // 0 when there was none
    std::string text;      // what happened, but for the tokens
    std::size_t choices;   // left on the stack afterwards
    std::size_t tokens;    // index of the token state afterwards
};

// Keeps the first events up to a limit and counts the others.
class TraceLog : public RE_Observer {
public:
    explicit TraceLog(std::size_t limit) : limit_(limit) {}

    void observe(const RE_Trace_Event& event, const RE_Search_Info& search) override;

    const std::vector<LoggedEvent>& events() const { return events_; }
    const std::vector<TokenState>& tokenStates() const { return tokenStates_; }
    std::size_t dropped() const { return dropped_; }

private:
    std::size_t limit_;
    std::size_t dropped_ = 0;
    std::vector<LoggedEvent> events_;
    // Each differs from the one before; the first is the empty state in which a search begins.
    std::vector<TokenState> tokenStates_{{}};
};

// One line for each event, without a line feed at its end.
std::string describeEvent(const TraceLog& log, std::size_t index);

}  // namespace tool
