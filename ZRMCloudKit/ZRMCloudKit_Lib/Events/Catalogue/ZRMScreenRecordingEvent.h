// Whether the screen is being recorded.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMScreenRecordingEvent final : public ZRMTableEvent<ZRMScreenRecordingEvent> {
  public:
    static ZRMEventTable<ZRMScreenRecordingEvent> table();

    ZRMScreenRecordingEvent(bool recording,
                            std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] bool isRecording() const { return recording_; }

  private:
    bool recording_;
};
