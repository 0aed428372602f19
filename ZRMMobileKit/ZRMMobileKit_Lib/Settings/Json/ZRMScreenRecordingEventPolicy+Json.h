// The screen-recording policy's entries of the settings document.
#pragma once

#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

class ZRMScreenRecordingEventPolicyJson {
  public:
    // Absent when either of its entries is missing or empty.
    static std::optional<ZRMScreenRecordingEventPolicy> eventPolicyFromJson(
        const ZRMDictionary& document);
    // Sets the policy's two entries.
    static void jsonFromEventPolicy(const ZRMScreenRecordingEventPolicy& policy,
                                    ZRMDictionary& document);
};
