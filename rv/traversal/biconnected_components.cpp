// Low points (Hopcroft and Tarjan 1973) on the hooks of an undirected depth-first search.
//
// Invariant: the unfinished stack holds every discovered node that is not yet in a block but as the joint of
// blocks below it, in discovery order; a node's low point is the smallest order number seen from it or from a
// completed child. The reverse of a tree edge counts, so a child's low point is at most its parent's number:
// it equals that number exactly when the parent joins the child's block to the rest.
//
// Where no subclass looks on, the same search is made in arrays (BlockSearch).

#include "rv/traversal/biconnected_components.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <typeinfo>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/framework/parallel_edges.h"

RV_OBJECT_IMPL(RVNodeExtensionBiconnectedComponents)
RV_OBJECT_IMPL(RVBiconnectedComponentsInternalData)
RV_OBJECT_IMPL(RVBiconnectedComponentsInputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsOutputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsAlgorithm)

RVNodeAlgorithmExtension* RVBiconnectedComponentsInternalData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeExtensionBiconnectedComponents>(node);
}

int RVBiconnectedComponentsInternalData::lowptr(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionBiconnectedComponents>(node)) own->lowptr(number);
    return number;
}

int RVBiconnectedComponentsInternalData::isArticulationNode(RVNode* node, int flag) {
    if (auto* own = record<RVNodeExtensionBiconnectedComponents>(node)) own->isArticulationNode(flag);
    return flag;
}

void RVBiconnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVBiconnectedComponentsOutputData::buildArticulationNodeList(RVNodeDList& list) const {
    list = *m_articulationNodes;
}

void RVBiconnectedComponentsOutputData::reset() {
    m_components.clear();
    m_articulationNodes->deleteAllCells();
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

int RVBiconnectedComponentsAlgorithm::directed() const { return 0; }

void RVBiconnectedComponentsAlgorithm::parseInputData() {}

RVAlgorithmData* RVBiconnectedComponentsAlgorithm::newInternalData() {
    return new RVBiconnectedComponentsInternalData();
}

void RVBiconnectedComponentsAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVBiconnectedComponentsInternalData* data = pData();
    const int number = data->orderNumber(node);
    if (number == 0) {
        data->pUnfinishedStack()->prependNode(node);
        data->lowptr(node, data->traversalOrderNumber());
    }
    RVDepthFirstSearchAlgorithm::visitNodeAfterTraverse(node, edge);
    if (number != 0 && edge != nullptr && number < data->lowptr(edge->pSourceNode())) {
        data->lowptr(edge->pSourceNode(), number);
    }
}

void RVBiconnectedComponentsAlgorithm::completeNodeVisit(RVNode* node, RVNode* parent) {
    RVDepthFirstSearchAlgorithm::completeNodeVisit(node, parent);
    RVBiconnectedComponentsInternalData* data = pData();
    if (node->degree() == 0) {
        data->nextComponentNumber(data->nextComponentNumber() + 1);
        data->addComponent()->appendNode(node);
    }
    RVNode* joint = data->pParentNode(node);
    if (joint == nullptr) return;
    const int low = data->lowptr(node);
    if (low == data->orderNumber(joint)) closeBlock(node, joint);
    if (data->lowptr(joint) > low) data->lowptr(joint, low);
}

void RVBiconnectedComponentsAlgorithm::closeBlock(RVNode* node, RVNode* joint) {
    RVBiconnectedComponentsInternalData* data = pData();
    data->nextComponentNumber(data->nextComponentNumber() + 1);
    RVNodeDList* block = data->addComponent();
    RVNodeDList* stack = data->pUnfinishedStack();
    for (RVNode* top = nullptr; top != node && stack->length() > 0;) {
        top = stack->pFirstNode();
        stack->discardCell(stack->pFirstCell());
        block->appendNode(top);
    }
    block->appendNode(joint);
    // A root's blocks close one after the other, and only the second one makes it an articulation node.
    const bool joins = data->pParentNode(joint) != nullptr || data->pJoiningRoot() == joint;
    if (data->pParentNode(joint) == nullptr) data->pJoiningRoot(joint);
    if (!joins || data->isArticulationNode(joint) != 0) return;
    data->pArticulationNodeList()->appendNode(joint);
    data->isArticulationNode(joint, 1);
}

