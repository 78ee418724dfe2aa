// Reads literals off branches. Anything that is not plainly a literal, as a test with a fail target, is left
// to the dispatch.
#include "regexp/analysis/branch_literals.h"

#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/nodes/unit_union.h"
#include "regexp/nodes/units.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

// A class of up to so many units is as good as that many literals; a larger one would make the trie wide for
// little.
constexpr std::size_t mostUnitsOfClass = 16;
// So many units of a literal are put into the trie in the time of one unit of work.
constexpr std::size_t unitsAWork = 4;

// Whether each unit is the only one with its lower-case form, itself. Comparing folded or unfolded units is
// then the same for this text.
bool foldsAlone(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) { return RE_Case_Table::get().foldsAlone(unit); });
}

}  // namespace

// A class of too many units adds none. One that holds everything from some unit on is known to be too large
// without looking, as all blocks from `variedBlocks` on are full.
void RE_Branch_Literals::addUnits(const RE_Unit_Set& set, RE_Scratch_List<Text>& texts) {
    if (set.contains(0xFFFF) && set.variedBlocks() < RE_Unit_Set::unitCount / 64) {
        return;
    }
    for (std::size_t block = 0; block < set.variedBlocks(); ++block) {
        for (std::uint64_t bits = set.bits(block); bits != 0; bits &= bits - 1) {
            if (texts.size() == mostUnitsOfClass) {
                texts.clear();
                return;
            }
            const std::size_t unit = 64 * block + static_cast<std::size_t>(std::countr_zero(bits));
            texts.push_back({nullptr, 1, static_cast<char16_t>(unit)});
        }
    }
}

void RE_Branch_Literals::Literal::read(const RE_Node* branch) {
    texts.clear();
    comparison = Case::either;
    bool ignoresCase = false;
    if (const auto* string = nodeAs<RE_String>(branch)) {
        texts.push_back({string->text, string->length, u'\0'});
        ignoresCase = string->ignoreCase;
    } else if (const auto* unit = nodeAs<RE_Unit_Test>(branch); unit == nullptr || unit->hasFailNode()) {
        return;
    } else if (const auto* natural = nodeAs<RE_Natural>(unit)) {
        texts.push_back({nullptr, 1, static_cast<char16_t>(natural->ch)});
        ignoresCase = nodeAs<RE_Natural_I>(natural) != nullptr;
    } else if (const auto* members = nodeAs<RE_Unit_Class>(unit)) {
        addUnits(*members->set, texts);
    }
    // Units are compared in lower case where the node ignores case. Else they have to be compared as they
    // are, unless that makes no difference.
    if (ignoresCase) {
        comparison = Case::ignored;
    } else if (!std::ranges::all_of(texts, foldsAlone, &Text::view)) {
        comparison = Case::counts;
    }
}

bool RE_Branch_Literals::fits(const Literal& literal, const RE_Node* branch) const {
    if (literal.texts.empty()) {
        return false;
    }
    // Empty nodes may not have been removed: two links may lead to the same node through different ones.
    const bool sameWay =
        first == nullptr || throughSkippable(first->nextNode) == throughSkippable(branch->nextNode);
    return sameWay && (comparison == Case::either || literal.comparison == Case::either ||
                       comparison == literal.comparison);
}

bool RE_Branch_Literals::add(RE_Node* branch, const Literal& literal) {
    if (!fits(literal, branch)) {
        return false;
    }
    texts.insert(texts.end(), literal.texts.begin(), literal.texts.end());
    // Once a literal that is not `either` was added the others have to agree with it.
    comparison = comparison == Case::either ? literal.comparison : comparison;
    first = first == nullptr ? branch : first;
    ++count;
    return true;
}

void RE_Branch_Literals::clear() {
    texts.clear();
    comparison = Case::either;
    first = nullptr;
    count = 0;
}

RE_Node* RE_Branch_Literals::join(RE_Graph_Context& context) const {
    RE_Literal_Trie::Literals literals;
    literals.reserve(texts.size());
    for (const Text& text : texts) {
        literals.push_back(text.view());
        context.meter.spend(1 + text.view().size() / unitsAWork);
    }
    RE_Literal_Trie trie(literals, comparison == Case::ignored);
    RE_Unit_Union starts(context.sets);
    trie.forEachFirstUnit([&starts](char16_t unit) { starts.add(unit); });
    auto* const set = context.make<RE_Literal_Set>(std::move(trie), context.sets.share(starts.take()));
    set->nextNode = first->nextNode;
    return set;
}
