// Cluster splitting, disconnected clustering, and clustering under constraints.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Constraints as text: `a=b` ties nodes together, `a!b` keeps them apart, `a+b` is a complete cluster; `=`,
// `!` and `+` alone list no nodes.
class Constraints {
public:
    template <class Input>
    Constraints(const TestGraph& graph, const std::string& tokens, Input& input) {
        std::istringstream stream(tokens);
        for (std::string token; stream >> token;) {
            const char sign = token[token.find_first_of("=!+")];
            auto& constraint = *m_all.emplace_back(std::make_unique<RVClusteringConstraint>(0, nullptr));
            constraint.type(sign == '='   ? RVSameClusterConstraint
                            : sign == '!' ? RVDifferentClusterConstraint
                                          : RVCompleteClusterConstraint);
            constraint.fulfilled(7);
            std::istringstream names(token);
            for (std::string name; std::getline(names, name, sign);) {
                if (!name.empty()) constraint.addNode(graph.node(name));
            }
            if constexpr (requires { input.addConstraint(&constraint); }) input.addConstraint(&constraint);
        }
    }
    std::string fulfilled() const {
        std::string all;
        for (const auto& constraint : m_all) all += std::to_string(constraint->fulfilled());
        return all;
    }
    const auto& all() const { return m_all; }

private:
    std::vector<std::unique_ptr<RVClusteringConstraint>> m_all;
};

struct Case {
    const char* what;
    const char* graph;
    const char* constraints;
    int least;
    int most;
    const char* clusters;
    const char* fulfilled;  // of clustering
};

// The clusters of splitting in alphabetical order: which half comes first is the random start's affair.
template <class Run>
void check(const Case& c) {
    SCOPED_TRACE(c.what);
    const TestGraph g(c.graph);
    Run run(g);
    const Constraints constraints(g, c.constraints, run.input);
    takeWeights(run.input, g);
    run.input.minClusterCount(c.least);
    run.input.maxClusterCount(c.most);
    EXPECT_EQ(run(), RV_NO_ERROR);
    std::istringstream stream(clusterText(run.output));
    std::vector<std::string> clusters;
    for (std::string cluster; std::getline(stream, cluster, ']');) clusters.push_back(cluster + "]");
    if (std::is_same_v<Run, Splitting>) std::sort(clusters.begin(), clusters.end());
    EXPECT_EQ(std::accumulate(clusters.begin(), clusters.end(), std::string()), c.clusters);
    EXPECT_EQ(constraints.fulfilled(), c.fulfilled);
}

constexpr int kMany = RVClusteringInputData::kManyClusters;
constexpr const char* kTwoTriangles = "a->b b->c c->a d->e e->f f->d c->d";

TEST(ClusterSplitting, Splits) {
    const Case cases[] = {
        {"nothing", "", "", 1, kMany, "", ""},
        {"one node", "a a->a", "", 5, kMany, "[a]", ""},
        {"what lies below the target", kTwoTriangles, "", 1, kMany, "[a b c d e f]", ""},
        {"for the count", kTwoTriangles, "", 2, 2, "[a b c][d e f]", ""},
        {"as far as it goes", "a->b b->c", "", 9, 9, "[a][b][c]", ""},
        {"not above the maximum", kTwoTriangles, "", 1, 1, "[a b c d e f]", ""},
        {"for a constraint, above the maximum", kTwoTriangles, "a!f", 1, 1, "[a b c][d e f]", "7"},
        {"for all pairs of a constraint", "a->b b->c c->d", "a!b!c!d", 1, 1, "[a][b][c][d]", "7"},
        {"not for other constraints", kTwoTriangles, "a=b a+f =", 1, kMany, "[a b c d e f]", "777"},
    };
    for (const Case& c : cases) check<Splitting>(c);
    const TestGraph g("a");
    Splitting run(g);
    run.input.minClusterCount(3);
    run.input.maxClusterCount(2);
    EXPECT_EQ(run(), RV_NO_ERROR);
    EXPECT_EQ(run.input.minClusterCount() + run.input.maxClusterCount(), 2);
}

