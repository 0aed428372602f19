// What ZRMUrlSession.h promises.
#include <atomic>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

class ZRMUrlSessionContract : public ZRMContract {
  protected:
    // Where an exchange ends up; late completions may come after the test.
    struct Arrived {
        std::mutex mutex;
        std::vector<ZRMUrlExchange> exchanges;
    };

    std::shared_ptr<ZRMUrlSession> makeSession(double requestTimeoutSeconds = 60,
                                               double resourceTimeoutSeconds = 60) {
        ZRMUrlSessionConfiguration configuration;
        configuration.requestTimeoutSeconds = requestTimeoutSeconds;
        configuration.resourceTimeoutSeconds = resourceTimeoutSeconds;
        return platform()->urlSessions->makeSession(configuration);
    }
    static ZRMUrlRequest get(const std::string& url) {
        ZRMUrlRequest request;
        request.url = url;
        return request;
    }
    [[nodiscard]] ZRMUrlSession::Completion completion() {
        return [notes = notes_, arrived = arrived_](ZRMUrlExchange exchange) {
            {
                const std::lock_guard lock(arrived->mutex);
                arrived->exchanges.push_back(std::move(exchange));
            }
            notes->add("completed");
        };
    }
    // The exchange after that many completions.
    ZRMUrlExchange arrived(std::size_t count = 1) {
        EXPECT_TRUE(waitForNotes(count));
        const std::lock_guard lock(arrived_->mutex);
        EXPECT_EQ(arrived_->exchanges.size(), count);
        return arrived_->exchanges.empty() ? ZRMUrlExchange{} : arrived_->exchanges.back();
    }
    ZRMUrlExchange load(const ZRMUrlRequest& request) {
        const auto session = makeSession();
        session->start(request, completion());
        return arrived();
    }
    static std::int64_t codeOf(const ZRMUrlExchange& exchange) {
        EXPECT_TRUE(!exchange.error || exchange.error->domain() == kZRMUrlErrorDomain);
        return exchange.error ? exchange.error->code() : 0;
    }

    std::shared_ptr<Arrived> arrived_ = std::make_shared<Arrived>();
};

}  // namespace

TEST_P(ZRMUrlSessionContract, BringsStatusHeadersAndBody) {
    body_->serve("/stat", {.status = 201, .headers = {{"X-Answer", "yes"}}, .body = "hello"});
    const auto exchange = load(get(body_->url("/stat")));
    EXPECT_EQ(codeOf(exchange), 0);
    ASSERT_TRUE(exchange.response);
    EXPECT_EQ(exchange.response->statusCode, 201);
    ASSERT_NE(exchange.response->headers.find("x-answer"), nullptr);
    EXPECT_EQ(*exchange.response->headers.find("x-answer"), "yes");
    EXPECT_EQ(zrm_textFromData(exchange.data), "hello");
}

TEST_P(ZRMUrlSessionContract, AResponseIsAnAnswerWhateverItsStatus) {
    for (const int status : {400, 404, 500, 503}) {
        body_->serve("/" + std::to_string(status), {.status = status, .body = "why"});
    }
    std::size_t count = 0;
    for (const int status : {400, 404, 500, 503}) {
        const auto session = makeSession();
        session->start(get(body_->url("/" + std::to_string(status))), completion());
        const auto exchange = arrived(++count);
        EXPECT_EQ(codeOf(exchange), 0);
        ASSERT_TRUE(exchange.response);
        EXPECT_EQ(exchange.response->statusCode, status);
        EXPECT_EQ(zrm_textFromData(exchange.data), "why");
    }
}

TEST_P(ZRMUrlSessionContract, SendsMethodHeadersAndBody) {
    auto request = get(body_->url("/stat?a=b"));
    body_->serve("/stat?a=b", {});
    request.method = "POST";
    request.headers.set("Content-Type", "application/jose+json");
    request.headers.set("Mobile-UUID", "tag");
    request.body = std::make_shared<const ZRMData>(zrm_dataFromText("payload"));
    EXPECT_EQ(codeOf(load(request)), 0);
    const auto seen = body_->requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_TRUE(seen[0].path.starts_with("/stat"));
    ASSERT_NE(seen[0].headers.find("Content-Type"), nullptr);
    EXPECT_EQ(*seen[0].headers.find("Content-Type"), "application/jose+json");
    ASSERT_NE(seen[0].headers.find("Mobile-UUID"), nullptr);
    EXPECT_EQ(*seen[0].headers.find("Mobile-UUID"), "tag");
    EXPECT_EQ(seen[0].body, "payload");
}

TEST_P(ZRMUrlSessionContract, NeverCompletesWithinStart) {
    const auto starting =
        std::make_shared<std::atomic<std::thread::id>>(std::this_thread::get_id());
    const auto session = makeSession();
    session->start(get("no url"), [=, notes = notes_](const ZRMUrlExchange&) {
        notes->add(starting->load() == std::this_thread::get_id() ? "within" : "later");
    });
    starting->store({});
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("later"));
}

TEST_P(ZRMUrlSessionContract, SilenceLongerThanTheRequestTimeoutTimesOut) {
    body_->serve("/silent", {.isSilent = true});
    const auto session = makeSession(0.1, 60);
    session->start(get(body_->url("/silent")), completion());
    const auto exchange = arrived();
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorTimedOut);
    EXPECT_FALSE(exchange.response);
}

