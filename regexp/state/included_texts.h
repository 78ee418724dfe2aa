// The dynamic texts that a search has compiled and may still return to.
//
// A dynamic node compiles its text into a pattern of its own, whose end leads on to the node after it: the
// text is matched as if it were part of the pattern. Its nodes must live as long as any choice of the search
// lies in them, so each text belongs to the record that its dynamic node leaves, and goes when that record
// does.
//
// Trap: a text must not be freed while one of its nodes is running. The end of a text only marks it, and it
// is freed with the next `trim`: when a body is left, when a text is included, or with the attempt.
#pragma once

#include "regexp/base/memory.h"
#include "regexp/base/opaque.h"
#include "regexp/state/sub_pattern_place.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class RE_Node;
class RE_Search_Info;
class RE_Tree;
struct RE_Graph_Facts;

/// A dynamic text as a search holds it: the pattern that it was compiled to, and where that begins.
struct RE_Included_Text {
    RE_Opaque<RE_Tree> tree;
    const RE_Graph_Facts* facts;  ///< of the tree
    const RE_Node* root;          ///< of the tree
};

/// Texts in the order in which they were included; those of later records come after those of earlier ones.
/// Owned by one search.
class CORVANE_REGEXP_EXPORT RE_Included_Texts : public RE_Memory {
public:
    RE_Included_Texts();
    ~RE_Included_Texts();
    RE_Included_Texts(const RE_Included_Texts&) = delete;
    RE_Included_Texts& operator=(const RE_Included_Texts&) = delete;

    /// The place after those of all texts that are kept, which begin at `first`. A text that is freed gives
    /// up its numbers, so they are used again.
    RE_Sub_Pattern_Place nextPlace(const RE_Sub_Pattern_Place& first) const;
    /// Keeps a text for as long as the record at index `slot` exists. `outermost`: its node is in no other
    /// text.
    void add(RE_Included_Text text, std::int32_t slot, bool outermost);
    /// The first node of the text that was added last.
    const RE_Node* root() const;

    /// The end of a text was reached. When its record is the most recent one, no choice is left in the text
    /// and it cannot be entered again: the record is dropped, and the text goes with the next call of `trim`,
    /// since its end node is still in use.
    void endReached(RE_Search_Info& info);
    /// Frees the texts whose records are gone, and forgets what the search knows by the addresses of their
    /// nodes.
    void trim(RE_Search_Info& info) {
        if (!texts.empty()) {
            dropSpent(info);
        }
    }

    /// The running node may not include a text, being nested too deeply, and is about to fail. Only so often
    /// within one outermost text, and in one attempt, is that a failure like any other: texts that include
    /// themselves in two places would get here for ever. After that the outermost text is given up: all
    /// choices and bodies within it are dropped, so that its node fails.
    void refuse(RE_Search_Info& info);
    void startAttempt() { refusals = 0; }

private:
    struct Text {
        RE_Included_Text pattern;
        std::int32_t slot;
        bool outermost;
        bool spent = false;          ///< left for good; its record has been dropped
        std::uint32_t refusals = 0;  ///< of texts within an outermost one
    };

    void dropSpent(RE_Search_Info& info);
    void dropLast(RE_Search_Info& info);

    std::vector<Text, RE_Allocator<Text>> texts;
    std::uint32_t refusals = 0;  ///< in the current attempt
    bool keepsAll = false;       ///< while the text of the running node is given up
};
