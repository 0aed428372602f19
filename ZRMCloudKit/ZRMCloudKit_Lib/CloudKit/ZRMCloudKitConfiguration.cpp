#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitConfiguration.h"

#include "ZRMPlatform/Ports/ZRMPlatform.h"

ZRMCloudKitConfiguration ZRMCloudKitConfiguration::configuration(
    const ZRMDirectories& directories) {
    ZRMCloudKitConfiguration configuration;
    configuration.dataDirectory = directories.documents();
    return configuration;
}

ZRMCloudKitConfiguration ZRMCloudKitConfiguration::configuration() {
    return configuration(*ZRMPlatform::current()->directories);
}
