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
