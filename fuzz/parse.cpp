// Any text is a pattern: it compiles, warns inside itself, and can be drawn, measured and searched.
//
// No oracle: the target looks for what a sanitizer finds, and for promises about warnings and sizes that hold
// for every text.
#include "fuzz/targets.h"

#include "host/allocation.h"

namespace corvane_fuzz {

void parse(const Input& input) {
    const std::u16string_view pattern = input.text(0, 4096);
    const corvane_tests::Engine engine(pattern, input.flags(), input.config());
    for (const corvane_tests::Warning& warning : engine.warnings()) {
        require(warning.number <= 22 && warning.position <= pattern.size(), "a warning points elsewhere",
                pattern);
    }
    require(engine.warnings().size() <= pattern.size(), "more warnings than units", pattern);
    const RE_Tree& tree = engine.tree();
    require(tree.memoryUse() >= tree.getNodeCount() * sizeof(void*), "nodes that take no memory", pattern);
    require(tree.graph().starts_with("digraph regexp {"), "no graph", pattern);
    std::size_t names = 0;
    utFree(tree.treeNames(&names));
    require(names <= tree.getTokenCount(), "more names than tokens", pattern);
    engine.searchWithin(pattern, 0, kLimits);
    engine.searchWithin(input.text(1, 256), 0, kLimits);
}

}  // namespace corvane_fuzz
