// Builds the automaton by following what nodes mean. It may allow ways that no search takes, never fewer: a pattern that is
// judged linear has to be linear.
#include "regexp/inspect/automaton.h"

#include "regexp/base/compile_meter.h"
#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/loop_pass.h"
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
    const RE_Meaning meaning = node->meaning();
    const auto* const pass = std::get_if<RE_Meanings::Pass>(&meaning);
    return pass != nullptr && pass->begins ? pass->next : node;
}

/// Whether the optional passes of a counted loop, after its required ones, run the same body. Then one loop
/// over that body is all there is to say.
bool sharesBody(const RE_Meanings::Count& fixed) {
    const RE_Node* const body = throughPass(fixed.body);
    return fixed.exit->isBranching() && std::ranges::any_of(waysOf(*fixed.exit), [body](const RE_Node* way) {
               return throughPass(way) == body;
           });
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
    RE_Compile_Meter unbounded;
    alphabet.learn(facts, unbounded);
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
        const auto* const atomic = nodeAs<RE_Atomic>(node);
        if (atomic == nullptr) {
            continue;
        }
        std::set<RE_Node*> seen{atomic->body};
        std::vector<RE_Node*> open{atomic->body};
        while (!open.empty()) {
            RE_Node* const at = open.back();
            open.pop_back();
            const std::vector<RE_Node*> ways = waysOf(*at);
            if (const auto* end = nodeAs<RE_End_Of_Tree>(at); end != nullptr && end->endsBody) {
                behindBody[at] = atomic->nextNode;
            }
            const auto* const inner = nodeAs<RE_Atomic>(at);
            const auto* const look = nodeAs<RE_Lookaround_Assertion>(at);
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

/// Takes every way that a search may take. What a test decides is left open: its way may fail.
struct RE_Automaton::Reader {
    RE_Automaton& automaton;
    std::size_t from;
    const Way& way;

    void follow(RE_Node* target) const { automaton.follow(way, target); }
    void followTest(RE_Node* next, RE_Node* otherwise = nullptr) const {
        Way on = way;
        on.conditional = true;
        automaton.follow(on, next);
        automaton.follow(on, otherwise);
    }

    void operator()(const RE_Meanings::Unknown&) const { automaton.complete = false; }
    void operator()(const RE_Meanings::Nothing& node) const { follow(node.next); }
    void operator()(const RE_Meanings::Unit& node) const {
        const RE_Letters own = automaton.alphabet.lettersOf(*node.test);
        automaton.addEdge(from, automaton.statesOf(way.node, 1)[0], own & way.allowed);
        automaton.follow({nullptr, way.allowed & ~own, way.passes, true}, node.otherwise);
    }
    void operator()(const RE_Meanings::Text&) const { automaton.addTexts(from, way); }
    void operator()(const RE_Meanings::Texts&) const { automaton.addTexts(from, way); }
    void operator()(const RE_Meanings::Run& node) const {
        const RE_Consume& loop = *node.loop;
        const RE_Letters own = automaton.alphabet.lettersOf(*loop.item);
        if (loop.maximum > 0) {
            const std::uint64_t states = loop.maximum <= longestChain ? loop.maximum : 1;
            automaton.addEdge(from, automaton.statesOf(way.node, states)[0], own & way.allowed);
        }
        if (loop.minimum == 0) {
            Way after = way;
            after.allowed &= loop.possessive && !loop.lazy ? ~own : automaton.any;
            automaton.follow(after, node.next);
        }
    }
    void operator()(const RE_Meanings::Edge& node) const {
        followTest(node.before.isLimit() && from != begin ? nullptr : node.next, node.otherwise);
    }
    void operator()(const RE_Meanings::Mark& node) const { follow(node.next); }
    void operator()(const RE_Meanings::Choice& node) const {
        node.forEach([this](RE_Node* branch) { follow(branch); });
    }
    // Where passes are required the first one comes before anything else.
    void operator()(const RE_Meanings::Count_Start& node) const {
        const RE_Meaning next = node.next->meaning();
        const auto* const count = std::get_if<RE_Meanings::Count>(&next);
        const bool isRequired = count != nullptr && count->kind == RE_Meanings::Count::Kind::fixed;
        follow(isRequired ? count->body : node.next);
    }
    void operator()(const RE_Meanings::Count& node) const {
        if (node.kind != RE_Meanings::Count::Kind::fixed) {
            follow(node.body);
            follow(node.exit);
            return;
        }
        followTest(sharesBody(node) ? nullptr : node.body, node.exit);
    }
    void operator()(const RE_Meanings::Pass& node) const {
        const std::uint64_t bit = std::uint64_t{1} << node.pass;
        if (!node.begins) {
            follow((way.passes & bit) != 0 ? nullptr : node.next);
            return;
        }
        Way on = way;
        on.passes = node.kind == RE_Pass::optional ? on.passes | bit : on.passes & ~bit;
        automaton.follow(on, node.next);
    }
    void operator()(const RE_Meanings::Body& node) const {
        if (node.atomic != nullptr) {
            follow(node.body);
            return;
        }
        automaton.complete =
            automaton.complete && (!node.look->behind || node.look->bodyMaximum != RE_Node::unboundedLength);
        followTest(node.body, node.next);
        followTest(node.otherwise);
    }
    void operator()(const RE_Meanings::Reference&) const { automaton.addUnknown(from, way); }
    void operator()(const RE_Meanings::Condition& node) const { followTest(node.next, node.otherwise); }
    void operator()(const RE_Meanings::Host_Call&) const { automaton.complete = false; }
    void operator()(const RE_Meanings::Host_Text&) const { automaton.complete = false; }
    void operator()(const RE_Meanings::End& node) const {
        RE_Automaton_State& state = automaton.all[from];
        const auto after = automaton.behindBody.find(way.node);
        automaton.complete = automaton.complete && node.continuation == nullptr;
        state.accepting = state.accepting || (!node.ofBody && !way.conditional);
        follow(after != automaton.behindBody.end() ? after->second : nullptr);
    }
};

void RE_Automaton::addWays(std::size_t from, Way first) {
    pending.clear();
    met.clear();
    follow(first, first.node);
    while (complete && !pending.empty()) {
        const Way way = pending.back();
        pending.pop_back();
        visitMeaning(*way.node, Reader{*this, from, way});
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

void RE_Automaton::addTexts(std::size_t from, const Way& way) {
    const RE_Node_Literals literals = literalsOf(way.node);
    const std::vector<std::size_t>& own = statesOf(way.node, literals.units());
    std::size_t first = 0;
    for (const std::u16string_view text : literals.texts) {
        if (complete) {
            addEdge(from, own[first], alphabet.lettersOf(text[0], literals.ignoreCase) & way.allowed);
        }
        first += text.size();
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
    if (const auto* const consume = nodeAs<RE_Consume>(node)) {
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
    } else if (std::holds_alternative<RE_Meanings::Reference>(node->meaning())) {
        addEdge(from, from, any);
        behind.conditional = true;
    }
    addWays(from, behind);
}
