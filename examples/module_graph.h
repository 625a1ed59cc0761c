// Parts of a system and what ties them to one another, as text:
//   edge A B [COST]     or  A B [COST]       an edge; without a cost it costs 1
//   node A [WEIGHT]                          a node; without a weight it weighs 1
//   same A B ...                             these belong together
//   different A B ...                        no two of these belong together
//   alone A B ...                            these are a module, and nothing else is in it
//   # comment
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "rv/analysis.h"
#include "text_lines.h"

class ModuleGraph {
public:
    ModuleGraph() : m_graph(m_factory.newGraph()), m_question(m_graph.get()) {}
    ModuleGraph(const ModuleGraph&) = delete;
    ModuleGraph& operator=(const ModuleGraph&) = delete;

    // Reads a text. A malformed line is skipped and named on standard error by the name of the text and its
    // number. Nodes stand in the order in which lines first name them, edges in the order of their lines.
    void read(const std::string& textName, std::string_view text);
    // Adds the C and C++ files of a folder and of the folders in it, in the order of their paths, and an edge
    // for each include in quotes that leads to one of them. What is hidden, and folders of the name build,
    // are left out. Gives the error, empty without one.
    std::string collectIncludes(const std::string& folder);

    RVGraph* pGraph() const { return m_graph.get(); }
    // Weights, costs and constraints.
    RVClusteringInputData& question() { return m_question; }
    const std::string& name(const RVNode* node) const { return m_names[rv::placeOf(node)]; }
    // The constraints as their lines had them.
    std::string text(const RVClusteringConstraint& constraint) const;

private:
    // Each takes one line, and gives the reason when it is malformed, else an empty text.
    std::string readLine(const Words& words);
    std::string readNode(const Words& words);
    std::string readEdge(const Words& words, std::size_t first);
    std::string readConstraint(const Words& words, RVClusteringConstraintTypeEnum type);

    RVNode* takeNode(const std::string& name);  // found or made

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    RVClusteringInputData m_question;
    std::deque<RVClusteringConstraint> m_constraints;
    std::unordered_map<std::string, RVNode*> m_nodes;
    std::vector<std::string> m_names;  // by dense index
};
