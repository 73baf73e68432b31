#pragma once
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace veltor::test {

// A folder of its own for each test's files, removed with everything in it at the end; the store's INI
// file goes in it.
struct ProfileStoreFolder {
    ProfileStoreFolder() { std::filesystem::create_directories(path); }
    ~ProfileStoreFolder() {
        std::error_code ignored;
        std::filesystem::permissions(IniFile(), std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add, ignored);
        std::filesystem::remove_all(path, ignored);
    }
    ProfileStoreFolder(const ProfileStoreFolder&) = delete;
    ProfileStoreFolder& operator=(const ProfileStoreFolder&) = delete;

    std::filesystem::path IniFile() const { return path / "Veltor_profiles.ini"; }
    std::wstring IniPath() const { return IniFile().wstring(); }

    void Write(const std::string& bytes) const { std::ofstream(IniFile(), std::ios::binary) << bytes; }
    std::string Read() const {
        std::ifstream in(IniFile(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void SetReadOnly(bool readOnly) const {
        std::filesystem::permissions(IniFile(), std::filesystem::perms::owner_write,
                                     readOnly ? std::filesystem::perm_options::remove : std::filesystem::perm_options::add);
    }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("veltor-test-" + std::to_string(std::random_device{}()));
};

}  // namespace veltor::test
