// Which OCSP answers are relied on.
#include <gtest/gtest.h>
#include <openssl/ocsp.h>

#include "ZRMPlatform/Linux/ZRMLinuxOcsp.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

using Status = ZRMLinuxRevocationStatus;

class ZRMLinuxOcsp : public testing::Test {
  protected:
    // The answer as the question about the leaf reads it, once the clock has advanced so far.
    ZRMLinuxRevocationAnswer read(const ZRMData& answer, double afterSeconds = 0) const {
        return question_.read(answer, now_.addingSeconds(afterSeconds));
    }
    Status statusOf(const ZRMTestOcspOptions& options, double afterSeconds = 0) const {
        return read(pki_.ocspAnswer(leaf_, authority_, options), afterSeconds).status;
    }
    // A responder with those options that the issuer certified.
    static ZRMTestCertificateOptions responderOptions() {
        ZRMTestCertificateOptions options;
        options.name = "responder";
        options.extensions = {{"keyUsage", "critical,digitalSignature"},
                              {"extendedKeyUsage", "critical,OCSPSigning"},
                              {"noCheck", "ignored"}};
        return options;
    }
    Status statusSignedBy(const ZRMTestCertificate& signer) const {
        ZRMTestOcspOptions options;
        options.signer = signer;
        return statusOf(options);
    }

