#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ProfileStoreFolder.h"
#include "app/WheelButtons.h"
#include "profiles/ProfileStore.h"
#include "settings/ButtonActions.h"
#include "wheel/GameControllers_host.h"

namespace veltor {
namespace {

constexpr int64_t kMs = 1'000'000;
const DeviceGuid kWheel{{0x57}};
const DeviceGuid kBox{{0x42}};

// The host's controllers with a wheel and a box plugged in, read every 50 ms of a stepped clock.
struct Controllers {
    Controllers() {
        Plug(kWheel, L"Wheel");
        Plug(kBox, L"Box");
    }
    void Plug(const DeviceGuid& guid, const wchar_t* name) {
        auto& controller = controllers.PlatformObjects().At(guid);
        controller.name = name;
        controller.plugged = true;
    }
    void Hold(const DeviceGuid& guid, size_t button, bool held) { controllers.PlatformObjects().At(guid).held[button] = held; }
    void Unplug(const DeviceGuid& guid) { controllers.PlatformObjects().At(guid).plugged = false; }

    GameControllers controllers;
};

struct Watch : Controllers {
    // Steps from `from` to `to` ms, and the ms at which action `i` acted, and the lines told.
    std::vector<int64_t> Run(int64_t fromMs, int64_t toMs, size_t action = 0) {
        std::vector<int64_t> acted;
        for (int64_t ms = fromMs; ms <= toMs; ms += 50) {
            const ButtonStep step = buttons.Step(bindings, ms * kMs);
            if (step.acts[action]) acted.push_back(ms);
            lines.insert(lines.end(), step.lines.begin(), step.lines.end());
        }
        return acted;
    }

