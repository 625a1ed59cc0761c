// Repeated bisection. Each cluster is a graph of its own while the algorithm works; the internal data links
// its nodes to those of the input graph (local original node), and those to where they are now (local new
// node).
//
// Every cut takes a cluster out of the list and puts its halves at the end, so the list is in the order in
// which its clusters were made.

#include "rv/clustering/cluster_splitting.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <queue>
#include <utility>
#include <vector>

#include "rv/clustering/clustering_input.h"
#include "rv/clustering/ratio_cut_bipartitioning.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/sub_algorithm.h"

RV_OBJECT_IMPL(RVClusterSplittingInputData)
RV_OBJECT_IMPL(RVClusterSplittingAlgorithm)

namespace {

class Splitter {
public:
    Splitter(const RVAlgorithm& algorithm, RVClusteringInputData& input, RVClusteringInternalData& data);

    void splitByWeight();
    void ensureConstraints();
    void ensureCount();

    // The nodes of each cluster in the input graph.
    std::unique_ptr<RVDList> takeCluster();

private:
    struct Cluster {
        RVGraph* graph = nullptr;
        std::unique_ptr<RVGraph> own;  // none when the graph is the input's
        double weight = 0.0;
        int serial = 0;  // grows in the order in which clusters were made
        std::list<Cluster>::iterator place;
        bool isUnsplittable = false;  // a cut would not better the weights
        // Of the sweeps over constraints.
        std::int64_t seenIn = 0;  // the last constraint of which there was a node
        const RVNode* firstSeen = nullptr;
        bool isMarked = false;
        bool isStuck = false;  // no cut was found
    };

    bool split(const Cluster& cluster);
    void makeHalf(const RVDList& nodes, const RVRatioCutBipartitioningOutputData& cut);
    void add(std::list<Cluster>& halves);
    void replaceByHalves(Cluster& cluster);
    void rejectHalves(const Cluster& cluster);
    double measureCluster(const Cluster& cluster) const;
    bool markOffenders(const RVNodeDList& nodes, std::vector<Cluster*>& marked);
    Cluster* clusterOf(RVNode* node);
    void link(RVNode* node, RVNode* original, double x);

