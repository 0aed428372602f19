#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class UmaskScope {
  public:
    explicit UmaskScope(mode_t mask) : previous_(::umask(mask)) {}
    ~UmaskScope() { ::umask(previous_); }
    UmaskScope(const UmaskScope&) = delete;
    UmaskScope& operator=(const UmaskScope&) = delete;

  private:
    mode_t previous_;
};

std::int64_t codeOf(const std::optional<ZRMError>& error) {
    if (!error) {
        return 0;
    }
    EXPECT_EQ(error->domain(), kZRMPosixErrorDomain);
    return error->code();
}

template <class Value>
std::int64_t codeOf(const ZRMResult<Value>& result) {
    return result ? 0 : codeOf(std::optional(result.error()));
}

std::size_t countOf(const std::string& directory) {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(directory), {}));
}

class ZRMLinuxFileManagerTest : public testing::Test {
  protected:
    // What is listed below the test's directory, relative to it, sorted, with "/" after
    // directories.
    std::vector<std::string> listed() {
        const auto enumerator = files_.enumeratorAtPath(directory_.path());
        EXPECT_TRUE(enumerator);
        std::vector<std::string> names;
        while (const auto entry = enumerator.value()->next()) {
            names.push_back(entry->path.substr(directory_.path().size() + 1) +
                            (entry->isDirectory ? "/" : ""));
        }
        std::ranges::sort(names);
        return names;
    }

    ZRMTestDirectory directory_;
    ZRMLinuxFileManager files_;
};

}  // namespace

TEST_F(ZRMLinuxFileManagerTest, NewItemsGetTheirModesWhateverTheUmask) {
    int number = 0;
    for (const mode_t mask : {0000U, 0022U, 0077U, 0277U, 0777U}) {
        const UmaskScope umask(mask);
        const auto base = directory_.below("umask" + std::to_string(number++));
        EXPECT_EQ(codeOf(files_.createDirectory(base + "/inner")), 0);
        EXPECT_EQ(codeOf(files_.createFile(base + "/created")), 0);
        EXPECT_EQ(codeOf(files_.writeFileAtomically(base + "/written", {1, 2})), 0);
        EXPECT_EQ(zrm_testMode(base), 0700U);
        EXPECT_EQ(zrm_testMode(base + "/inner"), 0700U);
        EXPECT_EQ(zrm_testMode(base + "/created"), 0600U);
        EXPECT_EQ(zrm_testMode(base + "/written"), 0600U);
    }
}

TEST_F(ZRMLinuxFileManagerTest, AnUnsyncedReplacementIsTheOldFileOrTheNew) {
    const auto file = directory_.writeFile("file", "old");
    EXPECT_EQ(codeOf(files_.replaceFileUnsynced(file, zrm_dataFromText("new bytes"))), 0);
    EXPECT_EQ(files_.readFile(file).value(), zrm_dataFromText("new bytes"));
    EXPECT_EQ(zrm_testMode(file), 0600U);
    EXPECT_EQ(codeOf(files_.replaceFileUnsynced(directory_.path(), {1})), EISDIR);
    EXPECT_EQ(codeOf(files_.replaceFileUnsynced(directory_.below("none/file"), {1})), ENOENT);
    EXPECT_EQ(listed(), (std::vector<std::string>{"file"}));
}

TEST_F(ZRMLinuxFileManagerTest, TellsFilesFromDirectories) {
    const auto file = directory_.writeFile("file", "x");
    EXPECT_TRUE(files_.fileExists(file));
    EXPECT_FALSE(files_.directoryExists(file));
    EXPECT_FALSE(files_.fileExists(directory_.path()));
    EXPECT_TRUE(files_.directoryExists(directory_.path()));
    EXPECT_FALSE(files_.fileExists(directory_.below("none")));
    EXPECT_FALSE(files_.directoryExists(""));
}

