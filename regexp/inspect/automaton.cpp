#include "regexp/inspect/automaton.h"

#include "regexp/dfa/node_literals.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/nodes/anchors.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/counters.h"
#include "regexp/nodes/loop_pass.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"
#include "regexp/tree.h"

#include <algorithm>
#include <memory>
#include <set>

namespace {

// Repetitions of one unit up to this many times are taken as they are, longer ones as endless.
constexpr std::uint64_t longestChain = 64;
constexpr std::size_t mostWays = 300'000;  // followed in all
constexpr std::size_t mostPasses = 64;
constexpr std::size_t mostNodes = 5'000;

struct Targets : RE_Link_Visitor {
    void link(RE_Node*& target, RE_Link kind) override {
        if (target != nullptr && kind != RE_Link::helper && kind != RE_Link::item) {
            nodes.push_back(target);
        }
    }
    std::vector<RE_Node*> nodes;
};

std::vector<RE_Node*> waysOf(RE_Node& node) {
    Targets targets;
    node.visitLinks(targets);
    return targets.nodes;
}

const RE_Node* throughPass(const RE_Node* node) {
    const auto* pass = dynamic_cast<const RE_Start_Pass*>(node);
    return pass != nullptr ? pass->nextNode : node;
}

/// Whether the optional passes of a counted loop, behind its required ones, run the same body. Then one loop
/// over that body is all there is to say.
bool sharesBody(const RE_Fixed_Counter& fixed) {
    const RE_Node* const body = throughPass(fixed.nextNode);
    return fixed.doneNode->isBranching() &&
           std::ranges::any_of(waysOf(*fixed.doneNode),
                               [body](const RE_Node* way) { return throughPass(way) == body; });
}

bool isTest(const RE_Node* node) {
    return dynamic_cast<const RE_Anchor*>(node) != nullptr ||
           dynamic_cast<const RE_Token_Assertion*>(node) != nullptr ||
           dynamic_cast<const RE_Lookaround_Assertion*>(node) != nullptr;
}

}  // namespace

bool RE_Automaton::Way_Order::operator()(const Way& a, const Way& b) const {
    if (a.node != b.node || a.passes != b.passes || a.conditional != b.conditional) {
        return std::tie(a.node, a.passes, a.conditional) < std::tie(b.node, b.passes, b.conditional);
    }
    for (std::size_t i = 0; i < a.allowed.size(); ++i) {
        if (a.allowed[i] != b.allowed[i]) {
            return b.allowed[i];
        }
    }
    return false;
}

RE_Automaton::RE_Automaton(const RE_Tree& tree) {
    const RE_Graph_Facts& facts = tree.getFacts();
    if (facts.hasDynamicNodes || facts.passRegisters > mostPasses || facts.nodes.size() > mostNodes) {
        complete = false;
        return;
    }
    alphabet.learn(facts);
    complete = alphabet.isComplete();
    if (!complete) {
        return;
    }
    any = alphabet.all();
    noteBodyEnds(tree);
    addState(nullptr);
    addState(nullptr);
    for (const std::size_t from : {begin, skipping}) {
        addEdge(from, skipping, any);
        addWays(from, {const_cast<RE_Node*>(tree.getRoot()), any, 0, false});
    }
    while (complete && !unfinished.empty()) {
        const auto [node, count] = unfinished.back();
        unfinished.pop_back();
        const std::vector<std::size_t> own = nodeStates.at(node);
        for (std::size_t index = 0; index < own.size() && complete; ++index) {
            continueBehind(node, own, index);
        }
    }
}

