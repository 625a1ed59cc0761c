// Memory for many objects of one size: chunks that grow, a free list through freed slots, released as a
// whole. Internal to the library.
#pragma once

#include <cstddef>
#include <cstring>

#ifdef RV_POISON_SLABS
#include <sanitizer/asan_interface.h>
#endif

namespace rv {

class Slab {
public:
    // Slots of slotSize bytes, at least 16 and a multiple of 8. A first block may be given; it stays the
    // giver's.
    explicit Slab(std::size_t slotSize, void* block = nullptr, std::size_t blockSize = 0);
    Slab(const Slab&) = delete;
    Slab& operator=(const Slab&) = delete;
    ~Slab();

    std::size_t slotSize() const { return m_slotSize; }

    void* allocate() {
        if (m_free != nullptr) {
            void* slot = m_free;
            std::memcpy(&m_free, static_cast<char*>(slot) + sizeof(void*), sizeof(void*));
            unpoison(slot, m_slotSize);
            return slot;
        }
        if (m_bump == m_end) grow();
        void* slot = m_bump;
        m_bump += m_slotSize;
        return slot;
    }

    // Gives slots side by side, at least one and at most so many, and says how many.
    void* allocateRun(std::size_t& count) {
        if (m_free != nullptr) {
            count = 1;
            return allocate();
        }
        if (m_bump == m_end) grow();
        const auto left = static_cast<std::size_t>(m_end - m_bump) / m_slotSize;
        if (left < count) count = left;
        void* run = m_bump;
        m_bump += count * m_slotSize;
        return run;
    }

    // Takes back a slot whose object has been destroyed.
    void recycle(void* slot) {
        void* const none = nullptr;
        std::memcpy(slot, &none, sizeof none);
        std::memcpy(static_cast<char*>(slot) + sizeof none, &m_free, sizeof m_free);
        m_free = slot;
#ifdef RV_POISON_SLABS
        ASAN_POISON_MEMORY_REGION(static_cast<char*>(slot) + kLinks, m_slotSize - kLinks);
#endif
    }

    // Releases all slots at once, without looking at them; a given block is used again.
    void releaseAll();

    // Moves all memory of another slab of the same slot size into this one.
    void adopt(Slab& other);

    // Calls f(slot) for every slot in use. Only for objects whose first word is never zero, as a
    // pointer to virtual functions is.
    template <class F>
    void forEachInUse(F f) {
        if (m_block != nullptr) visitRange(m_block, m_chunks == nullptr ? m_bump : m_blockEnd, f);
        for (Chunk* chunk = m_chunks; chunk != nullptr; chunk = chunk->next) {
            visitRange(firstSlot(chunk), chunk == m_chunks ? m_bump : chunk->end, f);
        }
    }

private:
    struct Chunk {
        Chunk* next;
        char* end;  // of the slots handed out when the next chunk was begun
    };
    static constexpr std::size_t kHeader = 64;
    static char* firstSlot(Chunk* chunk) { return reinterpret_cast<char*>(chunk) + kHeader; }

    // Of a free slot: that it is free, and the next one.
    static constexpr std::size_t kLinks = 2 * sizeof(void*);
    // Memory is in use again. Only builds with the address sanitizer have it poisoned when it is not.
    static void unpoison([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef RV_POISON_SLABS
        ASAN_UNPOISON_MEMORY_REGION(memory, size);
#endif
    }

    template <class F>
    void visitRange(char* slot, char* end, F& f) {
        while (slot != end) {
            char* next = slot + m_slotSize;
            void* word = nullptr;
            std::memcpy(&word, slot, sizeof word);
            if (word != nullptr) f(static_cast<void*>(slot));
            slot = next;
        }
    }

    void grow();
    void freeChunks();

    std::size_t m_slotSize;
    std::size_t m_nextChunk;
    char* m_block;
    char* m_blockEnd;
    char* m_bump;
    char* m_end;
    void* m_free = nullptr;
    Chunk* m_chunks = nullptr;  // newest first; the bump pointer stands in the newest
};

}  // namespace rv
