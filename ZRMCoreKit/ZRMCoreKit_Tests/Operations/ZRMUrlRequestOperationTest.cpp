#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kUrl = "https://risk.example.com/stat";
constexpr const char* kPath = "/stat";
constexpr double kTwoDays = 2 * 86400.0;

using Journal = std::shared_ptr<std::vector<std::string>>;

// Passes everything on and writes it down with the session's number.
class JournalingSession final : public ZRMUrlSession {
  public:
    JournalingSession(std::shared_ptr<ZRMUrlSession> session, Journal journal, int number)
        : session_(std::move(session)), journal_(std::move(journal)), number_(number) {}

    void start(const ZRMUrlRequest& request, Completion completion) override {
        journal_->push_back("start " + std::to_string(number_));
        session_->start(request, std::move(completion));
    }
    void invalidateAndCancel() override {
        journal_->push_back("invalidate " + std::to_string(number_));
        session_->invalidateAndCancel();
    }

  private:
    std::shared_ptr<ZRMUrlSession> session_;
    Journal journal_;
    int number_;
};

class JournalingSessions final : public ZRMUrlSessionFactory {
  public:
    JournalingSessions(std::shared_ptr<ZRMUrlSessionFactory> sessions, Journal journal)
        : sessions_(std::move(sessions)), journal_(std::move(journal)) {}

    std::shared_ptr<ZRMUrlSession> makeSession(
        const ZRMUrlSessionConfiguration& configuration) override {
        journal_->push_back("make " + std::to_string(++made_));
        return std::make_shared<JournalingSession>(sessions_->makeSession(configuration), journal_,
                                                   made_);
    }

  private:
    std::shared_ptr<ZRMUrlSessionFactory> sessions_;
    Journal journal_;
    int made_ = 0;
};

class ZRMUrlRequestOperationTest : public testing::Test {
  protected:
    static ZRMUrlRequest request() {
        ZRMUrlRequest request;
        request.method = "POST";
        request.url = kUrl;
        request.headers.set("Content-Type", "application/jose+json");
        request.body = std::make_shared<ZRMData>(zrm_dataFromText("body"));
        request.timeoutIntervalSeconds = 30;
        request.cachePolicy = ZRMUrlRequestCachePolicy::ReloadIgnoringLocalCacheData;
        return request;
    }
    template <class... Arguments>
    std::shared_ptr<ZRMUrlRequestOperation> make(Arguments... arguments) {
        return std::make_shared<ZRMUrlRequestOperation>(device_.platform(), request(),
                                                        arguments...);
    }
    void answer(ZRMSimulatedAnswer answer, std::size_t times = 1) {
        device_.network().script(kPath, std::move(answer), times);
    }
    // Seconds between the test's begin and each attempt so far.
    std::vector<double> attempts() {
        std::vector<double> seconds;
        for (const auto& record : device_.network().requests()) {
            seconds.push_back(record.startedAt.secondsSince(begin_));
        }
        return seconds;
    }

    ZRMSimulatedDevice device_;
    const ZRMScopedPlatform installed_{device_};
    const ZRMDate begin_ = device_.platform()->clock->now();
};

TEST_F(ZRMUrlRequestOperationTest, DeliversTheAnswer) {
    auto response = ZRMSimulatedAnswer::withBody("hello");
    response.headers.set("Date", "Tue, 05 Mar 2024 07:08:09 GMT");
    answer(response);
    const auto operation = make();
    operation->start();
    EXPECT_TRUE(operation->isExecuting());
    device_.advanceBy(1);
    ASSERT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->error());
    EXPECT_EQ(operation->data(), zrm_dataFromText("hello"));
    ASSERT_TRUE(operation->response());
    EXPECT_EQ(operation->response()->statusCode, 200);
    EXPECT_EQ(*operation->response()->headers.find("Date"), "Tue, 05 Mar 2024 07:08:09 GMT");
}

TEST_F(ZRMUrlRequestOperationTest, HasNothingToDeliverBeforeItHasFinished) {
    const auto operation = make();
    EXPECT_FALSE(operation->data());
    EXPECT_FALSE(operation->response());
    EXPECT_FALSE(operation->error());
}

