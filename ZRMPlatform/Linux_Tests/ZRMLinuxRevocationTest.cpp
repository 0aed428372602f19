// Whom an evaluation asks about revocation, what it makes of the answers, and what it keeps.
#include <gmock/gmock.h>

#include "ZRMPlatform/Linux/ZRMLinuxOcsp.h"
#include "ZRMPlatform/Linux/ZRMLinuxRevocationCache.h"
#include "ZRMPlatform/Linux/ZRMLinuxRevocationCheck.h"
#include "ZRMPlatform/Linux_Tests/ZRMLinuxTrustFixture.h"

namespace {

constexpr const char* kOcsp = "/ocsp";
constexpr const char* kCrl = "/list.crl";
constexpr const char* kRootOcsp = "/root-ocsp";

std::pair<std::string, std::string> responderAt(const std::string& path) {
    return {"authorityInfoAccess", "OCSP;URI:http://pki.example" + path};
}
std::pair<std::string, std::string> listAt(const std::string& path) {
    return {"crlDistributionPoints", "URI:http://pki.example" + path};
}

class ZRMLinuxRevocation : public ZRMLinuxTrustFixture {
  protected:
    static ZRMTestCertificateOptions leafWith(
        const std::vector<std::pair<std::string, std::string>>& extensions) {
        auto options = ZRMTestPki::leafOptions();
        options.extensions.insert(options.extensions.end(), extensions.begin(), extensions.end());
        return options;
    }

    static ZRMSimulatedAnswer answerWith(ZRMData body) {
        ZRMSimulatedAnswer answer;
        answer.body = std::move(body);
        return answer;
    }

    // A responder that always answers about the leaf (or the subject given).
    void serveOcsp(ZRMTestOcspOptions options) { serveOcsp(kOcsp, leaf_, intermediate_, options); }
    void serveOcsp(const std::string& path, const ZRMTestCertificate& subject,
                   const ZRMTestCertificate& issuer, ZRMTestOcspOptions options) {
        device_.network().handle(path, [=, this](const ZRMUrlRequest& request) {
            auto answered = options;
            answered.question = request.body ? *request.body : ZRMData();
            return answerWith(pki_.ocspAnswer(subject, issuer, answered));
        });
    }
    void serveOcsp(ZRMTestOcspStatus status) {
        ZRMTestOcspOptions options;
        options.status = status;
        serveOcsp(options);
    }
    void serveCrl(const std::vector<ZRMTestCertificate>& revoked) {
        ZRMTestCrlOptions options;
        options.revoked = revoked;
        device_.network().handle(kCrl, [crl = pki_.crl(intermediate_, options)](
                                           const ZRMUrlRequest&) { return answerWith(crl); });
    }

    ZRMTrustResult result() { return evaluate({leaf_, intermediate_}, {root_}).result; }
    std::size_t questionsTo(const std::string& path) {
        return device_.network().requestsTo(path).size();
    }

