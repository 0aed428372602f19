#include "ZRMPlatform/Linux/ZRMLinuxKernelValues.h"

#include <cstring>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

ZRMLinuxKernelValues::ZRMLinuxKernelValues(
    std::shared_ptr<const ZRMDevice> device,
    std::shared_ptr<const ZRMProcessInformation> processInformation, std::string procDirectory,
    std::string etcDirectory)
    : device_(std::move(device)),
      processInformation_(std::move(processInformation)),
      procDirectory_(std::move(procDirectory)),
      etcDirectory_(std::move(etcDirectory)) {}

std::optional<std::string> ZRMLinuxKernelValues::text(const std::string& name) const {
    if (name == "hw.machine") {
        return zrm_systemName(device_->hardwareIdentifier());
    }
    if (name == "hw.model") {
        return device_->localizedModel();
    }
    if (name == "kern.hostname" || name == "kern.ostype") {
        const auto file = name == "kern.hostname" ? "/sys/kernel/hostname" : "/sys/kernel/ostype";
        return zrm_systemNameInFile(procDirectory_ + file);
    }
    return std::nullopt;
}

std::optional<std::int32_t> ZRMLinuxKernelValues::integer(const std::string& name) const {
    if (name == "hw.ncpu") {
        return static_cast<std::int32_t>(processInformation_->processorCount());
    }
    if (name == "hw.physmem") {
        return static_cast<std::int32_t>(processInformation_->physicalMemory());
    }
    if (name == "kern.hostid") {
        const auto bytes = zrm_smallFileText(etcDirectory_ + "/hostid");
        std::int32_t identifier = 0;
        if (bytes && bytes->size() == sizeof identifier) {
            std::memcpy(&identifier, bytes->data(), sizeof identifier);
            return identifier;
        }
    }
    return std::nullopt;
}
