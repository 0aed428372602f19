// What happens to a store whose file is damaged.
#pragma once

#include <cstddef>
#include <string>

#include <SQLiteCpp/Database.h>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Leaves a mark beside the store for the next opening: its content is broken.
void zrm_markStoreDamaged(ZRMFileManager& fileManager, const std::string& storePath);
[[nodiscard]] bool zrm_isStoreMarkedDamaged(const ZRMFileManager& fileManager,
                                            const std::string& storePath);

// Moves the store with its log to a name that ends in the time (seconds since 1970) and takes the
// mark away. Returns the new path.
ZRMResult<std::string> zrm_moveStoreAside(const ZRMPlatform& platform,
                                          const std::string& storePath);

// Copies every record that can be read into `fresh`, in one transaction, and returns their number.
// A failure of `fresh` leaves it empty and counts as none.
std::size_t zrm_carryRecordsOver(const ZRMPlatform& platform, const std::string& damagedPath,
                                 SQLite::Database& fresh);
