// The foundation beside the same work in Boost.Graph, LEMON and the standard library, at 10^4, 10^5 and
// 10^6 nodes or objects.
//
//   foundation_bench                                      everything, some four minutes
//   foundation_bench --benchmark_filter=Build             one group
//   foundation_bench --benchmark_filter=/100000/          one size
//   foundation_bench --benchmark_filter='^Hash.*/rv/'     one library in several groups
//
// Rows are named what/library/.../n. A row works several times, as often as fits in a short while, and
// reports the fastest processor time: in the counter ns_per_<item>, and as a whole in the column Time. What a
// row needs beforehand, and the destruction of what it made, are not measured. The graphs are random with
// five edges per node, unless the row says otherwise. Rows named rv that are beside std work through the
// library's own map, set, tree or list.
//
// Memory/.../n reports bytes per edge, nodes included: what the allocator has given out, and by how much
// the resident memory of the process has grown.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <list>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/foundation/hash_map.h"
#include "rv/foundation/list_sort.h"
#include "rv/foundation/sorted_tree.h"
#include "rv/framework/algorithm_data.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/copy.hpp>
#endif
#ifdef RV_BENCH_LEMON
#include "lemon_peer.h"
#endif

namespace {

using bench::add;
using bench::EdgeArray;
using bench::measure;
using bench::RvGraph;

constexpr int kSizes[] = {10'000, 100'000, 1'000'000};

template <class Graph>
std::string row(const char* what) {
    return std::string(what) + "/" + Graph::kName;
}

constexpr const char* kPerEdge = "ns_per_edge";
constexpr const char* kPerNode = "ns_per_node";
constexpr const char* kPerItem = "ns_per_item";

// Building, destroying, memory

template <class Graph>
void buildRandom(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    measure(
        state, kPerEdge, array.size(), [] { return std::unique_ptr<Graph>(); },
        [&](auto& graph) { graph = std::make_unique<Graph>(array); });
}

template <class Graph>
void destroyRandom(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    measure(
        state, kPerEdge, array.size(), [&] { return std::make_unique<Graph>(array); },
        [](auto& graph) { graph.reset(); });
}

double allocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

double residentBytes() {
    long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*d %ld", &pages) != 1) pages = 0;
        std::fclose(file);
    }
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

template <class Graph>
void memoryRandom(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    for (auto _ : state) {
        malloc_trim(0);
        const double allocated = allocatedBytes();
        const double resident = residentBytes();
        auto graph = std::make_unique<Graph>(array);
        graph->forgetNodes();
        malloc_trim(0);
        state.counters["bytes_per_edge"] = (allocatedBytes() - allocated) / array.size();
        state.counters["resident_bytes_per_edge"] = (residentBytes() - resident) / array.size();
        state.SetIterationTime(0);
    }
}

template <class Graph>
void addBuilding() {
    for (int n : kSizes) add(row<Graph>("Build"), n, [n](auto& state) { buildRandom<Graph>(state, n); });
    for (int n : kSizes) add(row<Graph>("Destroy"), n, [n](auto& state) { destroyRandom<Graph>(state, n); });
    for (int n : kSizes) add(row<Graph>("Memory"), n, [n](auto& state) { memoryRandom<Graph>(state, n); });
}

// Copying, with the mapping of nodes and edges in both directions where the library has it

void copyRv(benchmark::State& state, int n) {
    const RvGraph original(bench::randomGraph(n));
    struct Copy {
        RVAlgorithmData data;
        RVGraph graph;
    };
    measure(
        state, kPerEdge, original.graph->numberOfEdges(), [] { return std::make_unique<Copy>(); },
        [&](auto& copy) { copy->data.copyGraph(original.graph.get(), &copy->graph); });
}

#ifdef RV_BENCH_BOOST
// Boost's copy maps nodes to their copies only.
void copyBoost(benchmark::State& state, int n) {
    using bench::BoostIndexedGraph;
    const BoostIndexedGraph original(bench::randomGraph(n));
    struct Copy {
        BoostIndexedGraph::Graph graph;
        std::vector<BoostIndexedGraph::Node> nodes;
    };
    measure(
        state, kPerEdge, static_cast<int>(num_edges(original.graph)), [] { return std::make_unique<Copy>(); },
        [&](auto& copy) {
            copy->nodes.resize(num_vertices(original.graph));
            const auto index = get(boost::vertex_index, original.graph);
            boost::copy_graph(
                original.graph, copy->graph,
                boost::orig_to_copy(boost::make_iterator_property_map(copy->nodes.begin(), index)));
        });
}
#endif

#ifdef RV_BENCH_LEMON
void copyLemon(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    const bench::LemonGraph original(array);
    measure(
        state, kPerEdge, array.size(), [&] { return std::make_unique<bench::LemonCopy>(original); },
        [](auto& copy) { copy->run(); });
}
#endif

// Walking: all edges through the out-edges of the nodes, counting the self-loops

void walkRv(benchmark::State& state, int n) {
    const RvGraph random(bench::randomGraph(n));
    measure(state, kPerEdge, random.graph->numberOfEdges(), [&] {
        int loops = 0;
        for (RVNodeIter node(random.graph.get()); node; node++) {
            for (RVOutEdgeIter edge(node.pNode()); edge; edge++) {
                loops += edge.pEdge()->pTargetNode() == node.pNode() ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(loops);
    });
}

#ifdef RV_BENCH_BOOST
template <class Graph>
void walkBoost(benchmark::State& state, int n) {
    const Graph random(bench::randomGraph(n));
    measure(state, kPerEdge, static_cast<int>(num_edges(random.graph)), [&] {
        int loops = 0;
        for (auto [node, endOfNodes] = vertices(random.graph); node != endOfNodes; ++node) {
            for (auto [edge, end] = out_edges(*node, random.graph); edge != end; ++edge) {
                loops += target(*edge, random.graph) == *node ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(loops);
    });
}
#endif

#ifdef RV_BENCH_LEMON
void walkLemon(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    const bench::LemonGraph random(array);
    measure(state, kPerEdge, array.size(), [&] { benchmark::DoNotOptimize(random.countLoops()); });
}
#endif

// Changing edges in graph order: every edge is turned around, or gets a random source. Boost has neither
// and takes edges out and makes new ones.

void invertRv(benchmark::State& state, int n) {
    const RvGraph random(bench::randomGraph(n));
    measure(state, kPerEdge, random.graph->numberOfEdges(), [&] {
        for (RVEdgeIter edge(random.graph.get()); edge; edge++) edge.pEdge()->invertDirection();
    });
}

void changeSourceRv(benchmark::State& state, int n) {
    const RvGraph random(bench::randomGraph(n));
    const std::vector<int> order = bench::randomOrder(n, 11);
    measure(state, kPerEdge, random.graph->numberOfEdges(), [&] {
        for (RVEdgeIter edge(random.graph.get()); edge; edge++) {
            RVNode* source = edge.pEdge()->pSourceNode();
            edge.pEdge()->changeSourceNode(
                random.nodes[static_cast<std::size_t>(order[rv::placeOf(source)])]);
        }
    });
}

// Every tenth node is detached and all of them attached again.
void detachNodesRv(benchmark::State& state, int n) {
    const RvGraph random(bench::randomGraph(n));
    std::vector<RVNode*> some = bench::shuffled(random.nodes);
    some.resize(some.size() / 10);
    int edges = 0;
    for (const RVNode* node : some) edges += node->degree();
    measure(state, kPerEdge, edges, [&] {
        for (RVNode* node : some) random.graph->removeNode(node);
        for (RVNode* node : some) random.graph->insertNode(node);
    });
}

#ifdef RV_BENCH_BOOST
void invertBoost(benchmark::State& state, int n) {
    using bench::BoostListGraph;
    BoostListGraph random(bench::randomGraph(n));
    measure(
        state, kPerEdge, static_cast<int>(num_edges(random.graph)),
        [&] {
            const auto [begin, end] = edges(random.graph);
            return std::vector<BoostListGraph::Edge>(begin, end);
        },
        [&](const auto& all) {
            for (const BoostListGraph::Edge& edge : all) {
                const auto from = source(edge, random.graph);
                const auto to = target(edge, random.graph);
                remove_edge(edge, random.graph);
                add_edge(to, from, random.graph);
            }
        });
}
#endif

#ifdef RV_BENCH_LEMON
void invertLemon(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    bench::LemonGraph random(array);
    measure(state, kPerEdge, array.size(), [&] { random.invertArcs(); });
}

void changeSourceLemon(benchmark::State& state, int n) {
    const EdgeArray array = bench::randomGraph(n);
    bench::LemonGraph random(array);
    const std::vector<int> order = bench::randomOrder(n, 11);
    measure(state, kPerEdge, array.size(), [&] { random.changeSources(order); });
}
#endif

// A random tenth of the edges of a star is detached and attached again.

std::vector<int> tenthOf(int count) {
    std::vector<int> some = bench::randomOrder(count);
    some.resize(some.size() / 10);
    return some;
}

void starRv(benchmark::State& state, int n) {
    const RvGraph star(bench::starGraph(n));
    std::vector<RVEdge*> edges;
    for (RVEdge* edge : *star.graph->pEdgeList()) edges.push_back(edge);
    const std::vector<int> some = tenthOf(static_cast<int>(edges.size()));
    measure(state, kPerEdge, static_cast<int>(some.size()), [&] {
        for (int i : some) star.graph->removeEdge(edges[static_cast<std::size_t>(i)]);
        for (int i : some) {
            RVEdge* edge = edges[static_cast<std::size_t>(i)];
            star.graph->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
        }
    });
}

#ifdef RV_BENCH_BOOST
void starBoost(benchmark::State& state, int n) {
    using bench::BoostListGraph;
    BoostListGraph star(bench::starGraph(n));
    std::vector<BoostListGraph::Edge> all;
    for (auto [edge, end] = edges(star.graph); edge != end; ++edge) all.push_back(*edge);
    const std::vector<int> some = tenthOf(static_cast<int>(all.size()));
    measure(state, kPerEdge, static_cast<int>(some.size()), [&] {
        for (int i : some) remove_edge(all[static_cast<std::size_t>(i)], star.graph);
        for (int i : some) {
            BoostListGraph::Edge& edge = all[static_cast<std::size_t>(i)];
            edge = add_edge(star.nodes[0], star.nodes[static_cast<std::size_t>(i) + 1], star.graph).first;
        }
    });
}
#endif

#ifdef RV_BENCH_LEMON
void starLemon(benchmark::State& state, int n) {
    bench::LemonGraph star(bench::starGraph(n));
    const std::vector<int> some = tenthOf(n - 1);
    measure(state, kPerEdge, static_cast<int>(some.size()), [&] { star.makeArcsAnew(some); });
}
#endif

// Objects of lists, trees and sorts

struct Item : RVObject {
    explicit Item(int number = 0) : key(number) {}
    int key;
};

std::vector<Item> makeItems(const std::vector<int>& keys) {
    std::vector<Item> items;
    items.reserve(keys.size());
    for (int key : keys) items.emplace_back(key);
    return items;
}

// Lists

void listAppendRv(benchmark::State& state, int n, bool atEnd) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    measure(
        state, kPerItem, n, [] { return std::make_unique<RVDList>(); },
        [&](auto& list) {
            if (atEnd) {
                for (Item& item : items) list->appendObject(&item);
            } else {
                for (Item& item : items) list->prependObject(&item);
            }
        });
}

void listAppendStd(benchmark::State& state, int n, bool atEnd) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    measure(
        state, kPerItem, n, [] { return std::make_unique<std::list<RVObject*>>(); },
        [&](auto& list) {
            if (atEnd) {
                for (Item& item : items) list->push_back(&item);
            } else {
                for (Item& item : items) list->push_front(&item);
            }
        });
}

template <class List, class Position>
struct FilledList {
    List list;
    std::vector<Position> positions;
};

auto filledListRv(std::vector<Item>& items, bool inOrder) {
    auto filled = std::make_unique<FilledList<RVDList, RVDListCell*>>();
    for (Item& item : items) filled->positions.push_back(filled->list.appendObject(&item));
    if (!inOrder) filled->positions = bench::shuffled(std::move(filled->positions));
    return filled;
}

// Cells are destroyed within the list, or taken out and destroyed by the caller.
void listRemoveRv(benchmark::State& state, int n, bool inOrder, bool discard) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    measure(
        state, kPerItem, n, [&] { return filledListRv(items, inOrder); },
        [&](auto& filled) {
            for (RVDListCell* cell : filled->positions) {
                if (discard) {
                    filled->list.discardCell(cell);
                } else {
                    delete filled->list.removeCell(cell);
                }
            }
        });
}

void listRemoveStd(benchmark::State& state, int n, bool inOrder) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    using List = std::list<RVObject*>;
    measure(
        state, kPerItem, n,
        [&] {
            auto filled = std::make_unique<FilledList<List, List::iterator>>();
            for (Item& item : items)
                filled->positions.push_back(filled->list.insert(filled->list.end(), &item));
            if (!inOrder) filled->positions = bench::shuffled(std::move(filled->positions));
            return filled;
        },
        [](auto& filled) {
            for (auto position : filled->positions) filled->list.erase(position);
        });
}

void listDestroyRv(benchmark::State& state, int n) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    measure(
        state, kPerItem, n,
        [&] {
            auto list = std::make_unique<RVDList>();
            for (Item& item : items) list->appendObject(&item);
            return list;
        },
        [](auto& list) { list.reset(); });
}

