// Counts the program's writes to stable storage by thread.
#pragma once

#include <cstdint>

// The program's own fsync() and fdatasync() stand before the system's, so that those of every
// library are counted. From any thread.
std::uint64_t zrm_syncsOfThisThread();
std::uint64_t zrm_syncsOfTheProcess();
