// Records, columns and mappings of data objects: what they hold, and who outlives whom.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

#include "rv/analysis.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Counts the records that are alive.
struct Counted {
    Counted() { ++alive; }
    Counted(const Counted&) { ++alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --alive; }
    static inline int alive = 0;
};

// Records with a number; those of the first two classes are counted.
template <class Base, class Extra>
class Numbered : public Base {
public:
    using Base::Base;
    int data() const { return m_value; }
    int data(int value) { return m_value = value; }

private:
    int m_value = 0;
    [[no_unique_address]] Extra m_extra;
};
struct Nothing {};

class NodeMark : public Numbered<RVNodeAnalysisExtension, Counted> {
    RV_OBJECT(NodeMark)
public:
    using Numbered::Numbered;
    NodeMark() = default;
};
RV_OBJECT_IMPL(NodeMark)

class EdgeMark : public Numbered<RVEdgeAnalysisExtension, Counted> {
    RV_OBJECT(EdgeMark)
public:
    using Numbered::Numbered;
    EdgeMark() = default;
};
RV_OBJECT_IMPL(EdgeMark)

class PlainEdgeMark : public Numbered<RVEdgeAnalysisExtension, Nothing> {
    RV_PLAIN_RECORD(PlainEdgeMark)
public:
    using Numbered::Numbered;
    PlainEdgeMark() = default;
};
RV_OBJECT_IMPL(PlainEdgeMark)

// A number for every node and edge, in records that are on the heap, as a caller makes them, or in the data's
// own memory.
template <class NodeRecord, class EdgeRecord, bool kHeap>
class Notes : public RVAnalysisInputData {
public:
    using RVAnalysisInputData::RVAnalysisInputData;
    static constexpr bool kCounts = std::is_same_v<NodeRecord, NodeMark>;
    static constexpr bool kMakesRecords = true;

    int value(RVGraphMember* member) const {
        return member->isNode() ? constRecord<NodeRecord>(member).data()
                                : constRecord<EdgeRecord>(member).data();
    }
    // Some records come to own a list.
    void value(RVGraphMember* member, int number) {
        auto* ofNode = member->isNode() ? record<NodeRecord>(member) : nullptr;
        auto* ofEdge = member->isEdge() ? record<EdgeRecord>(member) : nullptr;
        ofNode != nullptr ? ofNode->data(number) : ofEdge->data(number);
        if (number % 4 != 0) return;
        (ofNode != nullptr ? ofNode->pReflexiveEdgeList() : ofEdge->pMultiEdgeList())->appendEdge(nullptr);
    }

protected:
    RVNodeAlgorithmExtension* newNodeAlgorithmExtension(RVNode* node) override {
        if constexpr (kHeap) return new NodeRecord(node, this);
        return newRecord<NodeRecord>(node);
    }
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge* edge) override {
        if constexpr (kHeap) return new EdgeRecord(edge, this);
        return newRecord<EdgeRecord>(edge);
    }
};
using HeapNotes = Notes<NodeMark, EdgeMark, true>;
using SlabNotes = Notes<NodeMark, EdgeMark, false>;
using PlainNotes = Notes<RVNodeExtensionInteger, PlainEdgeMark, false>;  // released without a visit

// The same with columns, for which records stand when they come, and another number in columns of its own.
class ColumnNotes : public RVAnalysisInputData {
    RV_DATA_OBJECT(ColumnNotes)
    RV_NODE_RECORDS(NodeMark)
    RV_EDGE_RECORDS(EdgeMark)
public:
    ColumnNotes() = default;
    using RVAnalysisInputData::RVAnalysisInputData;
    static constexpr bool kCounts = true;
    static constexpr bool kMakesRecords = false;

