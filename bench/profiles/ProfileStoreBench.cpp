// Load and save of a full profile store: 20 driver profiles, each with settings for the 45 catalogue cars,
// and 45 coefficient overrides. Prints the file's size, the time of a load (with and without reading every
// car entry) and of a SaveAll, and beside them the same save written key by key the way the platform's
// private-profile functions write (a prefix of the keys within a time budget, extrapolated to all of them).
// Usage: bench_profile_store [--runs N] [--key-seconds S]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "KeyByKeyWrite.h"
#include "profiles/ProfileStore.h"
#include "profiles/SettingsSection.h"
#include "settings/CarCatalogue.h"

namespace {

using namespace veltor;
using Clock = std::chrono::steady_clock;

constexpr int kProfiles = 20;

double Milliseconds(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

// Every field moved by `generation`, so that two generations differ in every value.
EngineSettings Settings(int generation, int seed) {
    EngineSettings s;
    s.Mode = generation % 2;
    s.UseCarSpecificSettings = true;
    s.ReduceForceWhenParked = generation % 2 == 0;
    s.StartMinimized = s.RunOnStartup = s.SimucubeMode = s.DebugLogging = generation % 2 == 1;
    int32_t* numbers[] = {&s.MinForce, &s.ForceStrength, &s.Bumps, &s.BumpImpacts, &s.Damping, &s.AbsVibration,
                          &s.Understeer, &s.SuspensionDetailPriority, &s.CarForceBalance, &s.UndersteerLighten,
                          &s.UndersteerResistance, &s.OversteerCorrection, &s.OversteerOffset, &s.CrashLongG,
                          &s.CrashLatG, &s.CrashDurationTenths, &s.CrashReduction, &s.WheelbaseMaxTorqueTenths};
    for (int32_t* n : numbers) *n = (seed * 7 + generation * 13 + static_cast<int32_t>(n - &s.MinForce)) % 100;
    return s;
}

void Fill(ProfileStore& store, int generation) {
    store.Profiles.clear();
    store.CarProfiles.clear();
    store.CoefficientOverrides.clear();
    const auto cars = CarCatalogue();
    for (int p = 0; p < kProfiles; ++p) {
        const std::wstring name = (p % 3 == 0 ? L"J\u00fcrgen " : L"Driver ") + std::to_wstring(p + generation);
        store.Profiles.push_back({name, Settings(generation, p)});
        for (size_t c = 0; c < cars.size(); ++c) {
            store.PutCarSettings(p, cars[c].CarPath, Settings(generation, p * 100 + static_cast<int>(c)));
        }
    }
    for (const CarCatalogueRow& row : cars) {
        CarCoefficients entry = CarCoefficients::FromRow(std::wstring(row.CarPath), row.Coefficients);
        entry.YawRateMultiplier += static_cast<float>(generation) * 0.5f;
        store.PutCoefficients(entry);
    }
    store.SelectedProfile = generation % kProfiles;
    store.CurrentSettings = store.Profiles[store.SelectedProfile].Settings;
}

// The keys a SaveAll of `store` writes, in its order.
std::vector<std::tuple<std::wstring, std::wstring, std::wstring>> SaveKeys(const ProfileStore& store) {
    IniDocument writes;
    writes.SetString(L"Profiles", L"Count", std::to_wstring(store.Profiles.size()));
    writes.SetString(L"Profiles", L"Selected", std::to_wstring(store.SelectedProfile));
    for (size_t i = 0; i < store.Profiles.size(); ++i) {
        writes.SetString(L"Profile" + std::to_wstring(i), L"Name", store.Profiles[i].Name);
        WriteSettings(writes, L"Profile" + std::to_wstring(i), store.Profiles[i].Settings);
    }
    store.WriteCarProfiles(writes);
    store.WriteCoefficients(writes);
    std::vector<std::tuple<std::wstring, std::wstring, std::wstring>> keys;
    const std::wstring text = writes.Serialize();
    std::wstring section;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find(L"\r\n", at);
        const std::wstring line = text.substr(at, end - at);
        at = end + 2;
        if (line.front() == L'[') {
            section = line.substr(1, line.size() - 2);
        } else {
            const size_t equals = line.find(L'=');
            keys.emplace_back(section, line.substr(0, equals), line.substr(equals + 1));
        }
    }
    return keys;
}

struct Figures {
    double min = 0, median = 0;
};

template <typename Work>
Figures Measure(int runs, Work work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const Clock::time_point start = Clock::now();
        work(i);
        times.push_back(Milliseconds(Clock::now() - start));
    }
    std::sort(times.begin(), times.end());
    return {times.front(), times[times.size() / 2]};
}

}  // namespace

