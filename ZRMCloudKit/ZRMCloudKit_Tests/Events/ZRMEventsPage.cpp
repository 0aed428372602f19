#include "ZRMCloudKit/ZRMCloudKit_Tests/Events/ZRMEventsPage.h"

#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitPriorities.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintBattery.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintKernel.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintScreen.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintSimCard.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintVolume.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMGoldenFile.h"

namespace {

constexpr const char* kBeginning =
    R"(# The events

An event is a JSON object with one member, named after the event's type. The member's value holds
the common parameters and the event's own members beside each other. How an event is packed for the
server is told in [upload-body.md](upload-body.md).

This page is made from the field tables in `ZRMCloudKit/ZRMCloudKit_Lib/Events/`, which also write
the events, and from the documents in `ZRMCloudKit/ZRMCloudKit_Tests/Golden/`, which tests compare
with what the library sends from a simulated device. After a change of either run
`zrm_events_page > docs/formats/events.md`; a test fails until it is done.

## How values are written

- The order of the members has no meaning.
- A value that is not known leaves its member out, unless its row says otherwise.
- A string is what the host or the system gave; bytes that are not UTF-8 are replaced by U+FFFD.
- A date is a string such as "2024-03-05 07:08:09.123000", always in UTC.
- Where a member of the event has the name of a common parameter it replaces it; where both are
  objects they are merged in the same way.
- Events that earlier runs left behind are uploaded in the order of their priority, 1 first.

## Common parameters

)";

template <class Source>
std::string tableOf(std::span<const ZRMEventField<Source>> fields) {
    std::string table = "| Key | JSON type | Meaning |\n|---|---|---|\n";
    for (const auto& field : fields) {
        table += "| \"" + std::string(field.key) + "\" | " + field.jsonType + " | " +
                 field.meaning + " |\n";
    }
    return table;
}

template <class Source>
std::string partOf(const std::string& title, std::span<const ZRMEventField<Source>> fields) {
    return title + ":\n\n" + tableOf(fields) + "\n";
}

// `raised` says when, `parts` holds the tables of the objects inside the body.
template <class Event>
std::string sectionOf(int priority, const std::string& raised, const std::string& parts = "") {
    const auto table = Event::table();
    const auto body =
        table.fields.empty() ? "It has no members of its own.\n" : tableOf(table.fields);
    return "\n## " + std::string(table.eventType) + "\n\nLayout version " +
           std::to_string(table.structVersion) + ", priority " + std::to_string(priority) + ". " +
           raised + "\n\n" + body + "\n" + parts + "```json\n" +
           zrm_goldenFile(std::string(table.eventType) + ".json") + "```\n";
}

std::string sectionsOfTheHostsReports() {
    return sectionOf<ZRMUINavigationEvent>(kZRMEventPriorityUsual,
                                           "Sent when the host reports a navigation.") +
           sectionOf<ZRMUserLoginEvent>(kZRMEventPriorityUser,
                                        "Sent when the host reports a login.") +
           sectionOf<ZRMUserLogoutEvent>(kZRMEventPriorityUser,
                                         "Sent when the host reports a logout.") +
           sectionOf<ZRMSessionIdEvent>(kZRMEventPriorityUsual,
                                        "Sent when the host names its session.") +
           sectionOf<ZRMIOSGeoLocationEvent>(
               kZRMEventPriorityUser,
               "Sent when the host asks for a report of the location, found or not.",
               partOf("The object \"location\"", ZRMIOSGeoLocationEvent::locationFields()));
}

std::string sectionsOfTheLibrary() {
    return sectionOf<ZRMLogDataEvent>(kZRMEventPriorityUsual,
                                      "Sent from time to time while the memory log is on.") +
           sectionOf<ZRMConfigEvent>(kZRMEventPriorityUsual, "Sent by an analysis.");
}

std::string partsOfTheFingerprint() {
    return partOf("\"battery\"", ZRMFingerprintBattery::fields()) +
           partOf("Each object of \"simCards\"", zrm_fingerprintSimCardFields()) +
           partOf("\"filesystemProperties\"", zrm_fingerprintVolumeFields()) +
           partOf("\"screenSettings\"", ZRMFingerprintScreen::fields()) +
           partOf("\"sizeInPoints\" and \"sizeInPixels\"", ZRMFingerprintSize::fields()) +
           partOf("\"sysctlbyname\"", zrm_fingerprintKernelFields());
}

std::string sectionsOfTheDevice() {
    return sectionOf<ZRMVpnEvent>(
               kZRMEventPriorityUsual,
               "Sent when the observation begins and whenever the state changes.") +
           sectionOf<ZRMTouchIdChangedEvent>(
               kZRMEventPriorityUsual,
               "Sent by an analysis that finds another biometric state than the last one.") +
           sectionOf<ZRMApplicationInfoEvent>(kZRMEventPriorityUsual,
                                              "Sent by an analysis, at most once a day.") +
           sectionOf<ZRMScreenshotEvent>(kZRMEventPriorityUsual, "Sent for each screenshot.") +
           sectionOf<ZRMScreenRecordingEvent>(
               kZRMEventPriorityUrgent,
               "Sent when the observation begins and after each further check.") +
           sectionOf<ZRMApplicationSignatureEvent>(
               kZRMEventPriorityUsual, "Sent by an analysis.",
               partOf("Each object of \"applicationSignatures\"",
                      ZRMApplicationSignatureEvent::entryTable())) +
           sectionOf<ZRMDeviceJailbreakEvent>(
               kZRMEventPriorityUsual, "Sent by an analysis.",
               partOf("Each object of \"onloadImages\" and \"currentImages\"",
                      ZRMDeviceJailbreakEvent::imageTable())) +
           sectionOf<ZRMCallInfoEvent>(
               kZRMEventPriorityUrgent,
               "Sent when the observation begins and when a connected call changes or lasts.",
               partOf("Each call", ZRMCallInfoEvent::callFields())) +
           sectionOf<ZRMFingerprintEvent>(
               kZRMEventPriorityUsual,
               "Sent by an analysis. No member is left out: what is not known is empty, 0 or "
               "false.",
               partsOfTheFingerprint());
}

}  // namespace

std::string zrm_eventsPage() {
    return kBeginning + tableOf(ZRMCommonParameters::fields()) + "\n### environmentData\n\n" +
           tableOf(ZRMEnvironmentDataImpl::fields()) + sectionsOfTheHostsReports() +
           sectionsOfTheLibrary() + sectionsOfTheDevice();
}
