#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>

#include <net/if_arp.h>

#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

std::optional<std::uint32_t> numberIn(const std::string& text) {
    std::uint32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

// From "00:1a:2b:3c:4d:5e\n"; empty when it is anything else.
std::vector<std::uint8_t> addressIn(std::string_view text) {
    while (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < text.size(); at += 3) {
        std::uint8_t byte = 0;
        const auto* const first = text.data() + at;
        if (at + 2 > text.size() || std::from_chars(first, first + 2, byte, 16).ptr != first + 2 ||
            (at + 2 < text.size() && text[at + 2] != ':')) {
            return {};
        }
        bytes.push_back(byte);
    }
    return bytes;
}

}  // namespace

ZRMLinuxInterfaces::ZRMLinuxInterfaces(std::string directory) : directory_(std::move(directory)) {}

std::vector<ZRMLinuxInterface> ZRMLinuxInterfaces::all() const {
    std::vector<ZRMLinuxInterface> interfaces;
    const auto names = ZRMLinuxFileManager().contentsOfDirectory(directory_);
    if (!names) {
        return interfaces;
    }
    for (const auto& name : names.value()) {
        if (auto found = read(name)) {
            interfaces.push_back(std::move(*found));
        }
    }
    std::ranges::sort(interfaces, {}, &ZRMLinuxInterface::index);
    return interfaces;
}

std::optional<ZRMLinuxInterface> ZRMLinuxInterfaces::withIndex(std::uint32_t index) const {
    const auto interfaces = all();
    const auto found = std::ranges::find(interfaces, index, &ZRMLinuxInterface::index);
    return found == interfaces.end() ? std::nullopt : std::optional(*found);
}

std::optional<ZRMLinuxInterface> ZRMLinuxInterfaces::withLibraryName(
    const std::string& name) const {
    const auto interfaces = all();
    const auto first = [&interfaces](const auto& predicate) {
        const auto found = std::ranges::find_if(interfaces, predicate);
        return found == interfaces.end() ? std::nullopt : std::optional(*found);
    };
    if (name == "en0") {
        auto device = first([](const auto& each) {
            return each.isPhysical && !each.isCellular && !each.isLoopback;
        });
        return device
                   ? device
                   : first([](const auto& each) { return !each.isCellular && !each.isLoopback; });
    }
    if (name == "pdp_ip0") {
        return first([](const auto& each) { return each.isCellular; });
    }
    return first([&name](const auto& each) { return each.name == name; });
}

std::optional<ZRMLinuxInterface> ZRMLinuxInterfaces::read(const std::string& name) const {
    const auto base = directory_ + "/" + name + "/";
    const auto textOf = [&](const char* file) {
        return zrm_smallFileText(base + file).value_or("");
    };
    const auto index = numberIn(textOf("ifindex"));
    if (!index) {
        return std::nullopt;
    }
    ZRMLinuxInterface found;
    found.name = name;
    found.index = *index;
    found.isLoopback = numberIn(textOf("type")) == ARPHRD_LOOPBACK;
    found.isPhysical = std::filesystem::exists(std::filesystem::status(base + "device"));
    const auto event = textOf("uevent");
    found.isCellular =
        name.starts_with("wwan") || event.find("DEVTYPE=wwan\n") != std::string::npos;
    found.isWireless = event.find("DEVTYPE=wlan\n") != std::string::npos;
    found.hardwareAddress = addressIn(textOf("address"));
    return found;
}
