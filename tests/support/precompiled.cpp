// Carries the precompiled test framework that all test programs reuse.
