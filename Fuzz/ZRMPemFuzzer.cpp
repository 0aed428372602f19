// Certificates as PEM: what was read is what stands between the first pair of lines, and reads the
// same when it is written anew.
#include <string>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMPemCertificate.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----";
    constexpr std::string_view kEnd = "-----END CERTIFICATE-----";
    const auto read = zrm_certificateFromPem({input.begin(), input.end()});
    if (!read) {
        return;
    }
    const auto text = zrm_textOfInput(input);
    const auto begin = text.find(kBegin);
    ZRM_FUZZ_ASSERT(begin != std::string_view::npos);
    ZRM_FUZZ_ASSERT(text.find(kEnd, begin + kBegin.size()) != std::string_view::npos);
    const auto anew = std::string(kBegin) + "\n" + zrm_base64String(*read) + std::string(kEnd);
    ZRM_FUZZ_ASSERT(zrm_certificateFromPem(zrm_dataFromText(anew)) == read);
}
