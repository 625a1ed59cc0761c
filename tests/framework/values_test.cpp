// The values per node and edge of all inputs and outputs: whatever happens to their objects, graphs, records
// and data, they read as their setters and the records say.

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "rv/analysis.h"
#include "tests/exported_classes.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// A value of a data class, and whether records stand for it.
#define RV_VALUE(Name, DataClass, ObjectClass, getter, setter)                                         \
    struct Name {                                                                                      \
        [[maybe_unused]] static constexpr bool kInRecord = false;                                      \
        using Data = DataClass;                                                                        \
        using Object = ObjectClass;                                                                    \
        using Type = decltype(std::declval<const Data&>().getter(std::declval<Object*>()));            \
        static Type get(const Data& data, Object* object) { return data.getter(object); }              \
        static Type set(Data& data, Object* object, Type value) { return data.setter(object, value); } \
    };
#define RV_VALUE_IN(RecordClass, accessor, Name, DataClass, ObjectClass, getter, setter) \
    RV_VALUE(Name##Value, DataClass, ObjectClass, getter, setter)                        \
    struct Name : Name##Value {                                                          \
        static constexpr bool kInRecord = true;                                          \
        using Record = RecordClass;                                                      \
        static Type get(const Record& record) { return record.accessor(); }              \
        static void set(Record& record, Type value) { record.accessor(value); }          \
        using Name##Value::get;                                                          \
        using Name##Value::set;                                                          \
    };
// One whose getter and setter have the same name.
#define RV_NODE_VALUE(Name, Data, name) RV_VALUE(Name, Data, RVNode, name, name)
#define RV_EDGE_VALUE(Name, Data, name) RV_VALUE(Name, Data, RVEdge, name, name)
#define RV_NODE_VALUE_IN(Record, accessor, Name, Data, name) \
    RV_VALUE_IN(Record, accessor, Name, Data, RVNode, name, name)
#define RV_EDGE_VALUE_IN(Record, accessor, Name, Data, name) \
    RV_VALUE_IN(Record, accessor, Name, Data, RVEdge, name, name)

// Values without records.
RV_NODE_VALUE(SortNumber, RVTopologicalSortOutputData, orderNumber)
RV_NODE_VALUE(PathNodeCost, RVPathCostInputData, cost)
RV_NODE_VALUE(SourceNodeCost, RVSingleSourceShortestPathsInputData, cost)
RV_EDGE_VALUE(SourceEdgeCost, RVSingleSourceShortestPathsInputData, cost)
RV_EDGE_VALUE(SourceUndirected, RVSingleSourceShortestPathsInputData, undirected)
RV_NODE_VALUE(SourceTreeEdge, RVSingleSourceShortestPathsOutputData, pTreeEdge)
RV_NODE_VALUE(SourceDistance, RVSingleSourceShortestPathsOutputData, distance)
RV_NODE_VALUE(SortedNodeCost, RVSortedPathsInputData, cost)
RV_EDGE_VALUE(SortedEdgeCost, RVSortedPathsInputData, cost)
RV_NODE_VALUE(SortedTreeEdge, RVSortedPathsOutputData, pTreeEdge)
RV_NODE_VALUE(NodeCapacity, RVMaximumFlowInputData, capacity)
RV_NODE_VALUE(FlowNodeCost, RVMinimumCostFlowInputData, cost)
RV_NODE_VALUE(CauseNodeCost, RVRootCauseInputData, cost)
RV_EDGE_VALUE(CauseEdgeCost, RVRootCauseInputData, cost)
RV_NODE_VALUE(CauseWeight, RVRootCauseInputData, weight)
RV_EDGE_VALUE(CauseUndirected, RVRootCauseInputData, undirected)

// Values with records.
RV_EDGE_VALUE_IN(RVEdgeExtensionShortestPathsInput, cost, PathEdgeCost, RVPathCostInputData, cost)
RV_NODE_VALUE_IN(RVNodeExtensionTraversal, orderNumber, BreadthFirstNumber, RVBreadthFirstSearchOutputData,
                 orderNumber)
RV_NODE_VALUE_IN(RVNodeExtensionTraversal, orderNumber, ComponentNumber, RVConnectedComponentsOutputData,
                 componentNumber)
RV_NODE_VALUE_IN(RVNodeExtensionTraversal, orderNumber, StrongComponentNumber,
                 RVStronglyConnectedComponentsOutputData, componentNumber)
RV_NODE_VALUE_IN(RVNodeExtensionDepthFirstSearch, orderNumber, DepthFirstNumber, RVDepthFirstSearchOutputData,
                 orderNumber)
