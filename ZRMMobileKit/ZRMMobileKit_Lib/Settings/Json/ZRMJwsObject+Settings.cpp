#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMJwsObject+Settings.h"

ZRMResult<ZRMJwsObject> jwsObjectFromSettingsData(const ZRMData& data) {
    auto object = ZRMJwsObject::jwsObjectFromData(data);
    if (!object) {
        return ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorSettingsInvalidFormat);
    }
    return object;
}
