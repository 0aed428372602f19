// What has to hold before any other use of OpenSSL.
#pragma once

// Keeps OpenSSL from tearing itself down at process exit, where threads of the library may still be
// in the middle of a handshake. Cheap after the first call; from any thread.
void zrm_prepareOpenSSL();

// While it lives, OpenSSL's failures on this thread add to the error queue; then they are taken out
// of it again, so that a host which looks there finds its own alone.
class ZRMLinuxOpenSSLErrors {
  public:
    ZRMLinuxOpenSSLErrors();
    ~ZRMLinuxOpenSSLErrors();
    ZRMLinuxOpenSSLErrors(const ZRMLinuxOpenSSLErrors&) = delete;
    ZRMLinuxOpenSSLErrors& operator=(const ZRMLinuxOpenSSLErrors&) = delete;
};
