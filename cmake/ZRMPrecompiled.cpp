// Carries the precompiled header for the modules that reuse it.
