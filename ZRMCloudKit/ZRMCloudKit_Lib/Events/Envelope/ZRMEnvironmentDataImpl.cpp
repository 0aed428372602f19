#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataImpl.h"

#include <array>

std::span<const ZRMEventField<ZRMEnvironmentDataImpl>> ZRMEnvironmentDataImpl::fields() {
    using Data = ZRMEnvironmentDataImpl;
    static constexpr std::array kFields{
        zrm_eventField<&Data::osName>("osName", "name of the operating system"),
        zrm_eventField<&Data::osVersion>("osVersion", "version of the operating system"),
        zrm_eventField<&Data::deviceTag>("deviceTag", "the tag kept in the device's keychain"),
        zrm_eventField<&Data::productName>("productName", "name of the library's product"),
        zrm_eventField<&Data::productVersion>("productVersion", "version of the library"),
        zrm_eventField<&Data::applicationId>("applicationId", "identifier of the host application"),
        zrm_eventField<&Data::applicationVersion>("applicationVersion",
                                                  "build version of the host application"),
        zrm_eventField<&Data::clientId>("clientId", "the customer's identifier"),
        zrm_eventField<&Data::execSessionId>("execSessionId", "the execution session"),
        zrm_eventField<&Data::uptime>("uptime", "milliseconds since boot, at the library's start"),
        zrm_eventField<&Data::startDateTime>("startDateTime", "milliseconds from 1970 to the boot"),
        zrm_eventField<&Data::applicationInstallationDate>(
            "applicationDateInstall", "when the host application was installed"),
    };
    return kFields;
}

ZRMDictionary ZRMEnvironmentDataImpl::dictionary() const {
    return zrm_eventBody(*this, fields());
}
