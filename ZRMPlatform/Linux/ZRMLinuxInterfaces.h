// The machine's network interfaces, as the kernel's device tree lists them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct ZRMLinuxInterface {
    std::string name;
    std::uint32_t index = 0;
    bool isLoopback = false;
    bool isPhysical = false;                    // backed by a device
    bool isCellular = false;                    // a modem's
    std::vector<std::uint8_t> hardwareAddress;  // empty where the link has none
};

// Reads anew each time; may be used from any thread.
class ZRMLinuxInterfaces {
  public:
    explicit ZRMLinuxInterfaces(std::string directory = "/sys/class/net");

    // By index.
    [[nodiscard]] std::vector<ZRMLinuxInterface> all() const;
    [[nodiscard]] std::optional<ZRMLinuxInterface> withIndex(std::uint32_t index) const;

  private:
    [[nodiscard]] std::optional<ZRMLinuxInterface> read(const std::string& name) const;

    std::string directory_;
};
