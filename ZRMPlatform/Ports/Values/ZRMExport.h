// Marks what the shared library shows to a host; everything else stays hidden in it.
#pragma once

#define ZRM_EXPORT __attribute__((visibility("default")))
