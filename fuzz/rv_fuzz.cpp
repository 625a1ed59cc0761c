// Plays a script of bytes: graphs are built and changed, questions are put to all algorithms, whose answers
// must satisfy what certificates.h asks for and be those of fresh objects, and everything is destroyed in any
// order. No run may change a graph.
//
//   rv_fuzz fuzz/corpus -max_total_time=120

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/certificates.h"
#include "rv/foundation/graph_access.h"
#include "tests/algorithm_checks.h"

namespace rvfuzz {
namespace {

constexpr std::size_t kMostNodes = 14;
constexpr std::size_t kMostEdges = 40;

class Script {
public:
    Script(const std::uint8_t* data, std::size_t size) : m_data(data), m_end(data + size) {}

    bool isAtEnd() const { return m_data == m_end; }
    int byte() { return isAtEnd() ? 0 : *m_data++; }
    int below(int limit) { return byte() % limit; }
    bool oneIn(int count) { return below(count) == count - 1; }
    // Of a list; none when it is empty.
    template <class T>
    T* pick(const std::vector<T*>& list) {
        return list.empty() ? nullptr : list[static_cast<std::size_t>(below(static_cast<int>(list.size())))];
    }

    // Small, but now and then, when wild numbers are asked for, at an end of the range.
    int number() {
        constexpr int kLeast = std::numeric_limits<int>::min();
        constexpr int kMost = std::numeric_limits<int>::max();
        constexpr int kWild[] = {kLeast,    kLeast + 1,    -kMost / 2, -1,
                                 kMost / 2, kMost / 2 + 1, kMost - 1,  kMost};
        const int value = byte();
        if (m_isWild && value >= 192) return kWild[value % 8];
        return m_isSigned && value >= 160 ? -(value % 8) : value % 10;
    }
    void chooseNumbers() {
        m_isWild = oneIn(5);
        m_isSigned = oneIn(4);
    }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
    bool m_isWild = false;
    bool m_isSigned = false;
};

// All objects that are alive.
class World : rv::GraphObserver {
public:
    explicit World(Script& script) : script(script) {}
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    ~World() {
        while (!graphs.empty()) destroyGraph(graphs.back().get());
    }

    RVGraph* addGraph(bool withFactory) {
        if (factory == nullptr) factory = std::make_unique<RVAFactory>();
        graphs.emplace_back(withFactory ? factory->newGraph() : new RVGraph());
        rv::GraphAccess::addObserver(graphs.back().get(), this);
        return graphs.back().get();
    }
    void destroyGraph(const RVGraph* graph) {
        for (auto it = graphs.begin(); it != graphs.end(); ++it) {
            if (it->get() != graph) continue;
            const std::unique_ptr<RVGraph> dying = std::move(*it);
            graphs.erase(it);
            return;
        }
    }
    RVGraph* graph() {
        if (graphs.empty()) return nullptr;
        const auto choice = static_cast<std::size_t>(script.below(8));
        return graphs[choice < 6 ? 0 : choice % graphs.size()].get();
    }
    RVNode* addNode(RVGraph* to) {
        if (nodes.size() >= kMostNodes) return nullptr;
        RVNode* const node = to->addNode();
        const wchar_t name[] = {static_cast<wchar_t>(L'a' + m_named++ % 26), L'\0'};
        node->pNameString(name);
        nodes.push_back(node);
        return node;
    }
    void addEdge(RVGraph* to, RVNode* source, RVNode* target) {
        if (edges.size() >= kMostEdges) return;
        if (RVEdge* edge = to->addEdge(source, target)) edges.push_back(edge);
    }

    Script& script;
    std::unique_ptr<RVAFactory> factory;
    std::vector<std::unique_ptr<RVGraph>> graphs;
    std::vector<RVNode*> nodes;
    std::vector<RVEdge*> edges;
    int deaths = 0;  // of nodes, after which inputs must be told their nodes anew

private:
    void graphDies(RVGraph* graph) override {
        ++deaths;
        std::erase_if(nodes, [&](const RVNode* node) { return node->pHomeGraph() == graph; });
        std::erase_if(edges, [&](const RVEdge* edge) { return edge->pHomeGraph() == graph; });
    }
    void memberDies(RVGraphMember* member) override {
        ++deaths;
        std::erase(nodes, member);
        std::erase(edges, member);
    }
    void memberMoved(RVGraphMember*, RVGraph*, int) override {}

