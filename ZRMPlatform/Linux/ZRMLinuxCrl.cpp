#include "ZRMPlatform/Linux/ZRMLinuxCrl.h"

#include <algorithm>

#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

using Crl = std::unique_ptr<X509_CRL, decltype(&X509_CRL_free)>;
using CrlStack = std::unique_ptr<STACK_OF(X509_CRL), void (*)(STACK_OF(X509_CRL)*)>;
using Context = std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)>;

Crl crlFromDer(std::span<const std::uint8_t> der) {
    const auto* end = der.data();
    Crl crl(der.size() > kZRMMaximumCrlBytes
                ? nullptr
                : d2i_X509_CRL(nullptr, &end, static_cast<long>(der.size())),
            &X509_CRL_free);
    return crl && end == der.data() + der.size() ? std::move(crl) : Crl(nullptr, &X509_CRL_free);
}

// Validates the one certificate against its issuer and the list, which checks the list's
// signature, scope, extensions and time as well as its entries.
ZRMLinuxRevocationStatus statusBy(X509_CRL* crl, const ZRMLinuxX509& certificate,
                                  const ZRMLinuxX509& issuer, ZRMDate date) {
    const CrlStack crls(sk_X509_CRL_new_null(),
                        [](STACK_OF(X509_CRL) * owned) { sk_X509_CRL_free(owned); });
    const auto anchors = zrm_x509Stack({&issuer, 1});
    const Context context(X509_STORE_CTX_new(), &X509_STORE_CTX_free);
    auto status = ZRMLinuxRevocationStatus::NoAnswer;
    if (crls && sk_X509_CRL_push(crls.get(), crl) != 0 && context &&
        X509_STORE_CTX_init(context.get(), nullptr, certificate.get(), nullptr) == 1) {
        X509_STORE_CTX_set0_trusted_stack(context.get(), anchors.get());
        X509_STORE_CTX_set0_crls(context.get(), crls.get());
        auto* const parameters = X509_STORE_CTX_get0_param(context.get());
        X509_VERIFY_PARAM_set_flags(parameters, X509_V_FLAG_PARTIAL_CHAIN | X509_V_FLAG_CRL_CHECK);
        X509_VERIFY_PARAM_set_time(parameters, zrm_secondsForOpenSSL(date));
        if (X509_verify_cert(context.get()) == 1) {
            status = ZRMLinuxRevocationStatus::Good;
        } else if (X509_STORE_CTX_get_error(context.get()) == X509_V_ERR_CERT_REVOKED) {
            status = ZRMLinuxRevocationStatus::Revoked;
        }
    }
    return status;
}

}  // namespace

ZRMLinuxRevocationAnswer zrm_readCrl(std::span<const std::uint8_t> der,
                                     const ZRMLinuxX509& certificate, const ZRMLinuxX509& issuer,
                                     ZRMDate now) {
    const ZRMLinuxOpenSSLErrors errors;
    const auto crl = crlFromDer(der);
    if (!crl || zrm_hasWeakDigest(X509_CRL_get_signature_nid(crl.get()))) {
        return {};
    }
    // A list of changes says nothing of what was revoked before, and not every release of OpenSSL
    // sets one aside.
    if (X509_CRL_get_ext_by_NID(crl.get(), NID_delta_crl, -1) >= 0) {
        return {};
    }
    const auto from = zrm_dateOfAsn1Time(X509_CRL_get0_lastUpdate(crl.get()));
    const auto until = zrm_dateOfAsn1Time(X509_CRL_get0_nextUpdate(crl.get()));
    if (!from || !until) {
        return {};
    }
    // A list that is a little ahead of the device's clock is taken at its own time.
    const auto earliest = from->addingSeconds(-kZRMRevocationClockSkewSeconds);
    const auto date = earliest <= now ? std::max(*from, now) : now;
    const auto status = statusBy(crl.get(), certificate, issuer, date);
    return {status, earliest, *until};
}
