#pragma once

#include <cstddef>

namespace DOpt {

/// Candidates in tiles of eight: the tile's cells of column 1, of column 2 and so on. A sum over
/// the columns runs for eight candidates side by side in registers while the memory is read from
/// front to back, and each candidate's sum keeps the order of its terms. Results are therefore
/// those of the plain loop, bit for bit, with every width of the machine's instructions.
struct TileView {
    static constexpr std::size_t cWidth = 8;

    const float* cells = nullptr;
    std::size_t tiles = 0;
    std::size_t stride = 0;   // cells from one tile to the next
    std::size_t columns = 0;  // columns that count
};

/// A symmetric update of the inverse information matrix, M -= or += u u' / t, as the variances see
/// it.
struct RankOne {
    const double* u = nullptr;
    double t = 1;
};

/// The inner loops of the exchange, once for each width of instructions. Matrices are those of
/// SquareMatrix: `stride` doubles a row; vectors over the columns are padded alike. Vectors over
/// the candidates have whole tiles.
struct TileKernels {
    static constexpr int cVectors = 3;

    /// d_k = sum over a of x_ka * (sum over b of M_ab * x_kb), M given by rows.
    void (*variances)(const TileView& tiles, const double* inverse, std::size_t stride, double* d);
    /// d_k -= (x_k'u)^2 / t
    void (*enter)(const TileView& tiles, RankOne entering, double* d);
    /// d_k -= (x_k'u / t) * (x_k'u) for the entering point, then += for the leaving one.
    void (*exchange)(const TileView& tiles, RankOne entering, RankOne leaving, double* d);
    /// The products with cVectors vectors at once, for the `count` listed tiles only; those with
    /// vector v are stored from products[v] on.
    void (*products)(const TileView& tiles,
                     const std::size_t* list,
                     std::size_t count,
                     const double* const* vectors,
                     double* const* products);
    /// u = M x, M given by columns: each element is summed in the order of x.
    void (*multiply)(
        const double* columns, std::size_t size, std::size_t stride, const double* x, double* u);
    /// M_ab -= u_a * u_b / t, the product formed first.
    void (*subtractSquare)(double* matrix, std::size_t size, std::size_t stride, RankOne point);
    /// M_ab += w_a * u_b, M given by columns. A negative w subtracts.
    void (*addProduct)(
        double* columns, std::size_t size, std::size_t stride, const double* w, const double* u);
};

[[nodiscard]] const TileKernels& BaselineTileKernels();
[[nodiscard]] const TileKernels& WideTileKernels();
/// Those of the widest instructions that this machine has.
[[nodiscard]] const TileKernels& BestTileKernels();

}  // namespace DOpt
