#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr const char* kTracePath = "/device/home/Documents/zrm-traces.log";
constexpr const char* kDocuments = ZRMSimulatedDirectories::kDocuments;
using Operation = ZRMSimulatedDiskOperation;

// What a handle was asked, whether it is open, and whether its seeks fail.
struct HandleState {
    std::vector<std::string> steps;
    bool isOpen = true;
    bool seekFails = false;
};

class FakeHandle final : public ZRMFileHandle {
  public:
    explicit FakeHandle(std::shared_ptr<HandleState> state) : state_(std::move(state)) {}
    ~FakeHandle() override { state_->isOpen = false; }
    std::optional<ZRMError> seekToEnd() override { return seek("end"); }
    std::optional<ZRMError> seekTo(std::uint64_t offset) override {
        return seek(std::to_string(offset));
    }
    std::optional<ZRMError> write(std::span<const std::uint8_t> /*bytes*/) override {
        return step("write");
    }
    std::optional<ZRMError> truncateAt(std::uint64_t offset) override {
        return step("truncate at " + std::to_string(offset));
    }
    std::optional<ZRMError> synchronize() override { return step("synchronize"); }

  private:
    std::optional<ZRMError> seek(const std::string& place) {
        step("seek to " + place);
        return state_->seekFails ? std::optional(ZRMError(kZRMPosixErrorDomain, 29)) : std::nullopt;
    }
    std::optional<ZRMError> step(std::string name) {
        state_->steps.push_back(std::move(name));
        return std::nullopt;
    }

    std::shared_ptr<HandleState> state_;
};

class MockFileManager : public ZRMFileManager {
  public:
    using Names = ZRMResult<std::vector<std::string>>;
    using Handle = ZRMResult<std::unique_ptr<ZRMFileHandle>>;
    using Reader = ZRMResult<std::unique_ptr<ZRMFileReader>>;
    using Enumerator = ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>>;
    MOCK_METHOD(bool, fileExists, (const std::string&), (const, override));
    MOCK_METHOD(bool, directoryExists, (const std::string&), (const, override));
    MOCK_METHOD(Names, contentsOfDirectory, (const std::string&), (const, override));
    MOCK_METHOD(std::optional<ZRMError>, createDirectory, (const std::string&), (override));
    MOCK_METHOD(std::optional<ZRMError>, createFile, (const std::string&), (override));
    MOCK_METHOD(ZRMResult<ZRMData>, readFile, (const std::string&), (const, override));
    MOCK_METHOD(std::optional<ZRMError>, writeFileAtomically, (const std::string&, const ZRMData&),
                (override));
    MOCK_METHOD(std::optional<ZRMError>, removeItem, (const std::string&), (override));
    MOCK_METHOD(std::optional<ZRMError>, moveItem, (const std::string&, const std::string&),
                (override));
    MOCK_METHOD(ZRMResult<ZRMDate>, creationDate, (const std::string&), (const, override));
    MOCK_METHOD(std::optional<ZRMError>, excludeFromBackup, (const std::string&), (override));
    MOCK_METHOD(Handle, openForUpdating, (const std::string&), (override));
    MOCK_METHOD(Reader, openForReading, (const std::string&), (const, override));
    MOCK_METHOD(Enumerator, enumeratorAtPath, (const std::string&), (const, override));
};

class ZRMFileLoggerImplTest : public testing::Test {
  protected:
    void SetUp() override {
        // So that its own complaints would come back to it if it did not exclude itself.
        ZRMLoggerCollection::sharedInstance()->addLogger(logger_);
    }

