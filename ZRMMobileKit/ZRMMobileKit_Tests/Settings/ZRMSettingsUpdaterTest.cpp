#include <cerrno>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Updater/ZRMSettingsUpdater.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kPath = "/config/v1";
constexpr double kDaySeconds = 86400;

class FakeTags final : public ZRMDeviceTagProvider {
  public:
    std::string tag = "TAG_SECURE";
    std::string secureTag = "SECURE";
    [[nodiscard]] std::string deviceTag() const override { return tag; }
    [[nodiscard]] std::string secureDeviceTag() const override { return secureTag; }
};

class ZRMSettingsUpdaterTest : public testing::Test {
  protected:
    ZRMSettingsUpdaterTest() {
        settings_.urls().setSettingsUpdateUrl("https://risk.example.com/config/v1");
        device_.mainBundle().setIdentifier("com.example.bank");
        device_.mainBundle().setInfoText("CFBundleVersion", "42");
    }

    std::shared_ptr<ZRMSettingsUpdater> makeUpdater() {
        const auto platform = device_.platform();
        return std::make_shared<ZRMSettingsUpdater>(
            platform,
            ZRMSettingsUpdaterParameters{
                settings_, zrm_mobileKitDefaults(*platform->userDefaults), tags_, "3.28.0.12",
                serverTimeProvider_,
                std::make_shared<ZRMSettingsStorage>(platform->fileManager, platform->directories),
                verification_.verification()});
    }
    // Runs one update to its end; what its handler got.
    std::optional<ZRMError> update() {
        std::vector<std::optional<ZRMError>> calls;
        makeUpdater()->updateWithCompletionHandler(
            [&calls](std::optional<ZRMError> error) { calls.push_back(std::move(error)); });
        device_.runUntilIdle();
        EXPECT_EQ(calls.size(), 1U);
        return calls.at(0);
    }
    ZRMUrlRequest request() { return makeUpdater()->makeRequestForSettings().value(); }
    ZRMDictionary params() {
        const auto json = zrm_jsonFromData(makeUpdater()->paramsForRequest().value());
        return json.value().as_object();
    }
    static std::string header(const ZRMUrlRequest& request, const char* name) {
        const auto* const value = request.headers.find(name);
        return value == nullptr ? "absent" : *value;
    }

    [[nodiscard]] std::string filePath() const {
        return zrm_mobileKitSettingsFilePath(*device_.platform()->directories);
    }
    [[nodiscard]] std::string stored() const {
        return zrm_textFromData(
            const_cast<ZRMSimulatedDevice&>(device_).disk().bytesOf(filePath()));
    }
    [[nodiscard]] double timestamp() const {
        return zrm_mobileKitDefaults(*device_.platform()->userDefaults)->settingsUpdateTimestamp();
    }
    void setTimestamp(double secondsSince1970) {
        zrm_mobileKitDefaults(*device_.platform()->userDefaults)
            ->setSettingsUpdateTimestamp(secondsSince1970);
    }
    void serve(const std::string& body) {
        device_.network().script(kPath, ZRMSimulatedAnswer::withBody(body));
    }
    // A document and a time from before, which a failing update has to leave.
    void storeBefore() {
        device_.disk().put(filePath(), "before");
        setTimestamp(1000);
    }
    void expectAsBefore() {
        EXPECT_EQ(stored(), "before");
        EXPECT_EQ(timestamp(), 1000);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMFakeJwsVerification verification_;
    ZRMMobileServiceSettings settings_ = ZRMMobileServiceSettings::defaultSettings();
    std::shared_ptr<FakeTags> tags_ = std::make_shared<FakeTags>();
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_ =
        std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    const std::string document_ =
        zrm_jwsTextWithPayload(R"({"config":{"uiNavigationEventDisabled":"false"}})");
};

}  // namespace

TEST_F(ZRMSettingsUpdaterTest, IsNeededWhenNoTimeWasStored) {
    EXPECT_TRUE(makeUpdater()->isUpdateNeeded());
}

