// Measures the digest over the files of a bundle.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureBundleHashSpeed();
ZRMFigures zrm_measureBundleHashMemory();
