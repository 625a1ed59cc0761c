#include "rv/foundation/boxed_values.h"

#include <algorithm>
#include <bit>

void RVInt::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVInt::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVInt* RVInt::cloneObject() const { return new RVInt(m_value); }
RVInt* RVInt::cloneAttributes() const { return new RVInt(m_value); }

bool RVInt::keyEquals(const RVObject& other) const {
    const auto* number = dynamic_cast<const RVInt*>(&other);
    return number != nullptr && number->m_value == m_value;
}

void RVInt::operator delete(RVInt* value, std::destroying_delete_t) {
    if (value->m_poolSlot != 0) {
        rv::IntPool::destroy(value);
    } else {
        value->~RVInt();
        ::operator delete(static_cast<void*>(value));
    }
}

void RVDouble::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVDouble::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVDouble* RVDouble::cloneObject() const { return new RVDouble(m_value); }
RVDouble* RVDouble::cloneAttributes() const { return new RVDouble(m_value); }

std::uint64_t RVDouble::keyBits() const { return m_value == 0.0 ? 0 : std::bit_cast<std::uint64_t>(m_value); }

rv::KeyHash RVDouble::keyHash() const {
    return {static_cast<std::uint32_t>((keyBits() * 0x9E3779B97F4A7C15ULL) >> 32), true};
}

bool RVDouble::keyEquals(const RVObject& other) const {
    const auto* number = dynamic_cast<const RVDouble*>(&other);
    return number != nullptr && number->keyBits() == keyBits();
}

namespace rv {

namespace {
constexpr std::uint32_t kFirstCapacity = 8;
constexpr std::uint32_t kLargestCapacity = 1U << 16;
constexpr std::size_t kHeader = 32;
}  // namespace

IntPool::~IntPool() { releaseAll(); }

void IntPool::releaseAll() {
    while (m_chunks != nullptr) {
        Chunk* next = m_chunks->next;
        ::operator delete(static_cast<void*>(m_chunks));
        m_chunks = next;
    }
    m_free = nullptr;
}

RVInt* IntPool::create(int value) {
    static_assert(sizeof(Chunk) <= kHeader && sizeof(FreeSlot) <= sizeof(RVInt));
    void* memory = nullptr;
    std::uint32_t place = 0;
    if (m_free != nullptr) {
        memory = m_free;
        place = m_free->place;
        m_free = m_free->next;
    } else {
        if (m_chunks == nullptr || m_chunks->used == m_chunks->capacity) {
            const std::uint32_t capacity =
                m_chunks == nullptr ? kFirstCapacity : std::min(2 * m_chunks->capacity, kLargestCapacity);
            void* chunk = ::operator new(kHeader + capacity * sizeof(RVInt));
            m_chunks = ::new (chunk) Chunk{this, m_chunks, capacity, 0};
        }
        memory = reinterpret_cast<char*>(m_chunks) + kHeader + m_chunks->used * sizeof(RVInt);
        place = ++m_chunks->used;
    }
    RVInt* number = ::new (memory) RVInt(value);
    number->m_poolSlot = place;
    return number;
}

void IntPool::destroy(RVInt* value) {
    const std::uint32_t place = value->m_poolSlot;
    char* memory = reinterpret_cast<char*>(value);
    IntPool* pool = reinterpret_cast<Chunk*>(memory - (place - 1) * sizeof(RVInt) - kHeader)->pool;
    value->~RVInt();
    pool->m_free = ::new (static_cast<void*>(memory)) FreeSlot{pool->m_free, place};
}

}  // namespace rv
