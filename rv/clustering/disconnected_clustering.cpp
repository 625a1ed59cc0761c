// Component by component, each as a graph of its own that lives while it is clustered. Merging is Huffman's
// method, but for the clusters that must not meet: a tree of clusters by weight, from which the two lightest
// are taken and their union is put back. Clusters that are merged hold no common different-cluster
// constraint, so their constraints are joined without looking for repeats.

#include "rv/clustering/disconnected_clustering.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "rv/clustering/cluster_splitting.h"
#include "rv/clustering/clustering_input.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/connected_components.h"

RV_OBJECT_IMPL(RVDisconnectedClusteringAlgorithm)

namespace {

using rv::placeOf;

// What a constraint asks of one component.
struct Share {
    RVClusteringConstraintTypeEnum type;
    std::vector<RVNode*> nodes;
};

struct Component {
    std::vector<RVNode*> nodes;
    std::vector<RVEdge*> edges;
    std::vector<Share> shares;
    std::int64_t weight = 0;
};

// All nodes are of the input graph.
class ComponentClusterer {
public:
    ComponentClusterer(const RVAlgorithm& algorithm, const RVClusteringInputData& input,
                       RVClusteringInternalData& data, const RVDList& components);

    // Gives the code of the last cluster splitting.
    RVServiceErrorCodeEnum clusterAll();
    // What there is then, merged until there are no more than so many, as far as constraints admit.
    std::vector<std::unique_ptr<RVDList>> mergeComponents(int maxCount);

private:
    // A cluster, or several that have been merged.
    struct Group {
        double weight = 0.0;
        std::list<RVNode*> nodes;
        std::vector<int> constraints;  // those that keep it apart from others
    };

    void splitConstraints();
    RVServiceErrorCodeEnum cluster(const Component& component, int made, int left);
    void copyComponent(const Component& component, RVGraph& graph, RVClusterSplittingInputData& input);
    void addGroup(const RVDList& nodes);
    void noteConstraints();
    bool canMerge(const Group& group, int mark) const;
    static std::unique_ptr<RVDList> createCluster(const Group& group);

