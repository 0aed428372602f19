// What kill -9 costs a reporting host.
#pragma once

#include "Benchmarks/ZRMBenchmark.h"

// Kills it so many times at each of two speeds, by Tests/Crash/crash.py. Throws where what was
// stored is lost or the store does not open.
ZRMFigures zrm_measureKills(int kills);