    int m_named = 0;
};

// All orders of a graph.
std::vector<const void*> ordersOf(const RVGraph* graph) {
    std::vector<const void*> all;
    for (const RVNode* node : *graph->pNodeList()) {
        all.push_back(node);
        for (const RVEdge* edge : *node->pOutEdgeList()) all.push_back(edge);
        all.push_back(nullptr);
        for (const RVEdge* edge : *node->pInEdgeList()) all.push_back(edge);
    }
    for (const RVEdge* edge : *graph->pEdgeList())
        all.insert(all.end(), {edge, edge->pSourceNode(), edge->pTargetNode()});
    return all;
}

// The lists of a graph agree with one another.
void requireConsistency(const RVGraph* graph) {
    std::multiset<const RVEdge*> out;
    std::multiset<const RVEdge*> in;
    int nodes = 0;
    for (const RVNode* node : *graph->pNodeList()) {
        RV_REQUIRE(node->pOwnerGraph() == graph);
        ++nodes;
        for (const RVEdge* edge : *node->pOutEdgeList()) {
            RV_REQUIRE(edge->pSourceNode() == node);
            out.insert(edge);
        }
        for (const RVEdge* edge : *node->pInEdgeList()) {
            RV_REQUIRE(edge->pTargetNode() == node);
            in.insert(edge);
        }
    }
    RV_REQUIRE(nodes == graph->numberOfNodes());
    std::multiset<const RVEdge*> all;
    for (const RVEdge* edge : *graph->pEdgeList()) {
        RV_REQUIRE(edge->pOwnerGraph() == graph);
        all.insert(edge);
    }
    RV_REQUIRE(all == out && all == in &&
               std::set<const RVEdge*>(all.begin(), all.end()).size() == all.size());
    RV_REQUIRE(static_cast<int>(all.size()) == graph->numberOfEdges());
}

void alter(World& world) {
    Script& script = world.script;
    RVGraph* const graph = world.graph();
    if (graph == nullptr) {
        world.addGraph(true);
        return;
    }
    const int choice = script.below(14);
    RVNode* const node = script.pick(world.nodes);
    RVEdge* const edge = script.pick(world.edges);
    switch (choice) {
        case 0:
            world.addNode(graph);
            break;
        case 1:
            world.addEdge(graph, node, script.pick(world.nodes));
            break;
        case 2:
            graph->removeNode(node);
            break;
        case 3:
            graph->insertNode(node);
            break;
        case 4:
            graph->removeEdge(edge);
            break;
        case 5:
            graph->insertEdge(edge, node, script.pick(world.nodes));
            break;
        case 6:
            if (edge != nullptr) edge->invertDirection();
            break;
        case 7:
            if (edge != nullptr) edge->changeSourceNode(node);
            break;
        case 8:
            if (edge != nullptr) edge->changeTargetNode(node);
            break;
        case 9:
            graph->discardNode(node);
            break;
        case 10:
            graph->discardEdge(edge);
            break;
        case 11:
            delete edge;
            break;
        case 12: {  // all nodes in or out
            const std::vector<RVNode*> all = world.nodes;
            const bool isIn = script.oneIn(2);
            for (RVNode* each : all) isIn ? graph->insertNode(each) : graph->removeNode(each);
            break;
        }
        default:
            if (script.oneIn(8)) world.destroyGraph(graph);
            if (world.graphs.size() < 3) world.addGraph(!script.oneIn(4));
            break;
    }
    for (const auto& each : world.graphs) requireConsistency(each.get());
}

// Answers whatever is asked.
class ScriptedData : public RVAlgorithmInputData {
public:
    ScriptedData(World& world, RVNodeDList* effects) : m_world(world), m_pEffects(effects) {}
    bool hasField(const char*) const override { return true; }
    bool hasNodeField(const char*) const override { return true; }
    bool hasEdgeField(const char*) const override { return true; }
    int intField(const char* name, RVGraphObject*) const override {
        const bool isFlag = std::string(name).find("irected") != std::string::npos;
        return isFlag ? (m_world.script.oneIn(4) ? 1 : 0) : m_world.script.number();
    }
    double doubleField(const char*, RVGraphObject*) const override { return m_world.script.below(9) / 8.0; }
    RVObject* pObjectField(const char* name, RVGraphObject*) const override {
        if (std::string(name) == "effectNodeList") return m_pEffects;
        return m_world.script.pick(m_world.nodes);
    }

private:
    World& m_world;
    RVNodeDList* m_pEffects;
};

// An algorithm and its data, each of which may be gone.
class Run {
public:
    Run() = default;
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    virtual ~Run() = default;
    virtual void ask(World& world) = 0;
    virtual void run(World& world) = 0;
    virtual void drop(int part) = 0;
};

template <class R>
class RunOf final : public Run {
    using Input = decltype(R::input);
    using Output = decltype(R::output);
    using Algorithm = decltype(R::algorithm);

public:
    explicit RunOf(World& world) { make(world); }

