// Keychain items in the desktop's Secret Service.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMKeychainItems.h"

// Connects to the Secret Service of the session; absent when there is no session bus, no service
// answers on it, or libsecret is not installed. libsecret is loaded by this call, not before. May
// block for as long as the bus takes to answer.
//
// Items lie in the default collection and match by attributes; a locked collection answers
// ZRMKeychainInteractionNotAllowed, since nobody may be there to unlock it.
std::shared_ptr<ZRMKeychainItems> zrm_connectSecretService();
