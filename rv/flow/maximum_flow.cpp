// Shortest augmenting paths. Every node has two states: "in", flow has come to it, and "out", flow may leave
// it. Node capacities lie between the two, and taking flow back may pass from out to in.

#include "rv/flow/maximum_flow.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVMaximumFlowInputData)
RV_OBJECT_IMPL(RVMaximumFlowOutputData)

// Input and output

std::span<const RVInputField> RVMaximumFlowInputData::inputFields() const {
    using namespace rv::field;
    using B = RVNetworkInputData;
    using D = RVMaximumFlowInputData;
    static constexpr RVInputField fields[] = {
        graphObject<B, RVNode, &B::pSourceNode, &B::pSourceNode>("sourceNode"),
        graphObject<B, RVNode, &B::pSinkNode, &B::pSinkNode>("sinkNode"),
        nodeInt<D, &D::capacity, &D::capacity>("capacity"),
        edgeInt<D, &D::capacity, &D::capacity>("capacity"),
    };
    return fields;
}

void RVMaximumFlowOutputData::reset() {
    m_visitedNodes->deleteAllCells();
    m_totalFlow = 0;
    deleteDataReferences(pAssociatedGraph());
}

// The network as arrays: nodes by their places in graph order, edges by those in the nodes' out-edge lists.
class RVMaximumFlowAlgorithm::Network {
public:
    explicit Network(const RVMaximumFlowInputData& input) {
        const RVGraph* graph = input.pAssociatedGraph();
        std::vector<int> nodePlaces(static_cast<std::size_t>(graph->nodeIndexLimit()));
        std::vector<int> edgePlaces(static_cast<std::size_t>(graph->edgeIndexLimit()));
        for (RVNode* node : *graph->pNodeList()) {
            nodePlaces[rv::placeOf(node)] = static_cast<int>(m_nodes.size());
            m_nodes.push_back({node, input.capacity(node)});
        }
        m_edges.reserve(static_cast<std::size_t>(graph->numberOfEdges()));
        m_callersEdges.reserve(m_edges.capacity());
        m_inEdges.reserve(m_edges.capacity());
        for (Node& node : m_nodes) {
            node.firstOut = m_edges.size();
            for (RVEdge* edge : *node.node->pOutEdgeList()) {
                edgePlaces[rv::placeOf(edge)] = static_cast<int>(m_edges.size());
                m_edges.push_back({nodePlaces[rv::placeOf(edge->pSourceNode())],
                                   nodePlaces[rv::placeOf(edge->pTargetNode())], input.capacity(edge)});
                m_callersEdges.push_back(edge);
            }
        }
        for (Node& node : m_nodes) {
            node.firstIn = m_inEdges.size();
            for (const RVEdge* edge : *node.node->pInEdgeList())
                m_inEdges.push_back(edgePlaces[rv::placeOf(edge)]);
        }
        m_nodes.push_back({nullptr, 0, 0, m_edges.size(), m_inEdges.size()});  // the end of the lists
        m_source = nodePlaces[rv::placeOf(input.pSourceNode())];
        m_sink = nodePlaces[rv::placeOf(input.pSinkNode())];
        m_visits.resize(m_nodes.size());
        m_queue.reserve(2 * m_nodes.size());
    }

    void findMaximumFlow() {
        while (findAugmentingPath()) updateFlow();
    }

    void describe(RVMaximumFlowOutputData& output) const {
        for (std::size_t i = 0; i < m_edges.size(); ++i) {
            if (m_edges[i].flow != 0) output.flow(m_callersEdges[i], m_edges[i].flow);
        }
        output.totalFlow(rv::saturate(at(m_nodes, m_sink).flow));
        std::vector<bool> isListed(m_nodes.size());
        for (const State& state : m_queue) {
            if (isListed[static_cast<std::size_t>(state.node)]) continue;
            isListed[static_cast<std::size_t>(state.node)] = true;
            output.pVisitedNodeList()->appendNode(at(m_nodes, state.node).node);
        }
    }

private:
    struct Node {
        RVNode* node;
        int capacity;
        std::int64_t flow = 0;  // that enters the node
        std::size_t firstOut = 0;
        std::size_t firstIn = 0;

        std::int64_t residual() const { return capacity == rv::kInfinite ? rv::kInfinite : capacity - flow; }
    };
    struct Edge {
        int source;
        int target;
        int capacity;
        int flow = 0;
    };
    struct State {
        int node;
        bool isOut;
    };
    // The last searches that came to the states of a node, and by which edges; -1 from its other state.
    struct Visit {
        std::uint32_t in = 0;
        std::uint32_t out = 0;
        int lastIn = -1;
        int lastOut = -1;
    };
    struct Step {
        int edge;
        bool isForward;
    };

    template <class T>
    static T& at(std::vector<T>& values, int place) {
        return values[static_cast<std::size_t>(place)];
    }
    template <class T>
    static const T& at(const std::vector<T>& values, int place) {
        return values[static_cast<std::size_t>(place)];
    }

    bool findAugmentingPath() {
        ++m_search;
        m_queue.clear();
        m_queue.push_back({m_source, true});
        at(m_visits, m_source).out = m_search;
        for (std::size_t i = 0; i < m_queue.size(); ++i) {
            const State state = m_queue[i];
            if (!state.isOut) {
                processInNode(state.node);
            } else if (processOutNode(state.node)) {
                buildPath();
                return true;
            }
        }
        return false;
    }

