#include "text_lines.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

Words wordsOf(std::string_view line) {
    Words words;
    for (std::size_t begin = 0; (begin = line.find_first_not_of(kBlanks, begin)) < line.size();) {
        const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
        words.push_back(line.substr(begin, end - begin));
        begin = end;
    }
    return words;
}

}  // namespace

void forEachLine(std::string_view text, const std::function<bool(const Words&, int)>& use) {
    int number = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const Words words = wordsOf(text.substr(begin, end - begin));
        ++number;
        if (!words.empty() && !use(words, number)) return;
        begin = end + 1;
    }
}

std::string readInteger(std::string_view word, int& number) {
    const char* end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, number);
    if (error == std::errc::invalid_argument || rest != end) return std::string(word) + " is no integer";
    if (error != std::errc()) return std::string(word) + " does not fit into 32 bits";
    return {};
}
