// The passes and their order.
//
// The order matters for what the passes find, never for the answers: each leaves a graph that matches the
// same, and each works on any graph, as any of the others may be switched off. Literals are joined before
// loops and alternations look at them; alternations come after the loops, since a run says at once what a
// branch can begin with; the loops that may be possessive need to know what follows them in its final form;
// and the start finder reads all the rest.
#include "regexp/passes/pass_runner.h"

#include "regexp/passes/alternations.h"
#include "regexp/passes/check_graph.h"
#include "regexp/passes/dot_star.h"
#include "regexp/passes/glances.h"
#include "regexp/passes/last_lookaheads.h"
#include "regexp/passes/linear_subpatterns.h"
#include "regexp/passes/null_nodes.h"
#include "regexp/passes/possessive_loops.h"
#include "regexp/passes/start_finder.h"

namespace {

using Corvane::regexp::CompileOptions;

/// A pass, the option that switches it, and the stage under which its result is shown. Passes with one stage
/// are shown one after the other under its name.
struct Pass {
    RE_Stage stage;
    bool (CompileOptions::*enabled)() const;
    RE_Node* (*run)(RE_Graph_Context& context, RE_Node* root);
};

constexpr Pass passes[] = {
    {RE_Stage::null_nodes, &CompileOptions::optimizeNullNodes, removeNullNodes},
    {RE_Stage::linear, &CompileOptions::optimizeLinearSubpatterns, joinLinearSubpatterns},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, rewriteDotStar},
    {RE_Stage::dot_star, &CompileOptions::optimizeLinearSubpatterns, joinAlternations},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, findGlances},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, findLastLookaheads},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, makeLoopsPossessive},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, chooseStartFinder},
};

}  // namespace

RE_Node* runPasses(RE_Graph_Context& context, RE_Node* root, const RE_Stage_Observer& observer) {
    checkGraph(root, !context.hasSkippable);
    if (observer) {
        observer(RE_Stage::parsed, root);
    }
    for (const Pass& pass : passes) {
        if ((context.options().*pass.enabled)()) {
            root = pass.run(context, root);
            checkGraph(root, !context.hasSkippable);
            if (observer) {
                observer(pass.stage, root);
            }
        }
    }
    return root;
}
