#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprint.h"

#include <array>

std::span<const ZRMEventField<ZRMFingerprint>> ZRMFingerprint::fields() {
    using Print = ZRMFingerprint;
    static constexpr std::array kFields{
        zrm_eventField<&Print::activeProcessorsCount>("activeProcessorsCount", "processors in use"),
        zrm_eventField<&Print::amountOfPhysicalMemory>("amountOfPhysicalMemory",
                                                       "bytes, up to 64 bits"),
        zrm_eventField<&Print::battery>("battery", "the battery, see below"),
        zrm_eventField<&Print::bundleIdentifier>("bundleIdentifier",
                                                 "identifier of the host application"),
        zrm_eventField<&Print::bundleUrl>("bundleUrl", "file URL of the application's bundle"),
        zrm_eventField<&Print::simCards>("simCards", "one object a cellular subscription"),
        zrm_eventField<&Print::currentTimestampInLocaleFormat>(
            "currentTimestampInLocaleFormat", "today's date as the current locale writes it"),
        zrm_eventField<&Print::currentTimestampIsoFormat>(
            "currentTimestampIsoFormat", "now, in the device's time zone, yyyyMMdd'T'HHmmss"),
        zrm_eventField<&Print::currentTimestampUnixTimestamp>(
            "currentTimestampUnixTimestamp",
            "now, seconds since 1970 with their fraction; a text, not a number"),
        zrm_eventField<&Print::deviceAvailableLocales>("deviceAvailableLocales", "always empty"),
        zrm_eventField<&Print::deviceCurrentLocale>("deviceCurrentLocale", "the current locale"),
        zrm_eventField<&Print::deviceIdentifierForVendor>(
            "deviceIdentifierForVendor", "UUID of the device for the application's maker"),
        zrm_eventField<&Print::deviceLocalizedModel>("deviceLocalizedModel",
                                                     "kind of device in the user's language"),
        zrm_eventField<&Print::deviceModel>("deviceModel", "marketing name of the hardware"),
        zrm_eventField<&Print::deviceMultitaskingSupported>("deviceMultitaskingSupported",
                                                            "the device can do multitasking"),
        zrm_eventField<&Print::deviceNameXor>(
            "deviceNameXor", "the device's name, veiled with the build's key, hexadecimal"),
        zrm_eventField<&Print::devicePreferedLanguages>("devicePreferedLanguages",
                                                        "language tags, the most preferred first"),
        zrm_eventField<&Print::deviceSystemLocale>("deviceSystemLocale", "the system's locale"),
        zrm_eventField<&Print::deviceSystemName>("deviceSystemName",
                                                 "name of the operating system"),
        zrm_eventField<&Print::deviceSystemVersion>("deviceSystemVersion",
                                                    "version of the operating system"),
        zrm_eventField<&Print::filesystemProperties>("filesystemProperties",
                                                     "space on the device, see below"),
        zrm_eventField<&Print::fontsInfo>("fontsInfo", "always empty"),
        zrm_eventField<&Print::hostNameHash>("hostNameHash", "always empty"),
        zrm_eventField<&Print::iOSVersion>("iOSVersion",
                                           "version of the operating system in three numbers"),
        zrm_eventField<&Print::ipAddress3>(
            "ipAddress3", "first three bytes of the IPv4 address, the first one lowest, or 0"),
        zrm_eventField<&Print::ipAddressHash>(
            "ipAddressHash", "SHA-256 of the 4 bytes of the IPv4 address, or empty"),
        zrm_eventField<&Print::ipv6>("ipv6",
                                     "SHA-256 of the 16 bytes of the IPv6 address, or empty"),
        zrm_eventField<&Print::iosAppOnMac>("iosAppOnMac",
                                            "a mobile application on a desktop computer"),
        zrm_eventField<&Print::macCatalystApp>("macCatalystApp",
                                               "a mobile application built for the desktop"),
        zrm_eventField<&Print::lowPowerModeEnabled>("lowPowerModeEnabled", "low-power mode is on"),
        zrm_eventField<&Print::macAddress3>(
            "macAddress3",
            "codes of the first three digits of the MAC address, the first one "
            "lowest, or 0"),
        zrm_eventField<&Print::macAddressHash>(
            "macAddressHash", "SHA-256 of the MAC address's digits as lower-case text, or empty"),
        zrm_eventField<&Print::processName>("processName", "name of the process"),
        zrm_eventField<&Print::processorsCount>("processorsCount", "processors there are"),
        zrm_eventField<&Print::screenSettings>("screenSettings", "the main screen, see below"),
        zrm_eventField<&Print::sysctlbyname>("sysctlbyname", "values of the kernel, see below"),
        zrm_eventField<&Print::embeddedBrowserFingerprint>("embeddedBrowserFingerprint",
                                                           "always empty"),
        zrm_eventField<&Print::wiFiSSID>("wiFiSSID", "name of the wireless network, or empty"),
        zrm_eventField<&Print::wiFiBSSIDHash>(
            "wiFiBSSIDHash", "SHA-256 of the access point's address as text, or empty"),
    };
    return kFields;
}
