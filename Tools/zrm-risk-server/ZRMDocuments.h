// The documents that the server signs: the settings and the devices' tags.
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Tools/zrm-risk-server/ZRMDocumentSigner.h"

// The settings file cannot be served as it is.
class ZRMUnusableSettings : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// An ISO 8601 duration as it stands ("PT2H"), or a number of seconds, minutes or hours ("90s",
// "30m", "2h") as one; absent for any other text.
std::optional<std::string> zrm_isoDurationFromText(std::string_view text);

// From any thread.
class ZRMDocuments {
  public:
    ZRMDocuments(std::shared_ptr<const ZRMSigningChain> chain, ZRMDocumentSigner signer,
                 std::string settingsFile, std::string tagInterval, ZRMMisbehaviours misbehaviours);

    [[nodiscard]] const ZRMSigningChain& chain() const { return *chain_; }

    // The signed settings of the file as it is now; absent without a file. Throws
    // ZRMUnusableSettings where it holds no JSON object.
    [[nodiscard]] std::optional<std::string> settings() const;

    // A signed tag: the one that the device shows, where that is a tag of this server's form, else
    // a new one.
    [[nodiscard]] std::string tag(std::string_view shownTag) const;

  private:
    const std::shared_ptr<const ZRMSigningChain> chain_;
    const ZRMDocumentSigner signer_;
    const std::string settingsFile_;
    const std::string tagInterval_;
    const ZRMMisbehaviours misbehaviours_;
};