    void ask(World& world) override {
        Script& script = world.script;
        make(world);
        m_deaths = world.deaths;
        script.chooseNumbers();
        RVGraph* const graph = script.oneIn(20) ? nullptr : world.graph();
        m_input->pAssociatedGraph(graph);
        m_effects.deleteAllCells();
        for (int i = script.below(4); i > 0; --i) m_effects.appendNode(script.pick(world.nodes));
        const ScriptedData data(world, script.oneIn(8) ? nullptr : &m_effects);
        if (!script.oneIn(3)) m_input->copyData(&data);
        setNodes(world);
        if (graph != nullptr) setNumbers(script, graph);
        setOptions(world);
    }

    void run(World& world) override {
        // What has been destroyed must be asked about no more.
        const bool isStale =
            m_input != nullptr && m_input->pAssociatedGraph() != nullptr && m_deaths != world.deaths;
        if (m_input == nullptr || m_output == nullptr || m_algorithm == nullptr) {
            if (m_algorithm != nullptr && !isStale) RV_REQUIRE(m_algorithm->run() != RV_NO_ERROR);
            return;
        }
        if (isStale) ask(world);
        const auto ordersBefore = orders(world);
        const RVServiceErrorCodeEnum code = m_algorithm->run();
        RV_REQUIRE(orders(world) == ordersBefore);
        compareWithFresh(code, m_input->pAssociatedGraph());
        RV_REQUIRE(orders(world) == ordersBefore);
        shownGraph = m_input->pAssociatedGraph();
        if (code == RV_NO_ERROR) certify(Tag<R>(), *m_input, *m_output, m_input->pAssociatedGraph());
        shownGraph = nullptr;
    }

    void drop(int part) override {
        if (part == 0) m_input.reset();
        if (part == 1) m_output.reset();
        if (part == 2) m_algorithm.reset();
        if (m_algorithm == nullptr) return;
        m_algorithm->pInputData(m_input.get());
        m_algorithm->pOutputData(m_output.get());
    }

private:
    static std::vector<std::vector<const void*>> orders(const World& world) {
        std::vector<std::vector<const void*>> all;
        for (const auto& graph : world.graphs) all.push_back(ordersOf(graph.get()));
        return all;
    }

    // Whatever has been dropped; what is left is kept.
    void make(World& world) {
        if (m_input == nullptr) m_input = std::make_unique<Input>(world.graph());
        if (m_output == nullptr) m_output = std::make_unique<Output>();
        if (m_algorithm == nullptr) m_algorithm = std::make_unique<Algorithm>();
        m_algorithm->pInputData(m_input.get());
        m_algorithm->pOutputData(m_output.get());
    }

