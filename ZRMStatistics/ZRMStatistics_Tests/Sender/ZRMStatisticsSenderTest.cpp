#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSenderImpl.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kSenderUrl = "https://risk.example.com/stat";

class RecordedEnds final : public ZRMStatisticsSenderObserver {
  public:
    void statisticsSenderDidSendData(ZRMStatisticsSender& /*sender*/,
                                     const std::shared_ptr<ZRMStatisticsData>& data) override {
        texts.push_back("sent " + zrm_textFromData(*data->bytes()));
    }
    void statisticsSenderDidFailToSendData(ZRMStatisticsSender& /*sender*/,
                                           const std::shared_ptr<ZRMStatisticsData>& data,
                                           const ZRMError& error) override {
        texts.push_back("failed " + zrm_textFromData(*data->bytes()) + " " +
                        std::to_string(error.code()));
    }
    std::vector<std::string> texts;
};

class StubHeaders final : public ZRMStatisticsCustomHeadersProvider {
  public:
    [[nodiscard]] std::map<std::string, std::string> customHeaders() const override {
        return headers;
    }
    std::map<std::string, std::string> headers{{"Mobile-UUID", "tag"}};
};

// Bytes that count how often they are held.
class StubData final : public ZRMStatisticsData {
  public:
    StubData(std::string text, bool isReadable = true)
        : ZRMStatisticsData(text.size(), nullptr),
          text_(std::move(text)),
          isReadable_(isReadable) {}
    [[nodiscard]] ZRMSharedData bytes() const override {
        ++reads;
        return isReadable_ ? zrm_sharedData(text_) : nullptr;
    }
    void turnIntoFault() override { ++faults; }

    mutable int reads = 0;
    int faults = 0;

  private:
    std::string text_;
    bool isReadable_;
};

class ZRMStatisticsSenderTest : public ZRMStatisticsDeviceTest {
  protected:
    ZRMStatisticsSenderTest() { makeSender(); }

    void makeSender(const std::string& url = kSenderUrl) {
        sender_ = ZRMStatisticsSenderImpl::create(device_.platform(), url, headers_, time_);
        sender_->addObserver(ends_);
    }
    std::shared_ptr<ZRMStatisticsData> send(std::string_view text) {
        auto data = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData(text));
        sender_->sendStatisticsData(data);
        return data;
    }
    std::vector<std::shared_ptr<StubData>> sendMany(int count, std::size_t length) {
        std::vector<std::shared_ptr<StubData>> data;
        for (int number = 0; number < count; ++number) {
            data.push_back(std::make_shared<StubData>(std::string(length, 'x')));
            sender_->sendStatisticsData(data.back());
        }
        return data;
    }
    // Without those that the tests' own observer makes when an upload ends.
    [[nodiscard]] int readsOf(const std::vector<std::shared_ptr<StubData>>& data) const {
        int reads = 0;
        for (const auto& each : data) {
            reads += each->reads;
        }
        return reads - static_cast<int>(ends_->texts.size());
    }
    [[nodiscard]] std::vector<std::string> bodies() const {
        std::vector<std::string> texts;
        for (const auto& record : const_cast<ZRMSimulatedDevice&>(device_).network().requests()) {
            texts.push_back(record.bodyText());
        }
        return texts;
    }
    [[nodiscard]] std::string header(std::size_t request, std::string_view name) {
        const auto* value = device_.network().requests().at(request).request.headers.find(name);
        return value == nullptr ? "none" : *value;
    }
    // Requests that are sent and not answered.
    void keepServerSilent() {
        device_.network().handle("/stat", [](const ZRMUrlRequest&) {
            return ZRMSimulatedAnswer::withStatus(200).after(50);
        });
    }

    std::shared_ptr<StubHeaders> headers_ = std::make_shared<StubHeaders>();
    std::shared_ptr<ZRMServerTimeProvider> time_ = unknownServerTime();
    std::shared_ptr<RecordedEnds> ends_ = std::make_shared<RecordedEnds>();
    std::shared_ptr<ZRMStatisticsSenderImpl> sender_;
};

}  // namespace

