#include "rv/framework/algorithm_data.h"

#include "rv/framework/data_graphs.h"

RVAlgorithmData::RVAlgorithmData() : m_graphs(std::make_unique<rv::DataGraphs>(this)) {}

RVAlgorithmData::RVAlgorithmData(RVGraph* graph) : RVAlgorithmData() { pAssociatedGraph(graph); }

RVAlgorithmData::RVAlgorithmData(const RVAlgorithmData& other, RVDeepFlagEnum) : RVAlgorithmData() {
    RVAlgorithmData::copyObject(&other);
}

RVAlgorithmData& RVAlgorithmData::operator=(const RVAlgorithmData& other) {
    if (this == &other) return *this;
    forEachColumn([](rv::ColumnBase& column) { column.clear(); });
    m_graphs = std::make_unique<rv::DataGraphs>(this);
    pAssociatedGraph(other.m_pAssociatedGraph);
    pInputGraph(other.m_pInputGraph);
    m_graphs->copyFrom(*other.m_graphs);
    return *this;
}

RVAlgorithmData::~RVAlgorithmData() { destroySecondaryGraphs(); }

void RVAlgorithmData::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVAlgorithmData::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVAlgorithmData* RVAlgorithmData::cloneObject() const { return new RVAlgorithmData(*this); }
RVAlgorithmData* RVAlgorithmData::cloneAttributes() const { return new RVAlgorithmData(*this); }

// The list is empty before the first graph dies, since a dying graph looks itself up in it.
void RVAlgorithmData::destroySecondaryGraphs() { m_secondaryGraphs->deleteAllCellsAndObjects(); }

RVGraph* RVAlgorithmData::pAssociatedGraph(RVGraph* graph) {
    if (graph != nullptr) m_graphs->at(graph);
    return m_pAssociatedGraph = graph;
}

RVGraph* RVAlgorithmData::pInputGraph(RVGraph* graph) {
    if (graph != nullptr) m_graphs->at(graph);
    return m_pInputGraph = graph;
}

RVNode* RVAlgorithmData::pCopyNode(RVNode* original) const {
    return static_cast<RVNode*>(m_graphs->mapped(original, rv::kNodes, rv::DataGraphs::kCopies));
}
RVNode* RVAlgorithmData::pOriginalNode(RVNode* copy) const {
    return static_cast<RVNode*>(m_graphs->mapped(copy, rv::kNodes, rv::DataGraphs::kOriginals));
}
RVEdge* RVAlgorithmData::pCopyEdge(RVEdge* original) const {
    return static_cast<RVEdge*>(m_graphs->mapped(original, rv::kEdges, rv::DataGraphs::kCopies));
}
RVEdge* RVAlgorithmData::pOriginalEdge(RVEdge* copy) const {
    return static_cast<RVEdge*>(m_graphs->mapped(copy, rv::kEdges, rv::DataGraphs::kOriginals));
}
RVNode* RVAlgorithmData::pCopyNode(RVNode* original, RVNode* copy) {
    m_graphs->map(original, copy, rv::kNodes, rv::DataGraphs::kCopies);
    return copy;
}
RVNode* RVAlgorithmData::pOriginalNode(RVNode* copy, RVNode* original) {
    m_graphs->map(copy, original, rv::kNodes, rv::DataGraphs::kOriginals);
    return original;
}
RVEdge* RVAlgorithmData::pCopyEdge(RVEdge* original, RVEdge* copy) {
    m_graphs->map(original, copy, rv::kEdges, rv::DataGraphs::kCopies);
    return copy;
}
RVEdge* RVAlgorithmData::pOriginalEdge(RVEdge* copy, RVEdge* original) {
    m_graphs->map(copy, original, rv::kEdges, rv::DataGraphs::kOriginals);
    return original;
}

void RVAlgorithmData::copyGraph(const RVGraph* original, RVGraph* copy) {
    m_graphs->copyGraph(original, copy);
}

