#include "settings/CarCatalogue.h"

#include <array>

namespace veltor {
namespace {

constexpr CarCatalogueRow Row(std::wstring_view path, float yawRate, float lateralDivisor, float resistance) {
    return {path, CarRow{yawRate, 0.0f, lateralDivisor, resistance, 0.0f}};
}

// YawSteerGain and SteerMarginBias are 0 in every row.
constexpr std::array<CarCatalogueRow, 45> kCatalogue{{
    Row(L"astonmartin dbr9", 46.0f, 78.0f, 1.00f),
    Row(L"audir8gt3", 52.0f, 78.0f, 1.00f),
    Row(L"bmwm8gte", 46.0f, 78.0f, 1.00f),
    Row(L"bmwm4gt4", 40.0f, 70.0f, 0.95f),
    Row(L"bmwz4gt3", 54.0f, 80.0f, 1.00f),
    Row(L"bmwm4gt3", 37.5f, 82.0f, 1.00f),
    Row(L"c6r", 40.5f, 82.0f, 1.00f),
    Row(L"c8rvettegte", 48.0f, 78.0f, 1.00f),
    Row(L"dallaraf3", 38.0f, 102.0f, 1.35f),
    Row(L"dallarair18", 44.0f, 110.0f, 1.45f),
    Row(L"dallarap217", 44.0f, 110.0f, 1.55f),
    Row(L"ferrari488gt3", 52.0f, 78.0f, 1.00f),
    Row(L"ferrarievogt3", 54.0f, 80.0f, 1.00f),
    Row(L"ferrari488gte", 44.0f, 82.0f, 1.00f),
    Row(L"fordgt gt3", 52.0f, 78.0f, 1.00f),
    Row(L"formulamazda", 34.5f, 96.0f, 1.20f),
    Row(L"formularenault20", 34.5f, 96.0f, 1.25f),
    Row(L"formularenault35", 44.0f, 110.0f, 1.45f),
    Row(L"formulavee", 23.0f, 68.0f, 0.90f),
    Row(L"fr500s", 40.0f, 70.0f, 0.95f),
    Row(L"hpdarx01c", 44.0f, 110.0f, 1.55f),
    Row(L"indypropm18", 34.5f, 100.0f, 1.30f),
    Row(L"lamborghinievogt3", 52.0f, 78.0f, 1.00f),
    Row(L"lotus49", 23.8f, 70.0f, 0.90f),
    Row(L"lotus79", 27.8f, 104.0f, 1.35f),
    Row(L"mclaren570sgt4", 40.0f, 70.0f, 0.95f),
    Row(L"mclarenmp4", 52.0f, 78.0f, 1.00f),
    Row(L"mclarenmp430", 38.0f, 110.0f, 1.55f),
    Row(L"mercedesamggt3", 37.5f, 82.0f, 1.00f),
    Row(L"mercedesamggt4", 40.0f, 70.0f, 0.95f),
    Row(L"mx5 mx52016", 36.0f, 96.0f, 0.90f),
    Row(L"nissangtpzxt", 44.0f, 110.0f, 1.45f),
    Row(L"porsche718gt4", 40.0f, 70.0f, 0.95f),
    Row(L"porsche911cup", 46.0f, 88.0f, 1.00f),
    Row(L"porsche992cup", 48.0f, 90.0f, 1.00f),
    Row(L"porsche9922cup", 48.0f, 90.0f, 1.00f),
    Row(L"porsche911rgt3", 52.0f, 80.0f, 1.00f),
    Row(L"porsche992rgt3", 52.0f, 80.0f, 1.00f),
    Row(L"porsche991rsr", 42.0f, 72.0f, 1.00f),
    Row(L"radical sr8", 40.0f, 100.0f, 1.20f),
    Row(L"rt2000", 25.0f, 86.0f, 1.10f),
    Row(L"rufrt12r track", 46.0f, 88.0f, 1.00f),
    Row(L"specracer", 25.0f, 86.0f, 0.90f),
    Row(L"usf2000usf17", 34.5f, 96.0f, 1.15f),
    Row(L"williamsfw31", 38.0f, 110.0f, 1.55f),
}};

constexpr wchar_t FoldAscii(wchar_t c) { return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c - L'A' + L'a') : c; }

}  // namespace

std::span<const CarCatalogueRow> CarCatalogue() { return kCatalogue; }

bool EqualsFoldingAscii(std::wstring_view a, std::wstring_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
    }
    return true;
}

const CarCatalogueRow* FindCatalogueRow(std::wstring_view carPath) {
    for (const CarCatalogueRow& row : kCatalogue) {
        if (EqualsFoldingAscii(row.CarPath, carPath)) return &row;
    }
    return nullptr;
}

}  // namespace veltor
