// Measures how stored events leave the device, and how it behaves where they cannot.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureDrain();
ZRMFigures zrm_measureExit();
ZRMFigures zrm_measureAttemptsWithoutNetwork();
