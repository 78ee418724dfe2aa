// Ambiguity of automata, after the criteria for the degree of ambiguity: a state with two ways back to itself
// over one text makes the number of ways exponential; two states p and q, with ways from p to p, from p to q
// and from q to q over one text, make it polynomial. Ways are followed in step, in the product of the
// automaton with itself: a breadth-first walk over pairs or triples of states, one shared letter a step. So
// the word that is found is a shortest one, and the witness stays readable.
//
// A search that has entered an accepting state succeeds, so only ways that avoid such states cost it
// anything. Hence the second loop, and the way to it, must avoid them (`losing`); the first loop need not
// (`loops`).
//
// The product of a pattern of a thousand states has 10^9 triples. `mostSteps` bounds the walk, and a
// judgement that runs into the bound is `unknown`, never `linear`.
#include "regexp/inspect/growth.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/inspect/automaton.h"
#include "regexp/inspect/components.h"
#include "regexp/search/observer.h"
#include "regexp/tree.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>

namespace {

using States = std::vector<RE_Automaton_State>;
using Word = std::vector<std::size_t>;  // of letters
using Triple = std::array<std::size_t, 3>;

/// Whether the text has a match that a short search finds. A search that is given up counts as none: a text
/// on which the search is long serves as a witness either way.
bool matchesSoon(const RE_Tree& tree, const std::u16string& text) {
    // Thrown through the match loop, which is safe for exceptions of hosts and observers alike.
    struct Too_Long {};
    struct Patience : RE_Observer {
        void observe(const RE_Trace_Event&, const RE_Search_Info&) override {
            if (left-- == 0) {
                throw Too_Long();
            }
        }
        // Events, not steps: some milliseconds.
        std::size_t left = 20'000;
    } patience;
    try {
        return std::unique_ptr<RE_Results>(tree.trace(text.data(), text.size(), 0, patience)) != nullptr;
    } catch (const Too_Long&) {
        return false;
    }
}

/// Judges one automaton. All walks draw on one budget.
class Judge {
public:
    Judge(const RE_Tree& pattern, const RE_Automaton& graph)
        : tree(pattern),
          automaton(graph),
          states(graph.states()),
          loops(states, everyState()),
          losing(states, losingStates()) {}

    // Exponential first, as a pattern may be both. A walk that the budget ended has found nothing, which
    // proves nothing.
    RE_Growth judge() {
        RE_Growth growth;
        if (!findExponential(growth) && !findPolynomial(growth) && left == 0) {
            growth.kind = RE_Growth::Kind::unknown;
        }
        return growth;
    }

private:
    static constexpr std::size_t mostSteps = 4'000'000;  // each may keep some dozens of bytes

    std::vector<bool> everyState() const { return std::vector<bool>(states.size(), true); }
    std::vector<bool> losingStates() const {
        std::vector<bool> result(states.size());
        for (std::size_t i = 0; i < states.size(); ++i) {
            result[i] = !states[i].accepting;
        }
        return result;
    }

    /// A shortest word on the way from one triple to another, by at least one step; nothing when there is
    /// none, or when the budget is used up. `eachStep(from, take)` calls `take(to, letters)` for each
    /// successor. The letter of a step is the first one that its edges share: any of them leads there.
    template <class EachStep>
    std::optional<Word> wordBetween(const Triple& start, const Triple& goal, EachStep eachStep) {
        // A number for each triple. With 1000 states, the most that an automaton has, it fits 64 bits by far.
        const auto keyOf = [this](const Triple& t) {
            return (t[0] * states.size() + t[1]) * states.size() + t[2];
        };
        // The triples met so far, each with the index of the one before it and the letter between them; also
        // the queue of the walk. The start is not in `seen`, so that a way back to it is found.
        std::vector<std::pair<Triple, std::pair<std::size_t, std::size_t>>> met{{start, {0, 0}}};
        std::unordered_set<std::size_t> seen;
        std::optional<Word> word;
        for (std::size_t i = 0; i < met.size() && !word && left > 0; ++i) {
            const Triple from = met[i].first;
            eachStep(from, [&](const Triple& to, const RE_Letters& letters) {
                if (letters.none() || word || !seen.insert(keyOf(to)).second) {
                    return;
                }
                met.push_back({to, {i, letters._Find_first()}});
                if (to == goal) {
                    word.emplace();
                    // Back from the goal to the start, which has index 0.
                    for (std::size_t at = met.size() - 1; at != 0; at = met[at].second.first) {
                        word->insert(word->begin(), met[at].second.second);
                    }
                }
            });
        }
        return word;
    }

    // One for each pair of edges looked at, whether they share a letter or not.
    void spend() { left -= left > 0 ? 1 : 0; }

    // A text that leads from the state back to itself in two ways. The third part of the triple is no state:
    // it is 1 once the two ways have parted, and the way back counts only then. Ways that run side by side
    // along different edges to the same state have parted too, as the search tries both.
    std::optional<Word> twoWaysBack(std::size_t state) {
        const std::size_t own = losing.of(state);
        return wordBetween({state, state, 0}, {state, state, 1}, [&](const Triple& at, auto take) {
            const auto& first = states[at[0]].edges;
            const auto& second = states[at[1]].edges;
            for (std::size_t i = 0; i < first.size(); ++i) {
                for (std::size_t j = 0; j < second.size() && losing.of(first[i].target) == own; ++j) {
                    spend();
                    const bool parted = at[2] == 1 || at[0] != at[1] || i != j;
                    if (losing.of(second[j].target) == own) {
                        take({first[i].target, second[j].target, parted ? 1u : 0u},
                             first[i].letters & second[j].letters);
                    }
                }
            }
        });
    }

