#include "regexp/parser/syntax.h"

#include "regexp/base/within_size.h"

std::uint32_t RE_Syntax_Tree::add(RE_Syntax_Kind kind, std::uint32_t position, RE_Flags flags) {
    RE_Syntax& item = items.emplace_back();
    item.kind = kind;
    item.position = position;
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

void RE_Syntax_Tree::detachLastUnit(std::uint32_t parent) {
    RE_Syntax& item = items[items[parent].lastChild];
    --item.number;
    const char16_t unit = units[item.payload + withinSize(item.number)];
    if (item.number == 1) {
        item.kind = RE_Syntax_Kind::literal;
        item.low = units[item.payload];
        item.payload = RE_Syntax::none;
        item.number = 0;
    }
    const std::uint32_t last = add(RE_Syntax_Kind::literal, item.position, item.flags);
    items[last].low = unit;
    append(parent, last);
}

void RE_Syntax_Tree::wrap(std::uint32_t index, RE_Syntax_Kind kind, std::uint32_t position) {
    items.push_back(items[index]);
    const auto moved = static_cast<std::uint32_t>(items.size() - 1);
    items[moved].nextSibling = RE_Syntax::none;
    if (!complete.empty() && complete.back() == index) {
        complete.back() = moved;
    }
    complete.push_back(index);
    RE_Syntax outer{};
    outer.kind = kind;
    outer.position = position;
    outer.flags = items[moved].flags;
    outer.nextSibling = items[index].nextSibling;
    outer.firstChild = moved;
    outer.lastChild = moved;
    items[index] = outer;
}

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
