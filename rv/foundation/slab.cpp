#include "rv/foundation/slab.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "rv/foundation/buffer.h"

namespace rv {

namespace {
constexpr std::size_t kFirstSlots = 6;
constexpr std::size_t kCacheLine = 64;

std::size_t usable(std::size_t bytes, std::size_t slotSize) { return bytes / slotSize * slotSize; }
}  // namespace

Slab::Slab(std::size_t slotSize, void* block, std::size_t blockSize)
    : m_slotSize(slotSize),
      m_nextChunk(kHeader + kFirstSlots * slotSize),
      m_block(static_cast<char*>(block)),
      m_blockEnd(m_block == nullptr ? nullptr : m_block + usable(blockSize, slotSize)),
      m_bump(m_block),
      m_end(m_blockEnd) {}

Slab::~Slab() { freeChunks(); }

void Slab::grow() {
    const std::size_t bytes = (m_nextChunk + kCacheLine - 1) / kCacheLine * kCacheLine;
    void* memory = bytes < kHugePage ? std::aligned_alloc(kCacheLine, bytes) : allocateHuge(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    if (m_chunks != nullptr) m_chunks->end = m_bump;
    Chunk* chunk = ::new (memory) Chunk{m_chunks, nullptr};
    m_chunks = chunk;
    m_bump = firstSlot(chunk);
    m_end = m_bump + usable(bytes - kHeader, m_slotSize);
    m_nextChunk = std::min(2 * bytes, std::max(kHugePage, kHeader + m_slotSize));
}

void Slab::freeChunks() {
    while (m_chunks != nullptr) {
        Chunk* next = m_chunks->next;
        std::free(m_chunks);
        m_chunks = next;
    }
}

void Slab::releaseAll() {
    freeChunks();
    if (m_block != nullptr) unpoison(m_block, static_cast<std::size_t>(m_blockEnd - m_block));
    m_free = nullptr;
    m_bump = m_block;
    m_end = m_blockEnd;
    m_nextChunk = kHeader + kFirstSlots * m_slotSize;
}

void Slab::adopt(Slab& other) {
    if (other.m_chunks == nullptr) return;
    other.m_chunks->end = other.m_bump;
    // Behind our newest chunk, in which the bump pointer stands; its unused slots are given up.
    Chunk* last = other.m_chunks;
    while (last->next != nullptr) last = last->next;
    if (m_chunks == nullptr) {
        m_chunks = other.m_chunks;
        m_bump = m_end = m_chunks->end;
    } else {
        last->next = m_chunks->next;
        m_chunks->next = other.m_chunks;
    }
    other.m_chunks = nullptr;
    other.releaseAll();
}

}  // namespace rv
