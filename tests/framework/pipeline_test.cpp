// The pipeline of a run: hooks, codes, exceptions, and the data of one run.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "rv/analysis.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Notes the steps of a run; those that are named in `throwing` throw.
struct Log {
    void note(const std::string& step) {
        steps += (steps.empty() ? "" : " ") + step;
        const bool throws = (" " + throwing + " ").find(" " + step + " ") != std::string::npos;
        if (throws) throw std::runtime_error(step);
    }
    std::string take() { return std::exchange(steps, ""); }
    std::string steps;
    std::string throwing;
};

class LoggingOutput : public RVAnalysisOutputData {
public:
    explicit LoggingOutput(Log& log) : m_log(log) {}
    void reset() override {
        const RVGraph* graph = pAssociatedGraph();
        m_log.note(graph == nullptr ? "reset" : "reset:" + text(graph->pFirstNode()));
    }

private:
    Log& m_log;
};

// Works on a copy of the graph, with records on both, and looks at what it has there.
class LoggingAlgorithm : public RVInternalAlgorithm {
public:
    explicit LoggingAlgorithm(Log& log) : m_log(log) {}
    RVServiceErrorCodeEnum checkCode = RV_NO_ERROR;
    RVServiceErrorCodeEnum bodyCode = RV_NO_ERROR;
    bool hasOwnData = true;

    RVServiceErrorCodeEnum checkData() override {
        m_log.note("checkData");
        return checkCode;
    }

protected:
    RVAlgorithmData* newInternalData() override { return hasOwnData ? new RVAnalysisInternalData : nullptr; }

    void initialize() override {
        RVInternalAlgorithm::initialize();
        EXPECT_EQ(pAssociatedGraph(), pInputData()->pAssociatedGraph());
        m_log.note("initialize");
    }
    void parseInputData() override { m_log.note("parseInputData"); }
    void preprocess() override {
        createGraphCopy();
        m_copy.reset(pAssociatedGraph());
        m_log.note("preprocess");
    }
    RVServiceErrorCodeEnum algorithmBody() override {
        RVGraph* const original = pInternalData()->pInputGraph();
        EXPECT_EQ(original, pInputData()->pAssociatedGraph());
        EXPECT_EQ(original, pOutputData()->pAssociatedGraph());
        EXPECT_NE(original, m_copy.get());
        EXPECT_EQ(orders(m_copy.get()), orders(original));
        for (RVGraph* graph : {original, m_copy.get()})
            pInternalData()->pAlgorithmExtension(graph->pFirstNode());
        m_log.note("algorithmBody");
        return bodyCode;
    }
    void generateOutputData() override { m_log.note("generateOutputData"); }
    void postprocess() override {
        m_copy.reset();
        m_log.note("postprocess");
    }
    void cleanup() override {
        RVInternalAlgorithm::cleanup();
        EXPECT_EQ(pInternalData(), nullptr);
        EXPECT_EQ(pAssociatedGraph(), nullptr);
        m_log.note("cleanup");
    }

private:
    Log& m_log;
    std::unique_ptr<RVGraph> m_copy;
};

class Pipeline : public testing::Test {
protected:
    Pipeline() {
        m_algorithm.pInputData(&m_input);
        m_algorithm.pOutputData(&m_output);
    }
    void expectNoTraces() const {
        EXPECT_EQ(m_graph->pFirstNode()->pAnalysisExtensions()->pFirstExtension(), nullptr);
        EXPECT_EQ(m_algorithm.pInternalData(), nullptr);
    }

    const std::string m_full =
        "checkData reset:a initialize parseInputData preprocess algorithmBody generateOutputData postprocess "
        "cleanup";
    TestGraph m_graph{"a->b:4 b->c b->c a->a c->b"};
    RVAnalysisInputData m_input{m_graph};
    Log m_log;
    LoggingOutput m_output{m_log};
    LoggingAlgorithm m_algorithm{m_log};
};

