// Signed documents with real chains, verified under a simulated device's clock and network.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifierConfiguration.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

class ZRMJwsVerifierFixture : public testing::Test {
  protected:
    ZRMJwsVerifierFixture() {
        device_.trust().plug([](const ZRMPlatform& platform) {
            return std::make_shared<ZRMLinuxTrust>(platform.executor, platform.clock,
                                                   platform.urlSessions);
        });
    }

    static std::string base64Of(const std::string& text) {
        return zrm_base64String(zrm_dataFromText(text));
    }
    static std::string base64UrlOf(const ZRMData& bytes) {
        return zrm_base64UrlFromBase64String(zrm_base64String(bytes));
    }

    // An unprotected header with that chain.
    static ZRMDictionary x5c(const std::vector<ZRMTestCertificate>& certificates) {
        ZRMJsonArray elements;
        for (const auto& certificate : certificates) {
            elements.emplace_back(zrm_base64String(certificate.der()));
        }
        return {{"x5c", std::move(elements)}};
    }
    static ZRMDictionary x5u(const std::string& url) { return {{"x5u", url}}; }

    // A signature of the payload by the signer's key.
    ZRMJwsSignature signatureBy(const ZRMTestCertificate& signer,
                                std::optional<ZRMDictionary> headers) const {
        return {base64UrlOf(signer.sign(zrm_dataFromText(protectedHeader_ + "." + payload_))),
                protectedHeader_, std::move(headers)};
    }
    // One by the leaf, with its chain but for the root.
    ZRMJwsSignature goodSignature() const {
        return signatureBy(leaf_, x5c({leaf_, intermediate_}));
    }
    ZRMJwsSignature mismatch() const {
        return signatureBy({leaf_.certificate, ZRMTestPki::key("another")},
                           x5c({leaf_, intermediate_}));
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMTestPki pki_{device_.now()};
    ZRMTestCertificate root_ = pki_.root();
    ZRMTestCertificate intermediate_ = pki_.authority(root_);
    ZRMTestCertificate leaf_ = pki_.leaf(intermediate_);
    ZRMJwsVerifierConfiguration configuration_{{root_.pem()}};
    std::string protectedHeader_ = base64Of(R"({"alg":"RS256"})");
    std::string payload_ = base64UrlOf(zrm_dataFromText(R"({"config":{}})"));
};
