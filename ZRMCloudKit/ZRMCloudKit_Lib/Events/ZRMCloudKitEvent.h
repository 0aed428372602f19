// One thing worth reporting: a dictionary with one member, named after the event's type.
#pragma once

#include <cstdint>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsEvent.h"

// Bits of an event's permission mask.
using ZRMEventPermissions = std::uint64_t;
inline constexpr ZRMEventPermissions kZRMEventPermissionNone = 0;
inline constexpr ZRMEventPermissions kZRMEventPermissionLocation = 1;

// Immutable; may be used from any thread.
class ZRMCloudKitEvent : public ZRMStatisticsEvent {
  public:
    // Version of the layout of this event type's body.
    [[nodiscard]] virtual std::uint64_t structVersion() const = 0;
    // The event type's name mapped to the body merged over the common parameters. Recomputed on
    // each call: the event's date stays, the server's time and the permissions are those of now.
    [[nodiscard]] ZRMDictionary parameters() const override = 0;
    // The device permissions whose state the event reports.
    [[nodiscard]] virtual ZRMEventPermissions permissions() const = 0;
};
