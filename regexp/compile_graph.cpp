// The steps of compiling in their order.
#include "regexp/compile_graph.h"

#include "regexp/base/within_size.h"
#include "regexp/parser/grammar.h"
#include "regexp/parser/graph_builder.h"
#include "regexp/parser/measure.h"

namespace {

// A match of at most so many units is found or given up soon.
constexpr std::uint64_t manyUnits = 256;

/// The graph as the pattern is written. The syntax tree is gone before the passes take memory.
RE_Node* readGraph(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t length,
                   RE_Node* continuationNode, bool last) {
    const RE_Flags flags = parserContext.flags;
    RE_Syntax_Tree syntax = RE_Grammar(parserContext, pattern, length, last).read();
    parserContext.flags = flags;
    measureSyntax(syntax, parserContext, pattern);
    parserContext.facts->tokenCount = withinSize(syntax.groupCount);
    parserContext.facts->minimumLength = syntax[RE_Syntax_Tree::root].least;
    parserContext.hasLongMatches = syntax[RE_Syntax_Tree::root].most > manyUnits;
    return RE_Graph_Builder(parserContext, syntax).build(continuationNode);
}

}  // namespace

RE_Node* compileGraph(RE_ParserContext& parserContext, const char16_t* pattern, std::size_t length,
                      RE_Node* continuationNode, bool last, const RE_Stage_Observer& observer) {
    // Observers see the passes make strings and runs from their parts; the finished graph is the same.
    parserContext.joinsTexts = parserContext.options().optimizeLinearSubpatterns() && !observer;
    parserContext.joinsRuns = parserContext.options().optimizeDotStar() && !observer;
    RE_Node* const parsed = readGraph(parserContext, pattern, length, continuationNode, last);
    if (parserContext.parts != nullptr) {
        parserContext.parts->workFor({});  // passes say what their nodes stand for
    }
    return runPasses(parserContext, parsed, observer);
}
