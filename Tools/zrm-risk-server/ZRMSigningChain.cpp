#include "Tools/zrm-risk-server/ZRMSigningChain.h"

#include <stdexcept>

#include <openssl/ocsp.h>

namespace {

constexpr long kAnswerSeconds = 3600;
constexpr const char* kForgedAuthorityUsage = "critical,keyCertSign,cRLSign";

template <class Object, void (*release)(Object*)>
struct Releasing {
    void operator()(Object* object) const { release(object); }
};
template <class Object, void (*release)(Object*)>
using Owned = std::unique_ptr<Object, Releasing<Object, release>>;

using Time = Owned<ASN1_TIME, ASN1_TIME_free>;
using Crl = Owned<X509_CRL, X509_CRL_free>;
using Request = Owned<OCSP_REQUEST, OCSP_REQUEST_free>;
using BasicResponse = Owned<OCSP_BASICRESP, OCSP_BASICRESP_free>;
using Response = Owned<OCSP_RESPONSE, OCSP_RESPONSE_free>;
using CertificateId = Owned<OCSP_CERTID, OCSP_CERTID_free>;

void expect(bool succeeded, const char* what) {
    if (!succeeded) {
        throw std::runtime_error(what);
    }
}

Time secondsFromNow(long seconds) {
    Time time(X509_gmtime_adj(nullptr, seconds));
    expect(time != nullptr, "telling the time");
    return time;
}

// The bytes that a function of the i2d family writes.
template <class Object>
std::string der(Object* object, int (*write)(const Object*, unsigned char**)) {
    unsigned char* start = nullptr;
    const int length = write(object, &start);
    expect(length > 0, "writing DER");
    std::string bytes(reinterpret_cast<const char*>(start), static_cast<std::size_t>(length));
    OPENSSL_free(start);
    return bytes;
}

// Whether the question names this issuer; its serial number is not looked at.
bool isIssuedBy(const OCSP_CERTID* question, X509* issuer) {
    ASN1_OBJECT* digest = nullptr;
    OCSP_id_get0_info(nullptr, &digest, nullptr, nullptr, const_cast<OCSP_CERTID*>(question));
    const auto* const algorithm = EVP_get_digestbyobj(digest);
    if (algorithm == nullptr) {
        return false;
    }
    const Owned<ASN1_INTEGER, ASN1_INTEGER_free> noSerial(ASN1_INTEGER_new());
    const CertificateId own(OCSP_cert_id_new(algorithm, X509_get_subject_name(issuer),
                                             X509_get0_pubkey_bitstr(issuer), noSerial.get()));
    return own && OCSP_id_issuer_cmp(own.get(), question) == 0;
}

bool asksFor(const OCSP_CERTID* question, X509* certificate) {
    ASN1_INTEGER* serial = nullptr;
    OCSP_id_get0_info(nullptr, nullptr, nullptr, &serial, const_cast<OCSP_CERTID*>(question));
    return ASN1_INTEGER_cmp(serial, X509_get0_serialNumber(certificate)) == 0;
}

ZRMCertificateRequest leafRequest(bool isExpired) {
    ZRMCertificateRequest request{"Velorin Document Signing",
                                  isExpired ? -1 : 30,
                                  "critical,CA:FALSE",
                                  "critical,digitalSignature",
                                  "",
                                  ""};
    request.validFromDaysAgo = isExpired ? 30 : 0;
    return request;
}

}  // namespace

ZRMSigningChain::ZRMSigningChain(const ZRMPki& pki, const std::string& baseUrl, bool isNamed,
                                 const ZRMMisbehaviours& misbehaviours)
    : root_(pki.root()),
      intermediate_(pki.intermediate()),
      key_(pki.signingKey()),
      isNamed_(isNamed),
      isLeafRevoked_(misbehaviours.contains(ZRMMisbehaviour::RevokedLeaf)) {
    ZRMCertificateRequest authority{"Velorin Signing CA",  365, "critical,CA:TRUE,pathlen:0",
                                    kForgedAuthorityUsage, "",  ""};
    authority.ocspUrl = baseUrl + kOcspPath;
    authority.crlUrl = baseUrl + kRootCrlPath;
    intermediate_.certificate = zrm_makeCertificate(authority, intermediate_.key.get(), &root_);
    if (misbehaviours.contains(ZRMMisbehaviour::ForeignRoot)) {
        foreignRoot_ = zrm_makeIdentity(
            {"Foreign Root CA", 365, "critical,CA:TRUE", kForgedAuthorityUsage, "", ""},
            ZRMKeyKind::Rsa2048, nullptr);
    }
    auto leaf = leafRequest(misbehaviours.contains(ZRMMisbehaviour::ExpiredLeaf));
    leaf.ocspUrl = baseUrl + kOcspPath;
    leaf.crlUrl = baseUrl + (isNamed ? kRootCrlPath : kIntermediateCrlPath);
    leaf_ = zrm_makeCertificate(leaf, key_.get(), leafIssuer());
}

