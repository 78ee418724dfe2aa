// A compilation that notes what it makes nodes for, and whose graph is dropped.
#include "regexp/inspect/pattern_parts.h"

#include "regexp/compile_graph.h"
#include "regexp/graph/pattern_part.h"

#include <algorithm>
#include <vector>

namespace {

/// The parts that nest in each other, for making whole what cuts some of them.
class Nesting {
public:
    explicit Nesting(std::vector<RE_Pattern_Part> parts) : nested(std::move(parts)) {
        const auto outerFirst = [](const RE_Pattern_Part& part) { return std::pair(part.begin, ~part.end); };
        std::ranges::sort(nested, {}, outerFirst);
        nested.erase(std::unique(nested.begin(), nested.end()), nested.end());
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i != nested.size(); ++i) {
            while (!open.empty() && nested[open.back()].end < nested[i].end) {
                open.pop_back();
            }
            outer.push_back(open.empty() ? none : open.back());
            open.push_back(i);
        }
    }

    /// The smallest stretch around this one that holds each part as a whole or not at all.
    RE_Pattern_Part whole(RE_Pattern_Part stretch) const {
        for (RE_Pattern_Part before; !(before == stretch);) {
            before = stretch;
            for (std::size_t i = lastBefore(stretch.begin); i != none; i = outer[i]) {
                if (nested[i].end > stretch.begin && nested[i].end < stretch.end) {
                    stretch.begin = std::min(stretch.begin, nested[i].begin);
                }
            }
            for (std::size_t i = lastBefore(stretch.end - 1); i != none; i = outer[i]) {
                if (nested[i].end > stretch.end && nested[i].begin > stretch.begin) {
                    stretch.end = nested[i].end;
                }
            }
        }
        return stretch;
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// The last one that begins at the place or before it: it or one around it holds the place, if any does.
    std::size_t lastBefore(std::uint32_t place) const {
        const auto after = std::ranges::upper_bound(nested, place, {}, &RE_Pattern_Part::begin);
        return after == nested.begin() ? none : static_cast<std::size_t>(after - nested.begin()) - 1;
    }

    std::vector<RE_Pattern_Part> nested;
    std::vector<std::size_t> outer;  ///< the next one around each
};

}  // namespace

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
    const Nesting nesting(noted.nested());
    RE_Pattern_Parts result;
    for (const RE_Node* node : parserContext.nodes(root)) {
        const RE_Pattern_Part part = noted.of(node);
        if (!part.isEmpty()) {
            const RE_Pattern_Part whole = nesting.whole(part);
            result.parts[node->nodeId] = {whole.begin, std::size_t{whole.end} - whole.begin};
        }
    }
    return result;
}
