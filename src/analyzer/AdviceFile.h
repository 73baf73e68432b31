#pragma once
#include <filesystem>
#include <string>

#include "analyzer/Advice.h"

namespace veltor::analyzer {

// True when at least one advised row is left to apply.
bool HasAdviceToApply(const Advice& advice);

// The advice file's text, through the program's own INI document: section Advice, Version 1, Profile and Car
// of the recording, the value of each advised row, and all Apply flags of each group that has an advised
// row: the program takes a missing flag as set, so a flag the user turned off, or one for a value the
// analyzer does not advise, is written as 0.
std::wstring AdviceFileText(const Advice& advice);

// Writes the text as the program writes its own INI file (UTF-16LE after a byte-order mark), replacing
// `path` whole or leaving it as it was.
bool WriteAdviceFile(const std::filesystem::path& path, const Advice& advice, std::string& error);

}  // namespace veltor::analyzer
