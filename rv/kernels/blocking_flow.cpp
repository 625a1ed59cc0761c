// Every node has two states: "in", flow has come to it, and "out", flow may leave it. Node capacities lie
// between the two, and taking flow back may pass from out to in. Over these states the shortest path that a
// breadth-first search finds is the first one in the lexicographical order of the ways taken from state to
// state, where the way to a node's other state comes before its arcs.
//
// A phase pushes flow along all shortest paths of one length. Its walk from the source tries the ways of each
// state in that same order and passes a way for good when it is saturated, when it leads off the levels, or
// when no way leads on behind it. All three last for the phase, since what is pushed opens ways that lead
// back by a level and no others. So the walk finds, one after the other, the paths that one search after
// another would find, and pushes as much along each.
//
// The levels come from both ends: up to the one where they meet they are distances from the source, from
// there on distances to the sink. In the last phase they do not meet, and the search from the source, run to
// its end, has reached what can be reached.

#include "rv/kernels/blocking_flow.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/kernels/node_marks.h"

namespace rv {

namespace {

// State 2 v is "in" of node v, state 2 v + 1 its "out".
using State = Index;

constexpr bool isOut(State state) { return (state & 1U) != 0; }
constexpr Index nodeOf(State state) { return state / 2; }
constexpr State otherStateOf(State state) { return state ^ 1U; }

// The states that a search from one end has come to, level by level.
struct Front {
    void begin(State start, Index stateCount) {
        marks.begin(stateCount, stateCount + 1);
        queue.clear();
        next = 0;
        level = 0;
        reach(start);
    }
    bool reach(State state) {
        if (marks.isMarked(state)) return false;
        marks.mark(state, level);
        queue.push_back(state);
        return true;
    }
    std::size_t size() const { return queue.size() - next; }

    NodeMarks marks;  // the levels
    Buffer<State> queue;
    std::size_t next = 0;  // of the queue, to be followed
    Index level = 0;       // of the states that wait
};

class BlockingFlow {
public:
    BlockingFlow(const FlowNetwork& network, Pulse& pulse)
        : m_network(network),
          m_pulse(pulse),
          m_source(2 * network.source + 1),
          m_sink(2 * network.sink),
          m_passed(network.out.nodeLimit(), 0),
          m_nextWays(2 * std::size_t{network.out.nodeLimit()}) {
        m_result.flows.resize(network.edgeLimit, 0);
    }

    MaximumFlow find() {
        while (findLevels()) block();
        findReached();
        return std::move(m_result);
    }

private:
    // Of the walk: a state, how much more may come there, and how much of that has gone on to the sink.
    struct Frame {
        State state;
        std::int64_t limit;
        std::int64_t pushed;
    };
    struct Way {
        State target;
        std::int64_t residual;
    };
    static constexpr std::int64_t kUnlimited = std::numeric_limits<std::int64_t>::max();

    int residualOf(Index edge) const { return m_network.edgeCapacity(edge) - m_result.flows[edge]; }
    // From the in to the out state.
    std::int64_t residualOfNode(Index node) const {
        const auto& capacities = m_network.nodeCapacities;
        const bool isUnlimited = node >= capacities.size() || capacities[node] == kInfinite;
        return isUnlimited ? kUnlimited : capacities[node] - m_passed[node];
    }
    const Arcs& arcsOf(State state) const { return isOut(state) ? m_network.out : m_network.in; }

    template <class F>
    void forEachSuccessor(State state, F f) const;
    template <class F>
    void forEachPredecessor(State state, F f) const;
    bool findLevels();
    template <class ForEachNeighbour>
    bool grow(Front& front, const Front& other, ForEachNeighbour forEachNeighbour);
    void block();
    bool isOnLevel(State state, Index level) const {
        return level < m_meeting ? m_forward.marks.isMarked(state, level)
                                 : m_backward.marks.isMarked(state, m_distance - level);
    }
    Way findWay(State state, Index level);
    void pushAlongWay(Frame& frame, std::int64_t amount);
    void pushToSink(std::int64_t amount);
    void retreat();
    void findReached();

    const FlowNetwork& m_network;
    Pulse& m_pulse;
    const State m_source;
    const State m_sink;
    MaximumFlow m_result;
    Buffer<std::int64_t> m_passed;  // by node: the flow from its in to its out state
    Front m_forward;
    Front m_backward;
    Index m_meeting = 0;   // the level where they meet, from the source
    Index m_distance = 0;  // of the sink
    // By state the way to be tried next in this phase: 0 to the other state, then the arcs from 1 on.
    Buffer<Index> m_nextWays;
    std::vector<Frame> m_frames;  // from the source
};

template <class F>
void BlockingFlow::forEachSuccessor(State state, F f) const {
    const Index node = nodeOf(state);
    const Arcs& arcs = arcsOf(state);
    if (isOut(state)) {
        if (state != m_source) f(otherStateOf(state));
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            if (residualOf(arcs.edges[arc]) > 0) f(2 * arcs.targets[arc]);
        }
    } else {
        if (residualOfNode(node) > 0) f(otherStateOf(state));
        if (m_passed[node] == 0) return;
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            if (m_result.flows[arcs.edges[arc]] > 0) f(2 * arcs.targets[arc] + 1);
        }
    }
}

template <class F>
void BlockingFlow::forEachPredecessor(State state, F f) const {
    const Index node = nodeOf(state);
    const Arcs& arcs = arcsOf(state);
    if (isOut(state)) {
        if (residualOfNode(node) > 0) f(otherStateOf(state));
        if (m_passed[node] == 0) return;
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            if (m_result.flows[arcs.edges[arc]] > 0) f(2 * arcs.targets[arc]);
        }
    } else {
        if (m_passed[node] > 0) f(otherStateOf(state));
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            if (residualOf(arcs.edges[arc]) > 0) f(2 * arcs.targets[arc] + 1);
        }
    }
}

