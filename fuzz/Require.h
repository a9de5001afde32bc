#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program when a fuzz target finds something wrong, also where assertions are off.
inline void Require(bool condition, const char* claim) {
    if (!condition) {
        std::fprintf(stderr, "Does not hold: %s\n", claim);
        std::abort();
    }
}