void listDestroyStd(benchmark::State& state, int n) {
    std::vector<Item> items(static_cast<std::size_t>(n));
    measure(
        state, kPerItem, n,
        [&] {
            auto list = std::make_unique<std::list<RVObject*>>();
            for (Item& item : items) list->push_back(&item);
            return list;
        },
        [](auto& list) { list.reset(); });
}

void addLists() {
    for (int n : kSizes) {
        add("ListAppend/rv", n, [n](auto& state) { listAppendRv(state, n, true); });
        add("ListAppend/std", n, [n](auto& state) { listAppendStd(state, n, true); });
    }
    for (int n : kSizes) {
        add("ListPrepend/rv", n, [n](auto& state) { listAppendRv(state, n, false); });
        add("ListPrepend/std", n, [n](auto& state) { listAppendStd(state, n, false); });
    }
    for (const bool inOrder : {true, false}) {
        const std::string order = inOrder ? "/in_order" : "/random";
        for (int n : kSizes) {
            add("ListDiscardCell/rv" + order, n, [=](auto& state) { listRemoveRv(state, n, inOrder, true); });
            add("ListRemoveCell/rv" + order, n, [=](auto& state) { listRemoveRv(state, n, inOrder, false); });
            add("ListRemoveCell/std" + order, n, [=](auto& state) { listRemoveStd(state, n, inOrder); });
        }
    }
    for (int n : kSizes) {
        add("ListDestroy/rv", n, [n](auto& state) { listDestroyRv(state, n); });
        add("ListDestroy/std", n, [n](auto& state) { listDestroyStd(state, n); });
    }
}

