#include <gmock/gmock.h>

#include "ZRMJWS/ZRMJWS_Lib/Operations/ZRMJwsSignatureVerifyRS256Operation.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMJwsVerifierFixture.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kChainUrl = "https://pki.example/chain.pem";
constexpr const char* kChainPath = "/chain.pem";

class ZRMJwsSignatureVerifyRS256OperationTest : public ZRMJwsVerifierFixture {
  protected:
    std::shared_ptr<ZRMJwsSignatureVerifyRS256Operation> start(const ZRMJwsSignature& signature) {
        auto operation = std::make_shared<ZRMJwsSignatureVerifyRS256Operation>(
            device_.platform(), signature, payload_, configuration_);
        operation->start();
        return operation;
    }
    // The result of a signature, and its error in error_.
    ZRMJwsVerifyResult verify(const ZRMJwsSignature& signature) {
        const auto operation = start(signature);
        EXPECT_TRUE(device_.runUntil([&] { return operation->isFinished(); }, 3600));
        error_ = operation->error();
        return operation->result();
    }
    ZRMJwsVerifyResult verifyWith(ZRMDictionary headers) {
        return verify(signatureBy(leaf_, std::move(headers)));
    }
    void serveChain(const ZRMData& body, int status = 200) {
        auto answer = ZRMSimulatedAnswer::withBody(zrm_textFromData(body));
        answer.status = status;
        device_.network().handle(kChainPath, [answer](const ZRMUrlRequest&) { return answer; });
    }
    void pin(std::vector<ZRMData> pems) {
        configuration_ = ZRMJwsVerifierConfiguration(std::move(pems));
    }

    std::optional<ZRMError> error_;
};

using Operation = ZRMJwsSignatureVerifyRS256OperationTest;

TEST_F(Operation, ADeliveredChainToThePinnedRootVerifies) {
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultVerified);
    EXPECT_EQ(error_, std::nullopt);
    EXPECT_THAT(log_.errors(), ElementsAre("2 certificates was found in jws signature"));
}

TEST_F(Operation, TheRootMayBeDeliveredAsWell) {
    EXPECT_EQ(verifyWith(x5c({leaf_, intermediate_, root_})), ZRMJwsVerifyResultVerified);
    EXPECT_THAT(log_.errors(), ElementsAre("3 certificates was found in jws signature"));
}

TEST_F(Operation, LeafKeysOf2048To4096BitsVerify) {
    for (const unsigned bits : {2048U, 3072U, 4096U}) {
        auto options = ZRMTestPki::leafOptions();
        options.keyBits = bits;
        leaf_ = pki_.issue(intermediate_, options);
        EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultVerified) << bits;
        EXPECT_EQ(verify(mismatch()), ZRMJwsVerifyResultMismatch) << bits;
    }
}

TEST_F(Operation, WithNeitherChainNorAddressThereIsNoChain) {
    EXPECT_EQ(verifyWith({}), ZRMJwsVerifyResultNoChain);
    EXPECT_EQ(verify(signatureBy(leaf_, std::nullopt)), ZRMJwsVerifyResultNoChain);
    EXPECT_EQ(verifyWith({{"x5t", "abc"}, {"kid", "1"}}), ZRMJwsVerifyResultNoChain);
    EXPECT_EQ(error_, std::nullopt);
}

TEST_F(Operation, AnAddressThatIsNotOfTheWebIsNoChain) {
    for (const ZRMJsonValue& address : std::initializer_list<ZRMJsonValue>{
             "", "abc", "/chain.pem", "file:///etc/ssl/certs/ca.pem", "ftp://pki.example/chain",
             "data:text/plain,abc", "http://", "https:///chain.pem", "http://a b/", 1, nullptr,
             ZRMJsonArray{kChainUrl}}) {
        EXPECT_EQ(verifyWith({{"x5u", address}}), ZRMJwsVerifyResultNoChain) << address;
    }
    EXPECT_THAT(device_.network().requests(), IsEmpty());
}

