// Events on their whole way, over restarts of the process and losses of the network.
#include <algorithm>

#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceFactory.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* kUploadUrl = "https://risk.example.com/stat";
constexpr double kDaySeconds = 86400;

class TagHeader final : public ZRMStatisticsCustomHeadersProvider {
  public:
    [[nodiscard]] std::map<std::string, std::string> customHeaders() const override {
        return {{"Mobile-UUID", "tag"}};
    }
};

class ZRMStatisticsUploadTest : public ZRMStatisticsDeviceTest {
  protected:
    void start() {
        service_ = ZRMStatisticsServiceFactory::createServiceWithUrl(
            kUploadUrl, "/device", headers_,
            std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock));
        service_->start();
    }
    void stopProcess(ZRMSimulatedLoss loss = ZRMSimulatedLoss::None) {
        device_.killProcess();
        service_.reset();
        restart(loss);
    }
    void restartAndStart(ZRMSimulatedLoss loss = ZRMSimulatedLoss::None) {
        stopProcess(loss);
        start();
    }
    void send(const std::string& name, std::int16_t priority = 1) {
        service_->send(ZRMTestEvent(name), priority);
    }
    // The names of the events in every request so far, answered or not.
    [[nodiscard]] std::vector<std::string> requested() {
        std::vector<std::string> names;
        for (const auto& record : device_.network().requestsTo("/stat")) {
            names.push_back(zrm_testEventName(*record.request.body));
        }
        return names;
    }
    void answerAlways(const ZRMSimulatedAnswer& answer) {
        device_.network().handle("/stat", [answer](const ZRMUrlRequest&) { return answer; });
    }
    [[nodiscard]] std::size_t pending() const { return service_->pendingEventCount(); }

    std::shared_ptr<TagHeader> headers_ = std::make_shared<TagHeader>();
    std::shared_ptr<ZRMStatisticsService> service_;
};

}  // namespace

TEST_F(ZRMStatisticsUploadTest, EventArrivesOnceWithItsHeadersAndLeavesTheStore) {
    start();
    send("login");
    EXPECT_EQ(pending(), 1U);
    device_.runUntilIdle();
    ASSERT_THAT(requested(), ElementsAre("login"));
    const auto& request = device_.network().requests()[0].request;
    EXPECT_EQ(request.url, kUploadUrl);
    EXPECT_EQ(*request.headers.find("Content-Length"), std::to_string(request.body->size()));
    EXPECT_EQ(*request.headers.find("Mobile-UUID"), "tag");
    EXPECT_EQ(pending(), 0U);
    restartAndStart();
    device_.advanceBy(kDaySeconds);
    EXPECT_THAT(requested(), ElementsAre("login"));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticsUploadTest, InstalledPlatformIsTheOneTheServiceRunsOn) {
    start();
    EXPECT_TRUE(device_.disk().holdsFile("/device/ZRMStatisticsStorage/ZRMStatisticsStorage"));
}

TEST_F(ZRMStatisticsUploadTest, AnswerNotFoundDeletesTheRecord) {
    answerAlways(ZRMSimulatedAnswer::withStatus(404));
    start();
    send("login");
    device_.runUntilIdle();
    EXPECT_EQ(pending(), 0U);
    EXPECT_THAT(requested(), ElementsAre("login"));
}

