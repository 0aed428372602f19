#include "ZRMPlatform/Linux/ZRMLinuxOcsp.h"

#include <algorithm>
#include <utility>

#include <openssl/evp.h>
#include <openssl/x509v3.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

constexpr int kMaximumResponders = 8;
constexpr int kSufficientBits = 112;
// Of an answer that names no next update: newer information is always to be had.
constexpr double kMaximumAgeSeconds = 86400;

using CertificateId = std::unique_ptr<OCSP_CERTID, decltype(&OCSP_CERTID_free)>;
using Response = std::unique_ptr<OCSP_RESPONSE, decltype(&OCSP_RESPONSE_free)>;
using Basic = std::unique_ptr<OCSP_BASICRESP, decltype(&OCSP_BASICRESP_free)>;

struct Subject {
    X509* certificate;
    X509* issuer;
};

Basic basicFromDer(std::span<const std::uint8_t> der) {
    const auto* end = der.data();
    const Response response(der.size() > kZRMMaximumOcspBytes
                                ? nullptr
                                : d2i_OCSP_RESPONSE(nullptr, &end, static_cast<long>(der.size())),
                            &OCSP_RESPONSE_free);
    const bool isSuccess = response && end == der.data() + der.size() &&
                           OCSP_response_status(response.get()) == OCSP_RESPONSE_STATUS_SUCCESSFUL;
    return {isSuccess ? OCSP_response_get1_basic(response.get()) : nullptr, &OCSP_BASICRESP_free};
}

bool isUnknownCritical(X509_EXTENSION* extension) {
    return X509_EXTENSION_get_critical(extension) != 0 &&
           OBJ_obj2nid(X509_EXTENSION_get_object(extension)) != NID_id_pkix_OCSP_Nonce;
}

bool hasUnknownCriticalExtension(OCSP_BASICRESP* basic) {
    for (int index = 0; index < OCSP_BASICRESP_get_ext_count(basic); ++index) {
        if (isUnknownCritical(OCSP_BASICRESP_get_ext(basic, index))) {
            return true;
        }
    }
    return false;
}

bool hasUnknownCriticalExtension(OCSP_SINGLERESP* single) {
    for (int index = 0; index < OCSP_SINGLERESP_get_ext_count(single); ++index) {
        if (isUnknownCritical(OCSP_SINGLERESP_get_ext(single, index))) {
            return true;
        }
    }
    return false;
}

bool isInForce(const X509* certificate, ZRMDate now) {
    const auto from = zrm_dateOfAsn1Time(X509_get0_notBefore(certificate));
    const auto until = zrm_dateOfAsn1Time(X509_get0_notAfter(certificate));
    return from && until && *from <= now && now <= *until;
}

// Whether the issuer named the certificate's holder to answer for it.
bool isDelegate(X509* certificate, X509* issuer, ZRMDate now) {
    int bits = 0;
    const auto flags = X509_get_extension_flags(certificate);
    return (flags & (EXFLAG_INVALID | EXFLAG_CRITICAL)) == 0 && (flags & EXFLAG_XKUSAGE) != 0 &&
           (X509_get_extended_key_usage(certificate) & XKU_OCSP_SIGN) != 0 &&
           (X509_get_key_usage(certificate) & (KU_DIGITAL_SIGNATURE | KU_NON_REPUDIATION)) != 0 &&
           isInForce(certificate, now) && X509_check_issued(issuer, certificate) == X509_V_OK &&
           X509_get_signature_info(certificate, nullptr, nullptr, &bits, nullptr) == 1 &&
           bits >= kSufficientBits &&
           EVP_PKEY_get_security_bits(X509_get0_pubkey(certificate)) >= kSufficientBits &&
           X509_verify(certificate, X509_get0_pubkey(issuer)) == 1;
}

bool isSignedForIssuer(OCSP_BASICRESP* basic, X509* issuer, ZRMDate now) {
    const auto* const algorithm = OCSP_resp_get0_tbs_sigalg(basic);
    const ASN1_OBJECT* name = nullptr;
    X509_ALGOR_get0(&name, nullptr, nullptr, algorithm);
    if (zrm_hasWeakDigest(OBJ_obj2nid(name))) {
        return false;
    }
    const ZRMLinuxX509Stack signers(sk_X509_new_null(),
                                    [](STACK_OF(X509) * owned) { sk_X509_free(owned); });
    sk_X509_push(signers.get(), issuer);
    const auto* const delivered = OCSP_resp_get0_certs(basic);
    for (int index = 0; index < std::min(sk_X509_num(delivered), kMaximumResponders); ++index) {
        auto* const certificate = sk_X509_value(delivered, index);
        if (isDelegate(certificate, issuer, now)) {
            sk_X509_push(signers.get(), certificate);
        }
    }
    // Only those signers count, and they are trusted as they stand.
    return OCSP_basic_verify(basic, signers.get(), nullptr, OCSP_NOINTERN | OCSP_TRUSTOTHER) == 1;
}

