#include "module_graph.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <system_error>

#include "text_io.h"

namespace {

constexpr const char* kConstraintWords[] = {"same", "different", "alone"};  // by type

// Gives the reason when the word is no integer of 0 or more.
std::string readAmount(std::string_view word, int& amount) {
    std::string reason = readInteger(word, amount);
    if (reason.empty() && amount < 0) reason = std::string(word) + " is negative";
    return reason;
}

}  // namespace

void ModuleGraph::read(const std::string& textName, std::string_view text) {
    forEachLine(text, [&](const Words& words, int number) {
        const std::string reason = words.front().starts_with('#') ? std::string() : readLine(words);
        if (!reason.empty()) {
            report(textName + ":" + std::to_string(number) + ": " + reason + "; skipped");
        }
        return true;
    });
}

std::string ModuleGraph::readLine(const Words& words) {
    const auto* type = std::find(std::begin(kConstraintWords), std::end(kConstraintWords), words.front());
    if (type != std::end(kConstraintWords)) {
        return readConstraint(words, static_cast<RVClusteringConstraintTypeEnum>(type - kConstraintWords));
    }
    if (words.front() == "node") return readNode(words);
    return readEdge(words, words.front() == "edge" ? 1 : 0);
}

std::string ModuleGraph::readNode(const Words& words) {
    if (words.size() < 2 || words.size() > 3) return "not `node A [WEIGHT]`";
    int weight = 1;
    if (words.size() == 3) {
        if (std::string reason = readAmount(words[2], weight); !reason.empty()) return reason;
    }
    m_question.setWeight(takeNode(std::string(words[1])), weight);
    return {};
}

std::string ModuleGraph::readEdge(const Words& words, std::size_t first) {
    const std::size_t count = words.size() - first;
    if (count < 2 || count > 3) return "not `A B [COST]`";
    int cost = 1;
    if (count == 3) {
        if (std::string reason = readAmount(words.back(), cost); !reason.empty()) return reason;
    }
    RVNode* const source = takeNode(std::string(words[first]));
    m_question.setCost(m_graph->addEdge(source, takeNode(std::string(words[first + 1]))), cost);
    return {};
}

std::string ModuleGraph::readConstraint(const Words& words, RVClusteringConstraintTypeEnum type) {
    if (words.size() < 2) return std::string(words.front()) + " without nodes";
    RVClusteringConstraint constraint(0, nullptr);
    constraint.type(type);
    for (std::size_t i = 1; i < words.size(); ++i) constraint.addNode(takeNode(std::string(words[i])));
    if (constraint.valid(m_graph.get()) == 0) return "a node twice";
    m_question.addConstraint(&m_constraints.emplace_back(constraint));
    return {};
}

RVNode* ModuleGraph::takeNode(const std::string& name) {
    RVNode*& node = m_nodes[name];
    if (node == nullptr) {
        node = m_graph->addNode();
        m_names.push_back(name);
    }
    return node;
}

std::string ModuleGraph::text(const RVClusteringConstraint& constraint) const {
    std::string all = kConstraintWords[constraint.type()];
    for (const RVNode* node : *constraint.pNodeList()) all.append(1, ' ').append(name(node));
    return all;
}

std::string ModuleGraph::collectIncludes(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    std::vector<std::string> files;  // as paths from the folder
    const fs::path root = fs::path(folder);
    for (fs::recursive_directory_iterator place(root, error), end; !error && place != end;
         place.increment(error)) {
        const std::string name = place->path().filename().string();
        if (name.starts_with('.') || name == "build") {
            place.disable_recursion_pending();
        } else if (const std::string kind = place->path().extension().string();
                   kind == ".h" || kind == ".hpp" || kind == ".c" || kind == ".cc" || kind == ".cpp") {
            files.push_back(place->path().lexically_relative(root).generic_string());
        }
    }
    if (error) return "cannot read " + folder + ": " + error.message();
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) takeNode(file);
    for (const std::string& file : files) {
        const std::optional<std::string> content = readText((root / file).string());
        if (!content) return "cannot read " + (root / file).string() + ": " + std::strerror(errno);
        forEachLine(*content, [&](const Words& words, int) {
            if (words.size() < 2 || words[0] != "#include" || words[1].size() < 3 || words[1][0] != '"')
                return true;
            const std::string_view quoted = words[1].substr(1, words[1].find('"', 1) - 1);
            const fs::path places[] = {fs::path(file).parent_path() / quoted, fs::path(quoted)};
            for (const fs::path& place : places) {
                const auto found = m_nodes.find(place.lexically_normal().generic_string());
                if (found == m_nodes.end()) continue;
                m_graph->addEdge(m_nodes[file], found->second);
                break;
            }
            return true;
        });
    }
    return {};
}