// Halves go to the end, so what is left of two equal halves is the second.
TEST(ClusterSplitting, CutsTheFirstOfTheLargest) {
    const TestGraph g("a->b b->c c->d");
    Splitting run(g);
    run.input.minClusterCount(2);
    EXPECT_EQ(run(), RV_NO_ERROR);
    const std::string halves = clusterText(run.output);
    run.input.minClusterCount(3);
    EXPECT_EQ(run(), RV_NO_ERROR);
    const std::string second = halves.substr(halves.find(']') + 1);
    EXPECT_EQ(second.size(), 5U);
    EXPECT_TRUE(clusterText(run.output).starts_with(second)) << clusterText(run.output);
}

// With the formulas of the header: no cluster that is too heavy is left for a reason that the limits do not
// give, but for those whose cut would not better the weights.
TEST(ClusterSplitting, BringsWeightsToTheTarget) {
    std::string tokens;
    for (int i = 0; i < 225; ++i) {
        for (const int next : {i / 15 * 15 + (i + 1) % 15, (i + 15) % 225})
            tokens += "n" + std::to_string(i) + "->n" + std::to_string(next) + " ";
    }
    const TestGraph g(tokens);
    double lastOff = 1e30;
    for (const int most : {1, 2, 5, 10, kMany}) {
        Splitting run(g);
        run.input.maxClusterCount(most);
        ASSERT_EQ(run(), RV_NO_ERROR);
        const double target = 2.0 + 225.0 / std::min(15, most);
        double off = 0;
        double heaviest = 0;
        for (RVDListIter iter(run.output.pClusters()); iter; iter++) {
            const double weight = RVDList::castDown(iter.pObject())->length();
            heaviest = std::max(heaviest, weight);
            off += std::pow((15 + 2 - weight) * (15 + 2 - weight), 0.75);
        }
        const int count = run.output.pClusters()->length();
        EXPECT_LE(count, most);
        EXPECT_LT(off, lastOff);
        lastOff = off;
        if (most == kMany) {
            // A cluster of twice the target is always worth a cut, even one of a tenth.
            EXPECT_LT(heaviest, 2 * target);
            EXPECT_GE(count, 10);
        }
    }
    for (const double factor : {0.5, 1.0, 2.0, 4.0}) {
        Splitting run(g);
        run.input.clusterSizeFactor(factor);
        ASSERT_EQ(run(), RV_NO_ERROR);
        const double aim = 15 / factor;
        EXPECT_NEAR(run.output.pClusters()->length(), aim, 0.5 * aim) << factor;
    }
}

TEST(DisconnectedClustering, MergesFromTheLightest) {
    const Case cases[] = {
        {"nothing", "", "", 1, kMany, "", ""},
        {"nodes alone", "a b c", "", 1, kMany, "[a][b][c]", ""},
        {"three to two", "a b c", "", 1, 2, "[c][b a]", ""},
        {"to one", "a:3 b:1 c:2 d:9", "", 1, 1, "[d c b a]", ""},
        {"by weight", "a:3 b:1 c:2 d:9 e:4", "", 1, 3, "[e][c b a][d]", ""},
        {"apart", "a b", "a!b", 1, 1, "[a][b]", "7"},
        {"set aside", "a:1 b:2 c:3 d:4", "a!b!c!d", 1, 1, "[a][b][c][d]", "7"},
        {"passed by", "a:1 b:2 c:3 d:4", "a!b", 1, 3, "[b][d][c a]", "7"},
        {"passed by, then set aside", "a:1 b:2 c:3", "a!b", 1, 1, "[b][c a]", "7"},
        {"components", "a->b c->d e f->f", "", 1, 2, "[f e][c d a b]", ""},
        {"without weight", "a:0 b:0 c:0 d:5", "", 1, 2, "[b a c][d]", ""},
    };
    for (const Case& c : cases) check<Disconnected>(c);
}

TEST(DisconnectedClustering, ClustersConnectedGraphsAsSplittingDoes) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        const Shape shape = {.nodes = 6, .least = 0, .most = 5, .nodeNumbers = true};
        const TestGraph g("hub->a:3 hub->b:2 hub->c hub->d hub->e hub->f " + randomText(seed, shape));
        const auto clusters = [&](auto run) {
            takeWeights(run.input, g);
            run.input.minClusterCount(static_cast<int>(seed % 4));
            run.input.clusterSizeFactor(0.1);
            EXPECT_EQ(run(g), RV_NO_ERROR);
            return clusterText(run.output);
        };
        EXPECT_EQ(clusters(Disconnected()), clusters(Splitting()));
    }
}

