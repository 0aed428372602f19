#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;

namespace {

class ZRMSimulatedNetworkTest : public testing::Test {
  protected:
    // An exchange that is kept until the test ends.
    void start(const std::string& path, const ZRMUrlSessionConfiguration& configuration = {}) {
        const auto session = device.platform()->urlSessions->makeSession(configuration);
        sessions.push_back(session);
        session->start({.url = "https://risk.example.com" + path}, [this](ZRMUrlExchange exchange) {
            ends.push_back(device.now().secondsSince(begin));
            exchanges.push_back(std::move(exchange));
        });
    }
    [[nodiscard]] std::vector<int> outcomes() const {
        std::vector<int> codes;
        for (const auto& exchange : exchanges) {
            codes.push_back(exchange.error      ? static_cast<int>(exchange.error->code())
                            : exchange.response ? exchange.response->statusCode
                                                : 0);
        }
        return codes;
    }

    ZRMSimulatedDevice device;
    ZRMDate begin = device.now();
    std::vector<std::shared_ptr<ZRMUrlSession>> sessions;
    std::vector<ZRMUrlExchange> exchanges;
    std::vector<double> ends;
};

}  // namespace

TEST_F(ZRMSimulatedNetworkTest, Answers200ByItself) {
    start("/stat");
    device.runUntilIdle();
    EXPECT_THAT(outcomes(), ElementsAre(200));
}

TEST_F(ZRMSimulatedNetworkTest, TheScriptOfAPathComesBeforeItsHandlerAndThatBeforeTheGeneralOne) {
    device.network().handleEverything(
        [](const auto&) { return ZRMSimulatedAnswer::withStatus(203); });
    device.network().handle("/stat",
                            [](const auto&) { return ZRMSimulatedAnswer::withStatus(202); });
    device.network().script("/stat", ZRMSimulatedAnswer::withStatus(503), 2);
    device.network().script("/stat", ZRMSimulatedAnswer::withStatus(201));
    for (const std::string path : {"/stat", "/stat", "/stat?x=/other", "/stat", "/config"}) {
        start(path);
        device.runUntilIdle();
    }
    EXPECT_THAT(outcomes(), ElementsAre(503, 503, 201, 202, 203));
    device.network().handle("/stat", {});
    start("/stat");
    device.runUntilIdle();
    EXPECT_EQ(outcomes().back(), 203);
}

TEST_F(ZRMSimulatedNetworkTest, AHandlerSeesTheRequest) {
    device.network().handle("/stat", [](const ZRMUrlRequest& request) {
        return ZRMSimulatedAnswer::withBody("to " + request.url);
    });
    start("/stat");
    device.runUntilIdle();
    ASSERT_EQ(exchanges.size(), 1u);
    EXPECT_EQ(zrm_textFromData(exchanges[0].data), "to https://risk.example.com/stat");
}

TEST_F(ZRMSimulatedNetworkTest, AnAnswerComesAfterItsDelay) {
    device.network().script("/stat", ZRMSimulatedAnswer::withStatus(200).after(2.5));
    start("/stat");
    device.advanceBy(10);
    EXPECT_THAT(ends, ElementsAre(2.5));
}

TEST_F(ZRMSimulatedNetworkTest, AWallClockJumpDoesNotHurryAnAnswer) {
    device.network().script("/stat", ZRMSimulatedAnswer::withStatus(200).after(10));
    start("/stat");
    device.jumpWallClock(3600);
    EXPECT_TRUE(exchanges.empty());
    device.advanceBy(10);
    EXPECT_THAT(outcomes(), ElementsAre(200));
}

TEST_F(ZRMSimulatedNetworkTest, SilenceEndsAtTheRequestTimeout) {
    device.network().script("/stat", ZRMSimulatedAnswer::never());
    start("/stat", {.requestTimeoutSeconds = 7, .resourceTimeoutSeconds = 9});
    device.advanceBy(100);
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorTimedOut));
    EXPECT_THAT(ends, ElementsAre(7));
}

TEST_F(ZRMSimulatedNetworkTest, AScriptedErrorBeyondTheTimeoutIsATimeout) {
    device.network().script("/stat",
                            ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost).after(100));
    device.network().script("/stat",
                            ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost).after(5));
    start("/stat", {.requestTimeoutSeconds = 7});
    start("/stat", {.requestTimeoutSeconds = 7});
    device.advanceBy(200);
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorCannotFindHost, ZRMUrlErrorTimedOut));
}