TEST_F(Operation, AnAddressIsPostedToAndItsCertificateIsTheLeaf) {
    pin({root_.pem(), intermediate_.pem()});
    serveChain(leaf_.pem());
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultVerified);
    EXPECT_EQ(error_, std::nullopt);
    EXPECT_THAT(log_.errors(), IsEmpty());
    ASSERT_EQ(device_.network().requests().size(), 1u);
    const auto request = device_.network().requests().front().request;
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, kChainUrl);
    EXPECT_EQ(*request.headers.find("Content-Type"), "application/x-x509-ca-cert");
    EXPECT_EQ(request.body, nullptr);
}

TEST_F(Operation, AnAddressOverPlainHttpAndInCapitalsIsTaken) {
    pin({root_.pem(), intermediate_.pem()});
    serveChain(leaf_.pem());
    EXPECT_EQ(verifyWith(x5u("HTTP://pki.example/chain.pem")), ZRMJwsVerifyResultVerified);
}

TEST_F(Operation, OnlyTheFirstDownloadedCertificateCounts) {
    auto both = leaf_.pem();
    const auto second = intermediate_.pem();
    both.insert(both.end(), second.begin(), second.end());
    serveChain(both);
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(), ElementsAre("Untrusted certificate."));
}

TEST_F(Operation, AFailedDownloadIsResultFiveWithItsError) {
    device_.network().handle(kChainPath, [](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted);
    });
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultDownloadFailed);
    ASSERT_TRUE(error_);
    EXPECT_EQ(error_->code(), ZRMUrlErrorServerCertificateUntrusted);
    EXPECT_THAT(log_.errors(), ElementsAre("Download x509 certificate chain error: " +
                                           error_->localizedDescription()));
}

TEST_F(Operation, ADownloadIsRepeatedUpToAboutTwoMinutes) {
    device_.network().handle(kChainPath, [](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotConnectToHost);
    });
    const auto begin = device_.now();
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultDownloadFailed);
    std::vector<double> starts;
    for (const auto& record : device_.network().requests()) {
        starts.push_back(record.startedAt.secondsSince(begin));
    }
    EXPECT_THAT(starts, ElementsAre(0, 2, 6, 14, 30, 62, 126));
}

TEST_F(Operation, ADownloadThatSucceedsAtLastVerifies) {
    pin({root_.pem(), intermediate_.pem()});
    serveChain(leaf_.pem());
    device_.network().script(kChainPath, ZRMSimulatedAnswer::withStatus(503), 2);
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultVerified);
    EXPECT_EQ(device_.network().requests().size(), 3u);
}

TEST_F(Operation, AChainWithoutEndIsAFailedDownload) {
    auto body = leaf_.pem();
    body.resize(std::size_t{1024} * 1024 + 1, '\n');
    serveChain(body);
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultDownloadFailed);
    ASSERT_TRUE(error_);
    EXPECT_EQ(error_->code(), ZRMUrlErrorDataLengthExceedsMaximum);
}

TEST_F(Operation, AnAnswerWithoutACertificateIsABadCertificate) {
    serveChain(zrm_dataFromText("Not found"), 404);
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultBadCertificate);
    EXPECT_EQ(error_, std::nullopt);
    EXPECT_THAT(log_.errors(), ElementsAre("Cannot get certificate."));
    EXPECT_THAT(log_.verboses(), Contains("Can't extract public key from certificate chain."));
}

TEST_F(Operation, AChainIsTakenBeforeAnAddress) {
    auto headers = x5c({leaf_, intermediate_});
    headers["x5u"] = kChainUrl;
    EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultVerified);
    headers["x5c"] = nullptr;
    EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(device_.network().requests(), IsEmpty());
}

TEST_F(Operation, APinnedCertificateThatCannotBeReadIsABadCertificate) {
    pin({root_.pem(), zrm_dataFromText("no certificate")});
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultBadCertificate);
    serveChain(leaf_.pem());
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(log_.verboses(), Contains("Invalid certificate in pem data of pinned chain."));
    EXPECT_THAT(log_.verboses(), Not(Contains("Can't extract public key from certificate chain.")));
    EXPECT_THAT(device_.trust().requests(), IsEmpty());
}

TEST_F(Operation, AnEmptyChainIsABadCertificate) {
    pin({});
    EXPECT_EQ(verifyWith({{"x5c", ZRMJsonArray()}}), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(), ElementsAre("0 certificates was found in jws signature",
                                           "Certificate chain is empty."));
    EXPECT_THAT(log_.verboses(), Contains("Can't extract public key from certificate chain."));
}

