#include "text_io.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>

std::optional<std::string> readText(const std::string& file) {
    std::FILE* stream = file == "-" ? stdin : std::fopen(file.c_str(), "rb");
    if (stream == nullptr) return std::nullopt;
    std::string text;
    std::size_t length = 0;
    std::size_t count = 0;
    do {
        if (text.size() - length < (std::size_t{1} << 16))
            text.resize(2 * text.size() + (std::size_t{1} << 18));
        count = std::fread(text.data() + length, 1, text.size() - length, stream);
        length += count;
    } while (count != 0);
    const int error = std::ferror(stream) != 0 ? errno : 0;
    if (stream != stdin) std::fclose(stream);
    errno = error;
    if (error != 0) return std::nullopt;
    text.resize(length);
    return text;
}

bool writeText(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}
