// From the labels of a search to the output of a question about one path. Internal to the library, not
// installed.
#pragma once

#include <algorithm>
#include <utility>

#include "rv/framework/member_lists.h"
#include "rv/shortestpaths/dijkstra.h"
#include "rv/shortestpaths/path_view.h"

namespace rv {

// The labels of one search after another, each of which costs what it reaches. Only nodes that the present
// one has reached have an edge.
class ReusedPathLabels : public ReusedNearestLabels<int> {
public:
    void begin(Index nodeLimit) {
        ReusedNearestLabels::begin(nodeLimit);
        if (nodeLimit > m_edges.size()) m_edges.resize(nodeLimit);
    }
    Index edge(Index node) const { return m_edges[node]; }
    void improve(Index node, int distance, Index edge) {
        ReusedNearestLabels::improve(node, distance, edge);
        m_edges[node] = edge;
    }

private:
    Buffer<Index> m_edges;
};

// What searches for one path work in.
struct PathScratch {
    void begin(Index nodeLimit) {
        labels.begin(nodeLimit);
        settled.clear();
    }
    ReusedPathLabels labels;
    Buffer<Index> settled;
};

// Path, cost and whether there is one. The path is given backward.
inline void writePath(bool exists, int cost, Buffer<Index>& backward, RVShortestPathsOutputData& output) {
    output.pathExists(exists ? 1 : 0);
    output.totalCost(exists ? cost : kInfinite);
    if (!exists) return;
    std::ranges::reverse(backward);
    Members(output.pAssociatedGraph()).append(backward, *output.pEdgeList());
}

template <class Labels>
void writePath(const PathView& view, const Labels& labels, const RVShortestPathsInputData& input,
               RVShortestPathsOutputData& output) {
    const Index finish = indexOf(input.pFinishNode());
    const int cost = labels.distance(finish);
    Buffer<Index> path;
    const bool exists =
        cost != kInfinite && listPathBackward(view, labels, indexOf(input.pStartNode()), finish, path);
    writePath(exists, cost, path, output);
}

// Numbers that no node has keep the value of nodes without a distance.
inline void writeDistances(const PathView& view, Buffer<int>&& distances, RVDijkstraOutputData& output) {
    const GraphOrder order = view.flat().order();
    if (order.nodeCount < distances.size()) {
        Buffer<int> ofNodes(distances.size(), output.dist(nullptr));
        order.forEachNode([&](Index node) { ofNodes[node] = distances[node]; });
        distances = std::move(ofNodes);
    }
    output.distances().assign(output.pAssociatedGraph(), std::move(distances));
}

}  // namespace rv
