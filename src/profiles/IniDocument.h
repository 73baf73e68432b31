#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace veltor {

// An INI file's text in memory, read and written as the platform's private-profile functions do, without
// any I/O: sections and keys are found without regard to ASCII case, the first of duplicates wins, a value
// loses its surrounding blanks and one pair of surrounding quotes. Every line that no write touches (comments,
// unknown keys, blank lines, their order and line ends) serialises exactly as it was parsed.
class IniDocument {
public:
    static IniDocument Parse(std::wstring_view text);
    std::wstring Serialize() const;

    // The value of `key` cut to `bufferChars` less one characters; `fallback`, cut alike, when the section
    // or the key is absent or the key's line has no '='.
    std::wstring GetString(std::wstring_view section, std::wstring_view key, std::wstring_view fallback,
                           size_t bufferChars) const;
    // Replaces the key's value, or appends the key to its section, or a new section to the end. The value is
    // stored so that GetString gives it back whole: quoted where its ends would be trimmed, CR, LF and NUL
    // turned into blanks, since a value holds one line.
    void SetString(std::wstring_view section, std::wstring_view key, std::wstring_view value);
    // Copies every key of `writes` into this document, as SetString would.
    void Apply(const IniDocument& writes);

    // The largest N for which a section named `prefix` followed by N in decimal (no leading zero) exists;
    // -1 when there is none.
    int32_t HighestNumberedSection(std::wstring_view prefix) const;

private:
    // A key line, by offsets into its section's text; 32 bits hold any file we read (see IniFile.h).
    struct Key {
        uint32_t keyBegin = 0, keyEnd = 0;      // the name, trimmed and cut at a NUL
        uint32_t valueBegin = 0, valueEnd = 0;  // trimmed; both at the line's end when it has no '='
        bool hasValue = false;
    };
    struct Section {
        std::wstring name;     // trimmed; empty for the lines before the first header
        std::wstring text;     // the section's lines as they stand in the file, header and line ends included
        std::vector<Key> keys;
        uint32_t appendAt = 0;  // just past the last line that is not blank: new keys go here
    };

    const Section* FindSection(std::wstring_view name) const;
    Section& SectionFor(std::wstring_view name);
    void SetRaw(std::wstring_view section, std::wstring_view key, std::wstring_view stored);

    // Names compare with A to Z folded, looked up by view without a copy.
    struct FoldedHash {
        using is_transparent = void;
        size_t operator()(std::wstring_view name) const;
    };
    struct FoldedEqual {
        using is_transparent = void;
        bool operator()(std::wstring_view a, std::wstring_view b) const;
    };

    std::vector<Section> sections{Section{}};
    std::unordered_map<std::wstring, size_t, FoldedHash, FoldedEqual> firstSection{{std::wstring(), 0}};
};

// The characters the platform trims from names and values: ASCII white space and Ctrl-Z.
bool IsIniBlank(wchar_t c);

}  // namespace veltor
