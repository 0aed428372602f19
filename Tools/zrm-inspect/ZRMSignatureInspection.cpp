#include "Tools/zrm-inspect/ZRMSignatureInspection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMExecutableHeader.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.h"

namespace {

ZRMJsonValue valueOf(const std::optional<std::string>& text) {
    return text ? ZRMJsonValue(*text) : ZRMJsonValue(nullptr);
}

ZRMJsonValue valueOf(const std::optional<std::vector<std::string>>& texts) {
    if (!texts) {
        return nullptr;
    }
    ZRMJsonArray array;
    for (const auto& text : *texts) {
        array.emplace_back(text);
    }
    return array;
}

ZRMDictionary reportOf(const ZRMCodeSignatureDescriptor& descriptor) {
    return {{"hashType", static_cast<std::uint64_t>(descriptor.hashType())},
            {"codeDirectoryHash", valueOf(descriptor.codeDirectoryHash())},
            {"entitlementsHash", valueOf(descriptor.entitlementsHash())},
            {"requirementsHash", valueOf(descriptor.requirementsHash())},
            {"infoPlistHash", valueOf(descriptor.infoPlistHash())},
            {"slotsHash", valueOf(descriptor.slotHashes())}};
}

// The reader takes any magic for a 32-bit header; a file must say what it is.
bool isExecutable(const ZRMImageView& image) {
    constexpr std::array kMagics{0xfeedfaceU, 0xfeedfacfU, 0xcefaedfeU, 0xcffaedfeU};
    const auto magic = image.u32(0, ZRMByteOrder::Big);
    return magic && std::ranges::find(kMagics, *magic) != kMagics.end() &&
           ZRMExecutableHeader::fromImage(image).has_value();
}

ZRMDictionary reportOf(const ZRMUniversalSlice& slice, const ZRMCodeSignatureWatcher& watcher,
                       const ZRMSharedData& infoPlist) {
    ZRMJsonArray signatures;
    for (const auto& descriptor :
         watcher.codeSignatureOfImage(ZRMExecutableHeader::fromImage(slice.image), infoPlist)) {
        signatures.push_back(reportOf(descriptor));
    }
    return {{"offset", slice.offset}, {"signatures", std::move(signatures)}};
}

ZRMInspection failed(const ZRMError& error) {
    return {{{"slices", ZRMJsonArray()}, {"error", zrm_reportOfError(error)}}, false};
}

}  // namespace

ZRMInspection zrm_inspectSignature(const std::string& path, const std::string& infoPlistPath) {
    const auto bytes = zrm_readInspectedFile(path);
    if (!bytes) {
        return failed(bytes.error());
    }
    ZRMSharedData infoPlist;
    if (!infoPlistPath.empty()) {
        auto plist = zrm_readInspectedFile(infoPlistPath);
        if (!plist) {
            return failed(plist.error());
        }
        infoPlist = std::make_shared<const ZRMData>(std::move(plist).value());
    }
    const ZRMImageView file(bytes.value());
    const auto slices =
        zrm_slicesOfUniversalFile(file).value_or(std::vector<ZRMUniversalSlice>{{0, file}});
    if (slices.empty() || !std::ranges::all_of(slices, isExecutable, &ZRMUniversalSlice::image)) {
        return failed(zrm_inspectError(ZRMInspectErrorNotExecutable,
                                       path + " is no executable of the Mach-O format"));
    }
    const auto platform = ZRMPlatform::current();
    const ZRMCodeSignatureWatcher watcher(platform->loader, platform->mainBundle,
                                          platform->fileManager, platform->digests);
    ZRMJsonArray reports;
    for (const auto& slice : slices) {
        reports.push_back(reportOf(slice, watcher, infoPlist));
    }
    return {{{"slices", std::move(reports)}, {"error", nullptr}}, true};
}
