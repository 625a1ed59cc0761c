// The effects are taken in groups of 64, a bit for each. Within a range a backward search per effect marks
// the nodes; otherwise the bits of a group are gathered over the strong components of the graph. What the
// nodes explain of a group is noted for those only that may still become causes if they explain all that is
// left. The last group comes first, so that what a node explains, put before what it explained until then,
// stands in the order of the effects.

#include "rv/rootcause/root_cause_analysis.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <new>
#include <span>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/list_sort.h"
#include "rv/foundation/owned_lists.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/reach_marks.h"
#include "rv/rootcause/negative_costs.h"
#include "rv/rootcause/range_search.h"

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

namespace {

using Word = rv::ReachMarks::Word;
constexpr std::size_t kGroup = rv::ReachMarks::kMost;

using rv::placeOf;

// By edge whether it is followed both ways; nothing where none is.
std::vector<bool> bothWays(const RVRootCauseInputData& input) {
    rv::Buffer<int> gathered;
    const auto undirected = input.edgesUndirected().values(input.pAssociatedGraph(), gathered);
    if (std::find_if(undirected.begin(), undirected.end(), [](int flag) { return flag != 0; }) ==
        undirected.end())
        return {};
    std::vector<bool> flags;
    for (const int flag : undirected) flags.push_back(flag != 0);
    return flags;
}
bool isAt(const std::vector<bool>& flags, rv::Index place) { return place < flags.size() && flags[place]; }

Word bitOf(std::size_t i) { return Word{1} << i; }

template <class F>
void forEachBit(Word word, F f) {
    for (; word != 0; word &= word - 1) f(static_cast<std::size_t>(std::countr_zero(word)));
}

// What the nodes explain of one group of effects.
class Marks {
public:
    explicit Marks(const RVGraph* graph) : m_words(rv::nodeLimitOf(graph)) {}

    void add(rv::Index node, Word bits) {
        if (m_words[node] == 0) m_nodes.push_back(node);
        m_words[node] |= bits;
    }
    template <class F>
    void forEachNode(F f) const {
        for (const rv::Index node : m_nodes) f(node, m_words[node]);
    }
    void clear() {
        for (const rv::Index node : m_nodes) m_words[node] = 0;
        m_nodes.clear();
    }

private:
    std::vector<Word> m_words;       // by number
    std::vector<rv::Index> m_nodes;  // that have a bit
};

}  // namespace

// The run

struct RVRootCauseAlgorithm::Run {
    // What a node explains.
    struct Explained {
        std::int64_t weight = 0;
        rv::Index effects = 0;           // how many
        rv::Index share = rv::kNoIndex;  // the first one
    };
    // What a node explains of a group of effects.
    struct Share {
        Word effects;
        rv::Index first;  // of the group
        rv::Index next;   // share of the node; kNoIndex after the last
    };

    // Whether a weight reaches the threshold.
    bool isEnough(std::int64_t weight) const {
        return threshold <= 0 || static_cast<double>(weight) >= threshold * static_cast<double>(totalWeight);
    }
    // Calls search(first, effects) with the groups, of which each begins with the first effect given.
    template <class F>
    void forEachGroup(F search) {
        for (std::size_t first = 0, end = effects.size(); end > 0; end = first) {
            first = (end - 1) / kGroup * kGroup;
            search(first, std::span(effects).subspan(first, sizeOfGroup(first)));
        }
    }
    std::size_t sizeOfGroup(std::size_t first) const { return std::min(kGroup, effects.size() - first); }
    template <class AnyMarks>
    void addShares(const AnyMarks& marks, std::size_t first);
    void fill(RVNodeDList& list, rv::SharedCells& cells, const RVNode* cause) const;

    double threshold = 0;
    std::vector<RVNode*> effects;  // in the order of the list
    std::vector<int> weights;      // of the effects
    std::int64_t totalWeight = 0;
    std::int64_t weightLeft = 0;  // of the groups to come

    std::vector<Explained> explained;  // by number of the node
    std::vector<Share> shares;
    RVNodeDList causes;
};

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
    return rv::hasNegativeCost(*input) ? RV_NEGATIVE_COST : RV_NO_ERROR;
}

void RVRootCauseAlgorithm::preprocess() {}
void RVRootCauseAlgorithm::postprocess() {}

void RVRootCauseAlgorithm::parseInputData() {
    const auto* input = RVRootCauseInputData::castDown(pInputData());
    Run& run = *m_run;
    run.threshold = input->threshold();
    for (RVNode* effect : *input->pEffectNodeList()) {
        run.effects.push_back(effect);
        run.weights.push_back(input->weight(effect));
        run.totalWeight += run.weights.back();
    }
    run.weightLeft = run.totalWeight;
}

RVServiceErrorCodeEnum RVRootCauseAlgorithm::algorithmBody() {
    Run& run = *m_run;
    const auto* input = RVRootCauseInputData::castDown(pInputData());
    RVGraph* const graph = input->pAssociatedGraph();
    run.explained.assign(rv::nodeLimitOf(graph), {});
    rv::RunPulse pulse(pRunControl(), "root causes");
    if (input->range() == -1)
        searchTogether(graph, *input, pulse);
    else
        searchOneByOne(graph, *input, pulse);
    createRootCauseNodeList(graph);
    return RV_NO_ERROR;
}