    ZRMTestCertificate root_ = pki_.root();
    ZRMTestCertificate intermediate_ = pki_.authority(root_);
    ZRMTestCertificate leaf_ =
        pki_.issue(intermediate_, leafWith({responderAt(kOcsp), listAt(kCrl)}));
};

TEST_F(ZRMLinuxRevocation, AResponderIsAskedByPostAndAGoodAnswerSettlesIt) {
    serveOcsp(ZRMTestOcspStatus::Good);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    ASSERT_EQ(questionsTo(kOcsp), 1u);
    const auto question = device_.network().requestsTo(kOcsp).front().request;
    EXPECT_EQ(question.method, "POST");
    EXPECT_EQ(*question.headers.find("Content-Type"), "application/ocsp-request");
    EXPECT_EQ(question.maximumResponseBytes, kZRMMaximumOcspBytes);
    EXPECT_EQ(questionsTo(kCrl), 0u);
}

TEST_F(ZRMLinuxRevocation, ARevokedLeafIsAFatalFailure) {
    serveOcsp(ZRMTestOcspStatus::Revoked);
    const auto evaluation = evaluate({leaf_, intermediate_}, {root_});
    EXPECT_EQ(evaluation.result, ZRMTrustResultFatalTrustFailure);
    EXPECT_EQ(evaluation.publicKey, nullptr);
    EXPECT_THAT(evaluation.reason, testing::HasSubstr("revoked"));
}

TEST_F(ZRMLinuxRevocation, WithoutAnAnswerOfTheRespondersTheListIsAsked) {
    serveOcsp(ZRMTestOcspStatus::Unknown);
    serveCrl({leaf_});
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
    ASSERT_EQ(questionsTo(kCrl), 1u);
    EXPECT_EQ(device_.network().requestsTo(kCrl).front().request.method, "GET");
}

TEST_F(ZRMLinuxRevocation, AListWithoutTheCertificateSettlesIt) {
    serveCrl({});
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kCrl), 1u);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kCrl), 1u) << "the answer was to be kept";
}

TEST_F(ZRMLinuxRevocation, NoAnswerAtAllLeavesTheTrust) {
    device_.setConnected(false);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.setConnected(true);
    device_.network().handleEverything(
        [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::withBody("garbage"); });
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.network().handleEverything(
        [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::withStatus(500); });
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kOcsp), 3u);
    EXPECT_EQ(questionsTo(kCrl), 3u);
}

TEST_F(ZRMLinuxRevocation, StaleAndFutureAnswersLeaveTheTrust) {
    ZRMTestOcspOptions options;
    options.status = ZRMTestOcspStatus::Revoked;
    options.nextUpdateSeconds = -1;
    serveOcsp(options);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    options.nextUpdateSeconds = kZRMTestDay;
    options.thisUpdateSeconds = 1000;
    serveOcsp(options);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
}

TEST_F(ZRMLinuxRevocation, AnAnswerWithAnotherStatusThan200IsNone) {
    const auto body = [this] {
        ZRMTestOcspOptions options;
        options.status = ZRMTestOcspStatus::Revoked;
        return pki_.ocspAnswer(leaf_, intermediate_, options);
    }();
    auto answer = answerWith(body);
    answer.status = 404;
    device_.network().script(kOcsp, answer);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.network().script(kOcsp, answerWith(body));
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
}

TEST_F(ZRMLinuxRevocation, AResponderThatNeverAnswersHoldsItUpForTenSeconds) {
    device_.network().handle(kOcsp,
                             [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::never(); });
    serveCrl({});
    const auto start = device_.now();
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_DOUBLE_EQ(device_.now().secondsSince(start), 10);
    EXPECT_EQ(questionsTo(kCrl), 1u);
}

TEST_F(ZRMLinuxRevocation, AllQuestionsTogetherWaitThirtySecondsAtMost) {
    std::string responders;
    std::string lists;
    for (const char* number : {"1", "2", "3", "4"}) {
        responders +=
            std::string(responders.empty() ? "" : ",") + "OCSP;URI:http://o.example/o" + number;
        lists += std::string(lists.empty() ? "" : ",") + "URI:http://c.example/c" + number;
    }
    leaf_ = pki_.issue(intermediate_, leafWith({{"authorityInfoAccess", responders},
                                                {"crlDistributionPoints", lists}}));
    device_.network().handleEverything(
        [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::withStatus(500).after(9); });
    const auto start = device_.now();
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_DOUBLE_EQ(device_.now().secondsSince(start), 30);
    // Three responders at most, then the lists as long as there is time.
    EXPECT_EQ(device_.network().requests().size(), 4u);
    EXPECT_EQ(questionsTo("/o4"), 0u);
    EXPECT_EQ(questionsTo("/c1"), 1u);
}

