// What has to hold before any other use of OpenSSL.
#pragma once

// Keeps OpenSSL from tearing itself down at process exit, where threads of the library may still be
// in the middle of a handshake. Cheap after the first call; from any thread.
void zrm_prepareOpenSSL();
