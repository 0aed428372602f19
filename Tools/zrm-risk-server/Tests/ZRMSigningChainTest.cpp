#include <openssl/ocsp.h>
#include <openssl/x509v3.h>

#include "Tools/zrm-risk-server/Tests/ZRMPkiFixture.h"
#include "Tools/zrm-risk-server/ZRMSigningChain.h"

namespace {

constexpr const char* kUrl = "https://localhost:1234";

struct Certificates {
    ZRMCertificatePointer leaf;
    ZRMCertificatePointer intermediate;
};

ZRMCertificatePointer certificateFrom(const std::string& der) {
    const auto* start = reinterpret_cast<const unsigned char*>(der.data());
    return ZRMCertificatePointer(d2i_X509(nullptr, &start, static_cast<long>(der.size())));
}

class ZRMSigningChainTest : public ZRMPkiFixture {
  protected:
    static ZRMSigningChain chain(const ZRMMisbehaviours& misbehaviours = {}, bool isNamed = false) {
        return {pki(), kUrl, isNamed, misbehaviours};
    }
    static Certificates certificates(const ZRMSigningChain& chain) {
        const auto der = chain.certificates();
        return {certificateFrom(der.at(0)), certificateFrom(der.at(1))};
    }

    // X509_V_OK when the chain leads from its leaf to the root; the lists are consulted.
    static int verify(const ZRMSigningChain& chain) {
        const auto root = pki().root();
        const std::unique_ptr<X509_STORE, void (*)(X509_STORE*)> store(X509_STORE_new(),
                                                                       X509_STORE_free);
        X509_STORE_add_cert(store.get(), root.certificate.get());
        for (const auto& der : {chain.rootCrl(), chain.intermediateCrl()}) {
            const auto* start = reinterpret_cast<const unsigned char*>(der.data());
            auto* const list = d2i_X509_CRL(nullptr, &start, static_cast<long>(der.size()));
            X509_STORE_add_crl(store.get(), list);
            X509_CRL_free(list);
        }
        const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> untrusted(
            sk_X509_new_null(), [](STACK_OF(X509) * stack) { sk_X509_pop_free(stack, X509_free); });
        const auto der = chain.certificates();
        for (std::size_t index = 1; index < der.size(); ++index) {
            sk_X509_push(untrusted.get(), certificateFrom(der[index]).release());
        }
        const auto leaf = certificateFrom(der.at(0));
        const std::unique_ptr<X509_STORE_CTX, void (*)(X509_STORE_CTX*)> context(
            X509_STORE_CTX_new(), X509_STORE_CTX_free);
        X509_STORE_CTX_init(context.get(), store.get(), leaf.get(), untrusted.get());
        X509_VERIFY_PARAM_set_flags(
            X509_STORE_CTX_get0_param(context.get()),
            X509_V_FLAG_X509_STRICT | X509_V_FLAG_CRL_CHECK | X509_V_FLAG_CRL_CHECK_ALL);
        X509_verify_cert(context.get());
        return X509_STORE_CTX_get_error(context.get());
    }

    // What the responder says about the certificate: a V_OCSP_CERTSTATUS, or -1 where its answer
    // is no good.
    static int ocspStatus(const ZRMSigningChain& chain, X509* certificate, X509* issuer) {
        const std::unique_ptr<OCSP_REQUEST, void (*)(OCSP_REQUEST*)> request(OCSP_REQUEST_new(),
                                                                             OCSP_REQUEST_free);
        auto* const question = OCSP_cert_to_id(EVP_sha1(), certificate, issuer);
        OCSP_request_add0_id(request.get(), question);
        OCSP_request_add1_nonce(request.get(), nullptr, -1);
        unsigned char* bytes = nullptr;
        const int length = i2d_OCSP_REQUEST(request.get(), &bytes);
        const auto answer = chain.answerOcsp(
            {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)});
        OPENSSL_free(bytes);
        if (!answer) {
            return -1;
        }
        const auto* start = reinterpret_cast<const unsigned char*>(answer->data());
        const std::unique_ptr<OCSP_RESPONSE, void (*)(OCSP_RESPONSE*)> response(
            d2i_OCSP_RESPONSE(nullptr, &start, static_cast<long>(answer->size())),
            OCSP_RESPONSE_free);
        const std::unique_ptr<OCSP_BASICRESP, void (*)(OCSP_BASICRESP*)> basic(
            OCSP_response_get1_basic(response.get()), OCSP_BASICRESP_free);
        if (OCSP_check_nonce(request.get(), basic.get()) != 1) {
            return -1;
        }
        const std::unique_ptr<X509_STORE, void (*)(X509_STORE*)> store(X509_STORE_new(),
                                                                       X509_STORE_free);
        X509_STORE_add_cert(store.get(), issuer);
        X509_VERIFY_PARAM_set_flags(X509_STORE_get0_param(store.get()), X509_V_FLAG_PARTIAL_CHAIN);
        const std::unique_ptr<STACK_OF(X509), void (*)(STACK_OF(X509)*)> signers(
            sk_X509_new_null(), [](STACK_OF(X509) * stack) { sk_X509_free(stack); });
        sk_X509_push(signers.get(), issuer);
        if (OCSP_basic_verify(basic.get(), signers.get(), store.get(), 0) != 1) {
            return -1;
        }
        int status = -1;
        OCSP_resp_find_status(basic.get(), question, &status, nullptr, nullptr, nullptr, nullptr);
        return status;
    }
};

