#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <limits>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

// The kernel answers within the request; this only bounds what must not happen.
constexpr int kAnswerMilliseconds = 500;

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

enum class Reading { Goes_On, Done, Refused, Failed };

// One exchange with the kernel: hands every route of the answer to `visit`.
class RouteExchange {
  public:
    // Refused is the kernel's own "no"; `refusal` then holds its error number.
    Reading run(RouteRequest& request, const std::function<void(const Route&)>& visit) {
        const ZRMLinuxDescriptor socket(
            ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
        if (!socket.isOpen() ||
            ::send(socket.number(), &request, request.header.nlmsg_len, 0) < 0) {
            return Reading::Failed;
        }
        const bool isDump = (request.header.nlmsg_flags & NLM_F_DUMP) == NLM_F_DUMP;
        auto reading = Reading::Goes_On;
        while (reading == Reading::Goes_On) {
            reading = readOnce(socket.number(), isDump, visit);
        }
        return reading;
    }

    [[nodiscard]] int refusal() const { return refusal_; }

  private:
    Reading readOnce(int socket, bool isDump, const std::function<void(const Route&)>& visit) {
        pollfd waiting{socket, POLLIN, 0};
        if (::poll(&waiting, 1, kAnswerMilliseconds) <= 0) {
            return Reading::Failed;
        }
        const auto count = ::recv(socket, buffer_.data(), buffer_.size(), 0);
        if (count < 0) {
            return errno == EINTR || errno == EAGAIN ? Reading::Goes_On : Reading::Failed;
        }
        auto length = static_cast<unsigned>(count);
        for (const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
             NLMSG_OK(message, length); message = NLMSG_NEXT(message, length)) {
            if (message->nlmsg_type == NLMSG_DONE) {
                return Reading::Done;
            }
            if (message->nlmsg_type == NLMSG_ERROR) {
                refusal_ = -static_cast<const nlmsgerr*>(NLMSG_DATA(message))->error;
                return Reading::Refused;
            }
            if (message->nlmsg_type == RTM_NEWROUTE) {
                visit(routeOf(message));
                if (!isDump) {
                    return Reading::Done;
                }
            }
        }
        return Reading::Goes_On;
    }

    alignas(nlmsghdr) std::array<char, 32768> buffer_{};
    int refusal_ = 0;
};

RouteRequest requestFor(unsigned char family, unsigned short flags) {
    RouteRequest request;
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtmsg));
    request.header.nlmsg_type = RTM_GETROUTE;
    request.header.nlmsg_flags = static_cast<unsigned short>(NLM_F_REQUEST | flags);
    request.route.rtm_family = family;
    return request;
}

std::optional<std::uint32_t> defaultInterface(unsigned char family) {
    auto request = requestFor(family, NLM_F_DUMP);
    std::uint32_t best = 0;
    std::uint64_t bestPriority = std::numeric_limits<std::uint64_t>::max();
    const auto reading = RouteExchange().run(request, [&](const Route& route) {
        if (route.fixed.rtm_dst_len == 0 && route.fixed.rtm_family == family &&
            leadsSomewhere(route) && route.priority < bestPriority) {
            best = route.interfaceIndex;
            bestPriority = route.priority;
        }
    });
    return reading == Reading::Done ? std::optional(best) : std::nullopt;
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
    RouteExchange exchange;
    const auto reading = exchange.run(request, [&found](const Route& route) {
        found = leadsSomewhere(route) ? route.interfaceIndex : 0;
    });
    if (reading == Reading::Refused) {
        const int refusal = exchange.refusal();
        const bool isNoRoute =
            refusal == ENETUNREACH || refusal == EHOSTUNREACH || refusal == EACCES;
        return isNoRoute ? std::optional<std::uint32_t>(0) : std::nullopt;
    }
    return reading == Reading::Done ? std::optional(found) : std::nullopt;
}

std::optional<std::uint32_t> ZRMLinuxKernelRoutes::interfaceOfDefaultRoute() const {
    const auto v4 = defaultInterface(AF_INET);
    if (v4.value_or(0) != 0) {
        return v4;
    }
    const auto v6 = defaultInterface(AF_INET6);
    return v6.has_value() ? v6 : v4;
}