// Sorting

enum class Keys { Random, NearlySorted, Equal };

// Nearly sorted: one in a hundred stands elsewhere.
std::vector<int> makeKeys(Keys kind, int n) {
    if (kind == Keys::Random) return bench::randomOrder(n, 5);
    std::vector<int> keys(static_cast<std::size_t>(n));
    if (kind == Keys::Equal) return keys;
    std::iota(keys.begin(), keys.end(), 0);
    bench::Random random;
    for (int i = 0; i < n / 100; ++i) {
        std::swap(keys[static_cast<std::size_t>(random.below(n))],
                  keys[static_cast<std::size_t>(random.below(n))]);
    }
    return keys;
}

std::string nameOf(Keys kind) {
    return kind == Keys::Random ? "/random" : kind == Keys::Equal ? "/equal" : "/nearly_sorted";
}

struct ItemSort : RVDListSort {
    int virtualCellCompare(RVDListCell* a, RVDListCell* b) const override {
        const int first = static_cast<const Item*>(a->pObject())->key;
        const int second = static_cast<const Item*>(b->pObject())->key;
        return first < second ? -1 : first > second ? 1 : 0;
    }
};

void sortRv(benchmark::State& state, int n, Keys kind) {
    std::vector<Item> items = makeItems(makeKeys(kind, n));
    measure(
        state, kPerItem, n,
        [&] {
            auto list = std::make_unique<RVDList>();
            for (Item& item : items) list->appendObject(&item);
            return list;
        },
        [](auto& list) { ItemSort().quickSort(list.get(), 0); });
}