TEST_F(ZRMLinuxFileManagerTest, ListsWhatADirectoryHoldsByTheBytesOfTheNames) {
    directory_.writeFile("b", "");
    directory_.writeFile("B", "");
    directory_.writeFile(".hidden", "");
    directory_.writeFile("\xc3\xa9", "");
    directory_.writeFile("a/inner", "");
    EXPECT_EQ(files_.contentsOfDirectory(directory_.path()).value(),
              (std::vector<std::string>{".hidden", "B", "a", "b", "\xc3\xa9"}));
    EXPECT_EQ(codeOf(files_.contentsOfDirectory(directory_.below("none"))), ENOENT);
    EXPECT_EQ(codeOf(files_.contentsOfDirectory(directory_.below("b"))), ENOTDIR);
}

TEST_F(ZRMLinuxFileManagerTest, MakesAllMissingParentsAndTakesWhatExists) {
    const auto deep = directory_.below("a/b//c/d/");
    EXPECT_EQ(codeOf(files_.createDirectory(deep)), 0);
    EXPECT_TRUE(files_.directoryExists(deep));
    EXPECT_EQ(codeOf(files_.createDirectory(deep)), 0);
}

TEST_F(ZRMLinuxFileManagerTest, AnExistingDirectoryKeepsItsMode) {
    const auto path = directory_.below("open");
    ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0755), 0);
    EXPECT_EQ(codeOf(files_.createDirectory(path)), 0);
    EXPECT_EQ(zrm_testMode(path), 0755U);
}

TEST_F(ZRMLinuxFileManagerTest, AFileInTheWayOfADirectoryIsAnError) {
    const auto file = directory_.writeFile("file", "x");
    EXPECT_EQ(codeOf(files_.createDirectory(file)), EEXIST);
    EXPECT_EQ(codeOf(files_.createDirectory(file + "/below")), EEXIST);
}

TEST_F(ZRMLinuxFileManagerTest, CreatingAFileThatExistsEmptiesItAndKeepsItsCreationDate) {
    const auto path = directory_.below("log");
    ASSERT_EQ(codeOf(files_.createFile(path)), 0);
    const auto born = files_.creationDate(path);
    ASSERT_TRUE(born);
    ASSERT_EQ(codeOf(files_.writeFileAtomically(directory_.below("other"), {1})), 0);
    directory_.writeFile("log", "some text");
    EXPECT_EQ(codeOf(files_.createFile(path)), 0);
    EXPECT_EQ(zrm_testFileText(path), "");
    EXPECT_EQ(files_.creationDate(path).value(), born.value());
}

TEST_F(ZRMLinuxFileManagerTest, CreatingAFileReportsWhatTheSystemSays) {
    EXPECT_EQ(codeOf(files_.createFile(directory_.below("none/file"))), ENOENT);
    EXPECT_EQ(codeOf(files_.createFile(directory_.path())), EISDIR);
    EXPECT_EQ(codeOf(files_.createFile("")), ENOENT);
    EXPECT_EQ(codeOf(files_.createFile(directory_.below(std::string("a\0b", 3)))), EINVAL);
}

TEST_F(ZRMLinuxFileManagerTest, ReadsFilesOfAnySizeAndThoseOfTheKernel) {
    EXPECT_EQ(files_.readFile(directory_.writeFile("empty", "")).value(), ZRMData{});
    const std::string big(3'000'001, 'q');
    EXPECT_EQ(files_.readFile(directory_.writeFile("big", big)).value().size(), big.size());
    EXPECT_GT(files_.readFile("/proc/self/maps").value().size(), 100U);  // which says it is empty
}

TEST_F(ZRMLinuxFileManagerTest, ReadingWhatIsNoFileIsAnError) {
    EXPECT_EQ(codeOf(files_.readFile(directory_.below("none"))), ENOENT);
    EXPECT_EQ(codeOf(files_.readFile(directory_.path())), EISDIR);
}

