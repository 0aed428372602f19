// The machine's network interfaces with their addresses, as the C library lists them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

// One entry of the system's list; an interface has several.
struct ZRMLinuxInterfaceEntry {
    std::string name;    // with the address's label, as in "eth0:1"
    unsigned flags = 0;  // IFF_…
    ZRMData address;     // of IPv4 or IPv6, in network order; otherwise empty
};

// In the system's order; absent when there is no list to be had.
std::optional<std::vector<ZRMLinuxInterfaceEntry>> zrm_listInterfaceEntries();

// Traffic may leave by every interface that is up and running, the loopback aside. Names that are
// not UTF-8 are repaired.
class ZRMLinuxNetworkInterfaces : public ZRMNetworkInterfaces {
  public:
    using List = std::function<std::optional<std::vector<ZRMLinuxInterfaceEntry>>()>;

    explicit ZRMLinuxNetworkInterfaces(ZRMLinuxInterfaces interfaces,
                                       List list = &zrm_listInterfaceEntries);

    [[nodiscard]] std::optional<std::vector<ZRMInterfaceAddress>> addresses() const override;
    [[nodiscard]] std::optional<std::vector<std::string>> scopedInterfaceNames() const override;

  private:
    ZRMLinuxInterfaces interfaces_;
    List list_;
};
