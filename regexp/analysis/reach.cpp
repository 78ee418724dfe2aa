// The greatest distance to which a way through the graph leads, as the longest path over its components.
//
// Each node becomes a vertex with the units that it looks at from its position, each way on an edge with the units that are
// consumed on it. A lookaround's body is a way like any other from the position of the assertion; an atomic group is left
// at most as far ahead as its body reaches. A strongly connected component that consumes is endless unless each of its
// loops is counted: then the counts bound how often it is gone through.
#include "regexp/analysis/reach.h"

#include "regexp/graph/graph_facts.h"
#include "regexp/graph/meaning.h"
#include "regexp/nodes/closed_body.h"
#include "regexp/nodes/consume.h"
#include "regexp/nodes/literal_set.h"
#include "regexp/nodes/string.h"
#include "regexp/seek/kernels.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

using namespace RE_Meanings;

namespace {

constexpr std::uint64_t kUnbounded = RE_Reach::unbounded;

std::uint64_t sum(std::uint64_t one, std::uint64_t other) {
    return one >= kUnbounded - other ? kUnbounded : one + other;
}
std::uint64_t product(std::uint64_t one, std::uint64_t other) {
    return one != 0 && other >= kUnbounded / one ? kUnbounded : one * other;
}

using Vertex_Number = std::uint32_t;
constexpr Vertex_Number kNone = static_cast<Vertex_Number>(-1);

struct Edge_On {
    Vertex_Number to;
    std::uint64_t units;              ///< consumed at most
    std::uint64_t passes = 0;         ///< a counted loop takes it so often at most; 0: it is not counted
    Vertex_Number afterBody = kNone;  ///< of an atomic group: consumes what the body from there on reaches
};

struct Vertex {
    std::uint64_t looks = 0;  ///< units looked at from its position on
    std::vector<Edge_On> edges;
    bool isOnLoop = false;    ///< on one that nothing counts
    std::uint64_t reach = 0;  ///< known once its component is finished
    Vertex_Number component = kNone;
};

/// The graph as vertices, and the units on the way.
class Reach_Graph {
public:
    Reach_Graph(RE_Unit_Set& consumedUnits, RE_Unit_Set& toldUnits)
        : consumed(consumedUnits), told(toldUnits) {}

    /// False where nothing can be said.
    bool read(const RE_Node* root) {
        numberOf(root);
        for (std::size_t i = 0; i < nodes.size() && known; ++i) {
            current = static_cast<Vertex_Number>(i);
            visitMeaning(*nodes[i], *this);
        }
        if (hasReferences) {
            closeUnderCase();
        }
        return known;
    }

    std::vector<Vertex> vertices;

    // --- what the nodes mean ---

