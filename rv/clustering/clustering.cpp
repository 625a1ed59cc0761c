// Contracts the graph as the constraints say, has the contracted graph clustered, and expands the clusters.
//
// The working graph is not changed: nodes that complete-cluster constraints take are marked, and left out
// where the graph is read. Groups of tied nodes are the sets of a forest of disjoint sets (Galler and Fischer
// 1964, with path halving); they are numbered by the first same-cluster constraint that touches them, those
// that none touches after them in graph order.

#include "rv/clustering/clustering.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include "rv/clustering/cluster_splitting.h"
#include "rv/clustering/clustering_input.h"
#include "rv/clustering/disconnected_clustering.h"
#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/sub_algorithm.h"

RV_OBJECT_IMPL(RVClusteringAlgorithm)

namespace {

using rv::placeOf;

class Contraction {
public:
    Contraction(const RVClusteringInputData& input, const RVAlgorithmData& data);

    // The nodes of the caller that are set aside, cluster by cluster.
    const std::vector<std::vector<RVNode*>>& completeClusters() const { return m_completeClusters; }

    // Fills an empty graph and an input about it with weights, costs and different-cluster constraints.
    void contract(RVGraph& graph, RVClusteringInputData& input);
    // The nodes of the caller that a cluster of the contracted graph stands for.
    std::unique_ptr<RVDList> expand(const RVDList& cluster) const;

private:
    using Places = std::vector<std::size_t>;

    void preProcessCompleteClusters();
    void joinTiedNodes();
    void numberGroups();
    std::size_t rootOf(std::size_t place);
    // Calls f for the working nodes, not set aside, of a constraint's nodes.
    template <class F>
    void forEachWorkingNode(const RVNodeDList& nodes, F f) const;
    void addConstraints(const std::vector<RVNode*>& groups, RVClusteringInputData& input);

    const RVClusteringInputData& m_input;
    const RVAlgorithmData& m_data;
    const RVGraph& m_graph;  // the working graph
    std::vector<std::vector<RVNode*>> m_completeClusters;
    // By dense index of a working node.
    std::vector<bool> m_isSetAside;
    Places m_parents;
    std::vector<int> m_groupOf;  // asked of roots; -1 for none

