// What is handed to the host: (?@expr), (?(?@expr)...), (??text) and (??@expr).
#include "regexp/eval/host_expressions.h"
#include "regexp/parser/grammar.h"

bool RE_Grammar::mayEvaluate() {
    const bool may = context.mayEvaluate();
    if (!may) {
        warnAt(at, RE_WARNING_EVALUATION_DISABLED);
    }
    return may;
}

// The group's marks are `?@`, `??` or `??@`.
void RE_Grammar::readDynamicGroup(std::uint32_t close) {
    if (!mayEvaluate()) {
        dropGroup(close);
        return;
    }
    const bool isScript = text[at + 2] == u'@';
    const bool isExpression = !isScript && text[at + 3] == u'@';
    const std::size_t start = at + (isExpression ? 4 : 3);
    const std::size_t units = close - start;
    if (isScript) {
        addDynamic(compileScript(context, text + start, units));
    } else if (isExpression) {
        addDynamic(compileExpression(context, text + start, units));
    } else {
        addDynamic(compileDynamicText(context, text + start, units));
    }
    at = close + std::size_t{1};
}

void RE_Grammar::addDynamic(RE_Syntax_Dynamic dynamic) {
    addItem(RE_Syntax_Kind::evaluate, at);
    tree[tree[frame().branch].lastChild].payload = static_cast<std::uint32_t>(tree.dynamics.size());
    tree.dynamics.push_back(std::move(dynamic));
    context.facts->hasDynamicNodes = true;
}

// The item that stands for the expression between `start` and `end`; it belongs to no branch.
std::uint32_t RE_Grammar::readDynamicCondition(std::size_t start, std::size_t end) {
    const std::uint32_t item = tree.add(RE_Syntax_Kind::evaluate, static_cast<std::uint32_t>(start), flags());
    tree[item].payload = static_cast<std::uint32_t>(tree.dynamics.size());
    tree.dynamics.push_back(compileCondition(context, text + start, end - start));
    context.facts->hasDynamicNodes = true;
    return item;
}