void RVAlgorithmData::deleteDataReferences(RVGraph* graph) {
    rv::DataGraph* const found = m_graphs->find(graph);
    if (found == nullptr) return;
    found->dropRecords();
    forEachColumn([graph](rv::ColumnBase& column) {
        if (column.m_hasRecords) column.drop(graph);
    });
}

bool RVAlgorithmData::mayHaveRecords() const { return m_graphs->hasRecords() || !hasStandardRecords(); }

RVNodeAlgorithmExtension* RVAlgorithmData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeAlgorithmExtension>(node);
}

RVEdgeAlgorithmExtension* RVAlgorithmData::newEdgeAlgorithmExtension(RVEdge* edge) {
    return newRecord<RVEdgeAlgorithmExtension>(edge);
}

RVAlgorithmExtensionList* RVAlgorithmData::pAlgorithmExtensionList(
    RVGraphObjectExtensions* extensions) const {
    return extensions->pAnalysisExtensions();
}

void* RVAlgorithmData::recordMemory(RVGraphMember* object, std::size_t size, bool plain) {
    return m_graphs->at(object->pHomeGraph()).memory(rv::kindOf(object), size, plain);
}

// Making a record that was only asked for does not change what the data answers, so it is no change.
RVAlgorithmExtension* RVAlgorithmData::makeExtension(RVGraphObject* object) const {
    if (object == nullptr || (!object->isNode() && !object->isEdge())) return nullptr;
    for (auto* found = pAlgorithmExtensionList(object)->pFirstExtension(); found != nullptr;
         found = found->m_pNext) {
        if (found->m_pData == this) return found;
    }
    auto* self = const_cast<RVAlgorithmData*>(this);
    RVAlgorithmExtension* made = nullptr;
    if (object->isNode()) {
        made = self->newNodeAlgorithmExtension(static_cast<RVNode*>(object));
    } else {
        made = self->newEdgeAlgorithmExtension(static_cast<RVEdge*>(object));
    }
    if (made == nullptr) return nullptr;
    made->m_pOwner = object;
    made->m_pData = this;
    std::unique_ptr<RVAlgorithmExtension> record(made);
    auto* const member = static_cast<RVGraphMember*>(object);
    m_graphs->at(member->pHomeGraph()).enlist(made);
    forEachColumn([&](rv::ColumnBase& column) {
        if (column.m_hasRecords && column.isOf(member)) column.giveTo(made);
    });
    return record.release();
}

// A record of this data's own with the values of another data's record on the same object.
void RVAlgorithmData::copyExtension(const RVAlgorithmExtension& source) {
    RVAlgorithmExtension* record = pAlgorithmExtension(source.m_pOwner);
    if (record == nullptr) return;
    if (typeid(*record) == typeid(source)) {
        record->copyObject(&source);
        return;
    }
    // The source was made by the factory of a class derived from this one.
    std::unique_ptr<RVAlgorithmExtension> same(source.cloneObject());
    const RVAlgorithmExtension* const made = same.get();
    if (made == nullptr || typeid(*made) != typeid(source)) return;  // not said how it is cloned
    delete record;
    same->m_pOwner = source.m_pOwner;
    same->m_pData = this;
    m_graphs->at(static_cast<RVGraphMember*>(source.m_pOwner)->pHomeGraph()).enlist(same.get());
    static_cast<void>(same.release());
}

// RVAlgorithmInputData, RVAlgorithmOutputData

RV_OBJECT_IMPL(RVAlgorithmInputData)
RV_OBJECT_IMPL(RVAlgorithmOutputData)

bool RVAlgorithmInputData::hasField(const char*) const { return false; }
bool RVAlgorithmInputData::hasNodeField(const char*) const { return false; }
bool RVAlgorithmInputData::hasEdgeField(const char*) const { return false; }
int RVAlgorithmInputData::intField(const char*, RVGraphObject*) const { return 0; }
double RVAlgorithmInputData::doubleField(const char*, RVGraphObject*) const { return 0.0; }
RVObject* RVAlgorithmInputData::pObjectField(const char*, RVGraphObject*) const { return nullptr; }
void RVAlgorithmInputData::copyData(const RVAlgorithmInputData*) {}
