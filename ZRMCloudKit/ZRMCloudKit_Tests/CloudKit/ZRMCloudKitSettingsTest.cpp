#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettings.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr const char* kDirectory = "/device/data/ZRMCloudKit";
constexpr const char* kArchive = "/device/data/ZRMCloudKit/ZRMCloudKitSettings";
constexpr const char* kDamaged = "/device/data/ZRMCloudKit/ZRMCloudKitSettings.damaged-1767225600";

class ZRMCloudKitSettingsTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMCloudKitSettings> load() {
        return ZRMCloudKitSettings::settingsFromDirectory(device_.platform(), kDirectory);
    }
    ZRMArchiveObject archived() {
        return device_.platform()->keyedArchiver->decode(device_.disk().bytesOf(kArchive)).value();
    }
    void archive(const ZRMArchiveObject& object) {
        device_.disk().put(kArchive, device_.platform()->keyedArchiver->encode(object).value());
    }
    void expectNewInstallationBesideDamagedArchive() {
        const auto before = device_.disk().bytesOf(kArchive);
        const auto settings = load();
        EXPECT_EQ(device_.disk().bytesOf(kDamaged), before);
        EXPECT_TRUE(device_.disk().holdsFile(kArchive));
        EXPECT_NE(device_.disk().bytesOf(kArchive), before);
        EXPECT_TRUE(settings->installationId());
        EXPECT_THAT(
            log_.errors(),
            testing::Contains(testing::StartsWith("Cannot read ZRMCloudKit settings data")));
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
TEST_F(ZRMCloudKitSettingsTest, RefusesPlainConstructionWithALogLine) {
    static constexpr const char* kMessage =
        "Don't use that initializer, use +(instancetype)settingsFromDirectory:";
    EXPECT_THAT([] { ZRMCloudKitSettings(); },
                testing::ThrowsMessage<ZRMInvalidArgument>(kMessage));
    EXPECT_EQ(log_.errors(), std::vector<std::string>{kMessage});
}
#pragma GCC diagnostic pop

TEST_F(ZRMCloudKitSettingsTest, BeginsANewInstallationAndArchivesItAtOnce) {
    const auto settings = load();
    EXPECT_THAT(settings->installationId().value_or(""),
                testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                      "[0-9A-F]{12}"));
    EXPECT_EQ(settings->applicationMd5SendDate(), ZRMDate{0});
    EXPECT_EQ(settings->touchIdDomainState(), std::nullopt);
    EXPECT_EQ(settings->secureDeviceTag(), std::nullopt);
    EXPECT_EQ(settings->secureDeviceTagRefreshDate(), ZRMDate{0});
    EXPECT_EQ(settings->secureDeviceTagRefreshInterval(), 0);
    EXPECT_EQ(settings->directory(), kDirectory);
    EXPECT_EQ(archived().className, "ZRMCloudKitSettings");
    EXPECT_EQ(archived().fields,
              (ZRMArchiveFields{{"ZRMInstallationId", *settings->installationId()},
                                {"ZRMInstallationDate", *settings->installationDate()},
                                {"ZRMApplicationMd5StatisticsSendDate", ZRMDate{0}},
                                {"ZRMSecureDeviceTagRefreshDate", ZRMDate{0}},
                                {"ZRMSecureDeviceTagRefreshInterval", 0.0}}));
    EXPECT_THAT(log_.messages(), testing::IsEmpty());
}

TEST_F(ZRMCloudKitSettingsTest, TakesTheCreationOfTheDocumentsDirectoryForTheInstallation) {
    device_.platform()->fileManager->createDirectory(device_.platform()->directories->documents());
    const auto created = device_.now();
    device_.advanceBy(1000);
    EXPECT_EQ(load()->installationDate(), created);
}

TEST_F(ZRMCloudKitSettingsTest, MakesTheDocumentsDirectoryWhereTheSystemMadeNone) {
    EXPECT_EQ(load()->installationDate(), device_.now());
    EXPECT_TRUE(device_.disk().holdsDirectory(device_.platform()->directories->documents()));
}

TEST_F(ZRMCloudKitSettingsTest, KnowsNoInstallationDateWhenTheDirectoryCannotBeMade) {
    device_.disk().faults().add(
        {.operation = ZRMSimulatedDiskOperation::MakeDirectory, .pathPattern = "*/Documents"});
    EXPECT_EQ(load()->installationDate(), std::nullopt);
    EXPECT_THAT(log_.errors(), testing::SizeIs(2));
    EXPECT_EQ(archived().fields.count("ZRMInstallationDate"), 0U);
}