void sortStd(benchmark::State& state, int n, Keys kind) {
    std::vector<Item> items = makeItems(makeKeys(kind, n));
    measure(
        state, kPerItem, n,
        [&] {
            auto list = std::make_unique<std::list<Item*>>();
            for (Item& item : items) list->push_back(&item);
            return list;
        },
        [](auto& list) { list->sort([](const Item* a, const Item* b) { return a->key < b->key; }); });
}

void addSorts() {
    for (const Keys kind : {Keys::Random, Keys::NearlySorted}) {
        for (int n : kSizes) {
            add("ListSort/rv" + nameOf(kind), n, [=](auto& state) { sortRv(state, n, kind); });
            add("ListSort/std" + nameOf(kind), n, [=](auto& state) { sortStd(state, n, kind); });
        }
    }
}

// Hash maps from nodes to boxed integers, and hash sets of nodes

// What a caller without a pool keeps in a standard map.
struct Box {
    explicit Box(int number) : value(number) {}
    virtual ~Box() = default;
    int value;
};

struct BoxMap {
    ~BoxMap() {
        for (const auto& [node, box] : map) delete box;
    }
    std::unordered_map<RVNode*, Box*> map;
};

// In graph order, or put in one random order and asked for in another.
struct HashFixture {
    HashFixture(int n, bool inOrder) : graph(EdgeArray{n, {}}) {
        nodes = inOrder ? graph.nodes : bench::shuffled(graph.nodes, 17);
        asked = inOrder ? graph.nodes : bench::shuffled(graph.nodes, 19);
    }
    RvGraph graph;
    std::vector<RVNode*> nodes;
    std::vector<RVNode*> asked;
};