namespace {

// The search in arrays. Nodes are numbered as they stand in the graph.
class BlockSearch {
public:
    BlockSearch(const RVGraph* graph, RVBiconnectedComponentsOutputData& output) : m_output(output) {
        for (RVNode* node : *graph->pNodeList()) m_nodes.push_back(node);
        readNeighbours(graph);
    }

    void run() {
        for (const Index start : startNodes()) {
            if (m_states[start].number == 0) search(start);
        }
        for (Index node = 0; node < m_nodes.size(); ++node) {
            if (degree(node) == 0) m_output.addComponent()->appendNode(m_nodes[node]);
        }
    }

private:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;
    struct Ends {
        Index source;
        Index target;
    };
    struct State {
        Index number = 0;  // 0 until the node is reached
        Index low = 0;
        Index parent = kNone;
        Index next = 0;  // place in m_neighbours
        bool isArticulationNode = false;
    };

    Index degree(Index node) const { return m_begins[node + 1] - m_begins[node]; }

    void readNeighbours(const RVGraph* graph);
    std::vector<Index> startNodes() const;
    void search(Index start);
    void reach(Index node, Index parent);
    void complete(Index node);
    void closeBlock(Index node, Index joint);

    RVBiconnectedComponentsOutputData& m_output;
    std::vector<RVNode*> m_nodes;
    // The neighbours of node v in the order in which they are tried, from m_begins[v] to m_begins[v + 1].
    std::vector<Index> m_begins;
    std::vector<Index> m_neighbours;
    std::vector<State> m_states;
    std::vector<Index> m_unfinished;  // the top is the last
    Index m_reached = 0;
    Index m_joiningRoot = kNone;  // the root of which a block was closed last
};

// A search tries the last out-edge first. The reverse edges, which stand behind a node's own out-edges, have
// been added from the last edge to the first, so they are tried in the order of their edges. Of parallel
// edges, whatever their direction, the first one counts.
void BlockSearch::readNeighbours(const RVGraph* graph) {
    std::vector<Index> places(static_cast<std::size_t>(graph->nodeIndexLimit()));
    for (Index i = 0; i < m_nodes.size(); ++i) places[rv::placeOf(m_nodes[i])] = i;
    const auto endsOf = [&](const RVEdge* edge) {
        return Ends{places[rv::placeOf(edge->pSourceNode())], places[rv::placeOf(edge->pTargetNode())]};
    };

    rv::ParallelEdges parallels(graph, false);
    std::vector<bool> counts(static_cast<std::size_t>(graph->edgeIndexLimit()), true);
    std::vector<Ends> edges;
    for (const RVEdge* edge : *graph->pEdgeList()) {
        const Ends ends = endsOf(edge);
        if (ends.source == ends.target) counts[rv::placeOf(edge)] = false;
        if (!counts[rv::placeOf(edge)]) continue;
        for (const RVEdge* parallel : parallels.of(edge)) {
            if (parallel != edge) counts[rv::placeOf(parallel)] = false;
        }
        edges.push_back(ends);
    }

    m_begins.resize(m_nodes.size() + 1);
    for (const Ends& edge : edges) {
        ++m_begins[edge.source + 1];
        ++m_begins[edge.target + 1];
    }
    m_states.resize(m_nodes.size());
    for (Index node = 0; node < m_nodes.size(); ++node) {
        m_states[node].next = m_begins[node];
        m_begins[node + 1] += m_begins[node];
    }

    m_neighbours.resize(2 * edges.size());
    std::vector<Index> filled(m_begins);
    for (const Ends& edge : edges) m_neighbours[filled[edge.target]++] = edge.source;
    if (!rv::GraphAccess::areListsInGraphOrder(graph)) {
        edges.clear();
        for (const RVNode* node : m_nodes) {
            for (const RVEdge* edge : *node->pOutEdgeList()) {
                if (counts[rv::placeOf(edge)]) edges.push_back(endsOf(edge));
            }
        }
    }
    for (std::size_t i = edges.size(); i-- > 0;) m_neighbours[filled[edges[i].source]++] = edges[i].target;
}

// By their number of neighbours, nodes of the same number as in the graph: a counting sort.
std::vector<BlockSearch::Index> BlockSearch::startNodes() const {
    std::vector<Index> places(1);  // of the nodes of each degree; those of degree 0 are left out
    const auto forEachNode = [&](auto f) {
        for (Index node = 0; node < m_nodes.size(); ++node) {
            if (degree(node) > 0) f(node);
        }
    };
    forEachNode([&](Index node) {
        if (degree(node) >= places.size()) places.resize(degree(node) + 1);
        ++places[degree(node)];
    });
    std::exclusive_scan(places.begin(), places.end(), places.begin(), Index{0});
    std::vector<Index> nodes(m_nodes.size());
    Index count = 0;
    forEachNode([&](Index node) {
        nodes[places[degree(node)]++] = node;
        ++count;
    });
    nodes.resize(count);
    return nodes;
}

void BlockSearch::search(Index start) {
    reach(start, kNone);
    for (Index node = start; node != kNone;) {
        State& state = m_states[node];
        if (state.next == m_begins[node + 1]) {
            complete(node);
            node = state.parent;
            continue;
        }
        const Index neighbour = m_neighbours[state.next++];
        if (m_states[neighbour].number == 0) {
            reach(neighbour, node);
            node = neighbour;
        } else {
            state.low = std::min(state.low, m_states[neighbour].number);
        }
    }
}

void BlockSearch::reach(Index node, Index parent) {
    State& state = m_states[node];
    state.number = state.low = ++m_reached;
    state.parent = parent;
    m_unfinished.push_back(node);
}

void BlockSearch::complete(Index node) {
    const State& state = m_states[node];
    if (state.parent == kNone) return;
    State& joint = m_states[state.parent];
    if (state.low == joint.number) closeBlock(node, state.parent);
    joint.low = std::min(joint.low, state.low);
}

// A root's blocks close one after the other, and only the second one makes it an articulation node.
void BlockSearch::closeBlock(Index node, Index joint) {
    RVNodeDList* block = m_output.addComponent();
    for (Index top = kNone; top != node;) {
        top = m_unfinished.back();
        m_unfinished.pop_back();
        block->appendNode(m_nodes[top]);
    }
    block->appendNode(m_nodes[joint]);
    State& state = m_states[joint];
    const bool joins = state.parent != kNone || m_joiningRoot == joint;
    if (state.parent == kNone) m_joiningRoot = joint;
    if (!joins || state.isArticulationNode) return;
    m_output.pArticulationNodeList()->appendNode(m_nodes[joint]);
    state.isArticulationNode = true;
}

}  // namespace

bool RVBiconnectedComponentsAlgorithm::worksInArrays() const {
    return typeid(*this) == typeid(RVBiconnectedComponentsAlgorithm);
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVDepthFirstSearchAlgorithm::algorithmBody();
    BlockSearch search(pInternalData()->pInputGraph(),
                       *RVBiconnectedComponentsOutputData::castDown(pOutputData()));
    search.run();
    return RV_NO_ERROR;
}

void RVBiconnectedComponentsAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // listed as they were found
    const RVBiconnectedComponentsInternalData* data = pData();
    auto* output = RVBiconnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVDListIter it(data->pComponentList()); it; it++) {
        RVNodeDList* block = output->addComponent();
        for (RVNode* node : *RVNodeDList::castDown(it.pObject()))
            block->appendNode(data->pOriginalNode(node));
    }
    for (RVNode* node : *data->pArticulationNodeList()) {
        output->pArticulationNodeList()->appendNode(data->pOriginalNode(node));
    }
}
