#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxKeychainFile.h"
#include "ZRMPlatform/Linux/ZRMLinuxKeychainItems.h"
#include "ZRMPlatform/Linux/ZRMLinuxSecretService.h"
#include "ZRMPlatform/Linux_Tests/ZRMStubs.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxKeychainFileTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMLinuxKeychainFile> open() {
        return std::make_shared<ZRMLinuxKeychainFile>(path_, console_);
    }
    // The text of the value, or the status.
    static std::string valueOf(const ZRMKeychainItems& items, const ZRMKeychainQuery& query) {
        ZRMData value;
        const auto status = items.copyMatching(query, value);
        return status == 0 ? zrm_textFromData(value) : std::to_string(status);
    }
    static ZRMKeychainQuery query(const std::string& account,
                                  const std::optional<std::string>& group = std::nullopt) {
        ZRMKeychainQuery made;
        made.account = account;
        made.accessGroup = group;
        return made;
    }

    ZRMTestDirectory directory_;
    std::string path_ = directory_.below("Keychains/zrm-keychain.plist");
    std::shared_ptr<ZRMRecordingConsole> console_ = std::make_shared<ZRMRecordingConsole>();
};

}  // namespace

TEST_F(ZRMLinuxKeychainFileTest, AnItemIsFoundUpdatedAndRemovedByAnyHandle) {
    const auto items = open();
    EXPECT_EQ(valueOf(*items, query("a")), "-25300");
    EXPECT_EQ(items->add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(valueOf(*open(), query("a")), "one");
    EXPECT_EQ(open()->update(query("a"), zrm_dataFromText("two")), 0);
    EXPECT_EQ(valueOf(*items, query("a")), "two");
    EXPECT_EQ(items->remove(query("a")), 0);
    EXPECT_EQ(valueOf(*items, query("a")), "-25300");
    EXPECT_EQ(items->remove(query("a")), ZRMKeychainItemNotFound);
    EXPECT_EQ(items->update(query("a"), {}), ZRMKeychainItemNotFound);
}

TEST_F(ZRMLinuxKeychainFileTest, AnItemThatExistsIsADuplicateAndStays) {
    const auto items = open();
    ASSERT_EQ(items->add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(items->add(query("a"), zrm_dataFromText("two")), ZRMKeychainDuplicateItem);
    EXPECT_EQ(valueOf(*items, query("a")), "one");
}

TEST_F(ZRMLinuxKeychainFileTest, AnItemIsFoundOnlyByItsAccessibility) {
    const auto items = open();
    auto other = query("a");
    other.accessibility = ZRMKeychainAccessibility::WhenUnlocked;
    ASSERT_EQ(items->add(other, zrm_dataFromText("unlocked")), 0);
    EXPECT_EQ(valueOf(*items, query("a")), "-25300");
    EXPECT_EQ(items->remove(query("a")), ZRMKeychainItemNotFound);
    EXPECT_EQ(valueOf(*items, other), "unlocked");
}

TEST_F(ZRMLinuxKeychainFileTest, AQueryWithoutAGroupMatchesEveryGroup) {
    const auto items = open();
    ASSERT_EQ(items->add(query("a", "g1"), zrm_dataFromText("one")), 0);
    ASSERT_EQ(items->add(query("a", "g2"), zrm_dataFromText("two")), 0);
    ASSERT_EQ(items->add(query("a"), zrm_dataFromText("none")), 0);
    EXPECT_EQ(valueOf(*items, query("a", "g2")), "two");
    EXPECT_EQ(valueOf(*items, query("a", "g3")), "-25300");
    EXPECT_EQ(valueOf(*items, query("a")), "one");  // the first match
    EXPECT_EQ(items->update(query("a"), zrm_dataFromText("all")), 0);
    EXPECT_EQ(valueOf(*items, query("a", "g2")), "all");
    EXPECT_EQ(items->remove(query("a")), 0);
    EXPECT_EQ(valueOf(*items, query("a", "g1")), "-25300");
}

TEST_F(ZRMLinuxKeychainFileTest, AFailureLeavesTheValueOfTheCallerAlone) {
    ZRMData value{1, 2, 3};
    EXPECT_EQ(open()->copyMatching(query("none"), value), ZRMKeychainItemNotFound);
    EXPECT_EQ(value, (ZRMData{1, 2, 3}));
}

TEST_F(ZRMLinuxKeychainFileTest, AnyBytesAreKeptAndOnlyTheOwnerReadsThem) {
    const std::string account("a<&>\0\xff \n", 8);
    const ZRMData value{0, 255, 10, 13};
    const auto items = open();
    ASSERT_EQ(items->add(query(account, ""), value), 0);
    ZRMData found;
    EXPECT_EQ(open()->copyMatching(query(account, ""), found), 0);
    EXPECT_EQ(found, value);
    EXPECT_EQ(zrm_testMode(path_), 0600U);
    EXPECT_EQ(zrm_testMode(path_ + ".lock"), 0600U);
    ASSERT_EQ(items->add(query("empty"), {}), 0);
    EXPECT_EQ(open()->copyMatching(query("empty"), found), 0);
    EXPECT_TRUE(found.empty());
}

TEST_F(ZRMLinuxKeychainFileTest, AFileThatCannotBeReadOrWrittenIsNotAvailable) {
    directory_.writeFile("Keychains", "a file in the directory's way");
    const auto items = open();
    EXPECT_EQ(items->add(query("a"), {}), ZRMKeychainNotAvailable);
    EXPECT_EQ(items->update(query("a"), {}), ZRMKeychainNotAvailable);
    EXPECT_EQ(items->remove(query("a")), ZRMKeychainNotAvailable);
    EXPECT_EQ(valueOf(*items, query("a")), "-25291");
}

TEST_F(ZRMLinuxKeychainFileTest, ADamagedFileIsKeptAsEvidenceAndNamedOnTheConsole) {
    directory_.writeFile("Keychains/zrm-keychain.plist", "damage");
    const auto items = open();
    EXPECT_EQ(items->add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(valueOf(*items, query("a")), "one");
    EXPECT_TRUE(
        console_->text().starts_with("The file " + path_ + " is damaged and was moved to "));
    int evidence = 0;
    for (const auto& item : std::filesystem::directory_iterator(directory_.below("Keychains"))) {
        evidence += zrm_testFileText(item.path().string()) == "damage" ? 1 : 0;
    }
    EXPECT_EQ(evidence, 1);
}

TEST_F(ZRMLinuxKeychainFileTest, EntriesThatAreNoItemsMatchNothing) {
    directory_.writeFile(
        "Keychains/zrm-keychain.plist",
        "<plist version=\"1.0\"><dict><key>items</key><array><true/><dict/>"
        "<dict><key>account</key><integer>1</integer></dict></array></dict></plist>");
    const auto items = open();
    EXPECT_EQ(valueOf(*items, query("a")), "-25300");
    EXPECT_EQ(items->add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(valueOf(*items, query("a")), "one");
}

TEST_F(ZRMLinuxKeychainFileTest, TwoProcessesLoseNoItem) {
    constexpr int kItems = 25;
    const auto addAll = [this](const std::string& prefix) {
        bool isGood = true;
        for (int number = 0; number < kItems; ++number) {
            isGood = open()->add(query(prefix + std::to_string(number)), {1}) == 0 && isGood;
        }
        return isGood;
    };
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::_exit(addAll("child") ? 0 : 1);
    }
    EXPECT_TRUE(addAll("parent"));
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    ZRMData value;
    for (int number = 0; number < kItems; ++number) {
        EXPECT_EQ(open()->copyMatching(query("child" + std::to_string(number)), value), 0);
        EXPECT_EQ(open()->copyMatching(query("parent" + std::to_string(number)), value), 0);
    }
}

TEST_F(ZRMLinuxKeychainFileTest, TheServiceIsAskedOnceAndOnlyWhenNeeded) {
    const auto service =
        std::make_shared<ZRMLinuxKeychainFile>(directory_.below("service"), console_);
    int asked = 0;
    ZRMLinuxKeychainItems items(
        [&] {
            ++asked;
            return service;
        },
        open());
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(items.add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(items.update(query("a"), zrm_dataFromText("two")), 0);
    EXPECT_EQ(valueOf(items, query("a")), "two");
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(valueOf(*service, query("a")), "two");
    EXPECT_EQ(items.remove(query("a")), 0);
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(ZRMLinuxKeychainFileTest, WhereNoServiceAnswersTheFileServes) {
    ZRMLinuxKeychainItems items([] { return nullptr; }, open());
    EXPECT_EQ(items.add(query("a"), zrm_dataFromText("one")), 0);
    EXPECT_EQ(valueOf(*open(), query("a")), "one");
}

namespace {

// Exits with 0 when there is no service, and libsecret was loaded only if `mayLoad`.
[[noreturn]] void exitWithoutService(const char* busAddress, const std::string& runtimeDirectory,
                                     bool mayLoad) {
    ::setenv("XDG_RUNTIME_DIR", runtimeDirectory.c_str(), 1);
    if (busAddress == nullptr) {
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    } else {
        ::setenv("DBUS_SESSION_BUS_ADDRESS", busAddress, 1);
    }
    const bool hasService = zrm_connectSecretService() != nullptr;
    const bool isLoaded = ::dlopen("libsecret-1.so.0", RTLD_LAZY | RTLD_NOLOAD) != nullptr;
    ::_exit(!hasService && isLoaded == mayLoad ? 0 : 1);
}

}  // namespace

TEST(ZRMLinuxSecretServiceDeathTest, WithoutASessionBusThereIsNoneAndNothingIsLoaded) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ZRMTestDirectory empty;
    EXPECT_EXIT(exitWithoutService(nullptr, empty.path(), false), testing::ExitedWithCode(0), "");
}

TEST(ZRMLinuxSecretServiceDeathTest, ABusOnWhichNobodyAnswersHasNone) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ZRMTestDirectory empty;
    EXPECT_EXIT(exitWithoutService("unix:path=/nonexistent/bus", empty.path(), true),
                testing::ExitedWithCode(0), "");
}
