#include "ZRMPlatform/Linux/ZRMLinuxScreens.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>

#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

// "card0-eDP-1" without "card0-"; empty when the name is no connector's.
std::string_view connectorIn(std::string_view name) {
    const auto dash = name.find('-');
    return name.starts_with("card") && dash != std::string_view::npos ? name.substr(dash + 1)
                                                                      : std::string_view();
}

bool isBuiltIn(const std::string& name) {
    const auto connector = connectorIn(name);
    return connector.starts_with("eDP-") || connector.starts_with("LVDS-") ||
           connector.starts_with("DSI-") || connector.starts_with("DPI-");
}

// From a mode such as "1920x1080" or "1920x1080i".
void setSize(ZRMScreen& screen, const std::string& mode) {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    const auto* const end = mode.data() + mode.size();
    const auto afterWidth = std::from_chars(mode.data(), end, width);
    if (afterWidth.ec != std::errc() || afterWidth.ptr == end || *afterWidth.ptr != 'x' ||
        std::from_chars(afterWidth.ptr + 1, end, height).ec != std::errc()) {
        return;
    }
    screen.width = width;
    screen.height = height;
}

}  // namespace

ZRMLinuxScreens::ZRMLinuxScreens(std::string sysDirectory)
    : sysDirectory_(std::move(sysDirectory)) {}

std::vector<ZRMScreen> ZRMLinuxScreens::screens() const {
    const auto connectors = sysDirectory_ + "/class/drm";
    const auto listed = ZRMLinuxFileManager().contentsOfDirectory(connectors);
    auto names = listed ? listed.value() : std::vector<std::string>();
    std::stable_partition(names.begin(), names.end(), &isBuiltIn);
    std::vector<ZRMScreen> screens;
    for (const auto& name : names) {
        const auto directory = connectors + "/" + name;
        if (connectorIn(name).empty() ||
            zrm_systemNameInFile(directory + "/status") != "connected") {
            continue;
        }
        auto& screen = screens.emplace_back();
        setSize(screen, zrm_systemNameInFile(directory + "/modes").value_or(""));
    }
    return screens;
}
