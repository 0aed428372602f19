// Which lists of revoked certificates are relied on.
#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxCrl.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

using Status = ZRMLinuxRevocationStatus;

class ZRMLinuxCrl : public testing::Test {
  protected:
    ZRMLinuxRevocationAnswer read(const ZRMData& crl, double afterSeconds = 0) const {
        return zrm_readCrl(crl, leaf_.certificate, authority_.certificate,
                           now_.addingSeconds(afterSeconds));
    }
    Status statusOf(const ZRMTestCrlOptions& options, double afterSeconds = 0) const {
        return read(pki_.crl(authority_, options), afterSeconds).status;
    }
    ZRMTestCrlOptions revoking() const {
        ZRMTestCrlOptions options;
        options.revoked = {leaf_};
        return options;
    }

    ZRMDate now_{1'700'000'000};
    ZRMTestPki pki_{now_};
    ZRMTestCertificate authority_ = pki_.root("authority");
    ZRMTestCertificate leaf_ = pki_.leaf(authority_);
};

TEST_F(ZRMLinuxCrl, ACertificateThatIsNotListedIsGoodUntilTheNextUpdate) {
    ZRMTestCrlOptions options;
    options.revoked = {pki_.leaf(authority_)};
    const auto answer = read(pki_.crl(authority_, options));
    EXPECT_EQ(answer.status, Status::Good);
    EXPECT_EQ(answer.until, now_.addingSeconds(kZRMTestDay));
    EXPECT_EQ(statusOf({}), Status::Good);
}

TEST_F(ZRMLinuxCrl, AListedCertificateIsRevoked) {
    auto options = revoking();
    EXPECT_EQ(statusOf(options), Status::Revoked);
    options.revoked.insert(options.revoked.begin(), pki_.leaf(authority_));
    EXPECT_EQ(statusOf(options), Status::Revoked);
}

TEST_F(ZRMLinuxCrl, StaleListsAreNoAnswer) {
    EXPECT_EQ(statusOf(revoking(), kZRMTestDay - 1), Status::Revoked);
    EXPECT_EQ(statusOf(revoking(), kZRMTestDay + 1), Status::NoAnswer);
    EXPECT_EQ(statusOf({}, kZRMTestDay + 1), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, ListsOfTheFutureAreNoAnswerBeyondFiveMinutes) {
    auto options = revoking();
    options.thisUpdateSeconds = 300;
    EXPECT_EQ(statusOf(options), Status::Revoked);
    options.thisUpdateSeconds = 301;
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, AListWithoutANextUpdateIsNoAnswer) {
    auto options = revoking();
    options.nextUpdateSeconds.reset();
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, AListOfAnotherIssuerIsNoAnswer) {
    EXPECT_EQ(read(pki_.crl(pki_.root("foreign"), revoking())).status, Status::NoAnswer);
    auto options = revoking();
    options.key = ZRMTestPki::key("impostor");
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, AnIssuerWithoutTheRightToSignListsIsNoAnswer) {
    auto options = ZRMTestPki::authorityOptions("no lists");
    options.extensions[1].second = "critical,keyCertSign";
    authority_ = pki_.selfSigned(options);
    leaf_ = pki_.leaf(authority_);
    EXPECT_EQ(statusOf(revoking()), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, UnknownCriticalExtensionsAndListsOfChangesAreNoAnswer) {
    auto options = revoking();
    options.extensions = {{"1.2.3.4.5.6", "critical,DER:0500"}};
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options.extensions = {{"1.2.3.4.5.6", "DER:0500"}};
    EXPECT_EQ(statusOf(options), Status::Revoked);
    options.extensions = {{"deltaCRL", "critical,DER:020101"}};
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options.revoked.clear();
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, AListForOtherKindsOfCertificatesIsNoAnswer) {
    auto options = revoking();
    // An issuing distribution point that covers authorities only; one that covers users only.
    options.extensions = {{"2.5.29.28", "critical,DER:30038201FF"}};
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options.extensions = {{"2.5.29.28", "critical,DER:30038101FF"}};
    EXPECT_EQ(statusOf(options), Status::Revoked);
}

TEST_F(ZRMLinuxCrl, ASignatureOverAWeakDigestMakesItNoAnswer) {
    auto options = revoking();
    options.digest = "SHA1";
    EXPECT_EQ(statusOf(options), Status::NoAnswer);
    options.digest = "SHA384";
    EXPECT_EQ(statusOf(options), Status::Revoked);
}

TEST_F(ZRMLinuxCrl, GarbledListsAreNoAnswer) {
    const auto crl = pki_.crl(authority_, revoking());
    EXPECT_EQ(read({}).status, Status::NoAnswer);
    EXPECT_EQ(read(zrm_dataFromText("-----BEGIN X509 CRL-----")).status, Status::NoAnswer);
    for (std::size_t length = 0; length < crl.size(); length += 3) {
        EXPECT_EQ(read(ZRMData(crl.begin(), crl.begin() + static_cast<long>(length))).status,
                  Status::NoAnswer)
            << length;
    }
    for (std::size_t index = 0; index < crl.size(); index += 5) {
        auto changed = crl;
        changed[index] ^= 0x10U;
        EXPECT_EQ(read(changed).status, Status::NoAnswer) << index;
    }
    auto longer = crl;
    longer.push_back(0);
    EXPECT_EQ(read(longer).status, Status::NoAnswer);
}

TEST_F(ZRMLinuxCrl, AListLongerThanTheBoundIsNoAnswer) {
    EXPECT_EQ(read(ZRMData(kZRMMaximumCrlBytes + 1, 0x30)).status, Status::NoAnswer);
}

}  // namespace
