// The tables and indexes of the store, made or brought up to the model.
#pragma once

#include <optional>

#include <SQLiteCpp/Database.h>

#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"

inline constexpr const char* kZRMStoreErrorDomain = "ZRMStatisticsStoreErrorDomain";

enum ZRMStoreErrorCode : int {
    ZRMStoreErrorNewerVersion = 1,  // a later release of the library wrote the store
};

// Whether the model has the queue's entity with the attributes and types that the code reads.
[[nodiscard]] bool zrm_modelHoldsStatistics(const ZRMManagedObjectModel& model);

// An error when a later version than the model's wrote the store. Changes nothing. Throws
// SQLite::Exception.
std::optional<ZRMError> zrm_refuseNewerStore(SQLite::Database& database,
                                             const ZRMManagedObjectModel& model);

// Makes what is missing, all or nothing; an attribute that the table lacks becomes a column that
// reads as zero. A store of the model's version is only read. Throws SQLite::Exception.
void zrm_migrateStore(SQLite::Database& database, const ZRMManagedObjectModel& model);
