#include "Benchmarks/ZRMBenchmark.h"
#include "Benchmarks/ZRMBundleHashBenchmark.h"
#include "Benchmarks/ZRMCodeSignatureBenchmark.h"
#include "Benchmarks/ZRMFingerprintBenchmark.h"
#include "Benchmarks/ZRMVerificationBenchmark.h"

std::vector<ZRMBenchmark> zrm_benchmarks() {
    return {
        {"bundle-hash speed", zrm_measureBundleHashSpeed},
        {"bundle-hash memory", zrm_measureBundleHashMemory},
        {"code-signature", zrm_measureCodeSignature},
        {"fingerprint", zrm_measureFingerprint},
        {"loaded-images", zrm_measureLoadedImages},
        {"verification", zrm_measureVerification},
    };
}
