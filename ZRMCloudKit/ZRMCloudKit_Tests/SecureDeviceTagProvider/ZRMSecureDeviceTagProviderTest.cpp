#include <cerrno>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

constexpr const char* kPath = "/zwjsqd";
constexpr const char* kTagDirectory = "/device/data/ZRMCloudKit";

class ZRMSecureDeviceTagProviderTest : public testing::Test {
  protected:
    ZRMSecureDeviceTagProviderTest() {
        environment_->osName = "iOS";
        environment_->clientId = "bank";
    }

    // Of the current process, with the storage as it lies on the disk.
    ZRMSecureDeviceTagProvider& makeProvider() {
        storage_ = ZRMCloudKitSettings::settingsFromDirectory(device_.platform(), kTagDirectory);
        provider_ = std::make_shared<ZRMSecureDeviceTagProvider>(
            device_.platform(),
            ZRMSecureDeviceTagParameters{
                "https://risk.example.com/zwjsqd", {}, storage_, environment_, serverTimeProvider_},
            verification_.verification());
        return *provider_;
    }
    void restart() {
        provider_ = nullptr;
        storage_ = nullptr;
        device_.restartProcess();
    }
    void serve(std::string_view payload) { serveBody(zrm_jwsTextWithPayload(payload)); }
    void serveBody(const std::string& body) {
        device_.network().script(kPath, ZRMSimulatedAnswer::withBody(body));
    }
    [[nodiscard]] std::size_t requestCount() const {
        return const_cast<ZRMSimulatedDevice&>(device_).network().requestsTo(kPath).size();
    }
    static std::string header(const ZRMUrlRequest& request, const char* name) {
        const auto* const value = request.headers.find(name);
        return value == nullptr ? "absent" : *value;
    }
    // A refresh that fails with that one line, leaves what was there, and is not repeated.
    void expectFailure(const std::string& line) {
        makeProvider();
        const auto tag = provider_->secureDeviceTag();
        const auto date = storage_->secureDeviceTagRefreshDate();
        const ZRMRecordedLog log;
        provider_->refresh();
        device_.runUntilIdle();
        EXPECT_THAT(log.errors(), ElementsAre(line));
        EXPECT_EQ(provider_->secureDeviceTag(), tag);
        EXPECT_EQ(storage_->secureDeviceTag(), tag);
        EXPECT_EQ(storage_->secureDeviceTagRefreshDate(), date);
        EXPECT_EQ(storage_->secureDeviceTagRefreshInterval(), 0);
        const auto before = requestCount();
        device_.advanceBy(7 * 86400);
        EXPECT_EQ(requestCount(), before);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMFakeJwsVerification verification_;
    std::shared_ptr<ZRMEnvironmentDataImpl> environment_ =
        std::make_shared<ZRMEnvironmentDataImpl>();
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    std::shared_ptr<ZRMCloudKitSettings> storage_;
    std::shared_ptr<ZRMSecureDeviceTagProvider> provider_;
};

}  // namespace