const ZRMIdentity* ZRMSigningChain::leafIssuer() const {
    if (foreignRoot_) {
        return &*foreignRoot_;
    }
    return isNamed_ ? &root_ : &intermediate_;
}

std::vector<std::string> ZRMSigningChain::certificates() const {
    std::vector<std::string> certificates{zrm_derFromCertificate(leaf_.get())};
    // A foreign root stays at home: delivered, it would count as an anchor.
    if (leafIssuer() == &intermediate_) {
        certificates.push_back(zrm_derFromCertificate(intermediate_.certificate.get()));
    }
    return certificates;
}

std::string ZRMSigningChain::leafPem() const {
    return zrm_pemFromCertificate(leaf_.get());
}

std::optional<std::string> ZRMSigningChain::answerOcsp(std::string_view bytes) const {
    const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
    const Request request(d2i_OCSP_REQUEST(nullptr, &start, static_cast<long>(bytes.size())));
    if (!request || OCSP_request_onereq_count(request.get()) < 1) {
        return std::nullopt;
    }
    const BasicResponse basic(OCSP_BASICRESP_new());
    expect(basic != nullptr, "making an OCSP response");
    const auto thisUpdate = secondsFromNow(0);
    const auto nextUpdate = secondsFromNow(kAnswerSeconds);
    const ZRMIdentity* signer = &root_;
    for (int index = 0; index < OCSP_request_onereq_count(request.get()); ++index) {
        auto* const question = OCSP_onereq_get0_id(OCSP_request_onereq_get0(request.get(), index));
        const auto* const issuer =
            isIssuedBy(question, intermediate_.certificate.get()) ? &intermediate_ : &root_;
        const bool isLeaf = issuer == leafIssuer() && asksFor(question, leaf_.get());
        const bool isKnown =
            isLeaf || (issuer == &root_ && asksFor(question, intermediate_.certificate.get()));
        const int status = isLeaf && isLeafRevoked_ ? V_OCSP_CERTSTATUS_REVOKED
                           : isKnown                ? V_OCSP_CERTSTATUS_GOOD
                                                    : V_OCSP_CERTSTATUS_UNKNOWN;
        expect(
            OCSP_basic_add1_status(basic.get(), question, status, OCSP_REVOKED_STATUS_KEYCOMPROMISE,
                                   thisUpdate.get(), thisUpdate.get(), nextUpdate.get()) != nullptr,
            "answering about a certificate");
        signer = issuer;
    }
    OCSP_copy_nonce(basic.get(), request.get());
    expect(OCSP_basic_sign(basic.get(), signer->certificate.get(), signer->key.get(), EVP_sha256(),
                           nullptr, 0) == 1,
           "signing an OCSP response");
    const Response response(OCSP_response_create(OCSP_RESPONSE_STATUS_SUCCESSFUL, basic.get()));
    expect(response != nullptr, "making an OCSP response");
    return der<OCSP_RESPONSE>(response.get(), i2d_OCSP_RESPONSE);
}

std::string ZRMSigningChain::rootCrl() const {
    return crlOf(root_);
}

std::string ZRMSigningChain::intermediateCrl() const {
    return crlOf(intermediate_);
}

std::string ZRMSigningChain::crlOf(const ZRMIdentity& issuer) const {
    const Crl list(X509_CRL_new());
    const auto thisUpdate = secondsFromNow(0);
    const auto nextUpdate = secondsFromNow(kAnswerSeconds);
    expect(list && X509_CRL_set_version(list.get(), X509_CRL_VERSION_2) == 1 &&
               X509_CRL_set_issuer_name(list.get(),
                                        X509_get_subject_name(issuer.certificate.get())) == 1 &&
               X509_CRL_set1_lastUpdate(list.get(), thisUpdate.get()) == 1 &&
               X509_CRL_set1_nextUpdate(list.get(), nextUpdate.get()) == 1,
           "making a list of revoked certificates");
    if (isLeafRevoked_ && leafIssuer() == &issuer) {
        Owned<X509_REVOKED, X509_REVOKED_free> entry(X509_REVOKED_new());
        expect(entry &&
                   X509_REVOKED_set_serialNumber(entry.get(), X509_get_serialNumber(leaf_.get())) ==
                       1 &&
                   X509_REVOKED_set_revocationDate(entry.get(), thisUpdate.get()) == 1 &&
                   X509_CRL_add0_revoked(list.get(), entry.get()) == 1,
               "listing the leaf");
        static_cast<void>(entry.release());
    }
    expect(X509_CRL_sort(list.get()) == 1 &&
               X509_CRL_sign(list.get(), issuer.key.get(), EVP_sha256()) > 0,
           "signing a list of revoked certificates");
    return der<X509_CRL>(list.get(), i2d_X509_CRL);
}
