// Names in UTF-8. A wide character is a code point, or half of one where wide characters have 16 bits.

#include <cstdint>

#include "rv/foundation/graph.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kHasHalves = sizeof(wchar_t) == 2;

bool isSurrogate(char32_t point) { return point >= 0xD800 && point <= 0xDFFF; }
bool isCharacter(char32_t point) { return point <= 0x10FFFF && !isSurrogate(point); }

// Takes the next code point off a text; of bytes that are none the longest that begin one.
char32_t takePoint(std::string_view& text) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byteAt(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    char32_t point = length <= 1 ? first : first & (0xFFU >> (length + 1));
    std::size_t read = 1;
    for (; read < length && read < text.size() && (byteAt(read) & 0xC0U) == 0x80; ++read)
        point = point << 6U | (byteAt(read) & 0x3FU);
    const bool isTooLong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    const bool isWhole = length > 0 && read == length && !isTooLong && isCharacter(point);
    text.remove_prefix(read);
    return isWhole ? point : kReplacement;
}

void appendWide(char32_t point, std::wstring& text) {
    if (kHasHalves && point > 0xFFFF) {
        text += static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10U));
        text += static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FFU));
    } else {
        text += static_cast<wchar_t>(point);
    }
}

void appendUtf8(char32_t point, std::string& text) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80) return append(point);
    if (point < 0x800) {
        append(0xC0 | point >> 6U);
    } else {
        if (point < 0x10000) {
            append(0xE0 | point >> 12U);
        } else {
            append(0xF0 | point >> 18U);
            append(0x80 | (point >> 12U & 0x3FU));
        }
        append(0x80 | (point >> 6U & 0x3FU));
    }
    append(0x80 | (point & 0x3FU));
}

}  // namespace

void RVGraphObject::nameUtf8(std::string_view text) {
    std::wstring name;
    while (!text.empty()) appendWide(takePoint(text), name);
    pNameString(name.c_str());
}

std::string RVGraphObject::nameUtf8() const {
    std::string text;
    const wchar_t* name = pNameString();
    while (*name != 0) {
        auto point = static_cast<char32_t>(*name++);
        if constexpr (kHasHalves) {
            const auto next = static_cast<char32_t>(*name);
            if (point >= 0xD800 && point < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
                point = 0x10000 + ((point - 0xD800) << 10U) + (next - 0xDC00);
                ++name;
            }
        }
        appendUtf8(isCharacter(point) ? point : kReplacement, text);
    }
    return text;
}
