// The literals of a node, from what it means. A node that means no text has none.
#include "regexp/dfa/node_literals.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"

RE_Node_Literals literalsOf(const RE_Node* node) {
    const RE_Meaning meaning = node->meaning();
    if (const auto* const text = std::get_if<RE_Meanings::Text>(&meaning)) {
        return {{{text->string->text, text->string->length}}, text->string->ignoreCase};
    }
    RE_Node_Literals found;
    if (const auto* const texts = std::get_if<RE_Meanings::Texts>(&meaning)) {
        const RE_Literal_Trie& literals = texts->set->literals;
        for (std::size_t i = 0; i < literals.count(); ++i) {
            found.texts.push_back(literals.text(i));
        }
        found.ignoreCase = literals.ignoresCase();
    }
    return found;
}
