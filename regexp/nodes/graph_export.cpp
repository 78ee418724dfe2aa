// Writes a graph with its capture groups as clusters.
//
// Nothing is recursive, as groups may nest more deeply than the native stack would allow, and nothing is
// marked in the nodes, as they may be searched meanwhile.
#include "regexp/nodes/graph_export.h"

#include "regexp/base/within_size.h"
#include "regexp/nodes/label_text.h"
#include "regexp/nodes/tokens.h"
#include "regexp/nodes/trivial.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

struct Link_Style {
    const char* name;
    const char* look;
};

Link_Style styleOf(RE_Link kind) {
    switch (kind) {
        case RE_Link::next:
            return {"next", ""};
        case RE_Link::fail:
            return {"fail", " [label=\"fail\", style=dashed, color=red]"};
        case RE_Link::alternative:
            return {"Alt", " [label=\"Alt\", style=dotted]"};
        case RE_Link::body:
            return {"body", " [label=\"body\", color=blue]"};
        case RE_Link::item:
            return {"item", " [label=\"item\", color=blue, arrowhead=odot]"};
        case RE_Link::done:
            return {"Done", " [label=\"Done\", style=bold]"};
        case RE_Link::helper:
            break;
    }
    return {"undo", " [label=\"undo\", color=gray, arrowhead=empty]"};
}

struct Link_Writer : RE_Link_Visitor {
    Link_Writer(RE_Graph_Output& text, const RE_Node* node) : out(text), from(node) {}
    void link(RE_Node*& target, RE_Link kind) override {
        if (target != nullptr) {
            out.addLink(from, target, kind);
        }
    }
    RE_Graph_Output& out;
    const RE_Node* from;
};

/// The capture groups of a graph: which nodes are between the start and the end of each. A group that the
/// parser copied is there as often as its copies.
class Clusters {
public:
    struct Cluster {
        std::size_t parent;
        std::size_t number;
        std::vector<RE_Node*> nodes{};
        std::vector<std::size_t> inner{};
    };
    static constexpr std::size_t outside = 0;

    explicit Clusters(RE_Node* root) {
        all.push_back({outside, 0});
        arrive(root, outside);
        for (std::size_t i = 0; i < pending.size(); ++i) {
            visit(pending[i]);
        }
    }

    void assign(RE_Node* node) { all[clusterOf.at(node)].nodes.push_back(node); }
    const Cluster& operator[](std::size_t index) const { return all[index]; }

private:
    /// Gives a node the cluster of the node that led to it first. A token start opens a cluster of its own
    /// within that.
    void arrive(RE_Node* node, std::size_t from) {
        if (node == nullptr || clusterOf.contains(node)) {
            return;
        }
        std::size_t cluster = from;
        if (node->isStartToken()) {
            cluster = all.size();
            all.push_back({from, static_cast<const RE_Token*>(node)->number});
            all[from].inner.push_back(cluster);
        }
        clusterOf.emplace(node, cluster);
        pending.push_back(node);
    }

    /// Passes the cluster of a node on to all that it leads to; past the end of a group that is the group
    /// around it.
    void visit(RE_Node* node) {
        const std::size_t own = clusterOf.at(node);
        const std::size_t following = node->isEndToken() ? all[own].parent : own;
        struct Arrival : RE_Link_Visitor {
            Arrival(Clusters& all, std::size_t cluster) : clusters(all), from(cluster) {}
            void link(RE_Node*& target, RE_Link) override { clusters.arrive(target, from); }
            Clusters& clusters;
            std::size_t from;
        } arrival(*this, following);
        node->visitLinks(arrival);
    }

    std::vector<Cluster> all;
    std::unordered_map<RE_Node*, std::size_t> clusterOf;
    std::vector<RE_Node*> pending;
};

// Clusters within clusters, on a list of open ones in place of recursion.
void writeClusters(RE_Graph_Output& out, const Clusters& clusters) {
    std::vector<std::pair<std::size_t, std::size_t>> open{
        {Clusters::outside, 0}};  // cluster, inner ones written
    const auto begin = [&](std::size_t index) {
        for (RE_Node* node : clusters[index].nodes) {
            node->graph(out);
        }
    };
    begin(Clusters::outside);
    while (!open.empty()) {
        const Clusters::Cluster& cluster = clusters[open.back().first];
        if (open.back().second == cluster.inner.size()) {
            out.nodes += open.size() > 1 ? "  }\n" : "";
            open.pop_back();
            continue;
        }
        const std::size_t inner = cluster.inner[open.back().second++];
        out.nodes += "  subgraph cluster_" + std::to_string(inner) + " {\n  label=\"Token #" +
                     std::to_string(clusters[inner].number + 1) + "\";\n";
        open.push_back({inner, 0});
        begin(inner);
    }
}

}  // namespace

const char* linkName(RE_Link kind) {
    return styleOf(kind).name;
}

void RE_Graph_Output::addNode(const RE_Node* node) {
    // Nodes that continue in another pattern also answer that they are an end.
    std::string more = node->isEnd() && node->nextNode == nullptr ? ", peripheries=2" : "";
    const std::string given = attributes ? attributes(node->nodeId) : std::string();
    more += given.empty() ? "" : ", " + given;
    appendGraphNode(nodes, withinSize(node->nodeId), node->label(), more);
}

void RE_Graph_Output::addLink(const RE_Node* from, const RE_Node* to, RE_Link kind) {
    links += "  n" + std::to_string(from->nodeId) + " -> n" + std::to_string(to->nodeId) +
             styleOf(kind).look + ";\n";
}

void RE_Node::graph(RE_Graph_Output& out) {
    out.addNode(this);
    Link_Writer links(out, this);
    visitLinks(links);
}

// The continuation is a node of another graph, which has numbers of its own: it gets a stand-in.
void RE_End_Of_Tree::graph(RE_Graph_Output& out) {
    RE_Node::graph(out);
    if (continuation != nullptr) {
        const std::string own = std::to_string(nodeId);
        out.links += "  outer" + own + " [label=\"outer pattern\", style=dashed];\n  n" + own + " -> outer" +
                     own + " [label=\"continuation\", style=dashed, color=blue];\n";
    }
}

std::string writeGraph(const std::vector<RE_Node*, RE_Allocator<RE_Node*>>& nodes, RE_Node* root,
                       const RE_Graph_Attributes& attributes) {
    RE_Graph_Output out{{}, {}, attributes};
    Clusters clusters(root);
    std::vector<RE_Node*> ordered(nodes.begin(), nodes.end());
    std::ranges::sort(ordered, {}, &RE_Node::nodeId);
    for (RE_Node* node : ordered) {
        clusters.assign(node);
    }
    writeClusters(out, clusters);
    return "digraph regexp {\n  node [shape=box];\n  start [shape=point];\n" + out.nodes + "  start -> n" +
           std::to_string(root->nodeId) + ";\n" + out.links + "}\n";
}