    const RVAlgorithm& m_algorithm;
    const RVClusteringInputData& m_input;
    RVClusteringInternalData& m_data;
    std::vector<Component> m_components;
    std::vector<int> m_componentOf;  // by dense index of the node, -1 for a foreign one
    std::vector<Group> m_groups;
    std::vector<int> m_marks;            // by constraint, the cluster that asked last
    std::vector<std::size_t> m_holders;  // by constraint, how many clusters it keeps apart
};

ComponentClusterer::ComponentClusterer(const RVAlgorithm& algorithm, const RVClusteringInputData& input,
                                       RVClusteringInternalData& data, const RVDList& components)
    : m_algorithm(algorithm), m_input(input), m_data(data) {
    const RVGraph* graph = input.pAssociatedGraph();
    m_componentOf.resize(static_cast<std::size_t>(graph->nodeIndexLimit()), -1);
    for (RVDListIter list(&components); list; list++) {
        Component& component = m_components.emplace_back();
        for (RVNode* node : *RVNodeDList::castDown(list.pObject())) {
            m_componentOf[placeOf(node)] = static_cast<int>(m_components.size() - 1);
            component.nodes.push_back(node);
            component.weight += input.getWeight(node);
        }
    }
    const auto at = [&](const RVNode* node) -> Component& {
        return m_components[static_cast<std::size_t>(m_componentOf[placeOf(node)])];
    };
    for (RVEdge* edge : *graph->pEdgeList()) at(edge->pSourceNode()).edges.push_back(edge);
    splitConstraints();
}

// Gives each component its share of every constraint that lists several of its nodes.
void ComponentClusterer::splitConstraints() {
    std::vector<std::vector<RVNode*>> listed(m_components.size());
    rv::forEachConstraint(m_input, [&](const RVClusteringConstraint& constraint) {
        const RVNodeDList* nodes = constraint.pNodeList();
        if (nodes == nullptr) return;
        std::vector<int> touched;
        for (RVNode* node : *nodes) {
            if (!rv::isInGraph(node, m_input.pAssociatedGraph())) continue;
            const int component = m_componentOf[placeOf(node)];
            auto& here = listed[static_cast<std::size_t>(component)];
            if (here.empty()) touched.push_back(component);
            here.push_back(node);
        }
        for (const int component : touched) {
            auto& here = listed[static_cast<std::size_t>(component)];
            if (here.size() > 1) {
                m_components[static_cast<std::size_t>(component)].shares.push_back({constraint.type(), here});
            }
            here.clear();
        }
    });
}

RVServiceErrorCodeEnum ComponentClusterer::clusterAll() {
    std::stable_sort(m_components.begin(), m_components.end(),
                     [](const Component& a, const Component& b) { return a.weight < b.weight; });
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    auto left = static_cast<int>(m_components.size());
    for (const Component& component : m_components) {
        // The clusters so far and the components that are left, this one among them.
        const int made = static_cast<int>(m_groups.size()) + left;
        code = cluster(component, made, left--);
    }
    return code;
}

RVServiceErrorCodeEnum ComponentClusterer::cluster(const Component& component, int made, int left) {
    if (component.nodes.size() == 1) {
        RVDList alone;
        alone.appendObject(component.nodes.front());
        addGroup(alone);
        return RV_NO_ERROR;
    }
    const std::unique_ptr<RVGraph> graph = rv::newGraphLike(m_input.pAssociatedGraph());
    RVClusterSplittingInputData input(graph.get());
    copyComponent(component, *graph, input);
    std::deque<RVClusteringConstraint> constraints;
    for (const Share& share : component.shares) {
        RVClusteringConstraint& constraint = constraints.emplace_back(0, nullptr);
        constraint.type(share.type);
        for (RVNode* node : share.nodes) constraint.addNode(m_data.getLocalNewNode(node));
        input.addConstraint(&constraint);
    }
    input.minClusterCount(static_cast<int>(
        std::max<std::int64_t>(1, (std::int64_t{m_input.minClusterCount()} - made + 1) / left)));
    input.maxClusterCount(m_input.maxClusterCount() - left + 1);  // at least 1
    rv::copySettings(m_input, input);
    RVClusteringOutputData output;
    RVClusterSplittingAlgorithm splitting;
    const RVServiceErrorCodeEnum code = rv::runPart(m_algorithm, splitting, input, output);
    for (RVDListIter it(output.pClusters()); it; it++) {
        RVDList nodes;
        for (RVDListIter node(RVDList::castDown(it.pObject())); node; node++) {
            nodes.appendObject(m_data.getLocalOriginalNode(static_cast<RVNode*>(node.pObject())));
        }
        addGroup(nodes);
    }
    return code;
}

void ComponentClusterer::copyComponent(const Component& component, RVGraph& graph,
                                       RVClusterSplittingInputData& input) {
    for (RVNode* node : component.nodes) {
        RVNode* const copy = graph.addNode(0);
        m_data.setLocalNewNode(node, copy);
        m_data.setLocalOriginalNode(copy, node);
        input.setWeight(copy, m_input.getWeight(node));
    }
    for (RVEdge* edge : component.edges) {
        RVEdge* const copy = graph.addEdge(m_data.getLocalNewNode(edge->pSourceNode()),
                                           m_data.getLocalNewNode(edge->pTargetNode()), 0);
        m_data.setLocalOriginalEdge(copy, edge);
        input.setCost(copy, m_input.getCost(edge));
    }
}

void ComponentClusterer::addGroup(const RVDList& nodes) {
    Group& group = m_groups.emplace_back();
    std::int64_t weight = 0;
    for (RVDListIter it(&nodes); it; it++) {
        auto* node = static_cast<RVNode*>(it.pObject());
        group.nodes.push_back(node);
        weight += m_input.getWeight(node);
    }
    group.weight = static_cast<double>(weight);
}

// Tells each cluster which constraints keep it apart from others.
void ComponentClusterer::noteConstraints() {
    std::vector<int> groupOf(m_componentOf.size(), -1);
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        for (const RVNode* node : m_groups[i].nodes) groupOf[placeOf(node)] = static_cast<int>(i);
    }
    int number = 0;
    rv::forEachConstraint(m_input, RVDifferentClusterConstraint, [&](const auto&, const RVNodeDList& nodes) {
        for (RVNode* node : nodes) {
            if (!rv::isInGraph(node, m_input.pAssociatedGraph()) || groupOf[placeOf(node)] < 0) continue;
            auto& constraints = m_groups[static_cast<std::size_t>(groupOf[placeOf(node)])].constraints;
            if (constraints.empty() || constraints.back() != number) constraints.push_back(number);
        }
        ++number;
    });
    m_marks.assign(static_cast<std::size_t>(number), -1);
    m_holders.assign(static_cast<std::size_t>(number), 0);
    for (const Group& group : m_groups) {
        for (const int constraint : group.constraints) ++m_holders[static_cast<std::size_t>(constraint)];
    }
}

bool ComponentClusterer::canMerge(const Group& group, int mark) const {
    return std::none_of(group.constraints.begin(), group.constraints.end(), [&](int constraint) {
        return m_marks[static_cast<std::size_t>(constraint)] == mark;
    });
}

