#include <array>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/utsname.h>

#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"
#include "ZRMPlatform/Linux/ZRMLinuxKernelValues.h"
#include "ZRMPlatform/Linux/ZRMLinuxProcessInformation.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxKernelValuesTest : public testing::Test {
  protected:
    ZRMLinuxKernelValues values() {
        const auto sys = directory_.below("sys");
        const auto proc = directory_.below("proc");
        const auto etc = directory_.below("etc");
        return {std::make_shared<ZRMLinuxDevice>("", sys, etc),
                std::make_shared<ZRMLinuxProcessInformation>(proc, sys), proc, etc};
    }

    ZRMTestDirectory directory_;
};

}  // namespace

TEST_F(ZRMLinuxKernelValuesTest, EveryTextHasItsSource) {
    utsname names{};
    ASSERT_EQ(uname(&names), 0);
    directory_.writeFile("sys/class/dmi/id/product_name", "ThinkPad X1\n");
    directory_.writeFile("proc/sys/kernel/hostname", "pocket\n");
    directory_.writeFile("proc/sys/kernel/ostype", "Linux\n");
    EXPECT_EQ(values().text("hw.machine"), names.machine);
    EXPECT_EQ(values().text("hw.model"), "ThinkPad X1");
    EXPECT_EQ(values().text("kern.hostname"), "pocket");
    EXPECT_EQ(values().text("kern.ostype"), "Linux");
}

TEST_F(ZRMLinuxKernelValuesTest, ATextWithoutASourceIsAbsentAndOneThatIsNotUtf8Repaired) {
    for (const char* const name : {"hw.model", "kern.hostname", "kern.ostype"}) {
        EXPECT_EQ(values().text(name), std::nullopt) << name;
    }
    directory_.writeFile("proc/sys/kernel/hostname", "\n");
    EXPECT_EQ(values().text("kern.hostname"), std::nullopt);
    directory_.writeFile("proc/sys/kernel/hostname", "h\xF6hle\n");
    EXPECT_EQ(values().text("kern.hostname"), "h\xEF\xBF\xBDhle");
    directory_.writeFile("proc/sys/kernel/hostname", std::string(100'000, 'x'));
    EXPECT_EQ(values().text("kern.hostname"), std::nullopt);
}

TEST_F(ZRMLinuxKernelValuesTest, EveryIntegerHasItsSource) {
    directory_.writeFile("sys/devices/system/cpu/present", "0-5\n");
    directory_.writeFile("sys/devices/system/cpu/online", "0\n");
    directory_.writeFile("proc/meminfo", "MemTotal: 1048576 kB\n");
    const std::array<std::int32_t, 1> identifier = {-559038737};
    directory_.writeFile("etc/hostid", {reinterpret_cast<const char*>(identifier.data()), 4});
    EXPECT_EQ(values().integer("hw.ncpu"), 6);
    EXPECT_EQ(values().integer("hw.physmem"), 1 << 30);
    EXPECT_EQ(values().integer("kern.hostid"), -559038737);
}

TEST_F(ZRMLinuxKernelValuesTest, MemoryIsCutToItsLowest32Bits) {
    directory_.writeFile("proc/meminfo", "MemTotal: 3145728 kB\n");
    EXPECT_EQ(values().integer("hw.physmem"), -1073741824);
    directory_.writeFile("proc/meminfo", "MemTotal: 4194304 kB\n");
    EXPECT_EQ(values().integer("hw.physmem"), 0);
    directory_.writeFile("proc/meminfo", "MemTotal: 4194305 kB\n");
    EXPECT_EQ(values().integer("hw.physmem"), 1024);
}

TEST_F(ZRMLinuxKernelValuesTest, AHostIdentifierOfAnotherLengthIsAbsent) {
    EXPECT_EQ(values().integer("kern.hostid"), std::nullopt);
    for (const std::string_view garbage : {"", "abc", "abcde"}) {
        directory_.writeFile("etc/hostid", garbage);
        EXPECT_EQ(values().integer("kern.hostid"), std::nullopt) << garbage;
    }
}

TEST_F(ZRMLinuxKernelValuesTest, AnyOtherNameIsAbsent) {
    directory_.writeFile("proc/sys/kernel/hostname", "pocket\n");
    for (const char* const name :
         {"", "hw", "hw.ncpu", "hw.physmem", "kern.hostid", "kern.osrevision", "HW.MACHINE"}) {
        EXPECT_EQ(values().text(name), std::nullopt) << name;
    }
    for (const char* const name : {"", "hw", "hw.machine", "kern.hostname", "kern.osrevision"}) {
        EXPECT_EQ(values().integer(name), std::nullopt) << name;
    }
}
