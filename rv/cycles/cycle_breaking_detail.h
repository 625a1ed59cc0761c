// What the sources of cycle-breaking edge detection share. Not installed.
#pragma once

#include "rv/cycles/acyclic_paths.h"
#include "rv/cycles/edge_index.h"
#include "rv/foundation/cell_handles.h"
#include "rv/foundation/graph.h"

namespace rv {

// Of a piece that is being reduced.
struct ReductionState {
    explicit ReductionState(const RVGraph* piece) : edges(piece) {}

    EdgeIndex edges;             // those in the piece
    CellHandles oppositeCells;   // in the list of candidates for opposite edge reductions
    CellHandles degreeTwoCells;  // in that for degree-two node reductions
};

}  // namespace rv
