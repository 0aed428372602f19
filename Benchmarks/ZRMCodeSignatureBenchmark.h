// Measures the hashing of a code signature and the recording of loaded images.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureCodeSignature();
ZRMFigures zrm_measureLoadedImages();
