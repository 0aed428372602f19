// What the host tells of the displays.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "ZRMPlatform/HostFed/ZRMHostNotifications.h"
#include "ZRMPlatform/Ports/Values/ZRMScreen.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread. What changes is notified once it can be seen.
class ZRMHostScreens {
  public:
    static constexpr std::size_t kMostExternalScreens = 16;

    explicit ZRMHostScreens(ZRMHostNotifications& notifications) : notifications_(notifications) {}

    // Of the main screen.
    void setCaptured(bool isCaptured);
    void setMirrored(bool hasMirroredScreen);
    // False, and nothing happens, where it would be one too many.
    bool connect(const ZRMScreen& external);
    // All that the host has connected.
    void disconnect();
    void forget();

    // Those of the machine with the host's word on the main one, then the external ones. Where the
    // machine has none, the host's word makes one of no size.
    [[nodiscard]] std::vector<ZRMScreen> joinedTo(std::vector<ZRMScreen> screens) const;

  private:
    void set(std::optional<bool> ZRMHostScreens::*word, bool value);

    ZRMHostNotifications& notifications_;
    mutable ZRMMutex mutex_;
    std::optional<bool> captured_ ZRM_GUARDED_BY(mutex_);
    std::optional<bool> mirrored_ ZRM_GUARDED_BY(mutex_);
    std::vector<ZRMScreen> external_ ZRM_GUARDED_BY(mutex_);
};
