// What ZRMFileManager.h promises.
#include <cerrno>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

class ZRMFileManagerContract : public ZRMContract {
  protected:
    [[nodiscard]] ZRMFileManager& files() { return *platform()->fileManager; }
    [[nodiscard]] std::string path(const std::string& name) { return scratch_ + "/" + name; }
    std::string write(const std::string& name, std::string_view text) {
        EXPECT_FALSE(files().writeFileAtomically(path(name), zrm_dataFromText(text)));
        return path(name);
    }
    [[nodiscard]] std::string read(const std::string& name) {
        const auto bytes = files().readFile(path(name));
        EXPECT_TRUE(bytes) << name;
        return bytes ? zrm_textFromData(bytes.value()) : "unreadable";
    }
    std::unique_ptr<ZRMFileHandle> open(const std::string& name) {
        auto handle = files().openForUpdating(path(name));
        EXPECT_TRUE(handle);
        return handle ? std::move(handle).value() : nullptr;
    }
    static std::int64_t codeOf(const ZRMError& error) {
        EXPECT_EQ(error.domain(), kZRMPosixErrorDomain);
        return error.code();
    }
    static std::int64_t codeOf(const std::optional<ZRMError>& error) {
        return error ? codeOf(*error) : 0;
    }

    std::string scratch_ = body_->scratchDirectory();
};

class ZRMDirectoriesContract : public ZRMContract {};

}  // namespace

TEST_P(ZRMFileManagerContract, TellsFilesFromDirectories) {
    write("file", "");
    EXPECT_TRUE(files().fileExists(path("file")));
    EXPECT_FALSE(files().directoryExists(path("file")));
    EXPECT_TRUE(files().directoryExists(scratch_));
    EXPECT_FALSE(files().fileExists(scratch_));
    EXPECT_FALSE(files().fileExists(path("nothing")));
    EXPECT_FALSE(files().directoryExists(path("nothing")));
}

TEST_P(ZRMFileManagerContract, ListsTheNamesInADirectorySortedByTheirBytes) {
    write("b", "");
    write("B", "");
    write("\xc3\xa4", "");
    EXPECT_FALSE(files().createDirectory(path("a/inner")));
    const auto names = files().contentsOfDirectory(scratch_);
    ASSERT_TRUE(names);
    EXPECT_THAT(names.value(), ElementsAre("B", "a", "b", "\xc3\xa4"));
}

TEST_P(ZRMFileManagerContract, ListingWhatIsNoDirectoryIsAnError) {
    write("file", "");
    EXPECT_EQ(codeOf(files().contentsOfDirectory(path("nothing")).error()), ENOENT);
    EXPECT_EQ(codeOf(files().contentsOfDirectory(path("file")).error()), ENOTDIR);
}

TEST_P(ZRMFileManagerContract, CreatesDirectoriesWithAllMissingParents) {
    EXPECT_FALSE(files().createDirectory(path("a/b/c")));
    EXPECT_TRUE(files().directoryExists(path("a/b/c")));
}

TEST_P(ZRMFileManagerContract, CreatingADirectoryThatExistsIsSuccess) {
    EXPECT_FALSE(files().createDirectory(path("a")));
    EXPECT_FALSE(files().createDirectory(path("a")));
}

TEST_P(ZRMFileManagerContract, AFileInTheWayOfADirectoryIsAnError) {
    write("file", "kept");
    EXPECT_TRUE(files().createDirectory(path("file")));
    EXPECT_TRUE(files().createDirectory(path("file/below")));
    EXPECT_EQ(read("file"), "kept");
}

TEST_P(ZRMFileManagerContract, CreatesAnEmptyFile) {
    EXPECT_FALSE(files().createFile(path("file")));
    EXPECT_EQ(read("file"), "");
}

TEST_P(ZRMFileManagerContract, CreatingAFileThatExistsEmptiesIt) {
    write("file", "full");
    EXPECT_FALSE(files().createFile(path("file")));
    EXPECT_EQ(read("file"), "");
}

TEST_P(ZRMFileManagerContract, CreatingAFileWithoutItsDirectoryIsAnError) {
    EXPECT_EQ(codeOf(files().createFile(path("none/file"))), ENOENT);
    EXPECT_EQ(codeOf(files().createFile(scratch_)), EISDIR);
}

