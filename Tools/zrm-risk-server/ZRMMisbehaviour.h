// What the server does wrong on purpose with the documents it signs, so that clients can be tried.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>

enum class ZRMMisbehaviour {
    WrongKey,            // the signature is made with a key that is not the leaf's
    ExpiredLeaf,         // the leaf's time is over
    RevokedLeaf,         // the responder and the list say that the leaf is revoked
    ForeignRoot,         // the leaf was issued by a root that nobody pins
    MissingSignatures,   // the object has no "signatures"
    BadSecondSignature,  // two signatures, the second of which does not match
    CorruptedPayload,    // the payload was changed after it was signed
    MissingConfig,       // the settings have no "config", the tag no "uuid"
    OutOfRange,          // settings that break the rules of their keys, a tag with a negative "i"
    UnpaddedHeader,      // the protected header's base64 lacks its padding
    AlgHS256,            // the protected header names the algorithm HS256
    AlgNone,             // the protected header names the algorithm None
};
using ZRMMisbehaviours = std::set<ZRMMisbehaviour>;

// By the name that the command line gives it, such as "wrong-key"; absent for any other text.
std::optional<ZRMMisbehaviour> zrm_misbehaviourFromText(std::string_view text);

// Each name with what it does, for the help.
std::string zrm_misbehavioursHelp();
