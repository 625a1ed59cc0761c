// The exported classes of the library, for tests of what all of them have in common. A new class goes here.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "rv/analysis.h"

namespace rvtest {

// Those that can be made without arguments and copied.
using CopyableClasses = testing::Types<
    RVConstraint, RVInt, RVDouble, RVSimpleRandom, RVDList, RVNodeDList, RVEdgeDList, RVGraphDList, RVBinTree,
    RVSortedBinTree, RVDListSort, RVHashMap, RVHashSet, RVAlgorithmExtension, RVNodeAlgorithmExtension,
    RVEdgeAlgorithmExtension, RVNodeAnalysisExtension, RVEdgeAnalysisExtension, RVNodeExtensionInteger,
    RVEdgeValuePair, RVAlgorithmData, RVAlgorithmInputData, RVAnalysisInputData, RVAnalysisInternalData,
    RVNodeExtensionTopologicalSort, RVTopologicalSortInputData, RVTopologicalSortOutputData,
    RVTopologicalSortAlgorithm, RVNodeExtensionTraversal, RVEdgeExtensionTraversal,
    RVEdgeExtensionTraversalInput, RVTraversalInputData, RVTraversalInternalData, RVTraversalAlgorithm,
    RVBreadthFirstSearchInputData, RVBreadthFirstSearchOutputData, RVBreadthFirstSearchAlgorithm,
    RVNodeExtensionDepthFirstSearch, RVEdgeExtensionDepthFirstSearch, RVDepthFirstSearchInputData,
    RVDepthFirstSearchInternalData, RVDepthFirstSearchOutputData, RVDepthFirstSearchAlgorithm,
    RVConnectedComponentsInputData, RVConnectedComponentsOutputData, RVConnectedComponentsAlgorithm,
    RVNodeExtensionBiconnectedComponents, RVBiconnectedComponentsInputData,
    RVBiconnectedComponentsInternalData, RVBiconnectedComponentsOutputData, RVBiconnectedComponentsAlgorithm,
    RVNodeExtensionStronglyConnectedComponents, RVStronglyConnectedComponentsInputData,
    RVStronglyConnectedComponentsInternalData, RVStronglyConnectedComponentsOutputData,
    RVStronglyConnectedComponentsAlgorithm, RVPathExistsTestInputData, RVPathExistsTestInternalData,
    RVPathExistsTestOutputData, RVPathExistsTestAlgorithm, RVAcyclicTestInputData, RVAcyclicTestOutputData,
    RVAcyclicTestAlgorithm, RVTreeTestInputData, RVTreeTestOutputData, RVTreeTestAlgorithm,
    RVEdgeExtensionShortestPathsInput, RVPathCostInputData, RVShortestPathsInputData,
    RVShortestPathsOutputData, RVNodeExtensionShortestPaths, RVEdgeExtensionShortestPaths,
    RVNodeExtensionDijkstra, RVShortestPathsBinTree, RVDijkstraInternalData, RVDijkstraOutputData,
    RVDijkstraAlgorithm, RVShortestPathsAcyclicInputData, RVShortestPathsAcyclicInternalData,
    RVShortestPathsAcyclicAlgorithm, RVAllPairsShortestPathsInputData, RVNodeExtensionAllPairsShortestPaths,
    RVAllPairsShortestPathsOutputData, RVAllPairsShortestPathsAlgorithm, RVShortestPathsAlgorithm,
    RVUniquePathTestInputData, RVUniquePathTestInternalData, RVUniquePathTestOutputData,
    RVUniquePathTestAlgorithm, RVSingleSourceShortestPathsInputData, RVSingleSourceShortestPathsOutputData,
    RVSingleSourceShortestPathsBinTree, RVSingleSourceShortestPathsAlgorithm, RVSortedPathsInputData,
    RVSortedPathsOutputData, RVSortedPathsAlgorithm, RVSortedPathsEnumerator, RVReachableNodesInputData,
    RVReachableNodesOutputData, RVReachableNodesBinTree, RVEdgeExtensionFlowInput, RVEdgeExtensionFlowOutput,
    RVNetworkInputData, RVMaximumFlowInputData, RVMaximumFlowOutputData, RVEdgeExtensionMinimumCutInput,
    RVMinimumCutInputData, RVNodeExtensionMinimumCutInternal, RVMinimumCutInternalData,
    RVMinimumCutOutputData, RVMinimumCutAlgorithm, RVDisjointPathsInputData, RVDisjointPathsOutputData,
    RVNodeExtensionDisjointPaths, RVDisjointPathsInternalData, RVDisjointPathsAlgorithm,
    RVEdgeExtensionMinimumSpanningTreeInput, RVEdgeExtensionMinimumSpanningTreeOutput,
    RVNodeExtensionMinimumSpanningTreeInternal, RVEdgeExtensionMinimumSpanningTreeInternal,
    RVMinimumSpanningTreeInputData, RVMinimumSpanningTreeOutputData, RVMinimumSpanningTreeBinTree,
    RVMinimumSpanningTreeInternalData, RVMinimumSpanningTreeAlgorithm, RVNodeExtensionFlowInternal,
    RVEdgeExtensionFlowInternal, RVFlowInternalData, RVEdgeExtensionMinimumCostFlowInput,
    RVMinimumCostFlowInputData, RVMinimumCostFlowOutputData, RVNodeExtensionMinimumCostFlow,
    RVEdgeExtensionMinimumCostFlowInternal, RVMinimumCostFlowInternalData, RVMinimumCostFlowAlgorithm,
    RVGraphReductionAction, RVNewCycleTestInputData, RVNewCycleTestOutputData, RVNewCycleTestInternalData,
    RVNewCycleTestAlgorithm, RVNodeExtensionTopologicalHeuristic, RVNodeExtensionTopologicalHeuristicInternal,
    RVEdgeExtensionTopologicalHeuristic, RVTopologicalHeuristicInputData, RVTopologicalHeuristicOutputData,
    RVTopologicalHeuristicInternalData, RVTopologicalHeuristicAlgorithm,
    RVNodeExtensionCycleBreakingEdgeDetectionInternal, RVEdgeExtensionCycleBreakingEdgeDetectionInternal,
    RVEdgeExtensionCycleBreakingEdgeDetectionOutput, RVCycleBreakingEdgeDetectionInputData,
    RVCycleBreakingEdgeDetectionOutputData, RVCycleBreakingEdgeDetectionInternalData,
    RVCycleBreakingEdgeDetectionAlgorithm, RVRootCauseInputData, RVRootCauseOutputData, RVRootCauseAlgorithm,
    RVClusteringConstraint, RVBasicClusteringInputData, RVClusteringInputData, RVClusteringOutputData,
    RVClusteringBinTree, RVClusterSizeSort, RVNodeExtensionRatioCut, RVEdgeExtensionRatioCutInput,
    RVNodeExtensionClusteringInternal, RVEdgeExtensionClusteringInternal, RVClusteringInternalData,
    RVRatioCutBipartitioningInputData, RVRatioCutBipartitioningOutputData, RVRatioCutBipartitioningAlgorithm,
    RVRatioCutVariable, RVRatioCutEdge, RVRatioCutVariableSort, RVClusterSplittingInputData,
    RVClusterSplittingAlgorithm, RVDisconnectedClusteringAlgorithm, RVClusteringAlgorithm>;

using AbstractClasses = testing::Types<RVAlgorithm, RVInternalAlgorithm, RVBaseGraphAlgorithm,
                                       RVInternalGraphAlgorithm, RVAlgorithmOutputData, RVAnalysisOutputData>;

using UncopyableClasses =
    testing::Types<RVGraph, RVAFactory, RVReachableNodesAlgorithm, RVMaximumFlowAlgorithm>;

using InputClasses =
    testing::Types<RVAlgorithmInputData, RVAnalysisInputData, RVTopologicalSortInputData,
                   RVTraversalInputData, RVBreadthFirstSearchInputData, RVDepthFirstSearchInputData,
                   RVConnectedComponentsInputData, RVBiconnectedComponentsInputData,
                   RVStronglyConnectedComponentsInputData, RVPathExistsTestInputData, RVAcyclicTestInputData,
                   RVTreeTestInputData, RVPathCostInputData, RVShortestPathsInputData,
                   RVShortestPathsAcyclicInputData, RVAllPairsShortestPathsInputData,
                   RVUniquePathTestInputData, RVSingleSourceShortestPathsInputData, RVSortedPathsInputData,
                   RVReachableNodesInputData, RVNetworkInputData, RVMaximumFlowInputData,
                   RVMinimumCutInputData, RVDisjointPathsInputData, RVMinimumSpanningTreeInputData,
                   RVMinimumCostFlowInputData, RVNewCycleTestInputData, RVTopologicalHeuristicInputData,
                   RVCycleBreakingEdgeDetectionInputData, RVRootCauseInputData, RVBasicClusteringInputData,
                   RVClusteringInputData, RVRatioCutBipartitioningInputData, RVClusterSplittingInputData>;

// Calls f<C>() with each of some classes, which a failure names.
template <class... C, class F>
void forEachClass(testing::Types<C...>, F f) {
    const auto call = [&f]<class Each>() {
        SCOPED_TRACE(testing::internal::GetTypeName<Each>());
        f.template operator()<Each>();
    };
    (call.template operator()<C>(), ...);
}

}  // namespace rvtest
