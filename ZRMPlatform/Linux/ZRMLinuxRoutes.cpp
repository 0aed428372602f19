#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <limits>

#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "ZRMPlatform/Linux/ZRMLinuxNetlink.h"

namespace {

// A request for routes with room for one address attribute.
struct RouteRequest {
    nlmsghdr header{};
    rtmsg route{};
    rtattr attribute{};
    std::array<std::uint8_t, 16> address{};
};

// A route message of an answer.
struct Route {
    rtmsg fixed{};
    std::uint32_t interfaceIndex = 0;
    std::uint32_t priority = 0;
};

std::uint32_t numberIn(const rtattr* attribute) {
    std::uint32_t number = 0;
    if (RTA_PAYLOAD(attribute) >= sizeof number) {
        std::memcpy(&number, RTA_DATA(attribute), sizeof number);
    }
    return number;
}

// The first hop of a route with several.
std::uint32_t interfaceOfFirstHop(const rtattr* attribute) {
    rtnexthop hop{};
    if (RTA_PAYLOAD(attribute) < sizeof hop) {
        return 0;
    }
    std::memcpy(&hop, RTA_DATA(attribute), sizeof hop);
    return static_cast<std::uint32_t>(hop.rtnh_ifindex);
}

Route routeOf(const nlmsghdr* message) {
    Route route;
    if (message->nlmsg_len < NLMSG_LENGTH(sizeof(rtmsg))) {
        return route;
    }
    const auto* const fixed = static_cast<const rtmsg*>(NLMSG_DATA(message));
    route.fixed = *fixed;
    auto length = static_cast<unsigned>(RTM_PAYLOAD(message));
    for (const auto* attribute = RTM_RTA(fixed); RTA_OK(attribute, length);
         attribute = RTA_NEXT(attribute, length)) {
        if (attribute->rta_type == RTA_OIF) {
            route.interfaceIndex = numberIn(attribute);
        } else if (attribute->rta_type == RTA_MULTIPATH && route.interfaceIndex == 0) {
            route.interfaceIndex = interfaceOfFirstHop(attribute);
        } else if (attribute->rta_type == RTA_PRIORITY) {
            route.priority = numberIn(attribute);
        }
    }
    return route;
}

bool leadsSomewhere(const Route& route) {
    return (route.fixed.rtm_type == RTN_UNICAST || route.fixed.rtm_type == RTN_LOCAL) &&
           (route.fixed.rtm_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) == 0 &&
           route.interfaceIndex != 0;
}

// Hands every route of the answer to `visit`.
ZRMLinuxNetlinkEnd askForRoutes(ZRMLinuxNetlinkExchange& exchange, const RouteRequest& request,
                                const std::function<void(const Route&)>& visit) {
    return exchange.run(NETLINK_ROUTE, request.header, [&visit](const nlmsghdr& message) {
        if (message.nlmsg_type == RTM_NEWROUTE) {
            visit(routeOf(&message));
        }
    });
}

RouteRequest requestFor(unsigned char family, unsigned short flags) {
    RouteRequest request;
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtmsg));
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = static_cast<unsigned short>(NLM_F_REQUEST | flags);
    request.route.rtm_family = family;
    return request;
}

std::optional<std::uint32_t> defaultInterface(unsigned char family) {
    const auto request = requestFor(family, NLM_F_DUMP);
    std::uint32_t best = 0;
    std::uint64_t bestPriority = std::numeric_limits<std::uint64_t>::max();
    ZRMLinuxNetlinkExchange exchange;
    const auto end = askForRoutes(exchange, request, [&](const Route& route) {
        if (route.fixed.rtm_dst_len == 0 && route.fixed.rtm_family == family &&
            leadsSomewhere(route) && route.priority < bestPriority) {
            best = route.interfaceIndex;
            bestPriority = route.priority;
        }
    });
    return end == ZRMLinuxNetlinkEnd::Answered ? std::optional(best) : std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> ZRMLinuxKernelRoutes::interfaceToward(
    const ZRMLinuxIpAddress& address) const {
    const auto bytes = address.bytes();
    auto request = requestFor(address.isV6 ? AF_INET6 : AF_INET, 0);
    request.route.rtm_dst_len = static_cast<unsigned char>(bytes.size() * 8);
    request.attribute.rta_type = RTA_DST;
    request.attribute.rta_len = static_cast<unsigned short>(RTA_LENGTH(bytes.size()));
    std::memcpy(request.address.data(), bytes.data(), bytes.size());
    request.header.nlmsg_len += request.attribute.rta_len;
    std::uint32_t found = 0;
    ZRMLinuxNetlinkExchange exchange;
    const auto end = askForRoutes(exchange, request, [&found](const Route& route) {
        found = leadsSomewhere(route) ? route.interfaceIndex : 0;
    });
    if (end == ZRMLinuxNetlinkEnd::Refused) {
        const int refusal = exchange.refusal();
        const bool isNoRoute =
            refusal == ENETUNREACH || refusal == EHOSTUNREACH || refusal == EACCES;
        return isNoRoute ? std::optional<std::uint32_t>(0) : std::nullopt;
    }
    return end == ZRMLinuxNetlinkEnd::Answered ? std::optional(found) : std::nullopt;
}

std::optional<std::uint32_t> ZRMLinuxKernelRoutes::interfaceOfDefaultRoute() const {
    const auto v4 = defaultInterface(AF_INET);
    if (v4.value_or(0) != 0) {
        return v4;
    }
    const auto v6 = defaultInterface(AF_INET6);
    return v6.has_value() ? v6 : v4;
}
