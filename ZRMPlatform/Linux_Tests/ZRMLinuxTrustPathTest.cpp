// Path validation: what a chain has to be for its leaf to be trusted.
#include <gmock/gmock.h>

#include "ZRMPlatform/Linux_Tests/ZRMLinuxTrustFixture.h"

namespace {

using testing::HasSubstr;

class ZRMLinuxTrustPath : public ZRMLinuxTrustFixture {
  protected:
    void expectRefused(const ZRMTrustEvaluation& evaluation, const std::string& reason) {
        EXPECT_EQ(evaluation.result, ZRMTrustResultRecoverableTrustFailure);
        EXPECT_FALSE(evaluation.isTrusted());
        EXPECT_EQ(evaluation.publicKey, nullptr);
        EXPECT_THAT(evaluation.reason, HasSubstr(reason));
    }
    // Trust in a leaf below an intermediate with those options, the root being the anchor.
    ZRMTrustEvaluation evaluateBelow(const ZRMTestCertificateOptions& intermediate) {
        const auto authority = pki_.issue(root_, intermediate);
        return evaluate({pki_.leaf(authority), authority}, {root_});
    }
    ZRMTrustEvaluation evaluateLeaf(const ZRMTestCertificateOptions& leaf) {
        return evaluate({pki_.issue(intermediate_, leaf), intermediate_}, {root_});
    }

