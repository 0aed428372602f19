// What happens to a store whose file is damaged.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <SQLiteCpp/Database.h>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Leaves a mark beside the store for the next opening: its content is broken.
void zrm_markStoreDamaged(ZRMFileManager& fileManager, const std::string& storePath);
[[nodiscard]] bool zrm_isStoreMarkedDamaged(const ZRMFileManager& fileManager,
                                            const std::string& storePath);

// Moves the store with its log to a name that ends in the time (seconds since 1970) and returns the
// new path; absent when there is no store. The mark keeps the path until the repair is finished:
// when the process ends before that, the next call goes on with the same path.
ZRMResult<std::optional<std::string>> zrm_moveStoreAside(const ZRMPlatform& platform,
                                                         const std::string& storePath);

// Copies every record that can be read into `fresh`, all or nothing, and returns their number.
// Absent when `fresh` cannot be written; it is then as before.
std::optional<std::size_t> zrm_carryRecordsOver(const ZRMPlatform& platform,
                                                const std::string& damagedPath,
                                                SQLite::Database& fresh);

// Takes the mark away.
void zrm_finishStoreRepair(ZRMFileManager& fileManager, const std::string& storePath);