    // Whether the sink is reached.
    bool processOutNode(int v) {
        if (v != m_source) visitIn(v, -1);
        const std::size_t end = m_nodes[static_cast<std::size_t>(v) + 1].firstOut;
        for (std::size_t i = at(m_nodes, v).firstOut; i < end; ++i) {
            const Edge& edge = m_edges[i];
            if (edge.flow >= edge.capacity) continue;
            if (edge.target == m_sink) {
                at(m_visits, m_sink).lastIn = static_cast<int>(i);
                return true;
            }
            visitIn(edge.target, static_cast<int>(i));
        }
        return false;
    }

    void processInNode(int v) {
        if (at(m_nodes, v).residual() > 0) visitOut(v, -1);
        const std::size_t end = m_nodes[static_cast<std::size_t>(v) + 1].firstIn;
        for (std::size_t i = at(m_nodes, v).firstIn; i < end; ++i) {
            const Edge& edge = at(m_edges, m_inEdges[i]);
            if (edge.flow >= 1) visitOut(edge.source, m_inEdges[i]);
        }
    }

    void visitIn(int v, int edge) {
        Visit& visit = at(m_visits, v);
        if (visit.in == m_search) return;
        visit.in = m_search;
        visit.lastIn = edge;
        m_queue.push_back({v, false});
    }
    void visitOut(int v, int edge) {
        Visit& visit = at(m_visits, v);
        if (visit.out == m_search) return;
        visit.out = m_search;
        visit.lastOut = edge;
        m_queue.push_back({v, true});
    }

    // Back from the sink's in state to the source's out state.
    void buildPath() {
        m_path.clear();
        int v = m_sink;
        bool isOut = false;
        for (;;) {
            const Visit& visit = at(m_visits, v);
            if (!isOut) {
                if (visit.lastIn >= 0) {
                    m_path.push_back({visit.lastIn, true});
                    v = at(m_edges, visit.lastIn).source;
                }
                if (v == m_source) break;
            } else if (visit.lastOut >= 0) {
                m_path.push_back({visit.lastOut, false});
                v = at(m_edges, visit.lastOut).target;
            }
            isOut = !isOut;
        }
        std::reverse(m_path.begin(), m_path.end());
    }

    // A node limits what flows through it, from one forward edge to the next.
    int flowIncrement() const {
        std::int64_t limit = rv::kInfinite;
        bool wasForward = false;
        for (const Step& step : m_path) {
            const Edge& edge = at(m_edges, step.edge);
            limit = std::min<std::int64_t>(limit, step.isForward ? edge.capacity - edge.flow : edge.flow);
            if (step.isForward && wasForward) limit = std::min(limit, at(m_nodes, edge.source).residual());
            wasForward = step.isForward;
        }
        return static_cast<int>(limit);
    }

    void updateFlow() {
        const int amount = flowIncrement();
        for (const Step& step : m_path) {
            Edge& edge = at(m_edges, step.edge);
            const int change = step.isForward ? amount : -amount;
            edge.flow += change;
            at(m_nodes, edge.target).flow += change;
        }
    }

    std::vector<Node> m_nodes;   // and one more, where the last one's edges end
    std::vector<Edge> m_edges;   // out-edges, node after node
    std::vector<int> m_inEdges;  // places of in-edges, node after node
    std::vector<RVEdge*> m_callersEdges;
    int m_source;
    int m_sink;
    std::uint32_t m_search = 0;
    std::vector<Visit> m_visits;
    std::vector<State> m_queue;  // of the last search
    std::vector<Step> m_path;    // the last one found
};

RVMaximumFlowAlgorithm::RVMaximumFlowAlgorithm() = default;
RVMaximumFlowAlgorithm::~RVMaximumFlowAlgorithm() = default;
RV_OBJECT_NO_COPY_IMPL(RVMaximumFlowAlgorithm)

RVServiceErrorCodeEnum RVMaximumFlowAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = RVBaseGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVMaximumFlowInputData::castDown(pInputData());
    code = rv::checkNetworkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    for (RVNode* node : *input->pAssociatedGraph()->pNodeList()) {
        if (input->capacity(node) < 0) return RV_NEGATIVE_CAPACITY;
    }
    for (RVEdge* edge : *input->pAssociatedGraph()->pEdgeList()) {
        if (input->capacity(edge) < 0) return RV_NEGATIVE_CAPACITY;
    }
    return RV_NO_ERROR;
}

void RVMaximumFlowAlgorithm::parseInputData() {
    m_network = std::make_unique<Network>(*RVMaximumFlowInputData::castDown(pInputData()));
}

RVServiceErrorCodeEnum RVMaximumFlowAlgorithm::algorithmBody() {
    m_network->findMaximumFlow();
    return RV_NO_ERROR;
}

void RVMaximumFlowAlgorithm::generateOutputData() {
    auto* output = RVMaximumFlowOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pInputData()->pAssociatedGraph());
    rv::clearFlows(*output);
    m_network->describe(*output);
}

void RVMaximumFlowAlgorithm::cleanup() {
    RVBaseGraphAlgorithm::cleanup();
    m_network = nullptr;
}
