// Numbers as objects, read and overwritten in place. As keys they compare by value.
#pragma once

#include <cstdint>
#include <new>

#include "rv/foundation/object.h"

namespace rv {
class IntPool;
}

class RV_EXPORT RVInt final : public RVObject {
public:
    explicit RVInt(int value = 0) : m_value(value) {}
    RVInt(const RVInt& other, RVDeepFlagEnum = RVShallow) : RVObject(other), m_value(other.m_value) {}
    RVInt& operator=(const RVInt& other) {
        m_value = other.m_value;
        return *this;
    }
    ~RVInt() override = default;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVInt* cloneObject() const override;
    RVInt* cloneAttributes() const override;
    static RVInt* castDown(RVObject* object) { return static_cast<RVInt*>(object); }

    int value() const { return m_value; }
    int value(int v) { return m_value = v; }

    rv::KeyHash keyHash() const override { return {static_cast<std::uint32_t>(m_value), true}; }
    bool keyEquals(const RVObject& other) const override;

    // Values that a hash map made for itself go back to the map, all others to the heap.
    static void operator delete(RVInt* value, std::destroying_delete_t);

private:
    friend class rv::IntPool;
    int m_value;
    std::uint32_t m_poolSlot = 0;  // place in the chunk of a map's pool, counted from 1; 0 on the heap
};

class RV_EXPORT RVDouble final : public RVObject {
public:
    explicit RVDouble(double value = 0.0) : m_value(value) {}
    RVDouble(const RVDouble& other, RVDeepFlagEnum = RVShallow) : RVObject(other), m_value(other.m_value) {}
    RVDouble& operator=(const RVDouble& other) = default;
    ~RVDouble() override = default;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVDouble* cloneObject() const override;
    RVDouble* cloneAttributes() const override;
    static RVDouble* castDown(RVObject* object) { return static_cast<RVDouble*>(object); }

    double value() const { return m_value; }
    double value(double v) { return m_value = v; }

    // Both zeros are one key; a NaN equals itself.
    rv::KeyHash keyHash() const override;
    bool keyEquals(const RVObject& other) const override;

private:
    std::uint64_t keyBits() const;
    double m_value;
};

namespace rv {

// The boxed integers of one hash map. Internal to the library.
class RV_EXPORT IntPool {
public:
    IntPool() = default;
    IntPool(const IntPool&) = delete;
    IntPool& operator=(const IntPool&) = delete;
    ~IntPool();

    RVInt* create(int value);
    // Ends all values at once.
    void releaseAll();

private:
    friend class ::RVInt;
    struct Chunk {
        IntPool* pool;
        Chunk* next;
        std::uint32_t capacity;
        std::uint32_t used;
    };
    struct FreeSlot {
        FreeSlot* next;
        std::uint32_t place;
    };
    static void destroy(RVInt* value);

    Chunk* m_chunks = nullptr;  // newest first
    FreeSlot* m_free = nullptr;
};

}  // namespace rv
