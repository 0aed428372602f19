#include "Tools/zrm-risk-server/ZRMDocumentSigner.h"

#include <stdexcept>

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include "Tools/zrm-risk-server/ZRMBase64.h"

namespace {

using Context = std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)>;

std::string signatureBytes(EVP_PKEY* key, std::string_view input) {
    const Context context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(input.data());
    std::size_t length = 0;
    std::string signature;
    if (context != nullptr &&
        EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key) == 1 &&
        EVP_DigestSign(context.get(), nullptr, &length, bytes, input.size()) == 1) {
        signature.resize(length);
        if (EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()),
                           &length, bytes, input.size()) == 1) {
            signature.resize(length);
            return signature;
        }
    }
    throw std::runtime_error("a document cannot be signed");
}

}  // namespace

ZRMDocumentSigner::ZRMDocumentSigner(std::shared_ptr<const ZRMSigningChain> chain,
                                     std::string chainUrl, ZRMMisbehaviours misbehaviours)
    : chain_(std::move(chain)),
      chainUrl_(std::move(chainUrl)),
      misbehaviours_(std::move(misbehaviours)),
      wrongKey_(zrm_makeKey(ZRMKeyKind::Rsa2048)) {}

std::string ZRMDocumentSigner::sign(const boost::json::object& payload) const {
    const auto text = boost::json::serialize(payload);
    const auto encoded = zrm_base64UrlText(text);
    const bool isWrong = misbehaviours_.contains(ZRMMisbehaviour::WrongKey);
    boost::json::array signatures{signatureOf(encoded, isWrong ? wrongKey_.get() : chain_->key())};
    if (misbehaviours_.contains(ZRMMisbehaviour::BadSecondSignature)) {
        signatures.push_back(signatureOf(encoded, wrongKey_.get()));
    }
    boost::json::object object;
    // Still the same JSON, but not what was signed.
    object["payload"] = misbehaviours_.contains(ZRMMisbehaviour::CorruptedPayload)
                            ? zrm_base64UrlText(text + " ")
                            : encoded;
    if (!misbehaviours_.contains(ZRMMisbehaviour::MissingSignatures)) {
        object["signatures"] = std::move(signatures);
    }
    return boost::json::serialize(object);
}

std::string ZRMDocumentSigner::protectedHeader() const {
    boost::json::object header{{"alg", "RS256"}};
    if (misbehaviours_.contains(ZRMMisbehaviour::AlgHS256)) {
        header["alg"] = "HS256";
    }
    if (misbehaviours_.contains(ZRMMisbehaviour::AlgNone)) {
        header["alg"] = "None";
    }
    if (!misbehaviours_.contains(ZRMMisbehaviour::UnpaddedHeader)) {
        return zrm_base64Text(boost::json::serialize(header));
    }
    // Of a length that calls for padding.
    header["typ"] = "JOSE";
    auto text = zrm_base64Text(boost::json::serialize(header));
    while (text.ends_with('=')) {
        text.pop_back();
    }
    return text;
}

boost::json::object ZRMDocumentSigner::signatureOf(std::string_view payload, EVP_PKEY* key) const {
    const auto header = protectedHeader();
    boost::json::object signature;
    signature["protected"] = header;
    signature["header"] = unprotectedHeader();
    signature["signature"] =
        zrm_base64UrlText(signatureBytes(key, header + "." + std::string(payload)));
    return signature;
}

boost::json::object ZRMDocumentSigner::unprotectedHeader() const {
    if (!chainUrl_.empty()) {
        return {{"x5u", chainUrl_}};
    }
    boost::json::array certificates;
    for (const auto& der : chain_->certificates()) {
        certificates.emplace_back(zrm_base64Text(der));
    }
    return {{"x5c", std::move(certificates)}};
}
