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
    bool isWireless = false;                    // a wireless network's
    std::vector<std::uint8_t> hardwareAddress;  // empty where the link has none
};

// Reads anew each time; may be used from any thread.
class ZRMLinuxInterfaces {
  public:
    explicit ZRMLinuxInterfaces(std::string directory = "/sys/class/net");

    // By index.
    [[nodiscard]] std::vector<ZRMLinuxInterface> all() const;
    [[nodiscard]] std::optional<ZRMLinuxInterface> withIndex(std::uint32_t index) const;
    // By the library's name: "en0" is the first interface that a device stands behind and that is
    // no modem's, or else the first that is neither loopback nor a modem's; "pdp_ip0" is the first
    // modem's; any other name is the system's own.
    [[nodiscard]] std::optional<ZRMLinuxInterface> withLibraryName(const std::string& name) const;

  private:
    [[nodiscard]] std::optional<ZRMLinuxInterface> read(const std::string& name) const;

    std::string directory_;
};
