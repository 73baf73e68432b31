#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <string>

#include "ProfileStoreFolder.h"
#include "settings/CarCatalogue.h"
#include "profiles/ProfileStore.h"

namespace veltor {
namespace {

constexpr int kRounds = 25;
constexpr int kProfiles = 10;
constexpr int kCarsPerProfile = 8;
constexpr uint32_t kMaxKillDelayMicroseconds = 30000;

std::wstring NameOf(size_t index) { return L"P" + std::to_wstring(index); }

// The child: saves the same profiles and car entries over and over, each save with a new generation in
// every record, and tells the parent the generation of each finished save.
[[noreturn]] void SaveForever(const std::wstring& path, int acknowledgements) {
    ProfileStore store(path);
    store.LoadProfiles();
    store.Profiles.resize(kProfiles);
    for (int32_t generation = store.Profiles[0].Settings.ForceStrength + 1;; ++generation) {
        for (int32_t p = 0; p < kProfiles; ++p) {
            store.Profiles[p].Name = NameOf(p);
            store.Profiles[p].Settings.ForceStrength = generation;
            for (int car = 0; car < kCarsPerProfile; ++car) {
                store.PutCarSettings(p, CarCatalogue()[car].CarPath, store.Profiles[p].Settings);
            }
        }
        store.CurrentSettings = store.Profiles[0].Settings;
        if (!store.SaveAll() || write(acknowledgements, &generation, sizeof generation) != sizeof generation) _exit(1);
    }
}

bool ReadAcknowledgement(int fd, int32_t& generation) {
    return read(fd, &generation, sizeof generation) == sizeof generation;
}

// A torn file shows as a missing section (a "Driver %d" name, a car entry that isn't there) or as records of
// two generations. The file is read once, from a copy: a store reading lazily might meet two saves.
void ExpectWholeFileOfOneGeneration(const test::ProfileStoreFolder& folder, int32_t acknowledged, int round) {
    const std::filesystem::path copy = folder.IniFile().string() + ".copy";
    std::filesystem::copy_file(folder.IniFile(), copy, std::filesystem::copy_options::overwrite_existing);
    ProfileStore store(copy.wstring());
    store.LoadProfiles();
    ASSERT_EQ(store.Profiles.size(), size_t{kProfiles}) << "round " << round;
    const int32_t generation = store.Profiles[0].Settings.ForceStrength;
    ASSERT_GE(generation, acknowledged) << "round " << round;
    EngineSettings absent;
    absent.ForceStrength = -1;
    for (int32_t p = 0; p < kProfiles; ++p) {
        ASSERT_EQ(store.Profiles[p].Name, NameOf(p)) << "round " << round;
        ASSERT_EQ(store.Profiles[p].Settings.ForceStrength, generation) << "round " << round;
        for (int car = 0; car < kCarsPerProfile; ++car) {
            ASSERT_EQ(store.GetCarSettings(p, CarCatalogue()[car].CarPath, absent).ForceStrength, generation)
                << "round " << round;
        }
    }
}

TEST(ProfileStoreCrash, AKillAtAnyInstantOfRepeatedSavesLeavesAWholeFileWithTheLastSavedGeneration) {
    test::ProfileStoreFolder folder;
    std::mt19937 random(20240611);
    int32_t acknowledged = 0;
    for (int round = 0; round < kRounds; ++round) {
        int channel[2];
        ASSERT_EQ(pipe(channel), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(channel[0]);
            SaveForever(folder.IniPath(), channel[1]);
        }
        close(channel[1]);
        // The first finished save, then a kill at a random instant of the saves that follow; until then the
        // file must read whole at any moment, as another reader would find it.
        int32_t generation = 0;
        const bool saved = ReadAcknowledgement(channel[0], generation);
        const auto killAt = std::chrono::steady_clock::now() +
                            std::chrono::microseconds(random() % kMaxKillDelayMicroseconds);
        while (saved && !HasFailure() && std::chrono::steady_clock::now() < killAt) {
            ExpectWholeFileOfOneGeneration(folder, 0, round);
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        ASSERT_TRUE(saved) << "the child saved nothing in round " << round;
        do acknowledged = std::max(acknowledged, generation);
        while (ReadAcknowledgement(channel[0], generation));
        close(channel[0]);
        ExpectWholeFileOfOneGeneration(folder, acknowledged, round);
    }
}

}  // namespace
}  // namespace veltor
