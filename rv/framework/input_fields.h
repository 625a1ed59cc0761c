// The values of an input class by name, stated once per class as a table of fields.
//
// A row is a name, what it applies to (the whole graph, a node or an edge), who announces it (hasField,
// hasNodeField, hasEdgeField) and functions that read and store it. The builders make a row from the
// accessors of the class, for instance
//
//   nodeInt<D, &D::cost, &D::cost>("cost")
//
// with the getter first and the setter second; overloads resolve by the signature that the builder asks for.
// Rows stand in the order in which copyData stores.
#pragma once

#include "rv/framework/analysis_data.h"

struct RVInputField {
    enum Scope : unsigned { none = 0, graph = 1, node = 2, edge = 4 };

    const char* name = nullptr;
    unsigned scope = none;
    unsigned announced = none;
    // Read and store the value; none for what the field is not. The object is none for a field of the graph.
    int (*getInt)(const RVAnalysisInputData& data, RVGraphObject* object) = nullptr;
    double (*getDouble)(const RVAnalysisInputData& data, RVGraphObject* object) = nullptr;
    RVObject* (*getObject)(const RVAnalysisInputData& data, RVGraphObject* object) = nullptr;
    // Takes the value of the same name from another input.
    void (*take)(RVAnalysisInputData& data, RVGraphObject* object, const RVAlgorithmInputData& other,
                 const char* name) = nullptr;

    // The same field with other announcers: none for one that answers without being announced, several for
    // one that several questions admit.
    constexpr RVInputField announcedBy(unsigned scopes) const {
        RVInputField field = *this;
        field.announced = scopes;
        return field;
    }
};

namespace rv::field {

// Of the graph: an int, and an int stored as 1 when it is nonzero.
template <class D, int (D::*Get)() const, int (D::*Set)(int)>
constexpr RVInputField graphInt(const char* name) {
    RVInputField field{name, RVInputField::graph, RVInputField::graph};
    field.getInt = [](const RVAnalysisInputData& d, RVGraphObject*) {
        return (static_cast<const D&>(d).*Get)();
    };
    field.take = [](RVAnalysisInputData& d, RVGraphObject*, const RVAlgorithmInputData& other,
                    const char* n) { (static_cast<D&>(d).*Set)(other.intField(n, nullptr)); };
    return field;
}
template <class D, int (D::*Get)() const, int (D::*Set)(int)>
constexpr RVInputField graphFlag(const char* name) {
    RVInputField field = graphInt<D, Get, Set>(name);
    field.take = [](RVAnalysisInputData& d, RVGraphObject*, const RVAlgorithmInputData& other,
                    const char* n) { (static_cast<D&>(d).*Set)(other.intField(n, nullptr) != 0 ? 1 : 0); };
    return field;
}
template <class D, double (D::*Get)() const, double (D::*Set)(double)>
constexpr RVInputField graphDouble(const char* name) {
    RVInputField field{name, RVInputField::graph, RVInputField::graph};
    field.getDouble = [](const RVAnalysisInputData& d, RVGraphObject*) {
        return (static_cast<const D&>(d).*Get)();
    };
    field.take = [](RVAnalysisInputData& d, RVGraphObject*, const RVAlgorithmInputData& other,
                    const char* n) { (static_cast<D&>(d).*Set)(other.doubleField(n, nullptr)); };
    return field;
}
// Of the graph: an object, such as a node or a list of nodes.
template <class D, class T, T* (D::*Get)() const, T* (D::*Set)(T*)>
constexpr RVInputField graphObject(const char* name) {
    RVInputField field{name, RVInputField::graph, RVInputField::graph};
    field.getObject = [](const RVAnalysisInputData& d, RVGraphObject*) -> RVObject* {
        return (static_cast<const D&>(d).*Get)();
    };
    field.take = [](RVAnalysisInputData& d, RVGraphObject*, const RVAlgorithmInputData& other,
                    const char* n) {
        (static_cast<D&>(d).*Set)(static_cast<T*>(other.pObjectField(n, nullptr)));
    };
    return field;
}

// Of each node or edge: an int, and an int stored as 1 when it is nonzero.
template <class D, class T, unsigned kScope, int (D::*Get)(T*) const, int (D::*Set)(T*, int)>
constexpr RVInputField memberInt(const char* name) {
    RVInputField field{name, kScope, kScope};
    field.getInt = [](const RVAnalysisInputData& d, RVGraphObject* object) {
        return (static_cast<const D&>(d).*Get)(static_cast<T*>(object));
    };
    field.take = [](RVAnalysisInputData& d, RVGraphObject* object, const RVAlgorithmInputData& other,
                    const char* n) {
        (static_cast<D&>(d).*Set)(static_cast<T*>(object), other.intField(n, object));
    };
    return field;
}
template <class D, int (D::*Get)(RVNode*) const, int (D::*Set)(RVNode*, int)>
constexpr RVInputField nodeInt(const char* name) {
    return memberInt<D, RVNode, RVInputField::node, Get, Set>(name);
}
template <class D, int (D::*Get)(RVEdge*) const, int (D::*Set)(RVEdge*, int)>
constexpr RVInputField edgeInt(const char* name) {
    return memberInt<D, RVEdge, RVInputField::edge, Get, Set>(name);
}
template <class D, int (D::*Get)(RVEdge*) const, int (D::*Set)(RVEdge*, int)>
constexpr RVInputField edgeFlag(const char* name) {
    RVInputField field = edgeInt<D, Get, Set>(name);
    field.take = [](RVAnalysisInputData& d, RVGraphObject* object, const RVAlgorithmInputData& other,
                    const char* n) {
        (static_cast<D&>(d).*Set)(static_cast<RVEdge*>(object), other.intField(n, object) != 0 ? 1 : 0);
    };
    return field;
}

}  // namespace rv::field
