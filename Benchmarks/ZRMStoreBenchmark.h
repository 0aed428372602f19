// Measures what a backlog costs the store.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

ZRMFigures zrm_measureStore();
