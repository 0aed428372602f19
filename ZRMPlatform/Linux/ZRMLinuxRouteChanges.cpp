#include "ZRMPlatform/Linux/ZRMLinuxRouteChanges.h"

#include <array>
#include <cerrno>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/socket.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxThread.h"

namespace {

ZRMLinuxDescriptor subscribedSocket() {
    ZRMLinuxDescriptor socket(
        ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_IPV4_ROUTE |
                        RTMGRP_IPV6_ROUTE;
    if (!socket.isOpen() ||
        ::bind(socket.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return ZRMLinuxDescriptor();
    }
    return socket;
}

// Takes everything that waits; false when the socket is of no more use. What overflowed it was a
// change as well.
bool drain(int socket) {
    std::array<char, 16384> ignored{};
    for (;;) {
        const auto count = ::recv(socket, ignored.data(), ignored.size(), 0);
        if (count < 0 && errno == EAGAIN) {
            return true;
        }
        if (count == 0 || (count < 0 && errno != EINTR && errno != ENOBUFS)) {
            return false;
        }
    }
}

}  // namespace

std::shared_ptr<ZRMLinuxKernelRouteChanges> ZRMLinuxKernelRouteChanges::shared() {
    static auto* const changes =
        new std::shared_ptr<ZRMLinuxKernelRouteChanges>(new ZRMLinuxKernelRouteChanges);
    return *changes;
}

bool ZRMLinuxKernelRouteChanges::addListener(
    const std::shared_ptr<ZRMLinuxRouteListener>& listener) {
    const ZRMLockGuard lock(mutex_);
    if (!isStarted_) {
        isStarted_ = start();
    }
    std::erase_if(listeners_, [](const auto& each) { return each.expired(); });
    listeners_.push_back(listener);
    return isStarted_;
}

bool ZRMLinuxKernelRouteChanges::start() {
    auto socket = std::make_shared<ZRMLinuxDescriptor>(subscribedSocket());
    return socket->isOpen() &&
           zrm_startThread("zrm-routes", [this, socket] { serve(socket->number()); });
}

void ZRMLinuxKernelRouteChanges::serve(int socket) {
    pollfd waiting{socket, POLLIN, 0};
    for (;;) {
        const int ready = ::poll(&waiting, 1, -1);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready < 0 || !drain(socket)) {
            const ZRMLockGuard lock(mutex_);
            isStarted_ = false;  // the next listener tries again
            return;
        }
        notifyAll();
    }
}

void ZRMLinuxKernelRouteChanges::notifyAll() {
    std::vector<std::weak_ptr<ZRMLinuxRouteListener>> listeners;
    {
        const ZRMLockGuard lock(mutex_);
        listeners = listeners_;
    }
    for (const auto& each : listeners) {
        if (const auto listener = each.lock()) {
            listener->routesChanged();
        }
    }
}
