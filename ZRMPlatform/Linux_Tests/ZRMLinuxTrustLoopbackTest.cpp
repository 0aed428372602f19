// The whole body on real threads, with a real responder over the loopback.
#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxClock.h"
#include "ZRMPlatform/Linux/ZRMLinuxTrust.h"
#include "ZRMPlatform/Linux_Tests/ZRMLinuxUrlSessionFixture.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

class ZRMLinuxTrustLoopback : public ZRMLinuxUrlSessionFixture {
  protected:
    ZRMTrustEvaluation evaluate(ZRMTrust& trust, const ZRMTestCertificate& leaf) {
        const auto answers = std::make_shared<ZRMAwaited<std::vector<ZRMTrustEvaluation>>>();
        trust.evaluate({{leaf.der()}, {root_.der()}}, [answers](ZRMTrustEvaluation evaluation) {
            answers->change([&](auto& held) { held.push_back(std::move(evaluation)); });
        });
        EXPECT_TRUE(answers->waitUntil([](const auto& held) { return !held.empty(); }));
        const auto held = answers->value();
        return held.empty() ? ZRMTrustEvaluation() : held.front();
    }
    static bool send(ZRMTestConnection& connection, const ZRMData& answer) {
        return connection.write(zrm_testHttpAnswer(200, zrm_textFromData(answer),
                                                   "Content-Type: application/ocsp-response\r\n"));
    }
    ZRMTestCertificate leafWithResponder(const std::string& url) const {
        auto options = ZRMTestPki::leafOptions();
        options.extensions.emplace_back("authorityInfoAccess", "OCSP;URI:" + url);
        return pki_.issue(root_, options);
    }

    ZRMTestPki pki_{ZRMLinuxClock().now()};
    ZRMTestCertificate root_ = pki_.root();
    std::shared_ptr<ZRMTrust> trust_ =
        std::make_shared<ZRMLinuxTrust>(executor_, std::make_shared<ZRMLinuxClock>(), factory());
};

TEST_F(ZRMLinuxTrustLoopback, AResponderThatSaysGoodIsAskedOnce) {
    ZRMTestCertificate leaf;
    const ZRMTestHttpServer server([&](const ZRMTestHttpRequest& request, ZRMTestConnection& peer) {
        ZRMTestOcspOptions options;
        options.question = zrm_dataFromText(request.body);
        return send(peer, pki_.ocspAnswer(leaf, root_, options));
    });
    leaf = leafWithResponder(server.url("/ocsp"));
    EXPECT_TRUE(evaluate(*trust_, leaf).isTrusted());
    const auto again = evaluate(*trust_, leaf);
    EXPECT_EQ(again.result, ZRMTrustResultUnspecified);
    EXPECT_NE(again.publicKey, nullptr);
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST_F(ZRMLinuxTrustLoopback, AResponderThatSaysRevokedEndsTheTrust) {
    ZRMTestCertificate leaf;
    const ZRMTestHttpServer server([&](const ZRMTestHttpRequest& request, ZRMTestConnection& peer) {
        ZRMTestOcspOptions options;
        options.status = ZRMTestOcspStatus::Revoked;
        options.question = zrm_dataFromText(request.body);
        return send(peer, pki_.ocspAnswer(leaf, root_, options));
    });
    leaf = leafWithResponder(server.url("/ocsp"));
    EXPECT_EQ(evaluate(*trust_, leaf).result, ZRMTrustResultFatalTrustFailure);
}

TEST_F(ZRMLinuxTrustLoopback, AnAnswerLongerThanTheBoundBreaksOffAndIsNone) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& peer) {
        return peer.write(zrm_testHttpAnswer(200, std::string(1 << 20, '0')));
    });
    EXPECT_TRUE(evaluate(*trust_, leafWithResponder(server.url("/ocsp"))).isTrusted());
}

TEST_F(ZRMLinuxTrustLoopback, WhereNobodyListensTheTrustStays) {
    const auto url = [] {
        const ZRMTestHttpServer gone([](const auto&, auto&) { return false; });
        return gone.url("/ocsp");
    }();
    EXPECT_TRUE(evaluate(*trust_, leafWithResponder(url)).isTrusted());
}

TEST_F(ZRMLinuxTrustLoopback, ManyThreadsEvaluateAtTheSameTime) {
    const auto leaf = pki_.leaf(root_);
    const auto answers = std::make_shared<ZRMAwaited<std::vector<ZRMTrustResult>>>();
    constexpr std::size_t kCount = 50;
    for (std::size_t count = 0; count < kCount; ++count) {
        trust_->evaluate(
            {{leaf.der()}, {root_.der()}}, [answers](const ZRMTrustEvaluation& evaluation) {
                answers->change([&](auto& held) { held.push_back(evaluation.result); });
            });
    }
    EXPECT_TRUE(answers->waitUntil([](const auto& held) { return held.size() == kCount; }));
    EXPECT_EQ(answers->value(), std::vector<ZRMTrustResult>(kCount, ZRMTrustResultUnspecified));
}

}  // namespace
