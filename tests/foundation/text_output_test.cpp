#include "rv/foundation/text_output.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cwchar>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

namespace {

// What a process writes whose standard output has no orientation yet.
std::string outputOf(const std::function<void()>& write) {
    const std::string path = testing::TempDir() + "rv_text_output_" + std::to_string(getpid());
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        std::setlocale(LC_ALL, "C.UTF-8");
        const bool opened = std::freopen(path.c_str(), "w", stdout) != nullptr;
        if (opened) write();
        _exit(opened && !testing::Test::HasFailure() && std::fflush(stdout) == 0 ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::remove(path.c_str());
    return text;
}

TEST(TextOutput, FormatsWideTextWhateverTheOrientation) {
    const std::wstring longText(5000, L'\x2192');
    std::string longBytes;
    for (std::size_t i = 0; i < longText.size(); ++i) longBytes += "\xE2\x86\x92";
    const auto write = [&] {
        EXPECT_EQ(wprintf_s(L"%s|%-4s|%.2s|%ls|%c|%d%%\n", L"a\x2192z", L"\xE9", L"xyz", L"l", L'\x20AC', -7),
                  20);
        EXPECT_EQ(wprintf_s(L"%*d|%5.1f|%lld|%s", 4, 42, 2.25, 1LL << 40, L"\U0001F600\n"), 27);
        EXPECT_EQ(wprintf_s(L"%s", longText.c_str()), 5000);
        EXPECT_EQ(wprintf_s(L""), 0);
        EXPECT_LT(wprintf_s(nullptr), 0);
    };
    const std::string expected =
        "a\xE2\x86\x92z|\xC3\xA9   |xy|l|\xE2\x82\xAC|-7%\n"
        "  42|  2.2|1099511627776|\xF0\x9F\x98\x80\n" +
        longBytes;
    for (const int orientation : {0, -1, 1}) {
        SCOPED_TRACE(orientation);
        EXPECT_EQ(outputOf([&] {
                      std::fwide(stdout, orientation);
                      write();
                  }),
                  expected);
    }
    // Mixed with narrow text on a stream of bytes.
    EXPECT_EQ(outputOf([] {
                  std::printf("a");
                  wprintf_s(L"%s", L"b");
                  std::printf("c");
              }),
              "abc");
}

}  // namespace
