#pragma once
#include <span>
#include <string_view>

#include "settings/CarCoefficients.h"

namespace veltor {

struct CarCatalogueRow {
    std::wstring_view CarPath;
    CarRow Coefficients;
};

// The built-in table of 45 cars, walked in order; the first whole-text match wins.
std::span<const CarCatalogueRow> CarCatalogue();

// Car paths and names compare over the whole text with only A to Z folded to a to z.
bool EqualsFoldingAscii(std::wstring_view a, std::wstring_view b);

// The catalogue row for a car path, or null when no row matches.
const CarCatalogueRow* FindCatalogueRow(std::wstring_view carPath);

inline bool IsCatalogueCar(std::wstring_view carPath) { return FindCatalogueRow(carPath) != nullptr; }

}  // namespace veltor
