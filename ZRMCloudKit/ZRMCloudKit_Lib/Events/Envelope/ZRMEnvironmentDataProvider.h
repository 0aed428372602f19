// Takes snapshots of the environment.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataImpl.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Immutable; may be used from any thread.
class ZRMEnvironmentDataProvider {
  public:
    static std::shared_ptr<ZRMEnvironmentDataProvider> providerWithClientId(
        std::shared_ptr<const ZRMPlatform> platform, std::string clientId,
        std::string execSessionId, std::string deviceTag, std::optional<std::string> productName,
        std::optional<std::string> productVersion, std::optional<ZRMDate> installationDate);

    // "withClientId" is the interface's own spelling.
    ZRMEnvironmentDataProvider(std::shared_ptr<const ZRMPlatform> platform,
                               std::string withClientId, std::string execSessionId,
                               std::string deviceTag, std::optional<std::string> productName,
                               std::optional<std::string> productVersion,
                               std::optional<ZRMDate> installationDate);

    // A new snapshot, with the uptime of this moment. Names and versions that are not known are
    // empty.
    [[nodiscard]] std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData() const;

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
    std::string clientId_;
    std::string execSessionId_;
    std::string deviceTag_;
    std::optional<std::string> productName_;
    std::optional<std::string> productVersion_;
    std::optional<ZRMDate> installationDate_;
};
