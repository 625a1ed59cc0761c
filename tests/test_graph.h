// Graphs as text, for tests.
//
//   TestGraph g("a->b:4 b->c c--d e:7");
//   sort(g); EXPECT_EQ(text(path), "a->b:4 b->c");
//
// The text is a sequence of tokens with spaces between: `a->b` is an edge, `a--b` an edge to be taken as
// undirected, `a` a node alone. Numbers follow a colon, with commas between: `a->b:4,-1`, `e:7`. Nodes are
// made in the order in which they are first named, edges in the order of the text; a repeated edge is a
// parallel one, `a->a` a self-loop.
//
// The token is the name of the object, so numbers and marks can also be read from copies that keep names.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "rv/foundation/graph.h"

namespace rvtest {

inline std::string token(const RVGraphMember* member) {
    const std::wstring name = member->pNameString();
    return std::string(name.begin(), name.end());
}

// The colon and what follows it in the object's token.
inline std::string numbers(const RVGraphMember* member) {
    const std::string name = token(member);
    return name.substr(std::min(name.find(':'), name.size()));
}

// The i-th number of a node or edge, counted from 0.
inline int number(const RVGraphMember* member, int i = 0, int otherwise = 1) {
    std::istringstream rest(numbers(member));
    char separator = 0;
    int value = otherwise;
    while (i-- >= 0) {
        if (!(rest >> separator >> value)) return otherwise;
    }
    return value;
}

inline bool undirected(const RVEdge* edge) { return token(edge).find("--") != std::string::npos; }

// A node by its name without numbers, an edge between the ends that it has now.
inline std::string text(const RVNode* node) {
    return node == nullptr ? "none" : token(node).substr(0, token(node).find(':'));
}
inline std::string text(const RVEdge* edge) {
    if (edge == nullptr) return "none";
    return text(edge->pSourceNode()) + (undirected(edge) ? "--" : "->") + text(edge->pTargetNode()) +
           numbers(edge);
}

template <class List>
std::string listText(const List& list) {
    std::string all;
    for (const auto* member : list) all += (all.empty() ? "" : " ") + text(member);
    return all;
}
inline std::string text(const RVNodeDList& list) { return listText(list); }
inline std::string text(const RVEdgeDList& list) { return listText(list); }

// The nodes and then the edges of a graph: a text from which the same graph is made again.
inline std::string drawing(const RVGraph* graph) {
    std::string all;
    for (const RVNode* node : *graph->pNodeList()) all += token(node) + " ";
    return all + text(*graph->pEdgeList());
}
// All orders of a graph: its lists, and the out- and in-list of each node.
inline std::string orders(const RVGraph* graph) {
    std::string all = drawing(graph);
    for (RVNode* node : *graph->pNodeList()) {
        all +=
            "\n" + text(node) + " out: " + text(*node->pOutEdgeList()) + " in: " + text(*node->pInEdgeList());
    }
    return all;
}

// A graph of a factory, its own unless one is given.
class TestGraph {
public:
    explicit TestGraph(const std::string& tokens = "", RVAFactory* factory = nullptr)
        : m_graph((factory == nullptr ? &m_factory : factory)->newGraph()) {
        std::istringstream stream(tokens);
        for (std::string name; stream >> name;) add(name);
    }

    RVGraph* get() const { return m_graph.get(); }
    operator RVGraph*() const { return get(); }
    RVGraph* operator->() const { return get(); }
    std::unique_ptr<RVGraph> release() { return std::move(m_graph); }

    // Objects that the text made and that were not discarded, attached or not.
    RVNode* node(const std::string& name) const { return find(m_nodes, name); }
    // The first of several with the same text.
    RVEdge* edge(const std::string& name) const { return find(m_edges, name); }
    RVNodeDList nodes(const std::string& names) const {
        RVNodeDList list;
        std::istringstream stream(names);
        for (std::string name; stream >> name;) list.appendNode(node(name));
        return list;
    }

private:
    template <class Member>
    static Member* find(const std::map<std::string, Member*>& members, const std::string& name) {
        const auto found = members.find(name);
        if (found != members.end()) return found->second;
        ADD_FAILURE() << "the graph has no " << name;
        return nullptr;
    }

