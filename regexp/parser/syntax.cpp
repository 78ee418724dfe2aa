// Growing and reshaping the syntax tree while the grammar reads.
//
// Every function here takes constant time, or time in the units added: the grammar calls them for each unit
// of a pattern.
#include "regexp/parser/syntax.h"

#include "regexp/base/within_size.h"

// Only the fields that every kind has are set; the others keep their defaults until the caller sets them.
std::uint32_t RE_Syntax_Tree::add(RE_Syntax_Kind kind, std::uint32_t position, RE_Flags flags) {
    RE_Syntax& item = items.emplace_back();
    item.kind = kind;
    item.position = item.begin = position;
    item.flags = flags;
    return static_cast<std::uint32_t>(items.size() - 1);
}

void RE_Syntax_Tree::append(std::uint32_t parent, std::uint32_t child) {
    RE_Syntax& holder = items[parent];
    if (holder.lastChild == RE_Syntax::none) {
        holder.firstChild = child;
    } else {
        items[holder.lastChild].nextSibling = child;
    }
    holder.lastChild = child;
}

bool RE_Syntax_Tree::extendText(std::uint32_t parent, const char16_t* added, std::size_t count,
                                RE_Flags flags) {
    // The units of a text must be contiguous in `units`. They are as long as nobody else has added any
    // since, which the second condition below checks; a text that was interrupted stays as it is and the
    // caller starts another one.
    const std::uint32_t last = items[parent].lastChild;
    if (last == RE_Syntax::none || items[last].flags != flags) {
        return false;
    }
    RE_Syntax& item = items[last];
    if (item.kind == RE_Syntax_Kind::literal) {
        item.kind = RE_Syntax_Kind::text;
        item.payload = static_cast<std::uint32_t>(units.size());
        item.number = 1;
        units.push_back(item.low);
    } else if (item.kind != RE_Syntax_Kind::text || item.payload + item.number != units.size()) {
        return false;
    }
    units.insert(units.end(), added, added + count);
    item.number += count;
    return true;
}

// A text of two units leaves two literals, as a text has at least two. The detached item takes the position
// of the text. The unit stays in `units`, unused, so that this text can no longer be extended.
void RE_Syntax_Tree::detachLastUnit(std::uint32_t parent, std::uint32_t position) {
    RE_Syntax& item = items[items[parent].lastChild];
    --item.number;
    item.end = position;
    const char16_t unit = units[item.payload + withinSize(item.number)];
    if (item.number == 1) {
        item.kind = RE_Syntax_Kind::literal;
        item.low = units[item.payload];
        item.payload = RE_Syntax::none;
        item.number = 0;
    }
    const std::uint32_t last = add(RE_Syntax_Kind::literal, item.position, item.flags);
    items[last].low = unit;
    items[last].begin = position;
    append(parent, last);
}

void RE_Syntax_Tree::wrap(std::uint32_t index, RE_Syntax_Kind kind, std::uint32_t position) {
    // The copy precedes the growth: `push_back` of an element of the same list is safe, a reference held
    // across it is not.
    items.push_back(items[index]);
    const auto moved = static_cast<std::uint32_t>(items.size() - 1);
    items[moved].nextSibling = RE_Syntax::none;
    // A quantifier follows its operand directly, so an operand that holds items is the last one that was
    // completed. Its entry follows it to the new index; the wrapper completes after it.
    if (!complete.empty() && complete.back() == index) {
        complete.back() = moved;
    }
    complete.push_back(index);
    RE_Syntax outer{};
    outer.kind = kind;
    outer.position = position;
    outer.begin = items[moved].begin;
    outer.flags = items[moved].flags;
    outer.nextSibling = items[index].nextSibling;
    outer.firstChild = moved;
    outer.lastChild = moved;
    items[index] = outer;
}

// Such branches, side by side, become a chain of tests by fail targets, without a choice.
std::uint32_t RE_Syntax_Tree::soleUnit(std::uint32_t branch) const {
    const std::uint32_t only = items[branch].firstChild;
    const bool sole = only != RE_Syntax::none && only == items[branch].lastChild && consumesOneUnit(only);
    return sole ? only : RE_Syntax::none;
}

bool RE_Syntax_Tree::isDynamicText(const RE_Syntax& item) const {
    const RE_Syntax_Dynamic& dynamic = dynamics[item.payload];
    return std::holds_alternative<std::shared_ptr<const RE_String_Evaluator>>(dynamic) ||
           std::holds_alternative<std::shared_ptr<const RE_Replace>>(dynamic);
}
