#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"

std::string zrm_mobileKitSettingsDirectory(const ZRMDirectories& directories) {
    return zrm_applicationSupportDirectory(directories) + "/ZRM";
}

std::string zrm_mobileKitSettingsFilePath(const ZRMDirectories& directories) {
    return zrm_mobileKitSettingsDirectory(directories) + "/zrm.settings";
}
