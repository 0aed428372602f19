// What ZRMFileManager.h promises.
#include <cerrno>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

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
    std::unique_ptr<ZRMFileReader> reader(const std::string& name) {
        auto reader = files().openForReading(path(name));
        EXPECT_TRUE(reader);
        return reader ? std::move(reader).value() : nullptr;
    }
    // The text that one step yields.
    static std::string step(ZRMFileReader& reader, std::size_t most) {
        ZRMData buffer(most);
        const auto count = reader.read(buffer);
        EXPECT_TRUE(count);
        buffer.resize(count ? count.value() : 0);
        return zrm_textFromData(buffer);
    }
    // What is listed below the directory, relative to it, with "/" after directories.
    std::vector<std::string> listed(const std::string& directory) {
        const auto enumerator = files().enumeratorAtPath(directory);
        EXPECT_TRUE(enumerator);
        std::vector<std::string> names;
        while (auto entry = enumerator.value()->next()) {
            EXPECT_TRUE(entry->path.starts_with(directory + "/")) << entry->path;
            names.push_back(entry->path.substr(directory.size() + 1) +
                            (entry->isDirectory ? "/" : ""));
        }
        return names;
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

TEST_P(ZRMFileManagerContract, AReaderYieldsTheBytesInSteps) {
    write("file", "0123456789");
    const auto file = reader("file");
    EXPECT_EQ(step(*file, 4), "0123");
    EXPECT_EQ(step(*file, 4), "4567");
    EXPECT_EQ(step(*file, 4), "89");
    EXPECT_EQ(step(*file, 4), "");
    EXPECT_EQ(step(*file, 4), "");
}

TEST_P(ZRMFileManagerContract, AReaderOfAnEmptyFileIsAtItsEnd) {
    write("file", "");
    EXPECT_EQ(step(*reader("file"), 1), "");
}

TEST_P(ZRMFileManagerContract, AReaderSeesWhatIsAppendedAndCutOff) {
    write("file", "0123");
    const auto first = reader("file");
    const auto second = reader("file");
    EXPECT_EQ(step(*first, 4), "0123");
    EXPECT_EQ(step(*second, 2), "01");
    const auto handle = open("file");
    EXPECT_FALSE(handle->seekToEnd());
    EXPECT_FALSE(handle->write(zrm_dataFromText("45")));
    EXPECT_EQ(step(*first, 4), "45");
    EXPECT_FALSE(handle->truncateAt(1));
    EXPECT_EQ(step(*second, 4), "");
}

TEST_P(ZRMFileManagerContract, AReaderStaysOnAFileThatIsReplacedOrRemoved) {
    write("replaced", "old");
    write("removed", "gone");
    const auto replaced = reader("replaced");
    const auto removed = reader("removed");
    write("replaced", "new");
    EXPECT_FALSE(files().removeItem(path("removed")));
    EXPECT_EQ(step(*replaced, 9), "old");
    EXPECT_EQ(step(*removed, 9), "gone");
}

TEST_P(ZRMFileManagerContract, OnlyFilesAreOpenedForReading) {
    EXPECT_EQ(codeOf(files().openForReading(path("nothing")).error()), ENOENT);
    EXPECT_EQ(codeOf(files().openForReading(scratch_).error()), EISDIR);
}

TEST_P(ZRMFileManagerContract, EnumeratesAllThatIsBelowADirectory) {
    EXPECT_FALSE(files().createDirectory(path("a/b/c")));
    EXPECT_FALSE(files().createDirectory(path("empty")));
    write("a/b/c/deep", "1");
    write("a/b.txt", "2");
    write("a.txt", "3");
    write("\xc3\xa4 name", "4");
    EXPECT_THAT(listed(scratch_),
                UnorderedElementsAre("a/", "a/b/", "a/b/c/", "a/b/c/deep", "a/b.txt", "a.txt",
                                     "empty/", "\xc3\xa4 name"));
    EXPECT_THAT(listed(path("a/b")), ElementsAre("c/", "c/deep"));
    EXPECT_THAT(listed(path("empty")), IsEmpty());
}

TEST_P(ZRMFileManagerContract, EnumeratesWhateverTheSlashesAtTheEndOfThePath) {
    write("file", "1");
    const auto enumerator = files().enumeratorAtPath(scratch_ + "//");
    ASSERT_TRUE(enumerator);
    const auto entry = enumerator.value()->next();
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->path, path("file"));
    EXPECT_FALSE(enumerator.value()->next());
    EXPECT_FALSE(enumerator.value()->next());
}

TEST_P(ZRMFileManagerContract, ListsADirectoryBeforeWhatItHoldsAndLeavesOutWhatIsGoneByThen) {
    EXPECT_FALSE(files().createDirectory(path("a")));
    write("a/file", "1");
    const auto enumerator = files().enumeratorAtPath(scratch_);
    ASSERT_TRUE(enumerator);
    EXPECT_EQ(enumerator.value()->next()->path, path("a"));
    EXPECT_FALSE(files().removeItem(path("a")));
    EXPECT_FALSE(enumerator.value()->next());
}

TEST_P(ZRMFileManagerContract, EnumeratingWhatIsNoDirectoryIsAnError) {
    write("file", "1");
    EXPECT_EQ(codeOf(files().enumeratorAtPath(path("nothing")).error()), ENOENT);
    EXPECT_EQ(codeOf(files().enumeratorAtPath(path("file")).error()), ENOTDIR);
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
