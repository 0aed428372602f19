#include "ZRMPlatform/Linux/ZRMLinuxNetlink.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

constexpr int kAnswerMilliseconds = 500;

}  // namespace

ZRMLinuxNetlinkEnd ZRMLinuxNetlinkExchange::run(int protocol, const nlmsghdr& request,
                                                const Visit& visit) {
    const ZRMLinuxDescriptor socket(
        ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, protocol));
    if (!socket.isOpen() || ::send(socket.number(), &request, request.nlmsg_len, 0) < 0) {
        return ZRMLinuxNetlinkEnd::Failed;
    }
    const bool isDump = (request.nlmsg_flags & NLM_F_DUMP) == NLM_F_DUMP;
    end_ = ZRMLinuxNetlinkEnd::Failed;
    while (readOnce(socket.number(), isDump, visit) == Reading::GoesOn) {
    }
    return end_;
}

ZRMLinuxNetlinkExchange::Reading ZRMLinuxNetlinkExchange::readOnce(int socket, bool isDump,
                                                                   const Visit& visit) {
    pollfd waiting{socket, POLLIN, 0};
    if (::poll(&waiting, 1, kAnswerMilliseconds) <= 0) {
        return Reading::Ended;
    }
    const auto count = ::recv(socket, buffer_.data(), buffer_.size(), 0);
    if (count < 0) {
        return errno == EINTR || errno == EAGAIN ? Reading::GoesOn : Reading::Ended;
    }
    auto length = static_cast<unsigned>(count);
    for (const auto* message = reinterpret_cast<const nlmsghdr*>(buffer_.data());
         NLMSG_OK(message, length); message = NLMSG_NEXT(message, length)) {
        if (readMessage(*message, isDump, visit) == Reading::Ended) {
            return Reading::Ended;
        }
    }
    return Reading::GoesOn;
}

ZRMLinuxNetlinkExchange::Reading ZRMLinuxNetlinkExchange::readMessage(const nlmsghdr& message,
                                                                      bool isDump,
                                                                      const Visit& visit) {
    if (message.nlmsg_type == NLMSG_DONE) {
        end_ = ZRMLinuxNetlinkEnd::Answered;
        return Reading::Ended;
    }
    if (message.nlmsg_type == NLMSG_ERROR) {
        if (message.nlmsg_len >= NLMSG_LENGTH(sizeof(nlmsgerr))) {
            refusal_ = -static_cast<const nlmsgerr*>(NLMSG_DATA(&message))->error;
            end_ = ZRMLinuxNetlinkEnd::Refused;
        }
        return Reading::Ended;
    }
    if (message.nlmsg_type < NLMSG_MIN_TYPE) {
        return Reading::GoesOn;
    }
    visit(message);
    if (isDump) {
        return Reading::GoesOn;
    }
    end_ = ZRMLinuxNetlinkEnd::Answered;
    return Reading::Ended;
}

void zrm_forEachAttribute(std::span<const std::uint8_t> attributes,
                          const ZRMLinuxAttributeVisit& visit) {
    nlattr header{};
    while (attributes.size() >= sizeof header) {
        std::memcpy(&header, attributes.data(), sizeof header);
        if (header.nla_len < sizeof header || header.nla_len > attributes.size()) {
            return;
        }
        visit(header.nla_type & NLA_TYPE_MASK,
              attributes.subspan(NLA_HDRLEN, header.nla_len - NLA_HDRLEN));
        const auto step = static_cast<std::size_t>(NLA_ALIGN(header.nla_len));
        attributes = attributes.subspan(std::min(step, attributes.size()));
    }
}