// putInt keeps its values in the map's own memory; put takes boxes that the caller makes.
enum class Boxes { Pooled, Heap };

std::unique_ptr<RVHashMap> filledMapRv(const HashFixture& fixture, Boxes boxes) {
    auto map = std::make_unique<RVHashMap>();
    int number = 0;
    for (RVNode* node : fixture.nodes) {
        if (boxes == Boxes::Pooled) {
            map->putInt(node, ++number);
        } else {
            map->put(node, new RVInt(++number));
        }
    }
    return map;
}

std::unique_ptr<BoxMap> filledMapStd(const HashFixture& fixture) {
    auto filled = std::make_unique<BoxMap>();
    int number = 0;
    for (RVNode* node : fixture.nodes) filled->map.emplace(node, new Box(++number));
    return filled;
}

void mapPutRv(benchmark::State& state, int n, bool inOrder, Boxes boxes) {
    const HashFixture fixture(n, inOrder);
    struct Destroyed {
        ~Destroyed() {
            if (map != nullptr) map->empty(1, 0);
        }
        std::unique_ptr<RVHashMap> map;
    };
    measure(
        state, kPerItem, n, [] { return std::make_unique<Destroyed>(); },
        [&](auto& filled) { filled->map = filledMapRv(fixture, boxes); });
}

void mapGetRv(benchmark::State& state, int n, bool inOrder, Boxes boxes) {
    const HashFixture fixture(n, inOrder);
    const auto map = filledMapRv(fixture, boxes);
    measure(state, kPerItem, n, [&] {
        int sum = 0;
        for (RVNode* node : fixture.asked) sum += map->getInt(node, 0);
        benchmark::DoNotOptimize(sum);
    });
    map->empty(1, 0);
}

void mapDestroyRv(benchmark::State& state, int n, bool inOrder, Boxes boxes) {
    const HashFixture fixture(n, inOrder);
    measure(
        state, kPerItem, n, [&] { return filledMapRv(fixture, boxes); },
        [](auto& map) {
            map->empty(1, 0);
            map.reset();
        });
}

void mapPutStd(benchmark::State& state, int n, bool inOrder) {
    const HashFixture fixture(n, inOrder);
    measure(
        state, kPerItem, n, [] { return std::unique_ptr<BoxMap>(); },
        [&](auto& map) { map = filledMapStd(fixture); });
}