TEST_F(ZRMStatisticsSenderTest, PostsTheBytesWithAllHeadersAndTellsItsObservers) {
    send("event");
    device_.runUntilIdle();
    ASSERT_EQ(device_.network().requests().size(), 1U);
    const auto& request = device_.network().requests()[0].request;
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, kSenderUrl);
    EXPECT_EQ(bodies(), std::vector<std::string>{"event"});
    EXPECT_EQ(header(0, "Content-Type"), "application/jose+json");
    EXPECT_EQ(header(0, "Content-Encoding"), "gzip");
    EXPECT_EQ(header(0, "Content-Length"), "5");
    EXPECT_EQ(header(0, "Request-Server-Timestamp"), "none");
    EXPECT_EQ(header(0, "Mobile-UUID"), "tag");
    EXPECT_EQ(header(0, "Request-Send-Timestamp"),
              std::to_string(static_cast<long>(device_.now().secondsSince1970)));
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, QueueIsNamedAfterTheClassAndRunsFourAtATime) {
    EXPECT_EQ(sender_->queue().name(), "ZRMStatisticsSenderImpl.queue");
    EXPECT_EQ(sender_->queue().maxConcurrentOperationCount(), 4);
    keepServerSilent();
    for (const auto* text : {"1", "2", "3", "4", "5", "6"}) {
        send(text);
    }
    device_.advanceBy(1);
    EXPECT_THAT(bodies(), ElementsAre("1", "2", "3", "4"));
    device_.advanceBy(50);
    EXPECT_THAT(bodies(), ElementsAre("1", "2", "3", "4", "5", "6"));
}

TEST_F(ZRMStatisticsSenderTest, UploadsStartInTheOrderOfTheCallsHoweverMany) {
    std::vector<std::string> expected;
    for (int number = 0; number < 100; ++number) {
        expected.push_back(std::to_string(number));
        send(expected.back());
    }
    device_.runUntilIdle();
    EXPECT_EQ(bodies(), expected);
    EXPECT_EQ(ends_->texts.size(), 100U);
}

TEST_F(ZRMStatisticsSenderTest, FirstGoodDateSetsTheServersTimeForLaterRequests) {
    ZRMSimulatedAnswer answer;
    answer.headers.set("Date", "Tue, 14 Nov 2023 22:13:20 GMT");
    device_.network().script("/stat", answer);
    answer.headers.set("Date", "Wed, 15 Nov 2023 22:13:20 GMT");
    device_.network().script("/stat", answer);
    send("first");
    device_.runUntilIdle();
    EXPECT_EQ(time_->getTime(), 1700000000000);
    device_.advanceBy(1.5);
    send("second");
    device_.runUntilIdle();
    EXPECT_EQ(header(1, "Request-Server-Timestamp"), "1700000001500");
    EXPECT_EQ(time_->getTime(), 1700000001500);
}

TEST_F(ZRMStatisticsSenderTest, EmptyOrMissingDateLeavesTheServersTimeUnknown) {
    ZRMSimulatedAnswer answer;
    answer.headers.set("Date", "");
    device_.network().script("/stat", answer);
    send("first");
    send("second");
    device_.runUntilIdle();
    EXPECT_FALSE(time_->isValid());
    EXPECT_EQ(ends_->texts.size(), 2U);
}

TEST_F(ZRMStatisticsSenderTest, HeadersAreThoseOfTheMomentOfTheCall) {
    keepServerSilent();
    for (int number = 0; number < 20; ++number) {
        send("before");
    }
    headers_->headers = {{"Mobile-UUID", "new tag"}, {"X-Other", "1"}};
    send("after");
    device_.advanceBy(500);
    ASSERT_EQ(device_.network().requests().size(), 21U);
    EXPECT_EQ(header(19, "Mobile-UUID"), "tag");
    EXPECT_EQ(header(19, "X-Other"), "none");
    EXPECT_EQ(header(20, "Mobile-UUID"), "new tag");
    EXPECT_EQ(header(20, "X-Other"), "1");
}

TEST_F(ZRMStatisticsSenderTest, CustomHeadersReplaceFixedOnes) {
    headers_->headers = {{"Content-Type", "text/plain"}};
    send("event");
    device_.runUntilIdle();
    EXPECT_EQ(header(0, "Content-Type"), "text/plain");
}

