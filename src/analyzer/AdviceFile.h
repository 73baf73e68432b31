#pragma once
#include <filesystem>
#include <string>

#include "analyzer/Advice.h"

namespace veltor::analyzer {

// True when at least one advised row is left to apply.
bool HasAdviceToApply(const Advice& advice);

// The advice file's text: section Advice, Version 1, Profile and Car of the recording, the value of each
// advised row, and all Apply flags of each group that has an advised row: the program takes a missing flag
// as set, so a flag the user turned off or a value not advised must be written as 0. Lines end in CRLF.
std::string AdviceFileText(const Advice& advice);

// The bytes the program's private-profile reader takes: the text as it is when it is plain ASCII,
// otherwise UTF-16LE behind a byte-order mark (a narrow file would be read in the ANSI code page).
std::string EncodeAdviceFile(const std::string& text);

// Writes the encoded text beside `path` and renames it into place, so a failure leaves no partial file.
bool WriteAdviceFile(const std::filesystem::path& path, const Advice& advice, std::string& error);

}  // namespace veltor::analyzer