TEST_F(ZRMCloudKitSettingsTest, ReadsBackEveryField) {
    const ZRMTouchIdInfo state(true, false, ZRMData{1, 2, 3});
    const auto saved = load();
    const bool good = saved->execSaveTransaction([&](ZRMCloudKitSettings& settings) {
        settings.setInstallationId("I");
        settings.setInstallationDate(ZRMDate{1.5});
        settings.setApplicationMd5SendDate(ZRMDate{2});
        settings.setTouchIdDomainState(state);
        settings.setSecureDeviceTag("TAG");
        settings.setSecureDeviceTagRefreshDate(ZRMDate{3});
        settings.setSecureDeviceTagRefreshInterval(7200);
    });
    EXPECT_TRUE(good);
    device_.restartProcess();
    const auto settings = load();
    EXPECT_EQ(settings->installationId(), "I");
    EXPECT_EQ(settings->installationDate(), ZRMDate{1.5});
    EXPECT_EQ(settings->applicationMd5SendDate(), ZRMDate{2});
    EXPECT_EQ(settings->touchIdDomainState(), state);
    EXPECT_EQ(settings->secureDeviceTag(), "TAG");
    EXPECT_EQ(settings->secureDeviceTagRefreshDate(), ZRMDate{3});
    EXPECT_EQ(settings->secureDeviceTagRefreshInterval(), 7200);
    EXPECT_EQ(settings->directory(), kDirectory);
    EXPECT_THAT(log_.messages(), testing::IsEmpty());
}

TEST_F(ZRMCloudKitSettingsTest, LosesTheFractionOfTheRefreshIntervalOnReload) {
    const auto saved = load();
    saved->setSecureDeviceTagRefreshInterval(1.5);
    EXPECT_TRUE(saved->save());
    EXPECT_EQ(saved->secureDeviceTagRefreshInterval(), 1.5);
    EXPECT_EQ(archived().fields.at("ZRMSecureDeviceTagRefreshInterval"), ZRMArchiveValue(1.5));
    EXPECT_EQ(load()->secureDeviceTagRefreshInterval(), 1);
}

TEST_F(ZRMCloudKitSettingsTest, ReadsTheRefreshIntervalFromEitherKindOfNumber) {
    const std::pair<ZRMArchiveValue, double> cases[] = {
        {std::int64_t{60}, 60},
        {-1.9, -1},
        {std::numeric_limits<double>::quiet_NaN(), 0},
        {std::numeric_limits<double>::infinity(), 0},
        {1e300, 0},
    };
    for (const auto& [value, seconds] : cases) {
        archive({"ZRMCloudKitSettings", {{"ZRMSecureDeviceTagRefreshInterval", value}}});
        EXPECT_EQ(load()->secureDeviceTagRefreshInterval(), seconds);
    }
}

TEST_F(ZRMCloudKitSettingsTest, KeepsAnAbsentInstallationIdentifierAbsent) {
    archive({"ZRMCloudKitSettings", {}});
    EXPECT_EQ(load()->installationId(), std::nullopt);
    EXPECT_EQ(load()->installationDate(), std::nullopt);
}

TEST_F(ZRMCloudKitSettingsTest, KeepsBytesThatAreNoArchiveBesideUnderANameWithTheTime) {
    device_.disk().put(kArchive, "not an archive");
    expectNewInstallationBesideDamagedArchive();
}

TEST_F(ZRMCloudKitSettingsTest, KeepsEveryDamagedArchiveAlsoThoseOfOneSecond) {
    for (const auto* bytes : {"first", "second"}) {
        device_.disk().put(kArchive, bytes);
        load();
    }
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf(kDamaged)), "first");
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf(
                  "/device/data/ZRMCloudKit/ZRMCloudKitSettings.damaged-1767225601")),
              "second");
}

TEST_F(ZRMCloudKitSettingsTest, TakesAnEmptyFileForDamaged) {
    device_.disk().put(kArchive, "");
    expectNewInstallationBesideDamagedArchive();
}

TEST_F(ZRMCloudKitSettingsTest, TakesAnArchiveOfAnotherClassForDamaged) {
    archive({"NSDictionary", {{"ZRMInstallationId", std::string("I")}}});
    expectNewInstallationBesideDamagedArchive();
}

