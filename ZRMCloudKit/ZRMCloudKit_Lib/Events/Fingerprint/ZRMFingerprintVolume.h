// The space on the device, as the fingerprint tells of it.
#pragma once

#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

[[nodiscard]] std::span<const ZRMEventField<ZRMVolumeCapacity>> zrm_fingerprintVolumeFields();

// Of the volume at "/", counting what it could give to something important; where the system makes
// no such distinction, of the documents directory's file system. Both zero, with the reason in the
// log, when it cannot be read. From any thread.
[[nodiscard]] ZRMVolumeCapacity zrm_fingerprintVolume(const ZRMVolumes& volumes,
                                                      const ZRMDirectories& directories);
