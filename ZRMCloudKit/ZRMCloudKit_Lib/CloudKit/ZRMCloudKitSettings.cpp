#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettings.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSFileManager/NSFileManager+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

namespace {

constexpr const char* kArchiveName = "ZRMCloudKitSettings";

// About when the host application was installed: its documents directory comes with it. Where the
// system made none, it is made now.
std::optional<ZRMDate> installationDateNow(const ZRMPlatform& platform) {
    const auto documents = zrm_documentDirectory(*platform.directories);
    if (!platform.fileManager->directoryExists(documents)) {
        if (const auto error = platform.fileManager->createDirectory(documents)) {
            zrm_logError(nullptr, error->localizedDescription());
        }
    }
    return zrm_creationDateOfItemAtPath(*platform.fileManager, documents);
}

}  // namespace

ZRMCloudKitSettings::ZRMCloudKitSettings() {
    static constexpr const char* kMessage =
        "Don't use that initializer, use +(instancetype)settingsFromDirectory:";
    zrm_logError(this, kMessage);
    throw ZRMInvalidArgument(kMessage);
}

ZRMCloudKitSettings::ZRMCloudKitSettings(std::shared_ptr<const ZRMPlatform> platform,
                                         std::string directory)
    : platform_(std::move(platform)), directory_(std::move(directory)) {}

std::shared_ptr<ZRMCloudKitSettings> ZRMCloudKitSettings::settingsFromDirectory(
    std::shared_ptr<const ZRMPlatform> platform, const std::string& directory) {
    const std::shared_ptr<ZRMCloudKitSettings> settings(
        new ZRMCloudKitSettings(platform, directory));
    if (auto values = settings->readArchive()) {
        const ZRMLockGuard lock(settings->mutex_);
        settings->values_ = std::move(*values);
        return settings;
    }
    settings->execSaveTransaction([&platform](ZRMCloudKitSettings& fresh) {
        fresh.setInstallationId(zrm_makeUuidText(*platform->random));
        fresh.setInstallationDate(installationDateNow(*platform));
    });
    return settings;
}

std::optional<ZRMCloudKitSettingsValues> ZRMCloudKitSettings::readArchive() const {
    if (!platform_->fileManager->fileExists(archivePath())) {
        return {};
    }
    const auto bytes = platform_->fileManager->readFile(archivePath());
    if (!bytes) {
        keepDamagedArchive(bytes.error().localizedDescription());
        return {};
    }
    const auto object = platform_->keyedArchiver->decode(bytes.value());
    if (!object) {
        keepDamagedArchive(object.error().localizedDescription());
        return {};
    }
    auto values = ZRMCloudKitSettingsValues::decode(object.value());
    if (!values) {
        keepDamagedArchive("The archive holds something else.");
    }
    return values;
}

void ZRMCloudKitSettings::keepDamagedArchive(const std::string& reason) const {
    const auto keptPath =
        zrm_pathForDamagedItem(*platform_->fileManager, archivePath(), platform_->clock->now());
    zrm_logError(
        this, "Cannot read ZRMCloudKit settings data, keeping it as " + keptPath + ": " + reason);
    if (const auto error = platform_->fileManager->moveItem(archivePath(), keptPath)) {
        zrm_logError(this, error->localizedDescription());
    }
}

std::string ZRMCloudKitSettings::archivePath() const {
    return directory() + "/" + kArchiveName;
}

bool ZRMCloudKitSettings::save() {
    const ZRMLockGuard saving(saveMutex_);
    const auto path = directory();
    if (!platform_->fileManager->directoryExists(path)) {
        if (const auto error = platform_->fileManager->createDirectory(path)) {
            zrm_logError(this, error->localizedDescription());
        }
    }
    ZRMCloudKitSettingsValues values;
    {
        const ZRMLockGuard lock(mutex_);
        values = values_;
    }
    const auto bytes = platform_->keyedArchiver->encode(values.encode());
    const auto error =
        bytes ? platform_->fileManager->writeFileAtomically(archivePath(), bytes.value())
              : bytes.error();
    if (error) {
        zrm_logError(this,
                     "Cannot save ZRMCloudKit settings data: " + error->localizedDescription());
    }
    return !error;
}

bool ZRMCloudKitSettings::execSaveTransaction(
    const std::function<void(ZRMCloudKitSettings&)>& change) {
    change(*this);
    return save();
}

std::optional<std::string> ZRMCloudKitSettings::installationId() const {
    return get(&ZRMCloudKitSettingsValues::installationId);
}

void ZRMCloudKitSettings::setInstallationId(std::optional<std::string> identifier) {
    set(&ZRMCloudKitSettingsValues::installationId, std::move(identifier));
}

std::optional<ZRMDate> ZRMCloudKitSettings::installationDate() const {
    return get(&ZRMCloudKitSettingsValues::installationDate);
}

void ZRMCloudKitSettings::setInstallationDate(std::optional<ZRMDate> date) {
    set(&ZRMCloudKitSettingsValues::installationDate, date);
}

ZRMDate ZRMCloudKitSettings::applicationMd5SendDate() const {
    return get(&ZRMCloudKitSettingsValues::applicationMd5SendDate);
}

void ZRMCloudKitSettings::setApplicationMd5SendDate(ZRMDate date) {
    set(&ZRMCloudKitSettingsValues::applicationMd5SendDate, date);
}

std::optional<ZRMTouchIdInfo> ZRMCloudKitSettings::touchIdDomainState() const {
    return get(&ZRMCloudKitSettingsValues::touchIdDomainState);
}

void ZRMCloudKitSettings::setTouchIdDomainState(std::optional<ZRMTouchIdInfo> state) {
    set(&ZRMCloudKitSettingsValues::touchIdDomainState, std::move(state));
}

std::optional<std::string> ZRMCloudKitSettings::secureDeviceTag() const {
    return get(&ZRMCloudKitSettingsValues::secureDeviceTag);
}

void ZRMCloudKitSettings::setSecureDeviceTag(std::optional<std::string> tag) {
    set(&ZRMCloudKitSettingsValues::secureDeviceTag, std::move(tag));
}

ZRMDate ZRMCloudKitSettings::secureDeviceTagRefreshDate() const {
    return get(&ZRMCloudKitSettingsValues::secureDeviceTagRefreshDate);
}

void ZRMCloudKitSettings::setSecureDeviceTagRefreshDate(ZRMDate date) {
    set(&ZRMCloudKitSettingsValues::secureDeviceTagRefreshDate, date);
}

double ZRMCloudKitSettings::secureDeviceTagRefreshInterval() const {
    return get(&ZRMCloudKitSettingsValues::secureDeviceTagRefreshInterval);
}

void ZRMCloudKitSettings::setSecureDeviceTagRefreshInterval(double seconds) {
    set(&ZRMCloudKitSettingsValues::secureDeviceTagRefreshInterval, seconds);
}

std::string ZRMCloudKitSettings::directory() const {
    const ZRMLockGuard lock(mutex_);
    return directory_;
}

void ZRMCloudKitSettings::setDirectory(std::string directory) {
    const ZRMLockGuard lock(mutex_);
    directory_ = std::move(directory);
}
