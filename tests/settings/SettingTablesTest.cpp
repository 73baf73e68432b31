// Every row of the settings and coefficient tables, walked as the code walks them, so that a row added to a
// table is checked here without a case of its own.
#include <gtest/gtest.h>

#include <cwctype>
#include <string>
#include <utility>
#include <vector>

#include "ProfileStoreFolder.h"
#include "analyzer/AdviceFile.h"
#include "../app/TrackingView.h"

namespace veltor {
namespace {

constexpr wchar_t kCar[] = L"newcar";  // not in the catalogue: its numbers start as the unmatched set

using State = std::pair<EngineSettings, CarCoefficients>;

State Defaults() { return {EngineSettings{}, CarCoefficients::FromRow(kCar, kUnmatchedCarRow)}; }

// Every field as a file holds it, so that one comparison covers them all and shows which differ.
std::vector<int32_t> FileValues(const State& state) {
    std::vector<int32_t> values;
    for (const SettingRow& row : kSettingRows) values.push_back(SettingValue(row, state.first));
    for (const CoefficientRow& row : kCoefficientRows) {
        values.push_back(CoefficientFileValue(row, state.second.*row.field));
    }
    return values;
}

// An end of the control's range other than `now`, or a value beside it for a row without a range.
int32_t OtherValue(int32_t now, int32_t minimum, int32_t maximum) {
    return maximum <= minimum ? now + 7 : now != maximum ? maximum : minimum;
}

// The state as the driver profile and the car's override, saved and loaded by another store.
State SavedAndLoaded(const State& state) {
    test::ProfileStoreFolder folder;
    ProfileStore saved(folder.IniPath());
    saved.Profiles = {{L"Default", state.first}};
    saved.CurrentSettings = state.first;
    saved.PutCoefficients(state.second);
    EXPECT_TRUE(saved.SaveAll());
    ProfileStore loaded(folder.IniPath());
    loaded.LoadCoefficients();
    loaded.LoadProfiles();
    return {loaded.CurrentSettings, loaded.GetCoefficients(kCar)};
}

// Advice of one value for kCar: the analyzer's file where it advises the field; otherwise the file as the
// program reads it, with only this field's Apply flag set.
std::wstring AdviceText(const SettingRow* setting, const CoefficientRow* coefficient, double value, int32_t fileValue) {
    analyzer::Advice advice = analyzer::BuildAdvice({}, {});
    advice.car = "newcar";
    for (analyzer::AdviceRow& row : advice.rows) {
        const analyzer::AdviceTarget target = analyzer::TargetOf(row.key);
        if (target.setting != setting || target.coefficient != coefficient) continue;
        row.proposed = value;
        row.advised = row.apply = true;
        return analyzer::AdviceFileText(advice);
    }
    IniDocument ini = IniDocument::Parse(L"[Advice]\nVersion=1\nHasProfileSettings=1\nHasCoefficientAdvice=1\n");
    ini.SetString(L"Advice", L"Car", kCar);
    for (const SettingRow& row : kSettingRows) {
        if (!row.applyKey.empty()) ini.SetString(L"Advice", row.applyKey, &row == setting ? L"1" : L"0");
    }
    for (const CoefficientRow& row : kCoefficientRows) {
        ini.SetString(L"Advice", row.applyKey, &row == coefficient ? L"1" : L"0");
    }
    ini.SetString(L"Advice", setting != nullptr ? setting->adviceKey : coefficient->key, DecimalText(fileValue));
    return ini.Serialize();
}

// The advice read and merged by the program into a fresh store.
State Merged(const std::wstring& adviceText) {
    test::ProfileStoreFolder folder;
    ProfileStore store(folder.IniPath());
    store.LoadProfiles();
    test::TrackingView view;  // the store is what this test reads
    AnalyzerAdvice advice;
    EXPECT_TRUE(ParseAdvice(IniDocument::Parse(adviceText), advice));
    DriverTracking<test::TrackingView>(store, view).ApplyAdvice(advice);
    return {store.CurrentSettings, store.GetCoefficients(kCar)};
}

// The number a value text shows, its decimal point left out: "-1.5 deg" shows -15, "0.005" shows 5.
int32_t ShownNumber(const std::wstring& text) {
    std::wstring number;
    for (const wchar_t c : text) number += std::iswdigit(c) || c == L'-' ? std::wstring(1, c) : L"";
    return std::stoi(number);
}

TEST(SettingTables, EveryRowKeepsAValueThroughTheFileAndTheAdviceAndShowsTheEndsOfItsRange) {
    struct Row {
        std::wstring_view key;
        State changed;        // the defaults, with the row's field at another value
        std::wstring advice;  // a file advising that value; empty where no advice names the field
        int32_t slider, low, high, offset;  // its slider's id (0 for none), range and midpoint
        ValueText text;
    };
    std::vector<Row> rows;
    for (const SettingRow& r : kSettingRows) {
        State changed = Defaults();
        const int32_t value = OtherValue(SettingValue(r, changed.first), r.minimum, r.maximum);
        SetSettingValue(r, changed.first, value);
        const int32_t slider = r.flag == nullptr && !r.label.empty() ? r.control : 0;
        rows.push_back({r.key, changed, r.adviceKey.empty() ? L"" : AdviceText(&r, nullptr, value, value), slider,
                        r.minimum, r.maximum, 0, r.text});
    }
    for (const CoefficientRow& r : kCoefficientRows) {
        State changed = Defaults();
        float& field = changed.second.*r.field;
        field = CoefficientFromSlider(r, OtherValue(CarSliderValue(r, field), r.minimum, r.maximum));
        rows.push_back({r.key, changed, AdviceText(nullptr, &r, field, CoefficientFileValue(r, field)), r.control,
                        r.minimum, r.maximum, r.sliderOffset, r.text});
    }
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << std::wstring(row.key));
        ASSERT_NE(FileValues(row.changed), FileValues(Defaults())) << "no other value to set";
        EXPECT_EQ(FileValues(SavedAndLoaded(row.changed)), FileValues(row.changed));
        if (!row.advice.empty()) {
            EXPECT_EQ(FileValues(Merged(row.advice)), FileValues(row.changed));
        }
        if (row.slider == 0) continue;
        for (const int32_t end : {row.low, row.high}) {
            const std::wstring text = SliderValueText(row.slider, end);
            EXPECT_EQ(text, FormatValueText(row.text, end - row.offset));
            EXPECT_EQ(ShownNumber(text), end - row.offset) << "the whole value in its unit: " << text;
        }
        EXPECT_NE(SliderValueText(row.slider, row.low), SliderValueText(row.slider, row.high));
    }
}

}  // namespace
}  // namespace veltor