    int value(RVGraphMember* member) const { return get(member, m_nodes, m_edges); }
    int value(RVGraphMember* member, int number) { return store(member, number, m_nodes, m_edges); }
    int other(RVGraphMember* member) const { return get(member, m_otherNodes, m_otherEdges); }
    int other(RVGraphMember* member, int number) { return store(member, number, m_otherNodes, m_otherEdges); }
    std::size_t negatives() const { return m_nodes.negatives() + m_edges.negatives(); }
    std::size_t otherNegatives() const { return m_otherNodes.negatives() + m_otherEdges.negatives(); }

    // The numbers of a graph's nodes at once. Attached nodes that are not numbered have the number as it is.
    void assign(RVGraph* graph, const std::vector<int>& numbers) {
        rv::Buffer<int> buffer(numbers.begin(), numbers.end());
        m_nodes.assign(graph, std::move(buffer));
    }
    std::vector<int> values(const RVGraph* graph) const {
        rv::Buffer<int> space;
        const std::span<const int> all = m_nodes.values(graph, space);
        return {all.begin(), all.end()};
    }

private:
    static int get(RVGraphMember* member, const rv::NodeCosts& nodes, const rv::EdgeCosts& edges) {
        return member->isNode() ? nodes.get(static_cast<RVNode*>(member))
                                : edges.get(static_cast<RVEdge*>(member));
    }
    static int store(RVGraphMember* member, int number, rv::NodeCosts& nodes, rv::EdgeCosts& edges) {
        return member->isNode() ? nodes.store(static_cast<RVNode*>(member), number)
                                : edges.store(static_cast<RVEdge*>(member), number);
    }

    rv::NodeCosts m_nodes{this, &NodeRecord::data, &NodeRecord::data};
    rv::NodeCosts m_otherNodes{this};
    rv::EdgeCosts m_edges{this, &EdgeRecord::data, &EdgeRecord::data};
    rv::EdgeCosts m_otherEdges{this};
};
RV_OBJECT_IMPL(ColumnNotes)

// Those of a caller, who makes the records of nodes.
class CallersNotes : public ColumnNotes {
public:
    using ColumnNotes::ColumnNotes;
    static constexpr bool kMakesRecords = true;

protected:
    RVNodeAlgorithmExtension* newNodeAlgorithmExtension(RVNode* node) override {
        return new NodeMark(node, this);
    }
};

template <class T>
class Records : public testing::Test {};
using AllNotes = testing::Types<HeapNotes, SlabNotes, PlainNotes, ColumnNotes, CallersNotes>;
TYPED_TEST_SUITE(Records, AllNotes);

TYPED_TEST(Records, AreMadeOnceAndStay) {
    TestGraph g("a->b");
    TypeParam data(g);
    RVNode* const b = g.node("b");
    RVEdge* const edge = g.edge("a->b");
    const int preset = data.value(edge);
    RVAlgorithmExtension* const ofNode = data.pAlgorithmExtension(b);
    RVAlgorithmExtension* const ofEdge = data.pAlgorithmExtension(edge);
    data.value(edge, preset + 1);
    g->removeEdge(edge);
    g->removeNode(b);
    EXPECT_EQ(data.pAlgorithmExtension(b), ofNode);
    EXPECT_EQ(data.pAlgorithmExtension(edge), ofEdge);
    EXPECT_EQ(data.pAlgorithmExtension(g.get()), nullptr);
    EXPECT_EQ(data.pAlgorithmExtension(nullptr), nullptr);
    delete ofEdge;
    EXPECT_EQ(data.pExistingExtension(edge), nullptr);
    EXPECT_EQ(data.value(edge), preset);
    data.deleteDataReferences(nullptr);
    EXPECT_EQ(data.pExistingExtension(b), ofNode);
}

// Data, graphs and their objects under random changes, beside a model that knows objects by number. All of
// them come back at the same addresses all the time. The edges are loops at a node of each graph that stays.
template <class Notes>
class World {
public:
    explicit World(unsigned seed) : m_random(seed) {
        for (int i = 0; i < kCount; ++i) newGraph(i);
        for (int i = 0; i < kCount; ++i) newData(i);
    }
    ~World() {
        while (below(6) != 0) below(2) == 0 ? m_data[below(kCount)].reset() : m_graphs[below(kCount)].reset();
    }

