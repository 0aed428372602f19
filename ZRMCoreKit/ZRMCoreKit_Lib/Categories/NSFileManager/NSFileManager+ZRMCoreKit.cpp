#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

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

std::string zrm_pathForDamagedItem(const ZRMFileManager& fileManager, const std::string& path,
                                   ZRMDate now) {
    const auto nameBegin = path.find_last_of('/') + 1;
    const auto listed = fileManager.contentsOfDirectory(path.substr(0, nameBegin));
    const auto taken = listed ? listed.value() : std::vector<std::string>();
    for (auto seconds = static_cast<std::int64_t>(now.secondsSince1970);; ++seconds) {
        auto candidate = path + ".damaged-" + std::to_string(seconds);
        // Earlier evidence stays, also what lies beside it under a longer name.
        const auto name = std::string_view(candidate).substr(nameBegin);
        if (std::ranges::none_of(taken, [name](const auto& n) { return n.starts_with(name); })) {
            return candidate;
        }
    }
}