TEST_F(Operation, WithoutADeliveredCertificateThePinnedOneIsALeafThatNothingAnchors) {
    for (const ZRMJsonValue& x5c : {ZRMJsonValue(ZRMJsonArray()), ZRMJsonValue("abc"),
                                    ZRMJsonValue(ZRMDictionary()), ZRMJsonValue(nullptr)}) {
        EXPECT_EQ(verify(signatureBy(root_, ZRMDictionary{{"x5c", x5c}})),
                  ZRMJwsVerifyResultBadCertificate);
    }
    EXPECT_THAT(log_.errors(), Contains("Untrusted certificate."));
}

TEST_F(Operation, AnElementThatIsNoCertificateKeepsItsPlace) {
    for (const ZRMJsonValue& first : {ZRMJsonValue("YWJj"), ZRMJsonValue("A"), ZRMJsonValue(""),
                                      ZRMJsonValue(7), ZRMJsonValue(nullptr)}) {
        auto headers = x5c({leaf_, intermediate_});
        auto& elements = headers["x5c"].as_array();
        elements.insert(elements.begin(), first);
        EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultBadCertificate) << first;
        EXPECT_EQ(log_.errors().back(), "Cannot get certificate.");
    }
    // Behind the leaf it is passed over.
    auto headers = x5c({leaf_, intermediate_});
    headers["x5c"].as_array().emplace_back("YWJj");
    EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultVerified);
}

TEST_F(Operation, UnknownCharactersInADeliveredCertificateAreIgnored) {
    auto headers = x5c({leaf_, intermediate_});
    std::string text(headers["x5c"].as_array()[0].as_string());
    text.insert(10, "\r\n -_*").insert(0, " ");
    headers["x5c"].as_array()[0] = text + "\n";
    EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultVerified);
}

TEST_F(Operation, AnUntrustedChainIsABadCertificate) {
    EXPECT_EQ(verifyWith(x5c({leaf_})), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(),
                ElementsAre("1 certificates was found in jws signature", "Untrusted certificate."));
    EXPECT_THAT(log_.verboses(), Contains("Can't extract public key from certificate chain."));
}

TEST_F(Operation, OnlyTheTrustResultsOneAndFourAreAccepted) {
    device_.trust().plug({});
    for (const auto result : {0, 1, 2, 3, 4, 5, 6, 7}) {
        device_.trust().setResult(static_cast<ZRMTrustResult>(result));
        EXPECT_EQ(verify(goodSignature()) == ZRMJwsVerifyResultVerified, result == 1 || result == 4)
            << result;
    }
}

TEST_F(Operation, AnchorsAreTheWholeChainButTheLeaf) {
    ASSERT_EQ(verify(goodSignature()), ZRMJwsVerifyResultVerified);
    ASSERT_EQ(device_.trust().requests().size(), 1u);
    const auto& request = device_.trust().requests().front();
    EXPECT_EQ(request.certificates,
              (std::vector<ZRMData>{leaf_.der(), intermediate_.der(), root_.der()}));
    EXPECT_EQ(request.anchors, (std::vector<ZRMData>{intermediate_.der(), root_.der()}));
    EXPECT_EQ(request.revocationMethods, 3u);
}

TEST_F(Operation, TheSwitchAnchorsAtThePinnedCertificatesAlone) {
    EXPECT_FALSE(configuration_.anchorsAtPinnedCertificatesOnly());
    configuration_ = configuration_.withAnchorsAtPinnedCertificatesOnly(true);
    ASSERT_EQ(verify(goodSignature()), ZRMJwsVerifyResultVerified);
    const auto& request = device_.trust().requests().front();
    EXPECT_EQ(request.certificates.size(), 3u);
    EXPECT_EQ(request.anchors, std::vector<ZRMData>{root_.der()});
    serveChain(leaf_.pem());
    EXPECT_EQ(verifyWith(x5u(kChainUrl)), ZRMJwsVerifyResultBadCertificate);
    EXPECT_EQ(device_.trust().requests().back().anchors, std::vector<ZRMData>{root_.der()});
}

