// Keyed archives in a small tagged form of the simulated device's own.
#pragma once

#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"

// An archive is "ZRMA", then the object: its class name, the count of its fields and, for each, the
// key, one letter for the type and the value. Counts and lengths are 8 bytes, low byte first, as
// are numbers; dates and doubles are the bits of the double. Objects nest 32 deep at most.
class ZRMSimulatedKeyedArchiver final : public ZRMKeyedArchiver {
  public:
    ZRMResult<ZRMData> encode(const ZRMArchiveObject& object) const override;
    ZRMResult<ZRMArchiveObject> decode(const ZRMData& bytes) const override;

    // While set, encode() answers with an error.
    void setEncodingFails(bool fails) { encodingFails_ = fails; }

  private:
    bool encodingFails_ = false;
};