TEST_F(ZRMStatisticsSenderTest, SendsWithoutCustomHeadersOnceTheProviderIsGone) {
    headers_.reset();
    send("event");
    device_.runUntilIdle();
    EXPECT_EQ(header(0, "Mobile-UUID"), "none");
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

class ZRMStatisticsSenderStatusTest : public ZRMStatisticsSenderTest,
                                      public ::testing::WithParamInterface<int> {};

TEST_P(ZRMStatisticsSenderStatusTest, AnyFinalAnswerCountsAsSent) {
    device_.network().script("/stat", ZRMSimulatedAnswer::withStatus(GetParam()));
    send("event");
    device_.runUntilIdle();
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
    EXPECT_EQ(device_.network().requests().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Statuses, ZRMStatisticsSenderStatusTest,
                         ::testing::Values(200, 204, 302, 400, 401, 404, 429));

TEST_F(ZRMStatisticsSenderTest, ServerErrorIsRetriedAfterTwoAndFourSeconds) {
    device_.network().script("/stat", ZRMSimulatedAnswer::withStatus(503), 2);
    send("event");
    device_.advanceBy(1.9);
    EXPECT_EQ(device_.network().requests().size(), 1U);
    device_.advanceBy(0.2);
    EXPECT_EQ(device_.network().requests().size(), 2U);
    device_.advanceBy(4);
    EXPECT_EQ(device_.network().requests().size(), 3U);
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, ServerErrorAfterAllRetriesCountsAsSent) {
    device_.network().handle(
        "/stat", [](const ZRMUrlRequest&) { return ZRMSimulatedAnswer::withStatus(503); });
    send("event");
    device_.advanceBy(4.0 * 86400);
    EXPECT_EQ(device_.network().requests().size(), 18U);
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, LostConnectionIsRetried) {
    device_.network().script("/stat",
                             ZRMSimulatedAnswer::withError(ZRMUrlErrorNetworkConnectionLost));
    send("event");
    device_.advanceBy(2);
    EXPECT_EQ(device_.network().requests().size(), 2U);
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, FinalTransportErrorIsReportedAsFailed) {
    device_.network().script("/stat",
                             ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted));
    send("event");
    device_.runUntilIdle();
    EXPECT_THAT(ends_->texts, ElementsAre("failed event -1202"));
}

TEST_F(ZRMStatisticsSenderTest, StartsNothingWhileTheServerCannotBeReached) {
    device_.reachability().setFlagsOfHost("risk.example.com", 0);
    device_.runUntilIdle();
    EXPECT_TRUE(sender_->queue().isSuspended());
    send("event");
    device_.advanceBy(3600);
    EXPECT_THAT(bodies(), IsEmpty());
    device_.reachability().setFlagsOfHost("risk.example.com", ZRMReachabilityReachable);
    device_.runUntilIdle();
    EXPECT_FALSE(sender_->queue().isSuspended());
    EXPECT_THAT(bodies(), ElementsAre("event"));
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, WaitsFromTheStartWhereTheServerCannotBeReached) {
    device_.reachability().setFlagsOfHost("risk.example.com", 0);
    makeSender();
    EXPECT_TRUE(sender_->queue().isSuspended());
    send("event");
    device_.advanceBy(3600);
    EXPECT_THAT(bodies(), IsEmpty());
    device_.reachability().setFlagsOfHost("risk.example.com", ZRMReachabilityReachable);
    device_.runUntilIdle();
    EXPECT_THAT(bodies(), ElementsAre("event"));
}

TEST_F(ZRMStatisticsSenderTest, DoesNotWaitForWhatItWouldNotLearn) {
    device_.reachability().setFlagsOfHost("risk.example.com", 0);
    device_.reachability().setSchedulingRefused(true);
    makeSender();
    EXPECT_FALSE(sender_->queue().isSuspended());
    device_.reachability().setTargetsRefused(true);
    makeSender();
    EXPECT_FALSE(sender_->queue().isSuspended());
    send("event");
    device_.runUntilIdle();
    EXPECT_THAT(bodies(), ElementsAre("event"));
}

TEST_F(ZRMStatisticsSenderTest, UploadUnderWayGoesOnWhenTheServerGoesOutOfReach) {
    keepServerSilent();
    send("event");
    device_.advanceBy(1);
    device_.reachability().setFlagsOfHost("risk.example.com", 0);
    device_.advanceBy(60);
    EXPECT_THAT(ends_->texts, IsEmpty());
    device_.reachability().setFlagsOfHost("risk.example.com",
                                          ZRMReachabilityReachable | ZRMReachabilityIsCellular);
    device_.runUntilIdle();
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
    EXPECT_EQ(device_.network().requests().size(), 1U);
}

TEST_F(ZRMStatisticsSenderTest, AddressWithoutAHostFollowsTheInternetConnection) {
    makeSender("no-host");
    device_.reachability().setFlags(0);
    device_.runUntilIdle();
    EXPECT_TRUE(sender_->queue().isSuspended());
    device_.reachability().setFlags(ZRMReachabilityReachable);
    device_.runUntilIdle();
    EXPECT_FALSE(sender_->queue().isSuspended());
}

TEST_F(ZRMStatisticsSenderTest, DataWhoseUploadIsUnderWayIsNotSentTwice) {
    keepServerSilent();
    const auto data = send("event");
    sender_->sendStatisticsData(data);
    device_.advanceBy(60);
    sender_->sendStatisticsData(data);
    device_.advanceBy(60);
    EXPECT_EQ(device_.network().requests().size(), 1U);
    EXPECT_THAT(ends_->texts, ElementsAre("sent event"));
}

TEST_F(ZRMStatisticsSenderTest, DataWhoseUploadFailedMayBeSentAgain) {
    device_.network().script("/stat", ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost));
    const auto data = send("event");
    device_.runUntilIdle();
    sender_->sendStatisticsData(data);
    device_.runUntilIdle();
    EXPECT_THAT(ends_->texts, ElementsAre("failed event -1003", "sent event"));
}

