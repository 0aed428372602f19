#include "Tools/zrm-inspect/ZRMJwsInspection.h"

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

ZRMInspection zrm_inspectJws(const std::string& path) {
    ZRMDictionary report{{"validity", nullptr}, {"results", ZRMJsonArray()}, {"error", nullptr}};
    const auto bytes = zrm_readInspectedFile(path);
    if (!bytes) {
        report["error"] = zrm_reportOfError(bytes.error());
        return {report, false};
    }
    const auto object = ZRMJwsObject::jwsObjectFromData(bytes.value());
    if (!object) {
        if (object.error().domain() == kZRMJwsObjectErrorDomain) {
            report["validity"] = object.error().code();
        }
        report["error"] = zrm_reportOfError(object.error());
        return {report, false};
    }
    report["validity"] = static_cast<int>(ZRMJwsObjectJsonValid);
    report["results"] = ZRMJsonArray(object.value().signatures().size(), nullptr);
    return {report, true};
}