    void step() {
        const int roll = below(24);
        const int graph = below(kCount);
        const int data = below(kCount);
        const int i = below(count() + 1);
        if (roll < 2) return m_members.push_back(m_graphs[graph]->addNode());
        if (roll < 4) return m_members.push_back(m_graphs[graph]->addEdge(m_hubs[graph], m_hubs[graph]));
        if (roll == 4) return newGraph(graph);
        if (roll == 5) return newData(data);
        if (roll == 6) return copyGraph(data, graph, (graph + 1 + below(2)) % kCount);
        if (roll == 7) return copyData(data, below(kCount));
        if (roll == 8) return deleteReferences(data, graph);
        if (!isAlive(i)) return;
        if (roll == 9) return discard(i);
        if (roll < 12) return detach(at(i));
        if (roll < 14) return insert(at(i), graph);
        if (roll < 18) return map(data, i, below(count()), roll != 14, roll != 15);
        m_models[data].values[i] = kHasColumns ? below(1000) - 500 : below(1000);
        if (Notes::kMakesRecords) m_models[data].records.insert(i);
        m_data[data]->value(at(i), m_models[data].values[i]);
    }
    // What only columns have.
    void stepOfColumns() {
        const int data = below(kCount);
        const int graph = below(kCount);
        const int i = below(count() + 1);
        const int roll = below(4);
        if (roll == 0) return assignAll(data, graph);
        if (!isAlive(i)) return;
        Model& model = m_models[data];
        if (roll == 1) {
            model.others[i] = m_data[data]->other(at(i), below(1000) - 500);
        } else if (roll == 2) {
            ASSERT_NE(m_data[data]->pAlgorithmExtension(at(i)), nullptr);
            model.records.insert(i);
        } else if (model.records.erase(i) != 0) {
            delete m_data[data]->pExistingExtension(at(i));
            model.values.erase(i);
        }
    }

    void expectModel() const {
        int records = 0;
        for (int d = 0; d < kCount; ++d) {
            const Model& model = m_models[d];
            const Notes& data = *m_data[d];
            records += static_cast<int>(model.records.size());
            expectColumns(data, model);
            ASSERT_EQ(data.pAssociatedGraph(), model.graph < 0 ? nullptr : &*m_graphs[model.graph]);
            for (int i = 0; i < count(); ++i) {
                if (!isAlive(i)) continue;
                RVGraphMember* const member = at(i);
                const auto value = model.values.find(i);
                ASSERT_EQ(copyOf(data, member), imageOf(model.copies, i)) << d << " of " << i;
                ASSERT_EQ(originalOf(data, member), imageOf(model.originals, i)) << d << " of " << i;
                const bool hasRecord = model.records.count(i) != 0;
                ASSERT_EQ(data.pExistingExtension(member) != nullptr, hasRecord) << d << " of " << i;
                if (Notes::kMakesRecords && !hasRecord) continue;  // reading makes one
                ASSERT_EQ(data.value(member), value == model.values.end() ? 0 : value->second)
                    << d << " of " << i;
            }
        }
        ASSERT_EQ(Counted::alive - m_aliveBefore, Notes::kCounts ? records : 0);
    }

private:
    static constexpr int kCount = 3;  // of graphs and of data
    static constexpr bool kHasColumns = std::is_base_of_v<ColumnNotes, Notes>;
    using Mapping = std::map<int, int>;
    struct Model {
        int graph = -1;
        Mapping values;
        Mapping others;         // that are in columns only
        std::set<int> records;  // the objects that have one
        Mapping copies;
        Mapping originals;
    };
    static RVNode* node(RVGraphMember* member) { return static_cast<RVNode*>(member); }
    static RVEdge* edge(RVGraphMember* member) { return static_cast<RVEdge*>(member); }