bool wasProducedInTime(const OCSP_BASICRESP* basic, const X509* certificate, ZRMDate now) {
    const auto produced = zrm_dateOfAsn1Time(OCSP_resp_get0_produced_at(basic));
    const auto certificateFrom = zrm_dateOfAsn1Time(X509_get0_notBefore(certificate));
    return produced && certificateFrom && *certificateFrom <= *produced &&
           *produced <= now.addingSeconds(kZRMRevocationClockSkewSeconds);
}

// Responders may identify the certificate by another digest than the question did.
bool isAbout(const OCSP_SINGLERESP* single, const Subject& subject) {
    const auto* const id = OCSP_SINGLERESP_get0_id(single);
    ASN1_OBJECT* digestName = nullptr;
    OCSP_id_get0_info(nullptr, &digestName, nullptr, nullptr, const_cast<OCSP_CERTID*>(id));
    const auto* const digest = EVP_get_digestbyobj(digestName);
    const CertificateId own(
        digest == nullptr ? nullptr : OCSP_cert_to_id(digest, subject.certificate, subject.issuer),
        &OCSP_CERTID_free);
    return own && OCSP_id_cmp(own.get(), id) == 0;
}

ZRMLinuxRevocationAnswer answerOf(OCSP_SINGLERESP* single, ZRMDate now) {
    ASN1_GENERALIZEDTIME* thisUpdate = nullptr;
    ASN1_GENERALIZEDTIME* nextUpdate = nullptr;
    const int status = OCSP_single_get0_status(single, nullptr, nullptr, &thisUpdate, &nextUpdate);
    const auto from = zrm_dateOfAsn1Time(thisUpdate);
    const auto until = zrm_dateOfAsn1Time(nextUpdate);
    if (!from || (nextUpdate != nullptr && !until) || hasUnknownCriticalExtension(single)) {
        return {};
    }
    const auto earliest = from->addingSeconds(-kZRMRevocationClockSkewSeconds);
    const auto latest = until.value_or(from->addingSeconds(kMaximumAgeSeconds));
    if (now < earliest || latest < now || latest < *from) {
        return {};
    }
    const auto validUntil = until.value_or(now);
    if (status == V_OCSP_CERTSTATUS_REVOKED) {
        return {ZRMLinuxRevocationStatus::Revoked, earliest, validUntil};
    }
    if (status == V_OCSP_CERTSTATUS_GOOD) {
        return {ZRMLinuxRevocationStatus::Good, earliest, validUntil};
    }
    return {};
}

}  // namespace

ZRMLinuxOcspQuestion::ZRMLinuxOcspQuestion(ZRMLinuxX509 certificate, ZRMLinuxX509 issuer)
    : certificate_(std::move(certificate)), issuer_(std::move(issuer)) {
    const ZRMLinuxOpenSSLErrors errors;
    std::shared_ptr<OCSP_REQUEST> request(OCSP_REQUEST_new(), &OCSP_REQUEST_free);
    CertificateId id(OCSP_cert_to_id(EVP_sha1(), certificate_.get(), issuer_.get()),
                     &OCSP_CERTID_free);
    if (request && id && OCSP_request_add0_id(request.get(), id.get()) != nullptr) {
        static_cast<void>(id.release());
        constexpr int kUsualLength = -1;
        if (OCSP_request_add1_nonce(request.get(), nullptr, kUsualLength) == 1) {
            request_ = std::move(request);
        }
    }
}

ZRMData ZRMLinuxOcspQuestion::der() const {
    const int length = request_ ? i2d_OCSP_REQUEST(request_.get(), nullptr) : 0;
    ZRMData der(static_cast<std::size_t>(std::max(length, 0)));
    if (!der.empty()) {
        auto* cursor = der.data();
        i2d_OCSP_REQUEST(request_.get(), &cursor);
    }
    return der;
}

ZRMLinuxRevocationAnswer ZRMLinuxOcspQuestion::read(std::span<const std::uint8_t> response,
                                                    ZRMDate now) const {
    const ZRMLinuxOpenSSLErrors errors;
    const auto basic = basicFromDer(response);
    constexpr int kOnlyInQuestion = -1;
    constexpr int kEqual = 1;
    if (!basic || !request_ || hasUnknownCriticalExtension(basic.get()) ||
        !wasProducedInTime(basic.get(), certificate_.get(), now)) {
        return {};
    }
    const int nonce = OCSP_check_nonce(request_.get(), basic.get());
    if ((nonce != kEqual && nonce != kOnlyInQuestion) ||
        !isSignedForIssuer(basic.get(), issuer_.get(), now)) {
        return {};
    }
    ZRMLinuxRevocationAnswer found;
    for (int index = 0; index < OCSP_resp_count(basic.get()); ++index) {
        auto* const single = OCSP_resp_get0(basic.get(), index);
        const auto answer = isAbout(single, {certificate_.get(), issuer_.get()})
                                ? answerOf(single, now)
                                : ZRMLinuxRevocationAnswer();
        if (answer.status == ZRMLinuxRevocationStatus::Revoked) {
            return answer;
        }
        if (found.status == ZRMLinuxRevocationStatus::NoAnswer) {
            found = answer;
        }
    }
    return found;
}
