#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/CommandLine.h"

namespace {

TEST(CommandLine, AdvicePathIsTheArgumentBehindTheFirstOptionThatHasOne) {
    const struct {
        std::vector<std::wstring> arguments;
        const wchar_t* path;
    } cases[] = {
        {{L"Gripline.exe"}, L""},
        {{L"Gripline.exe", L"--apply-advice", L"C:\\a.ini"}, L"C:\\a.ini"},
        {{L"Gripline.exe", L"--APPLY-Advice", L"C:\\a.ini"}, L"C:\\a.ini"},
        {{L"Gripline.exe", L"--apply-advice"}, L""},
        {{L"Gripline.exe", L"x", L"--apply-advice", L"a.ini", L"--apply-advice", L"b.ini"}, L"a.ini"},
        {{L"--apply-advice", L"a.ini"}, L""},  // the program's own name is not an option
        {{L"Gripline.exe", L"--apply-advicex", L"a.ini"}, L""},
        {{L"Gripline.exe", L"--apply-advİce", L"a.ini"}, L""},  // only A to Z fold
    };
    for (const auto& c : cases) EXPECT_EQ(veltor::FindAdvicePath(c.arguments), c.path) << c.arguments.size();
}

}  // namespace