TEST_F(ZRMCloudKitSettingsTest, TakesAFieldOfAnotherTypeForDamage) {
    const auto notTouchId = std::make_shared<const ZRMArchiveObject>(ZRMArchiveObject{"Other", {}});
    const ZRMArchiveFields cases{
        {"ZRMInstallationId", 1.0},
        {"ZRMInstallationDate", std::string("2026")},
        {"ZRMApplicationMd5StatisticsSendDate", std::int64_t{0}},
        {"ZRMTouchIdDomainState", notTouchId},
        {"ZRMSecureDeviceTag", ZRMData{1}},
        {"ZRMSecureDeviceTagRefreshDate", true},
        {"ZRMSecureDeviceTagRefreshInterval", std::string("1")},
    };
    for (const auto& [key, value] : cases) {
        archive({"ZRMCloudKitSettings", {{key, value}}});
        EXPECT_FALSE(ZRMCloudKitSettingsValues::decode(archived())) << key;
        const auto before = device_.disk().bytesOf(kArchive);
        EXPECT_TRUE(load()->installationId()) << key;
        EXPECT_EQ(device_.disk().bytesOf(kDamaged), before) << key;
        device_.platform()->fileManager->removeItem(kDamaged);
    }
}

TEST_F(ZRMCloudKitSettingsTest, TakesAFileThatCannotBeReadForDamaged) {
    load();
    device_.disk().faults().add(
        {.operation = ZRMSimulatedDiskOperation::Read, .pathPattern = "*ZRMCloudKitSettings"});
    load();
    EXPECT_TRUE(device_.disk().holdsFile(kDamaged));
    EXPECT_TRUE(device_.disk().holdsFile(kArchive));
}

TEST_F(ZRMCloudKitSettingsTest, LogsADirectoryThatCannotBeMadeAndDoesNotSave) {
    device_.disk().faults().add(
        {.operation = ZRMSimulatedDiskOperation::MakeDirectory, .pathPattern = "*/ZRMCloudKit"});
    const auto settings = load();
    EXPECT_TRUE(settings->installationId());
    EXPECT_FALSE(device_.disk().holdsFile(kArchive));
    EXPECT_THAT(log_.errors(), testing::ElementsAre(
                                   testing::Not(testing::StartsWith("Cannot save")),
                                   testing::StartsWith("Cannot save ZRMCloudKit settings data: ")));
    EXPECT_FALSE(settings->save());
}

TEST_F(ZRMCloudKitSettingsTest, LogsSettingsThatCannotBeWrittenAndKeepsThemInMemory) {
    const auto settings = load();
    device_.disk().faults().add(
        {.operation = ZRMSimulatedDiskOperation::Write, .errorNumber = 28 /* ENOSPC */});
    EXPECT_FALSE(settings->execSaveTransaction(
        [](ZRMCloudKitSettings& changed) { changed.setSecureDeviceTag("T"); }));
    EXPECT_EQ(settings->secureDeviceTag(), "T");
    EXPECT_THAT(log_.errors(), testing::ElementsAre(
                                   testing::StartsWith("Cannot save ZRMCloudKit settings data: ")));
    device_.disk().faults().clear();
    EXPECT_EQ(load()->secureDeviceTag(), std::nullopt);
}

TEST_F(ZRMCloudKitSettingsTest, LogsSettingsThatCannotBeEncoded) {
    const auto settings = load();
    const auto before = device_.disk().bytesOf(kArchive);
    device_.keyedArchiver().setEncodingFails(true);
    EXPECT_FALSE(settings->save());
    EXPECT_THAT(log_.errors(), testing::ElementsAre(
                                   testing::StartsWith("Cannot save ZRMCloudKit settings data: ")));
    EXPECT_EQ(device_.disk().bytesOf(kArchive), before);
}

TEST_F(ZRMCloudKitSettingsTest, SurvivesAKillAtEveryDiskOperationOfASave) {
    load();
    for (std::uint64_t step = 1; step < 12; ++step) {
        const auto settings = load();
        device_.killAtDiskOperation(device_.disk().faults().operationCount() + step);
        settings->setSecureDeviceTag("T" + std::to_string(step));
        settings->save();
        device_.disk().faults().setHook(nullptr);
        device_.restartProcess(ZRMSimulatedLoss::All);
        EXPECT_TRUE(load()->installationId()) << step;
        EXPECT_FALSE(device_.disk().holdsFile(kDamaged)) << step;
    }
}

}  // namespace
