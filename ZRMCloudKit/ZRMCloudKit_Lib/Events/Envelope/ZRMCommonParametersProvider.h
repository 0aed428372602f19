// The parameters that every event has, for one event.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataImpl.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEventPermissionChecker.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"

// A plain record; what is absent is left out.
struct ZRMCommonParameters {
    std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData;
    ZRMDate eventDate;
    std::uint64_t structVersion = 0;
    std::optional<ZRMDate> serverDate;
    std::optional<ZRMDictionary> permissions;

    static std::span<const ZRMEventField<ZRMCommonParameters>> fields();
};

// Immutable; may be used from any thread.
class ZRMCommonParametersProvider {
  public:
    // `eventDate` is the moment the event was built. The server time provider may be absent.
    // "enviromentData" is the interface's own spelling.
    ZRMCommonParametersProvider(std::shared_ptr<const ZRMEnvironmentDataImpl> enviromentData,
                                std::shared_ptr<const ZRMEventPermissionChecker> permissionsChecker,
                                ZRMDate eventDate,
                                std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider);

    // The server's time, while it is known, and the permissions are those of the call.
    [[nodiscard]] ZRMDictionary parametersWithStructVersion(
        std::uint64_t structVersion, ZRMEventPermissions eventPermissions) const;

  private:
    std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData_;
    std::shared_ptr<const ZRMEventPermissionChecker> permissionsChecker_;
    ZRMDate eventDate_;
    std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider_;
};