TEST_F(Operation, AForeignRootThatComesAlongIsRefusedByTheSwitchAlone) {
    const auto foreign = pki_.root("foreign");
    const auto foreignLeaf = pki_.leaf(foreign);
    const auto signature = signatureBy(foreignLeaf, x5c({foreignLeaf, foreign}));
    EXPECT_EQ(verify(signature), ZRMJwsVerifyResultVerified);
    configuration_ = configuration_.withAnchorsAtPinnedCertificatesOnly(true);
    EXPECT_EQ(verify(signature), ZRMJwsVerifyResultBadCertificate);
    // One that stays at home is refused in both modes.
    const auto alone = signatureBy(foreignLeaf, x5c({foreignLeaf}));
    EXPECT_EQ(verify(alone), ZRMJwsVerifyResultBadCertificate);
    configuration_ = configuration_.withAnchorsAtPinnedCertificatesOnly(false);
    EXPECT_EQ(verify(alone), ZRMJwsVerifyResultBadCertificate);
}

TEST_F(Operation, ALeafDeliveredTwiceAnchorsItselfUnlessTheSwitchIsOn) {
    auto options = ZRMTestPki::leafOptions();
    options.name = "nobody's";
    const auto own = pki_.selfSigned(options);
    EXPECT_EQ(verify(signatureBy(own, x5c({own}))), ZRMJwsVerifyResultBadCertificate);
    EXPECT_EQ(verify(signatureBy(own, x5c({own, own}))), ZRMJwsVerifyResultVerified);
    configuration_ = configuration_.withAnchorsAtPinnedCertificatesOnly(true);
    EXPECT_EQ(verify(signatureBy(own, x5c({own, own}))), ZRMJwsVerifyResultBadCertificate);
}

TEST_F(Operation, ARevokedLeafIsABadCertificateUnlessNobodyIsAsked) {
    auto options = ZRMTestPki::leafOptions();
    options.extensions.emplace_back("authorityInfoAccess", "OCSP;URI:http://pki.example/ocsp");
    leaf_ = pki_.issue(intermediate_, options);
    device_.network().handle("/ocsp", [this](const ZRMUrlRequest& request) {
        ZRMTestOcspOptions answer;
        answer.status = ZRMTestOcspStatus::Revoked;
        answer.question = *request.body;
        return ZRMSimulatedAnswer::withBody(
            zrm_textFromData(pki_.ocspAnswer(leaf_, intermediate_, answer)));
    });
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultBadCertificate);
    EXPECT_EQ(log_.errors().back(), "Untrusted certificate.");
    configuration_ = configuration_.withRevocationChecks(false);
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultVerified);
    EXPECT_EQ(device_.network().requests().size(), 1u);
}

TEST_F(Operation, AnExpiredLeafIsABadCertificate) {
    device_.jumpWallClock(366 * kZRMTestDay);
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultBadCertificate);
}

TEST_F(Operation, ALeafWithoutAnRsaKeyIsABadCertificate) {
    auto options = ZRMTestPki::leafOptions();
    options.keyBits = 0;
    leaf_ = pki_.issue(intermediate_, options);
    EXPECT_EQ(verify(goodSignature()), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(), Not(Contains("Untrusted certificate.")));
    EXPECT_THAT(log_.verboses(), Contains("Can't extract public key from certificate chain."));
}

TEST_F(Operation, AnotherPayloadHeaderOrKeyIsAMismatch) {
    const auto good = goodSignature();
    EXPECT_EQ(verify(mismatch()), ZRMJwsVerifyResultMismatch);
    const auto other = base64Of(R"({"alg":"RS256" })");
    EXPECT_EQ(verify({good.signature(), other, good.headers()}), ZRMJwsVerifyResultMismatch);
    payload_ += "A";
    EXPECT_EQ(verify(good), ZRMJwsVerifyResultMismatch);
    EXPECT_EQ(error_, std::nullopt);
}

