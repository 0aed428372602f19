#include "ZRMPlatform/Linux/ZRMLinuxGenericNetlink.h"

#include <algorithm>
#include <cstring>

#include <linux/genetlink.h>

#include "ZRMPlatform/Linux/ZRMLinuxNetlink.h"

namespace {

constexpr std::size_t kHeaderBytes = NLMSG_LENGTH(GENL_HDRLEN);

std::span<const std::uint8_t> attributesOf(const nlmsghdr& message) {
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(&message), message.nlmsg_len);
    return bytes.subspan(std::min(kHeaderBytes, bytes.size()));
}

}  // namespace

ZRMLinuxGenericRequest::ZRMLinuxGenericRequest(std::uint16_t family, std::uint8_t command,
                                               std::uint16_t flags)
    : bytes_(kHeaderBytes) {
    nlmsghdr header{};
    header.nlmsg_len = kHeaderBytes;
    header.nlmsg_type = family;
    header.nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | flags);
    std::memcpy(bytes_.data(), &header, sizeof header);
    const genlmsghdr part{.cmd = command, .version = 1, .reserved = 0};
    std::memcpy(bytes_.data() + NLMSG_HDRLEN, &part, sizeof part);
}

void ZRMLinuxGenericRequest::add(std::uint16_t type, std::span<const std::uint8_t> value) {
    const nlattr attribute{.nla_len = static_cast<std::uint16_t>(NLA_HDRLEN + value.size()),
                           .nla_type = type};
    const auto start = bytes_.size();
    bytes_.resize(start + static_cast<std::size_t>(NLA_ALIGN(attribute.nla_len)));
    std::memcpy(bytes_.data() + start, &attribute, sizeof attribute);
    std::ranges::copy(value, bytes_.begin() + static_cast<std::ptrdiff_t>(start) + NLA_HDRLEN);
    const auto length = static_cast<std::uint32_t>(bytes_.size());
    std::memcpy(bytes_.data(), &length, sizeof length);
}

bool ZRMLinuxGenericRequest::ask(
    const std::function<void(std::span<const std::uint8_t>)>& visit) const {
    ZRMLinuxNetlinkExchange exchange;
    const auto& request = *reinterpret_cast<const nlmsghdr*>(bytes_.data());
    return exchange.run(NETLINK_GENERIC, request, [&visit](const nlmsghdr& message) {
        visit(attributesOf(message));
    }) == ZRMLinuxNetlinkEnd::Answered;
}

std::optional<std::uint16_t> zrm_genericFamily(std::string_view name) {
    ZRMLinuxGenericRequest request(GENL_ID_CTRL, CTRL_CMD_GETFAMILY, 0);
    std::vector<std::uint8_t> terminated(name.begin(), name.end());
    terminated.push_back(0);
    request.add(CTRL_ATTR_FAMILY_NAME, terminated);
    std::optional<std::uint16_t> family;
    request.ask([&family](std::span<const std::uint8_t> attributes) {
        zrm_forEachAttribute(attributes, [&family](std::uint16_t type, auto value) {
            std::uint16_t number = 0;
            if (type == CTRL_ATTR_FAMILY_ID && value.size() == sizeof number) {
                std::memcpy(&number, value.data(), sizeof number);
                family = number;
            }
        });
    });
    return family;
}
