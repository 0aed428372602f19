#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"

#include <sys/utsname.h>

#include "ZRMPlatform/Linux/ZRMLinuxNamedUuid.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

// Lower-case hexadecimal digits, as machine-id(5) lays down; "uninitialized" and the like are none.
bool isMachineIdentifier(const std::string& text) {
    constexpr std::size_t kDigits = 32;
    return text.size() == kDigits &&
           text.find_first_not_of("0123456789abcdef") == std::string::npos &&
           text.find_first_not_of('0') != std::string::npos;
}

}  // namespace

ZRMLinuxDevice::ZRMLinuxDevice(std::string maker, std::string sysDirectory,
                               std::string etcDirectory)
    : maker_(std::move(maker)),
      sysDirectory_(std::move(sysDirectory)),
      etcDirectory_(std::move(etcDirectory)) {}

std::string ZRMLinuxDevice::systemName() const {
    utsname names{};
    return uname(&names) == 0 ? names.sysname : "Linux";
}

std::optional<std::string> ZRMLinuxDevice::systemVersion() const {
    utsname names{};
    return uname(&names) == 0 ? std::optional<std::string>(names.release) : std::nullopt;
}

std::optional<std::string> ZRMLinuxDevice::name() const {
    if (auto pretty = zrm_assignedName(etcDirectory_ + "/machine-info", "PRETTY_HOSTNAME")) {
        return pretty;
    }
    utsname names{};
    return uname(&names) == 0 ? zrm_systemName(names.nodename) : std::nullopt;
}

std::optional<std::string> ZRMLinuxDevice::localizedModel() const {
    if (auto product = zrm_systemNameInFile(sysDirectory_ + "/class/dmi/id/product_name")) {
        return product;
    }
    return zrm_systemNameInFile(sysDirectory_ + "/firmware/devicetree/base/model");
}

std::optional<std::string> ZRMLinuxDevice::identifierForVendor() const {
    const auto machine = zrm_systemNameInFile(etcDirectory_ + "/machine-id");
    if (!machine || !isMachineIdentifier(*machine)) {
        return std::nullopt;
    }
    return zrm_namedUuid(*machine + "/" + maker_);
}

bool ZRMLinuxDevice::isMultitaskingSupported() const {
    return true;
}

std::string ZRMLinuxDevice::hardwareIdentifier() const {
    utsname names{};
    return uname(&names) == 0 ? names.machine : "";
}
