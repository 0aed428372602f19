// What a verifier trusts.
#pragma once

#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// An immutable value; the with…() operations yield changed copies.
class ZRMJwsVerifierConfiguration {
  public:
    // The pinned certificates, each as PEM.
    explicit ZRMJwsVerifierConfiguration(std::vector<ZRMData> certificateChain)
        : certificateChain_(std::move(certificateChain)) {}

    [[nodiscard]] const std::vector<ZRMData>& certificateChain() const { return certificateChain_; }

    // Where a chain may end. By default at the certificates delivered with the signature, the leaf
    // apart, as well as at the pinned ones; when true, at the pinned ones alone.
    [[nodiscard]] bool anchorsAtPinnedCertificatesOnly() const { return pinnedOnly_; }
    [[nodiscard]] ZRMJwsVerifierConfiguration withAnchorsAtPinnedCertificatesOnly(
        bool pinnedOnly) const {
        auto copy = *this;
        copy.pinnedOnly_ = pinnedOnly;
        return copy;
    }

    // Whether responders and lists are asked for revoked certificates; true by default.
    [[nodiscard]] bool checksRevocation() const { return checksRevocation_; }
    [[nodiscard]] ZRMJwsVerifierConfiguration withRevocationChecks(bool checks) const {
        auto copy = *this;
        copy.checksRevocation_ = checks;
        return copy;
    }

  private:
    std::vector<ZRMData> certificateChain_;
    bool pinnedOnly_ = false;
    bool checksRevocation_ = true;
};
