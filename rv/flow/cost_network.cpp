// Each node keeps its label, which is the sum of its potential and its distance, so that an arc from u to w
// at cost c lowers the distance of w when label(u) + c < label(w). Potentials are those of
// minimum_cost_flow.cpp; they are raised when the next search begins.

#include "rv/flow/cost_network.h"

#include <algorithm>
#include <bit>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/parallel_edges.h"

namespace rv {

// DistanceQueue

void DistanceQueue::add(std::uint32_t distance, std::uint32_t node) {
    const auto bucket = static_cast<std::size_t>(std::bit_width(distance ^ m_last));
    m_buckets[bucket].push_back({distance, node});
    m_filled |= std::uint32_t{1} << bucket;
}

template <class IsDistance>
std::optional<std::uint32_t> DistanceQueue::takeNearest(IsDistance isDistance) {
    while ((m_filled & 1U) == 0) {
        if (m_filled == 0) {
            m_last = 0;
            return std::nullopt;
        }
        const int lowest = std::countr_zero(m_filled);
        m_filled &= ~(std::uint32_t{1} << lowest);
        std::vector<Entry>& bucket = m_buckets[static_cast<std::size_t>(lowest)];
        std::erase_if(bucket, [&](const Entry& entry) { return !isDistance(entry.distance, entry.node); });
        if (bucket.empty()) continue;
        const auto isNearer = [](const Entry& a, const Entry& b) { return a.distance < b.distance; };
        m_last = std::min_element(bucket.begin(), bucket.end(), isNearer)->distance;
        for (const Entry& entry : bucket) add(entry.distance, entry.node);
        bucket.clear();
    }
    std::vector<Entry>& nearest = m_buckets[0];
    const std::uint32_t node = nearest[m_taken++].node;
    if (m_taken == nearest.size()) {
        nearest.clear();
        m_taken = 0;
        m_filled &= ~std::uint32_t{1};
    }
    return node;
}

// What the network is made of: the nodes and forward edges of the flow graph, in the order in which the flow
// core would put them there.
class CostNetwork::Builder {
public:
    explicit Builder(const RVMinimumCostFlowInputData& input)
        : m_input(input), m_graph(input.pAssociatedGraph()) {
        readNodes();
        readEdges();
        replaceParallelEdges();
        dropClosedEdges();
        if (!keepReachable()) {
            edges.clear();
            return;
        }
        if (start == sink) separateStart();
        splitNodes();
    }

    std::vector<Edge> edges;
    std::uint32_t nodes = 0;
    std::uint32_t start = 0;
    std::uint32_t sink = 0;

private:
    struct Limit {
        int capacity;
        int cost;
    };
    // The edges of node v in their order, from begins[v] to begins[v + 1].
    struct EdgesBySource {
        std::vector<std::uint32_t> begins;
        std::vector<std::uint32_t> edges;
    };
    EdgesBySource edgesBySource() const;

    void readNodes();
    void readEdges();
    void replaceParallelEdges();
    void dropClosedEdges();
    bool keepReachable();
    void separateStart();
    void splitNodes();

