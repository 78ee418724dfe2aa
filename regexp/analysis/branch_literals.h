// Neighbouring branches of an alternation that are literals and lead on to the same node.
//
// They are gathered branch by branch, and joined to an `RE_Literal_Set` when one comes that does not fit.
//
// Invariant: literals are kept in the order of their branches, by which the set prefers one to another. A
// class counts as one literal for each of its units; their order among each other cannot matter, as only one
// can match at a place.
#pragma once

#include "regexp/nodes/graph_context.h"

#include <cstddef>
#include <string_view>
#include <vector>

class RE_Branch_Literals {
    /// How the subject is to be compared: a set has one answer for all its literals. `either` is for texts
    /// without case, which compare alike both ways and fit any neighbours.
    enum class Case { either, counts, ignored };

    /// A text of a node, which owns it, or a unit. Valid as long as the node.
    struct Text {
        const char16_t* units;  ///< null: the unit alone
        std::size_t length;
        char16_t unit;

        std::u16string_view view() const {
            return units != nullptr ? std::u16string_view(units, length) : std::u16string_view(&unit, 1);
        }
    };

public:
    /// What one branch stands for. Without texts it is no literal. Made once and read into again for each
    /// branch, so that its list keeps its storage.
    struct Literal {
        explicit Literal(RE_Scratch_Memory* memory) : texts(memory) {}

        RE_Scratch_List<Text> texts;
        Case comparison = Case::either;

        /// Describes the branch, in place of what was described before.
        void read(const RE_Node* branch);
    };

    explicit RE_Branch_Literals(RE_Scratch_Memory* memory) : texts(memory) {}

    /// Adds the branch, unless it is no literal or none that can join those that were added.
    bool add(RE_Node* branch, const Literal& literal);
    std::size_t branches() const { return count; }
    /// The branch that was added first: what stays in its place when no other joins it.
    RE_Node* firstBranch() const { return first; }
    void clear();
    /// Makes the node that stands for all of them and leads on to where they do.
    RE_Node* join(RE_Graph_Context& context) const;

private:
    /// Adds each unit of a class as a text, or leaves `texts` empty when there are too many.
    static void addUnits(const RE_Unit_Set& set, RE_Scratch_List<Text>& texts);
    /// Whether the branch is a literal, leads where those that were added lead, and agrees with them about
    /// case.
    bool fits(const Literal& literal, const RE_Node* branch) const;

    RE_Scratch_List<Text> texts;
    Case comparison = Case::either;
    RE_Node* first = nullptr;
    std::size_t count = 0;
};
