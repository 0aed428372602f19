// Archives as binary property lists.
#pragma once

#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"

// An object is {"$class": name, "$version": 1, "fields": [{"key": …, "type": …, "value": …}, …]},
// the type being "string", "date", "double", "integer", "bool", "data" or "object"; dates are
// reals, seconds since 1970. Objects nest 32 deep at most. Errors are EINVAL in
// kZRMPosixErrorDomain.
class ZRMLinuxKeyedArchiver : public ZRMKeyedArchiver {
  public:
    ZRMResult<ZRMData> encode(const ZRMArchiveObject& object) const override;
    ZRMResult<ZRMArchiveObject> decode(const ZRMData& bytes) const override;
};
