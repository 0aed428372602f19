#include <filesystem>

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxProcessInformation.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxProcessInformationTest : public testing::Test {
  protected:
    void linkExecutable(const std::string& target) {
        std::filesystem::create_directories(directory_.below("proc/self"));
        std::filesystem::remove(directory_.below("proc/self/exe"));
        std::filesystem::create_symlink(target, directory_.below("proc/self/exe"));
    }
    void writeProcessors(const std::string& text) {
        directory_.writeFile("sys/devices/system/cpu/present", text);
    }
    ZRMLinuxProcessInformation information() {
        return ZRMLinuxProcessInformation(directory_.below("proc"), directory_.below("sys"));
    }

    ZRMTestDirectory directory_;
};

std::uint64_t memoryOfLibrary() {
    return static_cast<std::uint64_t>(sysconf(_SC_PHYS_PAGES)) *
           static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

TEST_F(ZRMLinuxProcessInformationTest, TheProcessIsCalledAsItsExecutable) {
    directory_.writeFile("proc/self/comm", "bank-application-c\n");
    linkExecutable("/opt/bank/bank-application-client");
    EXPECT_EQ(information().processName(), "bank-application-client");
    linkExecutable("/opt/bank/bank (deleted)");
    EXPECT_EQ(information().processName(), "bank");
    linkExecutable("/opt/b\xE4nk");
    EXPECT_EQ(information().processName(), "b\xEF\xBF\xBDnk");
}

TEST_F(ZRMLinuxProcessInformationTest, WithoutAnExecutableItHasTheKernelsName) {
    EXPECT_EQ(information().processName(), "");
    directory_.writeFile("proc/self/comm", "bank\n");
    EXPECT_EQ(information().processName(), "bank");
    directory_.writeFile("proc/self/comm", "\xFF\n");
    EXPECT_EQ(information().processName(), "\xEF\xBF\xBD");
}

TEST_F(ZRMLinuxProcessInformationTest, ProcessorsAreCountedInTheKernelsLists) {
    writeProcessors("0-3,6,8-9\n");
    directory_.writeFile("sys/devices/system/cpu/online", "0,2\n");
    EXPECT_EQ(information().processorCount(), 7U);
    EXPECT_EQ(information().activeProcessorCount(), 2U);
    writeProcessors("0\n");
    EXPECT_EQ(information().processorCount(), 1U);
}

TEST_F(ZRMLinuxProcessInformationTest, AListThatIsNoneIsNotUsed) {
    const auto configured = static_cast<std::uint32_t>(sysconf(_SC_NPROCESSORS_CONF));
    EXPECT_EQ(information().processorCount(), configured);
    EXPECT_EQ(information().activeProcessorCount(),
              static_cast<std::uint32_t>(sysconf(_SC_NPROCESSORS_ONLN)));
    for (const char* const garbage :
         {"", "\n", "x", "0-", "3-1", "0-3,", "0-3 x", "-1", "0-4294967295", "99999999999"}) {
        writeProcessors(garbage);
        EXPECT_EQ(information().processorCount(), configured) << garbage;
    }
    writeProcessors(std::string(100'000, '1'));
    EXPECT_EQ(information().processorCount(), configured);
}

TEST_F(ZRMLinuxProcessInformationTest, MemoryIsTheKernelsTotal) {
    directory_.writeFile("proc/meminfo", "MemTotal:        8012345 kB\nMemFree:          123 kB\n");
    EXPECT_EQ(information().physicalMemory(), 8012345ULL * 1024);
}

TEST_F(ZRMLinuxProcessInformationTest, WithoutATotalMemoryIsTheLibrarys) {
    EXPECT_EQ(information().physicalMemory(), memoryOfLibrary());
    for (const char* const garbage :
         {"", "MemTotal:", "MemTotal:   x kB\n", "MemTotal: 0 kB\n", "MemTotal: 12 MB\n",
          "MemTotal: 99999999999999999999 kB\n", "MemTotal: 18446744073709551615 kB\n"}) {
        directory_.writeFile("proc/meminfo", garbage);
        EXPECT_EQ(information().physicalMemory(), memoryOfLibrary()) << garbage;
    }
}

TEST(ZRMLinuxProcessInformation, TheVersionIsTheNumbersAReleaseBeginsWith) {
    using Version = ZRMOperatingSystemVersion;
    EXPECT_EQ(zrm_operatingSystemVersion("6.1.0-18-amd64"), (Version{6, 1, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("5.15.146.1-microsoft"), (Version{5, 15, 146}));
    EXPECT_EQ(zrm_operatingSystemVersion("6.8-rc1"), (Version{6, 8, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("6"), (Version{6, 0, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("6.x.3"), (Version{6, 0, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("6.-1.3"), (Version{6, 0, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("99999999999999999999.1"), (Version{0, 0, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion(""), (Version{0, 0, 0}));
    EXPECT_EQ(zrm_operatingSystemVersion("next"), (Version{0, 0, 0}));
}

TEST(ZRMLinuxProcessInformation, OfThisMachineItTellsWhatTheSystemTells) {
    const ZRMLinuxProcessInformation information;
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    EXPECT_EQ(information.processName(), "zrm_platform_linux_tests");
    EXPECT_EQ(information.activeProcessorCount(),
              static_cast<std::uint32_t>(sysconf(_SC_NPROCESSORS_ONLN)));
    EXPECT_EQ(information.physicalMemory(), memoryOfLibrary());
    EXPECT_TRUE(std::string_view(names.release)
                    .starts_with(std::to_string(information.operatingSystemVersion().major) + "."));
    EXPECT_FALSE(information.isMobileApplicationOnDesktop());
    EXPECT_FALSE(information.isDesktopAdaptedApplication());
}
