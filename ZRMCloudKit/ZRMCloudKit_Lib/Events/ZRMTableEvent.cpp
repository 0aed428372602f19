#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDictionary/NSDictionary+ZRMCoreKit.h"

ZRMDictionary zrm_eventParameters(const ZRMCommonParametersProvider& provider,
                                  const char* eventType, std::uint64_t structVersion,
                                  ZRMEventPermissions permissions, const ZRMDictionary& body) {
    ZRMDictionary event;
    event[eventType] =
        zrm_mergeDictionary(provider.parametersWithStructVersion(structVersion, permissions), body);
    return event;
}