    void compareWithFresh(int code, const RVGraph* graph) {
        Input input(static_cast<RVGraph*>(nullptr));
        input = *m_input;
        Output output;
        Algorithm algorithm;
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
        if constexpr (requires { algorithm.storeDistances(1); }) algorithm.storeDistances(m_isDistance);
        RV_REQUIRE(algorithm.run() == code);
        if (code == RV_NO_ERROR && graph->numberOfNodes() > 0)
            RV_REQUIRE(rvtest::describe(output, graph) == rvtest::describe(*m_output, graph));
        if constexpr (std::is_copy_assignable_v<Output>) *m_output = output;
    }

    void setNodes(World& world) {
        Script& script = world.script;
        Input& input = *m_input;
        if constexpr (requires { input.pStartNode(nullptr); }) input.pStartNode(script.pick(world.nodes));
        if constexpr (requires { input.pFinishNode(nullptr); }) input.pFinishNode(script.pick(world.nodes));
        if constexpr (requires { input.pSourceNode(nullptr); }) input.pSourceNode(script.pick(world.nodes));
        if constexpr (requires { input.pTargetNode(nullptr); }) input.pTargetNode(script.pick(world.nodes));
        if constexpr (requires { input.pSinkNode(nullptr); }) input.pSinkNode(script.pick(world.nodes));
        if constexpr (requires { input.pEffectNodeList(nullptr); })
            input.pEffectNodeList(script.oneIn(8) ? nullptr : &m_effects);
        if constexpr (requires { input.pStartNode(nullptr); } && std::is_same_v<R, rvtest::BreadthFirst>) {
            if (script.oneIn(3)) input.pStartNode(nullptr);
        }
        if constexpr (requires { input.pCandidateNodeList(); }) {
            input.pCandidateNodeList()->deleteAllCells();
            if (input.pAssociatedGraph() == nullptr) return;
            rvtest::TopologicalSort sort(input.pAssociatedGraph());
            if (sort() == RV_NO_ERROR) *input.pCandidateNodeList() = *sort.output.pNodeList();
            if (script.oneIn(4)) input.pCandidateNodeList()->appendNode(script.pick(world.nodes));
        }
        if constexpr (requires { input.getConstraintList(); }) {
            input.getConstraintList()->deleteAllCells();
            for (int i = script.below(4); i > 0; --i) {
                RVClusteringConstraint& constraint = m_constraints[static_cast<std::size_t>(i)];
                constraint = RVClusteringConstraint();
                constraint.type(static_cast<RVClusteringConstraintTypeEnum>(script.below(3)));
                for (int j = script.below(4); j > 0; --j) constraint.addNode(script.pick(world.nodes));
                input.addConstraint(&constraint);
            }
        }
    }

    // Of some nodes and edges; the others keep what they had.
    void setNumbers(Script& script, const RVGraph* graph) {
        Input& input = *m_input;
        if (script.oneIn(4)) return;
        for (RVNode* node : *graph->pNodeList()) {
            [[maybe_unused]] const auto number = [&] { return node == nullptr ? 0 : script.number(); };
            if constexpr (requires { input.cost(node, 0); }) input.cost(node, number());
            if constexpr (requires { input.capacity(node, 0); }) input.capacity(node, number());
            if constexpr (requires { input.weight(node, 0); }) input.weight(node, number());
            if constexpr (requires { input.setWeight(node, 0); }) input.setWeight(node, number());
            if constexpr (requires { input.setX(node, 0.0); }) input.setX(node, number());
        }
        for (RVEdge* edge : *graph->pEdgeList()) {
            [[maybe_unused]] const auto number = [&] { return edge == nullptr ? 0 : script.number(); };
            if constexpr (requires { input.cost(edge, 0); }) input.cost(edge, number());
            if constexpr (requires { input.capacity(edge, 0); }) input.capacity(edge, number());
            if constexpr (requires { input.setCost(edge, 0); }) input.setCost(edge, number());
            if constexpr (requires { input.undirected(edge, 0); })
                input.undirected(edge, script.oneIn(4) ? 1 : 0);
        }
    }

