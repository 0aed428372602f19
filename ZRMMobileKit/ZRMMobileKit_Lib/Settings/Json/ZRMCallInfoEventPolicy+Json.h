// The call policy's entries of the settings document.
#pragma once

#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMCallInfoEventPolicy.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

class ZRMCallInfoEventPolicyJson {
  public:
    // Absent when either of its entries is missing or empty.
    static std::optional<ZRMCallInfoEventPolicy> eventPolicyFromJson(const ZRMDictionary& document);
    // Sets the policy's two entries.
    static void jsonFromEventPolicy(const ZRMCallInfoEventPolicy& policy, ZRMDictionary& document);
};