TEST_F(ZRMStatisticsUploadTest, ServerErrorIsRetriedUntilAnAnswerComes) {
    device_.network().script("/stat", ZRMSimulatedAnswer::withStatus(503), 3);
    start();
    send("login");
    device_.advanceBy(13);
    EXPECT_EQ(requested().size(), 3U);
    EXPECT_EQ(pending(), 1U);
    device_.advanceBy(1);
    EXPECT_EQ(requested().size(), 4U);
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, ServerErrorThatLastsDeletesTheRecordAfterTheLastRetry) {
    answerAlways(ZRMSimulatedAnswer::withStatus(500));
    start();
    send("login");
    device_.advanceBy(4 * kDaySeconds);
    EXPECT_EQ(requested().size(), 18U);
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, EventOfflineWaitsForTheNetwork) {
    start();
    device_.setConnected(false);
    device_.runUntilIdle();
    send("login");
    device_.advanceBy(kDaySeconds);
    EXPECT_THAT(requested(), IsEmpty());
    device_.setConnected(true);
    device_.runUntilIdle();
    EXPECT_THAT(requested(), ElementsAre("login"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, EventWhoseConnectionWasLostIsSentAgain) {
    device_.network().script("/stat",
                             ZRMSimulatedAnswer::withError(ZRMUrlErrorNetworkConnectionLost));
    start();
    send("login");
    device_.advanceBy(2);
    EXPECT_THAT(requested(), ElementsAre("login", "login"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, EventOfAProcessThatEndedOfflineIsSentByTheNextOne) {
    start();
    device_.setConnected(false);
    device_.runUntilIdle();
    send("login");
    device_.runUntilIdle();
    stopProcess(ZRMSimulatedLoss::All);
    device_.advanceBy(3 * kDaySeconds);
    device_.setConnected(true);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(requested(), ElementsAre("login"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, EventOlderThanThirtyDaysIsDeletedUnsent) {
    device_.network().setConnected(false);
    start();
    send("old");
    device_.runUntilIdle();
    device_.network().forgetRequests();
    stopProcess();
    device_.advanceBy(31 * kDaySeconds);
    device_.network().setConnected(true);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(requested(), IsEmpty());
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, EventThatFailedOnFourDaysIsDeletedUnsent) {
    answerAlways(ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted));
    start();
    send("login");
    device_.runUntilIdle();
    for (int day = 1; day <= 3; ++day) {
        stopProcess();
        device_.advanceBy(kDaySeconds + 1);
        start();
        device_.runUntilIdle();
        EXPECT_EQ(requested().size(), 1U + static_cast<std::size_t>(day));
        EXPECT_EQ(pending(), 1U);
    }
    stopProcess();
    device_.advanceBy(60);
    start();
    device_.runUntilIdle();
    EXPECT_EQ(requested().size(), 4U);
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, FailuresOnOneDayDoNotUseTheEventUp) {
    answerAlways(ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted));
    start();
    send("login");
    for (int run = 0; run < 6; ++run) {
        device_.advanceBy(3600);
        restartAndStart();
        device_.runUntilIdle();
    }
    EXPECT_EQ(requested().size(), 7U);
    EXPECT_EQ(pending(), 1U);
}

TEST_F(ZRMStatisticsUploadTest, NextProcessSendsByPriority) {
    device_.network().setConnected(false);
    start();
    send("fingerprint", 3);
    send("login", 2);
    send("call", 1);
    send("nonsense", 0);
    device_.runUntilIdle();
    stopProcess();
    device_.network().forgetRequests();
    device_.network().setConnected(true);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(requested(), ElementsAre("call", "login", "fingerprint"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, ThousandsOfEventsAreSentInOrderByTheNextProcess) {
    device_.network().setConnected(false);
    device_.reachability().setFlags(0);
    start();
    device_.runUntilIdle();
    std::vector<std::string> expected;
    for (int number = 0; number < 2000; ++number) {
        expected.push_back(std::to_string(number));
        send(expected.back());
    }
    device_.runUntilIdle();
    stopProcess();
    device_.network().forgetRequests();
    device_.setConnected(true);
    start();
    EXPECT_EQ(pending(), 2000U);
    device_.runUntilIdle();
    EXPECT_EQ(requested(), expected);
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, WithoutAStoreEventsAreSentAndNothingIsSentAgain) {
    device_.disk().wipe();
    start();
    send("login");
    device_.runUntilIdle();
    EXPECT_THAT(requested(), ElementsAre("login"));
    device_.network().script("/stat",
                             ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted));
    send("lost");
    device_.runUntilIdle();
    restartAndStart();
    device_.runUntilIdle();
    EXPECT_THAT(requested(), ElementsAre("login", "lost"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, StoppingAndStartingDoesNotRepeatAnUploadUnderWay) {
    answerAlways(ZRMSimulatedAnswer::withStatus(200).after(30));
    start();
    send("login");
    device_.advanceBy(1);
    service_->stop();
    service_->start();
    device_.advanceBy(60);
    EXPECT_THAT(requested(), ElementsAre("login"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, UploadAnsweredWhileStoppedIsRepeatedAtTheNextStart) {
    answerAlways(ZRMSimulatedAnswer::withStatus(200).after(30));
    start();
    send("login");
    device_.advanceBy(1);
    service_->stop();
    device_.advanceBy(60);
    service_->start();
    device_.advanceBy(60);
    EXPECT_THAT(requested(), ElementsAre("login", "login"));
    EXPECT_EQ(pending(), 0U);
}

TEST_F(ZRMStatisticsUploadTest, DroppedServiceLetsItsStoredEventsForTheNextProcess) {
    device_.network().setConnected(false);
    start();
    send("login");
    device_.runUntilIdle();
    service_.reset();
    device_.runUntilIdle();
    device_.network().forgetRequests();
    device_.network().setConnected(true);
    restartAndStart();
    device_.runUntilIdle();
    EXPECT_THAT(requested(), Contains("login"));
}

// Wherever the power goes, an event is delivered once its record was saved, and the store opens.
TEST_F(ZRMStatisticsUploadTest, NoMomentOfAPowerCutLosesAStoredEventOrTheStore) {
    start();
    const auto before = device_.disk().faults().operationCount();
    send("probe");
    device_.runUntilIdle();
    const auto operations = device_.disk().faults().operationCount() - before;
    ASSERT_GT(operations, 4U);
    for (std::uint64_t number = 1; number <= operations; ++number) {
        SCOPED_TRACE("cut before disk operation " + std::to_string(number));
        device_.network().setConnected(false);
        device_.network().forgetRequests();
        device_.killAtDiskOperation(device_.disk().faults().operationCount() + number);
        const auto savedBefore = countVerbose("Did save event");
        send("event");
        device_.runUntilIdle();
        const bool isSaved = countVerbose("Did save event") > savedBefore;
        service_.reset();
        restart(ZRMSimulatedLoss::Some);
        device_.network().setConnected(true);
        start();
        device_.runUntilIdle();
        EXPECT_THAT(errors(), IsEmpty());
        EXPECT_EQ(pending(), 0U);
        if (isSaved) {
            EXPECT_THAT(requested(), Contains("event"));
        }
    }
}

class ZRMStatisticsSchedulingTest : public ZRMStatisticsUploadTest,
                                    public ::testing::WithParamInterface<int> {};

// Whatever order queues run their tasks in, every event is delivered exactly once.
TEST_P(ZRMStatisticsSchedulingTest, EveryEventArrivesOnce) {
    device_.setSchedulingSeed(static_cast<std::uint64_t>(GetParam()));
    answerAlways(ZRMSimulatedAnswer::withStatus(200).after(0.5));
    start();
    std::vector<std::string> expected;
    for (int number = 0; number < 60; ++number) {
        expected.push_back(std::to_string(number));
        send(expected.back());
        for (int task = 0; task < number % 7; ++task) {
            device_.runOneTask();
        }
        if (number % 20 == 10) {
            service_->stop();
            service_->start();
        }
    }
    device_.advanceBy(600);
    EXPECT_EQ(pending(), 0U);
    EXPECT_THAT(requested(), ::testing::UnorderedElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(Seeds, ZRMStatisticsSchedulingTest, ::testing::Range(1, 21));
