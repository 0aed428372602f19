// Where queues' tasks run: the worker pool, sequences over it, threads of their own.
#pragma once

#include "ZRMPlatform/Ports/ZRMQueue.h"

// Takes a task to be run later; from any thread. A lane is never taken down: what was handed over
// runs unless the process exits first.
using ZRMLinuxLane = std::function<void(ZRMTask)>;

// Straight to the pool: tasks start in order and run side by side.
ZRMLinuxLane zrm_concurrentLane();

// One at a time and in order, on whichever worker is free.
ZRMLinuxLane zrm_makeSerialLane();

// One at a time and in order, on a thread that serves this lane alone.
ZRMLinuxLane zrm_makeThreadLane(const char* threadName);