    RVNode* addNode(const std::string& name) {
        RVNode*& node = m_nodes[name.substr(0, name.find(':'))];
        if (node == nullptr) node = m_graph->addNode(0);
        if (name.find(':') != std::string::npos || *node->pNameString() == L'\0') setName(node, name);
        return node;
    }
    void add(const std::string& name) {
        std::size_t arrow = name.find("->");
        if (arrow == std::string::npos) arrow = name.find("--");
        if (arrow == std::string::npos) {
            addNode(name);
            return;
        }
        RVNode* const source = addNode(name.substr(0, arrow));
        const std::string rest = name.substr(arrow + 2);
        RVEdge* const edge = m_graph->addEdge(source, addNode(rest.substr(0, rest.find(':'))), 0);
        setName(edge, name);
        m_edges.emplace(name, edge);
    }
    static void setName(RVGraphMember* member, const std::string& name) {
        member->pNameString(std::wstring(name.begin(), name.end()).c_str());
    }

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    std::map<std::string, RVNode*> m_nodes;
    std::map<std::string, RVEdge*> m_edges;
};

// Adds nodes with an edge from each to the next one.
inline std::vector<RVNode*> addChain(RVGraph* graph, int length) {
    std::vector<RVNode*> nodes{graph->addNode()};
    while (--length > 0) {
        nodes.push_back(graph->addNode());
        graph->addEdge(nodes.end()[-2], nodes.back());
    }
    return nodes;
}

// What a random graph may be like.
struct Shape {
    int nodes = 7;  // from 1
    int edges = 12;
    int least = 1;  // numbers of the edges
    int most = 1;
    int undirected = 0;  // per cent of the edges
    bool loops = true;
    bool acyclic = false;
    bool nodeNumbers = false;  // from the same range
};

// The text of a random graph, the same for a seed for ever. Parallel and opposite edges and isolated nodes
// are frequent.
inline std::string randomText(unsigned seed, const Shape& shape = {}) {
    std::mt19937 random(seed);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const auto withNumber = [&](const std::string& name, bool numbered) {
        return numbered ? name + ":" + std::to_string(shape.least + below(shape.most - shape.least + 1))
                        : name;
    };
    const auto nameOf = [](int i) {
        return i < 26 ? std::string(1, static_cast<char>('a' + i)) : "n" + std::to_string(i);
    };

    const int nodes = 1 + below(shape.nodes);
    std::vector<bool> named(static_cast<std::size_t>(nodes));
    std::vector<std::string> tokens;
    int from = 0;
    int to = 0;
    for (int left = below(shape.edges + 1); left > 0; --left) {
        const int choice = below(8);  // 0: parallel to the edge before, 1: opposite to it
        if (choice == 1) std::swap(from, to);
        if (choice > 1) {
            from = below(nodes);
            to = below(nodes);
        }
        if (shape.acyclic && from > to) std::swap(from, to);
        if (from == to && (shape.acyclic || !shape.loops)) continue;
        named[static_cast<std::size_t>(from)] = named[static_cast<std::size_t>(to)] = true;
        const std::string ends = nameOf(from) + (below(100) < shape.undirected ? "--" : "->") + nameOf(to);
        tokens.push_back(withNumber(ends, shape.least != 1 || shape.most != 1));
    }
    for (int i = 0; i < nodes; ++i) {
        if (named[static_cast<std::size_t>(i)] && !shape.nodeNumbers && below(3) != 0) continue;
        tokens.insert(tokens.begin() + below(static_cast<int>(tokens.size()) + 1),
                      withNumber(nameOf(i), shape.nodeNumbers));
    }
    std::string all;
    for (const std::string& each : tokens) all += (all.empty() ? "" : " ") + each;
    return all;
}

}  // namespace rvtest