    int count() const { return static_cast<int>(m_members.size()); }
    RVGraphMember* at(int i) const { return m_members[static_cast<std::size_t>(i)]; }
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    bool isAlive(int i) const { return i < count() && at(i) != nullptr; }
    bool isOf(int i, int graph) const { return isAlive(i) && at(i)->pHomeGraph() == &*m_graphs[graph]; }
    template <class F>
    void forEachOf(int graph, F f) {
        for (int i = count() - 1; i >= 0; --i) {
            if (isOf(i, graph)) f(i);
        }
    }
    RVGraphMember* imageOf(const Mapping& mapping, int i) const {
        return at(mapping.count(i) == 0 ? i : mapping.at(i));
    }
    static RVGraphMember* copyOf(const Notes& data, RVGraphMember* member) {
        if (member->isNode()) return data.pCopyNode(node(member));
        return data.pCopyEdge(edge(member));
    }
    static RVGraphMember* originalOf(const Notes& data, RVGraphMember* member) {
        if (member->isNode()) return data.pOriginalNode(node(member));
        return data.pOriginalEdge(edge(member));
    }

    void newGraph(int graph) {
        if (m_graphs[graph]) forEachOf(graph, [this](int i) { forget(i); });
        m_graphs[graph].emplace(&m_factory);
        m_hubs[graph] = m_graphs[graph]->addNode();
        for (Model& model : m_models) model.graph = model.graph == graph ? -1 : model.graph;
    }
    void newData(int data) {
        m_models[data] = Model{below(kCount), {}, {}, {}, {}, {}};
        m_data[data].emplace(&*m_graphs[m_models[data].graph]);
    }
    void copyData(int data, int source) {
        if (data != source && below(2) == 0) {
            m_data[data].emplace(*m_data[source]);
        } else {
            *m_data[data] = *m_data[source];
        }
        m_models[data] = m_models[source];
    }
    void deleteReferences(int data, int graph) {
        m_data[data]->deleteDataReferences(&*m_graphs[graph]);
        forEachOf(graph, [&](int i) {
            m_models[data].values.erase(i);
            m_models[data].records.erase(i);
        });
    }
    // Numbers for the attached nodes of a graph that have none.
    void assignAll(int data, int graph) {
        deleteReferences(data, graph);
        std::vector<int> numbers(static_cast<std::size_t>(m_graphs[graph]->nodeIndexLimit()));
        forEachOf(graph, [&](int i) {
            if (!at(i)->isNode() || at(i)->pOwnerGraph() == nullptr || below(3) == 0) return;
            numbers[rv::placeOf(at(i))] = -1;  // for the time being
            m_models[data].values[i] = 1 + below(1000);
            if (Notes::kMakesRecords) m_models[data].records.insert(i);
        });
        m_data[data]->assign(&*m_graphs[graph], numbers);
        forEachOf(graph, [&](int i) {
            if (at(i)->isNode() && m_models[data].values.count(i) != 0)
                numbers[rv::placeOf(at(i))] = m_models[data].values.at(i);
        });
        m_data[data]->assign(&*m_graphs[graph], numbers);
    }
    void expectColumns(const Notes& data, const Model& model) const {
        if constexpr (kHasColumns) {
            const auto negatives = [](const Mapping& values, const std::set<int>& except) {
                return static_cast<std::size_t>(
                    std::count_if(values.begin(), values.end(), [&except](const auto& value) {
                        return value.second < 0 && except.count(value.first) == 0;
                    }));
            };
            ASSERT_EQ(data.negatives(), negatives(model.values, model.records));
            ASSERT_EQ(data.otherNegatives(), negatives(model.others, {}));
            for (int i = 0; i < count(); ++i) {
                if (!isAlive(i)) continue;
                ASSERT_EQ(data.other(at(i)), model.others.count(i) == 0 ? 0 : model.others.at(i)) << i;
            }
            if (Notes::kMakesRecords) return;
            for (int graph = 0; graph < kCount; ++graph) {
                const std::vector<int> values = data.values(&*m_graphs[graph]);
                ASSERT_LE(static_cast<int>(values.size()), m_graphs[graph]->nodeIndexLimit());
                for (RVNode* node : *m_graphs[graph]->pNodeList()) {
                    const bool isInside = rv::placeOf(node) < values.size();
                    ASSERT_EQ(isInside ? values[rv::placeOf(node)] : 0, data.value(node));
                }
            }
        }
    }
    void copyGraph(int data, int original, int copy) {
        newGraph(copy);
        m_graphs[copy]->discardNode(m_hubs[copy]);
        forEachOf(original, [&](int i) { insert(at(i), original); });
        m_data[data]->copyGraph(&*m_graphs[original], &*m_graphs[copy]);
        m_hubs[copy] = m_data[data]->pCopyNode(m_hubs[original]);
        forEachOf(original, [&](int i) {
            m_models[data].copies[i] = count();
            m_models[data].originals[count()] = i;
            m_members.push_back(copyOf(*m_data[data], at(i)));
        });
    }

