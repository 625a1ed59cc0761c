// A gradient method on positions, with momentum and a step that shrinks whenever the ratio stalls, after
// which the thresholds between neighbours are swept.
//
// The steps work on arrays, one value for each variable. `order` lists the variables as the last sort left
// them, and sums of real numbers are formed in that order, so that they come out the same everywhere. Costs
// and weights are integers: sums of them are exact, whatever their order, up to 2^53.
//
// Invariant of an iteration: positions are moved along the gradient and back to spread 1 only on trial
// (gGrad); it is the trial positions that are sorted and swept, and the way there, as a direction, that the
// momentum takes up.

#include "rv/clustering/ratio_cut_bipartitioning.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "rv/clustering/clustering_input.h"
#include "rv/foundation/random.h"

RV_OBJECT_IMPL(RVRatioCutBipartitioningInputData)
RV_OBJECT_IMPL(RVRatioCutBipartitioningOutputData)
RV_OBJECT_IMPL(RVRatioCutVariable)
RV_OBJECT_IMPL(RVRatioCutEdge)
RV_OBJECT_IMPL(RVRatioCutVariableSort)

// Data

void RVRatioCutBipartitioningOutputData::reset() {
    RVClusteringOutputData::reset();
    deleteDataReferences(pAssociatedGraph());
    m_totalCost = 0.0;
}

int RVRatioCutVariableSort::virtualCellCompare(RVDListCell* first, RVDListCell* second) const {
    const double a = RVRatioCutVariable::castDown(first->pObject())->x();
    const double b = RVRatioCutVariable::castDown(second->pObject())->x();
    return a < b ? -1 : b < a ? 1 : 0;
}

namespace {

constexpr double kTiny = 1e-20;       // below it a step or a slope counts as none
constexpr double kHugeRatio = 1e100;  // above all ratios
constexpr double kFarthest = 1e100;   // of the positions to start from
constexpr int kLimitFactor = 20;      // of all iterations, against those without a change

double startPosition(double x) { return std::abs(x) <= kFarthest ? x : 0.0; }

// Sorts indices by their keys, stably, as a list of variables would be by RVRatioCutVariableSort.
//
// Keys are brought to 24 bits, which keeps their order but for ties, and sorted by two digits; what ties are
// left is then sorted by the keys themselves. O(n) unless many keys differ by less than 2^-24 of their range,
// O(n log n) at worst.
class PositionSorter {
public:
    void sort(std::vector<std::uint32_t>& order, const std::vector<double>& keys) {
        const auto goesBefore = [&](std::uint32_t a, std::uint32_t b) { return isLess(keys[a], keys[b]); };
        if (std::is_sorted(order.begin(), order.end(), goesBefore)) return;
        if (order.size() < kFew || !takeDigits(order, keys)) {
            std::stable_sort(order.begin(), order.end(), goesBefore);
            return;
        }
        for (int digit = 0; digit < kDigits; ++digit) sortByDigit(digit);
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = m_items[i].index;
        for (std::size_t begin = 0; begin < order.size();) {
            std::size_t end = begin + 1;
            while (end < order.size() && m_items[end].key == m_items[begin].key) ++end;
            if (end - begin > 1) {
                std::stable_sort(order.begin() + static_cast<std::ptrdiff_t>(begin),
                                 order.begin() + static_cast<std::ptrdiff_t>(end), goesBefore);
            }
            begin = end;
        }
    }

private:
    struct Item {
        std::uint32_t key;
        std::uint32_t index;
    };
    static constexpr std::size_t kFew = 256;
    static constexpr int kDigits = 2;
    static constexpr int kBits = 12;
    static constexpr std::uint32_t kValues = 1U << kBits;

    // What is no number goes behind all others.
    static bool isLess(double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); }

    // False when the keys have no range that can be divided.
    bool takeDigits(const std::vector<std::uint32_t>& order, const std::vector<double>& keys) {
        double least = keys[order[0]];
        double most = least;
        bool isFinite = true;
        for (const double key : keys) {
            isFinite = isFinite && std::isfinite(key);
            least = std::min(least, key);
            most = std::max(most, key);
        }
        constexpr double kLargest = (1 << kDigits * kBits) - 1;
        const double scale = kLargest / (most - least);
        if (!isFinite || !(scale > 0.0) || !std::isfinite(scale)) return false;
        m_items.resize(order.size());
        m_scratch.resize(order.size());
        for (auto& places : m_places) places.fill(0);
        for (std::size_t i = 0; i < order.size(); ++i) {
            const double place = (keys[order[i]] - least) * scale;
            const auto key = static_cast<std::uint32_t>(std::min(place, kLargest));
            m_items[i] = {key, order[i]};
            for (int digit = 0; digit < kDigits; ++digit) {
                ++m_places[static_cast<std::size_t>(digit)][valueOf(key, digit)];
            }
        }
        return true;
    }