    void setOptions(World& world) {
        Script& script = world.script;
        Input& input = *m_input;
        const int choice = script.byte();
        const int number = script.number();
        if constexpr (requires { input.undirected(1); }) input.undirected(choice % 8 == 0 ? number : 0);
        if constexpr (requires { input.directed(1); }) input.directed(choice % 2);
        if constexpr (requires { input.range(1); }) input.range(choice % 2 == 0 ? -1 : number);
        if constexpr (requires { input.reversed(1); }) input.reversed(choice / 2 % 2);
        if constexpr (requires { input.threshold(1.0); }) input.threshold(choice % 9 / 8.0);
        if constexpr (requires { input.desiredFlow(1); })
            input.desiredFlow(choice % 4 == 0 ? rvtest::kInfinite : number);
        if constexpr (requires { input.nodeDisjointPaths(1); }) input.nodeDisjointPaths(choice % 2);
        if constexpr (requires { input.quality(1); }) input.quality(choice % 4);
        if constexpr (requires { input.setQuality(1); }) input.setQuality(choice % 4);
        if constexpr (requires { input.hasInitialValue(1); }) input.hasInitialValue(choice % 2);
        if constexpr (requires { input.minClusterCount(1); }) {
            input.minClusterCount(choice % 5);
            input.maxClusterCount(choice % 3 == 0 ? number : Input::kManyClusters);
            input.balanceFactor(script.number() / 2.0);
            input.clusterSizeFactor(script.number() / 2.0);
        }
        if constexpr (requires { m_algorithm->useOriginalGraph(1); })
            m_algorithm->useOriginalGraph(choice / 4 % 2);
        if constexpr (requires { m_algorithm->storeDistances(1); })
            m_algorithm->storeDistances(m_isDistance = choice / 8 % 2);
    }

    std::unique_ptr<Input> m_input;
    std::unique_ptr<Output> m_output;
    std::unique_ptr<Algorithm> m_algorithm;
    RVNodeDList m_effects;
    std::array<RVClusteringConstraint, 4> m_constraints;
    int m_deaths = 0;
    int m_isDistance = 0;
};

template <class... Rs>
std::unique_ptr<Run> newRun(testing::Types<Rs...>, World& world) {
    using Make = std::unique_ptr<Run> (*)(World&);
    constexpr Make makers[] = {
        [](World& w) -> std::unique_ptr<Run> { return std::make_unique<RunOf<Rs>>(w); }...};
    return makers[world.script.below(sizeof...(Rs))](world);
}

void play(Script& script) {
    std::array<std::unique_ptr<Run>, 3> runs;
    World world(script);
    RVGraph* const graph = world.addGraph(true);
    for (int i = script.below(kMostNodes); i > 0; --i) world.addNode(graph);
    for (int i = script.below(kMostEdges); i > 0; --i) {
        RVNode* const source = script.pick(world.nodes);
        world.addEdge(graph, source, script.pick(world.nodes));
    }
    for (int steps = 0; steps < 60 && !script.isAtEnd(); ++steps) {
        std::unique_ptr<Run>& run = runs[static_cast<std::size_t>(script.below(3))];
        switch (script.below(8)) {
            case 0:
            case 1:
            case 2:
                run = newRun(rvtest::Algorithms(), world);
                run->ask(world);
                run->run(world);
                break;
            case 3:
                if (run != nullptr) run->ask(world);
                [[fallthrough]];
            case 4:
                if (run != nullptr) run->run(world);
                break;
            case 5:
                if (run != nullptr) run->drop(script.below(3));
                break;
            default:
                alter(world);
                break;
        }
        if (script.oneIn(64)) world.factory.reset();
    }
    // Now everything goes, in the order of the script.
    for (int i = script.below(8); i > 0; --i) {
        std::unique_ptr<Run>& run = runs[static_cast<std::size_t>(script.below(3))];
        if (script.oneIn(2) && run != nullptr) run->drop(script.below(3));
        if (script.oneIn(3) && !world.graphs.empty()) world.destroyGraph(world.graphs.front().get());
        if (script.oneIn(4)) world.factory.reset();
    }
    if (script.oneIn(2)) runs = {};
}

}  // namespace
}  // namespace rvfuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    rvfuzz::Script script(data, size);
    rvfuzz::play(script);
    return 0;
}