    void forget(int i) {
        m_members[static_cast<std::size_t>(i)] = nullptr;
        for (Model& model : m_models) {
            model.values.erase(i);
            model.others.erase(i);
            model.records.erase(i);
            for (Mapping* mapping : {&model.copies, &model.originals}) {
                std::erase_if(*mapping,
                              [i](const auto& entry) { return entry.first == i || entry.second == i; });
            }
        }
    }
    void discard(int i) {
        RVGraphMember* const member = at(i);
        forget(i);
        delete member;
    }
    static void detach(RVGraphMember* member) {
        if (member->isNode()) member->pHomeGraph()->removeNode(node(member));
        if (member->isEdge()) member->pHomeGraph()->removeEdge(edge(member));
    }
    // Back into its graph, or into another one.
    void insert(RVGraphMember* member, int graph) {
        detach(member);
        if (member->isNode()) m_graphs[graph]->insertNode(node(member));
        if (member->isEdge()) m_graphs[graph]->insertEdge(edge(member), m_hubs[graph], m_hubs[graph]);
    }
    // To another object of the kind, or to none.
    void map(int data, int from, int to, bool copies, bool originals) {
        RVGraphMember* const member = at(from);
        RVGraphMember* const image = at(to);
        if (image != nullptr && image->isNode() != member->isNode()) return;
        Notes& notes = *m_data[data];
        for (auto [wanted, mapping] :
             {std::pair(copies, &m_models[data].copies), std::pair(originals, &m_models[data].originals)}) {
            if (wanted) mapping->erase(from);
            if (wanted && image != nullptr) mapping->emplace(from, to);
        }
        const auto expectImage = [image](const RVGraphMember* given) { EXPECT_EQ(given, image); };
        if (copies && member->isNode()) expectImage(notes.pCopyNode(node(member), node(image)));
        if (copies && member->isEdge()) expectImage(notes.pCopyEdge(edge(member), edge(image)));
        if (originals && member->isNode()) expectImage(notes.pOriginalNode(node(member), node(image)));
        if (originals && member->isEdge()) expectImage(notes.pOriginalEdge(edge(member), edge(image)));
    }

    const int m_aliveBefore = Counted::alive;
    std::mt19937 m_random;
    RVAFactory m_factory;
    std::optional<RVGraph> m_graphs[kCount];
    RVNode* m_hubs[kCount] = {};
    std::optional<Notes> m_data[kCount];
    Model m_models[kCount];
    std::vector<RVGraphMember*> m_members;  // none where one has died
};

TYPED_TEST(Records, FollowAModelThroughRandomChanges) {
    const TestGraph g("a->a");
    const TypeParam data(g);
    EXPECT_EQ(data.value(g.node("a")) + data.value(g.edge("a->a")), 0);  // makes what absent records read as
    const int aliveBefore = Counted::alive;
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        auto world = std::make_unique<World<TypeParam>>(seed);
        for (int i = 0; i < 120; ++i) {
            world->step();
            if constexpr (std::is_base_of_v<ColumnNotes, TypeParam>) world->stepOfColumns();
            world->expectModel();
            if (this->HasFailure()) FAIL() << "in step " << i;
        }
        world.reset();
        ASSERT_EQ(Counted::alive, aliveBefore);
    }
}

