// The hasher over a real file system and what may lie there.
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/BundleHash/ZRMMd5Hasher.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMPlatform/Linux/ZRMLinuxDigests.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

constexpr const char* kHashOfAbc = "900150983cd24fb0d6963f7d28e17f72";

class ZRMMd5HasherFiles : public testing::Test {
  protected:
    [[nodiscard]] std::string ofBundle() {
        const auto digest = hasher_.md5ForDirectoryAtPath(directory_.path());
        return digest ? zrm_hexString(*digest) : "none";
    }
    void link(const std::string& target, const std::string& name) const {
        std::filesystem::create_symlink(target, directory_.below(name));
    }

    ZRMTestDirectory directory_;
    ZRMMd5Hasher hasher_{std::make_shared<ZRMLinuxFileManager>(),
                         std::make_shared<ZRMLinuxDigests>()};
};

TEST_F(ZRMMd5HasherFiles, ALinkToAFileCountsWithTheFilesContent) {
    const ZRMTestDirectory elsewhere;
    elsewhere.writeFile("file", "abc");
    link(elsewhere.below("file"), "link");
    EXPECT_EQ(ofBundle(), kHashOfAbc);
    directory_.writeFile("same", "abc");
    EXPECT_EQ(ofBundle(), std::string(32, '0'));
}

TEST_F(ZRMMd5HasherFiles, ALinkToADirectoryIsNotFollowed) {
    const ZRMTestDirectory elsewhere;
    elsewhere.writeFile("file", "other");
    directory_.writeFile("abc", "abc");
    link(elsewhere.path(), "link");
    EXPECT_EQ(ofBundle(), kHashOfAbc);
}

TEST_F(ZRMMd5HasherFiles, LinksInACircleOrIntoNothingArePassedOver) {
    directory_.writeFile("folder/abc", "abc");
    link("folder/up", "again");
    link("again", "folder/up");
    link("self", "self");
    link(directory_.path(), "folder/root");
    link("..", "folder/parent");
    link("missing", "dangling");
    EXPECT_EQ(ofBundle(), kHashOfAbc);
}

TEST_F(ZRMMd5HasherFiles, ABundleThatIsItselfALinkIsFollowed) {
    const ZRMTestDirectory elsewhere;
    directory_.writeFile("abc", "abc");
    std::filesystem::create_symlink(directory_.path(), elsewhere.below("bundle"));
    const auto digest = hasher_.md5ForDirectoryAtPath(elsewhere.below("bundle"));
    ASSERT_TRUE(digest);
    EXPECT_EQ(zrm_hexString(*digest), kHashOfAbc);
}

TEST_F(ZRMMd5HasherFiles, FifosSocketsAndDevicesArePassedOverAndDoNotBlock) {
    directory_.writeFile("abc", "abc");
    ASSERT_EQ(::mkfifo(directory_.below("fifo").c_str(), 0600), 0);
    link("fifo", "link to fifo");
    link("/dev/zero", "endless");
    link("/dev/null", "empty");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto path = directory_.below("socket");
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(ofBundle(), kHashOfAbc);
    ::close(socket);
    EXPECT_FALSE(hasher_.hashOfFileAtPath(directory_.below("fifo")));
    EXPECT_FALSE(hasher_.hashOfFileAtPath("/dev/zero"));
}

TEST_F(ZRMMd5HasherFiles, NamesNeedNotBeUtf8) {
    directory_.writeFile("\xff\xfe/\xc3(\n", "abc");
    EXPECT_EQ(ofBundle(), kHashOfAbc);
}

TEST_F(ZRMMd5HasherFiles, ANameWithANulNamesNoFile) {
    EXPECT_FALSE(
        hasher_.hashOfFileAtPath(directory_.writeFile("file", "abc") + std::string("\0.txt", 5)));
    EXPECT_FALSE(hasher_.md5ForDirectoryAtPath(directory_.path() + std::string("\0/", 2)));
    EXPECT_FALSE(hasher_.md5ForDirectoryAtPath(""));
}

// A chain of directories far deeper than a path may be long or a process may have files open.
class DeepTree {
  public:
    explicit DeepTree(const std::string& top) {
        level_ = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
        for (int depth = 0; depth < kDepth; ++depth) {
            ::mkdirat(level_, kName, 0700);
            move(kName);
        }
        const int file = ::openat(level_, "file", O_WRONLY | O_CREAT, 0600);
        EXPECT_EQ(::write(file, "abc", 3), 3);
        ::close(file);
    }
    ~DeepTree() {
        ::unlinkat(level_, "file", 0);
        for (int depth = 0; depth < kDepth; ++depth) {
            move("..");
            ::unlinkat(level_, kName, AT_REMOVEDIR);
        }
        ::close(level_);
    }
    DeepTree(const DeepTree&) = delete;
    DeepTree& operator=(const DeepTree&) = delete;

  private:
    static constexpr int kDepth = 1200;
    static constexpr const char* kName = "level";

    void move(const char* name) {
        const int next = ::openat(level_, name, O_RDONLY | O_DIRECTORY);
        EXPECT_GE(next, 0);
        ::close(level_);
        level_ = next;
    }

    int level_;
};

TEST_F(ZRMMd5HasherFiles, HashesTheFilesOfAVeryDeepTree) {
    const DeepTree tree(directory_.path());
    EXPECT_EQ(ofBundle(), kHashOfAbc);
    // Both are found after the way back from the depth, wherever they are listed.
    directory_.writeFile("after", "new");
    directory_.writeFile("level/level/after", "new");
    EXPECT_EQ(ofBundle(), kHashOfAbc);
}

}  // namespace
