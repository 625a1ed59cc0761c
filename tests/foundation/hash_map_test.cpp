#include "rv/foundation/hash_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace {

// Keys of all kinds. Those with the same number in `same` are one key to a map.
struct Keys {
    Keys() {
        for (RVGraph& graph : graphs) {
            for (int i = 0; i < 12; ++i) add(graph.addNode(0));
            for (int i = 0; i < 12; ++i) add(graph.addEdge(graph.pFirstNode(), graph.pLastNode(), 0));
        }
        for (RVObject& object : plain) add(&object);
        for (int i = -8; i < 8; ++i) addTwins(new RVInt(i << 16), new RVInt(i << 16));
        for (double d : {1.0, -1.5, std::nan("")}) addTwins(new RVDouble(d), new RVDouble(d));
        addTwins(new RVDouble(0.0), new RVDouble(-0.0));
    }
    void add(RVObject* key) {
        same.push_back(all.size());
        all.push_back(key);
    }
    void addTwins(RVObject* one, RVObject* other) {
        for (RVObject* each : {one, other}) {
            add(each);
            boxed.emplace_back(each);
        }
        same.back() = all.size() - 2;
    }
    RVGraph graphs[3];
    RVObject plain[12];
    std::vector<std::unique_ptr<RVObject>> boxed;
    std::vector<RVObject*> all;
    std::vector<std::size_t> same;
};

struct Entry {
    std::size_t same;
    RVObject* key;
    int value;
};
using Entries = std::vector<Entry>;  // in the order of their insertion

void expectEntries(const RVHashMap& map, const Entries& entries) {
    RVDList values;
    map.buildObjectList(values);
    EXPECT_EQ(map.length(), static_cast<int>(entries.size()));
    RVHashMapIter it(&map);
    RVDListIter value(&values);
    for (const Entry& entry : entries) {
        EXPECT_EQ(it.pKey(), entry.key);
        EXPECT_EQ(static_cast<RVInt*>(it.pValue())->value(), entry.value);
        EXPECT_EQ(value.pObject(), it.pValue());
        it++;
        value++;
    }
    EXPECT_FALSE(it);
    EXPECT_FALSE(value);
}

void changeAtRandom(unsigned seed) {
    std::minstd_rand random(seed);
    const Keys keys;
    Entries entries;
    RVHashMap map(16);
    RVHashSet set(16);
    for (int step = 0; step < 1000 && !testing::Test::HasFailure(); ++step) {
        const std::size_t i = random() % (seed % 2 == 0 ? 3 : keys.all.size());  // few keys: often empty
        RVObject* const key = keys.all[i];
        const int value = static_cast<int>(random() % 1000);
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const Entry& e) { return e.same == keys.same[i]; });
        const bool known = found != entries.end();
        EXPECT_EQ(map.contains(key), known);
        EXPECT_EQ(map.getInt(key, -1), known ? found->value : -1);
        const auto action = random() % 8;
        if (action < 4) {
            EXPECT_EQ(set.add(key), !known);
            if (action < 2) {
                EXPECT_EQ(map.putInt(key, value), value);
            } else {
                EXPECT_EQ(std::unique_ptr<RVObject>(map.put(key, new RVInt(value))) != nullptr, known);
            }
            if (known) {
                found->value = value;
            } else {
                entries.push_back({keys.same[i], key, value});
            }
        } else if (action < 7) {
            const bool destroys = action == 4;
            EXPECT_EQ(set.remove(key), known);
            EXPECT_EQ(std::unique_ptr<RVObject>(map.remove(key, destroys)) != nullptr, known && !destroys);
            if (known) entries.erase(found);
        } else if (random() % 50 == 0) {
            map.empty(1, 0);
            set.clear(0);
            entries.clear();
        }
        if (step % 5 != 0) continue;
        expectEntries(map, entries);
        RVHashSetIter inSet(&set);
        for (const Entry& entry : entries) {
            EXPECT_EQ(inSet.pObject(), entry.key);
            inSet++;
        }
        EXPECT_FALSE(inSet);
    }
    map.empty(1, 0);

    // Copies have integers of their own.
    rv::OwnedMap<rv::Values::Destroy> owned;
    for (const Entry& entry : entries) {
        map.putInt(entry.key, entry.value);
        owned->put(entry.key, new RVInt(entry.value));
    }
    const RVHashMap copy(map);
    rv::OwnedMap<rv::Values::Destroy> ownedCopy;
    ownedCopy = owned;
    for (const Entry& entry : entries) {
        map.putInt(entry.key, -1);
        owned->putInt(entry.key, -1);
    }
    map.empty(0, 0);
    expectEntries(copy, entries);
    expectEntries(*ownedCopy.get(), entries);
}

TEST(HashMap, RandomOperationsAgreeWithAModel) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        changeAtRandom(seed);
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

