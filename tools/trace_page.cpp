// The page gets the events as data and replays them itself; trace_page_head.cpp and trace_page_script.cpp hold its text.
//
// Text of the user's (pattern, subject, labels) reaches the page only as JSON inside a script: asScriptText
// keeps it from ending the script.
#include "tools/trace_page.h"

#include "tools/convert_text.h"
#include "tools/trace_page_source.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/graph_export.h"
#include "regexp/nodes/label_text.h"

#include <nlohmann/json.hpp>

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// A label of the picture is a line; the full text is in the graph of `cvregexp graph`.
constexpr std::size_t longestOfLabel = 60;
// In the order of RE_Trace_Kind; the script compares with these words.
constexpr std::string_view kindNames[] = {"seek", "start", "step", "push", "refuse", "pop", "body", "finish"};

// The node's links with the names that the graph export uses, so that the page draws the same arrows.
Json linksOf(RE_Node* node) {
    struct Links : RE_Link_Visitor {
        void link(RE_Node*& target, RE_Link kind) override {
            if (target != nullptr) all.push_back({target->nodeId, linkName(kind)});
        }
        Json all = Json::array();
    } links;
    node->visitLinks(links);
    return links.all;
}

// One event as the script of the page reads it.
Json eventObject(const TraceLog& log, std::size_t index) {
    const LoggedEvent& logged = log.events()[index];
    const RE_Trace_Event& event = logged.event;
    return {{"kind", kindNames[static_cast<std::size_t>(event.kind)]},
            {"node", logged.nodeId},
            {"from", event.from},
            {"to", event.to},
            {"ok", event.succeeded},
            {"choices", logged.choices},
            {"tokens", logged.tokens},
            {"text", describeEvent(log, index)}};
}

// Begin and end of the part of the pattern that the node was made for, in units, or null.
Json partOf(const RE_Node* node, const RE_Pattern_Parts& parts) {
    const std::optional<RE_Part_Of_Pattern> part = parts.of(node->nodeId);
    return part ? Json{part->start, part->start + part->length} : Json();
}

// The names of the tokens by their numbers; null where one has none.
Json namesOf(const RE_Graph_Facts& facts) {
    Json names = Json::array();
    for (const char16_t* const name : facts.tokenNames)
        names.push_back(name == nullptr ? Json() : Json(toUtf8(name)));
    return names;
}

// All that the page knows: the graph's nodes and links, the subject, the events and the token states.
Json traceObject(const CompiledPattern& pattern, const RE_Pattern_Parts& parts, std::u16string_view subject,
                 const TraceLog& log) {
    Json trace{{"pattern", toUtf8(pattern.text())},
               {"subject", Json::array()},
               {"root", pattern.tree().getRoot()->nodeId},
               {"nodes", Json::array()},
               {"events", Json::array()},
               {"tokens", log.tokenStates()},
               {"names", namesOf(pattern.tree().getFacts())},
               {"dropped", log.dropped()}};
    // As numbers: the subject may hold halves of surrogate pairs, which JSON text cannot.
    for (const char16_t unit : subject) trace["subject"].push_back(static_cast<unsigned>(unit));
    for (RE_Node* node : pattern.tree().getFacts().nodes) {
        trace["nodes"].push_back({{"id", node->nodeId},
                                  {"label", shortened(node->label(), longestOfLabel)},
                                  {"part", partOf(node, parts)},
                                  {"links", linksOf(node)}});
    }
    // By number, as the page goes to an event by its index.
    for (std::size_t index = 0; index != log.events().size(); ++index)
        trace["events"].push_back(eventObject(log, index));
    return trace;
}

// Inside a script nothing may look like markup. "<" occurs in strings only, where it can be escaped.
std::string asScriptText(const Json& data) {
    const std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string safe;
    for (const char c : text) {
        if (c == '<') {
            safe += "\\u003c";
        } else {
            safe += c;
        }
    }
    return safe;
}

}  // namespace

std::string tracePage(const CompiledPattern& pattern, const RE_Pattern_Parts& parts,
                      std::u16string_view subject, const TraceLog& log) {
    return std::string(tracePageHead) +
           "const trace = " + asScriptText(traceObject(pattern, parts, subject, log)) + ";\n" +
           std::string(tracePageScript);
}

}  // namespace tool
