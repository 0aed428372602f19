#include <cstdlib>
#include <filesystem>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ZRMPlatform/HostFed_Tests/ZRMHeldQueue.h"
#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux/ZRMLinuxUserDefaults.h"
#include "ZRMPlatform/Linux_Tests/ZRMStubs.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

std::vector<std::string> damagedFilesIn(const std::string& directory) {
    std::vector<std::string> found;
    for (const auto& item : std::filesystem::directory_iterator(directory)) {
        if (item.path().filename().string().starts_with("suite.plist.damaged-")) {
            found.push_back(item.path().string());
        }
    }
    return found;
}

class ZRMLinuxUserDefaultsTest : public testing::Test {
  protected:
    std::unique_ptr<ZRMUserDefaultsSuite> open(const std::string& name = "suite") {
        return openWritingOn(writes_, name);
    }
    std::unique_ptr<ZRMUserDefaultsSuite> openWritingOn(const std::shared_ptr<ZRMQueue>& writes,
                                                        const std::string& name = "suite") {
        return ZRMLinuxUserDefaults(directory_.below("Preferences"), console_, writes)
            .openSuite(name);
    }
    static std::shared_ptr<ZRMQueue> workers() {
        return ZRMLinuxExecutor().concurrentQueue(ZRMQualityOfService::Utility);
    }
    [[nodiscard]] std::string file(const std::string& name = "suite.plist") const {
        return directory_.below("Preferences/" + name);
    }

    // Looks for the file after what was set has been written.
    [[noreturn]] void exitWithAValueSet() {
        static std::string expected;
        expected = file();
        std::atexit(
            [] { std::_Exit(std::filesystem::exists(expected) ? EXIT_SUCCESS : EXIT_FAILURE); });
        open()->setString("text", "value");
        std::exit(EXIT_FAILURE);
    }

    ZRMTestDirectory directory_;
    std::shared_ptr<ZRMHeldQueue> writes_ = std::make_shared<ZRMHeldQueue>();
    std::shared_ptr<ZRMRecordingConsole> console_ = std::make_shared<ZRMRecordingConsole>();
};

}  // namespace

TEST_F(ZRMLinuxUserDefaultsTest, AValueIsSeenByEveryHandleBeforeAndAfterItIsWritten) {
    const auto reader = open();
    EXPECT_EQ(reader->stringForKey("text"), std::nullopt);
    const auto writer = open();
    writer->setString("text", "value");
    writer->setDouble("number", 1763690000.25);
    for (const bool isWritten : {false, true}) {
        EXPECT_EQ(std::filesystem::exists(file()), isWritten);
        EXPECT_EQ(reader->stringForKey("text"), "value");
        EXPECT_EQ(reader->doubleForKey("number"), 1763690000.25);
        writes_->runAll();
    }
    reader->setString("text", "other");
    EXPECT_EQ(writer->stringForKey("text"), "other");
    EXPECT_EQ(console_->text(), "");
}

TEST_F(ZRMLinuxUserDefaultsTest, ValuesThatWaitGoIntoOneWrite) {
    const auto suite = open();
    suite->setString("text", "first");
    suite->setString("text", "last");
    open()->setDouble("number", 1);
    EXPECT_EQ(writes_->size(), 1U);
    writes_->runAll();
    EXPECT_NE(zrm_testFileText(file()).find("<string>last</string>"), std::string::npos);
    EXPECT_NE(zrm_testFileText(file()).find("<key>number</key>"), std::string::npos);
    suite->setDouble("number", 2);
    EXPECT_EQ(writes_->size(), 1U);
}

TEST_F(ZRMLinuxUserDefaultsTest, WhatWasWrittenIsReadFromTheFile) {
    const auto suite = open();
    suite->setString("text", "value");
    writes_->runAll();
    directory_.writeFile("Preferences/suite.plist",
                         "<plist version=\"1.0\"><dict><key>text</key><string>of another process"
                         "</string></dict></plist>");
    EXPECT_EQ(suite->stringForKey("text"), "of another process");
}

