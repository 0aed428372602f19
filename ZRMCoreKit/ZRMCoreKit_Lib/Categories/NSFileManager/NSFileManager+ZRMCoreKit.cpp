#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSFileManager/NSFileManager+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

std::optional<ZRMDate> zrm_creationDateOfItemAtPath(const ZRMFileManager& fileManager,
                                                    const std::string& path) {
    const auto date = fileManager.creationDate(path);
    if (!date) {
        zrm_logError(&fileManager, date.error().localizedDescription());
        return std::nullopt;
    }
    return date.value();
}