TEST_F(ZRMLinuxRevocation, AnAnswerWithoutEndIsNone) {
    device_.network().handle(kOcsp, [](const ZRMUrlRequest&) {
        return answerWith(ZRMData(kZRMMaximumOcspBytes + 1, 0x30));
    });
    device_.network().handle(kCrl, [](const ZRMUrlRequest&) {
        return answerWith(ZRMData(std::size_t{5} * 1024 * 1024, 0x30));
    });
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
}

TEST_F(ZRMLinuxRevocation, EveryCertificateBelowTheAnchorIsAskedAbout) {
    auto options = ZRMTestPki::authorityOptions("intermediate");
    options.extensions.push_back(responderAt(kRootOcsp));
    intermediate_ = pki_.issue(root_, options);
    leaf_ = pki_.issue(intermediate_, leafWith({responderAt(kOcsp)}));
    serveOcsp(ZRMTestOcspStatus::Good);
    ZRMTestOcspOptions revoked;
    revoked.status = ZRMTestOcspStatus::Revoked;
    serveOcsp(kRootOcsp, intermediate_, root_, revoked);
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
    // Although the intermediate is an anchor as well: a path that goes on is preferred.
    EXPECT_EQ(evaluate({leaf_, intermediate_}, {intermediate_, root_}).result,
              ZRMTrustResultFatalTrustFailure);
    // The anchor at the path's end is not asked about.
    device_.network().forgetRequests();
    EXPECT_EQ(evaluate({leaf_, intermediate_}, {intermediate_}).result, ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kRootOcsp), 0u);
}

TEST_F(ZRMLinuxRevocation, NobodyIsAskedAboutAChainThatIsNotGood) {
    serveOcsp(ZRMTestOcspStatus::Good);
    EXPECT_FALSE(evaluate({leaf_, intermediate_}, {pki_.root("other")}).isTrusted());
    EXPECT_TRUE(device_.network().requests().empty());
}

TEST_F(ZRMLinuxRevocation, OnlyTheMethodsAskedForAreUsed) {
    ZRMTrustRequest request{ders({leaf_, intermediate_}), ders({root_}), ZRMTrustRevocationNone};
    EXPECT_TRUE(evaluate(request).isTrusted());
    EXPECT_TRUE(device_.network().requests().empty());
    request.revocationMethods = ZRMTrustRevocationOcsp;
    EXPECT_TRUE(evaluate(request).isTrusted());
    EXPECT_EQ(questionsTo(kOcsp), 1u);
    EXPECT_EQ(questionsTo(kCrl), 0u);
    request.revocationMethods = ZRMTrustRevocationCrl;
    EXPECT_TRUE(evaluate(request).isTrusted());
    EXPECT_EQ(questionsTo(kOcsp), 1u);
    EXPECT_EQ(questionsTo(kCrl), 1u);
}

TEST_F(ZRMLinuxRevocation, WithoutAMethodAKeptAnswerDoesNotCountEither) {
    serveOcsp(ZRMTestOcspStatus::Revoked);
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
    EXPECT_TRUE(evaluate({ders({leaf_, intermediate_}), ders({root_}), ZRMTrustRevocationNone})
                    .isTrusted());
}

TEST_F(ZRMLinuxRevocation, AddressesThatAreNotOfTheWebAreNotAsked) {
    leaf_ = pki_.issue(
        intermediate_,
        leafWith(
            {{"authorityInfoAccess",
              "OCSP;URI:file:///etc/passwd,caIssuers;URI:http://pki.example/issuer,"
              "OCSP;URI:HTTP://pki.example/upper"},
             {"crlDistributionPoints", "URI:ldap://pki.example/list,URI:https://pki.example/c"}}));
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    ASSERT_EQ(device_.network().requests().size(), 2u);
    EXPECT_EQ(device_.network().requests()[0].path(), "/upper");
    EXPECT_EQ(device_.network().requests()[1].path(), "/c");
}

