#include "ZRMPlatform/Linux/ZRMLinuxDevice.h"

#include <sys/utsname.h>

std::string ZRMLinuxDevice::systemName() const {
    utsname names{};
    return uname(&names) == 0 ? names.sysname : "Linux";
}

std::optional<std::string> ZRMLinuxDevice::systemVersion() const {
    utsname names{};
    return uname(&names) == 0 ? std::optional<std::string>(names.release) : std::nullopt;
}

std::optional<std::string> ZRMLinuxDevice::name() const {
    utsname names{};
    return uname(&names) == 0 ? std::optional<std::string>(names.nodename) : std::nullopt;
}

std::optional<std::string> ZRMLinuxDevice::localizedModel() const {
    return std::nullopt;
}

std::optional<std::string> ZRMLinuxDevice::identifierForVendor() const {
    return std::nullopt;
}

bool ZRMLinuxDevice::isMultitaskingSupported() const {
    return true;
}

std::string ZRMLinuxDevice::hardwareIdentifier() const {
    utsname names{};
    return uname(&names) == 0 ? names.machine : "";
}
