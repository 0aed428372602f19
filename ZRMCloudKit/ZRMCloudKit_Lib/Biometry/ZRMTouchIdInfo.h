// The state of the device's biometric authentication.
#pragma once

#include <cstddef>
#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"
#include "ZRMPlatform/Ports/ZRMLocalAuthentication.h"

// An immutable value.
class ZRMTouchIdInfo {
  public:
    // `domainState` is opaque and changes whenever the enrolled fingers or faces change.
    ZRMTouchIdInfo(bool supported, bool enabled, std::optional<ZRMData> domainState);

    // As it is now. A sensor that could be used but for an enrolment or a lock-out is supported; an
    // error of another domain than the authentication service's says nothing about the sensor.
    static ZRMTouchIdInfo currentTouchIdInfo(const ZRMLocalAuthentication& localAuthentication);

    [[nodiscard]] bool isSupported() const { return supported_; }
    [[nodiscard]] bool isEnabled() const { return enabled_; }
    [[nodiscard]] const std::optional<ZRMData>& domainState() const { return domainState_; }

    [[nodiscard]] ZRMArchiveObject encode() const;
    // Absent when the object is of another class or a field of another type. A flag that is missing
    // is false.
    static std::optional<ZRMTouchIdInfo> decode(const ZRMArchiveObject& object);

    // The hashes of the three fields, combined with exclusive or.
    [[nodiscard]] std::size_t hash() const;
    friend bool operator==(const ZRMTouchIdInfo&, const ZRMTouchIdInfo&) = default;

  private:
    bool supported_;
    bool enabled_;
    std::optional<ZRMData> domainState_;
};
