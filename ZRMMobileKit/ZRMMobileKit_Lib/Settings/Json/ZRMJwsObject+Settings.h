// The signed envelope of the settings document.
#pragma once

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

// As ZRMJwsObject::jwsObjectFromData(); every failure is error 1, "Data has invalid format.".
ZRMResult<ZRMJwsObject> jwsObjectFromSettingsData(const ZRMData& data);
