#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

// A record as the file holds it: comparing texts compares all 25 fields and shows which differ.
std::wstring Text(const EngineSettings& settings) {
    IniDocument ini;
    WriteSettings(ini, L"S", settings);
    return ini.Serialize();
}

TEST(SettingsSection, ReadIniIntTakesOnlyAWholeNumberAndSaturates) {
    const std::pair<const wchar_t*, int32_t> cases[] = {
        {L"k= 12 ", 12},       {L"k=12abc", -3},      {L"k=", -3},           {L"k=+7", 7},
        {L"k=\t-0042", -42},   {L"k=- 5", -3},        {L"k=0x10", -3},       {L"k=1 2", -3},
        {L"k=\"12\"", 12},     {L"k=2147483647", INT32_MAX},                 {L"k=2147483648", INT32_MAX},
        {L"k=1099511627776", INT32_MAX},               {L"k=-2147483648", INT32_MIN},
        {L"k=-99999999999999999999", INT32_MIN},       {L"other=1", -3},
    };
    for (const auto& [line, value] : cases) {
        const IniDocument ini = IniDocument::Parse(L"[S]\n" + std::wstring(line));
        EXPECT_EQ(ReadIniInt(ini, L"S", L"k", -3), value) << line;
    }
}

TEST(SettingsSection, ReadSettingsKeepsTheBaseExceptWhereAKeyOrOneOfItsRulesSaysOtherwise) {
    EngineSettings base;
    base.Mode = 1;
    base.Bumps = 30;
    base.BumpImpacts = 30;
    const std::pair<const wchar_t*, std::function<void(EngineSettings&)>> cases[] = {
        {L"", [](EngineSettings&) {}},
        {L"Mode=x\nUnknown=5", [](EngineSettings&) {}},
        {L"Bumps=70", [](EngineSettings& s) { s.Bumps = s.BumpImpacts = 70; }},
        {L"Bumps=70\nBumpImpacts=5", [](EngineSettings& s) { s.Bumps = 70, s.BumpImpacts = 5; }},
        {L"LegacyIracingFfbHandoff=1", [](EngineSettings& s) { s.SimucubeMode = true; }},
        {L"LegacyIracingFfbHandoff=1\nSimucubeMode=0", [](EngineSettings&) {}},
        {L"OversteerCorrection=200", [](EngineSettings& s) { s.OversteerCorrection = 150; }},
        {L"OversteerCorrection=-5", [](EngineSettings& s) { s.OversteerCorrection = 0; }},
        {L"MinForce=500\nCrashReduction=-1", [](EngineSettings& s) { s.MinForce = 500, s.CrashReduction = -1; }},
        {L"useCarSpecificSettings=0\nStartMinimized=7", [](EngineSettings& s) {
             s.UseCarSpecificSettings = false, s.StartMinimized = true;
         }},
    };
    for (const auto& [section, change] : cases) {
        EngineSettings expected = base;
        change(expected);
        const IniDocument ini = IniDocument::Parse(L"[S]\n" + std::wstring(section));
        EXPECT_EQ(Text(ReadSettings(ini, L"S", base)), Text(expected)) << section;
    }
}

}  // namespace
}  // namespace veltor
