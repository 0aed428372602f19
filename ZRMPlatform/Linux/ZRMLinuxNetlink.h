// Questions to the kernel over netlink.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>

#include <linux/netlink.h>

enum class ZRMLinuxNetlinkEnd { Answered, Refused, Failed };

// One question and its answer. The kernel answers within the question; half a second bounds what
// must not happen.
class ZRMLinuxNetlinkExchange {
  public:
    // Every message of the answer, without the kernel's own that end it.
    using Visit = std::function<void(const nlmsghdr&)>;

    // Behind the header lies the rest of the request, as long as the header says. A dump is read to
    // its end; any other answer is one message.
    ZRMLinuxNetlinkEnd run(int protocol, const nlmsghdr& request, const Visit& visit);

    // After Refused: the kernel's reason, an `errno` value.
    [[nodiscard]] int refusal() const { return refusal_; }

  private:
    enum class Reading { GoesOn, Ended };

    Reading readOnce(int socket, bool isDump, const Visit& visit);
    Reading readMessage(const nlmsghdr& message, bool isDump, const Visit& visit);

    alignas(nlmsghdr) std::array<char, 32768> buffer_{};
    ZRMLinuxNetlinkEnd end_ = ZRMLinuxNetlinkEnd::Failed;
    int refusal_ = 0;
};

// Calls back with type (without its flags) and value of every attribute, up to the first that does
// not fit.
using ZRMLinuxAttributeVisit =
    std::function<void(std::uint16_t type, std::span<const std::uint8_t> value)>;
void zrm_forEachAttribute(std::span<const std::uint8_t> attributes,
                          const ZRMLinuxAttributeVisit& visit);
