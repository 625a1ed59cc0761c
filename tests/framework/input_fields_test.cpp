// Values of input classes by name.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "rv/analysis.h"
#include "tests/exported_classes.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Has a field of every kind, and notes what is stored in it.
class TourInput : public RVAnalysisInputData {
    RV_DATA_OBJECT(TourInput)

public:
    TourInput() = default;
    explicit TourInput(RVGraph* graph) : RVAnalysisInputData(graph) {}

    int range() const { return read("range"); }
    int range(int value) { return store("range", value); }
    int closed() const { return read("closed"); }
    int closed(int value) { return store("closed", value); }
    double limit() const { return read("limit") / 100.0; }
    double limit(double value) { return store("limit", static_cast<int>(value * 100)) / 100.0; }
    RVNode* pStart() const { return m_pStart; }
    RVNode* pStart(RVNode* node) { return store("start of " + text(node), node != nullptr), m_pStart = node; }
    int cost(RVNode* node) const { return read("cost of " + text(node)); }
    int cost(RVNode* node, int value) { return store("cost of " + text(node), value); }
    int cost(RVEdge* edge) const { return read("cost of " + text(edge)); }
    int cost(RVEdge* edge, int value) { return store("cost of " + text(edge), value); }
    int open(RVEdge* edge) const { return read("open of " + text(edge)); }
    int open(RVEdge* edge, int value) { return store("open of " + text(edge), value); }

    // All that was stored since the last question.
    std::string notes() { return std::exchange(m_notes, ""); }

protected:
    std::span<const RVInputField> inputFields() const override {
        using namespace rv::field;
        using D = TourInput;
        static constexpr RVInputField fields[] = {
            graphFlag<D, &D::closed, &D::closed>("closed"),
            edgeInt<D, &D::cost, &D::cost>("cost"),
            graphObject<D, RVNode, &D::pStart, &D::pStart>("start"),
            graphInt<D, &D::range, &D::range>("range"),
            nodeInt<D, &D::cost, &D::cost>("cost").announcedBy(RVInputField::graph | RVInputField::node),
            graphDouble<D, &D::limit, &D::limit>("limit").announcedBy(RVInputField::none),
            edgeFlag<D, &D::open, &D::open>("open"),
        };
        return fields;
    }

private:
    int read(const std::string& what) const { return m_values.count(what) == 0 ? -1 : m_values.at(what); }
    int store(const std::string& what, int value) {
        m_notes += what + "=" + std::to_string(value) + "; ";
        return m_values[what] = value;
    }
    std::map<std::string, int> m_values;
    RVNode* m_pStart = nullptr;
    std::string m_notes;
};
RV_OBJECT_IMPL(TourInput)

// A caller's source. It announces what it is told, such as "graph.range node.cost", or all names for
// "graph.*", and answers everything.
class Teller : public RVAlgorithmInputData {
public:
    explicit Teller(const std::string& names, int first = 5) : m_names(" " + names + " "), m_first(first) {}
    bool hasField(const char* name) const override { return announces("graph.", name); }
    bool hasNodeField(const char* name) const override { return announces("node.", name); }
    bool hasEdgeField(const char* name) const override { return announces("edge.", name); }
    // Another number for each node and edge.
    int intField(const char*, RVGraphObject* object) const override {
        return object == nullptr ? m_first : m_first + 1 + static_cast<RVGraphMember*>(object)->denseIndex();
    }
    double doubleField(const char*, RVGraphObject*) const override { return 0.25; }
    RVObject* pObjectField(const char*, RVGraphObject*) const override { return pNode; }
    RVNode* pNode = nullptr;

private:
    bool announces(const std::string& scope, const std::string& name) const {
        return m_names.find(" " + scope + name + " ") != std::string::npos ||
               m_names.find(" " + scope + "* ") != std::string::npos;
    }
    std::string m_names;
    int m_first;
};

// Who announces a name, and what is answered for each of the objects, as `int/double/object` but for parts
// that are zero or none.
std::string ask(const RVAlgorithmInputData& input, const char* name,
                const std::vector<RVGraphObject*>& objects) {
    std::ostringstream all;
    all << (input.hasField(name) ? "g" : "") << (input.hasNodeField(name) ? "n" : "")
        << (input.hasEdgeField(name) ? "e" : "") << ":";
    for (RVGraphObject* object : objects) {
        all << " " << input.intField(name, object);
        if (const double answer = input.doubleField(name, object); answer != 0.0) all << "/" << answer;
        RVObject* const answer = input.pObjectField(name, object);
        if (answer != nullptr) all << "/" << text(dynamic_cast<RVNode*>(answer));
    }
    return all.str();
}