TEST_F(Pipeline, CallsAllHooksWhateverTheBodySays) {
    m_algorithm.bodyCode = RV_NEGATIVE_CYCLE;
    EXPECT_EQ(m_algorithm.run(), RV_NEGATIVE_CYCLE);
    EXPECT_EQ(m_log.take(), m_full);
    m_algorithm.bodyCode = RV_NO_ERROR;
    m_algorithm.hasOwnData = false;
    EXPECT_EQ(m_algorithm.run(), RV_NO_ERROR);
    EXPECT_EQ(m_log.take(), m_full);
    expectNoTraces();
    m_algorithm.checkCode = RV_NO_EFFECT_NODES;
    EXPECT_EQ(m_algorithm.run(), RV_NO_EFFECT_NODES);
    EXPECT_EQ(m_log.take(), "checkData");
}

TEST_F(Pipeline, ResetsTheOutputOnItsOldGraph) {
    const TestGraph other("x->y");
    m_output.pAssociatedGraph(other);
    m_algorithm.run();
    EXPECT_EQ(m_log.take().substr(0, 26), "checkData reset:x reset:a ");
}

TEST_F(Pipeline, CleansUpAfterExceptions) {
    const struct {
        const char* throwing;
        const char* stepsBehind;  // the first one that throws
    } cases[] = {
        {"checkData", ""},
        {"reset:a", ""},
        {"initialize", " cleanup"},
        {"parseInputData", " cleanup"},
        {"preprocess", " postprocess cleanup"},
        {"algorithmBody", " postprocess cleanup"},
        {"generateOutputData", " postprocess cleanup"},
        {"postprocess", " cleanup"},
        {"cleanup", ""},
        {"algorithmBody postprocess cleanup", " postprocess cleanup"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.throwing);
        m_log.throwing = c.throwing;
        const std::string first = m_log.throwing.substr(0, m_log.throwing.find(' '));
        m_output.pAssociatedGraph(nullptr);
        try {
            m_algorithm.run();
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), first);
        }
        EXPECT_EQ(m_log.take(), m_full.substr(0, m_full.find(first) + first.size()) + c.stepsBehind);
        expectNoTraces();
        m_log.throwing = "";
        m_output.pAssociatedGraph(m_graph);
        EXPECT_EQ(m_algorithm.run(), RV_NO_ERROR);
        EXPECT_EQ(m_log.take(), m_full);
    }
}

// Also where lists do not stand in the order of the edges, or objects are detached. A change that comes first
// shows what it does alone.
TEST(GraphCopy, HasAllOrdersAndNames) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const TestGraph g(randomText(seed, {.nodes = 4, .edges = 9, .most = 99}));
        std::vector<RVNode*> nodes;
        std::vector<RVEdge*> edges;
        for (RVNode* node : *g->pNodeList()) nodes.push_back(node);
        for (RVEdge* edge : *g->pEdgeList()) edges.push_back(edge);
        std::mt19937 random(seed);
        for (int i = 0; i < 12 && !edges.empty(); ++i) {
            RVNode* const node = nodes[random() % nodes.size()];
            RVEdge* const edge = edges[random() % edges.size()];
            const auto roll = random() % 8;
            if (roll == 0 || roll == 7) g->removeNode(node);
            if (roll == 1 || roll == 7) g->insertNode(node);
            if (roll == 2) g->removeEdge(edge);
            if (roll == 3) g->insertEdge(edge, edge->pTargetNode(), node);
            if (roll == 4) edge->invertDirection();
            if (roll == 5) edge->changeSourceNode(node);
            if (roll == 6) edge->changeTargetNode(node);
            SCOPED_TRACE("seed " + std::to_string(seed) + ", change " + std::to_string(i));
            RVAlgorithmData data;
            RVGraph copy;
            data.copyGraph(g, &copy);
            ASSERT_EQ(orders(&copy), orders(g));
            for (RVNodeIter it(g), twin(&copy); it; it++, twin++)
                ASSERT_EQ(data.pCopyNode(it.pNode()), twin.pNode());
            for (RVEdgeIter it(g), twin(&copy); it; it++, twin++)
                ASSERT_EQ(data.pCopyEdge(it.pEdge()), twin.pEdge());
        }
    }
}

}  // namespace
