// The event core's state that outlives the process: one archive file.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettingsValues.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// May be used from any thread. Setters change the object alone; save() writes the file.
class ZRMCloudKitSettings {
  public:
    // Refused: logs and throws ZRMInvalidArgument.
    [[deprecated(
        "Don't use that initializer, use "
        "+(instancetype)settingsFromDirectory:")]] ZRMCloudKitSettings();

    // What the directory's archive holds. Where there is none, the settings of a new installation,
    // saved at once. An archive that cannot be read is kept beside under a name with the time, with
    // a line in the log, and counts as none. Never absent; blocks on the disk.
    static std::shared_ptr<ZRMCloudKitSettings> settingsFromDirectory(
        std::shared_ptr<const ZRMPlatform> platform, const std::string& directory);

    // False, with a line in the log, when the archive could not be written; the object stays as it
    // is. Blocks on the disk.
    bool save();
    // Applies the change, which gets this object, and saves.
    bool execSaveTransaction(const std::function<void(ZRMCloudKitSettings&)>& change);

    [[nodiscard]] std::optional<std::string> installationId() const;
    void setInstallationId(std::optional<std::string> identifier);
    [[nodiscard]] std::optional<ZRMDate> installationDate() const;
    void setInstallationDate(std::optional<ZRMDate> date);
    // Time 0 when nothing was sent yet.
    [[nodiscard]] ZRMDate applicationMd5SendDate() const;
    void setApplicationMd5SendDate(ZRMDate date);
    [[nodiscard]] std::optional<ZRMTouchIdInfo> touchIdDomainState() const;
    void setTouchIdDomainState(std::optional<ZRMTouchIdInfo> state);
    [[nodiscard]] std::optional<std::string> secureDeviceTag() const;
    void setSecureDeviceTag(std::optional<std::string> tag);
    // Time 0 when there was no refresh yet.
    [[nodiscard]] ZRMDate secureDeviceTagRefreshDate() const;
    void setSecureDeviceTagRefreshDate(ZRMDate date);
    // Seconds. A fraction is lost when the archive is read again.
    [[nodiscard]] double secureDeviceTagRefreshInterval() const;
    void setSecureDeviceTagRefreshInterval(double seconds);
    // Where the archive lies; not archived itself.
    [[nodiscard]] std::string directory() const;
    void setDirectory(std::string directory);

  private:
    ZRMCloudKitSettings(std::shared_ptr<const ZRMPlatform> platform, std::string directory);

    [[nodiscard]] std::optional<ZRMCloudKitSettingsValues> readArchive() const;
    void keepDamagedArchive(const std::string& reason) const;
    [[nodiscard]] std::string archivePath() const;

    template <class Value>
    Value get(Value ZRMCloudKitSettingsValues::*field) const {
        const ZRMLockGuard lock(mutex_);
        return values_.*field;
    }
    template <class Value>
    void set(Value ZRMCloudKitSettingsValues::*field, Value value) {
        const ZRMLockGuard lock(mutex_);
        values_.*field = std::move(value);
    }

    std::shared_ptr<const ZRMPlatform> platform_;
    ZRMMutex saveMutex_;      // held while writing, so that the last save wins
    mutable ZRMMutex mutex_;  // guards what follows; never held while calling out
    std::string directory_ ZRM_GUARDED_BY(mutex_);
    ZRMCloudKitSettingsValues values_ ZRM_GUARDED_BY(mutex_);
};