int main(int argc, char** argv) {
    int runs = 10;
    double keySeconds = 20.0;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
        if (std::strcmp(argv[i], "--key-seconds") == 0) keySeconds = std::atof(argv[i + 1]);
    }
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("veltor-bench-" + std::to_string(std::random_device{}()));
    std::filesystem::create_directories(folder);
    const std::wstring path = (folder / "Veltor_profiles.ini").wstring();

    ProfileStore store(path);
    Fill(store, 0);
    const Clock::time_point firstStart = Clock::now();
    const bool firstSaved = store.SaveAll();
    const double firstSave = Milliseconds(Clock::now() - firstStart);
    const Figures save = Measure(runs, [&](int i) {
        store.CurrentSettings.ForceStrength = i;
        if (!store.SaveAll()) std::fprintf(stderr, "save failed\n");
    });
    const Figures load = Measure(runs, [&](int) {
        ProfileStore loaded(path);
        loaded.LoadCoefficients();
        loaded.LoadProfiles();
    });
    size_t entries = 0;
    const Figures loadAll = Measure(runs, [&](int) {
        ProfileStore loaded(path);
        loaded.LoadCoefficients();
        loaded.LoadProfiles();
        for (int p = 0; p < kProfiles; ++p) {
            for (const CarCatalogueRow& row : CarCatalogue()) loaded.GetCarSettings(p, row.CarPath, EngineSettings{});
        }
        entries = loaded.CarProfiles.size();
    });

    std::printf("store: %d profiles, %zu car entries, %zu overrides; file %.0f KB\n", kProfiles,
                store.CarProfiles.size(), store.CoefficientOverrides.size(),
                static_cast<double>(std::filesystem::file_size(path)) / 1024.0);
    std::printf("SaveAll, first (creates the file): %.2f ms%s\n", firstSave, firstSaved ? "" : " (FAILED)");
    std::printf("SaveAll, %d runs: min %.2f ms, median %.2f ms\n", runs, save.min, save.median);
    std::printf("load (coefficients and profiles), %d runs: min %.2f ms, median %.2f ms\n", runs, load.min, load.median);
    std::printf("load and read all %zu car entries, %d runs: min %.2f ms, median %.2f ms\n", entries, runs,
                loadAll.min, loadAll.median);

    // The next generation changes every value, so that each key by key write has something to write.
    ProfileStore next(path);
    Fill(next, 1);
    const auto keys = SaveKeys(next);
    const Clock::time_point keyStart = Clock::now();
    size_t written = 0;
    while (written < keys.size() && Milliseconds(Clock::now() - keyStart) < keySeconds * 1000.0) {
        const auto& [section, key, value] = keys[written++];
        if (!bench::WriteKeyAlone(path, section, key, value)) std::fprintf(stderr, "key write failed\n");
    }
    const double perKey = Milliseconds(Clock::now() - keyStart) / static_cast<double>(written);
    const double keyByKeyTotal = perKey * static_cast<double>(keys.size());
    std::printf("key by key (%s): %zu of %zu keys in %.1f s, %.3f ms a key; all keys about %.1f s, %.0f times "
                "the median SaveAll\n",
                bench::KeyByKeyWriter(), written, keys.size(), perKey * static_cast<double>(written) / 1000.0,
                perKey, keyByKeyTotal / 1000.0, keyByKeyTotal / save.median);

    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return firstSaved ? 0 : 1;
}