void RE_Automaton::noteBodyEnds(const RE_Tree& tree) {
    for (RE_Node* node : tree.getFacts().nodes) {
        const auto* const atomic = dynamic_cast<RE_Atomic*>(node);
        if (atomic == nullptr) {
            continue;
        }
        std::set<RE_Node*> seen{atomic->body};
        std::vector<RE_Node*> open{atomic->body};
        while (!open.empty()) {
            RE_Node* const at = open.back();
            open.pop_back();
            const std::vector<RE_Node*> ways = waysOf(*at);
            if (const auto* end = dynamic_cast<RE_End_Of_Tree*>(at); end != nullptr && end->endsBody) {
                behindBody[at] = atomic->nextNode;
            }
            const auto* const inner = dynamic_cast<RE_Atomic*>(at);
            const auto* const look = dynamic_cast<RE_Lookaround_Assertion*>(at);
            for (RE_Node* target : ways) {
                const bool isBody =
                    (inner != nullptr && target == inner->body) || (look != nullptr && target == look->body);
                if (!isBody && seen.insert(target).second) {
                    open.push_back(target);
                }
            }
        }
    }
}

std::size_t RE_Automaton::addState(const RE_Node* node) {
    complete = complete && all.size() < greatest;
    all.push_back({node});
    return all.size() - 1;
}

const std::vector<std::size_t>& RE_Automaton::statesOf(RE_Node* node, std::uint64_t count) {
    std::vector<std::size_t>& own = nodeStates[node];
    if (own.empty()) {
        for (std::uint64_t i = 0; i < count && complete; ++i) {
            own.push_back(addState(node));
        }
        unfinished.emplace_back(node, own.size());
    }
    return own;
}

void RE_Automaton::addEdge(std::size_t from, std::size_t target, const RE_Letters& letters) {
    if (letters.any()) {
        all[from].edges.push_back({target, letters});
    }
}

void RE_Automaton::addWays(std::size_t from, Way first) {
    pending.clear();
    met.clear();
    follow(first, first.node);
    while (complete && !pending.empty()) {
        const Way way = pending.back();
        pending.pop_back();
        visit(from, way);
    }
}

// A second way to the same place counts, further ones add nothing.
void RE_Automaton::follow(Way way, RE_Node* target) {
    if (target == nullptr) {
        return;
    }
    way.node = target;
    if (++met[way] <= 2) {
        pending.push_back(way);
    }
    complete = complete && ++followed < mostWays;
}

void RE_Automaton::visit(std::size_t from, const Way& way) {
    if (!visitConsuming(from, way)) {
        visitOther(from, way);
    }
}

bool RE_Automaton::visitConsuming(std::size_t from, const Way& way) {
    if (auto* unit = dynamic_cast<RE_Consumable*>(way.node); unit != nullptr && unit->isSingleUnit()) {
        const RE_Letters own = alphabet.lettersOf(*unit);
        addEdge(from, statesOf(unit, 1)[0], own & way.allowed);
        follow({nullptr, way.allowed & ~own, way.passes, true}, unit->failTarget);
        return true;
    }
    if (const RE_Node_Literals literals = literalsOf(way.node); !literals.texts.empty()) {
        const std::vector<std::size_t>& own = statesOf(way.node, literals.units());
        std::size_t first = 0;
        for (const std::u16string_view text : literals.texts) {
            if (complete) {
                addEdge(from, own[first], alphabet.lettersOf(text[0], literals.ignoreCase) & way.allowed);
            }
            first += text.size();
        }
        return true;
    }
    if (auto* consume = dynamic_cast<RE_Consume*>(way.node)) {
        const bool isChain = consume->maximum <= longestChain;
        const RE_Letters own = alphabet.lettersOf(*consume->item);
        if (consume->maximum > 0) {
            addEdge(from, statesOf(consume, isChain ? consume->maximum : 1)[0], own & way.allowed);
        }
        if (consume->minimum == 0) {
            Way behind = way;
            behind.allowed &= consume->possessive && !consume->lazy ? ~own : any;
            follow(behind, consume->nextNode);
        }
        return true;
    }
    return false;
}

