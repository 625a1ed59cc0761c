#include "package_source.h"

#include <algorithm>
#include <utility>

#include "text_io.h"

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool isAlphanumeric(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isAllBlank(std::string_view text) { return std::all_of(text.begin(), text.end(), isBlank); }

// A text that is consumed from its front.
class Cursor {
public:
    explicit Cursor(std::string_view text) : m_text(text), m_rest(text) {}

    // Line ends that are consumed.
    int lineEnds() const {
        const std::string_view consumed = m_text.substr(0, m_text.size() - m_rest.size());
        return static_cast<int>(std::count(consumed.begin(), consumed.end(), '\n'));
    }

    bool atEnd() {
        while (!m_rest.empty() && isBlank(m_rest.front())) m_rest.remove_prefix(1);
        return m_rest.empty();
    }
    bool take(char wanted) {
        if (atEnd() || m_rest.front() != wanted) return false;
        m_rest.remove_prefix(1);
        return true;
    }
    // The name of a package, without its architecture; empty when there is none.
    std::string_view takeName() {
        if (atEnd() || !isAlphanumeric(m_rest.front())) return {};
        const std::string_view name = takeWord();
        if (!m_rest.empty() && m_rest.front() == ':') {
            m_rest.remove_prefix(1);
            if (takeWord().empty()) return {};
        }
        return name;
    }
    // Passes over `(>= 1)`, `[amd64]`, `<!nocheck>`; false when one of them has no end.
    bool passRestrictions() {
        while (!atEnd()) {
            const char open = m_rest.front();
            const char close = open == '(' ? ')' : open == '[' ? ']' : open == '<' ? '>' : '\0';
            if (close == '\0') return true;
            const std::size_t end = m_rest.find_first_of(close == ')' ? "),|" : close == ']' ? "],|" : ">,|");
            if (end == std::string_view::npos || m_rest[end] != close) return false;
            m_rest.remove_prefix(end + 1);
        }
        return true;
    }

private:
    std::string_view takeWord() {
        const auto isPart = [](char c) {
            return isAlphanumeric(c) || c == '+' || c == '-' || c == '.' || c == '_';
        };
        const auto end = std::find_if_not(m_rest.begin(), m_rest.end(), isPart);
        const std::string_view word = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
        m_rest.remove_prefix(word.size());
        return word;
    }

    std::string_view m_text;
    std::string_view m_rest;
};

bool readName(std::string_view text, std::string_view& name) {
    Cursor cursor(text);
    name = cursor.takeName();
    return !name.empty() && cursor.atEnd();
}

// Appends what a list such as `libc6 (>= 2.36), default-mta | mail-transport-agent` names; false for any
// other text, with the cursor at the fault.
bool readRelations(Cursor& cursor, std::vector<Alternatives>& relations) {
    while (!cursor.atEnd()) {
        if (cursor.take(',')) continue;
        Alternatives alternatives;
        do {
            alternatives.push_back(cursor.takeName());
            if (alternatives.back().empty() || !cursor.passRestrictions()) return false;
        } while (cursor.take('|'));
        if (!cursor.atEnd() && !cursor.take(',')) return false;
        relations.push_back(std::move(alternatives));
    }
    return true;
}

// The lines of a text, one after the other.
class Lines {
public:
    explicit Lines(std::string_view text) : m_text(text) {}

    bool next() {
        if (m_next >= m_text.size()) return false;
        const std::size_t end = std::min(m_text.find('\n', m_next), m_text.size());
        m_begin = m_next;
        m_line = m_text.substr(m_begin, end - m_begin);
        if (m_line.ends_with('\r')) m_line.remove_suffix(1);
        m_next = end + 1;
        ++m_number;
        return true;
    }
    std::string_view line() const { return m_line; }
    int number() const { return m_number; }

    // Goes on to the last line that continues the present one, and gives all of them as one text.
    std::string_view withContinuation() {
        const std::size_t begin = m_begin;
        while (nextContinues()) next();
        return m_text.substr(begin, std::min(m_next, m_text.size()) - begin);
    }

private:
    bool nextContinues() const {
        if (m_next >= m_text.size() || (m_text[m_next] != ' ' && m_text[m_next] != '\t')) return false;
        return m_text.find_first_not_of(" \t\r", m_next) < m_text.find('\n', m_next);
    }

    std::string_view m_text;
    std::string_view m_line;
    std::size_t m_begin = 0;
    std::size_t m_next = 0;
    int m_number = 0;
};

// The length of the name that begins the line of a field; 0 for any other line.
std::size_t fieldNameLength(std::string_view line) {
    const std::size_t colon = line.find_first_of(": \t");
    return colon == std::string_view::npos || line[colon] != ':' ? 0 : colon;
}

// Names of fields are equal whatever the case of their letters.
bool isField(std::string_view name, std::string_view lowerCase) {
    return std::equal(name.begin(), name.end(), lowerCase.begin(), lowerCase.end(), [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
    });
}

}  // namespace

