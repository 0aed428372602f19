#include "Tools/zrm-risk-server/ZRMMisbehaviour.h"

#include <array>

namespace {

struct Row {
    const char* name;
    ZRMMisbehaviour misbehaviour;
    const char* meaning;
};

constexpr std::array kRows{
    Row{"wrong-key", ZRMMisbehaviour::WrongKey, "the signature is by a key that is not the leaf's"},
    Row{"expired-leaf", ZRMMisbehaviour::ExpiredLeaf, "the leaf's time is over"},
    Row{"revoked-leaf", ZRMMisbehaviour::RevokedLeaf, "responder and list say revoked"},
    Row{"foreign-root", ZRMMisbehaviour::ForeignRoot, "the leaf comes from another root"},
    Row{"missing-signatures", ZRMMisbehaviour::MissingSignatures, "there is no \"signatures\""},
    Row{"bad-second-signature", ZRMMisbehaviour::BadSecondSignature,
        "two signatures, the second one bad"},
    Row{"corrupted-payload", ZRMMisbehaviour::CorruptedPayload,
        "the payload was changed after it was signed"},
    Row{"missing-config", ZRMMisbehaviour::MissingConfig,
        "settings without \"config\", a tag without \"uuid\""},
    Row{"out-of-range", ZRMMisbehaviour::OutOfRange,
        "settings that break their rules, a tag with a negative \"i\""},
    Row{"unpadded-header", ZRMMisbehaviour::UnpaddedHeader,
        "the protected header lacks its base64 padding"},
    Row{"alg-hs256", ZRMMisbehaviour::AlgHS256, "\"alg\" is \"HS256\""},
    Row{"alg-none", ZRMMisbehaviour::AlgNone, "\"alg\" is \"None\""},
};

}  // namespace

std::optional<ZRMMisbehaviour> zrm_misbehaviourFromText(std::string_view text) {
    for (const auto& row : kRows) {
        if (row.name == text) {
            return row.misbehaviour;
        }
    }
    return std::nullopt;
}

std::string zrm_misbehavioursHelp() {
    std::string help;
    for (const auto& row : kRows) {
        help.append(help.empty() ? "" : "; ").append(row.name).append(": ").append(row.meaning);
    }
    return help;
}
