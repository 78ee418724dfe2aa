// Neighbouring branches of an alternation that are literals and lead on to the same node.
#pragma once

#include "regexp/parser/parser_context.h"

#include <cstddef>
#include <string>
#include <vector>

class RE_Branch_Literals {
public:
    /// Adds the branch, unless it is no literal or none that can join those that were added.
    bool add(RE_Node* branch);
    std::size_t branches() const { return count; }
    RE_Node* firstBranch() const { return first; }
    /// Makes the node that stands for all of them.
    RE_Node* join(RE_ParserContext& context) const;

private:
    enum class Case { either, counts, ignored };

    /// What one branch stands for. Without texts it is no literal.
    struct Literal {
        std::vector<std::u16string> texts;
        Case comparison = Case::either;
    };
    static Literal literalAt(const RE_Node* branch);
    bool fits(const Literal& literal, const RE_Node* branch) const;

    std::vector<std::u16string> texts;
    Case comparison = Case::either;
    RE_Node* first = nullptr;
    std::size_t count = 0;
};
