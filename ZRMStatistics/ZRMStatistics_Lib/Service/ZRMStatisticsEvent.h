// What the statistics service takes: something with parameters to upload.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

class ZRMStatisticsEvent {
  public:
    virtual ~ZRMStatisticsEvent() = default;
    // The whole document, built anew on each call.
    [[nodiscard]] virtual ZRMDictionary parameters() const = 0;
};
