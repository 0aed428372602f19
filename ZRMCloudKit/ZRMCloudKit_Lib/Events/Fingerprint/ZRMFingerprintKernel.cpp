#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintKernel.h"

#include <array>
#include <string>

namespace {

constexpr char kMachine[] = "hw.machine";
constexpr char kModel[] = "hw.model";
constexpr char kProcessors[] = "hw.ncpu";
constexpr char kPhysicalMemory[] = "hw.physmem";
constexpr char kHostId[] = "kern.hostid";
constexpr char kHostName[] = "kern.hostname";
constexpr char kSystemType[] = "kern.ostype";

template <const char* Name>
std::string kernelText(const ZRMKernelValues& values) {
    return values.text(Name).value_or(std::string());
}

template <const char* Name>
std::int32_t kernelInteger(const ZRMKernelValues& values) {
    return values.integer(Name).value_or(0);
}

template <const char* Name>
std::string kernelIntegerText(const ZRMKernelValues& values) {
    const auto integer = values.integer(Name);
    return integer ? std::to_string(*integer) : std::string();
}

std::string unreadRevision(const ZRMKernelValues&) {
    return "-1";
}

}  // namespace

std::span<const ZRMEventField<ZRMKernelValues>> zrm_fingerprintKernelFields() {
    static constexpr std::array kFields{
        zrm_eventField<&kernelText<kMachine>>("hwmachine", "hw.machine"),
        zrm_eventField<&kernelText<kModel>>("hwmodel", "hw.model"),
        zrm_eventField<&kernelInteger<kProcessors>>("hwncpu", "hw.ncpu"),
        zrm_eventField<&kernelInteger<kPhysicalMemory>>("hwphysmem",
                                                        "hw.physmem, its lowest 32 bits"),
        zrm_eventField<&kernelIntegerText<kHostId>>("kernhostid", "kern.hostid in decimal"),
        zrm_eventField<&kernelText<kHostName>>("kernhostname", "kern.hostname"),
        zrm_eventField<&unreadRevision>("kernosrevision", "always -1"),
        zrm_eventField<&kernelText<kSystemType>>("kernostype", "kern.ostype"),
    };
    return kFields;
}
