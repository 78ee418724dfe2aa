// What nodes say they mean is what their `match` does: for each class of node, on neighbours of every kind.
#include "tests/support/engine_run.h"
#include "tests/support/text.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <typeindex>

namespace corvane_tests {
namespace {

/// Where one visit of a node leads, and at what position.
struct Visit {
    const RE_Node* target = nullptr;
    size_t position = 0;

    bool operator==(const Visit&) const = default;
};

Visit visitBySearch(const RE_Tree& tree, const RE_Node& node, std::u16string_view subject, size_t position) {
    RE_Search_Info info(subject.data(), subject.size(), static_cast<size_t>(tree.getTokenCount()), nullptr, false);
    info.prepare(tree.getFacts());
    info.resetForStart(subject.data());
    size_t at = position;
    const bool matched = node.match(subject.data(), at, info);
    if (info.redirected) {
        return {info.redirection, info.redirection != nullptr ? position : 0};
    }
    const RE_Node* const target = matched ? node.nextNode : node.failNode();
    return target != nullptr ? Visit{target, matched ? at : position} : Visit{};
}

/// What the meaning says of the same visit; nothing of nodes that do more than look at the units around a position.
struct Expected {
    std::u16string_view subject;
    size_t position;

    static std::optional<Visit> to(const RE_Node* target, size_t position) {
        return target != nullptr ? Visit{target, position} : Visit{};
    }

    std::optional<Visit> operator()(const RE_Meanings::Nothing& node) const { return to(node.next, position); }
    std::optional<Visit> operator()(const RE_Meanings::Unit& node) const {
        const bool accepts = position < subject.size() && node.test->matchesUnit(subject[position]);
        return accepts ? to(node.next, position + 1) : to(node.otherwise, position);
    }
    std::optional<Visit> operator()(const RE_Meanings::Text& node) const {
        const std::u16string_view text(node.string->text, node.string->length);
        const bool stands =
            text.size() <= subject.size() - position && node.string->matchesAt(subject.data() + position);
        return stands ? to(node.next, position + text.size()) : Visit{};
    }
    std::optional<Visit> operator()(const RE_Meanings::Edge& node) const {
        const bool before = position == 0 ? node.before.holdsAtLimit() : node.before.holds(subject[position - 1]);
        const bool after = position == subject.size() ? node.after.holdsAtLimit() : node.after.holds(subject[position]);
        return to(before && after ? node.next : node.otherwise, position);
    }
    std::optional<Visit> operator()(const RE_Meanings::Mark& node) const { return to(node.next, position); }
    std::optional<Visit> operator()(const auto&) const { return std::nullopt; }
};

/// Units of all kinds, and all that the patterns below name.
std::u16string neighbours() {
    std::u16string units = u"\n\r \t_09azAZbB-!\u00DF\u00E9\u0130\u0131\u017F\u0416\u0436\u1E9E\u212A\u2028\uFFFF";
    units.append({char16_t{0}, char16_t{0xD800}, char16_t{0xDC00}});
    for (size_t unit = 0; unit <= 0xFFFF; unit += 257) {
        units.push_back(static_cast<char16_t>(unit));
    }
    return units;
}

const char* const kDescribedPatterns[] = {
    "^",         "$",         "(?m)^",    "(?m)$",     "\\<",       "\\>",         "(?=a)",       "(?!a)",
    "(?<=[ab])", "(?<![ab])", "(?=\\d)x", "(?!\\s)x",  "(?<=.)x",   "(?<!(?i)k)x", "(?(?=a)x|y)", "(?(?<!b)x|y)",
    "a",         "(?i)k",     "[a-z]",    "(?i)[a-z]", "(?i)[J-a]", "(?i)[^k-m]",  "\\d",         "\\W",
    ".",         "(?s).",     "[^\\n]",   "(a|b|-)",   "(?i:ab)c",  "abc",         "(?<n>a)",     "a|b|\\d|!",
};

TEST(Meanings, SayWhatAVisitDoes) {
    const std::u16string units = neighbours();
    std::map<std::type_index, size_t> compared;
    for (const char* pattern : kDescribedPatterns) {
        for (const EngineConfig& config : {EngineConfig{}, kPlainGraph}) {
            const Engine engine(widen(pattern), kEmptyToo, config);
            for (const RE_Node* node : engine.tree().getFacts().nodes) {
                for (const char16_t before : units) {
                    for (const char16_t after : units) {
                        const char16_t text[] = {before, after};
                        for (const std::u16string_view subject :
                             {std::u16string_view(text, 2), std::u16string_view(text, 1)}) {
                            for (const size_t position : {size_t{0}, size_t{1}}) {
                                const auto expected = visitMeaning(*node, Expected{subject, position});
                                if (expected) {
                                    ++compared[typeid(*node)];
                                    ASSERT_EQ(*expected, visitBySearch(engine.tree(), *node, subject, position))
                                        << pattern << " " << node->label() << " at " << position << " of "
                                        << printable(subject);
                                }
                            }
                        }
                    }
                }
            }
        }
    }
    EXPECT_GE(compared.size(), 16U) << "classes of nodes";
}

// A class that does not describe itself is searched as well as any; nothing is concluded from its nodes.
TEST(Meanings, AreUnknownOnlyOfHelpers) {
    for (const char* pattern :
         {"(a|b)*?(?=c){2,3}(?<=b*)(?>a*){2,}?|\\1(?<n>c)?(?(n)x|y)(?:|a){3,}", "foo|bar|baz\\d+?x{2,900}$"}) {
        for (const EngineConfig& config : {EngineConfig{}, kPlainGraph}) {
            const Engine engine(widen(pattern), kEmptyToo, config);
            for (const RE_Node* node : engine.tree().getFacts().nodes) {
                const bool isHelper = node->isCounter && !node->isStateCounter();
                EXPECT_EQ(isHelper, std::holds_alternative<RE_Meanings::Unknown>(node->meaning()))
                    << pattern << " " << node->label();
            }
        }
    }
}

}  // namespace
}  // namespace corvane_tests