TEST_F(ZRMUrlRequestOperationTest, SendsTheRequestAsGiven) {
    const auto operation = make();
    operation->start();
    const auto& sent = device_.network().requests().back();
    EXPECT_EQ(sent.request.method, "POST");
    EXPECT_EQ(sent.request.url, kUrl);
    EXPECT_EQ(sent.bodyText(), "body");
    EXPECT_EQ(*sent.request.headers.find("Content-Type"), "application/jose+json");
}

TEST_F(ZRMUrlRequestOperationTest, TakesTimeOutsAndCachePolicyFromTheRequest) {
    const auto operation = make();
    operation->start();
    const auto& configuration = device_.network().requests().back().configuration;
    EXPECT_EQ(configuration.requestTimeoutSeconds, 30);
    EXPECT_EQ(configuration.resourceTimeoutSeconds, 30);
    EXPECT_EQ(configuration.cachePolicy, ZRMUrlRequestCachePolicy::ReloadIgnoringLocalCacheData);
}

TEST_F(ZRMUrlRequestOperationTest, StampsEveryAttemptWithItsWholeSecond) {
    device_.advanceBy(0.75);
    answer(ZRMSimulatedAnswer::withStatus(503));
    const auto operation = make(true);
    EXPECT_EQ(operation->request().headers.find("Request-Send-Timestamp"), nullptr);
    operation->start();
    device_.advanceBy(5);
    const auto& requests = device_.network().requests();
    ASSERT_THAT(requests, SizeIs(2));
    EXPECT_EQ(*requests[0].request.headers.find("Request-Send-Timestamp"), "1767225600");
    EXPECT_EQ(*requests[1].request.headers.find("Request-Send-Timestamp"), "1767225602");
    EXPECT_EQ(*operation->request().headers.find("Request-Send-Timestamp"), "1767225602");
}

TEST_F(ZRMUrlRequestOperationTest, StampsTheFarthestSecondWhenTheClockIsBeyondAllReason) {
    class RunawayClock final : public ZRMClock {
      public:
        [[nodiscard]] ZRMDate now() const override { return {1e300}; }
        [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override { return std::nullopt; }
        [[nodiscard]] double uptimeSeconds() const override { return 0; }
    };
    auto platform = std::make_shared<ZRMPlatform>(*device_.platform());
    platform->clock = std::make_shared<RunawayClock>();
    const auto operation = std::make_shared<ZRMUrlRequestOperation>(platform, request());
    operation->start();
    EXPECT_EQ(*operation->request().headers.find("Request-Send-Timestamp"), "9223372036854775807");
}

TEST_F(ZRMUrlRequestOperationTest, EveryAttemptHasItsOwnSessionAndTheOneBeforeIsInvalidatedFirst) {
    const auto journal = std::make_shared<std::vector<std::string>>();
    auto platform = std::make_shared<ZRMPlatform>(*device_.platform());
    platform->urlSessions = std::make_shared<JournalingSessions>(platform->urlSessions, journal);
    answer(ZRMSimulatedAnswer::withStatus(503));
    answer(ZRMSimulatedAnswer::withBody("late"));
    const auto operation = std::make_shared<ZRMUrlRequestOperation>(platform, request(), true);
    operation->start();
    device_.advanceBy(10);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(*journal, ElementsAre("make 1", "start 1", "invalidate 1", "make 2", "start 2",
                                      "invalidate 2"));
}

TEST_F(ZRMUrlRequestOperationTest, TheThreeWaysToMakeIt) {
    EXPECT_FALSE(make()->isRetriable());
    EXPECT_EQ(make()->retryTimeoutSeconds(), 1);
    EXPECT_TRUE(make(true)->isRetriable());
    EXPECT_EQ(make(true)->retryTimeoutSeconds(), 1);
    EXPECT_EQ(make(true, 3.0, 9.0)->retryTimeoutSeconds(), 3);
}

TEST_F(ZRMUrlRequestOperationTest, NeverRetriesUnlessRetriable) {
    answer(ZRMSimulatedAnswer::withStatus(503));
    const auto operation = make();
    operation->start();
    device_.advanceBy(kTwoDays);
    EXPECT_THAT(attempts(), SizeIs(1));
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->error());
    EXPECT_EQ(operation->response()->statusCode, 503);
}