TEST_P(ZRMFileManagerContract, ReadsAllBytes) {
    ZRMData bytes(300000);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = static_cast<std::uint8_t>(index * 7);
    }
    EXPECT_FALSE(files().writeFileAtomically(path("file"), bytes));
    EXPECT_EQ(files().readFile(path("file")).value(), bytes);
}

TEST_P(ZRMFileManagerContract, ReadingWhatIsNoFileIsAnError) {
    EXPECT_EQ(codeOf(files().readFile(path("nothing")).error()), ENOENT);
    EXPECT_EQ(codeOf(files().readFile(scratch_).error()), EISDIR);
}

TEST_P(ZRMFileManagerContract, AnAtomicWriteReplacesTheFileAndLeavesNothingBesides) {
    write("file", "old and longer");
    write("file", "new");
    EXPECT_EQ(read("file"), "new");
    EXPECT_THAT(files().contentsOfDirectory(scratch_).value(), ElementsAre("file"));
}

TEST_P(ZRMFileManagerContract, AnAtomicWriteThatFailsLeavesTheOldState) {
    EXPECT_FALSE(files().createDirectory(path("dir/inner")));
    EXPECT_TRUE(files().writeFileAtomically(path("dir"), {1}));
    EXPECT_TRUE(files().directoryExists(path("dir/inner")));
    EXPECT_EQ(codeOf(files().writeFileAtomically(path("none/file"), {1})), ENOENT);
    EXPECT_THAT(files().contentsOfDirectory(scratch_).value(), ElementsAre("dir"));
}

TEST_P(ZRMFileManagerContract, RemovesAFile) {
    write("file", "1");
    EXPECT_FALSE(files().removeItem(path("file")));
    EXPECT_FALSE(files().fileExists(path("file")));
}

TEST_P(ZRMFileManagerContract, RemovesADirectoryWithAllThatIsInIt) {
    EXPECT_FALSE(files().createDirectory(path("a/b")));
    write("a/b/file", "1");
    write("ab", "kept");
    EXPECT_FALSE(files().removeItem(path("a")));
    EXPECT_THAT(files().contentsOfDirectory(scratch_).value(), ElementsAre("ab"));
}

TEST_P(ZRMFileManagerContract, RemovingNothingIsAnError) {
    EXPECT_EQ(codeOf(files().removeItem(path("nothing"))), ENOENT);
}

TEST_P(ZRMFileManagerContract, MovingReplacesAFileAtTheDestination) {
    write("from", "new");
    write("to", "old");
    EXPECT_FALSE(files().moveItem(path("from"), path("to")));
    EXPECT_EQ(read("to"), "new");
    EXPECT_FALSE(files().fileExists(path("from")));
}

TEST_P(ZRMFileManagerContract, MovesADirectoryWithAllThatIsInIt) {
    EXPECT_FALSE(files().createDirectory(path("a/b")));
    write("a/b/file", "1");
    EXPECT_FALSE(files().moveItem(path("a"), path("c")));
    EXPECT_EQ(read("c/b/file"), "1");
    EXPECT_FALSE(files().directoryExists(path("a")));
}

TEST_P(ZRMFileManagerContract, MovingNothingIsAnErrorAndKeepsTheDestination) {
    write("to", "old");
    EXPECT_EQ(codeOf(files().moveItem(path("nothing"), path("to"))), ENOENT);
    EXPECT_EQ(read("to"), "old");
}

TEST_P(ZRMFileManagerContract, TellsWhenAnItemWasCreated) {
    const ZRMDate before = platform()->clock->now();
    write("file", "1");
    const auto created = files().creationDate(path("file"));
    ASSERT_TRUE(created);
    // File systems keep time by a coarser clock.
    EXPECT_GE(created.value().secondsSince(before), -1);
    EXPECT_LE(created.value().secondsSince(platform()->clock->now()), 1);
    EXPECT_TRUE(files().creationDate(scratch_));
}

TEST_P(ZRMFileManagerContract, TheCreationDateOfNothingIsAnError) {
    EXPECT_EQ(codeOf(files().creationDate(path("nothing")).error()), ENOENT);
}

TEST_P(ZRMFileManagerContract, ExcludingAnItemFromBackupKeepsWhatItHolds) {
    write("file", "kept");
    EXPECT_FALSE(files().excludeFromBackup(path("file")));
    EXPECT_FALSE(files().excludeFromBackup(path("file")));
    EXPECT_EQ(read("file"), "kept");
    EXPECT_FALSE(files().excludeFromBackup(scratch_));
    EXPECT_EQ(read("file"), "kept");
}