void mapGetStd(benchmark::State& state, int n, bool inOrder) {
    const HashFixture fixture(n, inOrder);
    const auto filled = filledMapStd(fixture);
    measure(state, kPerItem, n, [&] {
        int sum = 0;
        for (RVNode* node : fixture.asked) sum += filled->map.find(node)->second->value;
        benchmark::DoNotOptimize(sum);
    });
}

void mapDestroyStd(benchmark::State& state, int n, bool inOrder) {
    const HashFixture fixture(n, inOrder);
    measure(
        state, kPerItem, n, [&] { return filledMapStd(fixture); }, [](auto& map) { map.reset(); });
}

void setRv(benchmark::State& state, int n, bool inOrder, bool lookUp) {
    const HashFixture fixture(n, inOrder);
    RVHashSet full;
    for (RVNode* node : fixture.nodes) full.add(node);
    if (lookUp) {
        measure(state, kPerItem, n, [&] {
            int found = 0;
            for (RVNode* node : fixture.asked) found += full.contains(node) ? 1 : 0;
            benchmark::DoNotOptimize(found);
        });
    } else {
        measure(
            state, kPerItem, n, [] { return std::make_unique<RVHashSet>(); },
            [&](auto& set) {
                for (RVNode* node : fixture.nodes) set->add(node);
            });
    }
}

void setStd(benchmark::State& state, int n, bool inOrder, bool lookUp) {
    const HashFixture fixture(n, inOrder);
    using Set = std::unordered_set<RVNode*>;
    Set full(fixture.nodes.begin(), fixture.nodes.end());
    if (lookUp) {
        measure(state, kPerItem, n, [&] {
            int found = 0;
            for (RVNode* node : fixture.asked) found += full.contains(node) ? 1 : 0;
            benchmark::DoNotOptimize(found);
        });
    } else {
        measure(
            state, kPerItem, n, [] { return std::make_unique<Set>(); },
            [&](auto& set) {
                for (RVNode* node : fixture.nodes) set->insert(node);
            });
    }
}

void addHashing() {
    for (const bool inOrder : {true, false}) {
        const std::string order = inOrder ? "/in_order" : "/random";
        for (int n : kSizes) {
            add("HashPut/rv_int" + order, n,
                [=](auto& state) { mapPutRv(state, n, inOrder, Boxes::Pooled); });
            add("HashPut/rv_box" + order, n, [=](auto& state) { mapPutRv(state, n, inOrder, Boxes::Heap); });
            add("HashPut/std" + order, n, [=](auto& state) { mapPutStd(state, n, inOrder); });
        }
        for (int n : kSizes) {
            add("HashGet/rv_int" + order, n,
                [=](auto& state) { mapGetRv(state, n, inOrder, Boxes::Pooled); });
            add("HashGet/rv_box" + order, n, [=](auto& state) { mapGetRv(state, n, inOrder, Boxes::Heap); });
            add("HashGet/std" + order, n, [=](auto& state) { mapGetStd(state, n, inOrder); });
        }
        for (int n : kSizes) {
            add("HashDestroy/rv_int" + order, n,
                [=](auto& state) { mapDestroyRv(state, n, inOrder, Boxes::Pooled); });
            add("HashDestroy/rv_box" + order, n,
                [=](auto& state) { mapDestroyRv(state, n, inOrder, Boxes::Heap); });
            add("HashDestroy/std" + order, n, [=](auto& state) { mapDestroyStd(state, n, inOrder); });
        }
        for (int n : kSizes) {
            add("HashSetAdd/rv" + order, n, [=](auto& state) { setRv(state, n, inOrder, false); });
            add("HashSetAdd/std" + order, n, [=](auto& state) { setStd(state, n, inOrder, false); });
        }
        for (int n : kSizes) {
            add("HashSetContains/rv" + order, n, [=](auto& state) { setRv(state, n, inOrder, true); });
            add("HashSetContains/std" + order, n, [=](auto& state) { setStd(state, n, inOrder, true); });
        }
    }
}

// Sorted trees

struct ItemTree : RVSortedBinTree {
    int virtualObjectCompare(RVObject* a, RVObject* b) const override {
        const int first = static_cast<const Item*>(a)->key;
        const int second = static_cast<const Item*>(b)->key;
        return first < second ? -1 : first > second ? 1 : 0;
    }
};

