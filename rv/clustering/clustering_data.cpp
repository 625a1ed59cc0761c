#include "rv/clustering/clustering_data.h"

#include <memory>

RV_OBJECT_IMPL(RVNodeExtensionRatioCut)
RV_OBJECT_IMPL(RVEdgeExtensionRatioCutInput)
RV_OBJECT_IMPL(RVNodeExtensionClusteringInternal)
RV_OBJECT_IMPL(RVEdgeExtensionClusteringInternal)
RV_OBJECT_IMPL(RVBasicClusteringInputData)
RV_OBJECT_IMPL(RVClusteringInputData)
RV_OBJECT_IMPL(RVClusteringOutputData)
RV_OBJECT_IMPL(RVClusteringBinTree)
RV_OBJECT_IMPL(RVClusterSizeSort)
RV_OBJECT_IMPL(RVClusteringInternalData)

// Inputs

void RVBasicClusteringInputData::getWeights(RVBasicClusteringInputData* other) {
    const RVGraph* graph = pAssociatedGraph();
    if (other == nullptr || graph == nullptr) return;
    for (RVNode* node : *graph->pNodeList()) setWeight(node, other->getWeight(node));
    for (RVEdge* edge : *graph->pEdgeList()) setCost(edge, other->getCost(edge));
}

void RVClusteringInputData::addConstraint(RVClusteringConstraint* constraint) {
    if (constraint != nullptr) m_constraints->appendObject(constraint);
}

void RVClusteringInputData::addConstraints(const RVDList* constraints) {
    m_constraints->copyAppendList(constraints);
}

// Outputs

void RVClusteringOutputData::addCluster(RVDList* cluster) {
    if (cluster != nullptr) m_clusters->appendObject(cluster);
}

void RVClusteringOutputData::addClusters(RVDList* clusters) {
    if (clusters == pClusters()) return;
    for (RVDListIter it(clusters); it; it++) addCluster(RVDList::castDown(it.pObject()));
}

void RVClusteringOutputData::buildClusterList(RVDList& list) const {
    if (&list == pClusters()) return;
    list.deleteAllCells();
    for (RVDListIter it(pClusters()); it; it++) {
        auto copy = std::make_unique<RVDList>(*RVDList::castDown(it.pObject()));
        list.appendObject(copy.get());
        static_cast<void>(copy.release());
    }
}

void RVClusteringOutputData::generateClusterNumbers() {
    int number = 0;
    for (RVDListIter cluster(pClusters()); cluster; cluster++) {
        ++number;
        for (RVDListIter it(RVDList::castDown(cluster.pObject())); it; it++) {
            m_numbers.store(static_cast<RVNode*>(it.pObject()), number);
        }
    }
}

void RVClusteringOutputData::reset() {
    m_clusters.clear();
    m_numbers.clear();
}

// Orderings

namespace {

int compare(double a, double b) { return a < b ? -1 : a > b ? 1 : 0; }

double weightOf(RVObject* object) {
    const auto* value = RVDouble::castDown(static_cast<RVGraphObject*>(object)->pIUserField());
    return value == nullptr ? 0.0 : value->value();
}

int numberOf(RVObject* object) {
    const auto* value = static_cast<const RVInt*>(static_cast<RVGraphObject*>(object)->pUserField());
    return value == nullptr ? 0 : value->value();
}

}  // namespace

int RVClusteringBinTree::virtualObjectCompare(RVObject* a, RVObject* b) const {
    const int order = compare(weightOf(a), weightOf(b));
    return order != 0 ? order : compare(numberOf(a), numberOf(b));
}

int RVClusterSizeSort::virtualCellCompare(RVDListCell* first, RVDListCell* second) const {
    return compare(weightOf(first->pObject()), weightOf(second->pObject()));
}
