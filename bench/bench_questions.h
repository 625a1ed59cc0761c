// The questions about a graph that this library and LEMON are asked for comparison, each described once.
#pragma once

#include <cstdlib>
#include <memory>
#include <vector>

#include "bench_graphs.h"
#include "bench_peers.h"
#include "lemon_searches.h"
#include "rv/analysis.h"

namespace bench {

// The objects with which a caller asks one question again and again.
class Asker {
public:
    virtual ~Asker() = default;
    // Gives the size of the answer, which is written as a whole and destroyed again. Questions about the
    // whole graph do not look at the pair.
    virtual long ask(const std::pair<int, int>& pair) = 0;
};

template <class Output>
long sizeOf(const Output& output) {
    if constexpr (requires { output.pArticulationNodeList(); }) {
        return output.pComponentList()->length() + output.pArticulationNodeList()->length();
    } else if constexpr (requires { output.pEdgeComponentList(); }) {
        return output.pComponentList()->length() + output.pEdgeComponentList()->length();
    } else if constexpr (requires { output.pComponentList(); }) {
        return output.pComponentList()->length();
    } else if constexpr (requires { output.pVisitedNodeList(); }) {
        return output.pVisitedNodeList()->length() + output.pEdgeList()->length();
    } else if constexpr (requires { output.pNodeList(); }) {
        return output.pNodeList()->length();
    } else {
        return output.acyclic();
    }
}

template <class Algorithm, class Input, class Output>
class AskerOf final : public Asker {
public:
    static constexpr bool kHasFinish = requires(Input & input) { input.pFinishNode(nullptr); };
    static constexpr bool kHasRange = requires(Input & input) { input.range(0); };
    static constexpr bool kIsOfDags = requires(Output & output) { output.acyclic(); };
    static constexpr bool kMayCopy = requires(Algorithm & algorithm) { algorithm.useOriginalGraph(1); };

    static std::unique_ptr<Asker> make(const RvGraph& rv, int useOriginalGraph) {
        return std::make_unique<AskerOf>(rv, useOriginalGraph);
    }

    AskerOf(const RvGraph& rv, int useOriginalGraph) : m_nodes(rv.nodes), m_input(rv.graph.get()) {
        m_algorithm.pInputData(&m_input);
        if constexpr (kMayCopy) m_algorithm.useOriginalGraph(useOriginalGraph);
        if constexpr (kHasRange) {
            m_input.range(LemonSearches::kRange);
            rv.setCosts(m_input, randomCosts(rv.graph->numberOfEdges()));
        }
    }

    long ask(const std::pair<int, int>& pair) override {
        if constexpr (kHasFinish || kHasRange)
            m_input.pStartNode(m_nodes[static_cast<std::size_t>(pair.first)]);
        if constexpr (kHasFinish) m_input.pFinishNode(m_nodes[static_cast<std::size_t>(pair.second)]);
        Output output;
        m_algorithm.pOutputData(&output);
        if (m_algorithm.run() != RV_NO_ERROR) std::abort();
        return sizeOf(output);
    }

private:
    const std::vector<RVNode*>& m_nodes;
    Input m_input;
    Algorithm m_algorithm;
};

// Runs on hooks where the class itself works in arrays.
template <class Algorithm>
struct Subclass : Algorithm {};

struct Question {
    using MakeAsker = std::unique_ptr<Asker> (*)(const RvGraph&, int useOriginalGraph);

    const char* name;
    MakeAsker make;
    MakeAsker makeOnHooks;
    bool isLocal;   // asked for each of some pairs of nodes, not once about the whole graph
    bool mayCopy;   // on hooks
    bool isOfDags;  // whether there is an answer worth measuring on graphs without cycles only
    long (LemonSearches::*lemon)(const Pairs&);  // nullptr without LEMON

    Pairs pairs(const EdgeArray& array) const { return isLocal ? randomPairs(array.nodes) : Pairs(1); }
    const char* unit() const { return isLocal ? "us_per_question" : "ns_per_edge"; }
    double items(const EdgeArray& array) const {
        return isLocal ? 1e3 * static_cast<double>(pairs(array).size()) : array.size();
    }
};

template <class Algorithm, class Input, class Output>
constexpr Question question(const char* name, long (LemonSearches::*lemon)(const Pairs&)) {
    using Plain = AskerOf<Algorithm, Input, Output>;
    using OnHooks = AskerOf<Subclass<Algorithm>, Input, Output>;
    constexpr bool isLocal = Plain::kHasFinish || Plain::kHasRange;
    return {name, Plain::make, OnHooks::make, isLocal, Plain::kMayCopy, Plain::kIsOfDags, lemon};
}

#ifdef RV_BENCH_LEMON
#define RV_LEMON_ANSWER(function) &LemonSearches::function
#else
#define RV_LEMON_ANSWER(function) nullptr
#endif
#define RV_QUESTION(name, family, lemon)                                                 \
    question<RV##family##Algorithm, RV##family##InputData, RV##family##OutputData>(name, \
                                                                                   RV_LEMON_ANSWER(lemon))

inline constexpr Question kQuestions[] = {
    RV_QUESTION("breadth_first", BreadthFirstSearch, breadthFirst),
    RV_QUESTION("depth_first", DepthFirstSearch, depthFirst),
    RV_QUESTION("connected", ConnectedComponents, connected),
    RV_QUESTION("biconnected", BiconnectedComponents, biconnected),
    RV_QUESTION("strong", StronglyConnectedComponents, stronglyConnected),
    RV_QUESTION("topological", TopologicalSort, topologicalSort),
    RV_QUESTION("acyclic", AcyclicTest, acyclic),
    RV_QUESTION("path_exists", PathExistsTest, pathExists),
    RV_QUESTION("reachable", ReachableNodes, reachable),
};

#undef RV_QUESTION
#undef RV_LEMON_ANSWER

}  // namespace bench
