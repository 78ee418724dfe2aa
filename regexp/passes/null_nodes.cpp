#include "regexp/passes/null_nodes.h"

#include "regexp/nodes/collection.h"
#include "regexp/nodes/links.h"

namespace {

// What was passed over is made to lead straight to the end too, so that long chains are walked once only.
void bypassSkippable(RE_Node*& target) {
    RE_Node* const end = throughSkippable(target);
    for (RE_Node* passed = target; passed != end;) {
        RE_Node* const following = passed->nextNode;
        passed->nextNode = end;
        passed = following;
    }
    target = end;
}

}  // namespace

RE_Node* removeNullNodes(RE_ParserContext& context, RE_Node* root) {
    if (!context.hasSkippable) {
        return root;
    }
    context.hasSkippable = false;
    const RE_Collection graph(root, &context.scratch);
    for (RE_Node* node : graph.nodes()) {
        forEachLink(*node, [](RE_Node*& target, RE_Link) { bypassSkippable(target); });
    }
    return throughSkippable(root);
}