    void operator()(const Unknown&) { known = false; }
    void operator()(const Host_Call&) { known = false; }
    void operator()(const Host_Text&) { known = false; }
    void operator()(const Nothing& node) { lead(node.next); }
    void operator()(const Unit& node) {
        node.test->addUnitsTo(consumed);
        consume(node.next, 1);
        lead(node.otherwise);
    }
    void operator()(const Text& node) {
        addText({node.string->text, node.string->length}, node.string->ignoreCase);
        consume(node.next, node.string->length);
    }
    void operator()(const Texts& node) {
        const RE_Literal_Trie& literals = node.set->literals;
        for (std::size_t i = 0; i < literals.count(); ++i) {
            addText(literals.text(i), literals.ignoresCase());
        }
        consume(node.next, literals.longest());
    }
    void operator()(const Run& node) {
        consumed.addAll(*node.loop->units);
        consume(node.next, node.loop->maximum);
    }
    void operator()(const Edge& node) {
        vertices[current].looks = node.after.isAny() ? 0 : 1;
        addTold(node.before);
        addTold(node.after);
        lead(node.next);
        lead(node.otherwise);
    }
    void operator()(const Mark& node) { lead(node.next); }
    void operator()(const Choice& node) {
        node.forEach([this](const RE_Node* way) { lead(way); });
    }
    void operator()(const Count_Start& node) { lead(node.next); }
    void operator()(const Count& node) {
        if (node.body != nullptr) {
            // A fixed count makes one pass more than its limit says, and the first may be none of its passes.
            addEdge({numberOf(node.body), 0, sum(node.limit, 2)});
        }
        lead(node.exit);
    }
    void operator()(const Pass& node) {
        lead(node.next);
        lead(node.exit);
    }
    void operator()(const Body& node) {
        lead(node.body);
        if (node.atomic != nullptr && node.body != nullptr && node.next != nullptr) {
            addEdge({numberOf(node.next), 0, 0, numberOf(node.body)});
        } else {
            lead(node.next);
        }
        lead(node.otherwise);
    }
    // The text of a token was consumed by another node, perhaps in the other case.
    void operator()(const Reference& node) {
        hasReferences = true;
        consume(node.next, kUnbounded);
        lead(node.otherwise);
    }
    void operator()(const Condition& node) {
        lead(node.next);
        lead(node.otherwise);
    }
    void operator()(const End& node) { known = known && node.continuation == nullptr; }

private:
    Vertex_Number numberOf(const RE_Node* node) {
        const auto [at, isNew] = numbers.try_emplace(node, static_cast<Vertex_Number>(nodes.size()));
        if (isNew) {
            nodes.push_back(node);
            vertices.emplace_back();
        }
        return at->second;
    }
    // The edge is complete, and with it the vertices, before one of these is referred to.
    void addEdge(const Edge_On& edge) { vertices[current].edges.push_back(edge); }
    void lead(const RE_Node* to) {
        if (to != nullptr) {
            addEdge({numberOf(to), 0});
        }
    }
    // What is consumed is looked at, whether there is anything further on or not.
    void consume(const RE_Node* next, std::uint64_t units) {
        vertices[current].looks = std::max(vertices[current].looks, units);
        if (next != nullptr) {
            addEdge({numberOf(next), units});
        }
    }
    void addText(std::u16string_view text, bool ignoreCase) {
        for (const char16_t unit : text) {
            if (ignoreCase) {
                RE_Case_Table::get().forEachForm(unit, [this](char16_t form) { consumed.add(form); });
            } else {
                consumed.add(unit);
            }
        }
    }
    void addTold(const Side& side) {
        if (side.isAny()) {
            return;
        }
        RE_Unit_Set accepted;
        side.visitAccepted([&accepted](const auto& units) { addTo(accepted, units); });
        if (side.holdsAtLimit()) {
            accepted.negate();
        }
        told.addAll(accepted);
    }
    static void addTo(RE_Unit_Set& set, char16_t unit) { set.add(unit); }
    static void addTo(RE_Unit_Set& set, const RE_Unit_Set& units) { set.addAll(units); }
    static void addTo(RE_Unit_Set& set, const RE_Consumable& test) { test.addUnitsTo(set); }
    void closeUnderCase() {
        const RE_Case_Table& cases = RE_Case_Table::get();
        RE_Unit_Set folded;
        for (std::uint32_t unit = 0; unit < RE_Unit_Set::unitCount; ++unit) {
            if (consumed.contains(static_cast<char16_t>(unit))) {
                folded.add(cases.lower(static_cast<char16_t>(unit)));
            }
        }
        consumed.addWhere([&](char16_t unit) { return folded.contains(cases.lower(unit)); });
    }

    RE_Unit_Set& consumed;
    RE_Unit_Set& told;
    std::unordered_map<const RE_Node*, Vertex_Number> numbers;
    std::vector<const RE_Node*> nodes;  // each of them has the vertex of its place in the list
    Vertex_Number current = 0;
    bool known = true;
    bool hasReferences = false;
};

/// Strongly connected components, in the order in which a depth-first walk finishes them: what a component leads to is
/// finished before it. `admits` says which edges there are, `finish` is called with the vertices of each component.
template <class Admits, class Finish>
class Component_Walk {
public:
    Component_Walk(const std::vector<Vertex>& all, Admits edgeCounts, Finish whenFinished)
        : vertices(all), admits(edgeCounts), finish(whenFinished), order(all.size(), 0), low(all.size(), 0) {}

    void from(Vertex_Number root) {
        if (order[root] != 0) {
            return;
        }
        enter(root);
        while (!frames.empty()) {
            Frame& frame = frames.back();
            const std::vector<Edge_On>& edges = vertices[frame.vertex].edges;
            if (frame.edge == edges.size()) {
                leave();
            } else if (const Edge_On& edge = edges[frame.edge++]; admits(frame.vertex, edge)) {
                follow(frame.vertex, edge.to);
            }
        }
    }

private:
    struct Frame {
        Vertex_Number vertex;
        std::size_t edge;
    };
    static constexpr std::uint32_t finished = static_cast<std::uint32_t>(-1);

    void enter(Vertex_Number vertex) {
        order[vertex] = low[vertex] = ++count;
        open.push_back(vertex);
        frames.push_back({vertex, 0});
    }
    void follow(Vertex_Number from, Vertex_Number to) {
        if (order[to] == 0) {
            enter(to);
        } else if (order[to] != finished) {
            low[from] = std::min(low[from], order[to]);
        }
    }
    void leave() {
        const Vertex_Number vertex = frames.back().vertex;
        frames.pop_back();
        if (!frames.empty()) {
            low[frames.back().vertex] = std::min(low[frames.back().vertex], low[vertex]);
        }
        if (low[vertex] != order[vertex]) {
            return;
        }
        const auto first = std::find(open.rbegin(), open.rend(), vertex).base() - 1;
        const std::vector<Vertex_Number> members(first, open.end());
        open.erase(first, open.end());
        for (const Vertex_Number member : members) {
            order[member] = finished;
        }
        finish(members);
    }