std::vector<std::unique_ptr<RVDList>> ComponentClusterer::mergeComponents(int maxCount) {
    noteConstraints();
    using Key = std::pair<double, int>;  // weight and number
    const auto groupAt = [&](Key key) -> Group& { return m_groups[static_cast<std::size_t>(key.second)]; };
    std::set<Key> tree;
    const auto add = [&](std::size_t number) {
        tree.emplace(m_groups[number].weight, static_cast<int>(number));
    };
    for (std::size_t i = 0; i < m_groups.size(); ++i) add(i);

    std::vector<std::unique_ptr<RVDList>> clusters;
    for (int excess = static_cast<int>(m_groups.size()) - maxCount; excess > 0; --excess) {
        const Key lightest = *tree.begin();
        tree.erase(tree.begin());
        Group& group = groupAt(lightest);
        for (const int constraint : group.constraints) {
            m_marks[static_cast<std::size_t>(constraint)] = lightest.second;
        }
        const bool isKeptFromAll =
            std::any_of(group.constraints.begin(), group.constraints.end(), [&](int constraint) {
                return m_holders[static_cast<std::size_t>(constraint)] == tree.size() + 1;
            });
        const auto other =
            isKeptFromAll ? tree.end() : std::find_if(tree.begin(), tree.end(), [&](const Key& key) {
                return canMerge(groupAt(key), lightest.second);
            });
        if (other == tree.end()) {
            for (const int constraint : group.constraints) --m_holders[static_cast<std::size_t>(constraint)];
            clusters.push_back(createCluster(group));
            continue;
        }
        Group merged = std::move(groupAt(*other));
        tree.erase(other);
        merged.weight += group.weight;
        merged.nodes.splice(merged.nodes.end(), group.nodes);
        if (merged.constraints.size() < group.constraints.size()) merged.constraints.swap(group.constraints);
        merged.constraints.insert(merged.constraints.end(), group.constraints.begin(),
                                  group.constraints.end());
        m_groups.push_back(std::move(merged));
        add(m_groups.size() - 1);
    }
    for (const Key& key : tree) clusters.push_back(createCluster(groupAt(key)));
    return clusters;
}

std::unique_ptr<RVDList> ComponentClusterer::createCluster(const Group& group) {
    auto cluster = std::make_unique<RVDList>();
    for (RVNode* node : group.nodes) cluster->appendObject(node);
    return cluster;
}

}  // namespace

RVServiceErrorCodeEnum RVDisconnectedClusteringAlgorithm::internalRun() { return run(); }

RVAlgorithmData* RVDisconnectedClusteringAlgorithm::newInternalData() {
    return new RVClusteringInternalData();
}

RVServiceErrorCodeEnum RVDisconnectedClusteringAlgorithm::checkData() {
    return rv::checkClusteringInput<RVClusteringInputData>(RVInternalAlgorithm::checkData(), pInputData());
}

RVServiceErrorCodeEnum RVDisconnectedClusteringAlgorithm::algorithmBody() {
    RVConnectedComponentsInputData input(pAssociatedGraph());
    RVConnectedComponentsOutputData output;
    RVConnectedComponentsAlgorithm components;
    const RVServiceErrorCodeEnum code = rv::runPart(*this, components, input, output);
    if (code != RV_NO_ERROR) return code;
    return output.pComponentList()->length() < 2 ? clusterWhole()
                                                 : clusterComponents(output.pComponentList());
}

RVServiceErrorCodeEnum RVDisconnectedClusteringAlgorithm::clusterWhole() {
    auto* const own = RVClusteringInputData::castDown(pInputData());
    RVClusterSplittingInputData input(pAssociatedGraph());
    input.getWeights(own);
    input.addConstraints(own->getConstraintList());
    input.minClusterCount(own->minClusterCount());
    input.maxClusterCount(own->maxClusterCount());
    rv::copySettings(*own, input);
    RVClusteringOutputData output;
    RVClusterSplittingAlgorithm splitting;
    const RVServiceErrorCodeEnum code = rv::runPart(*this, splitting, input, output);
    if (code != RV_NO_ERROR) return code;
    auto* answer = RVClusteringOutputData::castDown(pOutputData());
    for (RVDListIter cluster(output.pClusters()); cluster; cluster++)
        rv::addCluster(std::make_unique<RVDList>(*RVDList::castDown(cluster.pObject())), *answer);
    return RV_NO_ERROR;
}

RVServiceErrorCodeEnum RVDisconnectedClusteringAlgorithm::clusterComponents(RVDList* components) {
    const auto* input = RVClusteringInputData::castDown(pInputData());
    ComponentClusterer clusterer(*this, *input, *static_cast<RVClusteringInternalData*>(pInternalData()),
                                 *components);
    const RVServiceErrorCodeEnum code = clusterer.clusterAll();
    auto* output = RVClusteringOutputData::castDown(pOutputData());
    for (auto& cluster : clusterer.mergeComponents(input->maxClusterCount())) {
        rv::addCluster(std::move(cluster), *output);
    }
    return code;
}