TEST(Columns, EndByAssignmentThroughABase) {
    const TestGraph g("a->b");
    ColumnNotes data(g);
    data.value(g.node("a"), 3);
    data.other(g.edge("a->b"), -4);
    const RVAnalysisInputData plain(g);
    static_cast<RVAnalysisInputData&>(data) = plain;
    EXPECT_EQ(data.value(g.node("a")), 0);
    EXPECT_EQ(data.other(g.edge("a->b")), 0);
    EXPECT_EQ(data.otherNegatives(), 0U);
}

// Neither a graph that dies nor a node that is discarded looks at all others: this would take very long.
TEST(Mappings, BearManyGraphsAndDiscards) {
    constexpr int kMany = 20000;
    RVAFactory factory;
    RVAlgorithmData data;
    const std::unique_ptr<RVGraph> hub(factory.newGraph());
    const std::unique_ptr<RVGraph> twins(factory.newGraph());
    std::vector<std::unique_ptr<RVGraph>> graphs;
    for (int i = 0; i < kMany; ++i) {
        RVNode* const node = hub->addNode();
        graphs.emplace_back(factory.newGraph());
        for (RVGraph* graph : {twins.get(), graphs.back().get()}) {
            RVNode* const copy = graph->addNode();
            data.pOriginalNode(graph->addNode(), node);  // a stray
            data.pCopyNode(node, copy);
            data.pOriginalNode(copy, node);
        }
    }
    RVNode* const second = hub->pNodeList()->pNodeInPosition(2);
    EXPECT_EQ(data.pCopyNode(second), graphs[1]->pFirstNode());
    EXPECT_EQ(data.pCopyNode(nullptr, second), second);
    EXPECT_EQ(data.pCopyNode(nullptr), nullptr);
    for (auto& graph : graphs) graph.reset();
    EXPECT_EQ(data.pCopyNode(second), second);
    EXPECT_EQ(data.pOriginalNode(twins->pNodeList()->pNodeInPosition(3)), second);
    for (int i = 0; i < kMany; ++i) twins->discardNode(twins->pFirstNode());
    EXPECT_EQ(data.pOriginalNode(twins->pLastNode()), hub->pLastNode());
}

TEST(RecordLists, HaveTheNewestDataFirst) {
    TestGraph g("a->b");
    const HeapNotes data[] = {HeapNotes(g), HeapNotes(g), HeapNotes(g)};
    for (RVGraphMember* member : std::initializer_list<RVGraphMember*>{g.node("a"), g.edge("a->b")}) {
        for (const int i : {1, 2, 0}) data[i].pAlgorithmExtension(member);
        const RVAlgorithmExtension* record = member->pAnalysisExtensions()->pFirstExtension();
        for (const int i : {2, 1, 0}) {
            EXPECT_EQ(std::exchange(record, record->pNextExtension())->pData(), &data[i]) << i;
        }
        EXPECT_EQ(record, nullptr);
    }
}

// The data of a run on whose edges another default stands, or no record at all.
class UndirectedData : public RVAnalysisInternalData {
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge* edge) override {
        auto* record = new RVEdgeAnalysisExtension(edge, this);
        record->directed(0);
        return record;
    }
};
class RecordlessData : public RVAnalysisInternalData {
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge*) override { return nullptr; }
};

