#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Certificate/ZRMCertificateProvider.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

constexpr const char* kBundleName = "ZRMMobileKitResources.bundle";
constexpr const char* kCertificateFileName = "VelorinRootCA.crt";

}  // namespace

ZRMData ZRMCertificateProvider::rootCertificate(const ZRMResourceBundles& bundles,
                                                const ZRMFileManager& fileManager) {
    const auto bundle = bundles.pathForBundle(kBundleName);
    if (!bundle) {
        zrm_logError(nullptr, std::string("Error: Bundle '") + kBundleName + "' not found");
        return {};
    }
    auto certificate = fileManager.readFile(*bundle + "/" + kCertificateFileName);
    return certificate ? std::move(certificate).value() : ZRMData{};
}
