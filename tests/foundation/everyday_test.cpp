// Small things of every day: names in UTF-8, lists as ranges, messages, versions.

#include <gtest/gtest.h>

#include <algorithm>
#include <ranges>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"

namespace {

using namespace rvtest;

TEST(Names, AreHadInUtf8) {
    const TestGraph g("a");
    RVNode* const node = g->pFirstNode();
    const struct {
        const char* given;
        const wchar_t* wide;
        const char* back;
    } cases[] = {
        {"gr\xC3\xB6\xC3\x9F"
         "e ma\xC3\x9F",
         L"gr\u00F6\u00DFe ma\u00DF",
         "gr\xC3\xB6\xC3\x9F"
         "e ma\xC3\x9F"},
        {"\xE2\x82\xAC \xF0\x9F\x9A\x80", L"\u20AC \U0001F680", "\xE2\x82\xAC \xF0\x9F\x9A\x80"},
        {"", L"", ""},
        {"\x80 \xC3", L"\uFFFD \uFFFD", "\xEF\xBF\xBD \xEF\xBF\xBD"},  // a byte alone
        {"\xC0\x80", L"\uFFFD\uFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},     // longer than need be
        {"\xED\xA0\x80", L"\uFFFD", "\xEF\xBF\xBD"},                   // half a character
        {"\xF5\x80", L"\uFFFD\uFFFD", "\xEF\xBF\xBD\xEF\xBF\xBD"},     // beyond all
        {"\xE2\x82x", L"\uFFFDx", "\xEF\xBF\xBDx"},                    // broken off
    };
    for (const auto& c : cases) {
        node->nameUtf8(c.given);
        EXPECT_EQ(std::wstring(node->pNameString()), c.wide) << c.back;
        EXPECT_EQ(node->nameUtf8(), c.back);
    }
    const wchar_t half[] = {0xD800, L'x', 0};
    node->pNameString(half);
    EXPECT_EQ(node->nameUtf8(), "\xEF\xBF\xBDx");
}

static_assert(std::ranges::forward_range<RVNodeDList>);
static_assert(std::ranges::forward_range<const RVEdgeDList>);
static_assert(std::ranges::forward_range<rv::Lists<RVNodeDList>>);

TEST(Lists, AreRanges) {
    const TestGraph g("a->b c->d e");
    const RVNodeDList& nodes = *g->pNodeList();
    EXPECT_EQ(std::vector<RVNode*>(nodes.begin(), nodes.end()).size(), 5U);
    EXPECT_EQ(std::ranges::count_if(nodes, [](const RVNode* node) { return node->inDegree() == 0; }), 3);
    EXPECT_EQ(std::ranges::max_element(nodes) == nodes.end(), false);
    Connected components(g);
    EXPECT_EQ(components(), RV_NO_ERROR);
    std::string all;
    for (const RVNodeDList* component : rv::listsOf<RVNodeDList>(components.output.pComponentList()))
        all += text(*component) + "; ";
    EXPECT_EQ(all, "a b; c d; e; ");
    EXPECT_TRUE(std::ranges::empty(rv::listsOf<RVNodeDList>(nullptr)));
}

TEST(Messages, TellCodesApart) {
    std::set<std::string> messages;
    int codes = 0;
    for (int code = 0; code < 1100; ++code) {
        const std::string message = rv::message(static_cast<RVServiceErrorCodeEnum>(code));
        if (message == "unknown result code") continue;
        ++codes;
        messages.insert(message);
    }
    EXPECT_EQ(codes, 32);
    EXPECT_EQ(messages.size(), 32U);
}

TEST(Version, IsThatOfTheHeaders) {
    EXPECT_EQ(rv::version(), std::to_string(RV_VERSION_MAJOR) + "." + std::to_string(RV_VERSION_MINOR) + "." +
                                 std::to_string(RV_VERSION_PATCH));
}

}  // namespace