    WheelButtons buttons{controllers};
    ButtonBindings bindings{BindingOf(kWheel, 3), BindingOf(kBox, 1), BindingOf(kBox, 4)};
    std::vector<std::wstring> lines;
};

// Strength repeats after 500 ms and then every 150 ms; the recording toggles once per press.
TEST(WheelButtons, APressActsAtOnceAndAHeldStrengthButtonRepeats) {
    const struct {
        size_t action;
        DeviceGuid controller;
        size_t button;
        std::vector<int64_t> acted;
    } cases[] = {
        {0, kWheel, 3, {100, 600, 750, 900, 1050}},
        {2, kBox, 4, {100}},
    };
    for (const auto& c : cases) {
        Watch w;
        w.Run(0, 50, c.action);
        w.Hold(c.controller, c.button, true);
        EXPECT_EQ(w.Run(100, 1100, c.action), c.acted) << c.action;
        w.Hold(c.controller, c.button, false);
        w.Run(1150, 1150, c.action);
        w.Hold(c.controller, c.button, true);
        EXPECT_EQ(w.Run(1200, 1650, c.action), std::vector<int64_t>{1200}) << "released, then pressed anew";
    }
}

TEST(WheelButtons, AButtonHeldWhenReadingBeginsWaitsForItsRelease) {
    Watch w;
    w.Hold(kWheel, 3, true);
    EXPECT_TRUE(w.Run(0, 1000).empty());
    w.Hold(kWheel, 3, false);
    w.Run(1050, 1050);
    w.Hold(kWheel, 3, true);
    EXPECT_EQ(w.Run(1100, 1100), std::vector<int64_t>{1100});
}

// Gone, a controller is tried once a second and told once; back, it is told once, and a button held as it
// returns waits for its release.
TEST(WheelButtons, AControllerThatGoesAwayIsToldOnceAndReadAgainWhenItReturns) {
    Watch w;
    w.Run(0, 50, 1);
    w.Unplug(kBox);
    const int32_t readsBefore = w.controllers.PlatformObjects().reads;
    w.Run(100, 3050, 1);
    // Each step reads the wheel; the box is tried at 100 ms and then once a second.
    EXPECT_EQ(w.controllers.PlatformObjects().reads - readsBefore, 60 + 3);
    w.Plug(kBox, L"Box");
    w.Hold(kBox, 1, true);
    EXPECT_TRUE(w.Run(3100, 4100, 1).empty());
    EXPECT_EQ(w.lines, (std::vector<std::wstring>{L"Game controller Box is gone; its button bindings stay until it returns.",
                                                  L"Game controller Box is back; its buttons work again."}));
    w.Hold(kBox, 1, false);
    w.Run(4150, 4150, 1);
    w.Hold(kBox, 1, true);
    EXPECT_EQ(w.Run(4200, 4200, 1), std::vector<int64_t>{4200});
}

TEST(WheelButtons, AControllerMissingAtTheStartIsToldOnceWithoutAName) {
    Watch w;
    w.Unplug(kBox);
    w.Run(0, 2000, 1);
    EXPECT_EQ(w.lines,
              std::vector<std::wstring>{L"A bound game controller is gone; its button bindings stay until it returns."});
}

struct Capture : Controllers {
    ButtonCapture::Outcome Step(int64_t ms) { return capture.Step(controllers, ms * kMs, bound); }
    ButtonCapture capture;
    ButtonBinding bound;
};

// A button held as Bind begins counts only once released and pressed again; the first new press wins.
TEST(ButtonCapture, TheFirstButtonToGoDownOnAnyControllerBecomesTheBinding) {
    Capture c;
    c.Hold(kWheel, 0, true);
    c.capture.Begin(c.controllers, 0);
    EXPECT_EQ(c.Step(0), ButtonCapture::Outcome::Listening);
    c.Hold(kBox, 7, true);
    c.Hold(kBox, 2, true);
    EXPECT_EQ(c.Step(50), ButtonCapture::Outcome::Bound);
    EXPECT_EQ(c.bound, BindingOf(kBox, 2));
    EXPECT_FALSE(c.capture.Active());
}

TEST(ButtonCapture, FiveSecondsWithoutAPressEndIt) {
    Capture c;
    c.capture.Begin(c.controllers, 0);
    EXPECT_EQ(c.Step(4950), ButtonCapture::Outcome::Listening);
    EXPECT_EQ(c.Step(5000), ButtonCapture::Outcome::Ended);
    EXPECT_FALSE(c.bound.IsSet());
}

// A bound controller's name and "Not bound" are the dialog's test under Wine; a controller gone has no name.
TEST(WheelButtons, TheDialogNamesAControllerThatIsGone) {
    EXPECT_EQ(BindingLabel(BindingOf(kWheel, 0), L""), L"Not connected, button 1");
}

constexpr wchar_t kWheelText[] = L"{56454C54-5749-4845-454C-000000000001},3";

// The text is the GUID as Windows writes it: Data1 to Data3 little-endian numbers, then Data4's bytes.
TEST(ButtonBinding, ATextReadsAsTheGuidsBytesAndTheButtonAndWritesBackTheSame) {
    const ButtonBinding binding = ParseButtonBinding(kWheelText);
    EXPECT_EQ(binding.button, 3);
    EXPECT_EQ(binding.controller[0], 0x54);
    EXPECT_EQ(binding.controller[3], 0x56);
    EXPECT_EQ(binding.controller[4], 0x49);
    EXPECT_EQ(binding.controller[8], 0x45);
    EXPECT_EQ(binding.controller[15], 0x01);
    EXPECT_EQ(ButtonBindingText(binding), kWheelText);
    EXPECT_EQ(ButtonBindingText(ParseButtonBinding(L"{56454c54-5749-4845-454c-0000000000ff},127")),
              L"{56454C54-5749-4845-454C-0000000000FF},127");
    EXPECT_EQ(ButtonBindingText(ButtonBinding{}), L"");
}

TEST(ButtonBinding, AnUnknownOrMalformedValueIsNoBinding) {
    for (const wchar_t* text : {L"", L"3", L"{56454C54-5749-4845-454C-000000000001}", L"56454C54-5749-4845-454C-000000000001,3",
                                L"{56454C54-5749-4845-454C-00000000001},3", L"{56454C54-5749-4845-454C-0000000000G1},3",
                                L"{56454C54+5749-4845-454C-000000000001},3", L"{56454C54-5749-4845-454C-000000000001},128",
                                L"{56454C54-5749-4845-454C-000000000001},-1", L"{56454C54-5749-4845-454C-000000000001},3x",
                                L"{56454C54-5749-4845-454C-000000000001}, 3", L"{56454C54-5749-4845-454C-000000000001},0003"}) {
        EXPECT_FALSE(ParseButtonBinding(text).IsSet()) << std::wstring(text).size();
    }
}

// SaveAll writes every action, unbound ones empty; a broken value reads as unbound and the others stay.
TEST(ButtonBinding, TheStoreKeepsTheBindingsInItsSectionThroughASave) {
    test::ProfileStoreFolder folder;
    ProfileStore store(folder.IniPath());
    store.LoadProfiles();
    store.Bindings[0] = ParseButtonBinding(kWheelText);
    store.Bindings[2] = ParseButtonBinding(L"{56454C54-4255-5454-4F4E-424F58000001},5");
    ASSERT_TRUE(store.SaveAll());
    ProfileStore reread(folder.IniPath());
    reread.LoadButtonBindings();
    EXPECT_EQ(reread.Bindings, store.Bindings);

    folder.Write("[Buttons]\r\nStrengthUp={56454C54-5749-4845-454C-000000000001},3\r\nStrengthDown=wheel 2\r\n"
                 "ToggleRecording=\r\n");
    ProfileStore broken(folder.IniPath());
    broken.LoadButtonBindings();
    EXPECT_EQ(broken.Bindings, (ButtonBindings{ParseButtonBinding(kWheelText), ButtonBinding{}, ButtonBinding{}}));
}

}  // namespace
}  // namespace veltor
