#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMScreenRecordingEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMScreenRecordingEvent> ZRMScreenRecordingEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMScreenRecordingEvent::isRecording>(
            "isRecording", "the screen is being recorded or mirrored"),
    };
    return {"ScreenRecordingEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMScreenRecordingEvent::ZRMScreenRecordingEvent(
    bool recording, std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), recording_(recording) {}
