// Measures what a report costs its caller, the store and the memory.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureReportsFlatOut();
ZRMFigures zrm_measureReportsAtIntervals();
ZRMFigures zrm_measureReportsOverBareCost();
