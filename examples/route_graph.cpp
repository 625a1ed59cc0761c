#include "route_graph.h"

#include <cstddef>

#include "text_io.h"

namespace {

// The first line that is no comment decides.
bool isDimacs(std::string_view text) {
    bool result = false;
    forEachLine(text, [&](const Words& words, int) {
        const bool isComment = words[0] == "c" || words[0].starts_with('#');
        result = words[0] == "p";
        return isComment;
    });
    return result;
}

// Each byte of a name is one wide character, so that names in any encoding come out as they went in.
std::wstring widened(std::string_view name) {
    std::wstring wide;
    for (const char byte : name) wide.push_back(static_cast<unsigned char>(byte));
    return wide;
}

}  // namespace

RouteGraph::RouteGraph(std::string textName, std::string_view text)
    : m_graph(m_factory.newGraph()), m_costs(m_graph.get()) {
    const bool dimacs = isDimacs(text);
    const auto read = dimacs ? &RouteGraph::readDimacsLine : &RouteGraph::readLine;
    forEachLine(text, [&](const Words& words, int number) {
        const std::string reason = (this->*read)(words);
        if (!reason.empty()) {
            report(textName + ":" + std::to_string(number) + ": " + reason + "; skipped");
        }
        return true;
    });
    if (dimacs && m_announcedNodes == -1) {
        report("no line p sp in " + textName);
    } else if (m_numberOfArcs != m_announcedArcs) {
        report(textName + ": line p announces " + std::to_string(m_announcedArcs) + " arcs, there are " +
               std::to_string(m_numberOfArcs));
    }
}

std::string RouteGraph::readLine(const Words& words) {
    if (words[0].starts_with('#')) return {};
    if (words[0] == "node") return readNode(words);
    if (words[0] == "edge") return readEdge(words);
    return "neither node nor edge";
}

std::string RouteGraph::readNode(const Words& words) {
    if (words.size() != 2 && words.size() != 3) return "not `node NAME [COST]`";
    int cost = 0;
    if (words.size() == 3) {
        if (std::string reason = readInteger(words[2], cost); !reason.empty()) return reason;
    }
    RVNode* node = takeNode(words[1]);
    const auto place = rv::placeOf(node);
    if (m_hasLine.size() <= place) m_hasLine.resize(place + 1);
    if (m_hasLine[place]) return "a second line for node " + std::string(words[1]);
    m_hasLine[place] = true;
    if (cost != 0) m_costs.cost(node, cost);
    return {};
}

std::string RouteGraph::readEdge(const Words& words) {
    if (words.size() != 5 || (words[2] != "->" && words[2] != "--")) {
        return "not `edge NAME -> NAME COST` or `edge NAME -- NAME COST`";
    }
    int cost = 0;
    if (std::string reason = readInteger(words[4], cost); !reason.empty()) return reason;
    RVNode* source = takeNode(words[1]);
    addEdge(source, takeNode(words[3]), cost, words[2] == "--");
    return {};
}

std::string RouteGraph::readDimacsLine(const Words& words) {
    if (words[0] == "c") return {};
    if (words[0] == "p") return readProblem(words);
    if (words[0] == "a") return readArc(words);
    return "begins with none of c, p and a";
}

std::string RouteGraph::readProblem(const Words& words) {
    if (words.size() != 4 || words[1] != "sp") return "not `p sp NODES ARCS`";
    int nodes = 0;
    int arcs = 0;
    for (const std::string& reason : {readInteger(words[2], nodes), readInteger(words[3], arcs)}) {
        if (!reason.empty()) return reason;
    }
    if (nodes < 0 || arcs < 0) return "a number below 0";
    if (m_announcedNodes != -1) return "a second line p";
    m_announcedNodes = nodes;
    m_announcedArcs = arcs;
    return {};
}

std::string RouteGraph::readArc(const Words& words) {
    ++m_numberOfArcs;
    if (m_announcedNodes == -1) return "no line p before it";
    if (words.size() != 4) return "not `a FROM TO COST`";
    int numbers[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        if (std::string reason = readInteger(words[i + 1], numbers[i]); !reason.empty()) return reason;
    }
    for (std::size_t i = 0; i < 2; ++i) {
        if (numbers[i] < 1 || numbers[i] > m_announcedNodes) {
            return std::string(words[i + 1]) + " is none of the nodes that line p announces";
        }
    }
    RVNode* source = takeNode(std::to_string(numbers[0]));
    addEdge(source, takeNode(std::to_string(numbers[1])), numbers[2], false);
    return {};
}

RVNode* RouteGraph::takeNode(std::string_view name) {
    RVNode*& node = m_nodes[std::string(name)];
    if (node == nullptr) {
        node = m_graph->addNode();
        node->pNameString(widened(name).c_str());
    }
    return node;
}

RVNode* RouteGraph::pNode(std::string_view name) {
    if (const auto found = m_nodes.find(std::string(name)); found != m_nodes.end()) return found->second;
    int number = 0;
    const bool isAnnounced = readInteger(name, number).empty() && number >= 1 && number <= m_announcedNodes &&
                             std::to_string(number) == name;
    return isAnnounced ? takeNode(name) : nullptr;
}

std::string RouteGraph::name(const RVNode* node) const {
    std::string narrow;
    for (const wchar_t* letter = node->pNameString(); *letter != L'\0'; ++letter) {
        narrow.push_back(static_cast<char>(*letter));
    }
    return narrow;
}

void RouteGraph::addEdge(RVNode* source, RVNode* target, int cost, bool bothWays) {
    RVEdge* edge = m_graph->addEdge(source, target);
    m_costs.cost(edge, cost);
    if (bothWays) m_costs.undirected(edge, 1);
}