// Whether the sink can be reached. All that is found from the sink leads there, much of what is found from
// the source does not: so it goes on from the source only where far less waits there.
bool BlockingFlow::findLevels() {
    const auto stateCount = static_cast<Index>(m_nextWays.size());
    m_forward.begin(m_source, stateCount);
    m_backward.begin(m_sink, stateCount);
    m_nextWays[m_source] = 0;
    for (bool meets = false; !meets;) {
        const bool goesForward = 4 * m_forward.size() <= m_backward.size();
        if ((goesForward ? m_forward : m_backward).size() == 0) return false;
        meets =
            goesForward
                ? grow(m_forward, m_backward, [this](State state, auto f) { forEachSuccessor(state, f); })
                : grow(m_backward, m_forward, [this](State state, auto f) { forEachPredecessor(state, f); });
    }
    m_meeting = m_forward.level;
    m_distance = m_forward.level + m_backward.level;
    return true;
}

// Goes on by a level; tells whether that meets the other front.
template <class ForEachNeighbour>
bool BlockingFlow::grow(Front& front, const Front& other, ForEachNeighbour forEachNeighbour) {
    bool meets = false;
    ++front.level;
    for (const std::size_t end = front.queue.size(); front.next < end; ++front.next) {
        const State state = front.queue[front.next];
        m_pulse.beat(1 + std::int64_t{arcsOf(state).degree(nodeOf(state))});
        forEachNeighbour(state, [&](State neighbour) {
            if (!front.reach(neighbour)) return;
            m_nextWays[neighbour] = 0;
            meets |= other.marks.isMarked(neighbour);
        });
    }
    return meets;
}

// Invariant: what the frames say has been pushed from a state is not yet in the flow of the way that leads to
// it from the frame before.
void BlockingFlow::block() {
    m_frames.assign(1, {m_source, kUnlimited, 0});
    while (!m_frames.empty()) {
        const Way way = findWay(m_frames.back().state, static_cast<Index>(m_frames.size()));
        const std::int64_t limit = std::min(m_frames.back().limit, way.residual);
        if (way.target == kNoIndex) {
            retreat();
        } else if (way.target == m_sink) {
            pushToSink(limit);
        } else {
            m_frames.push_back({way.target, limit, 0});
        }
    }
}

// The first way that leads to a level.
BlockingFlow::Way BlockingFlow::findWay(State state, Index level) {
    const Index node = nodeOf(state);
    const Arcs& arcs = arcsOf(state);
    Index& way = m_nextWays[state];
    if (way == 0) {
        const State other = otherStateOf(state);
        const std::int64_t residual = isOut(state) ? kUnlimited : residualOfNode(node);
        if (state != m_source && residual > 0 && isOnLevel(other, level)) return {other, residual};
        ++way;
    }
    const Index before = way;
    const Index end = isOut(state) || m_passed[node] > 0 ? arcs.degree(node) : 0;
    Way found{kNoIndex, 0};
    for (; way <= end; ++way) {
        const Index arc = arcs.first[node] + way - 1;
        const State target = 2 * arcs.targets[arc] + (isOut(state) ? 0 : 1);
        if (!isOnLevel(target, level)) continue;
        const Index edge = arcs.edges[arc];
        const int residual = isOut(state) ? residualOf(edge) : m_result.flows[edge];
        if (residual <= 0) continue;
        found = {target, residual};
        break;
    }
    m_pulse.beat(1 + std::int64_t{way} - before);
    return found;
}

void BlockingFlow::pushAlongWay(Frame& frame, std::int64_t amount) {
    frame.limit -= amount;
    frame.pushed += amount;
    const Index node = nodeOf(frame.state);
    const Index way = m_nextWays[frame.state];
    const std::int64_t change = isOut(frame.state) ? amount : -amount;
    if (way == 0) {
        m_passed[node] -= change;
    } else {
        const Arcs& arcs = arcsOf(frame.state);
        m_result.flows[arcs.edges[arcs.first[node] + way - 1]] += static_cast<int>(change);
    }
}

// Back to the last state to which more may come.
void BlockingFlow::pushToSink(std::int64_t amount) {
    m_result.total += amount;
    for (;;) {
        pushAlongWay(m_frames.back(), amount);
        if (m_frames.back().limit > 0) return;
        amount = m_frames.back().pushed;
        m_frames.pop_back();
    }
}

// Nothing leads on from the last state.
void BlockingFlow::retreat() {
    const Frame last = m_frames.back();
    m_frames.pop_back();
    if (m_frames.empty()) return;
    (m_frames.size() < m_meeting ? m_forward : m_backward).marks.unmark(last.state);
    pushAlongWay(m_frames.back(), last.pushed);
    ++m_nextWays[m_frames.back().state];
}

void BlockingFlow::findReached() {
    for (; m_forward.next < m_forward.queue.size(); ++m_forward.next) {
        const State state = m_forward.queue[m_forward.next];
        m_pulse.beat(1 + std::int64_t{arcsOf(state).degree(nodeOf(state))});
        forEachSuccessor(state, [this](State successor) { m_forward.reach(successor); });
    }
    std::vector<bool> isListed(m_network.out.nodeLimit());
    for (const State state : m_forward.queue) {
        if (isListed[nodeOf(state)]) continue;
        isListed[nodeOf(state)] = true;
        m_result.reached.push_back(nodeOf(state));
    }
}

}  // namespace

MaximumFlow maximumFlow(const FlowNetwork& network, Pulse& pulse) {
    return BlockingFlow(network, pulse).find();
}

}  // namespace rv