struct ItemOrder {
    bool operator()(const Item* a, const Item* b) const { return a->key < b->key; }
};
using ItemMultiset = std::multiset<Item*, ItemOrder>;

template <class Tree, class Position>
struct FilledTree {
    Tree tree;
    std::vector<Position> positions;  // in random order
};

auto filledTreeRv(std::vector<Item>& items) {
    auto filled = std::make_unique<FilledTree<ItemTree, RVBinTreeCell*>>();
    for (Item& item : items) filled->positions.push_back(filled->tree.addObject(&item));
    filled->positions = bench::shuffled(std::move(filled->positions));
    return filled;
}

auto filledTreeStd(std::vector<Item>& items) {
    auto filled = std::make_unique<FilledTree<ItemMultiset, ItemMultiset::iterator>>();
    for (Item& item : items) filled->positions.push_back(filled->tree.insert(&item));
    filled->positions = bench::shuffled(std::move(filled->positions));
    return filled;
}

void addTrees() {
    for (const Keys kind : {Keys::Random, Keys::Equal}) {
        for (int n : kSizes) {
            add("TreeInsert/rv" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [] { return std::make_unique<ItemTree>(); },
                    [&](auto& tree) {
                        for (Item& item : items) tree->addObject(&item);
                    });
            });
            add("TreeInsert/std" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [] { return std::make_unique<ItemMultiset>(); },
                    [&](auto& tree) {
                        for (Item& item : items) tree->insert(&item);
                    });
            });
        }
        for (int n : kSizes) {
            add("TreeRemoveRandom/rv" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [&] { return filledTreeRv(items); },
                    [](auto& filled) {
                        for (RVBinTreeCell* cell : filled->positions) delete filled->tree.removeCell(cell);
                    });
            });
            add("TreeRemoveRandom/std" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [&] { return filledTreeStd(items); },
                    [](auto& filled) {
                        for (auto position : filled->positions) filled->tree.erase(position);
                    });
            });
        }
        for (int n : kSizes) {
            add("TreeRemoveFirst/rv" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [&] { return filledTreeRv(items); },
                    [](auto& filled) {
                        while (RVBinTreeCell* cell = filled->tree.pFirstCell())
                            delete filled->tree.removeCell(cell);
                    });
            });
            add("TreeRemoveFirst/std" + nameOf(kind), n, [=](auto& state) {
                std::vector<Item> items = makeItems(makeKeys(kind, n));
                measure(
                    state, kPerItem, n, [&] { return filledTreeStd(items); },
                    [](auto& filled) {
                        while (!filled->tree.empty()) filled->tree.erase(filled->tree.begin());
                    });
            });
        }
    }
    // The first search is measured too: it builds the index.
    for (int n : kSizes) {
        add("TreeSearch/rv/equal", n, [=](auto& state) {
            std::vector<Item> items(static_cast<std::size_t>(n));
            const std::vector<int> order = bench::randomOrder(n);
            measure(
                state, kPerItem, n, [&] { return filledTreeRv(items); },
                [&](auto& filled) {
                    for (int i : order) {
                        benchmark::DoNotOptimize(
                            filled->tree.searchObject(&items[static_cast<std::size_t>(i)]));
                    }
                });
        });
    }
}

// Records of data objects on every node

