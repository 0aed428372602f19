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
std::string textOf(const ZRMKernelValues& values) {
    return values.text(Name).value_or(std::string());
}

template <const char* Name>
std::int32_t integerOf(const ZRMKernelValues& values) {
    return values.integer(Name).value_or(0);
}

template <const char* Name>
std::string integerTextOf(const ZRMKernelValues& values) {
    const auto integer = values.integer(Name);
    return integer ? std::to_string(*integer) : std::string();
}

std::string unreadRevision(const ZRMKernelValues&) {
    return "-1";
}

}  // namespace

std::span<const ZRMEventField<ZRMKernelValues>> zrm_fingerprintKernelFields() {
    static constexpr std::array kFields{
        zrm_eventField<&textOf<kMachine>>("hwmachine", "hw.machine"),
        zrm_eventField<&textOf<kModel>>("hwmodel", "hw.model"),
        zrm_eventField<&integerOf<kProcessors>>("hwncpu", "hw.ncpu"),
        zrm_eventField<&integerOf<kPhysicalMemory>>("hwphysmem", "hw.physmem, its lowest 32 bits"),
        zrm_eventField<&integerTextOf<kHostId>>("kernhostid", "kern.hostid in decimal"),
        zrm_eventField<&textOf<kHostName>>("kernhostname", "kern.hostname"),
        zrm_eventField<&unreadRevision>("kernosrevision", "always -1"),
        zrm_eventField<&textOf<kSystemType>>("kernostype", "kern.ostype"),
    };
    return kFields;
}