TEST_F(ZRMUrlRequestOperationTest, RetriesAfterTwoAndFourSecondsAndThenFinishes) {
    answer(ZRMSimulatedAnswer::withStatus(503), 5);
    const auto operation = make(true, 1.0, 4.0);
    operation->start();
    device_.advanceBy(2);
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_EQ(operation->retryTimeoutSeconds(), 4);
    device_.advanceBy(60);
    EXPECT_THAT(attempts(), ElementsAre(0, 2, 6));
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->error());
    EXPECT_EQ(operation->response()->statusCode, 503);
    EXPECT_EQ(operation->retryTimeoutSeconds(), 4);
}

TEST_F(ZRMUrlRequestOperationTest, MakesEighteenAttemptsWithTheDefaultIntervals) {
    device_.network().handle(kPath,
                             [](const auto&) { return ZRMSimulatedAnswer::withStatus(500); });
    const auto operation = make(true);
    operation->start();
    device_.advanceBy(10 * 86400.0);
    EXPECT_TRUE(operation->isFinished());
    const auto times = attempts();
    ASSERT_THAT(times, SizeIs(18));
    for (std::size_t attempt = 1; attempt <= 16; ++attempt) {
        EXPECT_DOUBLE_EQ(times[attempt] - times[attempt - 1], static_cast<double>(1U << attempt));
    }
    EXPECT_DOUBLE_EQ(times[17] - times[16], 86400);
}

TEST_F(ZRMUrlRequestOperationTest, AClientErrorIsFinalAndNoError) {
    answer(ZRMSimulatedAnswer::withStatus(404));
    const auto operation = make(true);
    operation->start();
    device_.runUntilIdle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->error());
    EXPECT_EQ(operation->response()->statusCode, 404);
    device_.advanceBy(kTwoDays);
    EXPECT_THAT(attempts(), SizeIs(1));
}

TEST_F(ZRMUrlRequestOperationTest, RetriesPassingTransportErrorsUntilAnAnswerComes) {
    for (const int code : {-1001, -1009, -1004, -1005}) {
        device_.network().forgetRequests();
        answer(ZRMSimulatedAnswer::withError(code));
        answer(ZRMSimulatedAnswer::withBody("late"));
        const auto operation = make(true);
        operation->start();
        device_.advanceBy(2);
        EXPECT_THAT(attempts(), SizeIs(2)) << code;
        EXPECT_TRUE(operation->isFinished()) << code;
        EXPECT_FALSE(operation->error()) << code;
        EXPECT_EQ(operation->data(), zrm_dataFromText("late")) << code;
    }
}

TEST_F(ZRMUrlRequestOperationTest, AnyOtherTransportErrorIsFinal) {
    for (const int code : {-999, -1003, -1200, -1202, -1}) {
        device_.network().forgetRequests();
        answer(ZRMSimulatedAnswer::withError(code));
        const auto operation = make(true);
        operation->start();
        device_.advanceBy(kTwoDays);
        EXPECT_THAT(attempts(), SizeIs(1)) << code;
        EXPECT_TRUE(operation->isFinished()) << code;
        ASSERT_TRUE(operation->error()) << code;
        EXPECT_EQ(operation->error()->domain(), kZRMUrlErrorDomain) << code;
        EXPECT_EQ(operation->error()->code(), code);
        EXPECT_FALSE(operation->data()) << code;
        EXPECT_FALSE(operation->response()) << code;
    }
}

TEST_F(ZRMUrlRequestOperationTest, EndsWithTheErrorOfTheLastAttempt) {
    answer(ZRMSimulatedAnswer::withStatus(503));
    answer(ZRMSimulatedAnswer::withError(-1009));
    answer(ZRMSimulatedAnswer::withError(-1001));
    const auto operation = make(true, 1.0, 4.0);
    operation->start();
    device_.advanceBy(60);
    ASSERT_TRUE(operation->error());
    EXPECT_EQ(operation->error()->code(), -1001);
    EXPECT_FALSE(operation->response()) << "it is the last attempt's, which had none";
    EXPECT_FALSE(operation->data());
}