TEST_P(ZRMFileManagerContract, ExcludingNothingFromBackupIsAnError) {
    EXPECT_EQ(codeOf(files().excludeFromBackup(path("nothing"))), ENOENT);
}

TEST_P(ZRMFileManagerContract, OpeningNeedsAFile) {
    EXPECT_EQ(codeOf(files().openForUpdating(path("nothing")).error()), ENOENT);
    EXPECT_EQ(codeOf(files().openForUpdating(scratch_).error()), EISDIR);
}

TEST_P(ZRMFileManagerContract, AHandleWritesAtItsOffset) {
    write("file", "0123456789");
    const auto handle = open("file");
    EXPECT_FALSE(handle->write(zrm_dataFromText("AB")));
    EXPECT_FALSE(handle->write(zrm_dataFromText("C")));
    EXPECT_FALSE(handle->seekTo(5));
    EXPECT_FALSE(handle->write(zrm_dataFromText("X")));
    EXPECT_FALSE(handle->seekToEnd());
    EXPECT_FALSE(handle->write(zrm_dataFromText("end")));
    EXPECT_FALSE(handle->synchronize());
    EXPECT_EQ(read("file"), "ABC34X6789end");
}

TEST_P(ZRMFileManagerContract, WritingBehindTheEndFillsWithZeros) {
    write("file", "1");
    const auto handle = open("file");
    EXPECT_FALSE(handle->seekTo(3));
    EXPECT_FALSE(handle->write(zrm_dataFromText("4")));
    EXPECT_EQ(read("file"), std::string("1\0\0004", 4));
}

TEST_P(ZRMFileManagerContract, AHandleTruncates) {
    write("file", "0123456789");
    const auto handle = open("file");
    EXPECT_FALSE(handle->truncateAt(4));
    EXPECT_EQ(read("file"), "0123");
    EXPECT_FALSE(handle->truncateAt(0));
    EXPECT_FALSE(handle->seekToEnd());
    EXPECT_FALSE(handle->write(zrm_dataFromText("new")));
    EXPECT_EQ(read("file"), "new");
}

TEST_P(ZRMFileManagerContract, WritingNothingChangesNothing) {
    write("file", "1");
    EXPECT_FALSE(open("file")->write({}));
    EXPECT_EQ(read("file"), "1");
}

TEST_P(ZRMFileManagerContract, AHandleStaysOnItsFileWhenThatIsMoved) {
    write("file", "1");
    const auto handle = open("file");
    EXPECT_FALSE(files().moveItem(path("file"), path("moved")));
    EXPECT_FALSE(handle->write(zrm_dataFromText("2")));
    EXPECT_EQ(read("moved"), "2");
}

TEST_P(ZRMFileManagerContract, FilesSurviveTheProcess) {
    write("file", "1");
    body_->restart();
    EXPECT_EQ(read("file"), "1");
}

TEST_P(ZRMDirectoriesContract, AreAbsoluteAndWithoutASlashAtTheEnd) {
    const auto directories = platform()->directories;
    for (const auto& path : {directories->documents(), directories->applicationSupport()}) {
        EXPECT_TRUE(path.starts_with("/")) << path;
        EXPECT_FALSE(path.ends_with("/")) << path;
    }
    EXPECT_NE(directories->documents(), directories->applicationSupport());
}

TEST_P(ZRMDirectoriesContract, CanBeMadeAndWrittenTo) {
    const auto directories = platform()->directories;
    for (const auto& path : {directories->documents(), directories->applicationSupport()}) {
        EXPECT_FALSE(platform()->fileManager->createDirectory(path));
        EXPECT_FALSE(platform()->fileManager->writeFileAtomically(path + "/file", {1}));
    }
}

TEST_P(ZRMDirectoriesContract, StayTheSameAfterARestart) {
    const auto documents = platform()->directories->documents();
    const auto support = platform()->directories->applicationSupport();
    body_->restart();
    EXPECT_EQ(platform()->directories->documents(), documents);
    EXPECT_EQ(platform()->directories->applicationSupport(), support);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMFileManagerContract, zrm_contractBodies(),
                         zrm_contractBodyName);
INSTANTIATE_TEST_SUITE_P(Bodies, ZRMDirectoriesContract, zrm_contractBodies(),
                         zrm_contractBodyName);