TEST(InternalData, ReadsDefaultsWithoutMakingRecords) {
    TestGraph g("a->b");
    RVEdge* const edge = g.edge("a->b");
    const RVAnalysisInternalData library;
    const UndirectedData undirected;
    const RecordlessData recordless;
    const struct {
        const RVAnalysisInternalData& data;
        int directed;
        bool makesRecord;
    } cases[] = {{library, 1, false}, {undirected, 0, true}, {recordless, 1, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.data.directed(edge), c.directed);
        EXPECT_EQ(c.data.dummyEdge(edge), 0);
        EXPECT_EQ(c.data.removedAsMultiEdge(edge), 0);
        EXPECT_EQ(c.data.pExistingExtension(edge) != nullptr, c.makesRecord);
        EXPECT_EQ(c.data.directed(nullptr), 1);
        EXPECT_EQ(c.data.pMultiEdgeList(nullptr), nullptr);
    }
    EXPECT_EQ(library.pMultiEdgeList(edge)->length(), 0);
    EXPECT_EQ(library.pMultiEdgeList(edge), library.pMultiEdgeList(edge));
}

// Its records and its own fields belong to the run.
TEST(InternalData, IsCopiedWithItsDefaults) {
    TestGraph g("a->b b->b");
    RVEdge* const edge = g.edge("a->b");
    RVAnalysisInternalData data;
    data.pAssociatedGraph(g);
    data.returnCode(RV_NEGATIVE_CYCLE);
    data.pDisconnectedNodeList()->appendNode(g.node("a"));
    data.pReflexiveEdgeList(g.node("b"))->appendEdge(g.edge("b->b"));
    data.pMultiEdgeList(edge)->appendEdge(edge);
    data.directed(edge, 0);
    data.dummyEdge(edge, 5);
    data.removedAsMultiEdge(edge, 1);
    const std::unique_ptr<RVAnalysisInternalData> copy(data.cloneObject());
    EXPECT_EQ(copy->pAssociatedGraph(), g.get());
    EXPECT_EQ(copy->returnCode(), RV_NO_ERROR);
    EXPECT_EQ(copy->directed(edge) + copy->dummyEdge(edge) + copy->removedAsMultiEdge(edge), 1);
    EXPECT_EQ(copy->pDisconnectedNodeList()->length() + copy->pReflexiveEdgeList(g.node("b"))->length() +
                  copy->pMultiEdgeList(edge)->length(),
              0);
    EXPECT_EQ(data.dummyEdge(edge), 5);
}

TEST(SecondaryGraphs, DieWithTheirDataUnlessTakenOut) {
    TestGraph g("a");
    TestGraph graphs[4] = {TestGraph("a->b"), TestGraph("c"), TestGraph("d"), TestGraph("e")};
    const RVAnalysisInputData watches[4] = {RVAnalysisInputData(graphs[0]), RVAnalysisInputData(graphs[1]),
                                            RVAnalysisInputData(graphs[2]), RVAnalysisInputData(graphs[3])};
    const auto expectAlive = [&](const std::vector<bool>& alive) {
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(watches[i].pAssociatedGraph() != nullptr, alive[i]) << i;
    };
    std::unique_ptr<RVGraph> kept;
    {
        HeapNotes data(g);
        for (TestGraph& graph : graphs) {
            data.value(graph->pFirstNode(), 3);
            data.pSecondaryGraphs()->appendGraph(graph.release().release());
        }
        data.pAssociatedGraph(data.pSecondaryGraphs()->pLastGraph());
        expectAlive({true, true, true, true});
        {
            const HeapNotes copy(data);
            EXPECT_EQ(copy.pSecondaryGraphs()->length(), 0);
            EXPECT_EQ(copy.value(data.pSecondaryGraphs()->pFirstGraph()->pFirstNode()), 3);
        }
        delete data.pSecondaryGraphs()->pGraphInPosition(2);
        expectAlive({true, false, true, true});
        EXPECT_EQ(data.pSecondaryGraphs()->length(), 3);
        kept.reset(data.pSecondaryGraphs()->pFirstGraph());
        delete data.pSecondaryGraphs()->searchAndRemoveObject(kept.get());
    }
    expectAlive({true, false, false, false});
    EXPECT_EQ(kept->pFirstNode()->pAnalysisExtensions()->pFirstExtension(), nullptr);
}

}  // namespace
