// Questions to a part of the kernel that goes by a name, over generic netlink.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <linux/netlink.h>

// A request, and the attributes it carries.
class ZRMLinuxGenericRequest {
  public:
    // `flags` beside NLM_F_REQUEST.
    ZRMLinuxGenericRequest(std::uint16_t family, std::uint8_t command, std::uint16_t flags);
    void add(std::uint16_t type, std::span<const std::uint8_t> value);

    // Sees the attributes of each message of the answer. False when the kernel refuses or fails.
    bool ask(const std::function<void(std::span<const std::uint8_t> attributes)>& visit) const;

  private:
    std::vector<std::uint8_t> bytes_;
};

// The number of the kernel's part of that name, such as "nl80211"; absent where there is none.
[[nodiscard]] std::optional<std::uint16_t> zrm_genericFamily(std::string_view name);