RV_NODE_VALUE_IN(RVNodeExtensionDepthFirstSearch, completionNumber, CompletionNumber,
                 RVDepthFirstSearchOutputData, completionNumber)
RV_NODE_VALUE_IN(RVNodeExtensionDepthFirstSearch, pParentNode, DepthFirstParent, RVDepthFirstSearchOutputData,
                 pParentNode)
RV_EDGE_VALUE_IN(RVEdgeExtensionDepthFirstSearch, edgeType, DepthFirstEdgeType, RVDepthFirstSearchOutputData,
                 edgeType)
RV_NODE_VALUE_IN(RVNodeExtensionDijkstra, dist, Distance, RVDijkstraOutputData, dist)
RV_NODE_VALUE_IN(RVNodeExtensionAllPairsShortestPaths, number, PairsNumber, RVAllPairsShortestPathsOutputData,
                 number)
RV_EDGE_VALUE_IN(RVEdgeExtensionFlowInput, capacity, EdgeCapacity, RVMaximumFlowInputData, capacity)
RV_EDGE_VALUE_IN(RVEdgeExtensionFlowOutput, flowValue, Flow, RVMaximumFlowOutputData, flow)
RV_EDGE_VALUE_IN(RVEdgeExtensionMinimumCostFlowInput, cost, FlowEdgeCost, RVMinimumCostFlowInputData, cost)
RV_EDGE_VALUE_IN(RVEdgeExtensionMinimumCostFlowInput, capacity, CostlyEdgeCapacity,
                 RVMinimumCostFlowInputData, capacity)
RV_EDGE_VALUE_IN(RVEdgeExtensionFlowOutput, flowValue, CostlyFlow, RVMinimumCostFlowOutputData, flow)
RV_EDGE_VALUE_IN(RVEdgeExtensionMinimumCutInput, cost, CutCost, RVMinimumCutInputData, cost)
RV_EDGE_VALUE_IN(RVEdgeExtensionMinimumSpanningTreeInput, cost, TreeCost, RVMinimumSpanningTreeInputData,
                 cost)
RV_EDGE_VALUE_IN(RVEdgeExtensionMinimumSpanningTreeOutput, treeEdge, TreeEdge,
                 RVMinimumSpanningTreeOutputData, treeEdge)
RV_EDGE_VALUE_IN(RVEdgeExtensionTopologicalHeuristic, weight, HeuristicWeight,
                 RVTopologicalHeuristicInputData, weight)
RV_NODE_VALUE_IN(RVNodeExtensionTopologicalHeuristic, orderNumber, HeuristicNumber,
                 RVTopologicalHeuristicOutputData, orderNumber)
RV_EDGE_VALUE_IN(RVEdgeExtensionCycleBreakingEdgeDetectionOutput, backwardEdge, BackwardEdge,
                 RVCycleBreakingEdgeDetectionOutputData, backwardEdge)
RV_VALUE_IN(RVNodeExtensionRatioCut, weight, ClusterWeight, RVClusteringInputData, RVNode, getWeight,
            setWeight)
RV_VALUE_IN(RVEdgeExtensionRatioCutInput, cost, ClusterCost, RVClusteringInputData, RVEdge, getCost, setCost)
RV_VALUE_IN(RVNodeExtensionRatioCut, weight, RatioCutWeight, RVRatioCutBipartitioningInputData, RVNode,
            getWeight, setWeight)
RV_VALUE_IN(RVNodeExtensionRatioCut, x, RatioCutStart, RVRatioCutBipartitioningInputData, RVNode, getX, setX)
RV_VALUE_IN(RVNodeExtensionRatioCut, x, RatioCutPosition, RVRatioCutBipartitioningOutputData, RVNode, getX,
            setX)

// Flags whose records say the opposite.
template <class Value, class RecordClass>
struct Undirected : Value {
    static constexpr bool kInRecord = true;
    using Record = RecordClass;
    static int get(const Record& record) { return record.directed() == 0 ? 1 : 0; }
    static void set(Record& record, int flag) { record.directed(flag == 0 ? 1 : 0); }
    using Value::get;
    using Value::set;
};
RV_EDGE_VALUE(TraversalUndirectedValue, RVTraversalInputData, undirected)
RV_EDGE_VALUE(PathUndirectedValue, RVPathCostInputData, undirected)
using TraversalUndirected = Undirected<TraversalUndirectedValue, RVEdgeExtensionTraversalInput>;
using PathUndirected = Undirected<PathUndirectedValue, RVEdgeExtensionShortestPathsInput>;

// The same value where the data is of a caller's class: one that makes the library's records, and one that
// makes records of its own on the heap.
template <class Data>
class Plain : public Data {
public:
    using Data::Data;
};
template <class Value>
struct InSubclass : Value {
    using Data = Plain<typename Value::Data>;
};

