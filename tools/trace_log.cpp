// Turns events into text when they happen: afterwards the nodes of dynamic texts are gone, and with them the
// labels.
#include "tools/trace_log.h"

#include "regexp/graph/node.h"
#include "regexp/nodes/label_text.h"
#include "regexp/state/search_info.h"

namespace tool {
namespace {

// A copy of the tokens in effect. A search of a pattern without tokens may have no store of them.
TokenState tokensOf(const RE_Search_Info& search) {
    TokenState state;
    const std::size_t count = search.tokens == nullptr ? 0 : search.tokens->count;
    for (std::size_t index = 0; index != count; ++index) {
        const RE_TokenInfo* const token = search.tokens->get(index);
        state.emplace_back(token->start, token->length);
    }
    return state;
}

std::string nodeText(const RE_Node& node) {
    constexpr std::size_t longestLabel = 60;  // it is written again for every step
    return "n" + std::to_string(node.nodeId) + " " + shortened(node.label(), longestLabel);
}

// Start and length, as results are printed everywhere.
std::string extent(std::size_t from, std::size_t to) {
    return "[" + std::to_string(from) + "," + std::to_string(to - from) + "]";
}

std::string stepText(const RE_Trace_Event& event) {
    std::string text = "    " + std::to_string(event.from) + " " + nodeText(*event.node);
    if (!event.succeeded) return text + ": no";
    return event.to == event.from ? text + ": yes" : text + ": yes, to " + std::to_string(event.to);
}

// A line without its token states. Attempts are flush left, steps are indented, and what a step did to the
// stack of choices more so.
std::string eventText(const RE_Trace_Event& event) {
    switch (event.kind) {
        case RE_Trace_Kind::seek:
            return "seek from " + std::to_string(event.from) +
                   (event.succeeded ? ": " + std::to_string(event.to) : ": nowhere");
        case RE_Trace_Kind::start:
            return "start at " + std::to_string(event.from);
        case RE_Trace_Kind::step:
            return stepText(event);
        case RE_Trace_Kind::push:
            return "        leaves a choice of n" + std::to_string(event.node->nodeId) + " at " +
                   std::to_string(event.from);
        case RE_Trace_Kind::refuse:
            return "        n" + std::to_string(event.node->nodeId) + " was tried here before";
        case RE_Trace_Kind::pop:
            return "    back to the choice of n" + std::to_string(event.node->nodeId) + " at " +
                   std::to_string(event.from);
        case RE_Trace_Kind::body:
            return "    the body of n" + std::to_string(event.node->nodeId) +
                   (event.succeeded ? " completed" : " failed") + ", on at " + std::to_string(event.to);
        case RE_Trace_Kind::finish:
            break;
    }
    return event.succeeded ? "match " + extent(event.from, event.to)
                           : "no match at " + std::to_string(event.from);
}

}  // namespace

// Token states are kept once as long as they do not change, and events refer to them by index: most steps
// leave the tokens alone.
void TraceLog::observe(const RE_Trace_Event& event, const RE_Search_Info& search) {
    // Beyond the limit nothing is kept, but the count says how much is missing.
    if (events_.size() == limit_) {
        ++dropped_;
        return;
    }
    TokenState tokens = tokensOf(search);
    if (tokens != tokenStates_.back()) tokenStates_.push_back(std::move(tokens));
    events_.push_back({event, event.node == nullptr ? 0 : event.node->nodeId, eventText(event),
                       static_cast<std::size_t>(search.backtrack.top + 1), tokenStates_.size() - 1});
    // The number is kept; the pointer could dangle.
    events_.back().event.node = nullptr;
}

// The tokens are shown only where they differ from those of the event before.
std::string describeEvent(const TraceLog& log, std::size_t index) {
    const LoggedEvent& logged = log.events()[index];
    std::string text = logged.text;
    const std::size_t before = index == 0 ? 0 : log.events()[index - 1].tokens;
    if (logged.tokens == before) return text;
    const TokenState& tokens = log.tokenStates()[logged.tokens];
    if (tokens.empty()) return text + "; no tokens";
    text += ";";
    for (std::size_t token = 0; token != tokens.size(); ++token) {
        const auto& [start, length] = tokens[token];
        text += " $" + std::to_string(token + 1) + " " + extent(start, start + length);
    }
    return text;
}

}  // namespace tool