void lookUpRecords(benchmark::State& state, int n, int dataCount, bool newest, bool inOrder) {
    const HashFixture fixture(n, inOrder);
    std::vector<std::unique_ptr<RVAlgorithmData>> data;
    for (int i = 0; i < dataCount; ++i) {
        data.push_back(std::make_unique<RVAlgorithmData>(fixture.graph.graph.get()));
        for (RVNode* node : fixture.graph.nodes) data.back()->pAlgorithmExtension(node);
    }
    const RVAlgorithmData& asked = newest ? *data.back() : *data.front();
    const int passes = std::max(1, 100'000 / n);
    measure(state, "ns_per_lookup", n * passes, [&] {
        std::uintptr_t sum = 0;
        for (int pass = 0; pass < passes; ++pass) {
            for (RVNode* node : fixture.asked) {
                sum += reinterpret_cast<std::uintptr_t>(asked.pAlgorithmExtension(node));
            }
        }
        benchmark::DoNotOptimize(sum);
    });
}

void makeRecords(benchmark::State& state, int n) {
    const HashFixture fixture(n, true);
    measure(
        state, kPerNode, n, [&] { return std::make_unique<RVAlgorithmData>(fixture.graph.graph.get()); },
        [&](auto& data) {
            for (RVNode* node : fixture.nodes) benchmark::DoNotOptimize(data->pAlgorithmExtension(node));
        });
}

void dropRecords(benchmark::State& state, int n) {
    const HashFixture fixture(n, true);
    measure(
        state, kPerNode, n,
        [&] {
            auto data = std::make_unique<RVAlgorithmData>(fixture.graph.graph.get());
            for (RVNode* node : fixture.nodes) data->pAlgorithmExtension(node);
            return data;
        },
        [](auto& data) { data.reset(); });
}

void addRecords() {
    for (int n : kSizes) add("RecordMake/rv", n, [n](auto& state) { makeRecords(state, n); });
    for (int n : kSizes) add("RecordDrop/rv", n, [n](auto& state) { dropRecords(state, n); });
    for (const int count : {1, 2, 4, 8}) {
        for (const bool newest : {true, false}) {
            if (count == 1 && !newest) continue;
            for (const bool inOrder : {true, false}) {
                const std::string name = "RecordLookup/rv/" + std::to_string(count) + "_data" +
                                         (newest ? "/newest" : "/oldest") +
                                         (inOrder ? "/in_order" : "/random");
                for (int n : {1'000, 10'000, 100'000, 1'000'000}) {
                    add(name, n, [=](auto& state) { lookUpRecords(state, n, count, newest, inOrder); });
                }
            }
        }
    }
}

void addAll() {
    addBuilding<RvGraph>();
    for (int n : kSizes) add("Copy/rv", n, [n](auto& state) { copyRv(state, n); });
    for (int n : kSizes) add("Walk/rv", n, [n](auto& state) { walkRv(state, n); });
    for (int n : kSizes) add("Invert/rv", n, [n](auto& state) { invertRv(state, n); });
    for (int n : kSizes) add("ChangeSource/rv", n, [n](auto& state) { changeSourceRv(state, n); });
    for (int n : kSizes) add("DetachNodes/rv", n, [n](auto& state) { detachNodesRv(state, n); });
    for (int n : {10'000, 20'000, 100'000, 1'000'000}) {
        add("StarDetachEdges/rv", n, [n](auto& state) { starRv(state, n); });
    }
#ifdef RV_BENCH_BOOST
    addBuilding<bench::BoostListGraph>();
    addBuilding<bench::BoostVecGraph>();
    for (int n : kSizes) add("Copy/boost_listS", n, [n](auto& state) { copyBoost(state, n); });
    for (int n : kSizes) {
        add("Walk/boost_listS", n, [n](auto& state) { walkBoost<bench::BoostListGraph>(state, n); });
    }
    for (int n : kSizes) {
        add("Walk/boost_vecS", n, [n](auto& state) { walkBoost<bench::BoostVecGraph>(state, n); });
    }
    for (int n : kSizes) add("Invert/boost_listS", n, [n](auto& state) { invertBoost(state, n); });
    for (int n : {10'000, 20'000})
        add("StarDetachEdges/boost_listS", n, [n](auto& state) { starBoost(state, n); });
#endif
#ifdef RV_BENCH_LEMON
    addBuilding<bench::LemonGraph>();
    for (int n : kSizes) add("Copy/lemon", n, [n](auto& state) { copyLemon(state, n); });
    for (int n : kSizes) add("Walk/lemon", n, [n](auto& state) { walkLemon(state, n); });
    for (int n : kSizes) add("Invert/lemon", n, [n](auto& state) { invertLemon(state, n); });
    for (int n : kSizes) add("ChangeSource/lemon", n, [n](auto& state) { changeSourceLemon(state, n); });
    for (int n : {10'000, 20'000, 100'000, 1'000'000}) {
        add("StarDetachEdges/lemon", n, [n](auto& state) { starLemon(state, n); });
    }
#endif
    addLists();
    addSorts();
    addHashing();
    addTrees();
    addRecords();
}

}  // namespace

int main(int argc, char** argv) {
    addAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