TEST_F(ZRMLinuxFileManagerTest, AFifoDoesNotBlockAReader) {
    const auto path = directory_.below("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(files_.readFile(path).value(), ZRMData{});
}

TEST_F(ZRMLinuxFileManagerTest, AnAtomicWriteReplacesTheFileAndLeavesNothingElse) {
    const auto path = directory_.writeFile("settings", "old");
    EXPECT_EQ(codeOf(files_.writeFileAtomically(path, zrm_dataFromText("new"))), 0);
    EXPECT_EQ(zrm_testFileText(path), "new");
    EXPECT_EQ(countOf(directory_.path()), 1U);
}

TEST_F(ZRMLinuxFileManagerTest, AnAtomicWriteThatFailsLeavesTheOldStateAndNoTemporaryFile) {
    ASSERT_EQ(codeOf(files_.createDirectory(directory_.below("taken/inner"))), 0);
    EXPECT_NE(codeOf(files_.writeFileAtomically(directory_.below("taken"), {1})), 0);
    EXPECT_TRUE(files_.directoryExists(directory_.below("taken/inner")));
    EXPECT_EQ(countOf(directory_.path()), 1U);
    EXPECT_EQ(codeOf(files_.writeFileAtomically(directory_.below("none/file"), {1})), ENOENT);
}

TEST_F(ZRMLinuxFileManagerTest, ANameOfTheGreatestLengthCanBeWrittenAtomically) {
    const auto path = directory_.below(std::string(255, 'n'));
    EXPECT_EQ(codeOf(files_.writeFileAtomically(path, {1})), 0);
    EXPECT_EQ(codeOf(files_.writeFileAtomically(path + "n", {1})), ENAMETOOLONG);
}

TEST_F(ZRMLinuxFileManagerTest, RemovesFilesAndDirectoriesWithAllThatIsInThem) {
    directory_.writeFile("tree/a/b", "x");
    EXPECT_EQ(codeOf(files_.removeItem(directory_.below("tree"))), 0);
    EXPECT_FALSE(files_.directoryExists(directory_.below("tree")));
    EXPECT_EQ(codeOf(files_.removeItem(directory_.writeFile("file", ""))), 0);
    EXPECT_EQ(codeOf(files_.removeItem(directory_.below("file"))), ENOENT);
}

TEST_F(ZRMLinuxFileManagerTest, MovingReplacesTheFileAtTheDestination) {
    const auto from = directory_.writeFile("from", "new");
    const auto to = directory_.writeFile("to", "old");
    EXPECT_EQ(codeOf(files_.moveItem(from, to)), 0);
    EXPECT_EQ(zrm_testFileText(to), "new");
    EXPECT_FALSE(files_.fileExists(from));
    EXPECT_EQ(codeOf(files_.moveItem(from, to)), ENOENT);
    EXPECT_EQ(zrm_testFileText(to), "new");
}

TEST_F(ZRMLinuxFileManagerTest, TheCreationDateIsThatOfTheBirth) {
    const auto now = [] {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
            .count();
    };
    const double before = now();
    const auto path = directory_.below("born");
    ASSERT_EQ(codeOf(files_.createFile(path)), 0);
    const double after = now();
    const auto born = files_.creationDate(path);
    ASSERT_TRUE(born);
    // File systems take the time of the last clock tick.
    EXPECT_GE(born.value().secondsSince1970, before - 0.1);
    EXPECT_LE(born.value().secondsSince1970, after);
    EXPECT_TRUE(files_.creationDate(directory_.path()));
    EXPECT_EQ(codeOf(files_.creationDate(directory_.below("none"))), ENOENT);
}

TEST_F(ZRMLinuxFileManagerTest, AnItemWithoutBirthTimeIsAnError) {
    EXPECT_EQ(codeOf(files_.creationDate("/proc/self/status")), ENOTSUP);
}

TEST_F(ZRMLinuxFileManagerTest, ADirectoryLeftOutOfBackupsCarriesTheCacheTag) {
    EXPECT_EQ(codeOf(files_.excludeFromBackup(directory_.path())), 0);
    EXPECT_TRUE(zrm_testFileText(directory_.below("CACHEDIR.TAG"))
                    .starts_with("Signature: 8a477f597d28d172789f06886806bc55"));
    EXPECT_EQ(codeOf(files_.excludeFromBackup(directory_.path())), 0);
}

TEST_F(ZRMLinuxFileManagerTest, AFileLeftOutOfBackupsCarriesTheAttributeWhereTheFileSystemCan) {
    const auto path = directory_.writeFile("log", "");
    EXPECT_EQ(codeOf(files_.excludeFromBackup(path)), 0);
    std::string value(16, '\0');
    const auto size =
        ::getxattr(path.c_str(), "user.xdg.robots.backup", value.data(), value.size());
    if (size < 0) {
        EXPECT_EQ(errno, ENOTSUP);
    } else {
        EXPECT_EQ(value.substr(0, static_cast<std::size_t>(size)), "false");
    }
    EXPECT_EQ(codeOf(files_.excludeFromBackup(directory_.below("none"))), ENOENT);
}

TEST_F(ZRMLinuxFileManagerTest, AHandleWritesSeeksTruncatesAndSyncs) {
    const auto path = directory_.writeFile("log", "hello");
    auto opened = files_.openForUpdating(path);
    ASSERT_TRUE(opened);
    const auto handle = std::move(opened).value();
    EXPECT_EQ(codeOf(handle->write(zrm_dataFromText("J"))), 0);
    EXPECT_EQ(codeOf(handle->seekToEnd()), 0);
    EXPECT_EQ(codeOf(handle->write(zrm_dataFromText(" world"))), 0);
    EXPECT_EQ(codeOf(handle->seekTo(6)), 0);
    EXPECT_EQ(codeOf(handle->write(zrm_dataFromText("W"))), 0);
    EXPECT_EQ(codeOf(handle->synchronize()), 0);
    EXPECT_EQ(zrm_testFileText(path), "Jello World");
    EXPECT_EQ(codeOf(handle->truncateAt(5)), 0);
    EXPECT_EQ(zrm_testFileText(path), "Jello");
    EXPECT_EQ(codeOf(handle->seekTo(UINT64_MAX)), EINVAL);
    EXPECT_EQ(codeOf(handle->truncateAt(UINT64_MAX)), EINVAL);
}

TEST_F(ZRMLinuxFileManagerTest, OpeningForUpdatingNeedsAFile) {
    EXPECT_EQ(codeOf(files_.openForUpdating(directory_.below("none"))), ENOENT);
    EXPECT_EQ(codeOf(files_.openForUpdating(directory_.path())), EISDIR);
}

TEST_F(ZRMLinuxFileManagerTest, AFullDiskIsAnErrorOfTheWrite) {
    auto opened = files_.openForUpdating("/dev/full");
    ASSERT_TRUE(opened);
    EXPECT_EQ(codeOf(opened.value()->write(zrm_dataFromText("x"))), ENOSPC);
}

TEST_F(ZRMLinuxFileManagerTest, OnlyRegularFilesAreOpenedForReadingAndAFifoDoesNotBlock) {
    const auto fifo = directory_.below("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::filesystem::create_symlink(fifo, directory_.below("link"));
    EXPECT_EQ(codeOf(files_.openForReading(fifo)), EINVAL);
    EXPECT_EQ(codeOf(files_.openForReading(directory_.below("link"))), EINVAL);
    EXPECT_EQ(codeOf(files_.openForReading("/dev/zero")), EINVAL);
    EXPECT_EQ(codeOf(files_.openForReading("")), ENOENT);
    EXPECT_EQ(codeOf(files_.openForReading(directory_.below(std::string("a\0b", 3)))), EINVAL);
    EXPECT_EQ(codeOf(files_.openForReading("/proc/self/status")), 0);
}

TEST_F(ZRMLinuxFileManagerTest, OpensAFileByAPathThatIsTooLongForTheSystem) {
    auto path = directory_.path();
    directory_.writeFile("file", "x");
    while (path.size() < 3 * 4096) {
        path += "/././../" + directory_.path().substr(directory_.path().rfind('/') + 1);
    }
    EXPECT_EQ(codeOf(files_.openForReading(path + "/file")), 0);
    EXPECT_EQ(codeOf(files_.openForReading(path + "/none")), ENOENT);
    EXPECT_EQ(codeOf(files_.openForReading(path)), EISDIR);
    EXPECT_EQ(codeOf(files_.openForReading(path + std::string(5000, '/'))), EISDIR);
    EXPECT_EQ(codeOf(files_.openForReading(path + "/" + std::string(5000, 'n'))), ENAMETOOLONG);
    EXPECT_EQ(codeOf(files_.openForReading("/" + std::string(5000, 'n'))), ENAMETOOLONG);
}

TEST_F(ZRMLinuxFileManagerTest, LinksAreListedAndNotFollowed) {
    directory_.writeFile("folder/file", "");
    std::filesystem::create_symlink(directory_.path(), directory_.below("folder/loop"));
    std::filesystem::create_symlink("none", directory_.below("dangling"));
    EXPECT_EQ(listed(),
              (std::vector<std::string>{"dangling", "folder/", "folder/file", "folder/loop"}));
}

TEST_F(ZRMLinuxFileManagerTest, ADirectoryThatIsReplacedByALinkIsNotEntered) {
    directory_.writeFile("folder/file", "");
    const auto enumerator = files_.enumeratorAtPath(directory_.path());
    ASSERT_TRUE(enumerator);
    ASSERT_TRUE(enumerator.value()->next()->isDirectory);
    std::filesystem::remove_all(directory_.below("folder"));
    std::filesystem::create_symlink("/", directory_.below("folder"));
    const auto entry = enumerator.value()->next();
    EXPECT_TRUE(!entry || !entry->path.starts_with(directory_.below("folder/")));
}

TEST_F(ZRMLinuxFileManagerTest, ListsATreeThatIsDeeperThanItKeepsOpen) {
    constexpr int kDepth = 50;
    std::vector<std::string> expected;
    std::string path;
    for (int depth = 0; depth < kDepth; ++depth) {
        path += "d/";
        expected.push_back(path);
        for (const auto* const name : {"a", "z"}) {
            directory_.writeFile(path + name, "");
            expected.push_back(path + name);
        }
    }
    std::ranges::sort(expected);
    EXPECT_EQ(listed(), expected);
}

TEST_F(ZRMLinuxFileManagerTest, GoesDownAgainFromDirectoriesItHadClosed) {
    std::vector<std::string> expected;
    std::string stem;
    for (int depth = 0; depth < 30; ++depth) {
        stem += "d/";
        expected.push_back(stem);
    }
    for (const auto* const branch : {"x/", "y/", "z/"}) {
        auto path = stem;
        for (int depth = 0; depth < 30; ++depth) {
            path += branch;
            expected.push_back(path);
        }
        directory_.writeFile(path + "file", "");
        expected.push_back(path + "file");
    }
    std::ranges::sort(expected);
    EXPECT_EQ(listed(), expected);
}

// A tree whose lower part is moved away while it is listed.
class ZRMLinuxMovedTree : public ZRMLinuxFileManagerTest {
  protected:
    ZRMLinuxMovedTree() {
        std::string path = "top/";
        directory_.writeFile("top/file", "");
        for (int depth = 0; depth < 40; ++depth) {
            path += "d/";
        }
        directory_.writeFile(path + "file", "");
    }
    // The number of entries, with that done once the lowest file was listed.
    std::size_t countOfEntries(const std::function<void()>& atTheBottom) {
        const auto enumerator = files_.enumeratorAtPath(directory_.path());
        EXPECT_TRUE(enumerator);
        std::size_t count = 0;
        while (const auto entry = enumerator.value()->next()) {
            ++count;
            if (entry->path.ends_with("d/file")) {
                atTheBottom();
            }
        }
        EXPECT_FALSE(enumerator.value()->next());
        return count;
    }
    void moveAway(const std::string& relative, const std::string& name) {
        std::filesystem::rename(directory_.below(relative), elsewhere_.below(name));
    }

    static constexpr std::size_t kEntries = 43;
    ZRMTestDirectory elsewhere_;
};

TEST_F(ZRMLinuxMovedTree, IsListedWhereTheWayBackIsStillThere) {
    EXPECT_EQ(countOfEntries([this] { moveAway("top/d/d", "d"); }), kEntries);
}

TEST_F(ZRMLinuxMovedTree, EndsTheListingWhereTheWayBackIsGone) {
    const auto count = countOfEntries([this] {
        moveAway("top/d/d", "d");
        moveAway("top", "top");
    });
    EXPECT_GE(count, kEntries - 1);  // all but what lay beside the way
    EXPECT_LE(count, kEntries);
}
