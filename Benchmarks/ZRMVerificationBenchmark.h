// Measures the verification of a signed document.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureVerification();