    std::vector<std::vector<RVNode*>> m_members;  // working nodes; by dense index of the contracted node
    std::deque<RVClusteringConstraint> m_constraints;
};

Contraction::Contraction(const RVClusteringInputData& input, const RVAlgorithmData& data)
    : m_input(input),
      m_data(data),
      m_graph(*data.pAssociatedGraph()),
      m_isSetAside(static_cast<std::size_t>(m_graph.nodeIndexLimit())),
      m_parents(m_isSetAside.size()),
      m_groupOf(m_isSetAside.size(), -1) {
    std::iota(m_parents.begin(), m_parents.end(), std::size_t{0});
    preProcessCompleteClusters();
    joinTiedNodes();
    numberGroups();
}

template <class F>
void Contraction::forEachWorkingNode(const RVNodeDList& nodes, F f) const {
    for (RVNode* node : nodes) {
        if (!rv::isInGraph(node, m_input.pAssociatedGraph())) continue;
        RVNode* const working = m_data.pCopyNode(node);
        if (!m_isSetAside[placeOf(working)]) f(working);
    }
}

void Contraction::preProcessCompleteClusters() {
    rv::forEachConstraint(m_input, RVCompleteClusterConstraint, [&](const auto&, const RVNodeDList& nodes) {
        std::vector<RVNode*> taken;
        forEachWorkingNode(nodes, [&](RVNode* node) {
            m_isSetAside[placeOf(node)] = true;
            taken.push_back(m_data.pOriginalNode(node));
        });
        if (!taken.empty()) m_completeClusters.push_back(std::move(taken));
    });
}

std::size_t Contraction::rootOf(std::size_t place) {
    while (m_parents[place] != place) place = m_parents[place] = m_parents[m_parents[place]];
    return place;
}

void Contraction::joinTiedNodes() {
    rv::forEachConstraint(m_input, RVSameClusterConstraint, [&](const auto&, const RVNodeDList& nodes) {
        const RVNode* first = nullptr;
        forEachWorkingNode(nodes, [&](RVNode* node) {
            if (first == nullptr) first = node;
            m_parents[rootOf(placeOf(node))] = rootOf(placeOf(first));
        });
    });
}

void Contraction::numberGroups() {
    int groups = 0;
    const auto number = [&](const RVNode* node) {
        int& group = m_groupOf[rootOf(placeOf(node))];
        if (group < 0) group = groups++;
    };
    rv::forEachConstraint(m_input, RVSameClusterConstraint,
                          [&](const auto&, const RVNodeDList& nodes) { forEachWorkingNode(nodes, number); });
    for (RVNode* node : *m_graph.pNodeList()) {
        if (!m_isSetAside[placeOf(node)]) number(node);
    }
    m_members.resize(static_cast<std::size_t>(groups));
}

void Contraction::contract(RVGraph& graph, RVClusteringInputData& input) {
    std::vector<RVNode*> groups;
    std::vector<std::int64_t> weights(m_members.size());
    for (std::size_t i = 0; i < m_members.size(); ++i) groups.push_back(graph.addNode(0));
    const auto groupOf = [&](const RVNode* node) {
        return m_isSetAside[placeOf(node)]
                   ? nullptr
                   : groups[static_cast<std::size_t>(m_groupOf[rootOf(placeOf(node))])];
    };
    for (RVNode* node : *m_graph.pNodeList()) {
        const RVNode* group = groupOf(node);
        if (group == nullptr) continue;
        m_members[placeOf(group)].push_back(node);
        weights[placeOf(group)] += m_input.getWeight(m_data.pOriginalNode(node));
    }
    for (RVNode* group : groups) input.setWeight(group, rv::saturate(weights[placeOf(group)]));
    for (RVEdge* edge : *m_graph.pEdgeList()) {
        RVNode* const source = groupOf(edge->pSourceNode());
        RVNode* const target = groupOf(edge->pTargetNode());
        if (source == target || source == nullptr || target == nullptr) continue;
        input.setCost(graph.addEdge(source, target, 0), m_input.getCost(m_data.pOriginalEdge(edge)));
    }
    addConstraints(groups, input);
}

// Different-cluster constraints on groups instead of nodes.
void Contraction::addConstraints(const std::vector<RVNode*>& groups, RVClusteringInputData& input) {
    std::vector<int> seenBy(groups.size());
    int number = 0;
    rv::forEachConstraint(m_input, RVDifferentClusterConstraint, [&](const auto&, const RVNodeDList& nodes) {
        ++number;
        RVClusteringConstraint constraint(0, nullptr);
        constraint.type(RVDifferentClusterConstraint);
        forEachWorkingNode(nodes, [&](RVNode* node) {
            const auto group = static_cast<std::size_t>(m_groupOf[rootOf(placeOf(node))]);
            if (std::exchange(seenBy[group], number) != number) constraint.addNode(groups[group]);
        });
        if (constraint.pNodeList()->length() > 1)
            input.addConstraint(&m_constraints.emplace_back(constraint));
    });
}

std::unique_ptr<RVDList> Contraction::expand(const RVDList& cluster) const {
    auto nodes = std::make_unique<RVDList>();
    for (RVDListIter it(&cluster); it; it++) {
        for (RVNode* node : m_members[placeOf(static_cast<RVNode*>(it.pObject()))]) {
            nodes->appendObject(m_data.pOriginalNode(node));
        }
    }
    return nodes;
}

// Whether clusters, which are numbered, fulfil constraints.
class FulfilmentTest {
public:
    FulfilmentTest(RVGraph* graph, const RVClusteringOutputData& output) : m_pGraph(graph), m_output(output) {
        m_sizes.push_back(0);  // of no cluster
        for (RVDListIter it(output.pClusters()); it; it++) {
            m_sizes.push_back(RVDList::castDown(it.pObject())->length());
        }
        m_seenBy.resize(m_sizes.size());
    }