template <class Data>
std::unique_ptr<Data> makeData(RVGraph* graph) {
    std::unique_ptr<Data> data;
    if constexpr (std::is_constructible_v<Data, RVGraph*>) {
        data = std::make_unique<Data>(graph);
    } else {
        data = std::make_unique<Data>();
        data->pAssociatedGraph(graph);
    }
    return data;
}

RVGraphMember* detach(RVNode* node) { return node->pOwnerGraph()->removeNode(node); }
RVGraphMember* detach(RVEdge* edge) { return edge->pOwnerGraph()->removeEdge(edge); }

// Objects of a graph, their data, and values of theirs.
template <class V>
struct Values {
    using Data = typename V::Data;
    using Object = typename V::Object;
    using Type = typename V::Type;
    static constexpr bool kOfNodes = std::is_same_v<Object, RVNode>;

    TestGraph g{"a->b b->c c->a"};
    TestGraph other{"d->e e->f f->d"};
    std::unique_ptr<Data> data = makeData<Data>(g);
    Object* const first = at(g, 0);
    Object* const second = at(g, 1);
    const Type preset = V::get(*data, first);
    const bool isFlag = readsAsOne(*makeData<Data>(g));

    // Whether all numbers read as 0 or 1.
    bool readsAsOne(Data& of) const {
        if constexpr (std::is_same_v<Type, int>) {
            V::set(of, first, 2);
            return V::get(of, first) == 1;
        }
        return false;
    }
    static Object* at(const TestGraph& graph, int i) {
        if constexpr (kOfNodes) return graph->pNodeList()->pNodeInPosition(i + 1);
        if constexpr (!kOfNodes) return graph->pEdgeList()->pEdgeInPosition(i + 1);
    }
    // Two values that are not the default; flags have but one.
    Type sample(int i) const {
        if constexpr (std::is_same_v<Type, RVNode*>) {
            return other->pNodeList()->pNodeInPosition(i);
        } else if constexpr (std::is_same_v<Type, RVEdge*>) {
            return other->pEdgeList()->pEdgeInPosition(i);
        } else {
            return static_cast<Type>(isFlag ? 1 : i + 1);
        }
    }
    void set(Object* object, int i) { EXPECT_EQ(V::set(*data, object, sample(i)), sample(i)); }
    void expect(Object* object, int i) const { expect(*data, object, i); }
    // 0 stands for the default.
    void expect(const Data& of, Object* object, int i) const {
        EXPECT_EQ(V::get(of, object), i == 0 ? preset : sample(i)) << i;
    }
    static Object* add(RVGraph* graph) {
        if constexpr (kOfNodes) return graph->addNode();
        if constexpr (!kOfNodes) return graph->addEdge(graph->pFirstNode(), graph->pLastNode());
    }
    // A new object where the given one was.
    static Object* replace(Object* object) {
        RVGraph* const graph = object->pHomeGraph();
        const int index = object->denseIndex();
        delete object;
        Object* const made = add(graph);
        EXPECT_EQ(made->denseIndex(), index);
        return made;
    }
    void moveTo(RVGraph* graph, Object* object) {
        detach(object);
        if constexpr (kOfNodes) graph->insertNode(object);
        if constexpr (!kOfNodes) graph->insertEdge(object, graph->pFirstNode(), graph->pLastNode());
    }
    auto* record(Object* object) const {
        return static_cast<typename V::Record*>(data->pAlgorithmExtension(object));
    }
};

using RecordlessValues =
    std::tuple<SortNumber, PathNodeCost, SourceNodeCost, SourceEdgeCost, SourceUndirected, SourceTreeEdge,
               SourceDistance, SortedNodeCost, SortedEdgeCost, SortedTreeEdge, NodeCapacity, FlowNodeCost,
               CauseNodeCost, CauseEdgeCost, CauseWeight, CauseUndirected>;
using RecordValues =
    std::tuple<PathEdgeCost, BreadthFirstNumber, ComponentNumber, StrongComponentNumber, DepthFirstNumber,
               CompletionNumber, DepthFirstParent, DepthFirstEdgeType, Distance, PairsNumber, EdgeCapacity,
               Flow, FlowEdgeCost, CostlyEdgeCapacity, CostlyFlow, CutCost, TreeCost, TreeEdge,
               HeuristicWeight, HeuristicNumber, BackwardEdge, ClusterWeight, ClusterCost, RatioCutWeight,
               RatioCutStart, RatioCutPosition, TraversalUndirected, PathUndirected>;
