#include "ZRMPlatform/Linux/ZRMLinuxNetworkInterfaces.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

ZRMData addressIn(const sockaddr* address) {
    if (address == nullptr) {
        return {};
    }
    const auto bytesAt = [address](std::size_t offset, std::size_t count) {
        const auto* const first = reinterpret_cast<const std::uint8_t*>(address) + offset;
        return ZRMData(first, first + count);
    };
    switch (address->sa_family) {
        case AF_INET:
            return bytesAt(offsetof(sockaddr_in, sin_addr), sizeof(in_addr));
        case AF_INET6:
            return bytesAt(offsetof(sockaddr_in6, sin6_addr), sizeof(in6_addr));
        default:
            return {};
    }
}

// No interface has a colon in its name; what follows one is the address's label.
std::string interfaceOf(const ZRMLinuxInterfaceEntry& entry) {
    return entry.name.substr(0, entry.name.find(':'));
}

}  // namespace

std::optional<std::vector<ZRMLinuxInterfaceEntry>> zrm_listInterfaceEntries() {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> list(first, &::freeifaddrs);
    std::vector<ZRMLinuxInterfaceEntry> entries;
    for (const auto* each = list.get(); each != nullptr; each = each->ifa_next) {
        entries.push_back({each->ifa_name, each->ifa_flags, addressIn(each->ifa_addr)});
    }
    return entries;
}

ZRMLinuxNetworkInterfaces::ZRMLinuxNetworkInterfaces(ZRMLinuxInterfaces interfaces, List list)
    : interfaces_(std::move(interfaces)), list_(std::move(list)) {}

std::optional<std::vector<ZRMInterfaceAddress>> ZRMLinuxNetworkInterfaces::addresses() const {
    const auto entries = list_();
    if (!entries) {
        return std::nullopt;
    }
    std::map<std::string, std::string> libraryNames;
    for (const char* const name : {"en0", "pdp_ip0"}) {
        if (const auto interface = interfaces_.withLibraryName(name)) {
            libraryNames.emplace(interface->name, name);
        }
    }
    std::vector<ZRMInterfaceAddress> addresses;
    for (const auto& entry : *entries) {
        if (!entry.address.empty()) {
            const auto name = interfaceOf(entry);
            const auto known = libraryNames.find(name);
            addresses.push_back(
                {known != libraryNames.end() ? known->second : zrm_wellFormedText(name),
                 entry.address});
        }
    }
    return addresses;
}

std::optional<std::vector<std::string>> ZRMLinuxNetworkInterfaces::scopedInterfaceNames() const {
    constexpr unsigned kInUse = IFF_UP | IFF_RUNNING;
    const auto entries = list_();
    if (!entries) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    for (const auto& entry : *entries) {
        auto name = zrm_wellFormedText(interfaceOf(entry));
        if ((entry.flags & (kInUse | IFF_LOOPBACK)) == kInUse &&
            std::ranges::find(names, name) == names.end()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}