TEST_F(Operation, ASignatureOfAnyOtherLengthIsAMismatch) {
    const auto good = goodSignature();
    const auto bytes =
        zrm_dataFromBase64String(zrm_base64FromBase64UrlString(good.signature())).value();
    ASSERT_EQ(bytes.size(), 256u);
    for (const std::size_t length : {0U, 1U, 2U, 128U, 255U, 257U, 512U, 4096U}) {
        auto changed = bytes;
        changed.resize(length);
        EXPECT_EQ(verify({base64UrlOf(changed), good.protectedHeader(), good.headers()}),
                  ZRMJwsVerifyResultMismatch)
            << length;
    }
    auto led = bytes;
    led.insert(led.begin(), 0);
    EXPECT_EQ(verify({base64UrlOf(led), good.protectedHeader(), good.headers()}),
              ZRMJwsVerifyResultMismatch);
}

TEST_F(Operation, ASignatureThatIsNotBase64IsAMismatch) {
    const auto good = goodSignature();
    for (const auto& text : {std::string(), std::string("!"), std::string("A"),
                             good.signature() + "\n", " " + good.signature(),
                             good.signature().substr(0, 10) + "=" + good.signature().substr(10)}) {
        EXPECT_EQ(verify({text, good.protectedHeader(), good.headers()}),
                  ZRMJwsVerifyResultMismatch)
            << text;
    }
    // Padding that was kept is surplus only.
    EXPECT_EQ(verify({good.signature() + "==", good.protectedHeader(), good.headers()}),
              ZRMJwsVerifyResultVerified);
}

TEST_F(Operation, NothingInTheHeadersChoosesAnotherKey) {
    const auto other = pki_.selfSigned([] {
        auto options = ZRMTestPki::leafOptions();
        options.name = "other";
        return options;
    }());
    auto headers = x5c({leaf_, intermediate_});
    headers["jwk"] = ZRMDictionary{{"kty", "RSA"}, {"n", "abc"}, {"e", "AQAB"}};
    headers["jku"] = "https://pki.example/keys";
    headers["kid"] = "other";
    headers["alg"] = "None";
    EXPECT_EQ(verify(signatureBy(other, headers)), ZRMJwsVerifyResultMismatch);
    EXPECT_EQ(verify(signatureBy(leaf_, headers)), ZRMJwsVerifyResultVerified);
    EXPECT_THAT(device_.network().requests(), IsEmpty());
}

TEST_F(Operation, CancellingEndsTheDownloadAndFinishesWithoutResult) {
    device_.network().handle(kChainPath,
                             [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::never(); });
    const auto operation = start(signatureBy(leaf_, x5u(kChainUrl)));
    device_.advanceBy(1);
    ASSERT_FALSE(operation->isFinished());
    operation->cancel();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_TRUE(operation->isCancelled());
    device_.advanceBy(3600);
    EXPECT_EQ(operation->result(), ZRMJwsVerifyResultNone);
    EXPECT_EQ(operation->error(), std::nullopt);
    EXPECT_EQ(device_.network().requests().size(), 1u);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(Operation, CancelledDuringTheEvaluationItFinishesWithoutResult) {
    const auto operation = start(goodSignature());
    ASSERT_FALSE(operation->isFinished());
    operation->cancel();
    device_.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->result(), ZRMJwsVerifyResultNone);
}

TEST_F(Operation, CancelledBeforeItsStartItVerifiesNothing) {
    const auto operation = std::make_shared<ZRMJwsSignatureVerifyRS256Operation>(
        device_.platform(), goodSignature(), payload_, configuration_);
    operation->cancel();
    operation->start();
    device_.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->result(), ZRMJwsVerifyResultNone);
    EXPECT_THAT(device_.trust().requests(), IsEmpty());
}

TEST_F(Operation, AThousandDeliveredCertificatesAndATenMegabyteOneAreRefused) {
    auto headers = x5c({leaf_, intermediate_});
    auto& elements = headers["x5c"].as_array();
    elements.resize(1000, elements[1]);
    EXPECT_EQ(verifyWith(headers), ZRMJwsVerifyResultBadCertificate);
    EXPECT_THAT(log_.errors(), Contains("1000 certificates was found in jws signature"));
    EXPECT_EQ(verifyWith({{"x5c", ZRMJsonArray{std::string(10'000'000, 'M')}}}),
              ZRMJwsVerifyResultBadCertificate);
    EXPECT_EQ(log_.errors().back(), "Cannot get certificate.");
}

}  // namespace