    ZRMDate now_{1'700'000'000};
    ZRMTestPki pki_{now_};
    ZRMTestCertificate authority_ = pki_.root("authority");
    ZRMTestCertificate leaf_ = pki_.leaf(authority_);
    ZRMLinuxOcspQuestion question_{leaf_.certificate, authority_.certificate};
};

TEST_F(ZRMLinuxOcsp, TheQuestionNamesTheCertificateAndHasANonce) {
    const auto der = question_.der();
    const auto* end = der.data();
    const std::unique_ptr<OCSP_REQUEST, decltype(&OCSP_REQUEST_free)> request(
        d2i_OCSP_REQUEST(nullptr, &end, static_cast<long>(der.size())), &OCSP_REQUEST_free);
    ASSERT_NE(request, nullptr);
    ASSERT_EQ(OCSP_request_onereq_count(request.get()), 1);
    EXPECT_GE(OCSP_REQUEST_get_ext_by_NID(request.get(), NID_id_pkix_OCSP_Nonce, -1), 0);
    const std::unique_ptr<OCSP_CERTID, decltype(&OCSP_CERTID_free)> id(
        OCSP_cert_to_id(EVP_sha1(), leaf_.certificate.get(), authority_.certificate.get()),
        &OCSP_CERTID_free);
    auto* const asked = OCSP_onereq_get0_id(OCSP_request_onereq_get0(request.get(), 0));
    EXPECT_EQ(OCSP_id_cmp(asked, id.get()), 0);
    EXPECT_NE(ZRMLinuxOcspQuestion(leaf_.certificate, authority_.certificate).der(), der);
}

TEST_F(ZRMLinuxOcsp, AGoodAndARevokedAnswerHoldUntilTheNextUpdate) {
    ZRMTestOcspOptions options;
    const auto good = read(pki_.ocspAnswer(leaf_, authority_, options));
    EXPECT_EQ(good.status, Status::Good);
    EXPECT_EQ(good.until, now_.addingSeconds(kZRMTestDay));
    options.status = ZRMTestOcspStatus::Revoked;
    const auto revoked = read(pki_.ocspAnswer(leaf_, authority_, options));
    EXPECT_EQ(revoked.status, Status::Revoked);
    EXPECT_EQ(revoked.until, now_.addingSeconds(kZRMTestDay));
}

TEST_F(ZRMLinuxOcsp, AnUnknownCertificateIsNoAnswer) {
    ZRMTestOcspOptions options;
    options.status = ZRMTestOcspStatus::Unknown;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, ANonceMayBeLeftOutButNotDiffer) {
    ZRMTestOcspOptions options;
    options.question = question_.der();
    EXPECT_EQ(statusOf(options), Status::Good);
    options.repeatsNonce = false;
    EXPECT_EQ(statusOf(options), Status::Good);
    options.repeatsNonce = true;
    options.changesNonce = true;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options.status = ZRMTestOcspStatus::Revoked;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, StaleAnswersAreNone) {
    ZRMTestOcspOptions options;
    options.nextUpdateSeconds = 100;
    EXPECT_EQ(statusOf(options, 100), Status::Good);
    EXPECT_EQ(statusOf(options, 101), Status::NoAnswer);
    options.status = ZRMTestOcspStatus::Revoked;
    EXPECT_EQ(statusOf(options, 101), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AnswersOfTheFutureAreNoneBeyondFiveMinutes) {
    ZRMTestOcspOptions options;
    options.thisUpdateSeconds = 300;
    EXPECT_EQ(statusOf(options), Status::Good);
    options.thisUpdateSeconds = 301;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    EXPECT_EQ(statusOf(options, 1), Status::Good);
}

TEST_F(ZRMLinuxOcsp, AnUpdateThatEndsBeforeItBeginsIsNoAnswer) {
    ZRMTestOcspOptions options;
    options.thisUpdateSeconds = 200;
    options.nextUpdateSeconds = 100;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, WithoutANextUpdateTheAnswerHoldsForTheMomentAndForADayAtMost) {
    ZRMTestOcspOptions options;
    options.thisUpdateSeconds = 0;
    options.nextUpdateSeconds.reset();
    const auto answer = read(pki_.ocspAnswer(leaf_, authority_, options), 50);
    EXPECT_EQ(answer.status, Status::Good);
    EXPECT_EQ(answer.until, now_.addingSeconds(50));
    EXPECT_EQ(statusOf(options, kZRMTestDay), Status::Good);
    EXPECT_EQ(statusOf(options, kZRMTestDay + 1), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AnAnswerProducedBeforeTheCertificateBeganIsNone) {
    ZRMTestOcspOptions options;
    options.producedSeconds = -kZRMTestDay;  // when the leaf's validity begins
    EXPECT_EQ(statusOf(options), Status::Good);
    options.producedSeconds = -kZRMTestDay - 1;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AnAnswerProducedInTheFutureIsNoneBeyondFiveMinutes) {
    ZRMTestOcspOptions options;
    options.producedSeconds = 300;
    EXPECT_EQ(statusOf(options), Status::Good);
    options.producedSeconds = 301;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AResponderThatTheIssuerCertifiedForItMayAnswer) {
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, responderOptions())), Status::Good);
    ZRMTestOcspOptions options;
    options.signer = pki_.issue(authority_, responderOptions());
    options.status = ZRMTestOcspStatus::Revoked;
    EXPECT_EQ(statusOf(options), Status::Revoked);
}

