#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMCloudKitFixture.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMFakeDetectors.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZRMCloudKitImplTest : public ZRMCloudKitFixture {};

TEST_F(ZRMCloudKitImplTest, LoadsItsSettingsBelowTheDataDirectoryWhenMade) {
    const auto core = makeCore();
    EXPECT_TRUE(device_.disk().holdsFile(kArchivePath));
    EXPECT_EQ(core->settings()->directory(), "/device/data/ZRMCloudKit");
}

TEST_F(ZRMCloudKitImplTest, NamesItsQueueAfterTheClassAndRunsItsWorkSideBySide) {
    const auto core = makeCore();
    EXPECT_EQ(core->queue().name(), "ZRMCloudKitImpl.queue");
    EXPECT_EQ(core->queue().maxConcurrentOperationCount(), ZRMOperationQueue::kUnlimited);
}

TEST_F(ZRMCloudKitImplTest, SendsNothingAndKnowsNoTagBeforeItIsStarted) {
    detectors_.touchId = std::make_shared<ZRMFakeTouchId>(ZRMTouchIdInfo(true, true, ZRMData{1}));
    detectors_.bundleHasher = std::make_shared<ZRMFakeBundleHasher>(ZRMData(16, 1));
    const auto core = makeCore();
    core->sendUserLogin("n", "r", "i");
    core->sendUserLogout();
    core->sendUINavigationPoint("p");
    core->sendSessionId("s");
    core->sendLogEvent({"l"});
    core->sendConfigEvent();
    core->sendTouchIdChanged();
    core->sendApplicationMd5();
    device_.runUntilIdle();
    EXPECT_THAT(service_->sent, IsEmpty());
    EXPECT_EQ(core->deviceTag(), "");
    EXPECT_EQ(core->secureDeviceTag(), "");
    EXPECT_EQ(core->pendingEventCount(), 0U);
    EXPECT_EQ(core->unstoredEventCount(), 0U);
    EXPECT_EQ(core->customHeaders(), (std::map<std::string, std::string>{{"Mobile-UUID", ""}}));
    EXPECT_EQ(core->settings()->touchIdDomainState(), std::nullopt);
    EXPECT_EQ(core->settings()->applicationMd5SendDate(), ZRMDate{0});
}

TEST_F(ZRMCloudKitImplTest, StartsAStatisticsServiceMadeFromItsConfiguration) {
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    configuration_.statisticsUrl = "https://stat.example.com/stat";
    const auto core = makeStartedCore();
    ASSERT_EQ(requests_.size(), 1U);
    EXPECT_EQ(requests_[0].url, "https://stat.example.com/stat");
    EXPECT_EQ(requests_[0].storagePath, kDataDirectory);
    EXPECT_EQ(requests_[0].customHeadersProvider, core);
    EXPECT_EQ(requests_[0].serverTimeProvider, serverTimeProvider_);
    EXPECT_EQ(service_->starts, 1);
    core->sendUserLogout();
    EXPECT_EQ(core->pendingEventCount(), 1U);
    service_->unstored = 7;
    EXPECT_EQ(core->unstoredEventCount(), 7U);
}

TEST_F(ZRMCloudKitImplTest, CountsWorkOnItsQueueAsEventsUntilItHasSentThem) {
    const auto core = makeStartedCore();
    core->sendConfigEvent();
    core->sendLogEvent({"line"});
    EXPECT_THAT(service_->sent, IsEmpty());
    EXPECT_EQ(core->pendingEventCount(), 2U);
    EXPECT_EQ(core->unstoredEventCount(), 2U);
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 2U);
    EXPECT_EQ(core->pendingEventCount(), 2U);
    EXPECT_EQ(core->unstoredEventCount(), 0U);
}

