// The text of a string, its seeks, and the joining of literals.
#include "regexp/nodes/string.h"

#include "regexp/graph/meaning.h"
#include "regexp/nodes/graph_context.h"
#include "regexp/nodes/label_text.h"
#include "regexp/nodes/units.h"

#include <algorithm>

RE_String::RE_String(RE_Graph_Context& context, const RE_Node& first, bool foldCase)
    : RE_Can_Seek<RE_Node>(context, first), ignoreCase(foldCase) {}

RE_String::RE_String(RE_Graph_Context& context)
    : RE_Can_Seek<RE_Node>(context), ignoreCase(false), isOpen(true) {}

RE_String::~RE_String() {
    if (text != few) {
        reRelease(text, capacity * sizeof(char16_t));
    }
}

void RE_String::append(const char16_t* units, std::size_t count) {
    if (capacity - length < count) {
        // Doubled, so that appending unit by unit takes linear time.
        const std::size_t larger = std::max(capacity * 2, length + count);
        auto* const moved = static_cast<char16_t*>(reAllocate(larger * sizeof(char16_t)));
        std::copy_n(text, length, moved);
        if (text != few) {
            reRelease(text, capacity * sizeof(char16_t));
        }
        text = moved;
        capacity = larger;
    }
    std::copy_n(units, count, text + length);
    length += count;
}

void RE_String::initSeek() {
    search = RE_Literal_Search(literal());
}

const char16_t* RE_String::scan(const char16_t* p, RE_Search_Info& info) const {
    return search.find(literal(), p, info.subjectEnd, info);
}

const char16_t* RE_String::scanBack(const char16_t* p, std::size_t count, RE_Search_Info& info) const {
    return search.findLast(literal(), p, count, info.subjectEnd, info);
}

std::string RE_String::label() const {
    return "Match '" + labelText(text, length) + (ignoreCase ? "' ignoring case" : "'");
}

// --- joining runs of literals ---
//
// A unit of zero or one that other paths reach as well stays a node of its own.

bool RE_Natural::mayJoin(bool first) const {
    return failTarget == nullptr && ch != 0 && ch <= 0xFFFF && (first || !sharedTarget);
}

bool RE_Natural::canJoinString(bool first, bool ignoreCase) const {
    // Inside a case-ignoring run the subject is folded, so only a unit that nothing else folds to stays
    // exact.
    return mayJoin(first) && (!ignoreCase || RE_Case_Table::get().foldsAlone(static_cast<char16_t>(ch)));
}

bool RE_Natural_I::canJoinString(bool first, bool ignoreCase) const {
    return ignoreCase && mayJoin(first);
}

namespace {

/// Whether the node can become a part of a string that leads to it.
bool canFollow(RE_Node* node, bool ignoreCase) {
    return node != nullptr && node->canJoinString(false, ignoreCase);
}

/// Moves the literals after a string into it. They are bypassed: nothing but the string led to them.
void takeFollowing(RE_String& string, RE_Graph_Context& context) {
    while (canFollow(string.nextNode, string.ignoreCase)) {
        auto* joined = static_cast<RE_Natural*>(string.nextNode);
        string.append(static_cast<char16_t>(joined->ch));
        context.standsFor(&string, joined);
        string.nextNode = joined->nextNode;
        joined->skippable = true;
        context.hasSkippable = true;
    }
}

/// A string in the place of a literal and of those after it, or null where there is only one. The first
/// literal stays as an empty node, as any number of links may lead to it.
RE_Node* joinRun(RE_Natural& first, bool ignoreCase, RE_Graph_Context& context) {
    if (!first.canJoinString(true, ignoreCase) || !canFollow(first.nextNode, ignoreCase)) {
        return nullptr;
    }
    auto* string = context.make<RE_String>(first, ignoreCase);
    string->append(static_cast<char16_t>(first.ch));
    context.standsFor(string, &first);
    first.skippable = true;
    first.nextNode = string;
    takeFollowing(*string, context);
    return string;
}

}  // namespace

RE_Node* RE_Natural::joinString(RE_Graph_Context& context) {
    return joinRun(*this, false, context);
}

RE_Node* RE_Natural_I::joinString(RE_Graph_Context& context) {
    return joinRun(*this, true, context);
}

// The number is the one that a string made at this point would have, so that few numbers depend on who made it.
RE_Node* RE_String::joinString(RE_Graph_Context& context) {
    if (!isOpen) {
        return nullptr;
    }
    isOpen = false;
    nodeId = context.nextNodeId();
    context.renumbers = true;
    takeFollowing(*this, context);
    return this;
}

RE_Meaning RE_String::meaning() const {
    return RE_Meanings::Text{this, nextNode};
}
