// References: what a data object knows of one node or edge, until that ends. Internal to the library;
// installed, since data classes have such members.
#pragma once

#include <cstddef>
#include <type_traits>

#include "rv/framework/columns.h"

namespace rv {

// A pointer that becomes nullptr when its object is destroyed, and stays when the object is detached or goes
// to another graph. Of an object that belongs to no graph nobody tells when it ends. A member of its data
// class:
//
//   rv::NodeReference m_pStartNode{this};
template <class Object>
class Reference final : public ColumnBase {
public:
    explicit Reference(RVAlgorithmData* data) : ColumnBase(data, std::is_same_v<Object, RVNode>, false) {}
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference& other) {
        if (this != &other) *this = other.m_object;
        return *this;
    }
    ~Reference() override = default;

    // Gives the object.
    Object* operator=(Object* object) {
        RVGraph* const home = object == nullptr ? nullptr : object->pHomeGraph();
        if (home != nullptr) observe(home);
        m_object = object;
        m_graph = home;
        m_place = home == nullptr ? 0 : placeOf(object);
        return object;
    }
    operator Object*() const { return m_object; }

private:
    bool is(const RVGraph* graph, std::size_t place) const { return m_graph == graph && m_place == place; }

    void erase(const RVGraph* graph, std::size_t place) noexcept override {
        if (is(graph, place)) clear();
    }
    void makeRoom(RVGraph* graph, const RVGraph* from, std::size_t placeThere) override {
        if (is(from, placeThere)) observe(graph);
    }
    void move(const RVGraphMember* member, const RVGraph* from, std::size_t placeThere) noexcept override {
        if (!is(from, placeThere)) return;
        m_graph = member->pHomeGraph();
        m_place = placeOf(member);
    }
    void giveTo(RVAlgorithmExtension*) noexcept override {}
    void drop(const RVGraph* graph) noexcept override {
        if (m_graph == graph) clear();
    }
    void clear() noexcept override {
        m_object = nullptr;
        m_graph = nullptr;
    }

    Object* m_object = nullptr;
    const RVGraph* m_graph = nullptr;  // whose it is
    std::size_t m_place = 0;
};

using NodeReference = Reference<RVNode>;

}  // namespace rv
