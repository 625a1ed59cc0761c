// Graphs of places and the ways between them, as text. Two forms are read and told apart by themselves:
//   lines `node NAME [COST]`, `edge NAME -> NAME COST` and `edge NAME -- NAME COST`, the last for an edge
//   that is followed both ways; the DIMACS form of shortest path problems: `p sp NODES ARCS` and lines `a
//   FROM TO COST`.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rv/analysis.h"
#include "text_lines.h"

class RouteGraph {
public:
    // Reads a text. A malformed line is skipped and named on standard error by the name of the text and its
    // number. Nodes stand in the order in which lines first name them, edges in the order of their lines.
    RouteGraph(std::string textName, std::string_view text);
    RouteGraph(const RouteGraph&) = delete;
    RouteGraph& operator=(const RouteGraph&) = delete;

    RVGraph* pGraph() const { return m_graph.get(); }
    // What nodes and edges cost, and which edges are followed both ways. Questions take it over by copyData.
    RVPathCostInputData& costs() { return m_costs; }
    const RVPathCostInputData& costs() const { return m_costs; }

    // The node of a name; none when there is no such node. One that a DIMACS text announces, and to which no
    // line leads, is made now.
    RVNode* pNode(std::string_view name);
    std::string name(const RVNode* node) const;

    bool isFollowedBothWays(RVEdge* edge) const {
        return m_costs.undirected() != 0 || m_costs.undirected(edge) != 0;
    }

private:
    // Each takes one line, and gives the reason when it is malformed, else an empty text.
    std::string readLine(const Words& words);
    std::string readNode(const Words& words);
    std::string readEdge(const Words& words);
    std::string readDimacsLine(const Words& words);
    std::string readProblem(const Words& words);
    std::string readArc(const Words& words);

    RVNode* takeNode(std::string_view name);  // found or made
    void addEdge(RVNode* source, RVNode* target, int cost, bool bothWays);

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    RVPathCostInputData m_costs;
    std::unordered_map<std::string, RVNode*> m_nodes;
    std::vector<bool> m_hasLine;  // a node line, by dense index
    // Of a DIMACS text.
    int m_announcedNodes = -1;  // -1 before line p
    int m_announcedArcs = 0;
    int m_numberOfArcs = 0;
};
