#include "flow_problem.h"

#include <cstddef>
#include <cstdint>
#include <utility>

#include "text_io.h"

FlowProblem::FlowProblem(std::string textName, std::string_view text)
    : m_textName(std::move(textName)), m_graph(m_factory.newGraph()), m_question(m_graph.get()) {
    forEachLine(text, [&](const Words& words, int number) {
        m_line = number;
        const std::string reason = readLine(words);
        if (!reason.empty()) report(std::to_string(number) + ": " + reason + "; skipped");
        return true;
    });
    if (m_kind != None && m_numberOfArcs != m_announcedArcs) {
        report(" line p announces " + std::to_string(m_announcedArcs) + " arcs, there are " +
               std::to_string(m_numberOfArcs));
    }
    if (m_kind == MinimumCost) m_question.desiredFlow(m_supply);
}

void FlowProblem::report(const std::string& message) const { ::report(m_textName + ":" + message); }

std::string FlowProblem::obstacle() const {
    if (m_kind == None) return "no line p max or p min in " + m_textName;
    if (!m_unsupported.empty()) return m_textName + ":" + m_unsupported;
    if (m_question.pSourceNode() == nullptr) return "no line n for the source in " + m_textName;
    if (m_question.pSinkNode() == nullptr) return "no line n for the sink in " + m_textName;
    if (std::int64_t{m_supply} + m_demand != 0) {
        return "the supply of node " + std::to_string(number(m_question.pSourceNode())) + " is " +
               std::to_string(m_supply) + ", that of node " + std::to_string(number(m_question.pSinkNode())) +
               " is " + std::to_string(m_demand) + "; only amounts that are the same are supported";
    }
    return {};
}

std::string FlowProblem::readLine(const Words& words) {
    if (words[0] == "c") return {};
    if (words[0] == "p") return readProblem(words);
    if (words[0] == "n") return readNode(words);
    if (words[0] == "a") return readArc(words);
    return "begins with none of c, p, n and a";
}

std::string FlowProblem::readProblem(const Words& words) {
    if (words.size() != 4 || (words[1] != "max" && words[1] != "min")) {
        return "neither `p max NODES ARCS` nor `p min NODES ARCS`";
    }
    int nodes = 0;
    int arcs = 0;
    for (const std::string& reason : {readInteger(words[2], nodes), readInteger(words[3], arcs)}) {
        if (!reason.empty()) return reason;
    }
    if (nodes < 0 || arcs < 0) return "a number below 0";
    if (m_kind != None) return "a second line p";
    m_kind = words[1] == "max" ? Maximum : MinimumCost;
    m_announcedNodes = nodes;
    m_announcedArcs = arcs;
    return {};
}

// Nodes

std::string FlowProblem::readNode(const Words& words) {
    if (m_kind == None) return "no line p before it";
    if (words.size() != 3) return m_kind == Maximum ? "neither `n ID s` nor `n ID t`" : "not `n ID SUPPLY`";
    int number = 0;
    if (std::string reason = readNodeNumber(words[1], number); !reason.empty()) return reason;
    const auto place = rv::placeOf(takeNode(number));
    if (m_hasLine.size() <= place) m_hasLine.resize(place + 1);
    if (m_hasLine[place]) return "a second line for node " + std::string(words[1]);
    std::string reason = m_kind == Maximum ? readEnd(number, words[2]) : readSupply(number, words[2]);
    m_hasLine[place] = reason.empty();
    return reason;
}

std::string FlowProblem::readEnd(int number, std::string_view letter) {
    if (letter == "s") {
        if (m_question.pSourceNode() != nullptr) return "a second source";
        m_question.pSourceNode(takeNode(number));
    } else if (letter == "t") {
        if (m_question.pSinkNode() != nullptr) return "a second sink";
        m_question.pSinkNode(takeNode(number));
    } else {
        return "neither `n ID s` nor `n ID t`";
    }
    return {};
}

std::string FlowProblem::readSupply(int number, std::string_view word) {
    int supply = 0;
    if (std::string reason = readInteger(word, supply); !reason.empty()) return reason;
    if (supply == 0) return {};
    const bool isSource = supply > 0;
    if (m_unsupported.empty() && (isSource ? m_question.pSourceNode() : m_question.pSinkNode()) != nullptr) {
        m_unsupported = std::to_string(m_line) + ": a second node whose supply is " +
                        (isSource ? "positive" : "negative") + ", which is not supported";
    }
    if (isSource) {
        m_question.pSourceNode(takeNode(number));
        m_supply = supply;
    } else {
        m_question.pSinkNode(takeNode(number));
        m_demand = supply;
    }
    return {};
}

RVNode* FlowProblem::takeNode(int number) {
    RVNode*& node = m_nodes[number];
    if (node == nullptr) {
        node = m_graph->addNode();
        const auto place = rv::placeOf(node);
        if (m_numbers.size() <= place) m_numbers.resize(place + 1);
        m_numbers[place] = number;
    }
    return node;
}

std::string FlowProblem::readNodeNumber(std::string_view word, int& number) const {
    if (std::string reason = readInteger(word, number); !reason.empty()) return reason;
    if (number >= 1 && number <= m_announcedNodes) return {};
    return std::string(word) + " is none of the nodes that line p announces";
}

// Arcs

std::string FlowProblem::readArc(const Words& words) {
    ++m_numberOfArcs;
    if (m_kind == None) return "no line p before it";
    return m_kind == Maximum ? readMaximumArc(words) : readMinimumCostArc(words);
}

std::string FlowProblem::readMaximumArc(const Words& words) {
    if (words.size() != 4) return "not `a FROM TO CAPACITY`";
    int from = 0;
    int to = 0;
    int capacity = 0;
    for (const std::string& reason : {readEnds(words, from, to), readInteger(words[3], capacity)}) {
        if (!reason.empty()) return reason;
    }
    if (capacity < 0) return "a capacity below 0";
    addEdge(from, to, capacity, 0);
    return {};
}

std::string FlowProblem::readMinimumCostArc(const Words& words) {
    if (words.size() != 6) return "not `a FROM TO LOW CAPACITY COST`";
    int from = 0;
    int to = 0;
    int low = 0;
    int capacity = 0;
    int cost = 0;
    for (const std::string& reason : {readEnds(words, from, to), readInteger(words[3], low),
                                      readInteger(words[4], capacity), readInteger(words[5], cost)}) {
        if (!reason.empty()) return reason;
    }
    if (capacity < 0) return "a capacity below 0";
    if (low != 0 && m_unsupported.empty()) {
        m_unsupported = std::to_string(m_line) + ": LOW is " + std::to_string(low) + ", only 0 is supported";
    }
    addEdge(from, to, capacity, cost);
    return {};
}

std::string FlowProblem::readEnds(const Words& words, int& from, int& to) const {
    std::string reason = readNodeNumber(words[1], from);
    return reason.empty() ? readNodeNumber(words[2], to) : reason;
}

void FlowProblem::addEdge(int from, int to, int capacity, int cost) {
    RVNode* source = takeNode(from);
    RVEdge* edge = m_graph->addEdge(source, takeNode(to));
    m_question.capacity(edge, capacity);
    if (cost != 0) m_question.cost(edge, cost);
}
