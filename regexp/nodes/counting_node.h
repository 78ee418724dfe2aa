// The counting forms of nodes.
#pragma once

#include <cstddef>
#include <cstdint>

class RE_Node;
class RE_Search_Info;
struct RE_Backtrack_Record;
struct RE_Node_Counts;

/// Notes what one visit to a node, or one choice of it that is taken up again, does to the search.
class CORVANE_REGEXP_EXPORT RE_Node_Counting {
public:
    RE_Node_Counting(const RE_Node* node, RE_Search_Info& info);

    /// Returns `matched`.
    bool visited(bool matched) const;
    void popped() const;
    void notePushes() const;

private:
    RE_Node_Counts* countsOf(std::uint64_t id) const;

    std::uint64_t nodeId;
    RE_Search_Info& search;
    std::int32_t top;
    std::uint64_t refusals;
};

/// A node that counts what it does and is otherwise the node that it derives from.
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

    // Counters with another way on also get here when they even out a refused push; theirs are counted above.
    void onBacktrack(RE_Search_Info& info) const override {
        if (this->alternativeNode() == nullptr) {
            RE_Node_Counting(this, info).popped();
        }
        T::onBacktrack(info);
    }
};
