// Data bases of all analysis algorithms, and the records that algorithms build theirs on.
#pragma once

#include <memory>
#include <span>

#include "rv/framework/algorithm_data.h"
#include "rv/framework/result_codes.h"

struct RVInputField;

namespace rv {

// An owned list that is made when it is first asked for and is not copied.
class LazyEdgeList {
public:
    bool isMade() const { return m_list.get() != nullptr; }
    bool isEmpty() const { return !isMade() || m_list.get()->length() == 0; }
    RVEdgeDList* make() const {
        m_list = std::make_unique<RVEdgeDList>();
        return get();
    }
    RVEdgeDList* get() const { return m_list.get().get(); }

private:
    mutable Uncopied<std::unique_ptr<RVEdgeDList>> m_list;
};

}  // namespace rv

// Base of the per-node records of algorithms.
class RV_EXPORT RVNodeAnalysisExtension : public RVNodeAlgorithmExtension {
    RV_PLAIN_RECORD(RVNodeAnalysisExtension)

public:
    RVNodeAnalysisExtension() = default;
    RVNodeAnalysisExtension(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAlgorithmExtension(node, data) {}

    // The self-loops of the node that preprocessing detached, in graph order. Made when first asked for;
    // a copy of the record has an empty list of its own.
    RVEdgeDList* pReflexiveEdgeList() const;
    bool hasReflexiveEdges() const { return !m_reflexiveEdges.isEmpty(); }

private:
    rv::LazyEdgeList m_reflexiveEdges;
};

// Base of the per-edge records of algorithms.
class RV_EXPORT RVEdgeAnalysisExtension : public RVEdgeAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeAnalysisExtension)

public:
    RVEdgeAnalysisExtension() = default;
    RVEdgeAnalysisExtension(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAlgorithmExtension(edge, data) {}

    // The parallel edges that preprocessing detached in favour of this one, in the order in which they were
    // found. Made when first asked for; a copy of the record has an empty list of its own.
    RVEdgeDList* pMultiEdgeList() const;
    bool hasMultiEdges() const { return !m_multiEdges.isEmpty(); }

    // 1 once the edge is in another edge's multi-edge list.
    int removedAsMultiEdge() const { return m_removedAsMultiEdge; }
    int removedAsMultiEdge(int flag) { return setFlag(m_removedAsMultiEdge, flag); }
    // 0 for an edge that is followed in both directions.
    int directed() const { return m_directed; }
    int directed(int flag) { return setFlag(m_directed, flag); }
    // 1 for a reverse edge that preprocessing added and postprocessing destroys.
    int dummyEdge() const { return m_dummyEdge; }
    int dummyEdge(int flag) { return setFlag(m_dummyEdge, flag); }

private:
    static int setFlag(rv::Uncopied<int>& member, int flag) {
        member = flag;
        return flag;
    }

    rv::LazyEdgeList m_multiEdges;
    rv::Uncopied<int> m_removedAsMultiEdge = 0;
    rv::Uncopied<int> m_directed = 1;
    rv::Uncopied<int> m_dummyEdge = 0;
};

// A number per node, for callers' use; no algorithm of the library makes one.
class RV_EXPORT RVNodeExtensionInteger : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionInteger)

public:
    RVNodeExtensionInteger() = default;
    RVNodeExtensionInteger(RVNode* node, const RVAlgorithmData* data) : RVNodeAnalysisExtension(node, data) {}
    int data() const { return m_value; }
    int data(int value) { return m_value = value; }

private:
    int m_value = 0;
};

// A number and an edge.
class RV_EXPORT RVEdgeValuePair : public RVObject {
    RV_OBJECT(RVEdgeValuePair)

public:
    RVEdgeValuePair() = default;
    int value() const { return m_value; }
    int value(int v) { return m_value = v; }
    RVEdge* pEdge() const { return m_pEdge; }
    RVEdge* pEdge(RVEdge* edge) { return m_pEdge = edge; }

private:
    int m_value = 0;
    RVEdge* m_pEdge = nullptr;
};

// The question of an algorithm about its associated graph. Values by name come from the table of fields that
// a class states in inputFields; a subclass without fields of its own inherits the table.
class RV_EXPORT RVAnalysisInputData : public RVAlgorithmInputData {
    RV_DATA_OBJECT(RVAnalysisInputData)

public:
    RVAnalysisInputData() = default;
    explicit RVAnalysisInputData(RVGraph* graph) : RVAlgorithmInputData(graph) {}

    // Names are equal character by character. An unknown name, or an object that is missing or of the wrong
    // kind, reads as false, 0, 0.0 or none; fields of the graph are read whatever the object.
    bool hasField(const char* name) const override;
    bool hasNodeField(const char* name) const override;
    bool hasEdgeField(const char* name) const override;
    int intField(const char* name, RVGraphObject* object = nullptr) const override;
    double doubleField(const char* name, RVGraphObject* object = nullptr) const override;
    RVObject* pObjectField(const char* name, RVGraphObject* object = nullptr) const override;

    // Takes over every field of this class that the other input announces, of every node and edge of this
    // input's graph in graph order. Flags become 1 when they are nonzero.
    void copyData(const RVAlgorithmInputData* other) override;

protected:
    virtual std::span<const RVInputField> inputFields() const;

private:
    template <class Ask>
    const RVInputField* findField(const char* name, RVGraphObject* object, Ask ask) const;
    bool announces(const char* name, unsigned scope) const;
};

// The answer of an algorithm about its associated graph.
class RV_EXPORT RVAnalysisOutputData : public RVAlgorithmOutputData {
    RV_DATA_OBJECT(RVAnalysisOutputData)

public:
    RVAnalysisOutputData() = default;
};

// What an algorithm keeps for the time of a run, beginning with what preprocessing detached. A copy starts
// with the defaults of this class.
class RV_EXPORT RVAnalysisInternalData : public RVAlgorithmData {
    RV_DATA_OBJECT(RVAnalysisInternalData)
    RV_NODE_RECORDS(RVNodeAnalysisExtension)
    RV_EDGE_RECORDS(RVEdgeAnalysisExtension)

public:
    RVAnalysisInternalData() = default;

    // The isolated nodes that preprocessing detached, in graph order.
    RVNodeDList* pDisconnectedNodeList() const { return m_disconnectedNodes.get().get(); }

    // The outcome of the body.
    RVServiceErrorCodeEnum returnCode() const { return m_returnCode; }
    RVServiceErrorCodeEnum returnCode(RVServiceErrorCodeEnum code) {
        m_returnCode = code;
        return code;
    }

    // Values of the objects' records. Setters give the value that they stored.
    int directed(RVEdge* edge) const { return load(edge, &EdgeRecord::directed); }
    int directed(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::directed, flag); }
    int dummyEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::dummyEdge); }
    int dummyEdge(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::dummyEdge, flag); }
    int removedAsMultiEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::removedAsMultiEdge); }
    int removedAsMultiEdge(RVEdge* edge, int flag) {
        return store(edge, &EdgeRecord::removedAsMultiEdge, flag);
    }
    // The lists, for walking: empty where none was made.
    const RVEdgeDList& multiEdges(RVEdge* edge) const;
    const RVEdgeDList& reflexiveEdges(RVNode* node) const;
    // None without an object.
    RVEdgeDList* pMultiEdgeList(RVEdge* edge) const;
    RVEdgeDList* pReflexiveEdgeList(RVNode* node) const;

private:
    rv::Uncopied<rv::Owned<RVNodeDList>> m_disconnectedNodes;
    rv::Uncopied<RVServiceErrorCodeEnum> m_returnCode = RV_NO_ERROR;
};
