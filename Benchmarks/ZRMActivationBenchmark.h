// Measures the activation and the analysis of the environment.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureActivation();
ZRMFigures zrm_measureStoredSettings();
ZRMFigures zrm_measureAnalysis();
