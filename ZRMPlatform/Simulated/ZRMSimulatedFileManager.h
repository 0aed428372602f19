// The file ports of one simulated process.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// In a dead process every operation fails with EIO and nothing exists. An existence question that
// meets a fault answers no.
class ZRMSimulatedFileManager final : public ZRMFileManager {
  public:
    ZRMSimulatedFileManager(std::shared_ptr<ZRMSimulatedDisk> disk,
                            std::shared_ptr<ZRMSimulatedProcess> process);

    [[nodiscard]] bool fileExists(const std::string& path) const override;
    [[nodiscard]] bool directoryExists(const std::string& path) const override;
    ZRMResult<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override;
    std::optional<ZRMError> createDirectory(const std::string& path) override;
    std::optional<ZRMError> createFile(const std::string& path) override;
    ZRMResult<ZRMData> readFile(const std::string& path) const override;
    std::optional<ZRMError> writeFileAtomically(const std::string& path,
                                                const ZRMData& bytes) override;
    std::optional<ZRMError> removeItem(const std::string& path) override;
    std::optional<ZRMError> moveItem(const std::string& from, const std::string& to) override;
    ZRMResult<ZRMDate> creationDate(const std::string& path) const override;
    std::optional<ZRMError> excludeFromBackup(const std::string& path) override;
    ZRMResult<std::unique_ptr<ZRMFileHandle>> openForUpdating(const std::string& path) override;
    ZRMResult<std::unique_ptr<ZRMFileReader>> openForReading(
        const std::string& path) const override;
    ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> enumeratorAtPath(
        const std::string& path) const override;

  private:
    [[nodiscard]] int judge(ZRMSimulatedDiskOperation operation, const std::string& path) const;
    // Finds the file and answers the error number, or 0.
    [[nodiscard]] int open(const std::string& path, std::shared_ptr<ZRMSimulatedFile>& file) const;
    int writeBeside(const std::string& path, const ZRMData& bytes);

    std::shared_ptr<ZRMSimulatedDisk> disk_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
};

class ZRMSimulatedDirectories final : public ZRMDirectories {
  public:
    static constexpr const char* kDocuments = "/device/home/Documents";
    static constexpr const char* kApplicationSupport = "/device/home/Library/Application Support";

    explicit ZRMSimulatedDirectories(std::string databaseFileLayer)
        : databaseFileLayer_(std::move(databaseFileLayer)) {}

    [[nodiscard]] std::string documents() const override { return kDocuments; }
    [[nodiscard]] std::string applicationSupport() const override { return kApplicationSupport; }
    [[nodiscard]] std::string databaseFileLayer() const override { return databaseFileLayer_; }

  private:
    std::string databaseFileLayer_;
};