TEST_F(ZRMLinuxRevocation, AnswersAreKeptAsLongAsTheyHold) {
    ZRMTestOcspOptions options;
    options.nextUpdateSeconds = 600;
    serveOcsp(options);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.advanceBy(599);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kOcsp), 1u);
    device_.advanceBy(2);
    serveOcsp(ZRMTestOcspStatus::Revoked);
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
    EXPECT_EQ(questionsTo(kOcsp), 2u);
}

TEST_F(ZRMLinuxRevocation, AKeptAnswerIsNotUsedBeforeItsTime) {
    serveOcsp(ZRMTestOcspStatus::Good);  // in force since an hour
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.jumpWallClock(-2 * 3600);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kOcsp), 2u);
}

TEST_F(ZRMLinuxRevocation, TheLackOfAnAnswerIsNotKept) {
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    serveOcsp(ZRMTestOcspStatus::Revoked);
    EXPECT_EQ(result(), ZRMTrustResultFatalTrustFailure);
}

TEST_F(ZRMLinuxRevocation, AnAnswerWithoutANextUpdateIsNotKept) {
    ZRMTestOcspOptions options;
    options.nextUpdateSeconds.reset();
    serveOcsp(options);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    device_.advanceBy(1);
    EXPECT_EQ(result(), ZRMTrustResultUnspecified);
    EXPECT_EQ(questionsTo(kOcsp), 2u);
}

TEST_F(ZRMLinuxRevocation, TheCacheStaysSmall) {
    ZRMLinuxRevocationCache cache;
    const auto now = device_.now();
    std::vector<ZRMTestCertificate> leaves;
    for (std::size_t count = 0; count <= ZRMLinuxRevocationCache::kMaximumEntries; ++count) {
        leaves.push_back(pki_.leaf(intermediate_));
        // The first one runs out last.
        const auto until = now.addingSeconds(count == 0 ? 1e6 : 1e3 + static_cast<double>(count));
        cache.keep(leaves.back().certificate.get(), {ZRMLinuxRevocationStatus::Good, now, until});
    }
    const auto isKept = [&](std::size_t index) {
        return cache.find(leaves[index].certificate.get(), now).status ==
               ZRMLinuxRevocationStatus::Good;
    };
    EXPECT_TRUE(isKept(0));
    EXPECT_FALSE(isKept(1));
    EXPECT_TRUE(isKept(2));
    EXPECT_TRUE(isKept(ZRMLinuxRevocationCache::kMaximumEntries));
}

TEST_F(ZRMLinuxRevocation, EvaluationsAtTheSameTimeDoNotDisturbEachOther) {
    serveOcsp(ZRMTestOcspStatus::Revoked);
    auto otherLeaf = pki_.leaf(intermediate_);
    std::vector<ZRMTrustResult> results;
    for (const auto& leaf : {leaf_, otherLeaf, leaf_}) {
        trust_->evaluate(
            {ders({leaf, intermediate_}), ders({root_})},
            [&](const ZRMTrustEvaluation& evaluation) { results.push_back(evaluation.result); });
    }
    device_.advanceBy(60);
    EXPECT_THAT(results, testing::UnorderedElementsAre(ZRMTrustResultFatalTrustFailure,
                                                       ZRMTrustResultUnspecified,
                                                       ZRMTrustResultFatalTrustFailure));
}

TEST_F(ZRMLinuxRevocation, DroppedWhileItWaitsItEndsTheExchangeAndSaysNothing) {
    device_.network().handle(kOcsp,
                             [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::never(); });
    bool isAnswered = false;
    trust_->evaluate({ders({leaf_, intermediate_}), ders({root_})},
                     [&](const ZRMTrustEvaluation&) { isAnswered = true; });
    device_.advanceBy(1);
    ASSERT_EQ(questionsTo(kOcsp), 1u);
    trust_.reset();
    device_.advanceBy(3600);
    EXPECT_FALSE(isAnswered);
    EXPECT_EQ(questionsTo(kCrl), 0u);
}

}  // namespace