TEST_F(ZRMSigningChainTest, LeadsFromTheLeafOverTheIntermediateToTheRoot) {
    const auto made = chain();
    EXPECT_EQ(made.certificates().size(), 2U);
    EXPECT_EQ(verify(made), X509_V_OK);
    EXPECT_EQ(X509_check_private_key(certificates(made).leaf.get(), made.key()), 1);
}

TEST_F(ZRMSigningChainTest, IsTheLeafUnderTheRootWhereItIsOnlyNamed) {
    const auto made = chain({}, true);
    EXPECT_EQ(made.certificates().size(), 1U);
    EXPECT_EQ(verify(made), X509_V_OK);
    EXPECT_EQ(zrm_derFromCertificate(zrm_certificateFromPem(made.leafPem()).get()),
              made.certificates()[0]);
}

TEST_F(ZRMSigningChainTest, NamesItsResponderAndItsLists) {
    const auto made = certificates(chain());
    const std::unique_ptr<STACK_OF(OPENSSL_STRING), void (*)(STACK_OF(OPENSSL_STRING)*)> urls(
        X509_get1_ocsp(made.leaf.get()), X509_email_free);
    ASSERT_EQ(sk_OPENSSL_STRING_num(urls.get()), 1);
    EXPECT_STREQ(sk_OPENSSL_STRING_value(urls.get(), 0), "https://localhost:1234/ocsp");
    for (const auto* certificate : {made.leaf.get(), made.intermediate.get()}) {
        EXPECT_GE(X509_get_ext_by_NID(certificate, NID_crl_distribution_points, -1), 0);
    }
}

TEST_F(ZRMSigningChainTest, ResponderSaysGoodOfItsCertificatesAndUnknownOfOthers) {
    const auto made = chain();
    const auto root = pki().root();
    const auto certificates = ZRMSigningChainTest::certificates(made);
    EXPECT_EQ(ocspStatus(made, certificates.leaf.get(), certificates.intermediate.get()),
              V_OCSP_CERTSTATUS_GOOD);
    EXPECT_EQ(ocspStatus(made, certificates.intermediate.get(), root.certificate.get()),
              V_OCSP_CERTSTATUS_GOOD);
    const auto other = chain();
    EXPECT_EQ(ocspStatus(other, certificates.leaf.get(),
                         ZRMSigningChainTest::certificates(other).intermediate.get()),
              V_OCSP_CERTSTATUS_UNKNOWN);
}

TEST_F(ZRMSigningChainTest, RevokedLeafIsRevokedForResponderAndList) {
    for (const bool isNamed : {false, true}) {
        const auto made = chain({ZRMMisbehaviour::RevokedLeaf}, isNamed);
        EXPECT_EQ(verify(made), X509_V_ERR_CERT_REVOKED);
        const auto leaf = certificateFrom(made.certificates()[0]);
        const auto issuer =
            isNamed ? std::move(pki().root().certificate) : certificateFrom(made.certificates()[1]);
        EXPECT_EQ(ocspStatus(made, leaf.get(), issuer.get()), V_OCSP_CERTSTATUS_REVOKED);
    }
}

TEST_F(ZRMSigningChainTest, ResponderDoesNotAnswerWhatIsNoRequest) {
    for (const std::string_view bytes : {"", "garbage", "\x30\x00"}) {
        EXPECT_EQ(chain().answerOcsp(bytes), std::nullopt);
    }
}

TEST_F(ZRMSigningChainTest, ExpiredLeafIsPastItsTimeAndWasOnceInIt) {
    const auto made = chain({ZRMMisbehaviour::ExpiredLeaf});
    EXPECT_EQ(verify(made), X509_V_ERR_CERT_HAS_EXPIRED);
    const auto leaf = std::move(certificates(made).leaf);
    EXPECT_EQ(ASN1_TIME_compare(X509_get0_notBefore(leaf.get()), X509_get0_notAfter(leaf.get())),
              -1);
}

TEST_F(ZRMSigningChainTest, LeafOfAForeignRootIsDeliveredAlone) {
    const auto made = chain({ZRMMisbehaviour::ForeignRoot});
    EXPECT_EQ(made.certificates().size(), 1U);
    EXPECT_EQ(verify(made), X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY);
}

}  // namespace