TEST(InputFields, AreReadByNameAndObject) {
    TestGraph g("a->b");
    const std::vector<RVGraphObject*> objects = {nullptr, g.get(), g.node("a"), g.node("b"), g.edge("a->b")};
    TourInput input(g);
    const Teller everything("graph.* node.* edge.*");
    input.copyData(&everything);
    input.pStart(g.node("b"));
    input.open(g.edge("a->b"), 8);
    const struct {
        const char* name;
        const char* answers;
    } cases[] = {
        {"range", "g: 5 5 5 5 5"},
        {"closed", "g: 1 1 1 1 1"},
        {"limit", ": 0/0.25 0/0.25 0/0.25 0/0.25 0/0.25"},
        {"start", "g: 0/b 0/b 0/b 0/b 0/b"},
        {"cost", "gne: 0 0 6 7 6"},
        {"open", "e: 0 0 0 0 8"},
        {"Range", ": 0 0 0 0 0"},
        {"rang", ": 0 0 0 0 0"},
        {"range ", ": 0 0 0 0 0"},
        {nullptr, ": 0 0 0 0 0"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ask(input, c.name, objects), c.answers) << (c.name ? c.name : "none");
}

// Field by field in the order of the table of the one who takes, whatever the source.
TEST(InputFields, AreTakenFromOtherInputs) {
    TestGraph g("a->b b->a");
    const struct {
        const char* what;
        const char* announced;
        int first;
        const char* stored;
    } cases[] = {
        {"everything", "graph.* node.* edge.*", 5,
         "closed=1; cost of a->b=6; cost of b->a=7; start of b=1; range=5; cost of a=6; cost of b=7; "
         "limit=25; open of a->b=1; open of b->a=1; "},
        {"zero flags", "graph.closed edge.open", 0, "closed=0; open of a->b=1; open of b->a=1; "},
        {"flags below zero", "graph.closed edge.open", -1, "closed=1; open of a->b=0; open of b->a=1; "},
        {"other scopes", "node.range edge.range graph.open node.open graph.cost", 5, ""},
        {"one of two scopes", "node.cost", 5, "cost of a=6; cost of b=7; "},
        {"foreign names", "graph.Range node.costs edge.costs graph.", 5, ""},
    };
    TourInput input(g);
    for (const auto& c : cases) {
        Teller other(c.announced, c.first);
        other.pNode = g.node("b");
        input.copyData(&other);
        EXPECT_EQ(input.notes(), c.stored) << c.what;
    }
    TourInput graphless;
    const Teller everything("graph.* node.* edge.*");
    graphless.copyData(&everything);
    EXPECT_EQ(graphless.notes(), "closed=1; start of none=0; range=5; limit=25; ");
}

// Holds for every input class and its own table.
template <class Input>
struct FieldsOf {
    struct Peek : RVAnalysisInputData {
        static auto fieldsOf(const RVAnalysisInputData& input) { return (input.*&Peek::inputFields)(); }
    };
    std::span<const RVInputField> fields() const {
        if constexpr (std::is_base_of_v<RVAnalysisInputData, Input>) return Peek::fieldsOf(input);
        return {};
    }
    std::string answers(const Input& of) const {
        std::string all;
        for (const RVInputField& field : fields()) {
            if ((field.announced & field.scope) != 0) all += ask(of, field.name, objects) + "\n";
        }
        return all;
    }

    TestGraph graph{"a->b b->b c"};
    const std::vector<RVGraphObject*> objects{nullptr,         graph.node("a"),    graph.node("b"),
                                              graph.node("c"), graph.edge("a->b"), graph.edge("b->b")};
    Input input{graph};
};
TEST(InputFields, OfEveryClassTakeWhatIsAnnouncedAndNothingElse) {
    forEachClass(InputClasses(), []<class Input>() {
        FieldsOf<Input> test;
        Input& input = test.input;
        Input twin(test.graph.get());
        const Teller everything("graph.* node.* edge.*");
        input.copyData(&everything);
        const std::string filled = test.answers(input);
        const auto isNumber = [](const RVInputField& f) {
            return f.getObject == nullptr && (f.announced & f.scope) != 0;
        };
        const auto fields = test.fields();
        EXPECT_EQ(test.answers(twin) != filled, std::any_of(fields.begin(), fields.end(), isNumber));
        twin.copyData(&input);
        EXPECT_EQ(test.answers(twin), filled);

        const Teller nothing("");
        const RVAlgorithmInputData base(test.graph);
        for (const RVAlgorithmInputData* other :
             std::initializer_list<const RVAlgorithmInputData*>{&base, &nothing, &input, nullptr}) {
            input.copyData(other);
            EXPECT_EQ(test.answers(input), filled);
        }
    });
}

}  // namespace
