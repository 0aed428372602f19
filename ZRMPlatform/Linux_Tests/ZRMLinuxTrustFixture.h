// Evaluates chains with the OpenSSL body under a simulated device's clock and network.
#pragma once

#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

class ZRMLinuxTrustFixture : public testing::Test {
  protected:
    ZRMLinuxTrustFixture() {
        trust_ =
            std::make_shared<ZRMLinuxTrust>(device_.platform()->executor, device_.platform()->clock,
                                            device_.platform()->urlSessions);
    }

    static std::vector<ZRMData> ders(const std::vector<ZRMTestCertificate>& certificates) {
        std::vector<ZRMData> encoded;
        for (const auto& certificate : certificates) {
            encoded.push_back(certificate.der());
        }
        return encoded;
    }

    // Time passes as far as the evaluation needs it.
    ZRMTrustEvaluation evaluate(ZRMTrustRequest request) {
        const auto answer = std::make_shared<std::optional<ZRMTrustEvaluation>>();
        trust_->evaluate(std::move(request), [answer](ZRMTrustEvaluation evaluation) {
            EXPECT_FALSE(answer->has_value());
            *answer = std::move(evaluation);
        });
        EXPECT_FALSE(answer->has_value()) << "completed before evaluate() returned";
        EXPECT_TRUE(device_.runUntil([&] { return answer->has_value(); }, 3600));
        return answer->value_or(ZRMTrustEvaluation());
    }
    ZRMTrustEvaluation evaluate(const std::vector<ZRMTestCertificate>& chain,
                                const std::vector<ZRMTestCertificate>& anchors) {
        return evaluate({ders(chain), ders(anchors)});
    }

    ZRMSimulatedDevice device_;
    ZRMTestPki pki_{device_.now()};
    std::shared_ptr<ZRMTrust> trust_;
};
