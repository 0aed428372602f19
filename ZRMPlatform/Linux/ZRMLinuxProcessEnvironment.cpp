#include "ZRMPlatform/Linux/ZRMLinuxProcessEnvironment.h"

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

std::optional<std::string> ZRMLinuxProcessEnvironment::variable(const std::string& name) const {
    return zrm_environmentVariable(name);
}
