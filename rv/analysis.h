// Everything that a caller of the library needs.
#pragma once

#include "rv/foundation/constraint.h"
#include "rv/foundation/graph.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/foundation/hash_map.h"
#include "rv/foundation/list_sort.h"
#include "rv/foundation/random.h"
#include "rv/foundation/sorted_tree.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/algorithm.h"
#include "rv/framework/analysis_data.h"
#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/input_fields.h"
#include "rv/traversal/topological_sort.h"