TEST_F(ZRMCloudKitImplTest, SnapshotsTheEnvironmentOnceAtTheStart) {
    configuration_.clientId = "bank";
    configuration_.execSessionId = "SESSION";
    configuration_.productName = "P";
    configuration_.productVersion = "9";
    const auto core = makeStartedCore();
    device_.advanceBy(3600);
    device_.description().setSystemName("other");
    core->sendUserLogout();
    const auto& data = sentBody(0).at("environmentData").as_object();
    EXPECT_EQ(data.at("clientId"), "bank");
    EXPECT_EQ(data.at("execSessionId"), "SESSION");
    EXPECT_EQ(data.at("productName"), "P");
    EXPECT_EQ(data.at("productVersion"), "9");
    EXPECT_EQ(data.at("deviceTag"), ZRMJsonValue(core->deviceTag()));
    EXPECT_EQ(data.at("applicationDateInstall"), "2026-01-01 00:00:00.000000");
    EXPECT_EQ(data.at("osName"), "SimulatedOS");
    EXPECT_EQ(data.at("uptime"), 3600000);
}

TEST_F(ZRMCloudKitImplTest, TakesTheInstallationIdentifierForTheTagAndKeepsItInTheKeychain) {
    const auto core = makeStartedCore();
    EXPECT_EQ(core->deviceTag(), core->settings()->installationId());
    EXPECT_EQ(device_.keychain().textOf(kDeviceTagAccount), core->deviceTag());
}

TEST_F(ZRMCloudKitImplTest, MakesARandomTagWithoutAnInstallationIdentifier) {
    const auto core = makeCore();
    core->settings()->setInstallationId(std::nullopt);
    core->start();
    EXPECT_THAT(core->deviceTag(),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                      "[0-9A-F]{12}"));
    EXPECT_EQ(device_.keychain().textOf(kDeviceTagAccount), core->deviceTag());
}

TEST_F(ZRMCloudKitImplTest, UsesTheTagOfTheKeychainAsItIsAndDoesNotWriteItAgain) {
    zrm_setDeviceTag(*device_.platform()->keychainItems, "kept");
    const auto calls = device_.keychain().calls().size();
    const auto core = makeStartedCore();
    EXPECT_EQ(core->deviceTag(), "kept");
    for (std::size_t index = calls; index < device_.keychain().calls().size(); ++index) {
        EXPECT_EQ(device_.keychain().calls()[index].operation,
                  ZRMSimulatedKeychain::Operation::CopyMatching);
    }
}

TEST_F(ZRMCloudKitImplTest, LogsATagThatCannotBeKeptAndUsesIt) {
    device_.keychain().setStatus(ZRMSimulatedKeychain::Operation::Add, ZRMKeychainNotAvailable);
    const auto core = makeStartedCore();
    EXPECT_EQ(core->deviceTag(), core->settings()->installationId());
    EXPECT_THAT(log_.errors(), ElementsAre("Can't write device tag in keychain"));
}

TEST_F(ZRMCloudKitImplTest, KeepsTheTagWhenTheSettingsAreDeletedOrDamaged) {
    const auto tag = makeStartedCore()->deviceTag();
    device_.platform()->fileManager->removeItem(kArchivePath);
    device_.restartProcess();
    const auto afterDeletion = makeStartedCore();
    EXPECT_EQ(afterDeletion->deviceTag(), tag);
    EXPECT_NE(afterDeletion->settings()->installationId(), tag);
    device_.disk().put(kArchivePath, "damaged");
    device_.restartProcess();
    EXPECT_EQ(makeStartedCore()->deviceTag(), tag);
}

TEST_F(ZRMCloudKitImplTest, SaysThatTheSecureDeviceTagIsNotAvailable) {
    const auto core = makeStartedCore();
    EXPECT_EQ(core->secureDeviceTag(), "");
    EXPECT_EQ(core->customHeaders(), (std::map<std::string, std::string>{{"Mobile-UUID", ""}}));
    EXPECT_THAT(log_.verboses(), ElementsAre("The secure device tag is not available"));
}

