// Real RSA keys.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

class ZRMSimulatedRsaKeys final : public ZRMRsaKeys {
  public:
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> publicKeyFromDer(const ZRMData& der) const override;
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> privateKeyFromDer(const ZRMData& der) const override;

    // While set, every signing and verifying answers with the status; absent ends that.
    void setStatus(std::optional<std::int32_t> status) { *status_ = status; }

  private:
    std::shared_ptr<std::optional<std::int32_t>> status_ =
        std::make_shared<std::optional<std::int32_t>>();
};
