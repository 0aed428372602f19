#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/BundleHash/ZRMMd5Hasher.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using Operation = ZRMSimulatedDiskOperation;

constexpr const char* kBundle = "/device/applications/Host.app";
// As any MD5 tool prints them.
constexpr const char* kMd5OfNothing = "d41d8cd98f00b204e9800998ecf8427e";
constexpr const char* kMd5OfA = "0cc175b9c0f1b6a831c399e269772661";
constexpr const char* kMd5OfAbc = "900150983cd24fb0d6963f7d28e17f72";
constexpr const char* kMd5OfAXorAbc = "9cc02521fc23f918e755a69f41965913";

class ZRMMd5HasherTest : public testing::Test {
  protected:
    void put(const std::string& name, std::string_view text) {
        device_.disk().put(std::string(kBundle) + "/" + name, text);
    }
    // In hexadecimal; "none" when absent.
    static std::string hex(const std::optional<ZRMData>& digest) {
        return digest ? zrm_hexString(*digest) : "none";
    }
    std::string ofBundle() { return hex(hasher_.md5ForDirectoryAtPath(kBundle)); }
    std::string ofFile(const std::string& name) {
        return hex(hasher_.hashOfFileAtPath(std::string(kBundle) + "/" + name));
    }
    [[nodiscard]] std::shared_ptr<ZRMMd5Hasher> hasherWithChunkSize(std::size_t chunkSize) const {
        return ZRMMd5Hasher::initWithChunkSizeForReadingData(
            device_.platform()->fileManager, device_.platform()->digests, chunkSize);
    }
    // How often the file is read from until its digest is known.
    std::uint64_t readsOf(const std::string& path, ZRMMd5Hasher& hasher) {
        std::uint64_t reads = 0;
        device_.disk().faults().setHook([&reads](auto, auto operation, const auto&) {
            reads += operation == Operation::Read ? 1 : 0;
        });
        EXPECT_TRUE(hasher.hashOfFileAtPath(path));
        device_.disk().faults().setHook({});
        return reads;
    }

    ZRMSimulatedDevice device_;
    ZRMMd5Hasher hasher_{device_.platform()->fileManager, device_.platform()->digests};
};

TEST_F(ZRMMd5HasherTest, HashesAFile) {
    put("nothing", "");
    put("a", "a");
    put("abc", "abc");
    EXPECT_EQ(ofFile("nothing"), kMd5OfNothing);
    EXPECT_EQ(ofFile("a"), kMd5OfA);
    EXPECT_EQ(ofFile("abc"), kMd5OfAbc);
}

TEST_F(ZRMMd5HasherTest, HasNoHashOfWhatCannotBeOpened) {
    put("folder/file", "a");
    EXPECT_EQ(ofFile("missing"), "none");
    EXPECT_EQ(ofFile("folder"), "none");
    device_.disk().faults().add({.operation = Operation::Open});
    EXPECT_EQ(ofFile("folder/file"), "none");
}

TEST_F(ZRMMd5HasherTest, HasNoHashOfAFileThatFailsWhileItIsRead) {
    put("file", std::string(10000, 'x'));
    device_.disk().faults().add({.operation = Operation::Read, .skip = 2, .times = 1});
    EXPECT_EQ(ofFile("file"), "none");
    EXPECT_NE(ofFile("file"), "none");
}

TEST_F(ZRMMd5HasherTest, ReadsInChunksOf4096BytesUnlessToldOtherwise) {
    put("file", std::string(10000, 'x'));
    const auto path = std::string(kBundle) + "/file";
    EXPECT_EQ(hasher_.chunkSize(), 4096U);
    EXPECT_EQ(readsOf(path, hasher_), 4U);  // the last finds the end
    const auto small = hasherWithChunkSize(1000);
    EXPECT_EQ(small->chunkSize(), 1000U);
    EXPECT_EQ(readsOf(path, *small), 11U);
}

TEST_F(ZRMMd5HasherTest, TheChunkSizeDoesNotChangeTheHash) {
    put("file", std::string(10000, 'x'));
    const auto expected = ofFile("file");
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{9999}, std::size_t{10000}, std::size_t{10001}, SIZE_MAX}) {
        EXPECT_EQ(hex(hasherWithChunkSize(size)->hashOfFileAtPath(std::string(kBundle) + "/file")),
                  expected)
            << size;
    }
}

TEST_F(ZRMMd5HasherTest, AChunkOfNothingIsThePlainOne) {
    EXPECT_EQ(hasherWithChunkSize(0)->chunkSize(), 4096U);
}

