#include "regexp/passes/pass_runner.h"

#include "regexp/passes/alternations.h"
#include "regexp/passes/check_graph.h"
#include "regexp/passes/dot_star.h"
#include "regexp/passes/glances.h"
#include "regexp/passes/linear_subpatterns.h"
#include "regexp/passes/null_nodes.h"
#include "regexp/passes/possessive_loops.h"
#include "regexp/passes/start_finder.h"

namespace {

using Corvane::regexp::CompileOptions;

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
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, makeLoopsPossessive},
    {RE_Stage::dot_star, &CompileOptions::optimizeDotStar, chooseStartFinder},
};

}  // namespace

RE_Node* runPasses(RE_Graph_Context& context, RE_Node* root, const RE_Stage_Observer& observer) {
    checkGraph(root);
    if (observer) {
        observer(RE_Stage::parsed, root);
    }
    for (const Pass& pass : passes) {
        if ((context.options().*pass.enabled)()) {
            root = pass.run(context, root);
            checkGraph(root);
            if (observer) {
                observer(pass.stage, root);
            }
        }
    }
    return root;
}
