#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

#include <openssl/crypto.h>
#include <openssl/err.h>

void zrm_prepareOpenSSL() {
    static const int prepared = OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    static_cast<void>(prepared);
}

ZRMLinuxOpenSSLErrors::ZRMLinuxOpenSSLErrors() {
    zrm_prepareOpenSSL();  // a mark may be the first use
    ERR_set_mark();
}

ZRMLinuxOpenSSLErrors::~ZRMLinuxOpenSSLErrors() {
    ERR_pop_to_mark();
}
