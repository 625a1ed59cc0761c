// The effects are taken in groups of 64, a bit for each. Within a range a backward search per effect marks
// the nodes; otherwise the bits of a group are gathered over the strong components of the graph. What the
// nodes explain of a group is noted for those only that may still become causes if they explain all that is
// left.

#include "rv/rootcause/root_cause_analysis.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/list_sort.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/rootcause/reachable_nodes.h"

RV_OBJECT_IMPL(RVRootCauseInputData)
RV_OBJECT_IMPL(RVRootCauseOutputData)

std::span<const RVInputField> RVRootCauseInputData::inputFields() const {
    using namespace rv::field;
    using D = RVRootCauseInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<D, &D::undirected, &D::undirected>("undirected"),
        graphObject<D, RVNodeDList, &D::pEffectNodeList, &D::pEffectNodeList>("effectNodeList"),
        graphInt<D, &D::range, &D::range>("range"),
        graphDouble<D, &D::threshold, &D::threshold>("threshold"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
        nodeInt<D, &D::weight, &D::weight>("weight"),
        edgeFlag<D, &D::undirected, &D::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVRootCauseOutputData::buildCauseNodeList(RVNodeDList& list) const { list = *m_causes; }

void RVRootCauseOutputData::buildReachedNodeList(RVNode* cause, RVNodeDList& list) const {
    const auto* reached = static_cast<const RVNodeDList*>(m_reachedLists->get(cause));
    if (reached == nullptr)
        list.deleteAllCells();
    else
        list = *reached;
}

void RVRootCauseOutputData::reset() {
    m_causes->deleteAllCells();
    if (pAssociatedGraph() == nullptr) return;
    for (RVHashMapIter it(m_reachedLists.get()); it; it++) {
        if (it.pValue() != nullptr) static_cast<RVNodeDList*>(it.pValue())->deleteAllCells();
    }
}

// The searches

namespace rv {

// Searches from one start node after another of an input that is the same otherwise. The first search reads
// it for all, and each undoes what it noted: a later one costs what it reaches.
class RepeatedSearch : public RVReachableNodesAlgorithm {
public:
    RVServiceErrorCodeEnum checkData() override {
        if (!m_isRead) return RVReachableNodesAlgorithm::checkData();
        return checkNode(start(), *pInputData(), RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
    }

protected:
    void initialize() override {
        if (!m_isRead) RVReachableNodesAlgorithm::initialize();
    }
    void parseInputData() override {
        if (!m_isRead) RVReachableNodesAlgorithm::parseInputData();
        m_isRead = true;
        m_pStartNode = start();
    }
    void cleanup() override {
        for (RVNode* node : *RVReachableNodesOutputData::castDown(pOutputData())->pNodeList())
            m_distances[placeOf(node)] = kInfinite;
    }

private:
    RVNode* start() const { return RVReachableNodesInputData::castDown(pInputData())->pStartNode(); }
    bool m_isRead = false;
};

}  // namespace rv

namespace {

using Word = std::uint64_t;
constexpr std::size_t kGroup = 64;

using rv::placeOf;

Word bitOf(std::size_t i) { return Word{1} << i; }

template <class F>
void forEachBit(Word word, F f) {
    for (; word != 0; word &= word - 1) f(static_cast<std::size_t>(std::countr_zero(word)));
}

// What the nodes explain of one group of effects.
class Marks {
public:
    explicit Marks(const RVGraph* graph) : m_words(static_cast<std::size_t>(graph->nodeIndexLimit())) {}

    const std::vector<RVNode*>& nodes() const { return m_nodes; }
    Word word(const RVNode* node) const { return m_words[placeOf(node)]; }
    void add(RVNode* node, Word bits) {
        Word& word = m_words[placeOf(node)];
        if (word == 0 && bits != 0) m_nodes.push_back(node);
        word |= bits;
    }
    void clear() {
        for (const RVNode* node : m_nodes) m_words[placeOf(node)] = 0;
        m_nodes.clear();
    }

private:
    std::vector<Word> m_words;     // by dense index
    std::vector<RVNode*> m_nodes;  // that have a bit
};

// The strong components of the graph, and which of them lead to which. A component is numbered behind all
// that it leads to, so what its nodes explain is known when it has been gathered from those, in order of the
// numbers.
//
// Path-based (Gabow 2000). Invariant: the unfinished nodes are those discovered and without a component, in
// the order of discovery, and the numbers of the roots are those at which the components among them may
// begin.
class Condensation {
public:
    Condensation(const RVGraph* graph, const RVRootCauseInputData& input);

    // Marks every node with the effects that it reaches. Effects that are not in the graph have no component.
    void mark(Marks& marks, const RVGraph* graph, std::span<RVNode* const> effects);

private:
    struct Visit {
        RVNode* node;
        RVDListCell* next;  // in the out-edges, then in the in-edges
        bool isBackward;
    };

    void discover(RVNode* node);
    void closeComponent(RVNode* root);
    RVNode* pNextNeighbour(Visit& visit) const;

    bool m_isUndirected;
    bool m_hasUndirectedEdges = false;
    std::vector<bool> m_undirectedEdges;

    // Of the search. By dense index; 0 is the number of a node to be discovered.
    std::vector<int> m_numbers;
    std::vector<Visit> m_visits;
    std::vector<RVNode*> m_unfinished;
    std::vector<int> m_roots;
    int m_discovered = 0;

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::vector<std::size_t> m_components;  // of the nodes, by dense index
    std::vector<RVNode*> m_nodes;           // component by component
    std::vector<std::size_t> m_targets;  // the components to which the first one leads, the second one, ...
    std::vector<std::size_t> m_nodesEnds;
    std::vector<std::size_t> m_targetsEnds;
    std::vector<std::size_t> m_lastSources;  // the last component that was found to lead to this one
    std::vector<Word> m_words;               // of the components
};

Condensation::Condensation(const RVGraph* graph, const RVRootCauseInputData& input)
    : m_isUndirected(input.undirected() != 0),
      m_undirectedEdges(static_cast<std::size_t>(graph->edgeIndexLimit())),
      m_numbers(static_cast<std::size_t>(graph->nodeIndexLimit())),
      m_components(m_numbers.size(), kNone) {
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (input.undirected(edge) != 0) m_hasUndirectedEdges = m_undirectedEdges[placeOf(edge)] = true;
    }
    for (RVNode* start : *graph->pNodeList()) {
        if (m_numbers[placeOf(start)] == 0) discover(start);
        while (!m_visits.empty()) {
            if (RVNode* const other = pNextNeighbour(m_visits.back())) {
                if (m_numbers[placeOf(other)] == 0) {
                    discover(other);
                } else if (m_components[placeOf(other)] == kNone) {
                    while (m_roots.back() > m_numbers[placeOf(other)]) m_roots.pop_back();
                }
                continue;
            }
            RVNode* const node = m_visits.back().node;
            m_visits.pop_back();
            if (m_roots.back() == m_numbers[placeOf(node)]) closeComponent(node);
        }
    }
    m_words.resize(m_nodesEnds.size());
}

void Condensation::discover(RVNode* node) {
    m_numbers[placeOf(node)] = ++m_discovered;
    m_roots.push_back(m_discovered);
    m_unfinished.push_back(node);
    m_visits.push_back({node, node->pOutEdgeList()->pFirstCell(), false});
}

void Condensation::closeComponent(RVNode* root) {
    const std::size_t component = m_nodesEnds.size();
    const std::size_t first = m_nodes.size();
    m_roots.pop_back();
    RVNode* node = nullptr;
    while (node != root) {
        node = m_unfinished.back();
        m_unfinished.pop_back();
        m_components[placeOf(node)] = component;
        m_nodes.push_back(node);
    }
    m_nodesEnds.push_back(m_nodes.size());
    m_lastSources.push_back(component);
    for (std::size_t i = first; i < m_nodes.size(); ++i) {
        Visit visit{m_nodes[i], m_nodes[i]->pOutEdgeList()->pFirstCell(), false};
        while (const RVNode* target = pNextNeighbour(visit)) {
            const std::size_t other = m_components[placeOf(target)];
            if (std::exchange(m_lastSources[other], component) != component) m_targets.push_back(other);
        }
    }
    m_targetsEnds.push_back(m_targets.size());
}

RVNode* Condensation::pNextNeighbour(Visit& visit) const {
    for (;;) {
        while (visit.next != nullptr) {
            const auto* edge = static_cast<const RVEdge*>(visit.next->pObject());
            visit.next = visit.next->pNextCell();
            if (!visit.isBackward) return edge->pTargetNode();
            if (m_isUndirected || m_undirectedEdges[placeOf(edge)]) return edge->pSourceNode();
        }
        if (visit.isBackward || (!m_isUndirected && !m_hasUndirectedEdges)) return nullptr;
        visit.isBackward = true;
        visit.next = visit.node->pInEdgeList()->pFirstCell();
    }
}

void Condensation::mark(Marks& marks, const RVGraph* graph, std::span<RVNode* const> effects) {
    std::fill(m_words.begin(), m_words.end(), Word{0});
    for (std::size_t i = 0; i < effects.size(); ++i) {
        if (rv::isInGraph(effects[i], graph)) m_words[m_components[placeOf(effects[i])]] |= bitOf(i);
    }
    std::size_t node = 0;
    std::size_t target = 0;
    for (std::size_t component = 0; component < m_words.size(); ++component) {
        Word& word = m_words[component];
        for (; target < m_targetsEnds[component]; ++target) word |= m_words[m_targets[target]];
        for (; node < m_nodesEnds[component]; ++node) marks.add(m_nodes[node], word);
    }
}

// Smallest explained weight first.
class RVRootCauseNodeListSort : public RVDListSort {
public:
    explicit RVRootCauseNodeListSort(const std::vector<std::int64_t>& weights) : m_weights(weights) {}

    int virtualCellCompare(RVDListCell* first, RVDListCell* second) const override {
        const std::int64_t a = weight(first);
        const std::int64_t b = weight(second);
        return a < b ? -1 : a > b ? 1 : 0;
    }

private:
    std::int64_t weight(const RVDListCell* cell) const {
        return m_weights[placeOf(RVNode::castDown(cell->pObject()))];
    }
    const std::vector<std::int64_t>& m_weights;
};

}  // namespace

// The run

struct RVRootCauseAlgorithm::Run {
    static constexpr std::int64_t kNothing = std::numeric_limits<std::int64_t>::min();

    // What a node explains of a group of effects.
    struct Share {
        RVNode* node;
        Word effects;
    };

    // Whether a weight reaches the threshold.
    bool isEnough(std::int64_t weight) const {
        return threshold <= 0 || static_cast<double>(weight) >= threshold * static_cast<double>(totalWeight);
    }
    std::size_t endOfGroup(std::size_t first) const { return std::min(first + kGroup, effects.size()); }
    void addShares(const Marks& marks, std::size_t first);

    double threshold = 0;
    std::vector<RVNode*> effects;  // in the order of the list
    std::vector<int> weights;      // of the effects
    std::int64_t totalWeight = 0;
    std::int64_t weightLeft = 0;  // of the groups to come

    std::vector<std::int64_t> explained;  // weight by dense index of the node; kNothing without an effect
    std::vector<Share> shares;            // of the first group, then of the second one, and so on
    std::vector<std::size_t> endsOfGroups;
    RVNodeDList causes;
};

RVRootCauseAlgorithm::RVRootCauseAlgorithm() = default;
RV_OBJECT_IMPL(RVRootCauseAlgorithm)

RVServiceErrorCodeEnum RVRootCauseAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVBaseGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVRootCauseInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    const RVNodeDList* effects = input->pEffectNodeList();
    if (effects == nullptr || effects->length() == 0) return RV_NO_EFFECT_NODES;
    for (const RVNode* effect : *effects) {
        if (!rv::isInGraph(effect, graph)) return RV_EFFECT_NODE_NOT_IN_GRAPH;
    }
    if (input->range() < -1) return RV_INVALID_RANGE;
    if (!(input->threshold() >= 0.0 && input->threshold() <= 1.0)) return RV_INVALID_THRESHOLD;
    for (RVNode* effect : *effects) {
        if (input->weight(effect) < 0) return RV_NEGATIVE_WEIGHT;
    }
    for (RVNode* node : *graph->pNodeList()) {
        if (input->cost(node) < 0) return RV_NEGATIVE_COST;
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (input->cost(edge) < 0) return RV_NEGATIVE_COST;
    }
    return RV_NO_ERROR;
}

void RVRootCauseAlgorithm::initialize() {
    RVBaseGraphAlgorithm::initialize();
    m_run = std::make_unique<Run>();
}

void RVRootCauseAlgorithm::cleanup() {
    RVBaseGraphAlgorithm::cleanup();
    m_run = nullptr;
}

void RVRootCauseAlgorithm::preprocess() {}
void RVRootCauseAlgorithm::postprocess() {}

void RVRootCauseAlgorithm::parseInputData() {
    const auto* input = RVRootCauseInputData::castDown(pInputData());
    Run& run = *m_run.get();
    run.threshold = input->threshold();
    for (RVNode* effect : *input->pEffectNodeList()) {
        run.effects.push_back(effect);
        run.weights.push_back(input->weight(effect));
        run.totalWeight += run.weights.back();
    }
    run.weightLeft = run.totalWeight;
}

RVServiceErrorCodeEnum RVRootCauseAlgorithm::algorithmBody() {
    Run& run = *m_run.get();
    const auto* input = RVRootCauseInputData::castDown(pInputData());
    RVGraph* const graph = input->pAssociatedGraph();
    run.explained.assign(static_cast<std::size_t>(graph->nodeIndexLimit()), Run::kNothing);
    if (input->range() == -1)
        searchTogether(graph, *input);
    else
        searchOneByOne(graph, *input);
    createRootCauseNodeList(graph);
    return RV_NO_ERROR;
}

void RVRootCauseAlgorithm::searchTogether(RVGraph* graph, const RVRootCauseInputData& input) {
    Run& run = *m_run.get();
    Marks marks(graph);
    Condensation condensation(graph, input);
    for (std::size_t first = 0; first < run.effects.size(); first += kGroup) {
        condensation.mark(marks, graph, std::span(run.effects).subspan(first, run.endOfGroup(first) - first));
        run.addShares(marks, first);
        marks.clear();
    }
}

void RVRootCauseAlgorithm::searchOneByOne(RVGraph* graph, const RVRootCauseInputData& input) {
    Run& run = *m_run.get();
    RVReachableNodesInputData question(graph);
    question.reversed(1);
    question.undirected(input.undirected());
    question.range(input.range());
    for (RVNode* node : *graph->pNodeList()) {
        if (const int cost = input.cost(node); cost != 0) question.cost(node, cost);
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (const int cost = input.cost(edge); cost != 0) question.cost(edge, cost);
        if (input.undirected(edge) != 0) question.undirected(edge, 1);
    }
    rv::RepeatedSearch search;
    RVReachableNodesOutputData answer;
    Marks marks(graph);
    for (std::size_t first = 0; first < run.effects.size(); first += kGroup) {
        for (std::size_t i = first; i < run.endOfGroup(first); ++i) {
            question.pStartNode(run.effects[i]);
            if (rv::runPart(search, question, answer) != RV_NO_ERROR) continue;
            for (RVNode* node : *answer.pNodeList()) marks.add(node, bitOf(i - first));
        }
        run.addShares(marks, first);
        marks.clear();
    }
}

void RVRootCauseAlgorithm::Run::addShares(const Marks& marks, std::size_t first) {
    for (std::size_t i = first; i < endOfGroup(first); ++i) weightLeft -= weights[i];
    for (RVNode* node : marks.nodes()) {
        std::int64_t& weight = explained[placeOf(node)];
        if (weight == kNothing) weight = 0;
        forEachBit(marks.word(node), [&](std::size_t i) { weight += weights[first + i]; });
        if (isEnough(weight + weightLeft)) shares.push_back({node, marks.word(node)});
    }
    endsOfGroups.push_back(shares.size());
}

void RVRootCauseAlgorithm::createRootCauseNodeList(const RVGraph* graph) {
    Run& run = *m_run.get();
    for (RVNode* node : *graph->pNodeList()) {
        const std::int64_t weight = run.explained[placeOf(node)];
        if (weight != Run::kNothing && run.isEnough(weight)) run.causes.appendNode(node);
    }
    RVRootCauseNodeListSort(run.explained).quickSort(&run.causes, 0);
}

void RVRootCauseAlgorithm::generateOutputData() {
    const Run& run = *m_run.get();
    auto* output = RVRootCauseOutputData::castDown(pOutputData());
    RVHashMap* const lists = output->pReachedNodeListMap();
    lists->empty(1, 0);
    for (RVNode* cause : run.causes) {
        output->pCauseNodeList()->appendNode(cause);
        auto list = std::make_unique<RVNodeDList>();
        lists->put(cause, list.get());
        static_cast<void>(list.release());  // the map owns it
    }
    std::size_t share = 0;
    for (std::size_t group = 0; group < run.endsOfGroups.size(); ++group) {
        for (; share < run.endsOfGroups[group]; ++share) {
            auto* list = static_cast<RVNodeDList*>(lists->get(run.shares[share].node));
            if (list == nullptr) continue;
            forEachBit(run.shares[share].effects,
                       [&](std::size_t i) { list->appendNode(run.effects[group * kGroup + i]); });
        }
    }
}
