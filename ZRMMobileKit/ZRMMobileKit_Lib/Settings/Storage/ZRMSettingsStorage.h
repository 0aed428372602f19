// The last good settings document, as it was received.
#pragma once

#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

// May be used from any thread; blocks on the disk.
class ZRMSettingsStorage {
  public:
    // The process's one storage, on the installed platform.
    static std::shared_ptr<ZRMSettingsStorage> defaultStorage();

    ZRMSettingsStorage(std::shared_ptr<ZRMFileManager> fileManager,
                       std::shared_ptr<const ZRMDirectories> directories);

    // Absent on success. Makes the directory where there is none, outside of backups. Whatever
    // happens, the file holds all of the old bytes or all of the new ones.
    std::optional<ZRMError> writeSettings(const ZRMData& settings);
    // Absent when there is no file or it cannot be read.
    [[nodiscard]] std::optional<ZRMData> readSettings() const;

  private:
    std::optional<ZRMError> makeDirectory();

    const std::shared_ptr<ZRMFileManager> fileManager_;
    const std::shared_ptr<const ZRMDirectories> directories_;
};
