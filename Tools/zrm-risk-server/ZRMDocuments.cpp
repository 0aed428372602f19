#include "Tools/zrm-risk-server/ZRMDocuments.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>

#include <boost/json/parse.hpp>
#include <openssl/rand.h>

namespace {

constexpr std::size_t kUuidLength = 36;

bool isHyphenPlace(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

// In upper case, as a client shows it.
bool isUuid(std::string_view text) {
    if (text.size() != kUuidLength) {
        return false;
    }
    for (std::size_t index = 0; index < text.size(); ++index) {
        const char letter = text[index];
        const bool isDigit = (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'F');
        if (isHyphenPlace(index) ? letter != '-' : !isDigit) {
            return false;
        }
    }
    return true;
}

std::string randomUuid() {
    std::array<unsigned char, 16> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
        throw std::runtime_error("no random bytes");
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const auto byte : bytes) {
        if (isHyphenPlace(text.size())) {
            text += '-';
        }
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'F' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return result;
}

boost::json::object readObject(std::ifstream& file) {
    std::ostringstream text;
    text << file.rdbuf();
    boost::system::error_code failure;
    const auto value = boost::json::parse(text.str(), failure);
    if (failure || !value.is_object()) {
        throw ZRMUnusableSettings("the settings file holds no JSON object");
    }
    return value.get_object();
}

// Breaks the rule of one key of each kind.
void breakRules(boost::json::object& config) {
    config["statisticsUrl"] = "ftp://risk.example.com/stat";
    config["configUpdateInterval"] = "soon";
    config["execSessionTimeout"] = "";
    config["vpnEventDisabled"] = "";
    config["iosCallActiveStateCheckCount"] = 100;
}

}  // namespace

std::optional<std::string> zrm_isoDurationFromText(std::string_view text) {
    if (text.starts_with('P') && text.size() > 2) {
        return std::string(text);
    }
    constexpr std::string_view kUnits = "smh";
    constexpr std::size_t kLongest = 9;
    const auto digits = text.substr(0, text.size() - std::min<std::size_t>(text.size(), 1));
    if (digits.empty() || digits.size() > kLongest ||
        digits.find_first_not_of("0123456789") != std::string_view::npos ||
        kUnits.find(text.back()) == std::string_view::npos) {
        return std::nullopt;
    }
    return "PT" + std::string(digits) + static_cast<char>(text.back() - 'a' + 'A');
}

ZRMDocuments::ZRMDocuments(std::shared_ptr<const ZRMSigningChain> chain, ZRMDocumentSigner signer,
                           std::string settingsFile, std::string tagInterval,
                           ZRMMisbehaviours misbehaviours)
    : chain_(std::move(chain)),
      signer_(std::move(signer)),
      settingsFile_(std::move(settingsFile)),
      tagInterval_(std::move(tagInterval)),
      misbehaviours_(std::move(misbehaviours)) {}

std::optional<std::string> ZRMDocuments::settings() const {
    std::ifstream file(settingsFile_, std::ios::binary);
    if (settingsFile_.empty() || !file) {
        return std::nullopt;
    }
    auto config = readObject(file);
    if (misbehaviours_.contains(ZRMMisbehaviour::OutOfRange)) {
        breakRules(config);
    }
    const char* const key =
        misbehaviours_.contains(ZRMMisbehaviour::MissingConfig) ? "settings" : "config";
    return signer_.sign({{key, std::move(config)}});
}

std::string ZRMDocuments::tag(std::string_view shownTag) const {
    boost::json::object payload;
    if (!misbehaviours_.contains(ZRMMisbehaviour::MissingConfig)) {
        payload["uuid"] = isUuid(shownTag) ? lowered(shownTag) : randomUuid();
    }
    payload["i"] =
        misbehaviours_.contains(ZRMMisbehaviour::OutOfRange) ? "PT-2H" : tagInterval_.c_str();
    return signer_.sign(payload);
}