TEST_F(ZRMLinuxUserDefaultsTest, SynchronizingWritesWhatWaits) {
    open()->setString("text", "value");
    open("other")->setDouble("number", 1);
    ZRMLinuxUserDefaults::synchronize();
    EXPECT_NE(zrm_testFileText(file()).find("<string>value</string>"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(file("other.plist")));
    std::filesystem::remove(file());
    writes_->runAll();
    EXPECT_FALSE(std::filesystem::exists(file()));  // nothing was left to write
}

TEST_F(ZRMLinuxUserDefaultsTest, AProcessThatExitsWritesWhatWaits) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWithAValueSet(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(ZRMLinuxUserDefaultsTest, ReadingMakesNoFile) {
    EXPECT_EQ(open()->doubleForKey("number"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(directory_.below("Preferences")));
}

TEST_F(ZRMLinuxUserDefaultsTest, ValuesAreTyped) {
    const auto suite = open();
    suite->setString("text", "1.5");
    suite->setDouble("number", 1.5);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(suite->doubleForKey("text"), std::nullopt);
        EXPECT_EQ(suite->stringForKey("number"), std::nullopt);
        writes_->runAll();
    }
    suite->setString("number", "now a text");
    EXPECT_EQ(suite->doubleForKey("number"), std::nullopt);
    EXPECT_EQ(suite->stringForKey("number"), "now a text");
}

TEST_F(ZRMLinuxUserDefaultsTest, TextsComeBackExactly) {
    const auto suite = open();
    for (const auto* text :
         {"", " lead and trail ", "<&>\"'", "line\r\nbreak\t", "\xc3\xa9\xf0\x9f\x98\x80"}) {
        suite->setString("k<&> \xc3\xa9", text);
        writes_->runAll();
        EXPECT_EQ(suite->stringForKey("k<&> \xc3\xa9"), text);
    }
    for (const double number : {0.1, -1e300, 5e-324, 3.0}) {
        suite->setDouble("number", number);
        writes_->runAll();
        EXPECT_EQ(suite->doubleForKey("number"), number);
    }
}

TEST_F(ZRMLinuxUserDefaultsTest, AForkedChildThatExitsLeavesTheWritingToItsParent) {
    GTEST_FLAG_SET(death_test_style, "fast");
    open()->setString("text", "value");
    // Its code is not looked at: a leak checker takes a fork of several threads amiss.
    EXPECT_EXIT(
        std::exit(0), [](int status) { return WIFEXITED(status); }, "");
    EXPECT_FALSE(std::filesystem::exists(file()));
    writes_->runAll();
    EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(ZRMLinuxUserDefaultsTest, TheFileIsAnXmlPropertyListThatOnlyItsOwnerReads) {
    open()->setString("key", "value");
    writes_->runAll();
    EXPECT_NE(zrm_testFileText(file()).find("<key>key</key>\n\t<string>value</string>"),
              std::string::npos);
    EXPECT_EQ(zrm_testMode(file()), 0600U);
    EXPECT_EQ(zrm_testMode(directory_.below("Preferences")), 0700U);
}

TEST_F(ZRMLinuxUserDefaultsTest, FileAndLockAreForTheirOwnerWhateverTheUmask) {
    const mode_t before = umask(0777);
    open()->setString("text", "value");
    writes_->runAll();
    umask(before);
    EXPECT_EQ(zrm_testMode(file()), 0600U);
    EXPECT_EQ(zrm_testMode(file("suite.plist.lock")), 0600U);
}

TEST_F(ZRMLinuxUserDefaultsTest, SuitesAreApartAndNoneLeavesTheDirectory) {
    open("a")->setString("key", "a");
    open("../a/b")->setString("key", "b");
    writes_->runAll();
    EXPECT_EQ(open("a")->stringForKey("key"), "a");
    EXPECT_EQ(open("../a/b")->stringForKey("key"), "b");
    EXPECT_TRUE(std::filesystem::exists(file("..%2Fa%2Fb.plist")));
}

TEST_F(ZRMLinuxUserDefaultsTest, ValuesOfOthersAreKept) {
    directory_.writeFile("Preferences/suite.plist",
                         "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                         "<key>theirs</key><array><true/></array></dict></plist>");
    open()->setDouble("ours", 1);
    writes_->runAll();
    EXPECT_NE(zrm_testFileText(file()).find("<key>theirs</key>"), std::string::npos);
    EXPECT_EQ(open()->stringForKey("theirs"), std::nullopt);
}

TEST_F(ZRMLinuxUserDefaultsTest, ADamagedFileIsMovedAsideAndTheSuiteIsEmpty) {
    for (const auto* damage : {"", "garbage", "<plist version=\"1.0\"><array/></plist>"}) {
        const ZRMTestDirectory fresh;
        fresh.writeFile("suite.plist", damage);
        const auto console = std::make_shared<ZRMRecordingConsole>();
        const auto suite = ZRMLinuxUserDefaults(fresh.path(), console, writes_).openSuite("suite");
        EXPECT_EQ(suite->stringForKey("key"), std::nullopt);
        const auto after = damagedFilesIn(fresh.path());
        ASSERT_EQ(after.size(), 1U);
        EXPECT_EQ(zrm_testFileText(after.front()), damage);
        EXPECT_EQ(console->text(), "The file " + fresh.below("suite.plist") +
                                       " is damaged and was moved to " + after.front() + "\n");
        suite->setString("key", "value");
        writes_->runAll();
        EXPECT_EQ(suite->stringForKey("key"), "value");
    }
}

TEST_F(ZRMLinuxUserDefaultsTest, EvidenceOfEarlierDamageStays) {
    const auto suite = open();
    for (int round = 0; round < 3; ++round) {
        directory_.writeFile("Preferences/suite.plist", "damage " + std::to_string(round));
        suite->setString("key", "value");
        writes_->runAll();
        EXPECT_EQ(suite->stringForKey("key"), "value");
    }
    EXPECT_EQ(damagedFilesIn(directory_.below("Preferences")).size(), 3U);
}

TEST_F(ZRMLinuxUserDefaultsTest, AWriteThatFailsStaysInMemoryAndGoesAlongWithTheNext) {
    directory_.writeFile("Preferences", "a file in the directory's way");
    const auto suite = open();
    suite->setString("text", "kept");
    writes_->runAll();
    EXPECT_EQ(suite->stringForKey("text"), "kept");
    EXPECT_EQ(open()->stringForKey("text"), "kept");
    EXPECT_EQ(suite->doubleForKey("text"), std::nullopt);
    EXPECT_TRUE(console_->text().starts_with("Cannot write the user defaults: "));
    std::filesystem::remove(directory_.below("Preferences"));
    suite->setDouble("number", 2);
    writes_->runAll();
    EXPECT_NE(zrm_testFileText(file()).find("<string>kept</string>"), std::string::npos);
    directory_.writeFile("Preferences/suite.plist", "<plist version=\"1.0\"><dict/></plist>");
    EXPECT_EQ(suite->stringForKey("text"), std::nullopt);  // no longer held in memory
}

TEST_F(ZRMLinuxUserDefaultsTest, AValueWithANulStaysInMemory) {
    const auto suite = open();
    const std::string text("a\0b", 3);
    suite->setString("text", text);
    suite->setDouble(text, 1);
    EXPECT_EQ(writes_->size(), 0U);
    EXPECT_EQ(suite->stringForKey("text"), text);
    EXPECT_EQ(suite->doubleForKey(text), 1);
    EXPECT_EQ(suite->doubleForKey(std::string("a\0c", 3)), std::nullopt);
    EXPECT_NE(console_->text().find("NUL"), std::string::npos);
    suite->setString("text", "plain");
    writes_->runAll();
    EXPECT_EQ(suite->stringForKey("text"), "plain");
    EXPECT_EQ(suite->doubleForKey(text), 1);
}

TEST_F(ZRMLinuxUserDefaultsTest, ThreadsLoseNoWrite) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            const auto suite = openWritingOn(workers());
            for (int round = 0; round < 20; ++round) {
                suite->setDouble(std::to_string(thread) + "." + std::to_string(round), round);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    ZRMLinuxUserDefaults::synchronize();
    for (int thread = 0; thread < 4; ++thread) {
        for (int round = 0; round < 20; ++round) {
            EXPECT_EQ(open()->doubleForKey(std::to_string(thread) + "." + std::to_string(round)),
                      round);
        }
    }
}

TEST_F(ZRMLinuxUserDefaultsTest, TwoProcessesLoseNoWrite) {
    constexpr int kRounds = 50;
    const auto writeAll = [this](const std::string& prefix) {
        const auto suite = open();
        for (int round = 0; round < kRounds; ++round) {
            suite->setDouble(prefix + std::to_string(round), round);
            writes_->runAll();
        }
    };
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        writeAll("child");
        ::_exit(0);
    }
    writeAll("parent");
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    for (int round = 0; round < kRounds; ++round) {
        EXPECT_EQ(open()->doubleForKey("child" + std::to_string(round)), round);
        EXPECT_EQ(open()->doubleForKey("parent" + std::to_string(round)), round);
    }
    EXPECT_EQ(console_->text(), "");
}
