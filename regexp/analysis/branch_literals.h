// Neighbouring branches of an alternation that are literals and lead on to the same node.
#pragma once

#include "regexp/nodes/graph_context.h"

#include <cstddef>
#include <string_view>
#include <vector>

class RE_Branch_Literals {
    enum class Case { either, counts, ignored };

    /// A text of a node, or a unit.
    struct Text {
        const char16_t* units;  ///< null: the unit alone
        std::size_t length;
        char16_t unit;

        std::u16string_view view() const {
            return units != nullptr ? std::u16string_view(units, length) : std::u16string_view(&unit, 1);
        }
    };

public:
    /// What one branch stands for. Without texts it is no literal.
    struct Literal {
        explicit Literal(RE_Scratch_Memory* memory) : texts(memory) {}

        RE_Scratch_List<Text> texts;
        Case comparison = Case::either;

        void read(const RE_Node* branch);
    };

    explicit RE_Branch_Literals(RE_Scratch_Memory* memory) : texts(memory) {}

    /// Adds the branch, unless it is no literal or none that can join those that were added.
    bool add(RE_Node* branch, const Literal& literal);
    std::size_t branches() const { return count; }
    RE_Node* firstBranch() const { return first; }
    void clear();
    /// Makes the node that stands for all of them.
    RE_Node* join(RE_Graph_Context& context) const;

private:
    static void addUnits(const RE_Unit_Set& set, RE_Scratch_List<Text>& texts);
    bool fits(const Literal& literal, const RE_Node* branch) const;

    RE_Scratch_List<Text> texts;
    Case comparison = Case::either;
    RE_Node* first = nullptr;
    std::size_t count = 0;
};