TEST_F(ZRMSettingsUpdaterTest, IsNotNeededAfter23HoursAndIsAfter24HoursAndASecond) {
    const auto now = device_.now().secondsSince1970;
    setTimestamp(now - 23 * 3600);
    EXPECT_FALSE(makeUpdater()->isUpdateNeeded());
    setTimestamp(now - kDaySeconds - 1);
    EXPECT_TRUE(makeUpdater()->isUpdateNeeded());
}

TEST_F(ZRMSettingsUpdaterTest, IsNotNeededAtTheVeryMoment) {
    setTimestamp(device_.now().secondsSince1970 - kDaySeconds);
    EXPECT_FALSE(makeUpdater()->isUpdateNeeded());
}

TEST_F(ZRMSettingsUpdaterTest, FollowsTheIntervalOfTheSettings) {
    settings_.timeIntervals().setSettingsUpdateInterval(60);
    setTimestamp(device_.now().secondsSince1970 - 61);
    EXPECT_TRUE(makeUpdater()->isUpdateNeeded());
    setTimestamp(device_.now().secondsSince1970 - 59);
    EXPECT_FALSE(makeUpdater()->isUpdateNeeded());
}

TEST_F(ZRMSettingsUpdaterTest, WithoutNeedSendsNothingAndSucceedsAtOnce) {
    setTimestamp(device_.now().secondsSince1970);
    int calls = 0;
    makeUpdater()->updateWithCompletionHandler([&calls](const std::optional<ZRMError>& error) {
        ++calls;
        EXPECT_EQ(error, std::nullopt);
    });
    EXPECT_EQ(calls, 1);
    device_.runUntilIdle();
    EXPECT_THAT(device_.network().requests(), IsEmpty());
    EXPECT_THAT(log_.verboses(), ElementsAre("No need to update settings"));
}

TEST_F(ZRMSettingsUpdaterTest, RequestIsAPostToTheSettingsUrlWithItsHeaders) {
    const auto request = this->request();
    EXPECT_EQ(request.url, "https://risk.example.com/config/v1");
    EXPECT_EQ(request.method, "POST");
    const std::vector<ZRMHttpHeaders::Field> expected{{"Content-Type", "application/json"},
                                                      {"Accept", "application/jose+json"},
                                                      {"Accept-Encoding", "deflate, gzip"},
                                                      {"Cache-control", "must-revalidate"},
                                                      {"Mobile-UUID", "SECURE"}};
    EXPECT_EQ(request.headers.fields(), expected);
    EXPECT_EQ(*request.body, makeUpdater()->paramsForRequest().value());
}

TEST_F(ZRMSettingsUpdaterTest, RequestTellsTheServersTimeInWholeSecondsOnceItIsKnown) {
    serverTimeProvider_->setTime("Tue, 05 Mar 2024 07:08:09 GMT");
    device_.advanceBy(1.9);
    EXPECT_EQ(header(request(), "Request-Server-Timestamp"), "1709622490");
}

TEST_F(ZRMSettingsUpdaterTest, RequestDoesWithoutAServerTimeProvider) {
    serverTimeProvider_ = nullptr;
    EXPECT_EQ(header(request(), "Request-Server-Timestamp"), "absent");
    serve(document_);
    EXPECT_EQ(update(), std::nullopt);
}

TEST_F(ZRMSettingsUpdaterTest, ParametersDescribeTheApplicationAndTheDevice) {
    const auto device = device_.platform()->device;
    EXPECT_EQ(params(), (ZRMDictionary{{"appId", "com.example.bank"},
                                       {"appVersion", "42"},
                                       {"os", device->systemName()},
                                       {"osVersion", device->systemVersion().value()},
                                       {"clientId", settings_.customizedClientId()},
                                       {"version", "3.28.0.12"},
                                       {"deviceTag", "TAG_SECURE"}}));
}

TEST_F(ZRMSettingsUpdaterTest, ParametersLeaveOutWhatIsAbsentButTheSystemsVersion) {
    device_.mainBundle().setIdentifier(std::nullopt);
    device_.mainBundle().setInfoText("CFBundleVersion", std::nullopt);
    device_.description().setSystemVersion(std::nullopt);
    tags_->tag = "";
    EXPECT_EQ(params(), (ZRMDictionary{{"os", device_.platform()->device->systemName()},
                                       {"osVersion", "unknown"},
                                       {"clientId", settings_.customizedClientId()},
                                       {"version", "3.28.0.12"}}));
}

