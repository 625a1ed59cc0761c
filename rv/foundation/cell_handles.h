// Where the members of a graph stand in a list, for removal in O(1). Internal to the library.
//
// A list may be changed by others meanwhile, so a noted cell is used only when it can be told that it still
// holds the member: cells keep their memory until the list says otherwise, and a cell that was given up
// never reads as holding an object.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/foundation/graph.h"
#include "rv/foundation/list.h"

namespace rv {

class CellHandles {
public:
    // Forgets all cells; from now on cells of this list, for members with dense indices below the limit.
    void begin(const RVDList* list, int limit) {
        m_list = list;
        m_releases = list->releaseCount();
        m_length = 0;
        m_cells.assign(static_cast<std::size_t>(limit), nullptr);
    }
    // The index is the member's, which itself may be gone by now.
    void note(int index, RVDListCell* cell) {
        const auto place = static_cast<std::size_t>(index);
        if (place >= m_cells.size()) m_cells.resize(place + 1);
        m_cells[place] = cell;
        ++m_length;
    }

    // The member's cell if it is the one that was noted, else none.
    RVDListCell* noted(const RVGraphMember* member) const {
        const std::size_t place = placeOf(member);
        if (m_list == nullptr || m_list->releaseCount() != m_releases || place >= m_cells.size())
            return nullptr;
        RVDListCell* cell = m_cells[place];
        return cell != nullptr && cell->pObject() == member && cell->isInList() ? cell : nullptr;
    }
    // The member's cell. O(1), or O(n) where the list has been changed by others.
    RVDListCell* find(const RVGraphMember* member) const {
        if (RVDListCell* cell = noted(member)) return cell;
        if (m_list == nullptr || m_list->length() == 0) return nullptr;
        const std::size_t place = placeOf(member);
        const bool unknown = place >= m_cells.size() || m_cells[place] == nullptr;
        if (unknown && m_list->length() == m_length) return nullptr;
        return m_list->searchObject(member);
    }
    // A noted cell was discarded.
    void forget() { --m_length; }

private:
    const RVDList* m_list = nullptr;
    std::uint32_t m_releases = 0;
    int m_length = 0;  // of the list, if nobody else has changed it
    std::vector<RVDListCell*> m_cells;
};

}  // namespace rv
