#include <algorithm>
#include <cerrno>
#include <cstring>

#include <gtest/gtest.h>
#include <linux/genetlink.h>
#include <linux/rtnetlink.h>

#include "ZRMPlatform/Linux/ZRMLinuxGenericNetlink.h"
#include "ZRMPlatform/Linux/ZRMLinuxNetlink.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Attributes = std::vector<std::pair<int, Bytes>>;

Attributes attributesIn(const Bytes& bytes) {
    Attributes attributes;
    zrm_forEachAttribute(bytes, [&](std::uint16_t type, std::span<const std::uint8_t> value) {
        attributes.emplace_back(type, Bytes(value.begin(), value.end()));
    });
    return attributes;
}

// The kernel's numbers lie in the machine's order.
Bytes attribute(std::uint16_t type, const Bytes& value, std::uint16_t length) {
    const nlattr header{.nla_len = length, .nla_type = type};
    Bytes bytes(sizeof header);
    std::memcpy(bytes.data(), &header, sizeof header);
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

}  // namespace

TEST(ZRMLinuxAttributes, AreReadOneByOneWithTheirPadding) {
    auto bytes = attribute(1, {9, 0, 0, 0}, 5);
    const auto second = attribute(NLA_F_NESTED | 2, {7, 8}, 6);
    bytes.insert(bytes.end(), second.begin(), second.end());
    EXPECT_EQ(attributesIn(bytes), (Attributes{{1, {9}}, {2, {7, 8}}}));
    EXPECT_EQ(attributesIn({}), Attributes{});
    EXPECT_EQ(attributesIn(attribute(3, {}, 4)), (Attributes{{3, {}}}));
}

TEST(ZRMLinuxAttributes, EndWhereOneDoesNotFit) {
    for (const int length : {0, 3, 7, 0xFFFF}) {
        auto bytes = attribute(1, {}, 4);
        const auto bad = attribute(2, {1, 2}, static_cast<std::uint16_t>(length));
        bytes.insert(bytes.end(), bad.begin(), bad.end());
        EXPECT_EQ(attributesIn(bytes), (Attributes{{1, {}}})) << length;
    }
    EXPECT_EQ(attributesIn({4, 0, 1}), Attributes{});
}

TEST(ZRMLinuxGenericNetlink, FindsTheNumberOfAFamilyByItsName) {
    EXPECT_EQ(zrm_genericFamily("nlctrl"), GENL_ID_CTRL);
    EXPECT_EQ(zrm_genericFamily("no such one"), std::nullopt);
    EXPECT_EQ(zrm_genericFamily(""), std::nullopt);
    EXPECT_EQ(zrm_genericFamily(std::string(1000, 'x')), std::nullopt);
}

TEST(ZRMLinuxGenericNetlink, ADumpIsReadToItsEnd) {
    const ZRMLinuxGenericRequest request(GENL_ID_CTRL, CTRL_CMD_GETFAMILY, NLM_F_DUMP);
    int controllers = 0;
    int families = 0;
    EXPECT_TRUE(request.ask([&](std::span<const std::uint8_t> attributes) {
        ++families;
        zrm_forEachAttribute(attributes, [&](std::uint16_t type, auto value) {
            constexpr std::string_view kName("nlctrl\0", 7);
            controllers += type == CTRL_ATTR_FAMILY_NAME && std::ranges::equal(value, kName);
        });
    }));
    EXPECT_EQ(controllers, 1);
    EXPECT_GE(families, 1);
}

TEST(ZRMLinuxNetlink, ARefusalKeepsTheKernelsReason) {
    struct {
        nlmsghdr header;
        ifinfomsg link;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETLINK;
    request.header.nlmsg_flags = NLM_F_REQUEST;
    request.link.ifi_index = 0x7FFFFFF0;  // of no interface
    ZRMLinuxNetlinkExchange exchange;
    int messages = 0;
    EXPECT_EQ(exchange.run(NETLINK_ROUTE, request.header, [&](const auto&) { ++messages; }),
              ZRMLinuxNetlinkEnd::Refused);
    EXPECT_EQ(exchange.refusal(), ENODEV);
    EXPECT_EQ(messages, 0);
}

TEST(ZRMLinuxNetlink, AProtocolThatIsNotThereFails) {
    nlmsghdr request{};
    request.nlmsg_len = sizeof request;
    EXPECT_EQ(ZRMLinuxNetlinkExchange().run(255, request, [](const auto&) {}),
              ZRMLinuxNetlinkEnd::Failed);
}
