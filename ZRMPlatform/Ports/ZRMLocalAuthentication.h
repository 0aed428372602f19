// Recognising the user by a finger or a face.
#pragma once

#include "ZRMPlatform/Ports/Values/ZRMBiometricEvaluation.h"

// May be used from any thread; never asks the user.
class ZRMLocalAuthentication {
  public:
    virtual ~ZRMLocalAuthentication() = default;
    [[nodiscard]] virtual ZRMBiometricEvaluation evaluateBiometrics() const = 0;
};
