// The values per node and edge of all inputs and outputs: whatever happens to their objects, graphs, records
// and data, they read as their setters and the records say.

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "rv/analysis.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// A value of a data class; kInRecord tells whether records stand for it.
#define RV_VALUE(Name, DataClass, ObjectClass, accessor)                                                 \
    struct Name {                                                                                        \
        [[maybe_unused]] static constexpr bool kInRecord = false;                                        \
        using Data = DataClass;                                                                          \
        using Object = ObjectClass;                                                                      \
        using Type = decltype(std::declval<const Data&>().accessor(std::declval<Object*>()));            \
        static Type get(const Data& data, Object* object) { return data.accessor(object); }              \
        static Type set(Data& data, Object* object, Type value) { return data.accessor(object, value); } \
    };
#define RV_VALUE_IN(RecordClass, recordAccessor, Name, DataClass, ObjectClass, accessor) \
    RV_VALUE(Name##Value, DataClass, ObjectClass, accessor)                              \
    struct Name : Name##Value {                                                          \
        static constexpr bool kInRecord = true;                                          \
        using Record = RecordClass;                                                      \
        static Type get(const Record& record) { return record.recordAccessor(); }        \
        static void set(Record& record, Type v) { record.recordAccessor(v); }            \
        using Name##Value::get;                                                          \
        using Name##Value::set;                                                          \
    };

RV_VALUE(SortNumber, RVTopologicalSortOutputData, RVNode, orderNumber)
RV_VALUE(PathNodeCost, RVPathCostInputData, RVNode, cost)
RV_VALUE_IN(RVEdgeExtensionShortestPathsInput, cost, PathEdgeCost, RVPathCostInputData, RVEdge, cost)
RV_VALUE_IN(RVNodeExtensionTraversal, orderNumber, BreadthFirstNumber, RVBreadthFirstSearchOutputData, RVNode,
            orderNumber)
RV_VALUE_IN(RVNodeExtensionTraversal, orderNumber, ComponentNumber, RVConnectedComponentsOutputData, RVNode,
            componentNumber)
RV_VALUE_IN(RVNodeExtensionTraversal, orderNumber, StrongComponentNumber,
            RVStronglyConnectedComponentsOutputData, RVNode, componentNumber)
RV_VALUE_IN(RVNodeExtensionDepthFirstSearch, orderNumber, DepthFirstNumber, RVDepthFirstSearchOutputData,
            RVNode, orderNumber)
RV_VALUE_IN(RVNodeExtensionDepthFirstSearch, completionNumber, CompletionNumber, RVDepthFirstSearchOutputData,
            RVNode, completionNumber)
RV_VALUE_IN(RVNodeExtensionDepthFirstSearch, pParentNode, DepthFirstParent, RVDepthFirstSearchOutputData,
            RVNode, pParentNode)