    static std::uint32_t valueOf(std::uint32_t key, int digit) {
        return key >> (digit * kBits) & (kValues - 1);
    }

    void sortByDigit(int digit) {
        auto& places = m_places[static_cast<std::size_t>(digit)];
        std::exclusive_scan(places.begin(), places.end(), places.begin(), 0U);
        for (const Item& item : m_items) m_scratch[places[valueOf(item.key, digit)]++] = item;
        m_items.swap(m_scratch);
    }

    std::array<std::array<std::uint32_t, kValues>, kDigits> m_places;  // per value of a digit
    std::vector<Item> m_items;
    std::vector<Item> m_scratch;
};

}  // namespace

// The run

// The variables, in node order, and the edges between them.
struct RVRatioCutBipartitioningAlgorithm::Parts {
    explicit Parts(std::size_t n) : variables(n) {}
    RVRatioCutVariable* of(const RVNode* node) const { return variableOf[rv::placeOf(node)]; }

    std::vector<RVRatioCutVariable> variables;
    std::vector<RVRatioCutVariable*> variableOf;  // by dense index of the node
    std::vector<RVRatioCutEdge> edges;
};

// What the variables hold, value by value, and each edge once.
struct RVRatioCutBipartitioningAlgorithm::Arrays {
    explicit Arrays(const std::vector<RVRatioCutVariable>& variables);

    std::size_t size() const { return x.size(); }
    template <bool kCountsEqual>
    void sumPulls(std::vector<double>& pulls) const;
    void renumber();

    std::vector<double> x;          // position
    std::vector<double> gradient;   // g
    std::vector<double> direction;  // h
    std::vector<double> startX;     // x0
    std::vector<double> weight;
    std::vector<int> side;
    std::vector<double> averagedX;         // xs
    std::vector<std::uint32_t> order;      // the variables as the last sort left them
    std::vector<std::uint32_t> variables;  // which variable is at a place of these arrays
    struct Edge {
        std::uint32_t first;
        std::uint32_t second;
        std::int32_t cost;
    };
    std::vector<Edge> edges;
    std::vector<double> growth;  // of the cut, when a variable joins the first cluster
    PositionSorter sorter;
};

RV_OBJECT_IMPL(RVRatioCutBipartitioningAlgorithm)  // which destroys them

RVRatioCutBipartitioningAlgorithm::Arrays::Arrays(const std::vector<RVRatioCutVariable>& all)
    : gradient(all.size()),
      direction(all.size()),
      startX(all.size()),
      side(all.size()),
      averagedX(all.size()),
      growth(all.size()) {
    for (const RVRatioCutVariable& variable : all) {
        x.push_back(variable.x());
        weight.push_back(variable.weight());
        order.push_back(static_cast<std::uint32_t>(order.size()));
        for (RVDListIter it(variable.pEdgeList()); it; it++) {
            const auto* edge = RVRatioCutEdge::castDown(it.pObject());
            if (edge->pOther() < &variable) continue;
            edges.push_back({order.back(), static_cast<std::uint32_t>(edge->pOther() - all.data()),
                             static_cast<std::int32_t>(edge->cost())});
        }
    }
    variables = order;
}

// For each variable, the costs of its edges to later positions minus those to earlier ones; with kCountsEqual
// those to the same position count as well.
template <bool kCountsEqual>
void RVRatioCutBipartitioningAlgorithm::Arrays::sumPulls(std::vector<double>& pulls) const {
    std::fill(pulls.begin(), pulls.end(), 0.0);
    for (const Edge& edge : edges) {
        const double first = x[edge.first];
        const double second = x[edge.second];
        const int fromFirst = kCountsEqual ? 2 * (first <= second) - 1 : (first < second) - (first > second);
        const int fromSecond = kCountsEqual ? 2 * (second <= first) - 1 : -fromFirst;
        pulls[edge.first] += static_cast<double>(edge.cost) * fromFirst;
        pulls[edge.second] += static_cast<double>(edge.cost) * fromSecond;
    }
}

