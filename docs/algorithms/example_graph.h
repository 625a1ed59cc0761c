// The graphs of the pages about algorithms, written as text.
//
//   ExampleGraph graph("a->b:4 b--c d:7,2");
//
// makes the nodes a, b, c and d, in the order in which they are first named, and the edges in the order of
// the text. `a->b` is an edge, `b--c` an edge to be taken as undirected, `d` a node alone; what stands behind
// a colon are numbers, with commas between. The graph has the text as names and nothing more: a program takes
// costs and the like from number(edge) and undirected(edge) and sets them in its input.
#pragma once

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "rv/analysis.h"

// What the graph's text says about a node or an edge, with and without the numbers.
inline std::string token(const RVGraphMember* member) {
    const std::wstring name = member->pNameString();
    return std::string(name.begin(), name.end());
}
inline std::string text(const RVGraphMember* member) {
    if (member == nullptr) return "none";
    const std::string name = token(member);
    return name.substr(0, name.find(':'));
}
// A list of nodes or edges, with spaces between.
template <class List, class = decltype(std::declval<const List&>().begin())>
std::string text(const List& list) {
    std::string all;
    for (const RVGraphMember* member : list) all.append(all.empty() ? "" : " ").append(text(member));
    return all;
}

// The i-th number, counted from 0; 1 where the text has none.
inline int number(const RVGraphMember* member, int i = 0) {
    const std::string name = token(member);
    std::istringstream rest(name.substr(std::min(name.find(':'), name.size())));
    int value = 1;
    for (char separator = 0; i >= 0 && rest >> separator >> value;) --i;
    return i < 0 ? value : 1;
}
inline bool undirected(const RVEdge* edge) { return token(edge).find("--") != std::string::npos; }

class ExampleGraph {
public:
    explicit ExampleGraph(const std::string& tokens) : m_graph(m_factory.newGraph()) {
        std::istringstream stream(tokens);
        for (std::string name; stream >> name;) {
            const std::string ends = name.substr(0, name.find(':'));
            const std::size_t arrow = std::min(ends.find("->"), ends.find("--"));
            if (arrow == std::string::npos) {
                setName(addNode(ends), name);
                continue;
            }
            RVNode* source = addNode(ends.substr(0, arrow));
            RVEdge* edge = m_graph->addEdge(source, addNode(ends.substr(arrow + 2)));
            setName(edge, name);
            m_edges.emplace(ends, edge);
        }
    }

    RVGraph* operator->() const { return m_graph.get(); }
    operator RVGraph*() const { return m_graph.get(); }

    // By their text without numbers; of parallel edges the first. std::out_of_range when there is none.
    RVNode* node(const std::string& name) const { return m_nodes.at(name); }
    RVEdge* edge(const std::string& name) const { return m_edges.at(name); }

private:
    RVNode* addNode(const std::string& name) {
        RVNode*& node = m_nodes[name];
        if (node == nullptr) setName(node = m_graph->addNode(), name);
        return node;
    }
    static void setName(RVGraphMember* member, const std::string& name) {
        member->pNameString(std::wstring(name.begin(), name.end()).c_str());
    }

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    std::map<std::string, RVNode*> m_nodes;
    std::map<std::string, RVEdge*> m_edges;
};