    bool isFulfilled(const RVClusteringConstraint& constraint) {
        if (constraint.valid(m_pGraph) == 0) return false;
        const RVNodeDList* nodes = constraint.pNodeList();
        if (nodes == nullptr || nodes->length() == 0) return true;
        const int first = m_output.getClusterNumber(nodes->pFirstNode());
        const bool isComplete = constraint.type() == RVCompleteClusterConstraint;
        const bool isApart = constraint.type() == RVDifferentClusterConstraint;
        const bool isTogether = constraint.type() == RVSameClusterConstraint || isComplete;
        ++m_constraints;
        for (RVNode* node : *nodes) {
            const int number = m_output.getClusterNumber(node);
            int& seenBy = m_seenBy[static_cast<std::size_t>(number)];
            if (isApart ? seenBy == m_constraints : isTogether && number != first) return false;
            seenBy = m_constraints;
        }
        return !isComplete || m_sizes[static_cast<std::size_t>(first)] == nodes->length();
    }

private:
    RVGraph* m_pGraph;
    const RVClusteringOutputData& m_output;
    std::vector<int> m_sizes;   // by number of the cluster
    std::vector<int> m_seenBy;  // by number of the cluster, the last constraint with a node there
    int m_constraints = 0;
};

}  // namespace

RVAlgorithmData* RVClusteringAlgorithm::newInternalData() { return new RVClusteringInternalData(); }
void RVClusteringAlgorithm::preprocess() {}
void RVClusteringAlgorithm::postprocess() {}

RVServiceErrorCodeEnum RVClusteringAlgorithm::checkData() {
    const auto checkLimits = [](const RVClusteringInputData& input) {
        const bool isInvalid =
            input.minClusterCount() > input.maxClusterCount() || input.maxClusterCount() < 0;
        return isInvalid ? RV_INVALID_CLUSTER_COUNT : RV_NO_ERROR;
    };
    return rv::checkClusteringInput<RVClusteringInputData>(RVInternalGraphAlgorithm::checkData(),
                                                           pInputData(), checkLimits);
}

RVServiceErrorCodeEnum RVClusteringAlgorithm::algorithmBody() {
    const auto* own = RVClusteringInputData::castDown(pInputData());
    auto* output = RVClusteringOutputData::castDown(pOutputData());
    Contraction contraction(*own, *pInternalData());
    m_completeClusters = static_cast<int>(contraction.completeClusters().size());

    std::unique_ptr<RVGraph> made = rv::newGraphLike(pInternalData()->pInputGraph());
    RVGraph* const contracted = made.get();
    pInternalData()->pSecondaryGraphs()->appendGraph(contracted);
    static_cast<void>(made.release());
    RVClusterSplittingInputData input(contracted);
    contraction.contract(*contracted, input);
    rv::copySettings(*own, input);
    const auto without = [&](int limit) {
        return std::max(1, rv::saturatingDifference(limit, m_completeClusters));
    };
    input.minClusterCount(without(own->minClusterCount()));
    input.maxClusterCount(without(own->maxClusterCount()));

    RVClusteringOutputData clusters;
    RVDisconnectedClusteringAlgorithm clustering;
    const RVServiceErrorCodeEnum code = rv::runPart(*this, clustering, input, clusters);
    if (code != RV_NO_ERROR) {
        rv::forEachConstraint(*own, [](RVClusteringConstraint& constraint) { constraint.fulfilled(0); });
        return code;
    }

    for (RVDListIter it(clusters.pClusters()); it; it++) {
        rv::addCluster(contraction.expand(*RVDList::castDown(it.pObject())), *output);
    }
    for (const std::vector<RVNode*>& complete : contraction.completeClusters()) {
        auto cluster = std::make_unique<RVDList>();
        for (RVNode* node : complete) cluster->appendObject(node);
        rv::addCluster(std::move(cluster), *output);
    }
    output->generateClusterNumbers();
    FulfilmentTest test(own->pAssociatedGraph(), *output);
    rv::forEachConstraint(*own, [&](RVClusteringConstraint& constraint) {
        constraint.fulfilled(test.isFulfilled(constraint) ? 1 : 0);
    });
    return RV_NO_ERROR;
}
