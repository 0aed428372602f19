#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

std::shared_ptr<const ZRMPlatform> zrm_makeLinuxPlatform(const ZRMLinuxPlatformOptions& options) {
    static_cast<void>(options);
    return std::make_shared<ZRMPlatform>();
}

std::shared_ptr<const ZRMPlatform> zrm_makeDefaultPlatform() {
    return zrm_makeLinuxPlatform({});
}
