// What subclasses run on: a path exists test and a Dijkstra traversal on the working graph.

#include "rv/framework/sub_algorithm.h"
#include "rv/shortestpaths/dijkstra.h"
#include "rv/shortestpaths/unique_path_test.h"
#include "rv/traversal/path_exists_test.h"

RVAlgorithmData* RVUniquePathTestAlgorithm::newInternalData() { return new RVUniquePathTestInternalData(); }

void RVUniquePathTestAlgorithm::preprocessGraph() {}

void RVUniquePathTestAlgorithm::postprocessGraph() {}

void RVUniquePathTestAlgorithm::parseInputData() {
    const auto* input = RVUniquePathTestInputData::castDown(pInputData());
    RVUniquePathTestInternalData* data = pData();
    data->undirected(input->undirected());
    data->pStartNode(data->pCopyNode(input->pStartNode()));
    data->pFinishNode(data->pCopyNode(input->pFinishNode()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (input->undirected(data->pOriginalEdge(edge)) != 0) data->directed(edge, 0);
    }
}

// Passes the question on to a part.
template <class Input>
void RVUniquePathTestAlgorithm::describe(Input& input) const {
    const RVUniquePathTestInternalData* data = pData();
    input.undirected(data->undirected());
    input.pStartNode(data->pStartNode());
    input.pFinishNode(data->pFinishNode());
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (data->directed(edge) == 0) input.undirected(edge, 1);
    }
}

RVServiceErrorCodeEnum RVUniquePathTestAlgorithm::algorithmBody() {
    auto* output = RVUniquePathTestOutputData::castDown(pOutputData());
    RVPathExistsTestAlgorithm test;
    RVPathExistsTestInputData question(pAssociatedGraph());
    RVPathExistsTestOutputData answer;
    test.useOriginalGraph(1);
    describe(question);
    rv::noteFailure(*pData(), rv::runPart(*this, test, question, answer), debugMode(),
                    L"Error in path exists. return code is %d\n");
    const bool isUniquePath = answer.pathExists() != 0 && isUnique(*answer.pEdgeList());
    output->uniquePathExists(isUniquePath ? 1 : 0);
    for (RVEdge* edge : *answer.pEdgeList()) output->pEdgeList()->appendEdge(pData()->pOriginalEdge(edge));
    return pData()->returnCode();
}

// Whether every path has all edges of this one: these cost 1, all others nothing.
bool RVUniquePathTestAlgorithm::isUnique(const RVEdgeDList& path) {
    RVDijkstraAlgorithm dijkstra;
    RVShortestPathsInputData question(pAssociatedGraph());
    RVShortestPathsOutputData answer;
    dijkstra.useOriginalGraph(1);
    describe(question);
    for (RVEdge* edge : path) question.cost(edge, 1);
    rv::noteFailure(*pData(), rv::runPart(*this, dijkstra, question, answer), debugMode(),
                    L"Error in shortest paths. return code is %d\n");
    return answer.totalCost() >= path.length();
}
