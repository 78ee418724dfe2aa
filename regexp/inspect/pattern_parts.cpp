// A compilation that notes what it makes nodes for, and whose graph is dropped.
#include "regexp/inspect/pattern_parts.h"

#include "regexp/compile_graph.h"
#include "regexp/graph/pattern_part.h"

std::optional<RE_Part_Of_Pattern> RE_Pattern_Parts::of(std::uint64_t nodeId) const {
    const auto found = parts.find(nodeId);
    return found == parts.end() ? std::nullopt : std::optional(found->second);
}

RE_Pattern_Parts partsOfPattern(const char16_t* pattern, std::size_t length, RE_Flags flags,
                                RE_Context* context) {
    context->set_string(pattern, length);
    RE_ParserContext parserContext(context, nullptr, flags);
    parserContext.facts->keepsTokens = (flags & RE_FLAG_KEEP_TOKENS) != 0;
    parserContext.facts->refusesEmpty = (flags & RE_FLAG_ALLOW_EMPTY) == 0;
    RE_Node_Parts noted;
    parserContext.parts = &noted;
    RE_Node* const root = compileGraph(parserContext, pattern, length, nullptr, true);
    RE_Pattern_Parts result;
    for (const RE_Node* node : parserContext.nodes(root)) {
        const RE_Pattern_Part part = noted.of(node);
        if (!part.isEmpty()) {
            result.parts[node->nodeId] = {part.begin, part.end - part.begin};
        }
    }
    return result;
}