TEST_F(ZRMCloudKitImplTest, MakesTheSecureDeviceTagProviderAndRefreshesItAtTheStart) {
    configuration_.secureDeviceTagUrl = "https://tag.example.com/zwjsqd";
    configuration_.jwsRootCertificate = {1, 2, 3};
    serverTimeProvider_ = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    std::vector<ZRMSecureDeviceTagParameters> made;
    const auto provider = std::make_shared<ZRMFakeSecureDeviceTagProvider>("L!TAG");
    detectors_.makeSecureDeviceTagProvider = [&](const ZRMSecureDeviceTagParameters& parameters) {
        EXPECT_TRUE(requests_.empty());
        made.push_back(parameters);
        return provider;
    };
    const auto core = makeStartedCore();
    ASSERT_EQ(made.size(), 1U);
    EXPECT_EQ(made[0].url, "https://tag.example.com/zwjsqd");
    EXPECT_EQ(made[0].rootCertificate, (ZRMData{1, 2, 3}));
    EXPECT_EQ(made[0].storage, core->settings());
    EXPECT_EQ(made[0].environmentData->deviceTag, core->deviceTag());
    EXPECT_EQ(made[0].serverTimeProvider, serverTimeProvider_);
    EXPECT_EQ(provider->refreshes, 1);
    EXPECT_EQ(core->secureDeviceTag(), "L!TAG");
    provider->tag = "SERVER";
    EXPECT_EQ(core->customHeaders(),
              (std::map<std::string, std::string>{{"Mobile-UUID", "SERVER"}}));
}

TEST_F(ZRMCloudKitImplTest, MakesAllAnewWhenStartedAgain) {
    const auto core = makeStartedCore();
    device_.advanceBy(10);
    core->start();
    core->sendUserLogout();
    EXPECT_EQ(requests_.size(), 2U);
    EXPECT_EQ(sentBody(0).at("environmentData").at("uptime"), 3610000);
}

TEST_F(ZRMCloudKitImplTest, SendsUserEventsOnTheCallersThreadWithTheirPriority) {
    const auto core = makeStartedCore();
    core->sendUserLogin("name", "SUCCESS", "id");
    core->sendUserLogout();
    core->sendUINavigationPoint("home");
    core->sendSessionId("session");
    EXPECT_THAT(sentTypes(), ElementsAre("UserLoginEvent", "UserLogoutEvent", "UINavigationEvent",
                                         "SessionIdEvent"));
    EXPECT_EQ(sentPriority(0), 2);
    EXPECT_EQ(sentPriority(1), 2);
    EXPECT_EQ(sentPriority(2), 3);
    EXPECT_EQ(sentPriority(3), 3);
    EXPECT_EQ(sentBody(0).at("userName"), "name");
    EXPECT_EQ(sentBody(0).at("result"), "SUCCESS");
    EXPECT_EQ(sentBody(0).at("userId"), "id");
    EXPECT_EQ(sentBody(2).at("navigationPoint"), "home");
    EXPECT_EQ(sentBody(3).at("sessionId"), "session");
}

TEST_F(ZRMCloudKitImplTest, SendsLogsAndConfigurationFromItsQueue) {
    configuration_.appliedSettings = {{"a", "1"}};
    const auto core = makeStartedCore();
    core->sendLogEvent({"one", "two"});
    core->sendConfigEvent();
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(sentTypes(), ElementsAre("LogDataEvent", "ConfigEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(sentPriority(1), 3);
    EXPECT_EQ(sentBody(0).at("logs"), ZRMJsonValue(ZRMJsonArray{"one", "two"}));
    EXPECT_EQ(sentBody(1).at("appliedConfig"), "{\n  \"a\" : \"1\"\n}");
}

TEST_F(ZRMCloudKitImplTest, DropsQueuedWorkOnceItIsGone) {
    auto core = makeStartedCore();
    requests_.clear();
    core->sendLogEvent({"late"});
    core->sendConfigEvent();
    core.reset();
    device_.runUntilIdle();
    EXPECT_THAT(service_->sent, IsEmpty());
}

}  // namespace
