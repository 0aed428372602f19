// Recognising the user, from what the host tells.
#pragma once

#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMLocalAuthentication.h"

// Until the host says otherwise, the device has no sensor.
class ZRMHostFedLocalAuthentication final : public ZRMLocalAuthentication {
  public:
    explicit ZRMHostFedLocalAuthentication(std::shared_ptr<ZRMHostSignals> signals)
        : signals_(std::move(signals)) {}

    [[nodiscard]] ZRMBiometricEvaluation evaluateBiometrics() const override {
        if (auto word = signals_->biometrics.word()) {
            return *std::move(word);
        }
        return {false, std::nullopt,
                ZRMError(kZRMLocalAuthenticationErrorDomain,
                         ZRMLocalAuthenticationErrorBiometryNotAvailable)};
    }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
};
