// The certificate authorities that servers are checked against.
#pragma once

#include <string>

// As libcurl takes them; either may be empty.
struct ZRMLinuxAuthorities {
    std::string file;       // of certificates in PEM
    std::string directory;  // of such files, each under the hash of its subject
};

// Those of the system. A directory alone where it holds hashed names: a connection then reads the
// one certificate it needs instead of all of them, which takes tens of milliseconds and megabytes.
ZRMLinuxAuthorities zrm_systemAuthorities();

// The same, of what libcurl would take.
ZRMLinuxAuthorities zrm_preferredAuthorities(const ZRMLinuxAuthorities& offered);
