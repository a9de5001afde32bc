#include "designs/optimal/engine/TileKernels.h"

#include "designs/optimal/engine/TileKernelLoops.h"

namespace DOpt {

namespace {

// What every machine of the platform has.
struct BaselineLanes {
    using Doubles [[gnu::vector_size(16)]] = double;
    using Floats [[gnu::vector_size(8)]] = float;
};

bool HasWideInstructions() {
#if defined(__x86_64__)
    return __builtin_cpu_supports("avx2") != 0;
#else
    return false;
#endif
}

}  // namespace

const TileKernels& BaselineTileKernels() {
    static constexpr TileKernels kernels = TileLoops<BaselineLanes>::Kernels();
    return kernels;
}

const TileKernels& BestTileKernels() {
    static const TileKernels& best =
        HasWideInstructions() ? WideTileKernels() : BaselineTileKernels();
    return best;
}

}  // namespace DOpt