PackageSource::PackageSource(std::string textName, std::string text)
    : m_textName(std::move(textName)), m_text(std::move(text)) {
    hasStanzas() ? readStanzas() : readColumns();
}

// The first line that is a field or has columns decides. Columns may begin with `libc6:i386`, which is no
// field.
bool PackageSource::hasStanzas() const {
    for (Lines lines(m_text); lines.next();) {
        const std::string_view line = lines.line();
        if (std::count(line.begin(), line.end(), '\t') >= 2) return false;
        if (fieldNameLength(line) != 0) return true;
    }
    return false;
}

void PackageSource::readColumns() {
    for (Lines lines(m_text); lines.next();) {
        if (lines.line().empty()) continue;
        std::vector<std::string_view> columns;
        for (std::string_view rest = lines.line();;) {
            const std::size_t tab = rest.find('\t');
            columns.push_back(rest.substr(0, tab));
            if (tab == std::string_view::npos) break;
            rest.remove_prefix(tab + 1);
        }
        if (columns.size() != 3 && columns.size() != 4) {
            reportMalformed(lines.number(), "not three or four columns");
            continue;
        }
        Package package;
        if (!readName(columns[0], package.name)) {
            reportMalformed(lines.number(), "no package name");
            continue;
        }
        bool isRead = true;
        std::vector<Alternatives>* const relations[] = {&package.depends, &package.preDepends,
                                                        &package.provides};
        for (std::size_t i = 1; i < columns.size() && isRead; ++i) {
            Cursor cursor(columns[i]);
            isRead = readRelations(cursor, *relations[i - 1]);
        }
        if (isRead) {
            m_packages.push_back(std::move(package));
        } else {
            reportMalformed(lines.number(), "not a list of packages");
        }
    }
}

void PackageSource::readStanzas() {
    Package package;
    int nameLine = 0;  // where the name should be; 0 outside of a stanza
    const auto endStanza = [&] {
        if (!package.name.empty()) {
            m_packages.push_back(std::move(package));
        } else if (nameLine != 0) {
            reportMalformed(nameLine, "no package name in this stanza");
        }
        package = Package();
        nameLine = 0;
    };
    for (Lines lines(m_text); lines.next();) {
        if (isAllBlank(lines.line())) {
            endStanza();
            continue;
        }
        const int number = lines.number();
        const std::size_t length = fieldNameLength(lines.line());
        if (length == 0) {
            reportMalformed(number, "not a field");
            continue;
        }
        if (nameLine == 0) nameLine = number;
        const std::string_view name = lines.line().substr(0, length);
        const std::string_view value = lines.withContinuation().substr(length + 1);
        if (isField(name, "package")) {
            if (!package.name.empty()) {
                reportMalformed(number, "a second package in the same stanza");
            } else if (!readName(value, package.name)) {
                package.name = {};
                nameLine = number;
            }
            continue;
        }
        std::vector<Alternatives>* relations = isField(name, "depends")       ? &package.depends
                                               : isField(name, "pre-depends") ? &package.preDepends
                                               : isField(name, "provides")    ? &package.provides
                                                                              : nullptr;
        if (relations == nullptr) continue;
        Cursor cursor(value);
        if (!readRelations(cursor, *relations)) {
            relations->clear();
            reportMalformed(number + cursor.lineEnds(), "not a list of packages");
        }
    }
    endStanza();
}

void PackageSource::reportMalformed(int line, const char* what) const {
    report(m_textName + ":" + std::to_string(line) + ": " + what + "; skipped");
}