    std::string content() { return zrm_textFromData(device_.disk().bytesOf(kTracePath)); }
    void log(const std::string& text) {
        logger_->logMessage(text, kZRMLogLevelError);
        device_.runUntilIdle();
    }
    static std::string line(const std::string& text) {
        return "[2026-01-01 00:00:00 +0000] [2] [ERR] " + text + "\n";
    }
    // A logger whose file is there and is one handle with that state.
    std::shared_ptr<ZRMFileLoggerImpl> loggerOf(const std::shared_ptr<HandleState>& state) {
        EXPECT_CALL(*files_, directoryExists(kDocuments)).WillOnce(testing::Return(true));
        EXPECT_CALL(*files_, fileExists(kTracePath)).WillOnce(testing::Return(true));
        EXPECT_CALL(*files_, openForUpdating(kTracePath)).WillOnce([state](const std::string&) {
            return MockFileManager::Handle(std::make_unique<FakeHandle>(state));
        });
        ZRMPlatform platform = *device_.platform();
        platform.fileManager = files_;
        return std::make_shared<ZRMFileLoggerImpl>(platform, ZRMLoggerCollection::sharedInstance(),
                                                   kZRMLogLevelError, kTracePath);
    }
    void fail(Operation operation, int errorNumber = 5) {
        device_.disk().faults().add({.operation = operation, .errorNumber = errorNumber});
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    std::shared_ptr<ZRMFileLoggerImpl> logger_ = ZRMFileLoggerImpl::sharedInstance();
    const std::shared_ptr<testing::StrictMock<MockFileManager>> files_ =
        std::make_shared<testing::StrictMock<MockFileManager>>();
};

}  // namespace

TEST_F(ZRMFileLoggerImplTest, LiesInTheDocumentsDirectory) {
    EXPECT_EQ(logger_->logFilePath(), kTracePath);
    EXPECT_EQ(logger_->logLevel(), kZRMLogLevelError);
}

TEST_F(ZRMFileLoggerImplTest, MakesNoFileBeforeALineIsAccepted) {
    logger_->logMessage("verbose", kZRMLogLevelVerbose);
    device_.runUntilIdle();
    EXPECT_FALSE(device_.disk().holdsFile(kTracePath));
}

TEST_F(ZRMFileLoggerImplTest, FirstLineMakesDirectoryAndFileThatBackupsLeaveOut) {
    log("one");
    EXPECT_EQ(content(), line("one"));
    EXPECT_TRUE(device_.disk().isExcludedFromBackup(kTracePath));
}

TEST_F(ZRMFileLoggerImplTest, WritesOffTheCallersThread) {
    logger_->logMessage("one", kZRMLogLevelError);
    EXPECT_FALSE(device_.disk().holdsFile(kTracePath));
    device_.runUntilIdle();
    EXPECT_EQ(content(), line("one"));
}

