#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMApplicationSignatureEvent.h"

#include <array>
#include <string>
#include <utility>

namespace {

using Descriptor = ZRMCodeSignatureDescriptor;

// A hash that is absent is written as an empty text.
template <auto Hash>
std::string textOf(const Descriptor& descriptor) {
    return (descriptor.*Hash)().value_or(std::string());
}

std::uint64_t hashTypeOf(const Descriptor& descriptor) {
    return static_cast<std::uint64_t>(descriptor.hashType());
}

std::vector<std::string> slotsHashOf(const Descriptor& descriptor) {
    return descriptor.slotHashes().value_or(std::vector<std::string>());
}

}  // namespace

std::span<const ZRMEventField<ZRMCodeSignatureDescriptor>>
ZRMApplicationSignatureEvent::entryTable() {
    static constexpr std::array kFields{
        zrm_eventField<&textOf<&Descriptor::codeDirectoryHash>>(
            "codeDirectoryHash", "hash of the code directory, or empty"),
        zrm_eventField<&textOf<&Descriptor::entitlementsHash>>(
            "entitlementsHash", "hash of the entitlements, or empty"),
        zrm_eventField<&textOf<&Descriptor::requirementsHash>>(
            "requirementsHash", "hash of the requirements, or empty"),
        zrm_eventField<&textOf<&Descriptor::infoPlistHash>>("infoPlistHash",
                                                            "hash of Info.plist, or empty"),
        zrm_eventField<&hashTypeOf>("hashType", "1 SHA-1, 2 SHA-256"),
        zrm_eventField<&slotsHashOf>("slotsHash", "hashes of the code pages in memory, in order"),
    };
    return kFields;
}

ZRMEventTable<ZRMApplicationSignatureEvent> ZRMApplicationSignatureEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMApplicationSignatureEvent::applicationSignatures>(
            "applicationSignatures", "one entry for each digest"),
    };
    return {"IOSApplicationSignatureEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMApplicationSignatureEvent::ZRMApplicationSignatureEvent(
    Signature signature, std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), signature_(std::move(signature)) {}

std::vector<ZRMDictionary> ZRMApplicationSignatureEvent::applicationSignatures() const {
    std::vector<ZRMDictionary> entries;
    for (const auto& descriptor : signature_) {
        entries.push_back(zrm_eventBody(descriptor, entryTable()));
    }
    return entries;
}
