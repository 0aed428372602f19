// The settings document as a table: reading, writing, defaults, validation and the page about the
// format all follow it.
#pragma once

#include <span>
#include <string>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"

// What the text of an entry holds.
enum class ZRMSettingsKind {
    Identifier,         // any text but the empty one
    DerivedIdentifier,  // the same, made from other entries
    Url,                // an absolute URL
    Duration,           // ISO 8601, held as seconds
    EventSwitch,        // a boolean: true switches the event off
    Count,              // a whole number of 0 or more
    Boolean,
};

// Which texts of a downloaded document are let through.
enum class ZRMSettingsRule {
    NeverTaken,       // the default always stands
    HttpUrl,          // no URL, or one whose scheme begins with "http"
    ISO8601Duration,  // a duration
    NonEmptyText,
};

struct ZRMSettingsField {
    using Read = void (*)(ZRMMobileServiceSettings& settings, const ZRMDictionary& document,
                          const char* key);
    using Write = void (*)(const ZRMMobileServiceSettings& settings, ZRMDictionary& document,
                           const char* key);

    const char* key;
    ZRMSettingsKind kind;
    ZRMSettingsRule rule;
    const char* defaultText;  // null: derived
    const char* meaning;
    Read read;    // null: not read, or read together with the entry before
    Write write;  // null: written together with the entry before
};

// In the order of reading.
std::span<const ZRMSettingsField> zrm_settingsTable();
