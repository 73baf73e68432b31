#include <gtest/gtest.h>

#include "ProfileStoreFolder.h"
#include "profiles/ProfileStore.h"
#include "settings/ButtonActions.h"

namespace veltor {
namespace {

constexpr wchar_t kWheel[] = L"{56454C54-5749-4845-454C-000000000001},3";

// The text is the GUID as Windows writes it: Data1 to Data3 little-endian numbers, then Data4's bytes.
TEST(ButtonBinding, ATextReadsAsTheGuidsBytesAndTheButtonAndWritesBackTheSame) {
    const ButtonBinding binding = ParseButtonBinding(kWheel);
    EXPECT_EQ(binding.button, 3);
    EXPECT_EQ(binding.controller[0], 0x54);
    EXPECT_EQ(binding.controller[3], 0x56);
    EXPECT_EQ(binding.controller[4], 0x49);
    EXPECT_EQ(binding.controller[8], 0x45);
    EXPECT_EQ(binding.controller[15], 0x01);
    EXPECT_EQ(ButtonBindingText(binding), kWheel);
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
    store.Bindings[0] = ParseButtonBinding(kWheel);
    store.Bindings[2] = ParseButtonBinding(L"{56454C54-4255-5454-4F4E-424F58000001},5");
    ASSERT_TRUE(store.SaveAll());
    ProfileStore reread(folder.IniPath());
    reread.LoadButtonBindings();
    EXPECT_EQ(reread.Bindings, store.Bindings);

    folder.Write("[Buttons]\r\nStrengthUp={56454C54-5749-4845-454C-000000000001},3\r\nStrengthDown=wheel 2\r\n"
                 "ToggleRecording=\r\n");
    ProfileStore broken(folder.IniPath());
    broken.LoadButtonBindings();
    EXPECT_EQ(broken.Bindings, (ButtonBindings{ParseButtonBinding(kWheel), ButtonBinding{}, ButtonBinding{}}));
}

}  // namespace
}  // namespace veltor
