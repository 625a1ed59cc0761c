#include "text_io.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace {

bool write(const std::string& text, std::FILE* stream) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() && std::fflush(stream) == 0;
}

int failToWrite(const std::string& file) {
    return fail(kFailure, "cannot write" + file + ": " + std::strerror(errno));
}

}  // namespace

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
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);  // the mark of UTF-8
    return text;
}

void report(const std::string& message) { std::fprintf(stderr, "%s: %s\n", kProgram, message.c_str()); }

int fail(int status, const std::string& message) {
    report(message);
    return status;
}

int failToRead(const std::string& name) {
    return fail(kFailure, "cannot read " + name + ": " + std::strerror(errno));
}

int failWithCode(const std::string& what, int code) {
    return fail(kFailure, what + " failed with code " + std::to_string(code));
}

int print(const std::string& text) { return write(text, stdout) ? kSuccess : failToWrite(""); }

int writeFile(const std::string& text, const std::string& file) {
    if (file == "-") return print(text);
    std::FILE* stream = std::fopen(file.c_str(), "wb");
    if (stream == nullptr) return failToWrite(" " + file);
    const bool isWritten = write(text, stream);
    const int error = errno;
    const bool isClosed = std::fclose(stream) == 0;
    if (!isWritten) errno = error;
    return isWritten && isClosed ? kSuccess : failToWrite(" " + file);
}

std::string quotedForDot(std::string_view name) {
    std::string text = "\"";
    for (const char letter : name) {
        if (letter == '"' || letter == '\\') text.append(1, '\\');
        text.append(1, letter);
    }
    return text.append(1, '"');
}