TEST(Clustering, HoldsConstraints) {
    const Case cases[] = {
        {"nothing", "", "", 1, kMany, "", ""},
        {"without nodes", "a", "= ! +", 1, kMany, "[a]", "111"},
        {"tied", "a b c", "a=c", 1, kMany, "[b][a c]", "1"},
        {"tied by several", "a b c d e", "c=a d=b e=c", 1, kMany, "[b d][a c e]", "111"},
        {"tied twice over", "a b", "a=b b=a a=a=b", 1, kMany, "[a b]", "111"},
        {"apart and tied", "a b", "a!b a=b", 1, kMany, "[a b]", "01"},
        {"complete", "a->b b->c c->d", "b+c", 1, kMany, "[a][d][b c]", "1"},
        {"complete lowers the limits", "a b c d", "a+b", 1, 2, "[d c][a b]", "1"},
        {"all complete", "a->b c", "c+a b+", 1, 1, "[c a][b]", "11"},
        {"complete twice", "a b c", "a+b b+a b+c", 1, kMany, "[a b][c]", "110"},
        {"complete and tied", "a b c", "a+b b=c", 1, kMany, "[c][a b]", "10"},
        {"complete and apart", "a b c", "a+b a!b a!c", 1, kMany, "[c][a b]", "101"},
        {"complete of one", "a b", "a+", 1, kMany, "[b][a]", "1"},
    };
    for (const Case& c : cases) check<Clustering>(c);
}

