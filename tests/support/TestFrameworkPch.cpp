// Carries the precompiled header of the test framework; there is nothing else in it.
