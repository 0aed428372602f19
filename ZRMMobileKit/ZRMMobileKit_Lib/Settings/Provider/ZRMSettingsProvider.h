// Supplies the settings that are in force from an activation on.
#pragma once

#include <functional>
#include <optional>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// May be used from any thread.
class ZRMSettingsProvider {
  public:
    // With an error the settings are the defaults and must not be used to start the library.
    using Callback =
        std::function<void(ZRMMobileServiceSettings settings, std::optional<ZRMError> error)>;

    virtual ~ZRMSettingsProvider() = default;

    // Calls back exactly once. On a device that holds no settings document, that is at once, on the
    // caller's thread, with the defaults and without an error.
    virtual void provideSettings(const Callback& callback);
};
