// The persistent queue of events.
#pragma once

#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMPersistentStoreCoordinator.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorageConfiguration.h"

inline constexpr const char* kZRMStatisticsResourcesBundle = "ZRMStatisticsResources.bundle";

class ZRMStatisticsStorage {
  public:
    // Null, with a log line, when there is no model or the store cannot be opened.
    static std::shared_ptr<ZRMStatisticsStorage> create(
        const std::shared_ptr<const ZRMPlatform>& platform,
        const ZRMStatisticsStorageConfiguration& configuration);

    // The model merged from every "*.json" of the resource bundle; absent, with a log line, when
    // there is none, when one cannot be read and when the queue's entity is not in it.
    static std::optional<ZRMManagedObjectModel> makeManagedObjectModel(const ZRMPlatform& platform);

    static ZRMResult<std::shared_ptr<ZRMPersistentStoreCoordinator>>
    makeCoordinatorWithConfiguration(const ZRMPlatform& platform,
                                     const ZRMStatisticsStorageConfiguration& configuration,
                                     const ZRMManagedObjectModel& managedObjectModel);

    ZRMStatisticsStorage(ZRMStatisticsStorageConfiguration configuration,
                         std::shared_ptr<ZRMStatisticsContext> context);

    [[nodiscard]] const ZRMStatisticsStorageConfiguration& configuration() const {
        return configuration_;
    }
    [[nodiscard]] const std::shared_ptr<ZRMStatisticsContext>& context() const { return context_; }

  private:
    ZRMStatisticsStorageConfiguration configuration_;
    std::shared_ptr<ZRMStatisticsContext> context_;
};
