// The library's own threads.
#pragma once

#include <functional>

// Starts a detached thread on which every signal is blocked, so that the host's handlers never run
// there. It is scheduled as a batch: when it is woken, it does not take the processor from the
// thread that runs there, which may be the host's. The name shows in debuggers (15 bytes at most).
// False when the system gives no thread.
bool zrm_startThread(const char* name, std::function<void()> body);
