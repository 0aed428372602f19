// Certificates that live as long as a test.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <openssl/ossl_typ.h>

// A certificate with its private key.
struct ZRMTestIdentity {
    std::shared_ptr<X509> certificate;
    std::shared_ptr<EVP_PKEY> key;

    [[nodiscard]] std::string certificatePem() const;
};

// A self-signed authority.
ZRMTestIdentity zrm_makeTestAuthority(const std::string& name);

// A server's identity, signed by the authority, for those DNS names and addresses ("DNS:localhost",
// "IP:127.0.0.1"), valid from an hour ago until `lifeSeconds` from now.
ZRMTestIdentity zrm_makeTestServerIdentity(const ZRMTestIdentity& authority,
                                           const std::vector<std::string>& names,
                                           long lifeSeconds = 3600);