template <class... Tuples>
struct WithSubclasses;
template <class... V, class... W>
struct WithSubclasses<std::tuple<V...>, std::tuple<W...>> {
    using Types = testing::Types<V..., W..., InSubclass<V>..., InSubclass<W>...>;
};
using AllValues = WithSubclasses<RecordlessValues, RecordValues>::Types;

template <class F>
void forEachValue(F f) {
    forEachClass(AllValues(), [&f]<class V>() {
        Values<V> values;
        f(values);
    });
}

TEST(Values, StayWithTheirObjects) {
    forEachValue([]<class V>(Values<V>& v) {
        v.set(v.first, 1);
        v.set(nullptr, 2);
        v.expect(nullptr, 0);
        v.expect(v.first, 1);
        v.expect(v.second, 0);
        v.set(v.second, 2);
        v.set(v.first, 2);
        v.set(v.first, 1);
        detach(v.second);
        v.expect(v.first, 1);
        v.expect(v.second, 2);
        v.expect(v.replace(v.first), 0);
        v.expect(v.second, 2);
    });
}

TEST(Values, AreOfAsManyGraphsAsNeedBe) {
    forEachValue([]<class V>(Values<V>& v) {
        auto* const there = v.at(v.other, 0);
        v.set(v.first, 1);
        v.set(there, 2);
        v.expect(v.first, 1);
        v.set(v.second, 2);
        v.expect(there, 2);
        v.moveTo(v.other, v.second);
        v.expect(v.second, 2);
        v.expect(v.first, 1);
        v.expect(v.add(v.g), 0);
        v.g.release();
        v.expect(there, 2);
        v.set(there, 1);
        v.expect(v.second, 2);
        v.expect(there, 1);
    });
}

TEST(Values, AreCopiedWithTheirData) {
    forEachValue([]<class V>(Values<V>& v) {
        using D = typename Values<V>::Data;
        auto* const there = v.at(v.other, 2);
        v.set(v.first, 1);
        v.set(there, 2);
        const D copy(*v.data);
        const auto assigned = makeData<D>(v.other);
        V::set(*assigned, v.second, v.sample(1));
        *assigned = *v.data;
        const auto expectCopied = [&](const D& of) {
            v.expect(of, v.first, 1);
            v.expect(of, v.second, 0);
            v.expect(of, there, 2);
        };
        expectCopied(copy);
        expectCopied(*assigned);
        const std::unique_ptr<RVObject> clone(v.data->cloneObject());
        if (const auto* same = dynamic_cast<const D*>(clone.get())) expectCopied(*same);
        V::set(*assigned, v.first, v.sample(2));
        v.expect(*assigned, v.first, 2);
        expectCopied(*v.data);
        v.data.reset();
        expectCopied(copy);
        auto* const made = v.replace(v.first);
        v.expect(copy, made, 0);
        v.expect(copy, there, 2);
    });
}

TEST(Values, AreTakenOverByRecords) {
    forEachValue([]<class V>(Values<V>& v) {
        if constexpr (V::kInRecord) {
            v.set(v.first, 1);
            v.set(v.second, 2);
            auto* const record = v.record(v.first);
            EXPECT_EQ(V::get(*record), v.sample(1));
            v.set(v.first, 2);
            EXPECT_EQ(V::get(*record), v.sample(2));
            V::set(*record, v.sample(1));
            v.expect(v.first, 1);
            v.expect(v.second, 2);
            {
                const typename Values<V>::Data copy(*v.data);
                v.expect(copy, v.first, 1);
                v.expect(copy, v.second, 2);
            }
            v.moveTo(v.other, v.first);
            v.expect(v.first, 1);
            delete record;
            v.expect(v.first, 0);
            v.set(v.first, 2);
            v.expect(v.first, 2);
            delete v.data->pAlgorithmExtension(v.second);
            v.expect(v.second, 0);
            auto* const fresh = v.record(v.at(v.g, 0));
            EXPECT_EQ(V::get(*fresh), v.preset);
        }
    });
}

TEST(Values, EndByDeleteDataReferences) {
    forEachValue([]<class V>(Values<V>& v) {
        auto* const there = v.at(v.other, 0);
        for (const bool asksForRecord : {false, true, false}) {
            v.set(v.first, 1);
            v.set(v.second, 2);
            v.set(there, 1);
            if (asksForRecord) v.data->pAlgorithmExtension(v.first);
            v.data->deleteDataReferences(v.g);
            v.data->deleteDataReferences(nullptr);
            v.expect(v.first, V::kInRecord ? 0 : 1);
            v.expect(v.second, V::kInRecord ? 0 : 2);
            v.expect(there, 1);
        }
    });
}

}  // namespace
