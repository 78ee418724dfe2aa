// Compiled patterns made of builders: the constructors of `RE_Tree` that know both.
#include "regexp/builder/builder.h"
#include "regexp/eval/context.h"
#include "regexp/tree.h"

RE_Tree::RE_Tree(const RE_Builder_Space::RE_Builder& builder, bool flag) : RE_Tree(builder.pattern(), flag) {}

RE_Tree::RE_Tree(const RE_Builder_Space::RE_Builder& builder, RE_Flags flags, RE_Context* context)
    : interruptible(context != nullptr && context->allow_interrupt()) {
    const std::u16string pattern = builder.pattern();
    parse(pattern.data(), pattern.size(), flags, context, nullptr, nullptr, true, nullptr);
}
