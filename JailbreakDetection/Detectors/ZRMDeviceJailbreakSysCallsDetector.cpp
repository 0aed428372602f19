#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakSysCallsDetector.h"

#include <utility>

ZRMDeviceJailbreakSysCallsDetector::ZRMDeviceJailbreakSysCallsDetector(
    std::shared_ptr<ZRMCommandProcessor> commandProcessor)
    : commandProcessor_(std::move(commandProcessor)) {}

bool ZRMDeviceJailbreakSysCallsDetector::isJailbroken() {
    return commandProcessor_->availability() != 0;
}

ZRMDeviceJailbreakDetectorType ZRMDeviceJailbreakSysCallsDetector::detectorType() const {
    return ZRMDeviceJailbreakDetectorSysCalls;
}