TEST(AllClustering, ChecksItsDataInOrder) {
    const TestGraph other("x");
    const struct {
        const char* graph;
        const char* constraints;
        int least;
        int quality;
        int codes[4];  // of ratio cut, splitting, disconnected clustering, clustering
    } cases[] = {
        {"a:-1 a->a:-1", "a!a", 3, 3, {26, 27, 27, 27}}, {"a:-1 a->a:-1", "a=a", 3, 3, {26, 26, 26, 28}},
        {"a:-1 a->a:-1", "", 2, -1, {26, 26, 26, 26}},   {"a:-1 a->a:-1", "", 2, 0, {25, 25, 25, 25}},
        {"a:0 a->a:-1", "", 2, 2, {17, 17, 17, 17}},     {"a:0 a->a:0", "", -9, 1, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        const auto codeOf = [&](auto run) {
            const Constraints constraints(g, c.constraints, run.input);
            takeWeights(run.input, g);
            run.input.setQuality(c.quality);
            if constexpr (requires { run.input.maxClusterCount(2); }) {
                run.input.minClusterCount(c.least);
                run.input.maxClusterCount(2);
            }
            const int code = run(g);
            EXPECT_EQ(constraints.fulfilled().find('0'), std::string::npos);
            run.algorithm.pOutputData(nullptr);
            EXPECT_EQ(run(g), code == 0 ? RV_NO_OUTPUT_DATA : code);
            RVClusteringConstraint foreign(0, nullptr);
            foreign.addNode(other.node("x"));
            if constexpr (requires { run.input.addConstraint(&foreign); }) {
                run.input.addConstraint(&foreign);
                EXPECT_EQ(run(g), 27);
            }
            return code;
        };
        EXPECT_EQ(codeOf(RatioCut()), c.codes[0]) << c.graph;
        EXPECT_EQ(codeOf(Splitting()), c.codes[1]) << c.graph;
        EXPECT_EQ(codeOf(Disconnected()), c.codes[2]) << c.graph;
        EXPECT_EQ(codeOf(Clustering()), c.codes[3]) << c.graph;
    }
}

// The parts cannot work on graphs without a factory.
TEST(Clustering, PassesOnTheCodeOfAPart) {
    FactorylessFactory factory;
    RVGraph graph(&factory);
    RVNode* nodes[] = {graph.addNode(), graph.addNode()};
    Clustering run(&graph);
    RVClusteringConstraint constraint(0, nullptr);
    constraint.addNode(nodes[0]);
    constraint.fulfilled(1);
    run.input.addConstraint(&constraint);
    EXPECT_EQ(run(), RV_NO_GRAPH_FACTORY);
    EXPECT_EQ(run.output.pClusters()->length(), 0);
    EXPECT_EQ(constraint.fulfilled(), 0);
}

// Weights whose sums leave 32 bits.
TEST(Clustering, BearsLargeWeights) {
    const TestGraph g(
        "a:2147483647 b:2147483647 c:2147483647 a->b:2147483647 b->c:2147483647 d:1 a->c:2147483647");
    Clustering run(g);
    takeWeights(run.input, g);
    const Constraints constraints(g, "a=b a!c", run.input);
    run.input.minClusterCount(-2147483647 - 1);
    EXPECT_EQ(run(), RV_NO_ERROR);
    EXPECT_EQ(constraints.fulfilled(), "11");
    EXPECT_EQ(run.output.getClusterNumber(g.node("a")), run.output.getClusterNumber(g.node("b")));
}

// Random constraints on random graphs: what must hold whatever the clusters are.
TEST(Clustering, KeepsItsPromises) {
    for (unsigned seed = 0; seed < 800; ++seed) {
        const std::string tokens =
            randomText(seed, {.nodes = 12, .edges = 20, .least = 0, .most = 5, .nodeNumbers = true});
        const TestGraph g(tokens);
        const auto nodes = static_cast<unsigned>(g->numberOfNodes());
        std::mt19937 random(seed);
        std::string wanted;
        for (auto left = random() % 5; left > 0; --left) {
            std::set<char> names;
            for (auto i = random() % 5; i > 0; --i) names.insert(static_cast<char>('a' + random() % nodes));
            const char sign = "=!+"[random() % 3];
            for (const char name : names) wanted += {name, sign};
            wanted += std::string(names.empty() ? 1 : 0, sign) + " ";
        }
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens + " with " + wanted);
        const int least = static_cast<int>(seed % 4);
        const int most = least + static_cast<int>(seed % 5);
        Clustering run(g);
        const Constraints constraints(g, wanted, run.input);
        takeWeights(run.input, g);
        run.input.minClusterCount(least);
        run.input.maxClusterCount(most);
        run.input.clusterSizeFactor(0.5);
        ASSERT_EQ(run(), RV_NO_ERROR);

        std::set<RVObject*> seen;
        std::vector<int> sizes{0};  // by number of the cluster
        for (RVDListIter iter(run.output.pClusters()); iter; iter++) {
            const int number = static_cast<int>(sizes.size());
            sizes.push_back(RVDList::castDown(iter.pObject())->length());
            EXPECT_GT(sizes.back(), 0);
            for (RVDListIter node(RVDList::castDown(iter.pObject())); node; node++) {
                EXPECT_TRUE(seen.insert(node.pObject()).second);
                EXPECT_EQ(run.output.getClusterNumber(static_cast<RVNode*>(node.pObject())), number);
            }
        }
        EXPECT_EQ(seen.size(), nodes);
        if (wanted.find_first_of("!+") == std::string::npos) {
            EXPECT_LE(static_cast<int>(sizes.size()) - 1, std::max(1, most));
        }

        std::set<const RVNode*> complete;
        for (const auto& constraint : constraints.all()) {
            if (constraint->type() != RVCompleteClusterConstraint) continue;
            for (const RVNode* node : *constraint->pNodeList()) complete.insert(node);
        }
        const bool hasTies = wanted.find('=') != std::string::npos || !complete.empty();
        for (const auto& constraint : constraints.all()) {
            const auto count = static_cast<std::size_t>(constraint->pNodeList()->length());
            std::set<int> numbers;
            bool touchesComplete = false;
            for (RVNode* node : *constraint->pNodeList()) {
                numbers.insert(run.output.getClusterNumber(node));
                touchesComplete = touchesComplete || complete.count(node) != 0;
            }
            const bool isApart = constraint->type() == RVDifferentClusterConstraint;
            bool holds = isApart ? numbers.size() == count : numbers.size() < 2;
            if (constraint->type() == RVCompleteClusterConstraint && numbers.size() == 1)
                holds = sizes[static_cast<std::size_t>(*numbers.begin())] == static_cast<int>(count);
            EXPECT_EQ(constraint->fulfilled(), holds ? 1 : 0);
            if (isApart ? !hasTies : constraint->type() == RVSameClusterConstraint && !touchesComplete) {
                EXPECT_TRUE(holds);
            }
        }
    }
}

}  // namespace