TEST_F(ZRMLinuxOcsp, AResponderNeedsTheExtendedKeyUsage) {
    auto options = responderOptions();
    options.extensions = {{"keyUsage", "critical,digitalSignature"}};
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    for (const char* usage : {"serverAuth", "anyExtendedKeyUsage"}) {
        options.extensions = {{"extendedKeyUsage", usage}};
        EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    }
    EXPECT_EQ(statusSignedBy(leaf_), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AResponderOfAnotherIssuerMayNotAnswer) {
    EXPECT_EQ(statusSignedBy(pki_.issue(pki_.root("foreign"), responderOptions())),
              Status::NoAnswer);
    auto options = ZRMTestPki::authorityOptions("authority");
    options.keyName = "impostor";
    const auto impostor = pki_.selfSigned(options);
    EXPECT_EQ(statusSignedBy(pki_.issue(impostor, responderOptions())), Status::NoAnswer);
    EXPECT_EQ(statusSignedBy(impostor), Status::NoAnswer);
    // Nor one below the issuer's own subordinates.
    EXPECT_EQ(statusSignedBy(pki_.issue(pki_.authority(authority_), responderOptions())),
              Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AResponderWhoseCertificateIsNoGoodMayNotAnswer) {
    auto options = responderOptions();
    options.untilSeconds = -1;
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    options = responderOptions();
    options.fromSeconds = 1;
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    options = responderOptions();
    options.keyBits = 1024;
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    options = responderOptions();
    options.digest = "SHA1";
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    options = responderOptions();
    options.extensions.emplace_back("1.2.3.4.5.6", "critical,DER:0500");
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
    options = responderOptions();
    options.extensions[0].second = "critical,keyEncipherment";
    EXPECT_EQ(statusSignedBy(pki_.issue(authority_, options)), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, UnknownCriticalExtensionsMakeItNoAnswer) {
    ZRMTestOcspOptions options;
    options.criticalExtension = "1.2.3.4.5.6";
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options = {};
    options.criticalSingleExtension = "1.2.3.4.5.6";
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, AnAnswerAboutAnotherCertificateIsNone) {
    const auto other = pki_.leaf(authority_);
    EXPECT_EQ(read(pki_.ocspAnswer(other, authority_)).status, Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, TheCertificateMayBeNamedByAnotherDigestThanInTheQuestion) {
    ZRMTestOcspOptions options;
    options.idDigest = "SHA256";
    EXPECT_EQ(statusOf(options), Status::Good);
}

TEST_F(ZRMLinuxOcsp, ASignatureOverAWeakDigestMakesItNoAnswer) {
    ZRMTestOcspOptions options;
    for (const char* digest : {"SHA1", "MD5"}) {
        options.digest = digest;
        EXPECT_EQ(statusOf(options), Status::NoAnswer);
    }
    options.digest = "SHA512";
    EXPECT_EQ(statusOf(options), Status::Good);
}

TEST_F(ZRMLinuxOcsp, ARefusalOfTheResponderIsNoAnswer) {
    const std::unique_ptr<OCSP_RESPONSE, decltype(&OCSP_RESPONSE_free)> response(
        OCSP_response_create(OCSP_RESPONSE_STATUS_TRYLATER, nullptr), &OCSP_RESPONSE_free);
    ZRMData der(static_cast<std::size_t>(i2d_OCSP_RESPONSE(response.get(), nullptr)));
    auto* cursor = der.data();
    i2d_OCSP_RESPONSE(response.get(), &cursor);
    EXPECT_EQ(read(der).status, Status::NoAnswer);
}

TEST_F(ZRMLinuxOcsp, GarbledAnswersAreNone) {
    ZRMTestOcspOptions options;
    options.status = ZRMTestOcspStatus::Revoked;
    const auto answer = pki_.ocspAnswer(leaf_, authority_, options);
    ASSERT_EQ(read(answer).status, Status::Revoked);
    EXPECT_EQ(read({}).status, Status::NoAnswer);
    EXPECT_EQ(read(zrm_dataFromText("<html>Welcome</html>")).status, Status::NoAnswer);
    for (std::size_t length = 0; length < answer.size(); length += 3) {
        EXPECT_EQ(read(ZRMData(answer.begin(), answer.begin() + static_cast<long>(length))).status,
                  Status::NoAnswer)
            << length;
    }
    auto longer = answer;
    longer.push_back(0);
    EXPECT_EQ(read(longer).status, Status::NoAnswer);
    // The signature is what ends the answer, but for the responder's own certificate.
    const auto certificateBytes = authority_.der().size();
    for (std::size_t index = 0; index + certificateBytes + 64 < answer.size(); index += 5) {
        auto changed = answer;
        changed[index] ^= 0x10U;
        EXPECT_NE(read(changed).status, Status::Good) << index;
    }
}

TEST_F(ZRMLinuxOcsp, AnAnswerLongerThanTheBoundIsNone) {
    EXPECT_EQ(read(ZRMData(kZRMMaximumOcspBytes + 1, 0x30)).status, Status::NoAnswer);
}

}  // namespace
