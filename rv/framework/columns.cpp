#include "rv/framework/columns.h"

#include "rv/framework/data_graphs.h"

namespace rv {

ColumnBase::ColumnBase(RVAlgorithmData* data, bool isOfNodes, bool hasRecords)
    : m_data(data), m_previous(data->m_pLastColumn), m_isOfNodes(isOfNodes), m_hasRecords(hasRecords) {
    data->m_pLastColumn = this;
}

// Members end in the reverse of the order in which they were made.
ColumnBase::~ColumnBase() { m_data->m_pLastColumn = m_previous; }

bool ColumnBase::usable() const { return !m_hasRecords || !m_data->mayHaveRecords(); }

std::optional<RVAlgorithmExtension*> ColumnBase::recordOf(RVGraphObject* object) const {
    if (usable()) return std::nullopt;
    if (!m_data->hasStandardRecords()) return m_data->pAlgorithmExtension(object);
    RVAlgorithmExtension* const record = m_data->pExistingExtension(object);
    return record == nullptr ? std::nullopt : std::optional(record);
}

void ColumnBase::observe(RVGraph* graph) const { m_data->m_graphs->at(graph); }

}  // namespace rv