void RVRootCauseAlgorithm::searchTogether(RVGraph* graph, const RVRootCauseInputData& input,
                                          rv::Pulse& pulse) {
    Run& run = *m_run;
    const auto flat = rv::snapshotOf(graph);
    const std::vector<bool> isBothWays = bothWays(input);
    rv::SimpleGraph mixed;
    if (!isBothWays.empty()) mixed = flat->mixedWhere([&](rv::Index edge) { return isAt(isBothWays, edge); });
    const rv::SimpleGraph& simple = input.undirected() != 0 ? flat->undirected()
                                    : isBothWays.empty()    ? flat->directed()
                                                            : mixed;
    rv::ReachMarks marks(simple.space, pulse);
    std::vector<rv::Index> targets;
    run.forEachGroup([&](std::size_t first, std::span<RVNode* const> effects) {
        targets.clear();
        for (const RVNode* effect : effects) {
            targets.push_back(rv::isInGraph(effect, graph) ? rv::indexOf(effect) : rv::kNoIndex);
        }
        marks.ask(targets, pulse);
        run.addShares(marks, first);
    });
}

void RVRootCauseAlgorithm::searchOneByOne(RVGraph* graph, const RVRootCauseInputData& input,
                                          rv::Pulse& pulse) {
    Run& run = *m_run;
    rv::Buffer<int> nodeCosts;
    rv::Buffer<int> edgeCosts;
    rv::RangeQuestion question;
    question.graph = graph;
    question.isReversed = true;
    question.isUndirected = input.undirected() != 0;
    question.isBothWays = bothWays(input);
    question.nodeCosts = input.nodeCosts().values(graph, nodeCosts);
    question.edgeCosts = input.edgeCosts().values(graph, edgeCosts);
    question.edgeDefault = 1;
    question.range = input.range();
    rv::RangeSearch search(question);
    Marks marks(graph);
    run.forEachGroup([&](std::size_t first, std::span<RVNode* const> effects) {
        for (std::size_t i = 0; i < effects.size(); ++i) {
            if (!rv::isInGraph(effects[i], graph)) continue;
            for (const rv::Index node : search.reach(rv::indexOf(effects[i]), pulse))
                marks.add(node, bitOf(i));
        }
        run.addShares(marks, first);
        marks.clear();
    });
}

template <class AnyMarks>
void RVRootCauseAlgorithm::Run::addShares(const AnyMarks& marks, std::size_t first) {
    for (std::size_t i = 0; i < sizeOfGroup(first); ++i) weightLeft -= weights[first + i];
    marks.forEachNode([&](rv::Index node, Word bits) {
        Explained& known = explained[node];
        forEachBit(bits, [&](std::size_t i) {
            known.weight += weights[first + i];
            ++known.effects;
        });
        if (!isEnough(known.weight + weightLeft)) return;
        if (shares.size() == rv::kNoIndex) throw std::bad_alloc();  // no more can be numbered
        shares.push_back({bits, static_cast<rv::Index>(first), known.share});
        known.share = static_cast<rv::Index>(shares.size() - 1);
    });
}

// Smallest explained weight first.
class RVRootCauseAlgorithm::RVRootCauseNodeListSort : public RVDListSort {
public:
    explicit RVRootCauseNodeListSort(const Run& run) : m_run(run) {}

    int virtualCellCompare(RVDListCell* first, RVDListCell* second) const override {
        const std::int64_t a = weight(first);
        const std::int64_t b = weight(second);
        return a < b ? -1 : a > b ? 1 : 0;
    }

private:
    std::int64_t weight(const RVDListCell* cell) const {
        return m_run.explained[placeOf(RVNode::castDown(cell->pObject()))].weight;
    }
    const Run& m_run;
};

void RVRootCauseAlgorithm::createRootCauseNodeList(const RVGraph* graph) {
    Run& run = *m_run;
    for (RVNode* node : *graph->pNodeList()) {
        const Run::Explained& known = run.explained[placeOf(node)];
        if (known.effects != 0 && run.isEnough(known.weight)) run.causes.appendNode(node);
    }
    RVRootCauseNodeListSort(run).quickSort(&run.causes, 0);
}

void RVRootCauseAlgorithm::generateOutputData() {
    const Run& run = *m_run;
    auto* output = RVRootCauseOutputData::castDown(pOutputData());
    RVHashMap* const lists = output->pReachedNodeListMap();
    lists->empty(1, 0);
    rv::SharedCells cells;
    for (RVNode* cause : run.causes) {
        output->pCauseNodeList()->appendNode(cause);
        auto list = std::make_unique<RVNodeDList>();
        run.fill(*list, cells, cause);
        lists->put(cause, list.get());
        static_cast<void>(list.release());  // the map owns it
    }
}

void RVRootCauseAlgorithm::Run::fill(RVNodeDList& list, rv::SharedCells& cells, const RVNode* cause) const {
    const Explained& known = explained[placeOf(cause)];
    Share at{0, 0, known.share};
    cells.fill(list, known.effects, [&](std::size_t) {
        if (at.effects == 0) at = shares[at.next];
        const auto i = static_cast<std::size_t>(std::countr_zero(at.effects));
        at.effects &= at.effects - 1;
        return effects[at.first + i];
    });
}