void RE_Automaton::visitOther(std::size_t from, const Way& way) {
    Way on = way;
    RE_Node* const node = way.node;
    if (dynamic_cast<RE_Start_String*>(node) != nullptr) {
        on.conditional = true;
        follow(on, from == begin ? node->nextNode : nullptr);
    } else if (const auto* end = dynamic_cast<RE_End_Of_Tree*>(node)) {
        const auto found = behindBody.find(node);
        complete = complete && end->continuation == nullptr;
        all[from].accepting = all[from].accepting || (!end->endsBody && !way.conditional);
        follow(on, found != behindBody.end() ? found->second : nullptr);
    } else if (const auto* atomic = dynamic_cast<RE_Atomic*>(node)) {
        follow(on, atomic->body);
    } else if (const auto* pass = dynamic_cast<RE_Start_Pass*>(node)) {
        const std::uint64_t bit = std::uint64_t{1} << pass->pass;
        on.passes = pass->passKind == RE_Pass::optional ? on.passes | bit : on.passes & ~bit;
        follow(on, pass->nextNode);
    } else if (const auto* endPass = dynamic_cast<RE_End_Pass*>(node)) {
        const bool isEmpty = (on.passes >> endPass->pass & 1) != 0;
        follow(on, isEmpty ? nullptr : endPass->nextNode);
    } else if (dynamic_cast<RE_Match_Token*>(node) != nullptr) {
        addUnknown(from, way);
    } else if (dynamic_cast<RE_Start_Counter*>(node) != nullptr) {
        // Where passes are required the first one comes before anything else.
        const auto* const required = dynamic_cast<RE_Fixed_Counter*>(node->nextNode);
        follow(on, required != nullptr ? required->nextNode : node->nextNode);
    } else if (const auto* fixed = dynamic_cast<RE_Fixed_Counter*>(node)) {
        on.conditional = true;
        follow(on, sharesBody(*fixed) ? nullptr : fixed->nextNode);
        follow(on, fixed->doneNode);
    } else {
        const auto* const look = dynamic_cast<RE_Lookaround_Assertion*>(node);
        complete =
            complete && (look == nullptr || !look->behind || look->bodyMaximum != RE_Node::unboundedLength);
        on.conditional = on.conditional || isTest(node);
        for (RE_Node* target : waysOf(*node)) {
            follow(on, target);
        }
    }
}

// The text of a token may be any text.
void RE_Automaton::addUnknown(std::size_t from, const Way& way) {
    addEdge(from, statesOf(way.node, 1)[0], way.allowed);
    Way on = way;
    on.conditional = true;
    follow(on, way.node->nextNode);
}

void RE_Automaton::continueBehind(RE_Node* node, const std::vector<std::size_t>& own, std::size_t index) {
    const std::size_t from = own[index];
    Way behind{node->nextNode, any, 0, false};
    const RE_Node_Literals literals = literalsOf(node);
    std::size_t within = index;  // the literal that the state is of
    for (const std::u16string_view text : literals.texts) {
        if (within + 1 < text.size()) {
            addEdge(from, own[index + 1], alphabet.lettersOf(text[within + 1], literals.ignoreCase));
            return;
        }
        if (within + 1 == text.size()) {
            break;
        }
        within -= text.size();
    }
    if (auto* consume = dynamic_cast<RE_Consume*>(node)) {
        const bool isChain = consume->maximum <= longestChain;
        const bool goesOn = !isChain || index + 1 < own.size();
        const RE_Letters letters = alphabet.lettersOf(*consume->item);
        if (goesOn) {
            addEdge(from, isChain ? own[index + 1] : from, letters);
        }
        if (isChain && index + 1 < consume->minimum) {
            return;
        }
        behind.allowed = goesOn && consume->possessive && !consume->lazy ? any & ~letters : any;
        behind.conditional = !isChain && consume->minimum > 1;
    } else if (dynamic_cast<RE_Match_Token*>(node) != nullptr) {
        addEdge(from, from, any);
        behind.conditional = true;
    }
    addWays(from, behind);
}