TEST_F(ZRMSettingsUpdaterTest, ParametersCarryTheCustomizedClientId) {
    settings_.urls().setCustomStatisticsUrl("https://risk.example.com/stat?cid=mybank");
    EXPECT_EQ(params().at("clientId"), "mybank");
}

TEST_F(ZRMSettingsUpdaterTest, ParametersAreLoggedBeforeTheyAreSent) {
    device_.mainBundle().setIdentifier(std::nullopt);
    device_.mainBundle().setInfoText("CFBundleVersion", std::nullopt);
    params();
    EXPECT_THAT(log_.verboses(),
                ElementsAre(testing::StartsWith("Params for settings request:\n{\n  \"os\" : \"")));
}

TEST_F(ZRMSettingsUpdaterTest, ParametersThatAreNoJsonAreLoggedAndNothingIsSent) {
    device_.mainBundle().setIdentifier("\xFF");
    const auto error = update();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), kZRMCocoaErrorDomain);
    EXPECT_THAT(log_.errors(), ElementsAre(error->localizedDescription()));
    EXPECT_THAT(device_.network().requests(), IsEmpty());
    EXPECT_EQ(timestamp(), 0);
}

TEST_F(ZRMSettingsUpdaterTest, StoresTheBytesUnchangedAndStampsTheTime) {
    const auto answer = " " + document_ + "\n";
    serve(answer);
    EXPECT_EQ(update(), std::nullopt);
    EXPECT_EQ(stored(), answer);
    EXPECT_EQ(timestamp(), device_.now().secondsSince1970);
    ASSERT_EQ(verification_.calls.size(), 1U);
    EXPECT_TRUE(verification_.calls[0].checkCert);
    EXPECT_THAT(log_.verboses(),
                testing::IsSupersetOf(
                    {"Received settings data (" + std::to_string(answer.size()) + " bytes)",
                     std::string("Received settings data verified succesfully"),
                     std::string("Received settings data saved succesfully")}));
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMSettingsUpdaterTest, TakesTheServersTimeFromTheAnswerWhateverElseIsInIt) {
    auto answer = ZRMSimulatedAnswer::withBody("garbage");
    answer.headers.set("Date", "Tue, 05 Mar 2024 07:08:09 GMT");
    device_.network().script(kPath, answer);
    update();
    EXPECT_EQ(serverTimeProvider_->getTime(), 1709622489000);
}

TEST_F(ZRMSettingsUpdaterTest, WithoutADateTheServersTimeStaysUnknown) {
    serve(document_);
    update();
    EXPECT_FALSE(serverTimeProvider_->isValid());
}

TEST_F(ZRMSettingsUpdaterTest, AnswerThatIsNoJwsObjectIsError1AndLeavesEverything) {
    storeBefore();
    for (const auto* body : {"", "garbage", "{}", R"({"payload":"e30"})"}) {
        const ZRMRecordedLog log;
        serve(body);
        const auto error = update();
        ASSERT_TRUE(error) << body;
        EXPECT_EQ(error->code(), 1);
        EXPECT_THAT(log.errors(),
                    ElementsAre("Can't create JWS object from data: Data has invalid format."));
        expectAsBefore();
    }
    EXPECT_THAT(verification_.calls, IsEmpty());
}

TEST_F(ZRMSettingsUpdaterTest, RefusalByStatusIsReadLikeAnyAnswer) {
    auto answer = ZRMSimulatedAnswer::withBody(document_);
    answer.status = 404;
    device_.network().script(kPath, answer);
    EXPECT_EQ(update(), std::nullopt);
    EXPECT_EQ(stored(), document_);
}

TEST_F(ZRMSettingsUpdaterTest, FailedVerificationLeavesDocumentAndTime) {
    storeBefore();
    verification_.error = ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown);
    serve(document_);
    EXPECT_EQ(update(), verification_.error);
    EXPECT_THAT(log_.errors(), ElementsAre("Received settings data verify error: Unknown error."));
    EXPECT_THAT(log_.verboses(), Not(Contains("Received settings data verified succesfully")));
    expectAsBefore();
}

