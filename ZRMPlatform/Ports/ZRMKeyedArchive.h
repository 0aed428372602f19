// Keyed, type-checked archives: a dictionary of typed values to bytes and back.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

struct ZRMArchiveObject;

using ZRMArchiveValue = std::variant<std::string, ZRMDate, double, std::int64_t, bool, ZRMData,
                                     std::shared_ptr<const ZRMArchiveObject>>;
using ZRMArchiveFields = std::map<std::string, ZRMArchiveValue>;

// An archived object of a named class.
struct ZRMArchiveObject {
    std::string className;
    ZRMArchiveFields fields;
};

// Pure; may be called from any thread. What was encoded decodes to equal values, a double that is a
// whole number included; dates keep at least millisecond precision.
class ZRMKeyedArchiver {
  public:
    virtual ~ZRMKeyedArchiver() = default;
    virtual ZRMResult<ZRMData> encode(const ZRMArchiveObject& object) const = 0;
    // Bytes that are no archive are an error, never a crash, whatever they hold.
    virtual ZRMResult<ZRMArchiveObject> decode(const ZRMData& bytes) const = 0;
};
