// Memo of the answers to: where, from here on, can this node match next?
//
// It lets a caller that searches one text repeatedly, or from match to match, keep what scans have found: a
// literal that occurs nowhere is looked for once.
#pragma once

#include "regexp/base/inline_list.h"
#include "regexp/base/memory.h"

#include <compare>
#include <cstddef>

class RE_Node;

/// A seeking node, qualified by up to two words when it keeps several answers. A null node makes the empty
/// key, under which nothing is kept.
struct RE_Seek_Key {
    RE_Seek_Key(const RE_Node* seekingNode) : RE_Seek_Key(seekingNode, static_cast<std::size_t>(-1), 0) {}
    RE_Seek_Key(const RE_Node* seekingNode, std::size_t firstWord, std::size_t secondWord)
        : node(seekingNode), first(firstWord), second(secondWord) {}
    RE_Seek_Key(const RE_Node* seekingNode, char32_t c)
        : RE_Seek_Key(seekingNode, static_cast<std::size_t>(c), 0) {}

    operator bool() const { return node != nullptr; }
    bool operator==(const RE_Seek_Key& other) const = default;
    /// By the node's address, then by the words. The order has no meaning but that of the map.
    std::strong_ordering operator<=>(const RE_Seek_Key& other) const {
        const std::strong_ordering byNode = std::compare_three_way()(node, other.node);
        const std::strong_ordering byFirst = byNode != 0 ? byNode : first <=> other.first;
        return byFirst != 0 ? byFirst : second <=> other.second;
    }

    const RE_Node* node;
    std::size_t first;
    std::size_t second;
};

/// An answer with the positions for which it holds: from where it was computed up to the answer itself. All
/// of them have the same answer, as the node matches nowhere in between.
struct RE_Seek_Value {
    RE_Seek_Value(const char16_t* const computedFrom, const char16_t* const answer)
        : from(computedFrom), position(answer) {}

    const char16_t* getSeekPosition() const { return position; }
    bool isValidSeekValue(const char16_t* const p) const {
        return from <= p && (position == nullptr || p <= position);
    }

    const char16_t* from;
    const char16_t* position;  ///< null: nowhere up to the end of the subject
};

/// Belongs to the caller of a search. Meaningful for one pattern and one subject buffer, and for one thread
/// at a time: the engine cannot see that the text has changed, and never clears it by itself.
class CORVANE_REGEXP_EXPORT RE_Seek_Table : public RE_Memory {
public:
    /// Sets `out` to the stored answer, if there is one. True only when it holds at `p`: otherwise `out` is
    /// not to be used.
    bool get(const char16_t* p, RE_Seek_Key key, const char16_t*& out) const;
    /// Stores an answer; the latest wins, as searches move forward. The empty key stores nothing.
    void put(RE_Seek_Key key, const RE_Seek_Value& value);
    void clear() { answers.clear(); }
    std::size_t size() const { return answers.size(); }

private:
    struct Answer {
        RE_Seek_Key key;
        RE_Seek_Value value;
    };

    /// The first answer whose key is not less than this one.
    std::size_t placeOf(const RE_Seek_Key& key) const;

    // In the order of the keys. One entry for each seeking node, and most patterns have one or two: they need no
    // allocation.
    RE_Inline_List<Answer, 2> answers;
};
