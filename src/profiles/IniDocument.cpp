#include "profiles/IniDocument.h"

#include <algorithm>

namespace veltor {
namespace {

constexpr std::wstring_view kLineEnd = L"\r\n";

bool IsLineEnd(wchar_t c) { return c == L'\r' || c == L'\n'; }

std::wstring_view Trim(std::wstring_view text) {
    while (!text.empty() && IsIniBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsIniBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::wstring_view CutAtNul(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

wchar_t FoldAscii(wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; }

bool SameName(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](wchar_t x, wchar_t y) { return FoldAscii(x) == FoldAscii(y); });
}

uint32_t Offset(size_t at) { return static_cast<uint32_t>(at); }

bool IsQuote(wchar_t c) { return c == L'"' || c == L'\''; }

// The platform drops one pair of equal quotes around a value.
std::wstring_view Unquoted(std::wstring_view value) {
    if (value.size() >= 2 && IsQuote(value.front()) && value.back() == value.front()) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

// The form in which a value goes into the file so that reading gives it back: one line, and quoted where
// reading would trim its ends or take off its own quotes.
std::wstring Stored(std::wstring_view value) {
    std::wstring stored(value);
    for (wchar_t& c : stored) {
        if (IsLineEnd(c) || c == L'\0') c = L' ';
    }
    if (!stored.empty() && (IsIniBlank(stored.front()) || IsIniBlank(stored.back()) || Unquoted(stored) != stored)) {
        stored = L'"' + stored + L'"';
    }
    return stored;
}

}  // namespace

size_t IniDocument::FoldedHash::operator()(std::wstring_view name) const {
    size_t hash = 14695981039346656037ull;  // FNV-1a
    for (const wchar_t c : name) hash = (hash ^ static_cast<size_t>(FoldAscii(c))) * 1099511628211ull;
    return hash;
}

bool IniDocument::FoldedEqual::operator()(std::wstring_view a, std::wstring_view b) const { return SameName(a, b); }

bool IsIniBlank(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r') || c == L'\x1A'; }

IniDocument IniDocument::Parse(std::wstring_view text) {
    IniDocument doc;
    size_t current = 0;
    size_t at = 0;
    while (at < text.size()) {
        const size_t lineEnd = std::min(text.find_first_of(L"\r\n", at), text.size());
        size_t next = lineEnd;
        if (next < text.size()) next += text.compare(next, 2, kLineEnd) == 0 ? 2 : 1;
        const std::wstring_view line = text.substr(at, lineEnd - at);
        const std::wstring_view content = Trim(line);
        const size_t begin = content.data() - line.data();
        const size_t end = begin + content.size();

        const size_t close = content.rfind(L']');
        const bool isHeader = !content.empty() && content.front() == L'[' && close != std::wstring_view::npos;
        if (isHeader) {
            Section section;
            section.name = CutAtNul(Trim(content.substr(1, close - 1)));
            doc.firstSection.try_emplace(section.name, doc.sections.size());
            doc.sections.push_back(std::move(section));
            current = doc.sections.size() - 1;
        }
        Section& section = doc.sections[current];
        const size_t base = section.text.size();
        section.text.append(text.substr(at, next - at));
        if (!content.empty()) section.appendAt = Offset(section.text.size());

        if (!content.empty() && !isHeader) {
            // A line without '=' is a key too, one that reads as absent, as the platform treats it.
            Key key;
            const size_t equals = content.find(L'=');
            key.keyBegin = Offset(base + begin);
            key.keyEnd = key.keyBegin + Offset(CutAtNul(Trim(content.substr(0, equals))).size());
            key.valueBegin = key.valueEnd = Offset(base + end);
            if (equals != std::wstring_view::npos) {
                key.hasValue = true;
                key.valueBegin = key.valueEnd - Offset(Trim(content.substr(equals + 1)).size());
            }
            section.keys.push_back(key);
        }
        at = next;
    }
    return doc;
}

std::wstring IniDocument::Serialize() const {
    size_t size = 0;
    for (const Section& section : sections) size += section.text.size();
    std::wstring text;
    text.reserve(size);
    for (const Section& section : sections) text += section.text;
    return text;
}

const IniDocument::Section* IniDocument::FindSection(std::wstring_view name) const {
    const auto found = firstSection.find(Trim(name));
    return found == firstSection.end() ? nullptr : &sections[found->second];
}

int32_t IniDocument::HighestNumberedSection(std::wstring_view prefix) const {
    int32_t highest = -1;
    for (const Section& section : sections) {
        const std::wstring_view name = section.name;
        if (name.size() <= prefix.size() || !SameName(name.substr(0, prefix.size()), prefix)) continue;
        const std::wstring_view digits = name.substr(prefix.size());
        if (digits.size() > 10 || (digits.size() > 1 && digits[0] == L'0')) continue;
        int64_t number = 0;
        for (wchar_t c : digits) number = c >= L'0' && c <= L'9' && number >= 0 ? number * 10 + (c - L'0') : -1;
        if (number >= 0 && number <= INT32_MAX) highest = std::max(highest, static_cast<int32_t>(number));
    }
    return highest;
}

std::wstring IniDocument::GetString(std::wstring_view section, std::wstring_view key, std::wstring_view fallback,
                                    size_t bufferChars) const {
    std::wstring_view value = fallback;
    key = Trim(key);
    if (const Section* found = FindSection(section); found != nullptr && !key.empty()) {
        const std::wstring_view text = found->text;
        for (const Key& entry : found->keys) {
            if (!SameName(text.substr(entry.keyBegin, entry.keyEnd - entry.keyBegin), key)) continue;
            if (entry.hasValue) value = CutAtNul(text.substr(entry.valueBegin, entry.valueEnd - entry.valueBegin));
            break;
        }
    }
    if (bufferChars == 0) return {};
    return std::wstring(Unquoted(value).substr(0, bufferChars - 1));
}

void IniDocument::SetString(std::wstring_view section, std::wstring_view key, std::wstring_view value) {
    SetRaw(section, key, Stored(value));
}

void IniDocument::Apply(const IniDocument& writes) {
    for (size_t s = 1; s < writes.sections.size(); ++s) {
        const Section& section = writes.sections[s];
        const std::wstring_view text = section.text;
        for (const Key& key : section.keys) {
            if (!key.hasValue) continue;
            SetRaw(section.name, text.substr(key.keyBegin, key.keyEnd - key.keyBegin),
                   text.substr(key.valueBegin, key.valueEnd - key.valueBegin));
        }
    }
}

IniDocument::Section& IniDocument::SectionFor(std::wstring_view name) {
    const auto existing = firstSection.find(name);
    if (existing != firstSection.end()) return sections[existing->second];
    firstSection.emplace(name, sections.size());
    // The file's last line may lack its line end; the new header must start a line of its own.
    for (auto last = sections.rbegin(); last != sections.rend(); ++last) {
        if (last->text.empty()) continue;
        if (!IsLineEnd(last->text.back())) last->text += kLineEnd;
        break;
    }
    Section& section = sections.emplace_back();
    section.name = name;
    section.text = L'[' + section.name + L']' + std::wstring(kLineEnd);
    section.appendAt = Offset(section.text.size());
    return section;
}

void IniDocument::SetRaw(std::wstring_view sectionName, std::wstring_view keyName, std::wstring_view stored) {
    keyName = Trim(keyName);
    if (keyName.empty()) return;  // the platform reads no key without a name
    Section& section = SectionFor(Trim(sectionName));
    std::wstring& text = section.text;
    for (size_t i = 0; i < section.keys.size(); ++i) {
        Key& key = section.keys[i];
        if (!SameName(std::wstring_view(text).substr(key.keyBegin, key.keyEnd - key.keyBegin), keyName)) continue;
        const std::wstring inserted = key.hasValue ? std::wstring(stored) : L'=' + std::wstring(stored);
        const size_t removed = key.valueEnd - key.valueBegin;
        text.replace(key.valueBegin, removed, inserted);
        const auto shift = [delta = static_cast<int64_t>(inserted.size()) - static_cast<int64_t>(removed)](
                               uint32_t& offset) { offset = static_cast<uint32_t>(offset + delta); };
        if (!key.hasValue) ++key.valueBegin;
        key.hasValue = true;
        key.valueEnd = key.valueBegin + static_cast<uint32_t>(stored.size());
        for (size_t j = i + 1; j < section.keys.size(); ++j) {
            Key& later = section.keys[j];
            shift(later.keyBegin), shift(later.keyEnd), shift(later.valueBegin), shift(later.valueEnd);
        }
        shift(section.appendAt);
        return;
    }
    std::wstring line;
    if (section.appendAt > 0 && !IsLineEnd(text[section.appendAt - 1])) line += kLineEnd;
    Key key;
    key.keyBegin = section.appendAt + static_cast<uint32_t>(line.size());
    key.keyEnd = key.keyBegin + static_cast<uint32_t>(keyName.size());
    key.hasValue = true;
    key.valueBegin = key.keyEnd + 1;
    key.valueEnd = key.valueBegin + static_cast<uint32_t>(stored.size());
    line.append(keyName).append(1, L'=').append(stored).append(kLineEnd);
    text.insert(section.appendAt, line);
    section.appendAt += static_cast<uint32_t>(line.size());
    section.keys.push_back(key);
}

}  // namespace veltor