// Puts the variables into the places of their order, so that the steps meet them, and mostly the other ends
// of their edges, side by side. No result depends on the places.
void RVRatioCutBipartitioningAlgorithm::Arrays::renumber() {
    std::vector<std::uint32_t> placeOf(size());
    for (std::size_t i = 0; i < size(); ++i) placeOf[order[i]] = static_cast<std::uint32_t>(i);
    const auto permute = [&](auto& values) {
        const auto old = values;
        for (std::size_t i = 0; i < size(); ++i) values[i] = old[order[i]];
    };
    std::vector<std::size_t> places(size() + 1);
    for (Edge& edge : edges) {
        edge.first = placeOf[edge.first];
        edge.second = placeOf[edge.second];
        if (edge.second < edge.first) std::swap(edge.first, edge.second);
        ++places[edge.first + 1];
    }
    std::partial_sum(places.begin(), places.end(), places.begin());
    const std::vector<Edge> before = edges;
    for (const Edge& edge : before) edges[places[edge.first]++] = edge;
    permute(x);
    permute(direction);
    permute(weight);
    permute(side);
    permute(averagedX);
    permute(variables);
    for (std::size_t i = 0; i < size(); ++i) order[i] = static_cast<std::uint32_t>(i);
}

RVRatioCutBipartitioningAlgorithm::RVRatioCutBipartitioningAlgorithm() = default;

RVServiceErrorCodeEnum RVRatioCutBipartitioningAlgorithm::internalRun() { return run(); }

RVAlgorithmData* RVRatioCutBipartitioningAlgorithm::newInternalData() {
    return new RVClusteringInternalData();
}

RVServiceErrorCodeEnum RVRatioCutBipartitioningAlgorithm::checkData() {
    return rv::checkClusteringInput<RVRatioCutBipartitioningInputData>(RVInternalAlgorithm::checkData(),
                                                                       pInputData());
}

void RVRatioCutBipartitioningAlgorithm::cleanup() {
    m_arrays = nullptr;
    m_parts = nullptr;
    RVInternalAlgorithm::cleanup();
}

RVServiceErrorCodeEnum RVRatioCutBipartitioningAlgorithm::algorithmBody() {
    m_iterations = 0;
    makeVariables();
    testWeights();
    makeEdges();
    const double best = cut();

    auto* output = RVRatioCutBipartitioningOutputData::castDown(pOutputData());
    auto first = std::make_unique<RVDList>();
    auto second = std::make_unique<RVDList>();
    auto variable = m_parts.get()->variables.begin();
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        output->setX(node, variable->x());
        (variable->side() == 0 ? first : second)->appendObject(node);
        ++variable;
    }
    output->totalCost(best);
    rv::addCluster(std::move(first), *output);
    rv::addCluster(std::move(second), *output);
    return RV_NO_ERROR;
}

void RVRatioCutBipartitioningAlgorithm::makeVariables() {
    const auto* input = RVRatioCutBipartitioningInputData::castDown(pInputData());
    const RVGraph* graph = pAssociatedGraph();
    m_parts = std::make_unique<Parts>(static_cast<std::size_t>(graph->numberOfNodes()));
    Parts& parts = *m_parts.get();
    auto variable = parts.variables.begin();
    parts.variableOf.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));
    for (RVNode* node : *graph->pNodeList()) {
        variable->weight(input->getWeight(node));
        variable->x(startPosition(input->getX(node)));
        parts.variableOf[rv::placeOf(node)] = &*variable++;
    }
}

void RVRatioCutBipartitioningAlgorithm::makeEdges() {
    const auto* input = RVRatioCutBipartitioningInputData::castDown(pInputData());
    const RVGraph* graph = pAssociatedGraph();
    Parts& parts = *m_parts.get();
    parts.edges.reserve(2 * static_cast<std::size_t>(graph->numberOfEdges()));
    const auto add = [&](RVRatioCutVariable* variable, RVRatioCutVariable* other, int cost) {
        RVRatioCutEdge& edge = parts.edges.emplace_back();
        edge.pOther(other);
        edge.cost(cost);
        variable->pEdgeList()->appendObject(&edge);
    };
    for (RVEdge* edge : *graph->pEdgeList()) {
        RVRatioCutVariable* const source = parts.of(edge->pSourceNode());
        RVRatioCutVariable* const target = parts.of(edge->pTargetNode());
        if (source == target) continue;
        add(source, target, input->getCost(edge));
        add(target, source, input->getCost(edge));
    }
}

