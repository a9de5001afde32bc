// Compiled for wider instructions than the platform's baseline, without contraction; called only
// where the machine has them.
#include "designs/optimal/engine/TileKernelLoops.h"
#include "designs/optimal/engine/TileKernels.h"

namespace DOpt {

namespace {

struct WideLanes {
    using Doubles [[gnu::vector_size(32)]] = double;
    using Floats [[gnu::vector_size(16)]] = float;
};

}  // namespace

const TileKernels& WideTileKernels() {
    static constexpr TileKernels kernels = TileLoops<WideLanes>::Kernels();
    return kernels;
}

}  // namespace DOpt
