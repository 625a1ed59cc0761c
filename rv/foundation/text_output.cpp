#include "rv/foundation/text_output.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string>

namespace {

// The format with %s and %c turned into %ls and %lc where no length is given.
std::wstring wideFormat(const wchar_t* format) {
    std::wstring result;
    for (const wchar_t* c = format; *c != L'\0'; ++c) {
        result += *c;
        if (*c != L'%') continue;
        ++c;
        while (*c != L'\0' && std::wcschr(L"-+ #0123456789.*'", *c) != nullptr) result += *c++;
        if (*c == L's' || *c == L'c') result += L'l';
        if (*c == L'\0') break;
        result += *c;
    }
    return result;
}

void appendUtf8(std::string& text, std::uint32_t c) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80U | ((c >> shift) & 0x3FU)); };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0U | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0U | (c >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

std::uint32_t codeUnit(wchar_t c) { return std::char_traits<wchar_t>::to_int_type(c); }

bool writeUtf8(const std::wstring& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto c = codeUnit(text[i]);
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size()) {  // a pair, where wide characters have 16 bits
            const auto low = codeUnit(text[i + 1]);
            if (low >= 0xDC00 && low < 0xE000) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        const bool valid = c < 0xD800 || (c >= 0xE000 && c < 0x110000);
        appendUtf8(bytes, valid ? c : 0xFFFD);
    }
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
}

}  // namespace

int wprintf_s(const wchar_t* format, ...) {
    if (format == nullptr) return -1;
    const std::wstring wide = wideFormat(format);
    std::wstring text(256, L'\0');
    int length = -1;
    // vswprintf tells only that the buffer was too small, so it grows until an upper bound that no message
    // reaches.
    for (; text.size() <= (std::size_t{1} << 24); text.resize(4 * text.size())) {
        std::va_list arguments;
        va_start(arguments, format);
        length = std::vswprintf(text.data(), text.size(), wide.c_str(), arguments);
        va_end(arguments);
        if (length >= 0) break;
    }
    if (length < 0) return -1;
    text.resize(static_cast<std::size_t>(length));
    const bool written = std::fwide(stdout, 0) > 0 ? std::fputws(text.c_str(), stdout) >= 0 : writeUtf8(text);
    return written ? length : -1;
}
