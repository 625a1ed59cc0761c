#include "arguments.h"

#include <charconv>
#include <system_error>

bool Arguments::next() {
    while (++m_position < m_count) {
        m_text = m_arguments[m_position];
        if (m_onlyOperands || m_text != "--") return true;
        m_onlyOperands = true;
    }
    return false;
}

std::optional<std::string> Arguments::value() {
    if (const std::size_t end = m_text.find('='); end != std::string::npos) return m_text.substr(end + 1);
    if (++m_position >= m_count) return std::nullopt;
    return m_arguments[m_position];
}

std::string Arguments::readText(const char* what, std::optional<std::string>& place) {
    place = value();
    return place && !place->empty() ? std::string() : name() + " needs " + what;
}

std::string Arguments::readInteger(int least, int greatest, std::optional<int>& place) {
    return readWithin("an integer", least, greatest, place);
}

std::string Arguments::readNumber(int least, int greatest, std::optional<double>& place) {
    return readWithin("a number", least, greatest, place);
}

template <class Number>
std::string Arguments::readWithin(const char* what, int least, int greatest, std::optional<Number>& place) {
    const std::string text = value().value_or("");
    Number number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    // Not a number is within no bounds.
    if (error == std::errc() && rest == end && number >= least && number <= greatest) {
        place = number;
        return {};
    }
    return name() + " needs " + what + " from " + std::to_string(least) + " to " + std::to_string(greatest);
}