    bool findExponential(RE_Growth& growth) {
        std::vector<bool> judged(states.size(), false);
        for (std::size_t state = 0; state < states.size(); ++state) {
            const std::size_t own = losing.of(state);
            if (own == RE_Components::none || judged[own]) {
                continue;
            }
            // One state is judged for its whole component: from each state on a loop the others can be
            // reached, so if one has two ways back, all have.
            judged[own] = true;
            if (const std::optional<Word> pump = twoWaysBack(state)) {
                report(growth, RE_Growth::Kind::exponential, state, state, *pump);
                return true;
            }
        }
        return false;
    }

    // A text that leads from p to p, from p to q and from q to q. The parts of the triple are these three
    // ways; the goal is reached when all of them end together.
    std::optional<Word> sharedWord(std::size_t p, std::size_t q) {
        return wordBetween({p, p, q}, {p, q, q}, [&](const Triple& at, auto take) {
            for (const RE_Automaton_Edge& first : states[at[0]].edges) {
                // The first way stays on p's loop and the third on q's: a way that leaves its loop cannot
                // return.
                if (loops.of(first.target) != loops.of(p)) {
                    continue;
                }
                for (const RE_Automaton_Edge& third : states[at[2]].edges) {
                    const RE_Letters shared = first.letters & third.letters;
                    if (losing.of(third.target) != losing.of(q) || shared.none()) {
                        continue;
                    }
                    for (const RE_Automaton_Edge& second : states[at[1]].edges) {
                        spend();
                        if (!states[second.target].accepting) {
                            take({first.target, second.target, third.target}, shared & second.letters);
                        }
                    }
                }
            }
        });
    }

    // Pairs of states, hence quadratic in their number; most pairs are discarded by their components alone.
    bool findPolynomial(RE_Growth& growth) {
        for (std::size_t p = 0; p < states.size(); ++p) {
            for (std::size_t q = 0; q < states.size() && loops.of(p) != RE_Components::none; ++q) {
                if (p == q || losing.of(q) == RE_Components::none) {
                    continue;
                }
                if (const std::optional<Word> pump = sharedWord(p, q)) {
                    report(growth, RE_Growth::Kind::polynomial, p, q, *pump);
                    return true;
                }
            }
        }
        return false;
    }

    void report(RE_Growth& growth, RE_Growth::Kind kind, std::size_t p, std::size_t q, const Word& pump) {
        growth.kind = kind;
        growth.loop = states[p].node;
        growth.rival = states[q].node;
        growth.pump = spell(pump);
        // A loop of the search for a start begins at once and needs nothing in front of it.
        if (p != RE_Automaton::skipping) {
            growth.prefix = spell(wordTo(p));
        }
        growth.suffix = suffixAfter(q);
        findFailingSuffix(growth);
    }

    /// Only a search that fails shows how it grows: tries suffixes until the witness has no quick match, and
    /// keeps the first one when none does. Not under a profile, which would count these searches as the
    /// user's.
    void findFailingSuffix(RE_Growth& growth) const {
        // Pumps. Enough to tell a match from a failure; few enough that an exponential failure ends soon.
        constexpr std::size_t times = 5;
        const std::u16string first = growth.suffix;
        for (std::size_t letter = 0; tree.getFacts().profiler == nullptr; ++letter) {
            if (!matchesSoon(tree, growth.witness(times))) {
                return;
            }
            if (letter == automaton.letterCount()) {
                break;
            }
            growth.suffix.assign(1, automaton.unitOf(letter));
        }
        growth.suffix = first;
    }

    // The way of an attempt that starts at the start of the text. Empty when there is none, as for a state
    // that only later starts reach; the witness then still holds the pump.
    Word wordTo(std::size_t state) {
        const auto word =
            wordBetween({RE_Automaton::begin, 0, 0}, {state, 0, 0}, [&](const Triple& at, auto take) {
                for (const RE_Automaton_Edge& edge : states[at[0]].edges) {
                    if (edge.target != RE_Automaton::skipping) {
                        take({edge.target, 0, 0}, edge.letters);
                    }
                }
            });
        return word.value_or(Word());
    }

    /// A unit that cannot follow the state: it makes the search backtrack into the loops.
    std::u16string suffixAfter(std::size_t state) const {
        RE_Letters wanted;
        for (const RE_Automaton_Edge& edge : states[state].edges) {
            wanted |= edge.target == RE_Automaton::skipping ? RE_Letters() : edge.letters;
        }
        for (std::size_t letter = 0; letter < automaton.letterCount(); ++letter) {
            if (!wanted[letter]) {
                return std::u16string(1, automaton.unitOf(letter));
            }
        }
        return {};
    }

    std::u16string spell(const Word& word) const {
        std::u16string text;
        for (const std::size_t letter : word) {
            text += automaton.unitOf(letter);
        }
        return text;
    }

    const RE_Tree& tree;
    const RE_Automaton& automaton;
    const States& states;
    RE_Components loops;   // of all states
    RE_Components losing;  // of those that do not accept
    std::size_t left = mostSteps;
};

}  // namespace

std::u16string RE_Growth::witness(std::size_t times) const {
    std::u16string text = prefix;
    for (std::size_t i = 0; i < times; ++i) {
        text += pump;
    }
    return text + suffix;
}

RE_Growth judgeGrowth(const RE_Tree& tree) {
    const RE_Automaton automaton(tree);
    if (!automaton.isComplete()) {
        RE_Growth growth;
        growth.kind = RE_Growth::Kind::unknown;
        return growth;
    }
    return Judge(tree, automaton).judge();
}