TEST_F(ZRMSimulatedNetworkTest, ASlowBodyOutlastsTheRequestTimeoutAndNotTheResourceTimeout) {
    auto slow = ZRMSimulatedAnswer::withBody("0123456789");
    slow.bodySeconds = 20;
    device.network().script("/stat", slow, 2);
    start("/stat", {.requestTimeoutSeconds = 5, .resourceTimeoutSeconds = 30});
    start("/stat", {.requestTimeoutSeconds = 5, .resourceTimeoutSeconds = 10});
    device.advanceBy(60);
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorTimedOut, 200));
    EXPECT_THAT(ends, ElementsAre(10, 20));
    EXPECT_EQ(zrm_textFromData(exchanges[0].data), "01234");
    EXPECT_TRUE(exchanges[0].response);
    EXPECT_EQ(zrm_textFromData(exchanges[1].data), "0123456789");
}

TEST_F(ZRMSimulatedNetworkTest, AConnectionLostInTheBodyLeavesItsFirstBytes) {
    auto cut = ZRMSimulatedAnswer::withBody("0123456789");
    cut.lostAfterBytes = 3;
    cut.bodySeconds = 10;
    device.network().script("/stat", cut);
    start("/stat");
    device.advanceBy(60);
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorNetworkConnectionLost));
    EXPECT_THAT(ends, ElementsAre(3));
    EXPECT_EQ(zrm_textFromData(exchanges[0].data), "012");
}

TEST_F(ZRMSimulatedNetworkTest, CancellingLeavesWhatHadArrivedByThen) {
    auto slow = ZRMSimulatedAnswer::withBody("0123456789");
    slow.bodySeconds = 10;
    device.network().script("/stat", slow);
    start("/stat");
    device.advanceBy(4);
    sessions[0]->invalidateAndCancel();
    device.runUntilIdle();
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorCancelled));
    EXPECT_EQ(zrm_textFromData(exchanges[0].data), "0123");
}

TEST_F(ZRMSimulatedNetworkTest, WithoutAConnectionRequestsFailAtOnceAndAreRecorded) {
    device.network().setConnected(false);
    start("/stat");
    device.runUntilIdle();
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorNotConnectedToInternet));
    EXPECT_EQ(device.network().requests().size(), 1u);
    device.network().setConnected(true);
    start("/stat");
    device.runUntilIdle();
    EXPECT_EQ(outcomes().back(), 200);
}

TEST_F(ZRMSimulatedNetworkTest, LosingTheConnectionBreaksExchangesUnderWay) {
    device.network().script("/stat", ZRMSimulatedAnswer::withStatus(200).after(10));
    start("/stat");
    device.advanceBy(5);
    device.network().setConnected(false);
    device.advanceBy(100);
    EXPECT_THAT(outcomes(), ElementsAre(ZRMUrlErrorNetworkConnectionLost));
    EXPECT_THAT(ends, ElementsAre(5));
}

TEST_F(ZRMSimulatedNetworkTest, TheDevicesConnectionCarriesReachabilityWithIt) {
    const auto target = device.platform()->reachabilityTargets->targetForHost("risk.example.com");
    device.setConnected(false);
    EXPECT_FALSE(device.network().isConnected());
    EXPECT_EQ(target->flags(), 0u);
    device.setConnected(true);
    EXPECT_EQ(target->flags(), ZRMReachabilityReachable);
}

TEST_F(ZRMSimulatedNetworkTest, RecordsRequestsWithTheirMomentAndConfiguration) {
    device.advanceBy(3);
    start("/stat", {.cachePolicy = ZRMUrlRequestCachePolicy::ReloadIgnoringLocalCacheData,
                    .requestTimeoutSeconds = 11});
    const auto& records = device.network().requests();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].path(), "/stat");
    EXPECT_EQ(records[0].bodyText(), "");
    EXPECT_EQ(records[0].startedAt.secondsSince(begin), 3);
    EXPECT_EQ(records[0].startedAtUptimeSeconds, ZRMSimulatedTime::kStartUptimeSeconds + 3);
    EXPECT_EQ(records[0].configuration.requestTimeoutSeconds, 11);
    EXPECT_EQ(records[0].configuration.cachePolicy,
              ZRMUrlRequestCachePolicy::ReloadIgnoringLocalCacheData);
    EXPECT_TRUE(device.network().requestsTo("/config").empty());
    device.network().forgetRequests();
    EXPECT_TRUE(device.network().requests().empty());
}

TEST(ZRMSimulatedNetworkPath, IsThatOfTheUrl) {
    EXPECT_EQ(ZRMSimulatedNetwork::pathOfUrl("https://a.b/stat"), "/stat");
    EXPECT_EQ(ZRMSimulatedNetwork::pathOfUrl("https://a.b:1/x/y?q=/z#f"), "/x/y");
    EXPECT_EQ(ZRMSimulatedNetwork::pathOfUrl("https://a.b"), "/");
    EXPECT_EQ(ZRMSimulatedNetwork::pathOfUrl("https://a.b?q=/z"), "/");
    EXPECT_EQ(ZRMSimulatedNetwork::pathOfUrl("https://a.b#/z"), "/");
}
