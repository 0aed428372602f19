// The library's own threads.
#pragma once

#include <functional>

// Starts a detached thread on which every signal is blocked, so that the host's handlers never run
// there. The name shows in debuggers (15 bytes at most). False when the system gives no thread.
bool zrm_startThread(const char* name, std::function<void()> body);
