// The user took a screenshot.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMScreenshotEvent final : public ZRMTableEvent<ZRMScreenshotEvent> {
  public:
    static ZRMEventTable<ZRMScreenshotEvent> table();

    ZRMScreenshotEvent(bool screenshotTaken,
                       std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] bool isScreenshotTaken() const { return screenshotTaken_; }

  private:
    bool screenshotTaken_;
};
