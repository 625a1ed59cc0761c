// The nodes or edges of a graph that a run has not dealt with yet, in graph order. Internal to the library.
//
// Most runs only take members away and ask for the first one left. So members are kept as an array with
// marks, which costs little, and become a list when somebody asks for the list. From then on the list, which
// may be changed by whoever asked, is what holds, and members are taken out of it by handles.
#pragma once

#include <cstddef>
#include <vector>

#include "rv/foundation/cell_handles.h"
#include "rv/foundation/graph.h"

namespace rv {

template <class Member, class List>
class PendingMembers {
public:
    PendingMembers() = default;
    PendingMembers(const PendingMembers& other) { *this = other; }
    // The cells of a list are not noted, since what it holds may be gone; taking then searches the list.
    PendingMembers& operator=(const PendingMembers& other) {
        if (this == &other) return *this;
        m_list = other.m_list;
        m_handles = CellHandles();
        m_members = other.m_members;
        m_pending = other.m_pending;
        m_first = other.m_first;
        m_count = other.m_count;
        m_isList = m_isHandedOut = other.m_isList;
        if (m_isList) m_handles.begin(m_list.get(), 0);
        return *this;
    }
    ~PendingMembers() = default;

    // Empties everything.
    void clear() {
        m_list->deleteAllCells();
        m_members.clear();
        m_pending.clear();
        m_first = 0;
        m_count = 0;
        m_isList = false;
        m_isHandedOut = false;
    }

    // Starts with all members of a graph's list, whose dense indices are below the limit.
    void fill(const List& members, int limit) {
        clear();
        m_pending.assign(static_cast<std::size_t>(limit), true);
        m_members.reserve(static_cast<std::size_t>(members.length()));
        for (Member* member : members) m_members.push_back({member, member->denseIndex()});
        m_count = members.length();
    }

    // Takes a member away, if it is there. O(1) unless others have changed the list.
    void take(const Member* member) {
        if (m_isList) {
            RVDListCell* cell = m_handles.find(member);
            if (cell == nullptr) return;
            m_list->discardCell(cell);
            m_handles.forget();
            --m_count;
        } else if (isPending(member)) {
            m_pending[placeOf(member)] = false;
            --m_count;
        }
    }

    // Whether the member is there; a member that others have put into the list may read as not there.
    bool isPending(const Member* member) const {
        const auto place = placeOf(member);
        return m_isList ? m_handles.noted(member) != nullptr : place < m_pending.size() && m_pending[place];
    }

    // The first one, or none. O(1) amortised.
    Member* first() {
        if (m_isList) return static_cast<Member*>(m_list->pFirstObject());
        while (m_first < m_members.size() && !isPending(m_members[m_first])) ++m_first;
        return m_first < m_members.size() ? m_members[m_first].member : nullptr;
    }

    template <class F>
    void forEach(F f) const {
        if (m_isList) {
            for (Member* member : *m_list) f(member);
            return;
        }
        for (std::size_t i = m_first; i < m_members.size(); ++i) {
            if (isPending(m_members[i])) f(m_members[i].member);
        }
    }

    int length() const { return m_isList ? m_list->length() : m_count; }
    // Whether nobody but take() can have changed what is there or its order since changes were accepted.
    bool isUntouched() const { return !m_isHandedOut && length() == m_count; }

    // Takes the list as others have left it for what is there.
    void acceptChanges() {
        m_isHandedOut = false;
        if (!m_isList) return;
        m_handles.begin(m_list.get(), static_cast<int>(m_pending.size()));
        for (RVDListIter it(m_list.get()); it; it++) {
            m_handles.note(static_cast<Member*>(it.pObject())->denseIndex(), it.pCell());
        }
        m_count = m_list->length();
    }

    List* list() {
        m_isHandedOut = true;
        if (m_isList) return m_list.get();
        m_handles.begin(m_list.get(), static_cast<int>(m_pending.size()));
        for (const Entry& entry : m_members) {
            if (isPending(entry)) m_handles.note(entry.index, m_list->appendObject(entry.member));
        }
        m_isList = true;
        return m_list.get();
    }

private:
    // The index is kept beside the member, which somebody may have destroyed.
    struct Entry {
        Member* member;
        int index;
    };
    bool isPending(const Entry& entry) const { return m_pending[static_cast<std::size_t>(entry.index)]; }

    Owned<List> m_list;
    CellHandles m_handles;
    std::vector<Entry> m_members;
    std::vector<bool> m_pending;  // by dense index
    std::size_t m_first = 0;      // all members before are taken
    int m_count = 0;
    bool m_isList = false;
    bool m_isHandedOut = false;  // since changes were accepted
};

}  // namespace rv