RV_VALUE_IN(RVEdgeExtensionDepthFirstSearch, edgeType, DepthFirstEdgeType, RVDepthFirstSearchOutputData,
            RVEdge, edgeType)

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
RV_VALUE(TraversalUndirectedValue, RVTraversalInputData, RVEdge, undirected)
RV_VALUE(PathUndirectedValue, RVPathCostInputData, RVEdge, undirected)
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
class Values : public testing::Test {
protected:
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
    // Whether all numbers are stored as 0 or 1.
    const bool isFlag = std::is_same_v<Type, int> && V::set(*makeData<Data>(g), first, Type(2)) == Type(1);

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

#define RV_BOTH(V) V, InSubclass<V>
using AllValues =
    testing::Types<RV_BOTH(SortNumber), RV_BOTH(PathNodeCost), RV_BOTH(PathEdgeCost), RV_BOTH(PathUndirected),
                   RV_BOTH(TraversalUndirected), RV_BOTH(BreadthFirstNumber), RV_BOTH(ComponentNumber),
                   RV_BOTH(StrongComponentNumber), RV_BOTH(DepthFirstNumber), RV_BOTH(CompletionNumber),
                   RV_BOTH(DepthFirstParent), RV_BOTH(DepthFirstEdgeType)>;
TYPED_TEST_SUITE(Values, AllValues);

TYPED_TEST(Values, StayWithTheirObjects) {
    this->set(this->first, 1);
    this->set(nullptr, 2);
    this->expect(nullptr, 0);
    this->expect(this->first, 1);
    this->expect(this->second, 0);
    this->set(this->second, 2);
    this->set(this->first, 2);
    this->set(this->first, 1);
    detach(this->second);
    this->expect(this->first, 1);
    this->expect(this->second, 2);
    this->expect(this->replace(this->first), 0);
    this->expect(this->second, 2);
}

TYPED_TEST(Values, AreOfAsManyGraphsAsNeedBe) {
    auto* const there = this->at(this->other, 0);
    this->set(this->first, 1);
    this->set(there, 2);
    this->expect(this->first, 1);
    this->set(this->second, 2);
    this->expect(there, 2);
    this->moveTo(this->other, this->second);
    this->expect(this->second, 2);
    this->expect(this->first, 1);
    this->expect(this->add(this->g), 0);
    this->g.release();
    this->expect(there, 2);
    this->set(there, 1);
    this->expect(this->second, 2);
    this->expect(there, 1);
}

TYPED_TEST(Values, AreCopiedWithTheirData) {
    using D = typename TestFixture::Data;
    auto* const there = this->at(this->other, 2);
    this->set(this->first, 1);
    this->set(there, 2);
    const D copy(*this->data);
    const auto assigned = makeData<D>(this->other);
    TypeParam::set(*assigned, this->second, this->sample(1));
    *assigned = *this->data;
    const auto expectCopied = [&](const D& of) {
        this->expect(of, this->first, 1);
        this->expect(of, this->second, 0);
        this->expect(of, there, 2);
    };
    expectCopied(copy);
    expectCopied(*assigned);
    const std::unique_ptr<typename TypeParam::Data> clone(static_cast<D*>(this->data->cloneObject()));
    if (clone != nullptr && typeid(*clone) == typeid(D)) expectCopied(*clone);
    TypeParam::set(*assigned, this->first, this->sample(2));
    this->expect(*assigned, this->first, 2);
    expectCopied(*this->data);
    this->data.reset();
    expectCopied(copy);
    auto* const made = this->replace(this->first);
    this->expect(copy, made, 0);
    this->expect(copy, there, 2);
}

TYPED_TEST(Values, AreTakenOverByRecords) {
    if constexpr (TypeParam::kInRecord) {
        this->set(this->first, 1);
        this->set(this->second, 2);
        auto* const record = this->record(this->first);
        EXPECT_EQ(TypeParam::get(*record), this->sample(1));
        this->set(this->first, 2);
        EXPECT_EQ(TypeParam::get(*record), this->sample(2));
        TypeParam::set(*record, this->sample(1));
        this->expect(this->first, 1);
        this->expect(this->second, 2);
        {
            const typename TestFixture::Data copy(*this->data);
            this->expect(copy, this->first, 1);
            this->expect(copy, this->second, 2);
        }
        this->moveTo(this->other, this->first);
        this->expect(this->first, 1);
        delete record;
        this->expect(this->first, 0);
        this->set(this->first, 2);
        this->expect(this->first, 2);
        delete this->data->pAlgorithmExtension(this->second);
        this->expect(this->second, 0);
        auto* const fresh = this->record(this->at(this->g, 0));
        EXPECT_EQ(TypeParam::get(*fresh), this->preset);
    }
}

TYPED_TEST(Values, EndByDeleteDataReferences) {
    auto* const there = this->at(this->other, 0);
    for (const bool asksForRecord : {false, true, false}) {
        this->set(this->first, 1);
        this->set(this->second, 2);
        this->set(there, 1);
        if (asksForRecord) this->data->pAlgorithmExtension(this->first);
        this->data->deleteDataReferences(this->g);
        this->data->deleteDataReferences(nullptr);
        this->expect(this->first, TypeParam::kInRecord ? 0 : 1);
        this->expect(this->second, TypeParam::kInRecord ? 0 : 2);
        this->expect(there, 1);
    }
}

}  // namespace