// With at most one weight there would be no split to try.
void RVRatioCutBipartitioningAlgorithm::testWeights() {
    constexpr double kNoWeight = 0.0001;
    std::vector<RVRatioCutVariable>& variables = m_parts.get()->variables;
    const auto hasWeight = [](const RVRatioCutVariable& variable) { return variable.weight() > kNoWeight; };
    if (std::count_if(variables.begin(), variables.end(), hasWeight) > 1) return;
    for (RVRatioCutVariable& variable : variables) variable.weight(1.0);
}

double RVRatioCutBipartitioningAlgorithm::cut() {
    std::vector<RVRatioCutVariable>& variables = m_parts.get()->variables;
    if (variables.size() < 2) {
        for (RVRatioCutVariable& variable : variables) variable.side(0);
        return 0.0;
    }
    m_arrays = std::make_unique<Arrays>(variables);
    Arrays& a = *m_arrays.get();
    m_stepScale = 1.0;
    m_stepLength = 0.0;
    m_momentum = 1.3;
    m_totalWeight = 0.0;
    for (const double weight : a.weight) m_totalWeight += weight;
    initial();
    a.averagedX = a.x;
    schedule();
    for (std::size_t v = 0; v < a.size(); ++v) {
        RVRatioCutVariable& variable = variables[a.variables[v]];
        variable.x(a.x[v]);
        variable.side(a.side[v]);
    }
    return m_bestRatio;
}

void RVRatioCutBipartitioningAlgorithm::initial() {
    Arrays& a = *m_arrays.get();
    if (RVRatioCutBipartitioningInputData::castDown(pInputData())->hasInitialValue() == 0) {
        const auto n = static_cast<double>(a.size());
        RVSimpleRandom random(0);
        for (double& x : a.x) x = random.randFloat() * 1.0 / ((n - n / 2) * (n / 2));
    }
    stepFes();
    const double middle = (a.x[a.order.front()] + a.x[a.order.back()]) / 2;
    for (double& x : a.x) x -= middle;
    stepFes();
}

void RVRatioCutBipartitioningAlgorithm::schedule() {
    const auto n = static_cast<int>(m_arrays.get()->size());
    const auto* input = RVRatioCutBipartitioningInputData::castDown(pInputData());
    m_bestRatio = kHugeRatio;
    m_stepScale = 1.0;
    int patience = std::min(n / 2 + 4, 30);
    int mostUnchanged = std::min(static_cast<int>(5 * std::sqrt(n) + 2 * patience), 300);
    if (input->getQuality() == 2) {
        patience *= 3;
        mostUnchanged *= 3;
    } else if (input->getQuality() == 0) {
        const bool isStarted = input->hasInitialValue() != 0;
        patience = patience / (isStarted ? 3 : 4) + 3;
        mostUnchanged = mostUnchanged / (isStarted ? 3 : 2) + 2;
    }

    int unchanged = 0;  // twice the iterations since the best ratio fell or the ratio rose
    int stall = 0;
    bool isWorse = false;
    double previous = 0.0;
    const int limit = kLimitFactor * mostUnchanged;
    for (; m_iterations < limit && unchanged <= mostUnchanged; ++m_iterations) {
        // Again and again while positions still change much.
        const bool isPowerOfTwo = (m_iterations & (m_iterations - 1)) == 0;
        if (isPowerOfTwo) m_arrays.get()->renumber();
        iteration();
        ++unchanged;
        if (m_bestRatio > m_currentRatio) {
            m_bestRatio = m_currentRatio;
            isWorse = false;
            unchanged = 0;
            stall = 0;
        }
        if (previous < m_currentRatio) {
            unchanged = 0;
            isWorse = true;
            ++stall;
        } else if (isWorse) {
            ++stall;
        }
        previous = m_currentRatio;
        ++unchanged;
        if (stall > patience) {
            m_stepScale /= 1.3;
            stall = 0;
            isWorse = false;
        }
    }
}

