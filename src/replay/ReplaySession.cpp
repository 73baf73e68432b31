#include "ReplaySession.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include "engine/EngineLoop.h"
#include "engine/FfbEngine.h"
#include "recording/RecordingHeader.h"
#include "platform/TextConversion.h"
#include "telemetry/IrsdkClient.h"

namespace veltor::replay {
namespace {

bool StartRecording(FfbEngine& engine, const ReplayOptions& options, const SessionIdentity& identity,
                    std::string& error) {
    const EngineSettings settings = engine.CopySettings();
    const CarRow row = engine.ResolveCarRow(identity.carPath, settings.UseCarSpecificSettings);
    const RecordingHeader header = MakeRecordingHeader(identity.carPath, identity.driverName, options.profileName,
                                                       settings, row, WallClockMilliseconds());
    if (engine.RecordTo(WidenUtf8(options.recordPath), header, 0)) return true;
    error = "cannot write recording " + options.recordPath;
    return false;
}

}  // namespace

SessionIdentity ScanReplayIdentity(const ReplayOptions& options, const IbtImage& image) {
    SessionIdentity identity;
    IrsdkClient client;
    std::string text;
    if (!client.AttachBlock(image.bytes.data(), image.bytes.size()) || !client.CopySessionInfo(text) ||
        !ScanSessionInfo(text.data(), text.size(), identity)) {
        identity = SessionIdentity{};
    }
    if (options.hasCar) identity.carPath = WidenUtf8(options.carPath);
    return identity;
}

std::string IdentityLine(const SessionIdentity& identity) {
    return "identity car=" + WideToUtf8(identity.carPath) + " driver=" + WideToUtf8(identity.driverName) +
           " userId=" + std::to_string(identity.driverUserId) + " known=" + (identity.driverNameKnown ? "1" : "0");
}

bool RunReplay(const ReplayOptions& options, const SessionIdentity& identity, IbtImage& image, ReplayResult& result,
               std::string& error) {
    FfbEngine engine;
    engine.PublishSettings(options.settings);
    engine.PublishOverrides(options.overrides);
    IrsdkClient client;
    SelectRecord(image, 0);
    if (!client.AttachBlock(image.bytes.data(), image.bytes.size())) {
        error = "cannot read the telemetry image";
        return false;
    }
    if (!options.recordPath.empty() && !StartRecording(engine, options, identity, error)) return false;

    result.rows.clear();
    result.rows.reserve(static_cast<size_t>(image.recordCount) * kMaxOutputsPerRecord);
    ReplayPlatform::rows = &result.rows;
    ReplayWheel wheel;
    EngineLoop<ReplayPlatform> loop(engine, wheel);
    loop.AssumeSession(identity);
    for (int32_t i = 0; i < image.recordCount; ++i) {
        SelectRecord(image, i);
        ReplayPlatform::virtualNow = static_cast<int64_t>(i) * kRecordSpacingNanoseconds;
        ReplayPlatform::currentFrame = i;
        loop.ProcessFrame(client, ReplayPlatform::virtualNow);
        if (!options.recordPath.empty() && (i + 1) % kRecorderPaceRecords == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(kRecorderPaceMilliseconds));
        }
    }
    ReplayPlatform::rows = nullptr;
    result.droppedSamples = engine.EndRecording();
    return true;
}

std::string FormatCsv(const std::vector<ForceRow>& rows) {
    std::string csv = "frame,output,force\n";
    csv.reserve(csv.size() + rows.size() * 20);
    char line[48];
    for (const ForceRow& row : rows) {
        const int length = std::snprintf(line, sizeof line, "%d,%d,%d\n", row.frame, row.output, row.force);
        csv.append(line, static_cast<size_t>(length));
    }
    return csv;
}

bool WriteWholeFile(const std::string& path, const std::string& content, std::string& error) {
    const std::string temporary = path + ".partial";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        out.close();
        if (!out) {
            std::error_code ignored;
            std::filesystem::remove(temporary, ignored);
            error = "cannot write " + path;
            return false;
        }
    }
    std::error_code failure;
    std::filesystem::rename(temporary, path, failure);
    if (failure) {
        std::filesystem::remove(temporary, failure);
        error = "cannot write " + path;
        return false;
    }
    return true;
}

std::wstring WidenUtf8(const std::string& text) {
    std::wstring wide;
    for (size_t i = 0; i < text.size();) {
        const unsigned char lead = static_cast<unsigned char>(text[i]);
        const int extra = lead < 0x80 ? 0 : lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
        char32_t c = 0xFFFD;
        if (extra >= 0 && i + static_cast<size_t>(extra) < text.size()) {
            c = extra == 0 ? lead : lead & (0x3F >> extra);
            for (int k = 1; k <= extra; ++k) c = (c << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
            i += static_cast<size_t>(extra) + 1;
        } else {
            ++i;
        }
        if constexpr (sizeof(wchar_t) == 2) {
            if (c >= 0x10000) {
                c -= 0x10000;
                wide.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
                wide.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
                continue;
            }
        }
        wide.push_back(static_cast<wchar_t>(c));
    }
    return wide;
}

}  // namespace veltor::replay
