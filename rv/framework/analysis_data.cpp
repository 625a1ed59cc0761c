#include "rv/framework/analysis_data.h"

#include <string_view>

#include "rv/foundation/graph_iterators.h"
#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVNodeAnalysisExtension)
RV_OBJECT_IMPL(RVEdgeAnalysisExtension)
RV_OBJECT_IMPL(RVNodeExtensionInteger)
RV_OBJECT_IMPL(RVEdgeValuePair)
RV_OBJECT_IMPL(RVAnalysisInputData)
RV_OBJECT_IMPL(RVAnalysisOutputData)
RV_OBJECT_IMPL(RVAnalysisInternalData)

RVEdgeDList* RVNodeAnalysisExtension::pReflexiveEdgeList() const {
    if (m_reflexiveEdges.isMade()) return m_reflexiveEdges.get();
    noteOwnedMemory();
    return m_reflexiveEdges.make();
}

RVEdgeDList* RVEdgeAnalysisExtension::pMultiEdgeList() const {
    if (m_multiEdges.isMade()) return m_multiEdges.get();
    noteOwnedMemory();
    return m_multiEdges.make();
}

// Input data

namespace {

// What an object can be asked about; fields of the graph are read with any object and with none.
unsigned scopesOf(const RVGraphObject* object) {
    unsigned scopes = RVInputField::graph;
    if (object != nullptr && object->isNode()) scopes |= RVInputField::node;
    if (object != nullptr && object->isEdge()) scopes |= RVInputField::edge;
    return scopes;
}

}  // namespace

std::span<const RVInputField> RVAnalysisInputData::inputFields() const { return {}; }

// The field of that name which the object has and for which the question is the right one.
template <class Ask>
const RVInputField* RVAnalysisInputData::findField(const char* name, RVGraphObject* object, Ask ask) const {
    if (name == nullptr) return nullptr;
    const unsigned scopes = scopesOf(object);
    for (const RVInputField& field : inputFields()) {
        if ((field.scope & scopes) != 0 && ask(field) != nullptr && std::string_view(name) == field.name)
            return &field;
    }
    return nullptr;
}

bool RVAnalysisInputData::announces(const char* name, unsigned scope) const {
    if (name == nullptr) return false;
    for (const RVInputField& field : inputFields()) {
        if ((field.announced & scope) != 0 && std::string_view(name) == field.name) return true;
    }
    return false;
}

bool RVAnalysisInputData::hasField(const char* name) const { return announces(name, RVInputField::graph); }
bool RVAnalysisInputData::hasNodeField(const char* name) const { return announces(name, RVInputField::node); }
bool RVAnalysisInputData::hasEdgeField(const char* name) const { return announces(name, RVInputField::edge); }

int RVAnalysisInputData::intField(const char* name, RVGraphObject* object) const {
    const RVInputField* field = findField(name, object, [](const RVInputField& f) { return f.getInt; });
    return field == nullptr ? 0 : field->getInt(*this, object);
}

double RVAnalysisInputData::doubleField(const char* name, RVGraphObject* object) const {
    const RVInputField* field = findField(name, object, [](const RVInputField& f) { return f.getDouble; });
    return field == nullptr ? 0.0 : field->getDouble(*this, object);
}

RVObject* RVAnalysisInputData::pObjectField(const char* name, RVGraphObject* object) const {
    const RVInputField* field = findField(name, object, [](const RVInputField& f) { return f.getObject; });
    return field == nullptr ? nullptr : field->getObject(*this, object);
}

void RVAnalysisInputData::copyData(const RVAlgorithmInputData* other) {
    if (other == nullptr || other == this) return;
    for (const RVInputField& field : inputFields()) {
        if (field.scope == RVInputField::graph) {
            if (other->hasField(field.name)) field.take(*this, nullptr, *other, field.name);
        } else if (field.scope == RVInputField::node) {
            if (!other->hasNodeField(field.name)) continue;
            for (RVNodeIter it(pAssociatedGraph()); it; it++)
                field.take(*this, it.pNode(), *other, field.name);
        } else {
            if (!other->hasEdgeField(field.name)) continue;
            for (RVEdgeIter it(pAssociatedGraph()); it; it++)
                field.take(*this, it.pEdge(), *other, field.name);
        }
    }
}

// Internal data

namespace {
const RVEdgeDList kNoEdges;
}

const RVEdgeDList& RVAnalysisInternalData::multiEdges(RVEdge* edge) const {
    const auto* own = static_cast<const RVEdgeAnalysisExtension*>(pExistingExtension(edge));
    return own == nullptr || !own->hasMultiEdges() ? kNoEdges : *own->pMultiEdgeList();
}

const RVEdgeDList& RVAnalysisInternalData::reflexiveEdges(RVNode* node) const {
    const auto* own = static_cast<const RVNodeAnalysisExtension*>(pExistingExtension(node));
    return own == nullptr || !own->hasReflexiveEdges() ? kNoEdges : *own->pReflexiveEdgeList();
}

RVEdgeDList* RVAnalysisInternalData::pMultiEdgeList(RVEdge* edge) const {
    auto* own = record<RVEdgeAnalysisExtension>(edge);
    return own == nullptr ? nullptr : own->pMultiEdgeList();
}

RVEdgeDList* RVAnalysisInternalData::pReflexiveEdgeList(RVNode* node) const {
    auto* own = record<RVNodeAnalysisExtension>(node);
    return own == nullptr ? nullptr : own->pReflexiveEdgeList();
}
