// Measures what a host ships.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureLibrary();
