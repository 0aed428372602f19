// URL sessions over libcurl.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxResolveOverrides.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

struct ZRMLinuxUrlTrust;

// All sessions of the process share one network thread, its connections, its name cache and its TLS
// sessions. Completions run on the executor's concurrent queue, so a slow one holds up no transfer.
//
// HTTP/1.1. No header is added beyond Host and Content-Length. At most 5 redirects are followed,
// from https to https only. The bound on a body is on its bytes as decoded. Gzip and deflate
// are decoded when the request's Accept-Encoding is set. Nothing is cached, whatever the policy. A
// proxy that the environment names (https_proxy and so on) is used.
class ZRMLinuxUrlSessionFactory : public ZRMUrlSessionFactory {
  public:
    // An empty file means the system's authorities.
    ZRMLinuxUrlSessionFactory(std::shared_ptr<ZRMExecutor> executor,
                              std::string certificateAuthorityFile,
                              const std::vector<ZRMLinuxResolveOverride>& resolveOverrides,
                              std::shared_ptr<const ZRMLinuxRoutes> routes);

    std::shared_ptr<ZRMUrlSession> makeSession(
        const ZRMUrlSessionConfiguration& configuration) override;

  private:
    const std::shared_ptr<ZRMExecutor> executor_;
    const std::shared_ptr<const ZRMLinuxUrlTrust> trust_;
};
