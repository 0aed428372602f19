#include "Benchmarks/ZRMActivationBenchmark.h"
#include "Benchmarks/ZRMBenchmark.h"
#include "Benchmarks/ZRMBundleHashBenchmark.h"
#include "Benchmarks/ZRMCodeSignatureBenchmark.h"
#include "Benchmarks/ZRMDrainBenchmark.h"
#include "Benchmarks/ZRMFingerprintBenchmark.h"
#include "Benchmarks/ZRMKillBenchmark.h"
#include "Benchmarks/ZRMLibraryBenchmark.h"
#include "Benchmarks/ZRMReportBenchmark.h"
#include "Benchmarks/ZRMStoreBenchmark.h"
#include "Benchmarks/ZRMVerificationBenchmark.h"

std::vector<ZRMBenchmark> zrm_benchmarks(int kills) {
    return {
        {"bundle-hash speed", zrm_measureBundleHashSpeed},
        {"bundle-hash memory", zrm_measureBundleHashMemory},
        {"reports-flat-out", zrm_measureReportsFlatOut},
        {"reports-at-intervals", zrm_measureReportsAtIntervals},
        {"reports-over-bare-cost", zrm_measureReportsOverBareCost},
        {"store", zrm_measureStore},
        {"activation", zrm_measureActivation},
        {"stored-settings", zrm_measureStoredSettings},
        {"analysis", zrm_measureAnalysis},
        {"drain", zrm_measureDrain},
        {"exit", zrm_measureExit},
        {"kills", [kills] { return zrm_measureKills(kills); }},
        {"attempts", zrm_measureAttemptsWithoutNetwork},
        {"library", zrm_measureLibrary},
        {"code-signature", zrm_measureCodeSignature},
        {"fingerprint", zrm_measureFingerprint},
        {"loaded-images", zrm_measureLoadedImages},
        {"verification", zrm_measureVerification},
    };
}