TEST_P(ZRMUrlSessionContract, AnExchangeLongerThanTheResourceTimeoutTimesOut) {
    body_->serve("/silent", {.isSilent = true});
    const auto session = makeSession(60, 0.1);
    session->start(get(body_->url("/silent")), completion());
    EXPECT_EQ(codeOf(arrived()), ZRMUrlErrorTimedOut);
}

TEST_P(ZRMUrlSessionContract, ALostConnectionLeavesWhatHadArrived) {
    body_->serve("/cut", {.status = 200, .body = "0123456789", .lostAfterBytes = 4});
    const auto exchange = load(get(body_->url("/cut")));
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorNetworkConnectionLost);
    ASSERT_TRUE(exchange.response);
    EXPECT_EQ(exchange.response->statusCode, 200);
    EXPECT_EQ(zrm_textFromData(exchange.data), "0123");
}

TEST_P(ZRMUrlSessionContract, NobodyListeningCannotConnect) {
    EXPECT_EQ(codeOf(load(get(body_->refusingUrl()))), ZRMUrlErrorCannotConnectToHost);
}

TEST_P(ZRMUrlSessionContract, WhatIsNoUrlIsABadUrl) {
    EXPECT_EQ(codeOf(load(get("no url"))), ZRMUrlErrorBadUrl);
}

TEST_P(ZRMUrlSessionContract, AnotherSchemeIsAnUnsupportedUrl) {
    EXPECT_EQ(codeOf(load(get("ftp://example.com/file"))), ZRMUrlErrorUnsupportedUrl);
}

TEST_P(ZRMUrlSessionContract, CancellingEndsAnExchangeUnderWayOnce) {
    body_->serve("/silent", {.isSilent = true});
    body_->serve("/stat", {});
    const auto session = makeSession();
    session->start(get(body_->url("/silent")), completion());
    session->invalidateAndCancel();
    session->invalidateAndCancel();
    EXPECT_EQ(codeOf(arrived()), ZRMUrlErrorCancelled);
    const auto next = makeSession();
    next->start(get(body_->url("/stat")), completion());
    EXPECT_EQ(codeOf(arrived(2)), 0) << "the first exchange ended twice";
}

TEST_P(ZRMUrlSessionContract, DestructionCancels) {
    body_->serve("/silent", {.isSilent = true});
    makeSession()->start(get(body_->url("/silent")), completion());
    EXPECT_EQ(codeOf(arrived()), ZRMUrlErrorCancelled);
}

TEST_P(ZRMUrlSessionContract, CancellingAfterTheExchangeChangesNothing) {
    body_->serve("/stat", {});
    const auto session = makeSession();
    session->start(get(body_->url("/stat")), completion());
    EXPECT_EQ(codeOf(arrived()), 0);
    session->invalidateAndCancel();
    session->invalidateAndCancel();
    const auto next = makeSession();
    next->start(get(body_->url("/stat")), completion());
    EXPECT_EQ(codeOf(arrived(2)), 0);
}

TEST_P(ZRMUrlSessionContract, ASessionCancelledBeforeItsStartAnswersCancelled) {
    const auto session = makeSession();
    session->invalidateAndCancel();
    session->start(get(body_->url("/stat")), completion());
    EXPECT_EQ(codeOf(arrived()), ZRMUrlErrorCancelled);
}

TEST_P(ZRMUrlSessionContract, ACompletionMayStartOtherSessionsAndDropItsOwn) {
    body_->serve("/first", {});
    body_->serve("/second", {.body = "second"});
    const auto held = std::make_shared<std::shared_ptr<ZRMUrlSession>>(makeSession());
    const auto next = makeSession();
    (*held)->start(get(body_->url("/first")), [held, next, request = get(body_->url("/second")),
                                               done = completion()](const ZRMUrlExchange&) {
        held->reset();
        next->start(request, done);
    });
    EXPECT_EQ(zrm_textFromData(arrived().data), "second");
}

TEST_P(ZRMUrlSessionContract, ManyExchangesRunSideBySideAndEachEndsOnce) {
    body_->serve("/stat", {});
    std::vector<std::shared_ptr<ZRMUrlSession>> sessions;
    for (int number = 0; number < 20; ++number) {
        sessions.push_back(makeSession());
        sessions.back()->start(get(body_->url("/stat")), completion());
    }
    EXPECT_EQ(codeOf(arrived(20)), 0);
    EXPECT_EQ(body_->requests().size(), 20u);
}

TEST_P(ZRMUrlSessionContract, ABodyLongerThanTheRequestTakesEndsTheExchange) {
    ZRMContractAnswer answer;
    answer.body = std::string(1000, 'x');
    body_->serve("/long", answer);
    auto request = get(body_->url("/long"));
    request.maximumResponseBytes = 1000;
    EXPECT_EQ(codeOf(load(request)), 0);
    request.maximumResponseBytes = 999;
    const auto session = makeSession();
    session->start(request, completion());
    EXPECT_EQ(codeOf(arrived(2)), ZRMUrlErrorDataLengthExceedsMaximum);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMUrlSessionContract, zrm_contractBodies(), zrm_contractBodyName);