    const RVAlgorithm& m_algorithm;
    RVClusteringInputData& m_input;
    RVClusteringInternalData& m_data;
    RVGraph* m_pGraph;
    double m_exponent;            // p
    double m_targetWeight = 0.0;  // L
    std::list<Cluster> m_clusters;
    std::list<Cluster> m_halves;  // of the last cut; none if there was none
    int m_serial = 0;             // the last one
    std::int64_t m_constraints = 0;
};

// Written so that what is no number counts as the lower end.
double clamp(double value, double least, double most) {
    return value >= least ? std::min(value, most) : least;
}

Splitter::Splitter(const RVAlgorithm& algorithm, RVClusteringInputData& input, RVClusteringInternalData& data)
    : m_algorithm(algorithm),
      m_input(input),
      m_data(data),
      m_pGraph(data.pAssociatedGraph()),
      m_exponent(clamp(0.75 * input.balanceFactor(), 0.001, 10.0)) {
    std::int64_t total = 0;
    for (RVNode* node : *m_pGraph->pNodeList()) {
        link(node, node, 0.0);
        m_data.setLocalNewNode(node, node);
        total += input.getWeight(node);
    }
    for (RVEdge* edge : *m_pGraph->pEdgeList()) m_data.setLocalOriginalEdge(edge, edge);
    const double n = m_pGraph->numberOfNodes();
    if (n == 0) return;

    const auto weight = static_cast<double>(total);
    double count = std::sqrt(n) / clamp(input.clusterSizeFactor(), 0.01, HUGE_VAL);
    count = std::max<double>(count, input.minClusterCount());
    count = std::min<double>(count, input.maxClusterCount());
    count = std::max(std::min(count, n), 1.0);
    m_targetWeight = 2 * weight / n + weight / count;

    std::list<Cluster> whole(1);
    whole.front().graph = m_pGraph;
    whole.front().weight = weight;
    add(whole);
}

void Splitter::link(RVNode* node, RVNode* original, double x) {
    m_data.setLocalOriginalNode(node, original);
    m_data.setX(node, x);
}

void Splitter::add(std::list<Cluster>& clusters) {
    for (auto place = clusters.begin(); place != clusters.end(); ++place) {
        place->place = place;
        if (place->own != nullptr) place->graph->pUserField(&*place);
    }
    m_clusters.splice(m_clusters.end(), clusters);
}

double Splitter::measureCluster(const Cluster& cluster) const {
    const double difference = m_targetWeight - cluster.weight;
    return std::pow(difference * difference, m_exponent);
}

// Makes the halves of a cluster, which stays as it is. False, and no halves, when it cannot be cut.
bool Splitter::split(const Cluster& cluster) {
    m_halves.clear();
    if (cluster.graph->numberOfNodes() < 2) return false;
    const bool isStarted = m_clusters.size() > 1;
    RVRatioCutBipartitioningInputData input(cluster.graph);
    RVRatioCutBipartitioningOutputData output;
    RVRatioCutBipartitioningAlgorithm cut;
    input.setQuality(m_input.getQuality());
    input.hasInitialValue(isStarted ? 1 : 0);
    for (RVNode* node : *cluster.graph->pNodeList()) {
        if (isStarted) input.setX(node, m_data.getX(node));
        input.setWeight(node, m_input.getWeight(m_data.getLocalOriginalNode(node)));
    }
    for (RVEdge* edge : *cluster.graph->pEdgeList()) {
        input.setCost(edge, m_input.getCost(m_data.getLocalOriginalEdge(edge)));
    }
    rv::runPart(m_algorithm, cut, input, output);

    for (RVDListIter half(output.pClusters()); half; half++) {
        const RVDList* nodes = RVDList::castDown(half.pObject());
        if (nodes->length() > 0) makeHalf(*nodes, output);
    }
    if (m_halves.size() != 2) {
        rejectHalves(cluster);
        return false;
    }
    for (RVEdge* edge : *cluster.graph->pEdgeList()) {
        RVNode* const source = m_data.getLocalNewNode(edge->pSourceNode());
        RVNode* const target = m_data.getLocalNewNode(edge->pTargetNode());
        RVGraph* const half = source->pOwnerGraph();
        if (half != target->pOwnerGraph()) continue;
        m_data.setLocalOriginalEdge(half->addEdge(source, target, 0), m_data.getLocalOriginalEdge(edge));
    }
    return true;
}

void Splitter::makeHalf(const RVDList& nodes, const RVRatioCutBipartitioningOutputData& cut) {
    Cluster& half = m_halves.emplace_back();
    half.own = rv::newGraphLike(m_pGraph);
    half.graph = half.own.get();
    half.serial = ++m_serial;
    std::int64_t weight = 0;
    for (RVDListIter it(&nodes); it; it++) {
        auto* node = static_cast<RVNode*>(it.pObject());
        RVNode* const original = m_data.getLocalOriginalNode(node);
        RVNode* const copy = half.graph->addNode(0);
        link(copy, original, cut.getX(node));
        m_data.setLocalNewNode(original, copy);
        m_data.setLocalNewNode(node, copy);
        weight += m_input.getWeight(original);
    }
    half.weight = static_cast<double>(weight);
}

void Splitter::replaceByHalves(Cluster& cluster) {
    add(m_halves);
    m_clusters.erase(cluster.place);
}

void Splitter::rejectHalves(const Cluster& cluster) {
    for (RVNode* node : *cluster.graph->pNodeList()) {
        m_data.setLocalNewNode(m_data.getLocalOriginalNode(node), node);
    }
    m_halves.clear();
}

// Ends since a pass goes on to another only after a cut, and there are at most n - 1 of them.
void Splitter::splitByWeight() {
    if (m_clusters.empty()) return;
    if (m_input.maxClusterCount() < m_input.minClusterCount()) {
        m_input.minClusterCount(1);
        m_input.maxClusterCount(1);
    }
    const auto limit = static_cast<std::size_t>(m_input.maxClusterCount());
    double quality = measureCluster(m_clusters.front());
    for (bool isChanged = limit > 1; isChanged;) {
        isChanged = false;
        auto next = m_clusters.begin();
        for (std::size_t left = m_clusters.size(); left > 0; --left) {
            Cluster& cluster = *next++;
            const double measure = measureCluster(cluster);
            if (!(measure > m_targetWeight) || cluster.isUnsplittable) continue;
            const bool isSplit = split(cluster);
            double after = quality - measure;
            for (const Cluster& half : m_halves) after += measureCluster(half);
            if (isSplit && after < quality) {
                quality = after;
                isChanged = true;
                replaceByHalves(cluster);
            } else {
                cluster.isUnsplittable = true;
                rejectHalves(cluster);
            }
            if (m_clusters.size() >= limit) {
                isChanged = false;
                break;
            }
        }
    }
}

// None for a node of another graph.
Splitter::Cluster* Splitter::clusterOf(RVNode* node) {
    const RVNode* const now = m_data.getLocalNewNode(node);
    if (now == nullptr) return nullptr;
    const RVGraph* graph = now->pOwnerGraph();
    return graph == m_pGraph ? &m_clusters.front() : static_cast<Cluster*>(graph->pUserField());
}

// Marks each cluster with two of the nodes, unless it cannot be cut; false when there is none.
bool Splitter::markOffenders(const RVNodeDList& nodes, std::vector<Cluster*>& marked) {
    ++m_constraints;
    bool hasOffenders = false;
    for (RVNode* node : nodes) {
        Cluster* const cluster = clusterOf(node);
        if (cluster == nullptr || cluster->isStuck) continue;
        if (cluster->seenIn != m_constraints) {
            cluster->seenIn = m_constraints;
            cluster->firstSeen = node;
        } else if (cluster->firstSeen != node) {
            if (!cluster->isMarked) marked.push_back(cluster);
            cluster->isMarked = hasOffenders = true;
        }
    }
    return hasOffenders;
}

// A constraint that no cluster offends stays so, since clusters only become smaller.
void Splitter::ensureConstraints() {
    std::vector<const RVNodeDList*> open;
    rv::forEachConstraint(m_input, RVDifferentClusterConstraint,
                          [&](const auto&, const RVNodeDList& nodes) { open.push_back(&nodes); });
    while (!m_clusters.empty() && !open.empty()) {
        std::vector<Cluster*> marked;
        std::erase_if(open, [&](const RVNodeDList* nodes) { return !markOffenders(*nodes, marked); });
        for (Cluster* cluster : marked) {
            cluster->isMarked = false;
            if (split(*cluster)) {
                replaceByHalves(*cluster);
            } else {
                cluster->isStuck = true;
            }
        }
    }
}

void Splitter::ensureCount() {
    const auto isSmaller = [](const Cluster* a, const Cluster* b) {
        const int difference = a->graph->numberOfNodes() - b->graph->numberOfNodes();
        return difference != 0 ? difference < 0 : a->serial > b->serial;
    };
    std::priority_queue<Cluster*, std::vector<Cluster*>, decltype(isSmaller)> bySize(isSmaller);
    for (Cluster& cluster : m_clusters) bySize.push(&cluster);
    const int wanted = m_input.minClusterCount();
    while (static_cast<int>(m_clusters.size()) < wanted && !bySize.empty()) {
        Cluster* const largest = bySize.top();
        bySize.pop();
        if (!split(*largest)) continue;
        for (Cluster& half : m_halves) bySize.push(&half);
        replaceByHalves(*largest);
    }
}

// The first cluster that is left, in nodes of the input graph; none when there is none.
std::unique_ptr<RVDList> Splitter::takeCluster() {
    if (m_clusters.empty()) return nullptr;
    auto nodes = std::make_unique<RVDList>();
    for (RVNode* node : *m_clusters.front().graph->pNodeList()) {
        nodes->appendObject(m_data.getLocalOriginalNode(node));
    }
    m_clusters.pop_front();
    return nodes;
}

}  // namespace

RVServiceErrorCodeEnum RVClusterSplittingAlgorithm::internalRun() { return run(); }

RVAlgorithmData* RVClusterSplittingAlgorithm::newInternalData() { return new RVClusteringInternalData(); }

RVServiceErrorCodeEnum RVClusterSplittingAlgorithm::checkData() {
    return rv::checkClusteringInput<RVClusteringInputData>(RVInternalAlgorithm::checkData(), pInputData());
}

RVServiceErrorCodeEnum RVClusterSplittingAlgorithm::algorithmBody() {
    Splitter splitter(*this, *RVClusteringInputData::castDown(pInputData()),
                      *static_cast<RVClusteringInternalData*>(pInternalData()));
    splitter.splitByWeight();
    splitter.ensureConstraints();
    splitter.ensureCount();
    auto* output = RVClusteringOutputData::castDown(pOutputData());
    while (std::unique_ptr<RVDList> cluster = splitter.takeCluster()) {
        rv::addCluster(std::move(cluster), *output);
    }
    return RV_NO_ERROR;
}
