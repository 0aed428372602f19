#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMPemCertificate.h"

#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----";
constexpr std::string_view kEnd = "-----END CERTIFICATE-----";

}  // namespace

std::optional<ZRMData> zrm_certificateFromPem(const ZRMData& pem) {
    const std::string_view text(reinterpret_cast<const char*>(pem.data()), pem.size());
    const auto begin = text.find(kBegin);
    if (begin == std::string_view::npos || !zrm_isValidUtf8(text)) {
        return std::nullopt;
    }
    const auto content = begin + kBegin.size();
    // At least one character stands between the lines.
    const auto end = text.find(kEnd, content + 1);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    std::string base64(text.substr(content, end - content));
    std::erase_if(base64, [](char letter) { return letter == '\n' || letter == '\r'; });
    return zrm_dataFromBase64String(base64);
}
