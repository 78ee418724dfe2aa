#include "regexp/passes/branch_literals.h"

#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/units.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

namespace {

// A class of up to so many units is as good as that many literals.
constexpr std::size_t mostUnitsOfClass = 16;

std::vector<std::u16string> unitsOf(const RE_Unit_Set& set) {
    std::vector<std::u16string> units;
    for (std::size_t block = 0; block < RE_Unit_Set::unitCount / 64; ++block) {
        for (std::uint64_t bits = set.bits(block); bits != 0; bits &= bits - 1) {
            if (units.size() == mostUnitsOfClass) {
                return {};
            }
            units.emplace_back(
                1, static_cast<char16_t>(64 * block + static_cast<std::size_t>(std::countr_zero(bits))));
        }
    }
    return units;
}

// Where the subject is folded, such a text stands for itself all the same.
bool foldsAlone(const std::u16string& text) {
    return std::ranges::all_of(text, [](char16_t unit) { return RE_Case_Table::get().foldsAlone(unit); });
}

}  // namespace

RE_Branch_Literals::Literal RE_Branch_Literals::literalAt(const RE_Node* branch) {
    Literal literal;
    bool ignoresCase = false;
    if (const auto* string = dynamic_cast<const RE_String*>(branch)) {
        literal.texts.emplace_back(string->text, string->length);
        ignoresCase = string->ignoreCase;
    } else if (const auto* unit = dynamic_cast<const RE_Unit_Test*>(branch);
               unit == nullptr || unit->hasFailNode()) {
        return literal;
    } else if (const auto* natural = dynamic_cast<const RE_Natural*>(unit)) {
        literal.texts.emplace_back(1, static_cast<char16_t>(natural->ch));
        ignoresCase = dynamic_cast<const RE_Natural_I*>(natural) != nullptr;
    } else if (const auto* members = dynamic_cast<const RE_Unit_Class*>(unit)) {
        literal.texts = unitsOf(*members->set);
    }
    if (ignoresCase) {
        literal.comparison = Case::ignored;
    } else if (!std::ranges::all_of(literal.texts, foldsAlone)) {
        literal.comparison = Case::counts;
    }
    return literal;
}

bool RE_Branch_Literals::fits(const Literal& literal, const RE_Node* branch) const {
    if (literal.texts.empty()) {
        return false;
    }
    const bool sameWay =
        first == nullptr || throughSkippable(first->nextNode) == throughSkippable(branch->nextNode);
    return sameWay && (comparison == Case::either || literal.comparison == Case::either ||
                       comparison == literal.comparison);
}

bool RE_Branch_Literals::add(RE_Node* branch) {
    Literal literal = literalAt(branch);
    if (!fits(literal, branch)) {
        return false;
    }
    std::ranges::move(literal.texts, std::back_inserter(texts));
    comparison = comparison == Case::either ? literal.comparison : comparison;
    first = first == nullptr ? branch : first;
    ++count;
    return true;
}

RE_Node* RE_Branch_Literals::join(RE_ParserContext& context) const {
    RE_Literal_Trie trie({texts.begin(), texts.end()}, comparison == Case::ignored);
    auto starts = RE_Unit_Set::make();
    trie.addFirstUnits(*starts);
    auto* const set = context.make<RE_Literal_Set>(std::move(trie), context.sets.share(std::move(starts)));
    set->nextNode = first->nextNode;
    return set;
}