    const std::vector<Vertex>& vertices;
    Admits admits;
    Finish finish;
    std::vector<std::uint32_t> order;
    std::vector<std::uint32_t> low;
    std::vector<Vertex_Number> open;
    std::vector<Frame> frames;
    std::uint32_t count = 0;
};

/// Finds the reach of each vertex, component by component.
class Reach_Measure {
public:
    explicit Reach_Measure(std::vector<Vertex>& all) : vertices(all) {}

    std::uint64_t fromFirst() {
        findUncountedLoops();
        Component_Walk walk(
            vertices, [](Vertex_Number, const Edge_On&) { return true; },
            [this](const std::vector<Vertex_Number>& members) { finish(members); });
        walk.from(0);
        return vertices[0].reach;
    }

private:
    // The body of an atomic group that leads back to the group is none that the parser makes: no bound then.
    std::uint64_t unitsOf(const Edge_On& edge) const {
        if (edge.afterBody == kNone) {
            return edge.units;
        }
        const Vertex& body = vertices[edge.afterBody];
        return body.component == kNone || body.component == components ? kUnbounded : body.reach;
    }
    bool isWithin(Vertex_Number vertex) const { return vertices[vertex].component == components; }

    // A way through a component visits each vertex once between two counted passes, so the sum of what each may consume
    // bounds what is consumed between them, and the counts bound the number of passes.
    void finish(const std::vector<Vertex_Number>& members) {
        for (const Vertex_Number member : members) {
            vertices[member].component = components;
        }
        std::uint64_t once = 0;
        std::uint64_t times = 1;
        std::uint64_t last = 0;
        bool isOnLoop = false;
        for (const Vertex_Number member : members) {
            std::uint64_t most = 0;
            isOnLoop = isOnLoop || vertices[member].isOnLoop;
            last = std::max(last, vertices[member].looks);
            for (const Edge_On& edge : vertices[member].edges) {
                const std::uint64_t units = unitsOf(edge);
                if (isWithin(edge.to)) {
                    most = std::max(most, units);
                    times = edge.passes != 0 ? product(times, edge.passes) : times;
                } else {
                    last = std::max(last, sum(units, vertices[edge.to].reach));
                }
            }
            once = sum(once, most);
        }
        const bool isEndless = once != 0 && isOnLoop;
        const std::uint64_t within = isEndless ? kUnbounded : product(once, times);
        for (const Vertex_Number member : members) {
            vertices[member].reach = sum(within, last);
        }
        ++components;
    }
    void findUncountedLoops() {
        const auto isUncounted = [](Vertex_Number, const Edge_On& edge) { return edge.passes == 0; };
        const auto note = [this](const std::vector<Vertex_Number>& members) {
            const std::vector<Edge_On>& edges = vertices[members[0]].edges;
            const bool turnsBack = std::any_of(edges.begin(), edges.end(), [&members](const Edge_On& edge) {
                return edge.passes == 0 && edge.to == members[0];
            });
            for (const Vertex_Number member : members) {
                vertices[member].isOnLoop = members.size() > 1 || turnsBack;
            }
        };
        Component_Walk walk(vertices, isUncounted, note);
        for (Vertex_Number vertex = 0; vertex < vertices.size(); ++vertex) {
            walk.from(vertex);
        }
    }

    std::vector<Vertex>& vertices;
    Vertex_Number components = 0;
};

}  // namespace

RE_Reach::RE_Reach(const RE_Graph_Facts& facts) {
    Reach_Graph graph(consumed, told);
    isKnown = facts.root != nullptr && !facts.hasDynamicNodes && graph.read(facts.root);
    if (isKnown) {
        mostUnits = Reach_Measure(graph.vertices).fromFirst();
        hasBarriers = consumed.size() != RE_Unit_Set::unitCount;
    }
}

std::size_t RE_Reach::finalStarts(std::u16string_view known, std::size_t from) const {
    std::size_t starts = 0;
    if (mostUnits <= known.size()) {
        starts = known.size() - static_cast<std::size_t>(mostUnits) + 1;
    }
    if (hasBarriers && from < known.size()) {
        const RE_Class_Scan outside(consumed, false);
        const char16_t* const barrier =
            findLastClass(known.data() + from, known.data() + known.size(), outside);
        if (barrier != nullptr) {
            starts = std::max(starts, static_cast<std::size_t>(barrier - known.data()) + 1);
        }
    }
    return starts;
}
