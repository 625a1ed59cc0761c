// Pointers that know when their object has ended. Internal to the library; installed, since public classes
// have such members.
#pragma once

#include <utility>

namespace rv {

class WatchBase;

// A base, or a member that ends with its owner, of what is watched. Copying copies no watches.
class Watched {
public:
    Watched() = default;
    Watched(const Watched&) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is copied
    Watched& operator=(const Watched&) { return *this; }
    inline ~Watched();

private:
    friend class WatchBase;
    WatchBase* m_first = nullptr;
};

class WatchBase {
protected:
    WatchBase() = default;
    ~WatchBase() { leave(); }
    WatchBase(const WatchBase&) = delete;
    WatchBase& operator=(const WatchBase&) = delete;

    void enter(Watched& watched) {
        m_next = watched.m_first;
        m_link = &watched.m_first;
        if (m_next != nullptr) m_next->m_link = &m_next;
        watched.m_first = this;
    }
    void leave() {
        if (m_link == nullptr) return;
        *m_link = m_next;
        if (m_next != nullptr) m_next->m_link = m_link;
        m_link = nullptr;
    }
    bool isWatching() const { return m_link != nullptr; }

private:
    friend class Watched;
    WatchBase* m_next = nullptr;
    WatchBase** m_link = nullptr;  // what points here; nullptr without an object
};

inline Watched::~Watched() {
    while (m_first != nullptr) m_first->leave();
}

// A pointer to a T, which has a member function watched(); nullptr once the object has ended.
template <class T>
class Watch : WatchBase {
public:
    Watch() = default;
    Watch(const Watch& other) { *this = other.get(); }
    Watch& operator=(const Watch& other) { return this == &other ? *this : *this = other.get(); }
    Watch& operator=(T* object) {
        leave();
        m_object = object;
        if (object != nullptr) enter(object->watched());
        return *this;
    }
    ~Watch() = default;

    T* get() const { return isWatching() ? m_object : nullptr; }

private:
    T* m_object = nullptr;
};

}  // namespace rv
