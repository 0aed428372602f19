#include "Benchmarks/ZRMBenchmark.h"
#include "Benchmarks/ZRMCodeSignatureBenchmark.h"
#include "Benchmarks/ZRMVerificationBenchmark.h"

std::vector<ZRMBenchmark> zrm_benchmarks() {
    return {
        {"code-signature", zrm_measureCodeSignature},
        {"loaded-images", zrm_measureLoadedImages},
        {"verification", zrm_measureVerification},
    };
}