TEST_F(ZRMSecureDeviceTagProviderTest, BeginsWithAPlaceholderThatIsOnlyInMemory) {
    const auto tag = makeProvider().secureDeviceTag();
    EXPECT_THAT(tag, MatchesRegex("L![0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                  "[0-9A-F]{12}"));
    EXPECT_EQ(storage_->secureDeviceTag(), tag);
    EXPECT_TRUE(provider_->isRefreshNeeded());
    restart();
    EXPECT_NE(makeProvider().secureDeviceTag(), tag);
}

TEST_F(ZRMSecureDeviceTagProviderTest, NextSaveOfTheStorageKeepsThePlaceholder) {
    const auto tag = makeProvider().secureDeviceTag();
    EXPECT_TRUE(storage_->save());
    restart();
    EXPECT_EQ(makeProvider().secureDeviceTag(), tag);
}

TEST_F(ZRMSecureDeviceTagProviderTest, TakesTheStoredTag) {
    makeProvider();
    storage_->setSecureDeviceTag("STORED");
    storage_->save();
    restart();
    EXPECT_EQ(makeProvider().secureDeviceTag(), "STORED");
}

TEST_F(ZRMSecureDeviceTagProviderTest, RequestIsAPostOfTheEnvironmentWithItsHeaders) {
    const auto request = makeProvider().makeRequestForSecureDeviceTag();
    ASSERT_TRUE(request);
    EXPECT_EQ(request->url, "https://risk.example.com/zwjsqd");
    EXPECT_EQ(request->method, "POST");
    const std::vector<ZRMHttpHeaders::Field> expected{
        {"Content-Type", "application/json"},
        {"Accept", "application/jose+json"},
        {"Accept-Encoding", "deflate, gzip"},
        {"Mobile-UUID", provider_->secureDeviceTag()}};
    EXPECT_EQ(request->headers.fields(), expected);
    EXPECT_EQ(zrm_textFromData(*request->body),
              zrm_compactJsonText(ZRMDictionary{{"environmentData", environment_->dictionary()}})
                  .value());
}

TEST_F(ZRMSecureDeviceTagProviderTest, RequestTellsAValidServerTimeInWholeSeconds) {
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    EXPECT_EQ(header(*makeProvider().makeRequestForSecureDeviceTag(), "Request-Server-Timestamp"),
              "absent");
    serverTimeProvider_->setTime("Tue, 05 Mar 2024 07:08:09 GMT");
    device_.advanceBy(0.999);
    EXPECT_EQ(header(*provider_->makeRequestForSecureDeviceTag(), "Request-Server-Timestamp"),
              "1709622489");
}

TEST_F(ZRMSecureDeviceTagProviderTest, TextOfTheEnvironmentThatIsNotUtf8IsSentRepaired) {
    environment_->osName = "a\xFF";
    const auto request = makeProvider().makeRequestForSecureDeviceTag();
    ASSERT_TRUE(request);
    const auto body = zrm_jsonFromData(*request->body).value();
    EXPECT_EQ(body.at("environmentData").at("osName"), "a\uFFFD");
}

TEST_F(ZRMSecureDeviceTagProviderTest, NewInstallationAsksAtOnceWithItsPlaceholder) {
    const auto placeholder = makeProvider().secureDeviceTag();
    provider_->refreshIfNeeded();
    device_.runUntilIdle();
    ASSERT_EQ(requestCount(), 1U);
    EXPECT_EQ(header(device_.network().requestsTo(kPath)[0].request, "Mobile-UUID"), placeholder);
}

TEST_F(ZRMSecureDeviceTagProviderTest, StoresTagIntervalAndDateAndAsksAgainAfterTheInterval) {
    serve(R"({"uuid":"ab12-cd","i":"PT2H"})");
    makeProvider().refreshIfNeeded();
    device_.runUntilIdle();
    const auto due = device_.now().addingSeconds(7200);
    EXPECT_EQ(provider_->secureDeviceTag(), "AB12-CD");
    EXPECT_FALSE(provider_->isRefreshNeeded());
    const auto stored =
        ZRMCloudKitSettings::settingsFromDirectory(device_.platform(), kTagDirectory);
    EXPECT_EQ(stored->secureDeviceTag(), "AB12-CD");
    EXPECT_EQ(stored->secureDeviceTagRefreshInterval(), 7200);
    EXPECT_NEAR(stored->secureDeviceTagRefreshDate().secondsSince(due), 0, 0.01);
    ASSERT_EQ(verification_.calls.size(), 1U);
    EXPECT_TRUE(verification_.calls[0].checkCert);

    serve(R"({"uuid":"next","i":"PT1H"})");
    device_.advanceBy(7199);
    EXPECT_EQ(requestCount(), 1U);
    device_.advanceBy(2);
    ASSERT_EQ(requestCount(), 2U);
    EXPECT_EQ(header(device_.network().requestsTo(kPath)[1].request, "Mobile-UUID"), "AB12-CD");
    EXPECT_EQ(provider_->secureDeviceTag(), "NEXT");
    device_.advanceBy(3600);
    EXPECT_EQ(requestCount(), 3U);
    EXPECT_THAT(log_.errors(), testing::SizeIs(1));  // the third answer was empty
}

TEST_F(ZRMSecureDeviceTagProviderTest, StoredDateInThePastIsRefreshedAtOnce) {
    makeProvider();
    storage_->setSecureDeviceTag("STORED");
    storage_->setSecureDeviceTagRefreshDate(device_.now().addingSeconds(-1));
    provider_->refreshIfNeeded();
    device_.runUntilIdle();
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, StoredDateThatIsNowIsRefreshedAtOnce) {
    makeProvider();
    storage_->setSecureDeviceTagRefreshDate(device_.now());
    EXPECT_TRUE(provider_->isRefreshNeeded());
}

TEST_F(ZRMSecureDeviceTagProviderTest, StoredDateInTheFutureIsWaitedFor) {
    makeProvider();
    storage_->setSecureDeviceTagRefreshDate(device_.now().addingSeconds(600));
    provider_->refreshIfNeeded();
    device_.advanceBy(599);
    EXPECT_EQ(requestCount(), 0U);
    device_.advanceBy(2);
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, ArrangedRefreshFollowsTheWallClock) {
    makeProvider();
    storage_->setSecureDeviceTagRefreshDate(device_.now().addingSeconds(86400));
    provider_->refreshIfNeeded();
    device_.jumpWallClock(86401);
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, IntervalOfNoTimeDoesNotMakeItAskWithoutPause) {
    device_.network().handle(kPath, [](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withBody(zrm_jwsTextWithPayload(R"({"uuid":"a","i":"PT0S"})"));
    });
    makeProvider().refreshIfNeeded();
    device_.advanceBy(10.5);
    EXPECT_EQ(requestCount(), 11U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, NoAnswerIsLoggedAndLeavesTheTag) {
    device_.network().script(kPath, ZRMSimulatedAnswer::withError(ZRMUrlErrorBadUrl));
    makeProvider().refresh();
    device_.runUntilIdle();
    ASSERT_EQ(log_.errors().size(), 1U);
    EXPECT_THAT(log_.errors()[0], testing::StartsWith("Request secure deivce tag error: "));
    device_.network().script(kPath, ZRMSimulatedAnswer::withError(ZRMUrlErrorBadUrl));
    expectFailure(log_.errors()[0]);
}

TEST_F(ZRMSecureDeviceTagProviderTest, AnswerThatIsNoJwsObjectIsLoggedAndLeavesTheTag) {
    serveBody("{}");
    const auto error = ZRMJwsObject::jwsObjectFromData(zrm_dataFromText("{}")).error();
    expectFailure("Can't create JWS object from data: " + error.localizedDescription());
    EXPECT_THAT(verification_.calls, IsEmpty());
}

TEST_F(ZRMSecureDeviceTagProviderTest, FailedVerificationIsLoggedAndLeavesTheTag) {
    serve(R"({"uuid":"a","i":"PT2H"})");
    verification_.error = ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown);
    expectFailure("Recieved data verify error: Unknown error.");
}

TEST_F(ZRMSecureDeviceTagProviderTest, UnusablePayloadIsLoggedAndLeavesTheTag) {
    serve("[]");
    expectFailure("Recieved data parse error: The JSON text is no object.");
    serve(R"({"i":"PT2H"})");
    expectFailure("Recieved data parse error: The payload has no usable \"uuid\".");
}

TEST_F(ZRMSecureDeviceTagProviderTest, TriesAgainAtTheNextStart) {
    serve("[]");
    makeProvider().refreshIfNeeded();
    device_.runUntilIdle();
    restart();
    serve(R"({"uuid":"a","i":"PT2H"})");
    makeProvider().refreshIfNeeded();
    device_.runUntilIdle();
    EXPECT_EQ(provider_->secureDeviceTag(), "A");
}

TEST_F(ZRMSecureDeviceTagProviderTest, StorageThatCannotBeSavedIsLoggedAndTheTagIsUsed) {
    serve(R"({"uuid":"a","i":"PT2H"})");
    makeProvider();
    ZRMSimulatedDiskFault fault;
    fault.operation = ZRMSimulatedDiskOperation::Write;
    fault.errorNumber = ENOSPC;
    device_.disk().faults().add(fault);
    provider_->refresh();
    device_.runUntilIdle();
    ASSERT_THAT(log_.errors(), testing::Not(IsEmpty()));
    EXPECT_EQ(log_.errors().back(), "Save storage error");
    EXPECT_EQ(provider_->secureDeviceTag(), "A");
    device_.disk().faults().clear();
    device_.advanceBy(7201);
    EXPECT_EQ(requestCount(), 2U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, ServersTimeIsTakenWhateverElseTheAnswerHolds) {
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    auto answer = ZRMSimulatedAnswer::withBody("garbage");
    answer.headers.set("Date", "Tue, 05 Mar 2024 07:08:09 GMT");
    device_.network().script(kPath, answer);
    makeProvider().refresh();
    device_.runUntilIdle();
    EXPECT_EQ(serverTimeProvider_->getTime(), 1709622489000);
}

TEST_F(ZRMSecureDeviceTagProviderTest, RetriesWhatMayHelp) {
    device_.network().script(kPath, ZRMSimulatedAnswer::withStatus(503));
    serve(R"({"uuid":"a","i":"PT2H"})");
    makeProvider().refresh();
    device_.advanceBy(2.5);
    EXPECT_EQ(requestCount(), 2U);
    EXPECT_EQ(provider_->secureDeviceTag(), "A");
}

TEST_F(ZRMSecureDeviceTagProviderTest, RefreshesRunOneAfterTheOther) {
    device_.network().script(
        kPath,
        ZRMSimulatedAnswer::withBody(zrm_jwsTextWithPayload(R"({"uuid":"a","i":"PT2H"})")).after(5),
        2);
    makeProvider();
    provider_->refresh();
    provider_->refresh();
    device_.advanceBy(4);
    EXPECT_EQ(requestCount(), 1U);
    device_.advanceBy(2);
    EXPECT_EQ(requestCount(), 2U);
    device_.advanceBy(5);
    EXPECT_EQ(provider_->secureDeviceTag(), "A");
}

TEST_F(ZRMSecureDeviceTagProviderTest, RefreshUnderWayOutlivesItsOwner) {
    serve(R"({"uuid":"a","i":"PT2H"})");
    makeProvider().refresh();
    provider_ = nullptr;
    device_.runUntilIdle();
    EXPECT_EQ(storage_->secureDeviceTag(), "A");
    device_.advanceBy(7201);
    EXPECT_EQ(requestCount(), 1U);
}

TEST_F(ZRMSecureDeviceTagProviderTest, KilledAnywhereItLeavesAllOldOrAllNewValues) {
    serve(R"({"uuid":"a","i":"PT2H"})");
    makeProvider();
    storage_->setSecureDeviceTag("OLD");
    storage_->save();
    const auto begin = device_.disk().faults().operationCount();
    provider_->refresh();
    device_.runUntilIdle();
    const auto operations = device_.disk().faults().operationCount() - begin;
    ASSERT_GT(operations, 1U);

    for (std::uint64_t number = 1; number <= operations; ++number) {
        restart();
        makeProvider();
        storage_->execSaveTransaction([](ZRMCloudKitSettings& storage) {
            storage.setSecureDeviceTag("OLD");
            storage.setSecureDeviceTagRefreshInterval(60);
            storage.setSecureDeviceTagRefreshDate({1000});
        });
        restart();
        makeProvider();
        serve(R"({"uuid":"a","i":"PT2H"})");
        device_.killAtDiskOperation(device_.disk().faults().operationCount() + number);
        provider_->refresh();
        device_.runUntilIdle();
        provider_ = nullptr;
        device_.restartProcess(ZRMSimulatedLoss::All);
        const auto found =
            ZRMCloudKitSettings::settingsFromDirectory(device_.platform(), kTagDirectory);
        const bool isOld = found->secureDeviceTag() == "OLD";
        EXPECT_TRUE(isOld || found->secureDeviceTag() == "A") << number;
        EXPECT_EQ(found->secureDeviceTagRefreshInterval(), isOld ? 60 : 7200) << number;
        EXPECT_EQ(found->secureDeviceTagRefreshDate().secondsSince1970 == 1000, isOld) << number;
    }
}
