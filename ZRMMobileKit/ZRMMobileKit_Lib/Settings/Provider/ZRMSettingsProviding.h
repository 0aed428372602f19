// Supplies the settings that are in force from an activation on.
#pragma once

#include <functional>
#include <optional>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// May be used from any thread.
class ZRMSettingsProviding {
  public:
    // With an error the settings are the defaults and must not be used to start the library.
    using Callback =
        std::function<void(ZRMMobileServiceSettings settings, std::optional<ZRMError> error)>;

    virtual ~ZRMSettingsProviding() = default;

    // Calls back exactly once, at once or later, on any thread.
    virtual void provideSettings(const Callback& callback) = 0;
};