TEST_F(ZRMFileLoggerImplTest, AppendsLinesInTheOrderOfLogging) {
    logger_->logMessage("one", kZRMLogLevelError);
    logger_->logMessage("two", kZRMLogLevelError);
    logger_->logMessage("three", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_EQ(content(), line("one") + line("two") + line("three"));
}

TEST_F(ZRMFileLoggerImplTest, AppendsToWhatAnEarlierRunWrote) {
    device_.disk().put(kTracePath, "before\n");
    log("one");
    EXPECT_EQ(content(), "before\n" + line("one"));
}

TEST_F(ZRMFileLoggerImplTest, LinesAreOnStableStorageOnceWritten) {
    log("one");
    device_.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_EQ(content(), line("one"));
}

TEST_F(ZRMFileLoggerImplTest, AcceptsVerboseLinesAtLevelZero) {
    logger_->setLogLevel(kZRMLogLevelVerbose);
    logger_->logMessage("text", kZRMLogLevelVerbose);
    device_.runUntilIdle();
    EXPECT_EQ(content(), "[2026-01-01 00:00:00 +0000] [2] [VER] text\n");
}

TEST_F(ZRMFileLoggerImplTest, QueueIsSerialAndNamedAfterTheClass) {
    std::vector<std::string> labels;
    for (const auto& queue : device_.executor().madeQueues()) {
        labels.push_back(queue.label);
    }
    EXPECT_THAT(labels, testing::Contains("ZRMFileLoggerImpl.queue"));
}

TEST_F(ZRMFileLoggerImplTest, WriteFailureOfAnyStepIsToldOnTheConsoleAndTheLineIsLost) {
    log("one");
    for (const auto operation : {Operation::Write, Operation::Synchronize}) {
        device_.console().clear();
        fail(operation, 28);
        log("lost");
        EXPECT_EQ(device_.console().text(), "No space left on device to write logs\n");
        device_.disk().faults().clear();
    }
    device_.console().clear();
    log("two");
    EXPECT_EQ(device_.console().text(), "");
    EXPECT_THAT(content(), testing::StartsWith(line("one")));
    EXPECT_THAT(content(), testing::EndsWith(line("two")));
    EXPECT_THAT(log_.errors(), testing::IsEmpty());
}

TEST_F(ZRMFileLoggerImplTest, SeekThatFailsIsAWriteFailureLikeAnyOther) {
    const auto state = std::make_shared<HandleState>();
    state->seekFails = true;
    const auto logger = loggerOf(state);
    logger->logMessage("lost", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_EQ(device_.console().text(), "No space left on device to write logs\n");
    EXPECT_THAT(state->steps, testing::ElementsAre("seek to end"));
    EXPECT_TRUE(state->isOpen) << "nothing else changes";
}

TEST_F(ZRMFileLoggerImplTest, AppendsAndClearsStepByStep) {
    const auto state = std::make_shared<HandleState>();
    const auto logger = loggerOf(state);
    logger->logMessage("one", kZRMLogLevelError);
    logger->clearLogFile();
    device_.runUntilIdle();
    EXPECT_THAT(state->steps, testing::ElementsAre("seek to end", "write", "synchronize",
                                                   "seek to 0", "truncate at 0", "synchronize"));
}

TEST_F(ZRMFileLoggerImplTest, ClosesItsFileBeforeItRemovesIt) {
    const auto state = std::make_shared<HandleState>();
    const auto logger = loggerOf(state);
    logger->logMessage("one", kZRMLogLevelError);
    logger->deleteLogFile();
    EXPECT_CALL(*files_, removeItem(kTracePath)).WillOnce([state](const std::string&) {
        EXPECT_FALSE(state->isOpen);
        return std::nullopt;
    });
    device_.runUntilIdle();
}

TEST_F(ZRMFileLoggerImplTest, OpensItsFileOnceAndClosesItWhenItIsDropped) {
    const auto state = std::make_shared<HandleState>();
    auto logger = loggerOf(state);
    logger->logMessage("one", kZRMLogLevelError);
    logger->logMessage("two", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_TRUE(state->isOpen);
    logger.reset();
    EXPECT_FALSE(state->isOpen);
}

TEST_F(ZRMFileLoggerImplTest, FileThatCannotBeOpenedLosesTheLineAndIsTriedAgain) {
    fail(Operation::Open);
    log("lost");
    device_.disk().faults().clear();
    log("two");
    EXPECT_EQ(content(), line("two"));
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMFileLoggerImplTest, DirectoryThatCannotBeMadeSilencesItForTheProcess) {
    fail(Operation::MakeDirectory, 13);
    log("lost");
    ASSERT_EQ(log_.errors().size(), 1u);
    device_.disk().faults().clear();
    log("also lost");
    EXPECT_FALSE(device_.disk().holdsFile(kTracePath));
    EXPECT_EQ(log_.errors().size(), 1u);
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMFileLoggerImplTest, FileThatCannotBeMadeSilencesIt) {
    fail(Operation::Create, 28);
    log("lost");
    ASSERT_EQ(log_.errors().size(), 1u);
    device_.disk().faults().clear();
    log("also lost");
    EXPECT_FALSE(device_.disk().holdsFile(kTracePath));
}

TEST_F(ZRMFileLoggerImplTest, BackupExclusionThatFailsSilencesIt) {
    fail(Operation::Mark, 1);
    log("lost");
    ASSERT_EQ(log_.errors().size(), 1u);
    device_.disk().faults().clear();
    log("also lost");
    EXPECT_EQ(content(), "");
}

TEST_F(ZRMFileLoggerImplTest, ItsComplaintsAreErrorsWithTheDescription) {
    fail(Operation::Create, 28);
    log("lost");
    const auto expected =
        device_.platform()->fileManager->createFile("/device/x").value().localizedDescription();
    EXPECT_EQ(log_.errors(), std::vector<std::string>{expected});
}

TEST_F(ZRMFileLoggerImplTest, ChecksTheDocumentsDirectoryWhereverItsFileLies) {
    const auto elsewhere = std::make_shared<ZRMFileLoggerImpl>(
        *device_.platform(), ZRMLoggerCollection::sharedInstance(), kZRMLogLevelError,
        "/device/elsewhere.log");
    device_.disk().put("/device/x", "");
    elsewhere->logMessage("one", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_TRUE(device_.disk().holdsDirectory(kDocuments));
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf("/device/elsewhere.log")), line("one"));
}

TEST_F(ZRMFileLoggerImplTest, ClearEmptiesTheFileAndKeepsItsCreationDate) {
    log("one");
    const auto created = device_.platform()->fileManager->creationDate(kTracePath).value();
    device_.advanceBy(100);
    logger_->clearLogFile();
    device_.runUntilIdle();
    EXPECT_TRUE(device_.disk().holdsFile(kTracePath));
    EXPECT_EQ(content(), "");
    EXPECT_EQ(device_.platform()->fileManager->creationDate(kTracePath).value(), created);
}

TEST_F(ZRMFileLoggerImplTest, ClearComesAfterTheLinesBeforeItAndBeforeThoseAfterIt) {
    logger_->logMessage("one", kZRMLogLevelError);
    logger_->clearLogFile();
    logger_->logMessage("two", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_EQ(content(), line("two"));
}

TEST_F(ZRMFileLoggerImplTest, ClearOfAFileThatIsNotThereMakesAnEmptyOne) {
    logger_->clearLogFile();
    device_.runUntilIdle();
    EXPECT_TRUE(device_.disk().holdsFile(kTracePath));
    EXPECT_EQ(content(), "");
}

TEST_F(ZRMFileLoggerImplTest, ClearThatFailsIsLoggedByTheOthers) {
    log("one");
    fail(Operation::Truncate);
    logger_->clearLogFile();
    device_.runUntilIdle();
    EXPECT_EQ(content(), line("one"));
    EXPECT_EQ(log_.errors().size(), 1u);
}

TEST_F(ZRMFileLoggerImplTest, DeleteRemovesTheFileAndTheNextLineBeginsANewOne) {
    log("one");
    logger_->deleteLogFile();
    device_.runUntilIdle();
    EXPECT_FALSE(device_.disk().holdsFile(kTracePath));
    device_.advanceBy(1);
    logger_->logMessage("two", kZRMLogLevelError);
    device_.runUntilIdle();
    EXPECT_EQ(content(), "[2026-01-01 00:00:01 +0000] [2] [ERR] two\n");
    EXPECT_TRUE(device_.disk().isExcludedFromBackup(kTracePath));
}

TEST_F(ZRMFileLoggerImplTest, DeleteThatFailsIsLoggedByTheOthers) {
    log("one");
    fail(Operation::Remove, 13);
    logger_->deleteLogFile();
    device_.runUntilIdle();
    EXPECT_EQ(log_.errors().size(), 1u);
    EXPECT_EQ(content(), line("one"));
    device_.disk().faults().clear();
    log("two");
    EXPECT_EQ(content(), line("one") + line("two"));
}

TEST_F(ZRMFileLoggerImplTest, DeleteOfAFileThatIsNotThereIsLogged) {
    logger_->deleteLogFile();
    device_.runUntilIdle();
    EXPECT_EQ(log_.errors().size(), 1u);
}

TEST_F(ZRMFileLoggerImplTest, LinesOfALoggerThatIsGoneAreDropped) {
    auto logger = std::make_shared<ZRMFileLoggerImpl>(
        *device_.platform(), ZRMLoggerCollection::sharedInstance(), kZRMLogLevelError,
        std::string(kDocuments) + "/other.log");
    logger->logMessage("lost", kZRMLogLevelError);
    logger.reset();
    device_.runUntilIdle();
    EXPECT_FALSE(device_.disk().holdsFile(std::string(kDocuments) + "/other.log"));
}