// Entries come and go while a walk is under way, often enough for the table to be rebuilt.
TEST(HashMap, WalksAreLive) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(seed);
        std::minstd_rand random(seed);
        std::vector<RVInt> keys(2000);
        for (RVInt& key : keys) key.value(37 * static_cast<int>(&key - keys.data()));
        RVHashMap map;
        RVHashSet set;
        std::size_t known = 0;
        const auto put = [&](std::size_t count) {
            for (; count > 0 && known < keys.size(); --count, ++known) {
                map.put(&keys[known], nullptr);
                set.add(&keys[known]);
            }
        };
        put(1 + random() % 40);
        std::size_t seen = 0;
        RVHashSetIter inSet(&set);
        for (RVHashMapIter it(&map); it; ++seen) {
            ASSERT_EQ(it.pKey(), &keys[seen]);
            ASSERT_EQ(inSet.pObject(), &keys[seen]);
            if (random() % 3 != 0) put(random() % 4);
            it++;
            inSet++;
            for (auto i = random() % 3; i > 0; --i) {
                RVInt* const behind = &keys[random() % (seen + 1)];
                map.remove(behind, 0);
                set.remove(behind);
            }
        }
        EXPECT_EQ(seen, known);
        EXPECT_FALSE(inSet);
    }
}

TEST(HashMap, NewMembersAreNotTakenForDestroyedOnes) {
    RVHashMap map;
    RVObject value;
    int recycled = 0;
    const void* last[2] = {};
    const auto use = [&](const RVGraphMember* member) {
        if (std::exchange(last[member->isEdge()], member) == member) ++recycled;
        EXPECT_FALSE(map.contains(member));
        map.put(member, &value);
    };
    RVGraph graph;
    for (int i = 0; i < 500; ++i) {
        RVNode* const node = graph.addNode(0);
        use(node);
        use(graph.addEdge(node, node, 0));
        graph.discardNode(node);
    }
    EXPECT_GT(recycled, 0) << "otherwise this shows nothing";
    EXPECT_EQ(map.length(), 1000);
    // The same for the members of a new graph where another one was.
    std::optional<RVGraph> place;
    for (int i = 0; i < 20; ++i) {
        RVNode* const node = place.emplace().addNode(0);
        use(node);
        use(place->addEdge(node, node, 0));
    }
}

// Objects that are alive, which they leave when they die.
struct Living {
    struct Mortal : RVObject {
        explicit Mortal(std::set<Mortal*>& all) : alive(all) { alive.insert(this); }
        ~Mortal() override { alive.erase(this); }
        std::set<Mortal*>& alive;
    };
    ~Living() {
        while (!all.empty()) delete *all.begin();
    }
    Mortal* add() { return new Mortal(all); }
    std::set<Mortal*> all;
};

TEST(HashMap, DestroysWhatItIsToldTo) {
    for (const int flags : {0, 1, 2, 3}) {
        Living keys;
        Living values;
        RVHashMap map(16);
        for (int i = 0; i < 20; ++i) map.put(keys.add(), values.add());
        for (const int destroys : {1, 0}) map.remove(RVHashMapIter(&map).pKey(), destroys);
        EXPECT_EQ(values.all.size(), 19U);
        map.empty(flags % 2, flags / 2);
        EXPECT_EQ(map.length(), 0);
        EXPECT_FALSE(RVHashMapIter(&map));
        EXPECT_EQ(keys.all.size(), flags / 2 != 0 ? 2U : 20U);
        EXPECT_EQ(values.all.size(), flags % 2 != 0 ? 1U : 19U);
    }
    Living objects;
    RVDList list;
    for (int i = 0; i < 5; ++i) list.appendObject(objects.add());
    list.copyAllCells(&list);
    RVHashSet set(&list);
    EXPECT_EQ(set.length(), 5);
    set.clear(1);
    EXPECT_TRUE(objects.all.empty());
    EXPECT_FALSE(set.contains(static_cast<RVObject*>(nullptr)) || set.add(static_cast<RVObject*>(nullptr)));
}

// Keys whose hashes could fall together. A map that searches long takes minutes here.
TEST(HashMap, StaysFastWithKeysAlike) {
    RVGraph graphs[20];
    std::vector<RVObject*> keys;
    for (RVGraph& graph : graphs) {
        for (int i = 0; i < 5000; ++i) {
            keys.push_back(graph.addNode(0));
            keys.push_back(graph.addEdge(graph.pLastNode(), graph.pFirstNode(), 0));
        }
    }
    std::deque<RVInt> ints;
    std::deque<RVDouble> doubles;
    for (int i = 0; i < 50000; ++i) {
        keys.push_back(&ints.emplace_back(i << 14));
        keys.push_back(&doubles.emplace_back(i << 14));
    }
    RVHashMap map;
    for (std::size_t i = 0; i < keys.size(); ++i) map.putInt(keys[i], static_cast<int>(i));
    EXPECT_EQ(map.length(), 300000);
    int wrong = 0;
    for (std::size_t i = 0; i < keys.size(); ++i) wrong += map.getInt(keys[i], -1) != static_cast<int>(i);
    for (std::size_t i = 0; i < keys.size(); i += 2) map.remove(keys[i], 1);
    for (std::size_t i = 0; i < keys.size(); ++i) wrong += map.contains(keys[i]) != (i % 2 == 1);
    EXPECT_EQ(wrong, 0);
}

}  // namespace
