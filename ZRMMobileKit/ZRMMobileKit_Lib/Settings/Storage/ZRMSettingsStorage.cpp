#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Storage/ZRMSettingsStorage.h"

#include <utility>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::shared_ptr<ZRMSettingsStorage> ZRMSettingsStorage::defaultStorage() {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<ZRMSettingsStorage>([&platform] {
        return std::make_shared<ZRMSettingsStorage>(platform->fileManager, platform->directories);
    });
}

ZRMSettingsStorage::ZRMSettingsStorage(std::shared_ptr<ZRMFileManager> fileManager,
                                       std::shared_ptr<const ZRMDirectories> directories)
    : fileManager_(std::move(fileManager)), directories_(std::move(directories)) {}

std::optional<ZRMError> ZRMSettingsStorage::writeSettings(const ZRMData& settings) {
    if (auto error = makeDirectory()) {
        return error;
    }
    return fileManager_->writeFileAtomically(zrm_mobileKitSettingsFilePath(*directories_),
                                             settings);
}

std::optional<ZRMError> ZRMSettingsStorage::makeDirectory() {
    const auto directory = zrm_mobileKitSettingsDirectory(*directories_);
    if (fileManager_->directoryExists(directory)) {
        return std::nullopt;
    }
    if (auto error = fileManager_->createDirectory(directory)) {
        return error;
    }
    return fileManager_->excludeFromBackup(directory);
}

std::optional<ZRMData> ZRMSettingsStorage::readSettings() const {
    auto settings = fileManager_->readFile(zrm_mobileKitSettingsFilePath(*directories_));
    return settings ? std::optional(std::move(settings).value()) : std::nullopt;
}
