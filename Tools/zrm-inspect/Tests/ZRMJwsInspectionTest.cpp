// The verdicts of the verifier on files.
#include <fstream>

#include <gtest/gtest.h>

#include "Tools/zrm-inspect/ZRMJwsInspection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMJwsVerifierFixture.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMJwsInspection : public ZRMJwsVerifierFixture {
  protected:
    ZRMJwsInspection() {
        directory_.writeFile("root.pem", zrm_textFromData(root_.pem()));
        options_.rootPath = directory_.below("root.pem");
    }

    ZRMInspection inspect(const std::vector<ZRMJwsSignature>& signatures) {
        const auto json = ZRMJwsObject::jsonFromJwsObject({payload_, signatures});
        directory_.writeFile("document", zrm_compactJsonText(json).value());
        return zrm_inspectJws(directory_.below("document"), options_);
    }
    static std::string textOf(const ZRMInspection& inspection) {
        return zrm_compactJsonText(inspection.report).value();
    }
    static ZRMJwsSignature corrupt() { return {"c2ln", "corrupt", ZRMDictionary()}; }

    ZRMTestDirectory directory_;
    ZRMJwsInspectionOptions options_;
};

TEST_F(ZRMJwsInspection, AVerifiedDocumentIsGood) {
    const auto inspection = inspect({goodSignature()});
    EXPECT_EQ(textOf(inspection), R"({"validity":2,"results":[6],"error":null})");
    EXPECT_TRUE(inspection.isGood);
}

TEST_F(ZRMJwsInspection, EverySignatureHasItsResultAndTheFirstErrorIsTold) {
    const auto inspection =
        inspect({goodSignature(), mismatch(), corrupt(), signatureBy(leaf_, ZRMDictionary())});
    EXPECT_EQ(textOf(inspection),
              R"({"validity":2,"results":[6,4,null,3],"error":{"domain":"ZRMJWSErrorDomain",)"
              R"("code":0,"message":"Unknown error."}})");
    EXPECT_FALSE(inspection.isGood);
}

TEST_F(ZRMJwsInspection, ADocumentWithoutSignaturesIsNotGood) {
    const auto inspection = inspect({});
    EXPECT_EQ(textOf(inspection),
              R"({"validity":2,"results":[],"error":{"domain":"ZRMJWSErrorDomain",)"
              R"("code":1,"message":"Signature not found."}})");
    EXPECT_FALSE(inspection.isGood);
}

TEST_F(ZRMJwsInspection, WithoutARootNothingIsPinned) {
    options_.rootPath.clear();
    EXPECT_TRUE(inspect({goodSignature()}).isGood) << "the delivered intermediate is an anchor";
    options_.pinnedAnchorsOnly = true;
    EXPECT_EQ(inspect({goodSignature()}).report.at("results"), ZRMJsonArray{2});
}

TEST_F(ZRMJwsInspection, PinnedAnchorsOnlyRefusesAForeignRoot) {
    const auto foreign = pki_.root("foreign");
    const auto foreignLeaf = pki_.leaf(foreign);
    const auto signature = signatureBy(foreignLeaf, x5c({foreignLeaf, foreign}));
    EXPECT_TRUE(inspect({signature}).isGood);
    options_.pinnedAnchorsOnly = true;
    EXPECT_EQ(inspect({signature}).report.at("results"), ZRMJsonArray{2});
    EXPECT_TRUE(inspect({goodSignature()}).isGood);
}

TEST_F(ZRMJwsInspection, TheTimeMayBeChosen) {
    options_.atSecondsSince1970 = device_.now().secondsSince1970 + 400 * kZRMTestDay;
    EXPECT_EQ(inspect({goodSignature()}).report.at("results"), ZRMJsonArray{2});
    options_.atSecondsSince1970 = device_.now().secondsSince1970 + 300 * kZRMTestDay;
    EXPECT_TRUE(inspect({goodSignature()}).isGood);
}

TEST_F(ZRMJwsInspection, RevocationIsAskedForUnlessToldNotTo) {
    auto leaf = ZRMTestPki::leafOptions();
    leaf.extensions.emplace_back("authorityInfoAccess", "OCSP;URI:http://pki.example/ocsp");
    leaf_ = pki_.issue(intermediate_, leaf);
    device_.network().handle("/ocsp", [this](const ZRMUrlRequest& request) {
        ZRMTestOcspOptions answer;
        answer.status = ZRMTestOcspStatus::Revoked;
        answer.question = *request.body;
        return ZRMSimulatedAnswer::withBody(
            zrm_textFromData(pki_.ocspAnswer(leaf_, intermediate_, answer)));
    });
    options_.withoutRevocation = true;
    EXPECT_TRUE(inspect({goodSignature()}).isGood);
    EXPECT_TRUE(device_.network().requests().empty());
    options_.withoutRevocation = false;
    EXPECT_EQ(inspect({goodSignature()}).report.at("results"), ZRMJsonArray{2});
}

TEST_F(ZRMJwsInspection, ARootThatIsNotThereOrNoCertificateIsToldApart) {
    options_.rootPath = directory_.below("nowhere");
    const auto missing = inspect({goodSignature()});
    EXPECT_FALSE(missing.isGood);
    EXPECT_EQ(missing.report.at("error").as_object().at("domain"), "NSPOSIXErrorDomain");
    directory_.writeFile("garbage", "garbage");
    options_.rootPath = directory_.below("garbage");
    EXPECT_EQ(inspect({goodSignature()}).report.at("results"), ZRMJsonArray{2});
}

}  // namespace
