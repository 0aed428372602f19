#include <cerrno>

#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include "ZRMPlatform/Linux/ZRMLinuxVolumes.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

TEST(ZRMLinuxVolumes, TellsWhatTheFileSystemTells) {
    // Nothing writes below it while the test runs.
    const std::string path = "/proc";
    struct statvfs status {};
    ASSERT_EQ(::statvfs(path.c_str(), &status), 0);
    const auto capacity = ZRMLinuxVolumes().fileSystemCapacity(path);
    ASSERT_TRUE(capacity);
    EXPECT_EQ(capacity.value(), (ZRMVolumeCapacity{status.f_blocks * status.f_frsize,
                                                   status.f_bfree * status.f_frsize}));
}

TEST(ZRMLinuxVolumes, TheSuperusersReserveIsNotForAnImportantUsage) {
    const auto important = ZRMLinuxVolumes().capacityForImportantUsage("/");
    const auto all = ZRMLinuxVolumes().fileSystemCapacity("/");
    ASSERT_TRUE(important && *important && all);
    EXPECT_EQ(important->value().total, all.value().total);
    EXPECT_GT(all.value().total, 0U);
    EXPECT_LE(important->value().available, all.value().total);
    EXPECT_LE(all.value().available, all.value().total);
}

TEST(ZRMLinuxVolumes, APathThatIsNotThereIsThePosixError) {
    const ZRMTestDirectory directory;
    const auto path = directory.below("missing");
    const auto important = ZRMLinuxVolumes().capacityForImportantUsage(path);
    ASSERT_TRUE(important);
    for (const auto& capacity : {*important, ZRMLinuxVolumes().fileSystemCapacity(path)}) {
        ASSERT_FALSE(capacity);
        EXPECT_EQ(capacity.error().domain(), kZRMPosixErrorDomain);
        EXPECT_EQ(capacity.error().code(), ENOENT);
        EXPECT_EQ(capacity.error().localizedDescription(), "No such file or directory: " + path);
    }
}
