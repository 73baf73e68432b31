#include "analyzer/AdviceFile.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <optional>
#include <system_error>

namespace veltor::analyzer {
namespace {

constexpr int kAdviceVersion = 1;

// The two groups of the file in its order: each value key with its Apply flag, and the row of ours that
// may advise it (none for the values this analyzer never advises; their flags are still written as 0).
struct GroupKey {
    const char* valueKey;
    const char* applyKey;
    std::optional<AdviceKey> row;
    double factor;  // value in the file = proposed × factor, rounded
};

constexpr GroupKey kProfileKeys[] = {
    {"ForceStrength", "ApplyForceStrength", AdviceKey::ForceStrength, 1.0},
    {"CarForceBalance", "ApplyCarForceBalance", std::nullopt, 1.0},
    {"SuspensionTexture", "ApplySuspensionTexture", AdviceKey::SuspensionTexture, 1.0},
    {"SuspensionImpactTexture", "ApplySuspensionImpactTexture", AdviceKey::SuspensionImpactTexture, 1.0},
    {"SuspensionDetailPriority", "ApplySuspensionDetailPriority", AdviceKey::SuspensionDetailPriority, 1.0},
    {"AbsVibration", "ApplyAbsVibration", std::nullopt, 1.0},
};

constexpr GroupKey kCoefficientKeys[] = {
    {"YawRateMultiplierTenth", "ApplyYawRateMultiplier", AdviceKey::YawRateMultiplier, 10.0},
    {"YawSteerGainThousand", "ApplyYawSteerGain", std::nullopt, 1000.0},
    {"LateralAccelDivisor", "ApplyLateralAccelDivisor", AdviceKey::LateralAccelDivisor, 1.0},
    {"ResistanceGainHundred", "ApplyResistanceGain", std::nullopt, 100.0},
    {"SteerMarginBiasTenthDeg", "ApplySteerMarginBias", std::nullopt, 572.9578},
};

const AdviceRow* AdvisedRow(const Advice& advice, const GroupKey& key) {
    for (const AdviceRow& row : advice.rows) {
        if (key.row == row.key && row.advised) return &row;
    }
    return nullptr;
}

template <size_t N>
void WriteGroup(const Advice& advice, const char* hasKey, const GroupKey (&keys)[N], std::string& text) {
    const bool present = std::any_of(std::begin(keys), std::end(keys),
                                     [&](const GroupKey& key) { return AdvisedRow(advice, key) != nullptr; });
    text += std::string(hasKey) + (present ? "=1\r\n" : "=0\r\n");
    if (!present) return;
    for (const GroupKey& key : keys) {
        if (const AdviceRow* row = AdvisedRow(advice, key)) {
            text += std::string(key.valueKey) + "=" + std::to_string(std::lround(row->proposed * key.factor)) + "\r\n";
        }
    }
    for (const GroupKey& key : keys) {
        const AdviceRow* row = AdvisedRow(advice, key);
        text += std::string(key.applyKey) + (row != nullptr && row->apply ? "=1\r\n" : "=0\r\n");
    }
}

// One UTF-8 character from `text` at `i`, moving `i` past it; a malformed byte gives U+FFFD.
char32_t NextCodePoint(const std::string& text, size_t& i) {
    const unsigned char lead = static_cast<unsigned char>(text[i++]);
    const int extra = lead < 0x80 ? 0 : lead >= 0xF0 && lead < 0xF8 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (extra < 0) return 0xFFFD;
    char32_t c = extra == 0 ? lead : static_cast<char32_t>(lead & (0x3F >> extra));
    for (int k = 0; k < extra; ++k) {
        if (i >= text.size() || (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return 0xFFFD;
        c = (c << 6) | (static_cast<unsigned char>(text[i++]) & 0x3F);
    }
    return c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF) ? 0xFFFD : c;
}

void AppendUnit(std::string& bytes, char32_t unit) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>((unit >> 8) & 0xFF));
}

}  // namespace

bool HasAdviceToApply(const Advice& advice) {
    return std::any_of(advice.rows.begin(), advice.rows.end(),
                       [](const AdviceRow& row) { return row.advised && row.apply; });
}

std::string AdviceFileText(const Advice& advice) {
    std::string text = "[Advice]\r\nVersion=" + std::to_string(kAdviceVersion) + "\r\n";
    text += "Profile=" + advice.profile + "\r\n";
    text += "Car=" + advice.car + "\r\n";
    WriteGroup(advice, "HasProfileSettings", kProfileKeys, text);
    WriteGroup(advice, "HasCoefficientAdvice", kCoefficientKeys, text);
    return text;
}

std::string EncodeAdviceFile(const std::string& text) {
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        return text;
    }
    std::string bytes = "\xFF\xFE";
    for (size_t i = 0; i < text.size();) {
        const char32_t c = NextCodePoint(text, i);
        if (c >= 0x10000) {
            AppendUnit(bytes, 0xD800 + ((c - 0x10000) >> 10));
            AppendUnit(bytes, 0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            AppendUnit(bytes, c);
        }
    }
    return bytes;
}

bool WriteAdviceFile(const std::filesystem::path& path, const Advice& advice, std::string& error) {
    const std::string bytes = EncodeAdviceFile(AdviceFileText(advice));
    std::filesystem::path partial = path;
    partial += ".partial";
    std::error_code failure;
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            std::filesystem::remove(partial, failure);
            error = "cannot write the advice file";
            return false;
        }
    }
    std::filesystem::rename(partial, path, failure);
    if (failure) {
        std::filesystem::remove(partial, failure);
        error = "cannot write the advice file";
        return false;
    }
    return true;
}

}  // namespace veltor::analyzer