TEST_F(ZRMSettingsUpdaterTest, FailedDownloadLeavesDocumentAndTime) {
    storeBefore();
    device_.network().script(kPath,
                             ZRMSimulatedAnswer::withError(ZRMUrlErrorServerCertificateUntrusted));
    const auto error = update();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), ZRMUrlErrorServerCertificateUntrusted);
    EXPECT_THAT(log_.errors(),
                ElementsAre("Download settings error: " + error->localizedDescription()));
    expectAsBefore();
}

TEST_F(ZRMSettingsUpdaterTest, FailedWriteLeavesDocumentAndTime) {
    storeBefore();
    ZRMSimulatedDiskFault fault;
    fault.operation = ZRMSimulatedDiskOperation::Write;
    fault.errorNumber = ENOSPC;
    device_.disk().faults().add(fault);
    serve(document_);
    const auto error = update();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), ENOSPC);
    EXPECT_THAT(log_.errors(),
                ElementsAre("Save settings error: " + error->localizedDescription()));
    device_.disk().faults().clear();
    expectAsBefore();
}

TEST_F(ZRMSettingsUpdaterTest, RetriesWhatMayHelp) {
    device_.network().script(kPath, ZRMSimulatedAnswer::withStatus(503));
    device_.network().script(kPath, ZRMSimulatedAnswer::withError(ZRMUrlErrorTimedOut));
    serve(document_);
    int calls = 0;
    makeUpdater()->updateWithCompletionHandler([&calls](const std::optional<ZRMError>& error) {
        ++calls;
        EXPECT_EQ(error, std::nullopt);
    });
    device_.advanceBy(5.9);
    EXPECT_EQ(calls, 0);
    device_.advanceBy(0.2);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(device_.network().requestsTo(kPath).size(), 3U);
    EXPECT_EQ(stored(), document_);
}

TEST_F(ZRMSettingsUpdaterTest, UpdatesOfOneUpdaterRunOneAfterTheOther) {
    device_.network().script(kPath, ZRMSimulatedAnswer::withBody(document_).after(10), 2);
    const auto updater = makeUpdater();
    updater->updateWithCompletionHandler([](const std::optional<ZRMError>&) {});
    updater->updateWithCompletionHandler([](const std::optional<ZRMError>&) {});
    device_.advanceBy(9);
    EXPECT_EQ(device_.network().requests().size(), 1U);
    device_.advanceBy(2);
    EXPECT_EQ(device_.network().requests().size(), 2U);
    device_.advanceBy(10);
    EXPECT_EQ(stored(), document_);
}

TEST_F(ZRMSettingsUpdaterTest, FailedUpdateIsTriedAgainAtTheNextActivation) {
    serve("garbage");
    update();
    serve(document_);
    EXPECT_EQ(update(), std::nullopt);
    EXPECT_EQ(stored(), document_);
}

TEST_F(ZRMSettingsUpdaterTest,
       KilledAnywhereItLeavesOneWholeDocumentAndNeverANewTimeWithTheOldOne) {
    serve(document_);
    const auto begin = device_.disk().faults().operationCount();
    update();
    const auto operations = device_.disk().faults().operationCount() - begin;
    ASSERT_GT(operations, 2U);

    for (const auto loss :
         {ZRMSimulatedLoss::None, ZRMSimulatedLoss::All, ZRMSimulatedLoss::Some}) {
        for (std::uint64_t number = 1; number <= operations; ++number) {
            storeBefore();
            serve(document_);
            device_.killAtDiskOperation(device_.disk().faults().operationCount() + number);
            makeUpdater()->updateWithCompletionHandler([](const std::optional<ZRMError>&) {});
            device_.runUntilIdle();
            device_.restartProcess(loss);
            const auto found = stored();
            EXPECT_TRUE(found == "before" || found == document_) << number << ": " << found;
            if (found == "before") {
                EXPECT_EQ(timestamp(), 1000) << number;
            }
        }
    }
}
