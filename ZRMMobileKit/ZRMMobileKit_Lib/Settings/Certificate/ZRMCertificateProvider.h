// The root certificate that the library pins.
#pragma once

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Ports/ZRMFileManager.h"

class ZRMCertificateProvider {
  public:
    // The bytes of "VelorinRootCA.crt" in "ZRMMobileKitResources.bundle". Empty when the bundle
    // (which is logged) or the certificate in it is missing. Reads the file on each call; from any
    // thread.
    static ZRMData rootCertificate(const ZRMResourceBundles& bundles,
                                   const ZRMFileManager& fileManager);
};