    const RVMinimumCostFlowInputData& m_input;
    const RVGraph* m_graph;
    std::vector<Limit> m_limits;           // of the caller's nodes, which are the first ones
    std::vector<std::uint32_t> m_numbers;  // of the caller's nodes, by dense index
};

// Source and sink have neither limit nor cost.
void CostNetwork::Builder::readNodes() {
    m_numbers.resize(static_cast<std::size_t>(m_graph->nodeIndexLimit()));
    m_limits.reserve(static_cast<std::size_t>(m_graph->numberOfNodes()));
    for (RVNode* node : *m_graph->pNodeList()) {
        m_numbers[placeOf(node)] = nodes++;
        m_limits.push_back({m_input.capacity(node), m_input.cost(node)});
    }
    start = m_numbers[placeOf(m_input.pSourceNode())];
    sink = m_numbers[placeOf(m_input.pSinkNode())];
    m_limits[start] = m_limits[sink] = {kInfinite, 0};
}

// Self-loops carry nothing.
void CostNetwork::Builder::readEdges() {
    edges.reserve(static_cast<std::size_t>(m_graph->numberOfEdges()));
    for (RVEdge* edge : *m_graph->pEdgeList()) {
        const std::uint32_t source = m_numbers[placeOf(edge->pSourceNode())];
        const std::uint32_t target = m_numbers[placeOf(edge->pTargetNode())];
        if (source != target)
            edges.push_back({source, target, m_input.capacity(edge), m_input.cost(edge), edge});
    }
}

CostNetwork::Builder::EdgesBySource CostNetwork::Builder::edgesBySource() const {
    EdgesBySource result{std::vector<std::uint32_t>(nodes + 1), std::vector<std::uint32_t>(edges.size())};
    for (const Edge& edge : edges) ++result.begins[edge.source + 1];
    for (std::uint32_t v = 0; v < nodes; ++v) result.begins[v + 1] += result.begins[v];
    std::vector<std::uint32_t> next(result.begins);
    for (std::uint32_t i = 0; i < edges.size(); ++i) result.edges[next[edges[i].source]++] = i;
    return result;
}

// By paths of two edges, so that all have capacities of their own: all but the first ones of their groups, in
// the order of these and then of their source's out-edges.
void CostNetwork::Builder::replaceParallelEdges() {
    ParallelEdges parallels(m_graph, true);
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(m_graph->edgeIndexLimit()));
    for (std::uint32_t i = 0; i < edges.size(); ++i) numbers[placeOf(edges[i].original)] = i;
    std::vector<bool> isReplaced(edges.size());
    for (std::uint32_t i = 0, count = static_cast<std::uint32_t>(edges.size()); i < count; ++i) {
        if (isReplaced[i]) continue;
        for (const RVEdge* parallel : parallels.of(edges[i].original)) {
            const std::uint32_t number = numbers[placeOf(parallel)];
            if (number == i) continue;
            const Edge edge = edges[number];
            isReplaced[number] = true;
            edges[number].capacity = 0;
            edges.push_back({edge.source, nodes, edge.capacity, edge.cost, edge.original});
            edges.push_back({nodes, edge.target, edge.capacity, 0, nullptr});
            ++nodes;
        }
    }
}

// Edges and nodes of capacity 0.
void CostNetwork::Builder::dropClosedEdges() {
    const auto isClosed = [&](std::uint32_t v) { return v < m_limits.size() && m_limits[v].capacity <= 0; };
    std::erase_if(edges, [&](const Edge& edge) {
        return edge.capacity <= 0 || isClosed(edge.source) || isClosed(edge.target);
    });
}

// What the start reaches; false if the sink is not among that.
bool CostNetwork::Builder::keepReachable() {
    const EdgesBySource outEdges = edgesBySource();
    std::vector<bool> isReached(nodes);
    std::vector<std::uint32_t> reached{start};
    isReached[start] = true;
    for (std::size_t k = 0; k < reached.size(); ++k) {
        const std::uint32_t end = outEdges.begins[reached[k] + 1];
        for (std::uint32_t i = outEdges.begins[reached[k]]; i < end; ++i) {
            const std::uint32_t target = edges[outEdges.edges[i]].target;
            if (isReached[target]) continue;
            isReached[target] = true;
            reached.push_back(target);
        }
    }
    std::erase_if(edges, [&](const Edge& edge) { return !isReached[edge.source]; });
    return isReached[sink];
}

// A source that is the sink is left by a node of its own.
void CostNetwork::Builder::separateStart() {
    start = nodes++;
    for (Edge& edge : edges) {
        if (edge.source == sink) edge.source = start;
    }
}

// What enters a node with a limit or a cost enters a node before it.
void CostNetwork::Builder::splitNodes() {
    std::vector<std::uint32_t> entries(nodes);
    for (std::uint32_t v = 0; v < entries.size(); ++v) {
        const bool isSplit = v < m_limits.size() && m_limits[v].capacity > 0 &&
                             (m_limits[v].capacity < kInfinite || m_limits[v].cost > 0);
        entries[v] = isSplit ? nodes++ : v;
    }
    for (Edge& edge : edges) edge.target = entries[edge.target];
    for (std::uint32_t v = 0; v < m_limits.size(); ++v) {
        if (entries[v] != v)
            edges.push_back({entries[v], v, m_limits[v].capacity, m_limits[v].cost, nullptr});
    }
}

// CostNetwork

