#include <sstream>

#include <gtest/gtest.h>
#include <net/if.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"

namespace {

// By the kernel's other window on its IPv4 routes: "interface destination gateway flags … mask".
bool hasIpv4DefaultRoute() {
    std::istringstream lines(zrm_smallFileText("/proc/net/route").value_or(""));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string name;
        std::string destination;
        std::string skipped;
        std::string mask;
        fields >> name >> destination;
        for (int field = 0; field < 5; ++field) {
            fields >> skipped;
        }
        fields >> mask;
        if (destination == "00000000" && mask == "00000000") {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST(ZRMLinuxRoutes, TheLoopbackIsReachedByTheLoopbackInterface) {
    const ZRMLinuxKernelRoutes routes;
    const auto loopback = if_nametoindex("lo");
    EXPECT_EQ(routes.interfaceToward(*ZRMLinuxIpAddress::fromText("127.0.0.1")), loopback);
    EXPECT_EQ(routes.interfaceToward(*ZRMLinuxIpAddress::fromText("127.1.2.3")), loopback);
}

TEST(ZRMLinuxRoutes, FindsTheDefaultRouteThatTheKernelListsElsewhere) {
    const auto found = ZRMLinuxKernelRoutes().interfaceOfDefaultRoute();
    ASSERT_TRUE(found.has_value());
    if (hasIpv4DefaultRoute()) {
        std::array<char, IF_NAMESIZE> name{};
        EXPECT_NE(if_indextoname(*found, name.data()), nullptr);
    }
}
