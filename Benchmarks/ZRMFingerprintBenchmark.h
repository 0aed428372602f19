// Measures the building of the fingerprint event.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureFingerprint();