TEST_F(ZRMUrlRequestOperationTest, AnAnswerWithoutABodyHasEmptyData) {
    answer(ZRMSimulatedAnswer::withStatus(204));
    const auto operation = make();
    operation->start();
    device_.runUntilIdle();
    EXPECT_EQ(operation->data(), ZRMData());
}

TEST_F(ZRMUrlRequestOperationTest, LogsEachStepAtLevelVerbose) {
    const ZRMRecordedLog log;
    answer(ZRMSimulatedAnswer::withStatus(503));
    answer(ZRMSimulatedAnswer::withBody("hello"));
    const auto operation = make(true, 0.25, 8.0);
    operation->start();
    device_.advanceBy(10);
    EXPECT_THAT(log.verboses(),
                ElementsAre("Creating url session for https://risk.example.com/stat",
                            "Response: status code - 503, data - 0 bytes",
                            "Scheduling retry for request 'https://risk.example.com/stat' with "
                            "delay: 0.5",
                            "Creating url session for https://risk.example.com/stat",
                            "Response: status code - 200, data - 5 bytes"));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(ZRMUrlRequestOperationTest, LogsStatusZeroWithoutAResponse) {
    const ZRMRecordedLog log;
    answer(ZRMSimulatedAnswer::withError(-1003));
    const auto operation = make();
    operation->start();
    device_.advanceBy(1);
    ASSERT_THAT(log.verboses(), SizeIs(2));
    EXPECT_EQ(log.verboses().back(), "Response: status code - 0, data - 0 bytes");
}

TEST_F(ZRMUrlRequestOperationTest, RetriesOnAPrivateLoopOfUserInitiatedQuality) {
    answer(ZRMSimulatedAnswer::withStatus(503), 3);
    const auto before = device_.executor().madeQueues().size();
    const auto operation = make(true);
    operation->start();
    device_.advanceBy(60);
    const auto& made = device_.executor().madeQueues();
    ASSERT_EQ(made.size(), before + 1) << "all retries share one loop";
    EXPECT_EQ(made.back().qualityOfService, ZRMQualityOfService::UserInitiated);
}

TEST_F(ZRMUrlRequestOperationTest, LeavesNothingToDoOnceItHasFinished) {
    answer(ZRMSimulatedAnswer::withStatus(503));
    const auto operation = make(true);
    operation->start();
    device_.advanceBy(3);
    ASSERT_TRUE(operation->isFinished());
    const auto before = device_.tasksRun();
    device_.advanceBy(86400);
    EXPECT_EQ(device_.tasksRun(), before);
}

TEST_F(ZRMUrlRequestOperationTest, CancelEndsTheExchangeUnderWay) {
    answer(ZRMSimulatedAnswer::withBody("late").after(10));
    const auto operation = make(true);
    operation->start();
    device_.advanceBy(1);
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_TRUE(operation->isFinished());
    device_.advanceBy(kTwoDays);
    EXPECT_FALSE(operation->error());
    EXPECT_FALSE(operation->data());
    EXPECT_FALSE(operation->response());
    EXPECT_THAT(attempts(), SizeIs(1));
}

TEST_F(ZRMUrlRequestOperationTest, CancelBeforeTheStartSendsNothing) {
    const auto operation = make(true);
    operation->cancel();
    operation->start();
    device_.advanceBy(kTwoDays);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(attempts(), IsEmpty());
}

TEST_F(ZRMUrlRequestOperationTest, CancelBetweenAttemptsFinishesAndTheTimerFiresIntoNothing) {
    answer(ZRMSimulatedAnswer::withStatus(503), 5);
    const auto operation = make(true);
    operation->start();
    // The timer fires before the loop is asked again whether it may end.
    device_.advanceBy(1.9);
    operation->cancel();
    EXPECT_TRUE(operation->isFinished());
    device_.advanceBy(kTwoDays);
    EXPECT_THAT(attempts(), ElementsAre(0));
    EXPECT_EQ(operation->response()->statusCode, 503) << "what the attempt before brought stays";
}

TEST_F(ZRMUrlRequestOperationTest, CancelTheMomentAnAttemptIsLoggedPreventsIt) {
    class CancellingLogger final : public ZRMLogger {
      public:
        void logMessage(const std::string& message, ZRMLogLevel /*level*/) override {
            const auto operation = operation_.lock();
            if (operation && message.find("Creating url session") != std::string::npos) {
                operation->cancel();
            }
        }
        [[nodiscard]] ZRMLogLevel logLevel() const override { return kZRMLogLevelVerbose; }
        void setLogLevel(ZRMLogLevel /*level*/) override {}
        std::weak_ptr<ZRMOperation> operation_;
    };
    const auto logger = std::make_shared<CancellingLogger>();
    ZRMLoggerCollection::sharedInstance()->addLogger(logger);
    const auto operation = make(true);
    logger->operation_ = operation;
    operation->start();
    device_.advanceBy(10);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(attempts(), IsEmpty());
}

TEST_F(ZRMUrlRequestOperationTest, MayBeDroppedDuringAnExchange) {
    answer(ZRMSimulatedAnswer::withBody("late").after(10));
    auto operation = make(true);
    const std::weak_ptr<ZRMOperation> weak = operation;
    operation->start();
    device_.advanceBy(1);
    operation.reset();
    EXPECT_TRUE(weak.expired());
    device_.advanceBy(kTwoDays);
    EXPECT_THAT(attempts(), SizeIs(1));
}

TEST_F(ZRMUrlRequestOperationTest, MayBeDroppedBetweenAttempts) {
    answer(ZRMSimulatedAnswer::withStatus(503), 5);
    auto operation = make(true);
    const std::weak_ptr<ZRMOperation> weak = operation;
    operation->start();
    device_.advanceBy(1);
    operation.reset();
    EXPECT_TRUE(weak.expired());
    device_.advanceBy(kTwoDays);
    EXPECT_THAT(attempts(), SizeIs(1));
}

TEST_F(ZRMUrlRequestOperationTest, StaysAliveOnAQueueOverAllItsRetries) {
    answer(ZRMSimulatedAnswer::withStatus(503), 2);
    ZRMOperationQueue queue(device_.platform()->executor, "test.queue", 4);
    auto operation = make(true);
    const std::weak_ptr<ZRMOperation> weak = operation;
    queue.addOperation(std::move(operation));
    device_.advanceBy(5.9);
    EXPECT_EQ(queue.operationCount(), 1U);
    EXPECT_FALSE(weak.expired());
    device_.advanceBy(0.6);
    EXPECT_EQ(queue.operationCount(), 0U);
    EXPECT_TRUE(weak.expired());
    EXPECT_THAT(attempts(), ElementsAre(0, 2, 6));
}

TEST_F(ZRMUrlRequestOperationTest, RunsDependentOperationsOnceFinished) {
    answer(ZRMSimulatedAnswer::withStatus(503));
    answer(ZRMSimulatedAnswer::withBody("late"));
    ZRMOperationQueue queue(device_.platform()->executor, "test.queue", 4);
    const auto operation = make(true);
    std::string seen;
    const auto completion = ZRMBlockOperation::blockOperationWithBlock(
        [&] { seen = zrm_textFromData(operation->data().value_or(ZRMData())); });
    completion->addDependency(operation);
    queue.addOperations({operation, completion});
    device_.advanceBy(1.9);
    EXPECT_EQ(seen, "");
    device_.advanceBy(0.1);
    EXPECT_EQ(seen, "late");
}

TEST_F(ZRMUrlRequestOperationTest, RetriesEarlyWhenTheWallClockJumpsForward) {
    answer(ZRMSimulatedAnswer::withError(-1009), 2);
    const auto operation = make(true);
    operation->start();
    device_.runUntilIdle();
    device_.jumpWallClock(86400);
    device_.runUntilIdle();
    EXPECT_THAT(attempts(), SizeIs(2));
    operation->cancel();
}

}  // namespace