CostNetwork::CostNetwork(const RVMinimumCostFlowInputData& input) {
    Builder builder(input);
    m_edges.swap(builder.edges);
    m_nodes.resize(builder.nodes);
    m_start = builder.start;
    m_sink = builder.sink;
    for (const Edge& edge : m_edges) {
        ++m_nodes[edge.source].end;
        ++m_nodes[edge.target].end;
    }
    std::uint32_t places = 0;
    for (Node& node : m_nodes) {
        node.begin = places;
        places += node.end;
        node.end = node.begin;
    }
    m_targets.resize(places);
    m_arcs.resize(places);
    for (std::uint32_t i = 0; i < m_edges.size(); ++i) attach(2 * i);
}

bool CostNetwork::findPath() {
    for (Node& node : m_nodes) {
        node.potential = std::min(node.label, node.potential + m_greatest);
        node.label = node.potential + kInfinite;
    }
    m_nodes[m_start].label = m_nodes[m_start].potential;
    m_queue.add(0, m_start);
    const auto isDistance = [&](std::uint32_t distance, std::uint32_t v) {
        return distance == m_nodes[v].label - m_nodes[v].potential;
    };
    while (const std::optional<std::uint32_t> nearest = m_queue.takeNearest(isDistance)) {
        const Node& node = m_nodes[*nearest];
        m_greatest = node.label - node.potential;
        const std::int64_t base = node.label;
        const std::uint32_t end = node.end;
        for (std::uint32_t place = node.begin; place < end; ++place) {
            const std::int64_t label = base + m_targets[place].cost;
            Node& target = m_nodes[m_targets[place].node];
            if (label >= target.label) continue;
            target.label = label;
            target.lastPlace = place;
            m_queue.add(static_cast<std::uint32_t>(label - target.potential), m_targets[place].node);
        }
    }
    m_path.clear();
    if (m_nodes[m_sink].label == m_nodes[m_sink].potential + kInfinite) return false;
    for (std::uint32_t v = m_sink; v != m_start;) {
        const std::uint32_t arc = m_arcs[m_nodes[v].lastPlace];
        m_path.push_back(m_nodes[v].lastPlace);
        v = isForward(arc) ? m_edges[arc / 2].source : m_edges[arc / 2].target;
    }
    return true;
}

int CostNetwork::pathCapacity() const {
    int least = kInfinite;
    for (const std::uint32_t place : m_path) least = std::min(least, residualCapacity(m_arcs[place]));
    return least;
}

std::int64_t CostNetwork::pathCost() const {
    std::int64_t cost = 0;
    for (const std::uint32_t place : m_path) cost += m_targets[place].cost;
    return cost;
}

// Where a partner had no residual capacity, it has now; where an arc has none any more, it goes.
void CostNetwork::push(int amount) {
    for (const std::uint32_t place : m_path) {
        const std::uint32_t arc = m_arcs[place];
        const std::uint32_t partner = arc ^ 1U;
        if (residualCapacity(partner) == 0) attach(partner);
        m_edges[arc / 2].flow += isForward(arc) ? amount : -amount;
        if (residualCapacity(arc) == 0) detach(place);
    }
}

void CostNetwork::attach(std::uint32_t arc) {
    const Edge& edge = m_edges[arc / 2];
    Node& node = m_nodes[isForward(arc) ? edge.source : edge.target];
    m_targets[node.end] = isForward(arc) ? Target{edge.target, edge.cost} : Target{edge.source, -edge.cost};
    m_arcs[node.end++] = arc;
}

// Moves no more arcs than the search has walked.
void CostNetwork::detach(std::uint32_t place) {
    const Edge& edge = m_edges[m_arcs[place] / 2];
    Node& node = m_nodes[isForward(m_arcs[place]) ? edge.source : edge.target];
    std::copy(m_targets.begin() + place + 1, m_targets.begin() + node.end, m_targets.begin() + place);
    std::copy(m_arcs.begin() + place + 1, m_arcs.begin() + node.end, m_arcs.begin() + place);
    --node.end;
}

Buffer<int> CostNetwork::flows(const RVGraph* graph) const {
    Buffer<int> flows(static_cast<std::size_t>(graph->edgeIndexLimit()), 0);
    for (const Edge& edge : m_edges) {
        if (edge.original != nullptr) flows[placeOf(edge.original)] = edge.flow;
    }
    return flows;
}

}  // namespace rv
