// Decides whether there is anything to remove; the walk itself is the context's, which keeps the list of
// nodes.
#include "regexp/passes/null_nodes.h"

RE_Node* removeNullNodes(RE_Graph_Context& context, RE_Node* root) {
    if (!context.hasSkippable) {
        return root;
    }
    context.hasSkippable = false;
    return context.leadPastSkippable(root);
}
