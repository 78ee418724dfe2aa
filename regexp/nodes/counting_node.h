// The counting forms of nodes: under the option `Profile` the parser makes an RE_Profile_Node<T> wherever it
// would make a T. The loops know nothing of it.
//
// Trap: the unwatched loop runs the commonest nodes without virtual calls, which would bypass the counting.
// So RE_ParserContext::make gives a profiled node no kind for direct steps, and whatever answers for several
// nodes at once is off under `Profile`.
#pragma once

#include "regexp/base/export.h"
#include "regexp/state/search_info.h"

#include <cstddef>
#include <cstdint>

class RE_Node;
class RE_Search_Info;
struct RE_Backtrack_Record;
struct RE_Node_Counts;

/// Notes what one visit to a node, or one choice of it that is resumed, does to the search. Made before the
/// visit, consulted after it, and gone with it. Counts into the sheet of the search, so threads do not share
/// any.
class CORVANE_REGEXP_EXPORT RE_Node_Counting {
public:
    RE_Node_Counting(const RE_Node* node, RE_Search_Info& info);

    /// Counts the visit and what it pushed. Returns `matched`, so that `match` is one expression.
    bool visited(bool matched) const;
    /// Counts a choice of the node that was taken off the stack.
    void popped() const;
    /// Counts the records above the height at which this began, each for the node that it resumes.
    void notePushes() const;

private:
    RE_Node_Counts* countsOf(std::uint64_t id) const;

    std::uint64_t nodeId;
    RE_Search_Info& search;
    std::int32_t top;
    std::uint64_t refusals;
};

/// A node that counts what it does and is otherwise the node that it derives from: same label, same links,
/// same answers.
template <class T>
class RE_Profile_Node : public T {
public:
    using T::T;

    bool match(const char16_t* subject, std::size_t& pos, RE_Search_Info& info) const override {
        const RE_Node_Counting counting(this, info);
        return counting.visited(T::match(subject, pos, info));
    }

    RE_Node* resume(const RE_Backtrack_Record& record, std::size_t& pos,
                    RE_Search_Info& info) const override {
        const RE_Node_Counting counting(this, info);
        counting.popped();
        RE_Node* const target = T::resume(record, pos, info);
        counting.notePushes();
        return target;
    }

    // Called for counters whose record is popped or dropped. Those with an alternative also get here when
    // they even out a refused push, which is no pop; theirs are counted in `resume`.
    void onBacktrack(RE_Search_Info& info) const override {
        if (this->alternativeNode() == nullptr) {
            RE_Node_Counting(this, info).popped();
        }
        T::onBacktrack(info);
    }
};
