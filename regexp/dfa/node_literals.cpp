#include "regexp/dfa/node_literals.h"

#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"

RE_Node_Literals literalsOf(const RE_Node* node) {
    if (const auto* string = dynamic_cast<const RE_String*>(node)) {
        return {{{string->text, string->length}}, string->ignoreCase};
    }
    RE_Node_Literals found;
    if (const auto* set = dynamic_cast<const RE_Literal_Set*>(node)) {
        for (std::size_t i = 0; i < set->literals.count(); ++i) {
            found.texts.push_back(set->literals.text(i));
        }
        found.ignoreCase = set->literals.ignoresCase();
    }
    return found;
}
