// The protocol that every class carries.

#include <gtest/gtest.h>

#include <type_traits>
#include <typeinfo>

#include "rv/analysis.h"
#include "tests/exported_classes.h"
#include "tests/test_graph.h"

namespace {

// A class as it is, or with what it lacks to be made.
template <class C>
struct Finished : C {
    void reset() {}
    RVServiceErrorCodeEnum algorithmBody() { return RV_NO_ERROR; }
};
template <class C>
using Made = std::conditional_t<std::is_abstract_v<C>, Finished<C>, C>;

// An object as it is at first; some are made for a graph only.
template <class C>
C make() {
    if constexpr (std::is_default_constructible_v<C>)
        return C();
    else
        return C(nullptr);
}

// Puts something into an object that its copies must have too, and says what is in it.
double fill(RVObject* object, RVGraph* graph, bool changes) {
    RVNode* const node = graph->pFirstNode();
    if (auto* list = dynamic_cast<RVDList*>(object)) {
        if (changes) list->appendObject(node);
        return list->length();
    }
    if (auto* map = dynamic_cast<RVHashMap*>(object))
        return changes ? map->putInt(node, 3) : map->getInt(node, 0);
    if (auto* set = dynamic_cast<RVHashSet*>(object)) return changes ? set->add(node) : set->contains(node);
    if (auto* number = dynamic_cast<RVInt*>(object)) return changes ? number->value(4) : number->value();
    if (auto* number = dynamic_cast<RVDouble*>(object)) return changes ? number->value(0.5) : number->value();
    if (auto* constraint = dynamic_cast<RVConstraint*>(object)) {
        return changes ? constraint->fulfilled(1) : constraint->fulfilled();
    }
    if (auto* record = dynamic_cast<RVNodeExtensionInteger*>(object))
        return changes ? record->data(5) : record->data();
    if (auto* pair = dynamic_cast<RVEdgeValuePair*>(object)) return changes ? pair->value(6) : pair->value();
    if (auto* algorithm = dynamic_cast<RVAlgorithm*>(object)) {
        return changes ? algorithm->debugMode(7) : algorithm->debugMode();
    }
    if (auto* data = dynamic_cast<RVAlgorithmData*>(object)) {
        return (changes ? data->pAssociatedGraph(graph) : data->pAssociatedGraph()) == graph ? 1 : 0;
    }
    if (auto* random = dynamic_cast<RVSimpleRandom*>(object)) {
        if (changes) random->randFloat();
        return RVSimpleRandom(*random).randFloat();
    }
    return 0;
}

template <class C>
class ObjectProtocol {
public:
    ObjectProtocol() { m_filling = fill(&m_object, m_graph, true); }
    void expectCopy(RVObject* copy) {
        EXPECT_EQ(typeid(*copy), typeid(m_object));
        EXPECT_EQ(filling(copy), m_filling);
    }
    Made<C>& object() { return m_object; }
    // What holds for all classes.
    void expectProtocol() {
        for (const RVObject* other :
             {static_cast<const RVObject*>(nullptr), static_cast<const RVObject*>(&m_object)}) {
            m_object.copyObject(other);
            m_object.copyAttributes(other);
            EXPECT_EQ(filling(&m_object), m_filling);
        }
        EXPECT_EQ(C::castDown(static_cast<RVObject*>(&m_object)), &m_object);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        m_object.debugOutput(9);
        EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
    }
    void expectNoClones() {
        EXPECT_EQ(m_object.cloneObject(), nullptr);
        EXPECT_EQ(m_object.cloneAttributes(), nullptr);
    }

private:
    double filling(RVObject* object) { return fill(object, m_graph, false); }

    rvtest::TestGraph m_graph{"a"};
    Made<C> m_object = make<Made<C>>();
    double m_filling;
};

TEST(Classes, AreCopiedInEveryWay) {
    rvtest::forEachClass(rvtest::CopyableClasses(), []<class C>() {
        ObjectProtocol<C> test;
        test.expectProtocol();
        C& source = test.object();
        C made[] = {C(source), C(source, RVShallow), C(source, RVDeep)};
        C copies[] = {make<C>(), make<C>(), make<C>()};
        copies[0].copyObject(&source);
        copies[1].copyAttributes(&source);
        copies[2] = source;
        for (C& copy : made) test.expectCopy(&copy);
        for (C& copy : copies) test.expectCopy(&copy);
        for (C* clone : {source.cloneObject(), source.cloneAttributes()}) {
            ASSERT_NE(clone, nullptr);
            test.expectCopy(clone);
            delete clone;
        }
    });
}

TEST(Classes, ThatAreAbstractAreCopiedAsPartsOfTheirSubclasses) {
    rvtest::forEachClass(rvtest::AbstractClasses(), []<class C>() {
        ObjectProtocol<C> test;
        test.expectProtocol();
        test.expectNoClones();
        Made<C> copy(test.object());
        test.expectCopy(&copy);
    });
}

TEST(Classes, WithoutCopiesHaveNoClones) {
    rvtest::forEachClass(rvtest::UncopyableClasses(), []<class C>() {
        ObjectProtocol<C> test;
        test.expectProtocol();
        test.expectNoClones();
    });
}

// Nodes and edges are made by graphs only.
TEST(GraphMembers, HaveNoClones) {
    rvtest::TestGraph g("a->b:4 b->c");
    for (RVGraphMember* member : std::initializer_list<RVGraphMember*>{g.node("a"), g.edge("b->c")}) {
        EXPECT_EQ(member->cloneObject(), nullptr);
        EXPECT_EQ(member->cloneAttributes(), nullptr);
    }
    g.node("a")->copyObject(g.node("b"));
    g.edge("b->c")->copyAttributes(g.edge("a->b:4"));
    EXPECT_EQ(rvtest::drawing(g), "a b c a->b:4 b->c");
}

}  // namespace
