// The texts of the settings document and the values they stand for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

// These five throw ZRMMobileServiceSettings::makeExceptionForKey() for a text that is missing or
// empty. An entry that is no text counts as missing.
std::string zrm_settingsText(const ZRMDictionary& document, const char* key);
// Also for a text that is no URL.
std::string zrm_settingsUrl(const ZRMDictionary& document, const char* key);
// Seconds; -1 for a text that is no ISO 8601 duration.
double zrm_settingsDuration(const ZRMDictionary& document, const char* key);
// False for "false" and "0" in any letter case, true for every other text.
bool zrm_settingsBoolean(const ZRMDictionary& document, const char* key);
// The number that the text begins with, spaces before it skipped: 0 where there is none, for a
// negative one too; beyond the range of 64 bits the largest signed one.
std::uint64_t zrm_settingsCount(const ZRMDictionary& document, const char* key);

// Whether the entry is a text that is not empty.
bool zrm_hasSettingsText(const ZRMDictionary& document, const char* key);

std::string zrm_settingsTextOfDuration(double seconds);

constexpr const char* zrm_settingsTextOfBoolean(bool value) {
    return value ? "true" : "false";
}
