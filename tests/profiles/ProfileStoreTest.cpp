#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ProfileStoreFolder.h"
#include "profiles/IniDocument.h"
#include "profiles/IniEncoding.h"
#include "profiles/ProfileStore.h"
#include "profiles/SettingsSection.h"

namespace veltor {
namespace {

using namespace std::string_literals;
using test::ProfileStoreFolder;

// A record as the file holds it: comparing texts compares all 25 fields and shows which differ.
std::wstring Text(const EngineSettings& settings) {
    IniDocument ini;
    WriteSettings(ini, L"S", settings);
    return ini.Serialize();
}

std::wstring FileText(const ProfileStoreFolder& folder) { return DecodeIniBytes(folder.Read()); }

EngineSettings Distinct(int32_t seed) {
    EngineSettings settings;
    settings.ForceStrength = seed;
    settings.CrashLatG = seed + 1;
    settings.DebugLogging = seed % 2 == 1;
    settings.UseCarSpecificSettings = seed % 3 != 0;
    return settings;
}

// What a user sees of a store: the selection, the live record and the profiles, as one text.
std::wstring Summary(const ProfileStore& store) {
    std::wstring text = std::to_wstring(store.SelectedProfile) + Text(store.CurrentSettings);
    for (const DriverProfile& profile : store.Profiles) text += profile.Name + Text(profile.Settings);
    return text;
}

ProfileStore Loaded(const ProfileStoreFolder& folder) {
    ProfileStore store(folder.IniPath());
    store.LoadCoefficients();
    store.LoadProfiles();
    return store;
}

// How values read is checked against the platform's own functions under Wine (IniPlatformTest_win32.cpp);
// here is what a save does to the text around them, and the bytes the text is read from.
// Whatever the text, parsing and serialising give it back, so that a save keeps every line it doesn't write.
TEST(IniDocument, SerialisesUntouchedTextExactly) {
    const std::wstring texts[] = {
        L"", L"\r\n\r\n", L"no end", L"[a]", L"; comment\n\n[S]\r\nk = v ; not a comment\r\r\n\n[S]\nk=2",
        L"top=1\r\n[ Spaced ]\r\n  Key  =  v 2  \r\nbare\r\n[Cr]\rk=cr\n[Br]x]\r\nk=\x1A c\x0B\r\n", L"\0[x]\0=\0\n"s};
    for (const std::wstring& text : texts) EXPECT_EQ(IniDocument::Parse(text).Serialize(), text);
}

TEST(IniDocument, WritesReplaceInPlaceAppendToTheirSectionAndKeepEverythingElse) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {  // the file before and after S/k=v
        {L"", L"[S]\r\nk=v\r\n"},
        {L"; keep\n[s]\nK = old ; x  \n\n[T]\n", L"; keep\n[s]\nK = v  \n\n[T]\n"},
        {L"[S]\na=1\n\n\n[T]\nb=2", L"[S]\na=1\nk=v\r\n\n\n[T]\nb=2"},
        {L"[T]\nb=2", L"[T]\nb=2\r\n[S]\r\nk=v\r\n"},
        {L"[S]\nk\n", L"[S]\nk=v\n"},
        {L"[S]\nk=1\n[s]\nk=2\n", L"[S]\nk=v\n[s]\nk=2\n"},
        {L"[S]\nx=1", L"[S]\nx=1\r\nk=v\r\n"},
    };
    for (const auto& [before, after] : cases) {
        IniDocument ini = IniDocument::Parse(before);
        ini.SetString(L"S", L"k", L"v");
        EXPECT_EQ(ini.Serialize(), after) << before;
    }
}

// A name can't slip a line of its own into the file.
TEST(IniDocument, LineBreaksAndNulsInAValueBecomeBlanks) {
    IniDocument ini;
    ini.SetString(L"S", L"k", L"a\r\n[Profiles]\nCount=9\0x"s);
    const IniDocument reread = IniDocument::Parse(ini.Serialize());
    EXPECT_EQ(reread.GetString(L"S", L"k", L"DEF", 128), L"a  [Profiles] Count=9 x");
    EXPECT_EQ(reread.GetString(L"Profiles", L"Count", L"DEF", 128), L"DEF");
}

TEST(IniEncoding, DecodesByMarkThenAsUtf8WhenValidElseAsWindows1252) {
    const std::pair<std::string, std::wstring> cases[] = {
        {"", L""},
        {"\xFF\xFE" "a\0\x3D\xD8\x00\xDE"s, L"a\U0001F600"},
        {"\xFE\xFF" "\0a\x6E\x21"s, L"a\u6e21"},
        {"\xFF\xFE" "\x00\xD8" "a\0"s, L"\uFFFDa"},  // a lone surrogate
        {"\xFF\xFE" "a\0b"s, L"a"},                   // an odd last byte
        {"\xEF\xBB\xBF" "J\xC3\xBCrgen", L"J\u00fcrgen"},
        {"\xEF\xBB\xBF" "a\xFF" "b", L"a\uFFFDb"},
        {"\xE6\xB8\xA1\xE8\xBE\xBA", L"\u6e21\u8fba"},
        {"J\xFCrgen \x80\x81", L"J\u00fcrgen \u20ac\u0081"},
        {"\xC0\xAF", L"\u00C0\u00AF"},               // overlong: not UTF-8
        {"\xED\xA0\x80", L"\u00ED\u00A0\u20AC"},     // an encoded surrogate: not UTF-8
    };
    for (const auto& [bytes, text] : cases) EXPECT_EQ(DecodeIniBytes(bytes), text) << bytes;
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

// A file without a usable list of profiles gives the one profile "Default"; whatever else it holds stays
// through a save, however hostile.
TEST(ProfileStore, AFileWithoutAListOfProfilesGivesOneDefaultAndKeepsItsLinesThroughASave) {
    std::string manySections;
    for (int i = 0; i < 10000; ++i) manySections += "[S" + std::to_string(i) + "]\nk=1\nk=2\n";
    const std::pair<std::string, bool> files[] = {  // the bytes, and whether a save keeps them as they were
        {"", true},
        {"[Profiles]\nCount=0\n", false},
        {"[Profiles]\nCount=-5\n[Profile0]\nName=A\n", false},
        {std::string("\xFF\xFE\x00\xD8\x01\x02[\0\n\r\x80", 12), true},
        {"\x1A\x1A=\n][", true},
        {"big=" + std::string(1 << 20, 'x') + "\n", true},
        {manySections, true},
        {std::string("\x80\x81\0\xFF\n[\xE9]\r\r\n=\n", 14), true},
    };
    for (const auto& [bytes, kept] : files) {
        ProfileStoreFolder folder;
        if (!bytes.empty()) folder.Write(bytes);
        ProfileStore store = Loaded(folder);
        ASSERT_EQ(store.Profiles.size(), 1u);
        EXPECT_EQ(store.Profiles[0].Name, L"Default");
        EXPECT_EQ(store.SelectedProfile, 0);
        EXPECT_EQ(Text(store.CurrentSettings), Text(EngineSettings{}));
        EXPECT_TRUE(store.CoefficientOverrides.empty());
        store.Profiles[0].Name = L"Mine";
        ASSERT_TRUE(store.SaveAll());
        const std::wstring before = DecodeIniBytes(bytes);
        if (kept) {
            EXPECT_EQ(FileText(folder).substr(0, before.size()), before);
        }
        EXPECT_EQ(Loaded(folder).Profiles[0].Name, L"Mine");
    }
}

TEST(ProfileStore, ListedProfilesLoadWithTheirNamesDefaultsAndAClampedSelection) {
    const int32_t strengths[] = {70, 50, 20};
    const std::pair<const char*, int32_t> selections[] = {{"7", 2}, {"-1", 0}, {"1", 1}, {"x", 0}};
    for (const auto& [selected, expected] : selections) {
        ProfileStoreFolder folder;
        folder.Write(std::string("[Profiles]\nCount=3\nSelected=") + selected +
                     "\n[Profile0]\nName= A \nForceStrength=70\n[Profile2]\nForceStrength=20\n");
        ProfileStore store = Loaded(folder);
        ASSERT_EQ(store.Profiles.size(), 3u);
        EXPECT_EQ(store.Profiles[0].Name, L"A");
        EXPECT_EQ(store.Profiles[1].Name, L"Driver 2");
        EXPECT_EQ(store.Profiles[2].Name, L"Driver 3");
        EXPECT_EQ(store.SelectedProfile, expected);
        EXPECT_EQ(store.CurrentSettings.ForceStrength, strengths[expected]);
    }
}

// Sections of other names don't raise the bound: a damaged file of many of them must not load (and save) a
// profile for each.
TEST(ProfileStore, AHugeCountCostsNoMoreThanTheNumberedSectionsTheFileHolds) {
    ProfileStoreFolder folder;
    std::string others;
    for (int i = 0; i < 5000; ++i) others += "[a]\n";
    folder.Write("[Profiles]\nCount=2147483647\n[Profile0]\nName=A\n[Coefficients]\nCount=2147483647\n"
                 "[Coefficient1]\nCar=rt2000\n" + others);
    ProfileStore store = Loaded(folder);
    EXPECT_EQ(store.Profiles.front().Name, L"A");
    EXPECT_LT(store.Profiles.size(), 200u);
    ASSERT_EQ(store.CoefficientOverrides.size(), 1u);
    EXPECT_EQ(store.CoefficientOverrides[0].CarPath, L"rt2000");
    EXPECT_TRUE(store.SaveAll());
}

// Each field's own round trip is the settings tables' test; here are several profiles, their car entries
// and an override together, and a name beyond the BMP in the UTF-16 file.
TEST(ProfileStore, SaveAllRoundTripsProfilesCarEntriesOverridesAndNonAsciiNames) {
    ProfileStoreFolder folder;
    ProfileStore saved(folder.IniPath());
    saved.Profiles = {{L"J\u00fcrgen M\u00fcller", Distinct(11)}, {L"\u0141ukasz", {}}, {L"\u6e21\u8fba", {}}};
    saved.SelectedProfile = 1;
    saved.CurrentSettings = Distinct(12);
    saved.PutCarSettings(0, L"mx5 mx52016", Distinct(21));
    saved.PutCarSettings(2, L"RT2000", Distinct(22));
    saved.PutCoefficients({L"MX5 MX52016", 37.0f, 0.125f, 96.0f, 0.9f, -0.01745329f});
    ASSERT_TRUE(saved.SaveAll());
    ASSERT_TRUE(saved.WriteDriverIdentity(321, L"\u6e21\u8fba \U0001F600"));
    EXPECT_NE(FileText(folder).find(L"SteerMarginBiasTenthDeg=-10\r\n"), std::wstring::npos);
    EXPECT_EQ(folder.Read().substr(0, 2), "\xFF\xFE") << "the encoding the platform reads names from";

    ProfileStore loaded = Loaded(folder);
    EXPECT_EQ(Summary(loaded), Summary(saved));
    ASSERT_EQ(loaded.CoefficientOverrides.size(), 1u);
    EXPECT_EQ(loaded.CoefficientOverrides[0].CarPath, L"mx5 mx52016");
    for (const CarProfile& entry : saved.CarProfiles) {
        EXPECT_EQ(Text(loaded.GetCarSettings(entry.ProfileIndex, entry.CarPath, {})), Text(entry.Settings));
    }
    EXPECT_EQ(loaded.GetCarSettings(1, L"rt2000", Distinct(5)).ForceStrength, 5);
    EXPECT_EQ(loaded.CarProfiles.size(), saved.CarProfiles.size());
    EXPECT_EQ(loaded.LookUpDriverIdentity(321), L"\u6e21\u8fba \U0001F600");
}

// Another writer's keys, lines we don't write and car sections nobody touched survive a save; the older
// switch key stays beside the one that replaced it.
TEST(ProfileStore, SaveKeepsWhatItDoesNotWriteIncludingKeysAddedSinceTheLoad) {
    ProfileStoreFolder folder;
    folder.Write("; my notes\r\n[Profiles]\r\nCount=1\r\n[Profile0]\r\nName=A\r\nLegacyIracingFfbHandoff=1\r\n"
                 "\r\n[CarProfile0_other]\r\nExists=1\r\nForceStrength=33\r\n");
    ProfileStore store = Loaded(folder);
    EXPECT_TRUE(store.CurrentSettings.SimucubeMode);
    folder.Write(folder.Read() + "[DriverIdentity]\r\n7=Added Meanwhile\r\n");
    ASSERT_TRUE(store.SaveAll());

    const std::wstring text = FileText(folder);
    for (const wchar_t* line : {L"; my notes\r\n", L"LegacyIracingFfbHandoff=1\r\n", L"SimucubeMode=1\r\n",
                                L"[CarProfile0_other]\r\nExists=1\r\nForceStrength=33\r\n", L"7=Added Meanwhile"}) {
        EXPECT_NE(text.find(line), std::wstring::npos) << line;
    }
    EXPECT_EQ(Loaded(folder).GetCarSettings(0, L"other", EngineSettings{}).ForceStrength, 33);
}

// The session goes on from memory; nothing reaches or harms the file until it can be written again.
TEST(ProfileStore, AFailedSaveLeavesTheFileAndTheNextSaveCatchesUp) {
    ProfileStoreFolder folder;
    ProfileStore store = Loaded(folder);
    ASSERT_TRUE(store.SaveAll());
    const std::string saved = folder.Read();
    folder.SetReadOnly(true);
    store.Profiles[0].Name = L"Renamed";
    EXPECT_FALSE(store.SaveAll());
    EXPECT_FALSE(store.WriteDriverIdentity(5, L"Five"));
    EXPECT_EQ(folder.Read(), saved);

    folder.SetReadOnly(false);
    folder.Write(EncodeIniText(DecodeIniBytes(saved) + L"[DriverIdentity]\r\n7=Seven\r\n"));
    EXPECT_EQ(store.LookUpDriverIdentity(5), L"Five");
    EXPECT_EQ(store.LookUpDriverIdentity(7), L"Seven");
    ASSERT_TRUE(store.WriteDriverIdentity(6, L"Six"));
    ProfileStore reloaded = Loaded(folder);
    EXPECT_EQ(reloaded.Profiles[0].Name, L"Renamed");
    EXPECT_EQ(reloaded.LookUpDriverIdentity(5), L"Five");
    EXPECT_EQ(reloaded.LookUpDriverIdentity(7), L"Seven");
}

// A file the load couldn't read keeps its profiles, even once it can be read: the defaults in memory would
// take their place.
TEST(ProfileStore, AFileUnreadableAtLoadIsNeverReplacedAndADeletedOneIsWrittenAnew) {
    ProfileStoreFolder folder;
    const std::string huge = "[Profiles]\nCount=1\n;" + std::string(kMaxIniFileBytes, 'x');
    folder.Write(huge);
    ProfileStore store = Loaded(folder);
    EXPECT_EQ(store.Profiles[0].Name, L"Default");
    EXPECT_FALSE(store.SaveAll());
    EXPECT_EQ(std::filesystem::file_size(folder.IniFile()), huge.size());
    folder.Write("[Profiles]\nCount=1\n[Profile0]\nName=Mine\n");
    EXPECT_FALSE(store.SaveAll());
    EXPECT_EQ(Loaded(folder).Profiles[0].Name, L"Mine");

    std::filesystem::remove(folder.IniFile());
    EXPECT_TRUE(store.SaveAll());
    EXPECT_EQ(Loaded(folder).Profiles[0].Name, L"Default");
}

// Two paths that differ only in a character other than a letter or digit: two entries, one section.
TEST(ProfileStore, CarEntriesLiveInMemoryAndShareASectionWhenTheirNamesFold) {
    ProfileStoreFolder folder;
    ProfileStore store = Loaded(folder);
    store.PutCarSettings(0, L"a b", Distinct(40));
    store.PutCarSettings(0, L" A-B ", Distinct(41));
    store.PutCarSettings(0, L"generic", Distinct(42));
    store.PutCarSettings(-1, L"c", Distinct(43));
    ASSERT_EQ(store.CarProfiles.size(), 2u);
    EXPECT_EQ(store.CarProfiles[1].CarPath, L"a-b");
    EXPECT_FALSE(store.CarSectionExists(0, L"a b"));
    ASSERT_TRUE(store.SaveAll());
    EXPECT_TRUE(store.CarSectionExists(0, L"a-b"));
    EXPECT_EQ(Loaded(folder).GetCarSettings(0, L"a b", EngineSettings{}).ForceStrength, 41);
}

TEST(ProfileStore, CoefficientsRankOverrideThenCatalogueThenTheUnmatchedSet) {
    ProfileStoreFolder folder;
    folder.Write("[Coefficients]\nCount=3\n[Coefficient0]\nCar= RT2000 \nYawRateMultiplierTenth=370\n"
                 "[Coefficient1]\nCar=Generic\n[Coefficient2]\nCar=rt2000\nYawRateMultiplierTenth=500\n");
    ProfileStore store = Loaded(folder);
    ASSERT_EQ(store.CoefficientOverrides.size(), 2u);  // the generic one is dropped, the second rt2000 kept
    EXPECT_EQ(store.CoefficientOverrides[0].CarPath, L"rt2000");
    EXPECT_EQ(store.CoefficientOverrides[0].LateralAccelDivisor, 110.0f);

    store.PutCoefficients({L"generic", 1.0f, 1.0f, 1.0f, 1.0f, 1.0f});
    store.PutCoefficients({L"NewCar", 50.0f, 0.0f, 80.0f, 1.0f, 0.0f});
    struct Case {
        const wchar_t* car;
        const wchar_t* path;
        float yawRate, divisor;
        bool known;
    };
    const Case cases[] = {{L"RT2000", L"rt2000", 37.0f, 110.0f, true},
                          {L"MX5 MX52016", L"mx5 mx52016", 36.0f, 96.0f, true},
                          {L"mx5 mx52016 extra", L"mx5 mx52016 extra", 40.0f, 90.0f, false},
                          {L"newcar", L"newcar", 50.0f, 80.0f, true},
                          {L" generic ", L"generic", 40.0f, 90.0f, false},
                          {L"", L"generic", 40.0f, 90.0f, false}};
    for (const Case& c : cases) {
        const CarCoefficients found = store.GetCoefficients(c.car);
        EXPECT_EQ(found.CarPath, c.path);
        EXPECT_EQ(found.YawRateMultiplier, c.yawRate) << c.car;
        EXPECT_EQ(found.LateralAccelDivisor, c.divisor) << c.car;
        EXPECT_EQ(store.IsKnownCar(c.car), c.known) << c.car;
    }
    EXPECT_EQ(store.CoefficientOverrides.size(), 3u);
}

}  // namespace
}  // namespace veltor
