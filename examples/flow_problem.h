// Flow problems in the DIMACS forms: `p max NODES ARCS`, lines `n ID s` and `n ID t` for source and sink, and
// lines `a FROM TO CAPACITY`; or `p min NODES ARCS`, a line `n ID SUPPLY` each for source and sink, and lines
// `a FROM TO LOW CAPACITY COST`.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rv/analysis.h"
#include "text_lines.h"

class FlowProblem {
public:
    enum Kind { None, Maximum, MinimumCost };

    // Reads a text. A malformed line is skipped and named on standard error by the name of the text and its
    // number. Nodes stand in the order in which lines first name them, edges in the order of their lines.
    FlowProblem(std::string textName, std::string_view text);
    FlowProblem(const FlowProblem&) = delete;
    FlowProblem& operator=(const FlowProblem&) = delete;

    // Why the problem cannot be solved; empty when it can.
    std::string obstacle() const;
    Kind kind() const { return m_kind; }

    RVGraph* pGraph() const { return m_graph.get(); }
    // Source, sink and capacities; for minimum cost also costs and, as the desired flow, the supply.
    RVMinimumCostFlowInputData& question() { return m_question; }
    const RVMinimumCostFlowInputData& question() const { return m_question; }

    int number(const RVNode* node) const { return m_numbers[rv::placeOf(node)]; }

private:
    // Each takes one line, and gives the reason when it is malformed, else an empty text.
    std::string readLine(const Words& words);
    std::string readProblem(const Words& words);
    std::string readNode(const Words& words);
    std::string readEnd(int number, std::string_view letter);
    std::string readSupply(int number, std::string_view word);
    std::string readArc(const Words& words);
    std::string readMaximumArc(const Words& words);
    std::string readMinimumCostArc(const Words& words);
    // Of the second and third word.
    std::string readEnds(const Words& words, int& from, int& to) const;
    std::string readNodeNumber(std::string_view word, int& number) const;

    RVNode* takeNode(int number);  // found or made
    void addEdge(int from, int to, int capacity, int cost);
    void report(const std::string& message) const;

    std::string m_textName;
    Kind m_kind = None;
    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    RVMinimumCostFlowInputData m_question;
    std::unordered_map<int, RVNode*> m_nodes;
    std::vector<int> m_numbers;   // by dense index
    std::vector<bool> m_hasLine;  // a node line, by dense index
    int m_line = 0;               // the present one
    int m_announcedNodes = 0;
    int m_announcedArcs = 0;
    int m_numberOfArcs = 0;
    int m_supply = 0;
    int m_demand = 0;           // as in its line, below 0
    std::string m_unsupported;  // the first thing that only a more general problem has
};
