// The queue of a search for cheapest paths. Internal to the library, not installed.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

// Gives the smallest key, of equal ones the one that came first. An entry that was overtaken stays until it
// is given.
//
// A radix queue (Ahuja, Mehlhorn, Orlin and Tarjan 1990) with digits of six bits. Invariant: no key is below
// the base; an entry stands in the level of the highest digit in which its key differs from the base, in the
// bucket of that digit of its own key. So equal keys share a bucket, where they keep their order, and the
// first bucket of the lowest level that is not empty has the smallest keys. When no entry of level 0 is left,
// the smallest key of that bucket becomes the base, and its entries go to the levels below, which are empty.
//
// O(1) for each digit in which a key differs from the base: as fast as a ring of buckets where costs are
// small, and no bound of them need be known. 12 or 16 bytes an entry; the place of one that was given is used
// again.
template <class Key>
class NearestQueue {
public:
    struct Entry {
        Key key;
        Index node;
    };

    bool isEmpty() const { return m_levels == 0; }
    // REQUIRES: no key is smaller than the one given last, or than 0.
    void push(Key key, Index node) {
        const Index link = newLink();
        m_links[link] = {{key, node}, kNoIndex};
        add(link);
    }
    // REQUIRES: it is not empty.
    Entry pop() {
        if ((m_levels & 1U) == 0) dealOut();
        const Place place{0, firstBit(m_used[0])};
        Bucket& bucket = bucketAt(place);
        const Index first = bucket.first;
        const Link link = m_links[first];
        if (first == bucket.last) {
            setUsed(place, false);
        } else {
            bucket.first = link.next;
        }
        m_links[first].next = m_free;
        m_free = first;
        return link.entry;
    }

private:
    static constexpr unsigned kDigit = 6;
    static constexpr unsigned kRadix = 1U << kDigit;
    static constexpr unsigned kLevels = (std::numeric_limits<Key>::digits + kDigit - 1) / kDigit;
    using Bits = std::make_unsigned_t<Key>;

    struct Place {
        unsigned level;
        unsigned digit;
    };
    struct Bucket {
        Index first;
        Index last;
    };
    struct Link {
        Entry entry;
        Index next;
    };

    static unsigned firstBit(std::uint64_t bits) { return static_cast<unsigned>(std::countr_zero(bits)); }
    Bucket& bucketAt(Place place) { return m_buckets[place.level * kRadix + place.digit]; }
    Place placeOf(Key key) const {
        const auto bits = static_cast<Bits>(key);
        const auto differing = static_cast<Bits>(bits ^ static_cast<Bits>(m_base));
        const unsigned level = static_cast<unsigned>(std::bit_width(Bits(differing | 1)) - 1) / kDigit;
        return {level, static_cast<unsigned>(bits >> kDigit * level) % kRadix};
    }
    bool isUsed(Place place) const { return (m_used[place.level] >> place.digit & 1U) != 0; }
    void setUsed(Place place, bool isUsed) {
        const std::uint64_t bit = std::uint64_t{1} << place.digit;
        std::uint64_t& level = m_used[place.level];
        level = isUsed ? level | bit : level & ~bit;
        const std::uint32_t levelBit = std::uint32_t{1} << place.level;
        m_levels = level != 0 ? m_levels | levelBit : m_levels & ~levelBit;
    }

    Index newLink() {
        if (m_free == kNoIndex) {
            m_links.emplace_back();
            return static_cast<Index>(m_links.size() - 1);
        }
        const Index link = m_free;
        m_free = m_links[link].next;
        return link;
    }
    void add(Index link) {
        const Place place = placeOf(m_links[link].entry.key);
        Bucket& bucket = bucketAt(place);
        if (isUsed(place)) {
            m_links[bucket.last].next = link;
        } else {
            bucket.first = link;
            setUsed(place, true);
        }
        bucket.last = link;
    }
    void dealOut() {
        const unsigned level = firstBit(m_levels);
        const Place place{level, firstBit(m_used[level])};
        const Bucket bucket = bucketAt(place);
        setUsed(place, false);
        m_base = m_links[bucket.first].entry.key;
        for (Index link = bucket.first; link != bucket.last;) {
            link = m_links[link].next;
            m_base = std::min(m_base, m_links[link].entry.key);
        }
        for (Index link = bucket.first, next = kNoIndex;; link = next) {
            next = m_links[link].next;
            add(link);
            if (link == bucket.last) break;
        }
    }

    std::array<Bucket, std::size_t{kLevels} * kRadix> m_buckets;  // those that are used
    std::array<std::uint64_t, kLevels> m_used{};                  // a bit for each digit
    std::uint32_t m_levels = 0;                                   // a bit for each level that is not empty
    Buffer<Link> m_links;
    Index m_free = kNoIndex;  // the first of the links that hold no entry
    Key m_base = 0;
};

}  // namespace rv