TEST_F(ZRMStatisticsSenderTest, BytesFarBehindInTheLineAreLetGoUntilTheirTurn) {
    device_.reachability().setFlagsOfHost("risk.example.com", 0);
    device_.runUntilIdle();
    std::vector<std::shared_ptr<StubData>> data;
    for (int number = 0; number < 10; ++number) {
        data.push_back(std::make_shared<StubData>(std::to_string(number)));
        sender_->sendStatisticsData(data.back());
    }
    EXPECT_EQ(data[0]->reads, 1);
    EXPECT_EQ(data[0]->faults, 0);
    EXPECT_EQ(data[9]->reads, 0);
    EXPECT_EQ(data[9]->faults, 1);
    device_.reachability().setFlagsOfHost("risk.example.com", ZRMReachabilityReachable);
    device_.runUntilIdle();
    EXPECT_EQ(ends_->texts.size(), 10U);
}

TEST_F(ZRMStatisticsSenderTest, MoreIsMadeReadyOnceAnswersCome) {
    keepServerSilent();
    const auto data = sendMany(100, 1);
    EXPECT_EQ(readsOf(data), 8);
    device_.advanceBy(50);
    EXPECT_EQ(device_.network().requests().size(), 8U);
    EXPECT_EQ(readsOf(data), 1 + 64);
    device_.advanceBy(25 * 50);
    EXPECT_EQ(readsOf(data), 100);
    EXPECT_EQ(ends_->texts.size(), 100U);
}

TEST_F(ZRMStatisticsSenderTest, OfLongEventsOnlyAFewAreMadeReady) {
    keepServerSilent();
    const auto data = sendMany(20, std::size_t{64} * 1024);
    device_.advanceBy(50);
    EXPECT_EQ(readsOf(data), 4 + 8);
    device_.advanceBy(5 * 50);
    EXPECT_EQ(ends_->texts.size(), 20U);
}

TEST_F(ZRMStatisticsSenderTest, NobodyNeedsTheBytesOfAnAnsweredUpload) {
    const auto answered = send("answered");
    device_.runUntilIdle();
    EXPECT_TRUE(answered->isAnswered());
    device_.network().script("/stat", ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost));
    const auto failed = send("failed");
    device_.runUntilIdle();
    EXPECT_FALSE(failed->isAnswered());
}

TEST_F(ZRMStatisticsSenderTest, DataThatCannotBeReadIsLoggedAndLeftForALaterTry) {
    const auto unreadable = std::make_shared<StubData>("event", false);
    sender_->sendStatisticsData(unreadable);
    send("next");
    device_.runUntilIdle();
    EXPECT_THAT(errors(), ElementsAre("Can't read stored statistic to send it"));
    EXPECT_THAT(bodies(), ElementsAre("next"));
    EXPECT_THAT(ends_->texts, ElementsAre("sent next"));
    EXPECT_TRUE(unreadable->beginUpload());
}

TEST_F(ZRMStatisticsSenderTest, TellsNothingToAnObserverThatLeft) {
    sender_->removeObserver(ends_.get());
    send("event");
    device_.runUntilIdle();
    EXPECT_THAT(ends_->texts, IsEmpty());
}