TEST_F(ZRMMd5HasherTest, HasNoHashWithoutTheAlgorithm) {
    put("a", "a");
    device_.digests().setAvailable(ZRMDigestAlgorithm::Md5, false);
    EXPECT_EQ(ofFile("a"), "none");
    EXPECT_EQ(ofBundle(), "none");
    device_.digests().setAvailable(ZRMDigestAlgorithm::Md5, true);
    device_.digests().setFinishFails(true);
    EXPECT_EQ(ofBundle(), "none");
}

TEST_F(ZRMMd5HasherTest, CombinesBytesByExclusiveOr) {
    EXPECT_EQ(ZRMMd5Hasher::xorData({0x0f, 0xff, 0x00}, {0xff, 0xff, 0x01}),
              (ZRMData{0xf0, 0x00, 0x01}));
}

TEST_F(ZRMMd5HasherTest, ABundleWithOneFileHasThatFilesHash) {
    put("deep/below/abc", "abc");
    EXPECT_EQ(ofBundle(), kMd5OfAbc);
}

TEST_F(ZRMMd5HasherTest, ABundlesHashIsTheExclusiveOrOfItsFilesHashes) {
    put("one", "a");
    put("folder/two", "abc");
    EXPECT_EQ(ofBundle(), kMd5OfAXorAbc);
}

TEST_F(ZRMMd5HasherTest, NamesAndOrderDoNotMatter) {
    put("z", "a");
    put("a", "abc");
    EXPECT_EQ(ofBundle(), kMd5OfAXorAbc);
}

TEST_F(ZRMMd5HasherTest, TwoFilesWithTheSameContentCancelEachOtherOut) {
    put("abc", "abc");
    put("one", "new");
    EXPECT_NE(ofBundle(), kMd5OfAbc);
    put("folder/two", "new");
    EXPECT_EQ(ofBundle(), kMd5OfAbc);
}

TEST_F(ZRMMd5HasherTest, FilesThatAllCancelOutLeaveZeros) {
    put("one", "a");
    put("two", "a");
    EXPECT_EQ(ofBundle(), std::string(32, '0'));
}

TEST_F(ZRMMd5HasherTest, AnEmptyDirectoryHasNoHash) {
    device_.platform()->fileManager->createDirectory(std::string(kBundle) + "/inner");
    EXPECT_EQ(ofBundle(), "none");
}

TEST_F(ZRMMd5HasherTest, WhatIsNoDirectoryHasNoHash) {
    put("file", "a");
    EXPECT_EQ(hex(hasher_.md5ForDirectoryAtPath("/device/missing")), "none");
    EXPECT_EQ(hex(hasher_.md5ForDirectoryAtPath(std::string(kBundle) + "/file")), "none");
}

TEST_F(ZRMMd5HasherTest, PassesOverFilesThatCannotBeRead) {
    put("abc", "abc");
    put("locked", "secret");
    put("torn", "torn");
    device_.disk().faults().add({.operation = Operation::Open, .pathPattern = "*/locked"});
    device_.disk().faults().add({.operation = Operation::Read, .pathPattern = "*/torn"});
    EXPECT_EQ(ofBundle(), kMd5OfAbc);
}

TEST_F(ZRMMd5HasherTest, PassesOverDirectoriesThatCannotBeListed) {
    put("abc", "abc");
    put("locked/file", "secret");
    put("locked.txt", "a");
    device_.disk().faults().add({.operation = Operation::Read, .pathPattern = "*/locked"});
    EXPECT_EQ(ofBundle(), kMd5OfAXorAbc);
}

TEST_F(ZRMMd5HasherTest, PassesOverAFileThatVanishesOnceItIsListed) {
    put("abc", "abc");
    put("brief", "gone");
    device_.disk().faults().setHook([this](auto, auto operation, const auto& path) {
        if (operation == Operation::Open && path.ends_with("/brief")) {
            device_.disk().remove(path);
        }
    });
    EXPECT_EQ(ofBundle(), kMd5OfAbc);
}

TEST_F(ZRMMd5HasherTest, TakesWhatAFileHoldsWhenItIsCutOffMeanwhile) {
    put("file", std::string(10000, 'x'));
    int reads = 0;
    device_.disk().faults().setHook([&](auto, auto operation, const auto& path) {
        if (operation == Operation::Read && path.ends_with("/file") && ++reads == 2) {
            std::shared_ptr<ZRMSimulatedFile> file;
            ASSERT_EQ(device_.disk().find(path, file), 0);
            file->truncate(10);
        }
    });
    const auto hash = ofFile("file");
    device_.disk().faults().setHook({});
    put("file", std::string(4096, 'x'));
    EXPECT_EQ(hash, ofFile("file"));
}

}  // namespace