    ZRMTestCertificate root_ = pki_.root();
    ZRMTestCertificate intermediate_ = pki_.authority(root_);
    ZRMTestCertificate leaf_ = pki_.leaf(intermediate_);
};

TEST_F(ZRMLinuxTrustPath, AGoodChainIsTrustedAndYieldsTheLeafsKey) {
    const auto evaluation = evaluate({leaf_, intermediate_, root_}, {root_});
    EXPECT_EQ(evaluation.result, ZRMTrustResultUnspecified);
    EXPECT_TRUE(evaluation.isTrusted());
    EXPECT_EQ(evaluation.reason, "");
    ASSERT_NE(evaluation.publicKey, nullptr);
    EXPECT_EQ(evaluation.publicKey->blockSize(), 256u);
}

TEST_F(ZRMLinuxTrustPath, TheOrderBehindTheLeafAndWhatIsOfNoUseDoNotMatter) {
    const auto other = pki_.root("other");
    EXPECT_TRUE(evaluate({leaf_, other, root_, intermediate_, leaf_}, {other, root_}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, AnyAnchorCompletesThePath) {
    EXPECT_TRUE(evaluate({leaf_}, {intermediate_}).isTrusted());
    EXPECT_TRUE(evaluate({leaf_, intermediate_}, {intermediate_}).isTrusted());
    EXPECT_TRUE(evaluate({leaf_}, {leaf_}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, WithoutAnAnchorNothingIsTrusted) {
    EXPECT_FALSE(evaluate({leaf_, intermediate_, root_}, {}).isTrusted());
    EXPECT_FALSE(evaluate({root_}, {}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, ADeliveredRootIsNoAnchor) {
    const auto foreign = pki_.root("foreign");
    expectRefused(evaluate({pki_.leaf(foreign), foreign}, {root_}), "self-signed");
}

TEST_F(ZRMLinuxTrustPath, AMissingIntermediateBreaksThePath) {
    expectRefused(evaluate({leaf_, root_}, {root_}), "issuer certificate");
}

TEST_F(ZRMLinuxTrustPath, ACertificateOfTheRootsNameWithAnotherKeyIsNotTheRoot) {
    auto options = ZRMTestPki::authorityOptions("root");
    options.keyName = "impostor";
    options.hasKeyIdentifiers = false;
    const auto impostor = pki_.selfSigned(options);
    auto leaf = ZRMTestPki::leafOptions();
    leaf.hasKeyIdentifiers = false;
    EXPECT_FALSE(evaluate({pki_.issue(impostor, leaf), impostor}, {root_}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, AnExpiredOrNotYetValidCertificateIsRefusedAtEveryPlace) {
    auto leaf = ZRMTestPki::leafOptions();
    leaf.untilSeconds = -1;
    expectRefused(evaluateLeaf(leaf), "expired");
    leaf = ZRMTestPki::leafOptions();
    leaf.fromSeconds = 60;
    expectRefused(evaluateLeaf(leaf), "not yet valid");
    auto authority = ZRMTestPki::authorityOptions("intermediate");
    authority.untilSeconds = -1;
    expectRefused(evaluateBelow(authority), "expired");
    authority.fromSeconds = 60;
    authority.untilSeconds = 600;
    expectRefused(evaluateBelow(authority), "not yet valid");
    auto oldRoot = ZRMTestPki::authorityOptions("old root");
    oldRoot.untilSeconds = -1;
    const auto expired = pki_.selfSigned(oldRoot);
    expectRefused(evaluate({pki_.leaf(expired)}, {expired}), "expired");
}

TEST_F(ZRMLinuxTrustPath, TheTimeIsThatOfTheDevicesClock) {
    auto options = ZRMTestPki::leafOptions();
    options.fromSeconds = 100;
    options.untilSeconds = 200;
    EXPECT_FALSE(evaluateLeaf(options).isTrusted());
    device_.jumpWallClock(150);
    EXPECT_TRUE(evaluateLeaf(options).isTrusted());
    device_.jumpWallClock(100);
    EXPECT_FALSE(evaluateLeaf(options).isTrusted());
    device_.jumpWallClock(-100);
    EXPECT_TRUE(evaluateLeaf(options).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, AnIssuerNeedsTheAuthorityBit) {
    auto options = ZRMTestPki::authorityOptions("intermediate");
    options.extensions = {{"keyUsage", "critical,keyCertSign"}};
    EXPECT_FALSE(evaluateBelow(options).isTrusted());
    options.extensions = {{"basicConstraints", "critical,CA:FALSE"}};
    EXPECT_FALSE(evaluateBelow(options).isTrusted());
    options.extensions = {};
    EXPECT_FALSE(evaluateBelow(options).isTrusted());
    // An anchor, too, has to be one.
    options.extensions = {{"keyUsage", "critical,keyCertSign"}};
    const auto anchor = pki_.issue(root_, options);
    EXPECT_FALSE(evaluate({pki_.leaf(anchor)}, {anchor}).isTrusted());
    // So has a root of the time before there was the bit.
    auto old = ZRMTestPki::authorityOptions("old root");
    old.isVersion1 = true;
    const auto oldRoot = pki_.selfSigned(old);
    auto leaf = ZRMTestPki::leafOptions();
    leaf.hasKeyIdentifiers = false;
    expectRefused(evaluate({pki_.issue(oldRoot, leaf)}, {oldRoot}), "no authority");
}

TEST_F(ZRMLinuxTrustPath, ALeafIssuesNothingEvenAsAnAnchor) {
    const auto forged = pki_.issue(leaf_, ZRMTestPki::leafOptions());
    EXPECT_FALSE(evaluate({forged, leaf_, intermediate_}, {root_}).isTrusted());
    EXPECT_FALSE(
        evaluate({forged, leaf_, intermediate_}, {leaf_, intermediate_, root_}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, AnIssuerWithoutTheRightToSignCertificatesIsRefused) {
    auto options = ZRMTestPki::authorityOptions("intermediate");
    options.extensions = {{"basicConstraints", "critical,CA:TRUE"},
                          {"keyUsage", "critical,cRLSign,digitalSignature"}};
    EXPECT_FALSE(evaluateBelow(options).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, ALeafWhoseKeyIsNotForSigningDataIsRefused) {
    auto options = ZRMTestPki::leafOptions();
    options.extensions = {{"keyUsage", "critical,keyEncipherment"}};
    expectRefused(evaluateLeaf(options), "not for signing");
    options.extensions = {{"keyUsage", "critical,nonRepudiation"}};
    EXPECT_TRUE(evaluateLeaf(options).isTrusted());
    options.extensions = {};
    EXPECT_TRUE(evaluateLeaf(options).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, ThePathLengthBinds) {
    auto options = ZRMTestPki::authorityOptions("short");
    options.extensions[0].second = "critical,CA:TRUE,pathlen:0";
    const auto last = pki_.issue(root_, options);
    EXPECT_TRUE(evaluate({pki_.leaf(last), last}, {root_}).isTrusted());
    const auto below = pki_.authority(last, "below");
    expectRefused(evaluate({pki_.leaf(below), below, last}, {root_}), "path length");
}

TEST_F(ZRMLinuxTrustPath, ASelfIssuedAuthorityDoesNotCountForThePathLength) {
    auto options = ZRMTestPki::authorityOptions("short");
    options.extensions[0].second = "critical,CA:TRUE,pathlen:0";
    const auto oldKey = pki_.issue(root_, options);
    options.keyName = "its new key";
    const auto newKey = pki_.issue(oldKey, options);
    EXPECT_TRUE(evaluate({pki_.leaf(newKey), newKey, oldKey}, {root_}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, AnUnknownCriticalExtensionIsRefusedAtEveryPlace) {
    auto leaf = ZRMTestPki::leafOptions();
    leaf.extensions.emplace_back("1.2.3.4.5.6", "critical,DER:0500");
    expectRefused(evaluateLeaf(leaf), "critical extension");
    leaf.extensions.back().second = "DER:0500";
    EXPECT_TRUE(evaluateLeaf(leaf).isTrusted());
    auto authority = ZRMTestPki::authorityOptions("intermediate");
    authority.extensions.emplace_back("1.2.3.4.5.6", "critical,DER:0500");
    expectRefused(evaluateBelow(authority), "critical extension");
}

TEST_F(ZRMLinuxTrustPath, NameConstraintsBind) {
    auto options = ZRMTestPki::authorityOptions("constrained");
    options.extensions.emplace_back("nameConstraints", "critical,permitted;DNS:good.example");
    const auto constrained = pki_.issue(root_, options);
    auto leaf = ZRMTestPki::leafOptions();
    leaf.extensions.emplace_back("subjectAltName", "DNS:a.good.example");
    EXPECT_TRUE(evaluate({pki_.issue(constrained, leaf), constrained}, {root_}).isTrusted());
    leaf.extensions.back().second = "DNS:evil.example";
    expectRefused(evaluate({pki_.issue(constrained, leaf), constrained}, {root_}), "subtree");
}

TEST_F(ZRMLinuxTrustPath, KeysBelow2048BitsAreRefusedAtEveryPlace) {
    auto leaf = ZRMTestPki::leafOptions();
    leaf.keyBits = 1024;
    expectRefused(evaluateLeaf(leaf), "key too weak");
    auto authority = ZRMTestPki::authorityOptions("intermediate");
    authority.keyBits = 1024;
    expectRefused(evaluateBelow(authority), "key too weak");
    auto weakRoot = ZRMTestPki::authorityOptions("weak root");
    weakRoot.keyBits = 1024;
    const auto anchor = pki_.selfSigned(weakRoot);
    expectRefused(evaluate({pki_.leaf(anchor)}, {anchor}), "key too weak");
}

TEST_F(ZRMLinuxTrustPath, KeysOf2048To4096BitsAreGood) {
    for (const unsigned bits : {2048U, 3072U, 4096U}) {
        auto options = ZRMTestPki::leafOptions();
        options.keyBits = bits;
        const auto evaluation = evaluateLeaf(options);
        ASSERT_NE(evaluation.publicKey, nullptr) << bits;
        EXPECT_EQ(evaluation.publicKey->blockSize(), bits / 8);
    }
}

TEST_F(ZRMLinuxTrustPath, SignaturesOverSha1AndMd5AreRefusedButForTheRootsOwn) {
    for (const char* digest : {"SHA1", "MD5"}) {
        auto leaf = ZRMTestPki::leafOptions();
        leaf.digest = digest;
        expectRefused(evaluateLeaf(leaf), "too weak");
        auto authority = ZRMTestPki::authorityOptions("intermediate");
        authority.digest = digest;
        expectRefused(evaluateBelow(authority), "too weak");
    }
    auto options = ZRMTestPki::authorityOptions("old root");
    options.digest = "SHA1";
    const auto anchor = pki_.selfSigned(options);
    EXPECT_TRUE(evaluate({pki_.leaf(anchor)}, {anchor}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, ATrustedLeafWithoutAnRsaKeyYieldsNoKey) {
    auto options = ZRMTestPki::leafOptions();
    options.keyBits = 0;
    const auto evaluation = evaluateLeaf(options);
    EXPECT_TRUE(evaluation.isTrusted());
    EXPECT_EQ(evaluation.publicKey, nullptr);
}

TEST_F(ZRMLinuxTrustPath, AChangedByteAnywhereInTheLeafIsRefusedOrMakesItNoCertificate) {
    const auto der = leaf_.der();
    for (std::size_t index = 0; index < der.size(); index += 7) {
        auto changed = der;
        changed[index] ^= 0x41U;
        EXPECT_FALSE(evaluate({{changed, intermediate_.der()}, {root_.der()}}).isTrusted())
            << index;
    }
}

TEST_F(ZRMLinuxTrustPath, AuthoritiesThatCertifyEachOtherEndInNoLoop) {
    const auto first = pki_.root("first");
    const auto second = pki_.root("second");
    const auto firstBySecond = pki_.authority(second, "first");
    const auto secondByFirst = pki_.authority(first, "second");
    EXPECT_FALSE(evaluate({pki_.leaf(first), firstBySecond, secondByFirst}, {root_}).isTrusted());
    EXPECT_TRUE(evaluate({pki_.leaf(first), firstBySecond, secondByFirst}, {second}).isTrusted());
    // Each is an anchor: the path is complete at once.
    EXPECT_TRUE(evaluate({pki_.leaf(first)}, {firstBySecond, secondByFirst}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, APathOfMoreThanSixteenIssuersIsRefused) {
    std::vector<ZRMTestCertificate> chain{pki_.authority(root_, "1")};
    for (int number = 2; number <= 20; ++number) {
        auto options = ZRMTestPki::authorityOptions(std::to_string(number));
        options.keyName = "shared";
        chain.insert(chain.begin(), pki_.issue(chain.front(), options));
    }
    chain.insert(chain.begin(), pki_.leaf(chain.front()));
    expectRefused(evaluate(chain, {root_}), "too long");
}

TEST_F(ZRMLinuxTrustPath, AThousandCertificatesAreRefusedWithoutReadingThem) {
    const std::vector<ZRMData> many(1000, intermediate_.der());
    auto chain = many;
    chain.insert(chain.begin(), leaf_.der());
    expectRefused(evaluate({chain, {root_.der()}}), "too many");
    expectRefused(evaluate({{leaf_.der()}, many}), "too many");
}

TEST_F(ZRMLinuxTrustPath, SixtyFourCertificatesOfOneNameAreBoundedWork) {
    std::vector<ZRMTestCertificate> chain{leaf_};
    auto options = ZRMTestPki::authorityOptions("intermediate");
    options.keyName = "impostor";
    for (int number = 0; number < 62; ++number) {
        chain.push_back(pki_.issue(root_, options));
    }
    chain.push_back(intermediate_);
    EXPECT_EQ(evaluate(chain, {root_}).result, ZRMTrustResultUnspecified);
}

TEST_F(ZRMLinuxTrustPath, ACertificateOfTenMegabytesIsNone) {
    auto options = ZRMTestPki::leafOptions();
    options.extensions.emplace_back("1.2.3.4.5.6", "DER:0482FFFF" + std::string(2 * 0xFFFF, '0'));
    const auto large = pki_.issue(intermediate_, options);
    EXPECT_TRUE(evaluate({large, intermediate_}, {root_}).isTrusted());
    const ZRMData huge(10'000'000, 0x30);
    EXPECT_EQ(evaluate({{huge, intermediate_.der()}, {root_.der()}}).result, ZRMTrustResultInvalid);
    EXPECT_TRUE(
        evaluate({{leaf_.der(), huge, intermediate_.der()}, {huge, root_.der()}}).isTrusted());
}

TEST_F(ZRMLinuxTrustPath, GarbageIsNoCertificateAndIsPassedOverBehindTheLeaf) {
    const auto der = leaf_.der();
    auto longer = der;
    longer.push_back(0);
    const ZRMData shorter(der.begin(), der.end() - 1);
    for (const auto& garbage : {ZRMData(), ZRMData{0x30}, ZRMData(100, 0xff), longer, shorter}) {
        EXPECT_EQ(evaluate({{garbage}, {root_.der()}}).result, ZRMTrustResultInvalid);
        EXPECT_TRUE(
            evaluate({{der, garbage, intermediate_.der()}, {garbage, root_.der()}}).isTrusted());
    }
}

TEST_F(ZRMLinuxTrustPath, WithoutACertificateThereIsNothingToEvaluate) {
    EXPECT_EQ(evaluate(ZRMTrustRequest{}).result, ZRMTrustResultInvalid);
    EXPECT_EQ(evaluate({{}, {root_.der()}}).result, ZRMTrustResultInvalid);
}

}  // namespace
