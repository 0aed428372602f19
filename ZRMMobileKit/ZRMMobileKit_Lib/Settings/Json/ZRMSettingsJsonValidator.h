// Cleans a settings document before it is taken over.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// Pure; from any thread.
class ZRMSettingsJsonValidator {
  public:
    // The entries that keep the rule of their key in the settings table. Keys that the table does
    // not know, or never takes, are passed over; nothing makes the whole document fail. The error
    // slot, where given, holds error 1 afterwards when an entry was rejected: the rejected keys,
    // joined by ",", as its field and the text of the whole document as its value.
    static ZRMDictionary validSettingsJsonFromJson(const ZRMDictionary& json);
    static ZRMDictionary validSettingsJsonFromJson(const ZRMDictionary& json,
                                                   std::optional<ZRMError>& error);

    // The keys whose entries are rejected, in the table's order.
    static std::vector<std::string> rejectedKeys(const ZRMDictionary& json);
};