// Conjugate directions, but for the bounds of the momentum.
void RVRatioCutBipartitioningAlgorithm::iteration() {
    gGrad();
    Arrays& a = *m_arrays.get();
    double product = 0.0;
    double square = 0.0;
    for (const std::uint32_t v : a.order) {
        product += a.gradient[v] * a.direction[v];
        square += a.direction[v] * a.direction[v];
    }
    double beta = 0.0;
    if (std::abs(square) > 0.01) {
        beta = -m_momentum * product / square;
        if (beta < 0.0) {
            beta = 0.0;
        } else if (beta > 0.99) {
            if (beta > 1.2) m_momentum /= 1.02;
            beta = 0.99;
        }
    }
    for (std::size_t v = 0; v < a.size(); ++v) {
        a.direction[v] = beta * a.direction[v] + a.gradient[v];
        a.averagedX[v] = a.x[v] = (a.averagedX[v] + a.x[v]) / 2;
    }
    stepDir();
}

// The direction of a step along the gradient, projected to the positions of spread 1. Positions stay.
void RVRatioCutBipartitioningAlgorithm::gGrad() {
    Arrays& a = *m_arrays.get();
    a.startX = a.x;
    stepProj();
    stepFes();
    const double factor = m_stepLength >= kTiny ? 1 / m_stepLength : 0.0;
    for (std::size_t v = 0; v < a.size(); ++v) {
        a.gradient[v] = (a.x[v] - a.startX[v]) * factor;
        a.x[v] = a.startX[v];
    }
}

void RVRatioCutBipartitioningAlgorithm::stepProj() {
    grad();
    stepGrad();
}

void RVRatioCutBipartitioningAlgorithm::grad() {
    Arrays& a = *m_arrays.get();
    a.sumPulls<true>(a.gradient);
}

void RVRatioCutBipartitioningAlgorithm::stepGrad() { moveAlong(m_arrays.get()->gradient); }
void RVRatioCutBipartitioningAlgorithm::stepDir() { moveAlong(m_arrays.get()->direction); }

// Moves so far that the fastest variable covers a seventh of the range, times the scale.
void RVRatioCutBipartitioningAlgorithm::moveAlong(const std::vector<double>& direction) {
    Arrays& a = *m_arrays.get();
    double fastest = 0.0;
    double least = a.x[0];
    double most = a.x[0];
    for (std::size_t v = 0; v < a.size(); ++v) {
        fastest = std::max(fastest, std::abs(direction[v]));
        least = std::min(least, a.x[v]);
        most = std::max(most, a.x[v]);
    }
    if (fastest < kTiny) return;
    m_stepLength = m_stepScale * (most - least) / (7 * fastest);
    if (std::abs(m_stepLength) < kTiny) m_stepLength = 1.0;
    for (std::size_t v = 0; v < a.size(); ++v) a.x[v] += m_stepLength * direction[v];
}

// Sweeps, then moves along the gradient of the spread to where the spread would be 1 if no two variables
// changed places. The spread is the sum of the distances of all pairs, each times both weights.
void RVRatioCutBipartitioningAlgorithm::stepFes() {
    Arrays& a = *m_arrays.get();
    a.sorter.sort(a.order, a.x);
    m_currentRatio = calcRatio();
    double spread = 0.0;
    double slope = 0.0;  // of the spread, along its gradient
    double before = 0.0;
    double lastX = a.x[a.order.front()];
    double lastGradient = 0.0;
    for (const std::uint32_t v : a.order) {
        const double behind = m_totalWeight - before;
        const double gradient = a.weight[v] * (2 * before + a.weight[v] - m_totalWeight);
        spread += (a.x[v] - lastX) * before * behind;
        slope += (gradient - lastGradient) * before * behind;
        before += a.weight[v];
        lastX = a.x[v];
        lastGradient = a.gradient[v] = gradient;
    }
    double step = 1.0;
    if (std::abs(slope) > kTiny) step = (1.0 - spread) / slope;
    for (std::size_t v = 0; v < a.size(); ++v) a.x[v] += step * a.gradient[v];
}

// The least ratio of all splits between neighbours. Its split is kept when it is better than the best so far.
double RVRatioCutBipartitioningAlgorithm::calcRatio() {
    Arrays& a = *m_arrays.get();
    a.sumPulls<false>(a.growth);
    double best = kHugeRatio;
    double cut = 0.0;
    double before = 0.0;
    std::size_t inFirst = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::uint32_t v = a.order[i];
        cut += a.growth[v];
        before += a.weight[v];
        const double behind = m_totalWeight - before;
        if (cut < best * before * behind) {
            best = cut / (before * behind);
            inFirst = i + 1;
        }
    }
    if (m_bestRatio > best) {
        for (std::size_t i = 0; i < a.size(); ++i) a.side[a.order[i]] = i < inFirst ? 0 : 1;
    }
    return best;
}
