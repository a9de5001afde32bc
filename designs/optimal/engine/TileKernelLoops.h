#pragma once

#include "designs/optimal/engine/TileKernels.h"

// The loops themselves, for a vector type `Lanes` of the including file. Nothing of the standard
// library may be called from here: what is compiled for wider instructions must not be picked by
// the linker for other callers. That rules out std::array as well.
// NOLINTBEGIN(modernize-avoid-c-arrays)
namespace DOpt {
namespace {

template <class Lanes>
class TileLoops {
  public:
    static constexpr TileKernels Kernels() {
        return {Variances, Enter, Exchange, Products, Multiply, SubtractSquare, AddProduct};
    }

  private:
    using Doubles = typename Lanes::Doubles;
    using Floats = typename Lanes::Floats;
    static constexpr std::size_t cLanes = sizeof(Doubles) / sizeof(double);
    static constexpr std::size_t cParts = TileView::cWidth / cLanes;
    // Columns of the inverse taken in one pass over a tile's cells.
    static constexpr std::size_t cStep = 4;

    [[gnu::always_inline]] static inline Doubles Widen(const float* cells) {
        Floats narrow;
        __builtin_memcpy(&narrow, cells, sizeof narrow);
        return __builtin_convertvector(narrow, Doubles);
    }
    [[gnu::always_inline]] static inline Doubles Load(const double* cells) {
        Doubles lanes;
        __builtin_memcpy(&lanes, cells, sizeof lanes);
        return lanes;
    }
    [[gnu::always_inline]] static inline void Store(double* cells, const Doubles& lanes) {
        __builtin_memcpy(cells, &lanes, sizeof lanes);
    }

    template <std::size_t Vectors>
    [[gnu::always_inline]] static inline void Sum(const float* tile,
                                                  std::size_t columns,
                                                  const double* const (&vectors)[Vectors],
                                                  Doubles (&sums)[Vectors][cParts]) {
#pragma GCC unroll 8
        for (std::size_t v = 0; v < Vectors; ++v) {
#pragma GCC unroll 8
            for (std::size_t part = 0; part < cParts; ++part) {
                sums[v][part] = Doubles{};
            }
        }
        for (std::size_t a = 0; a < columns; ++a, tile += TileView::cWidth) {
#pragma GCC unroll 8
            for (std::size_t part = 0; part < cParts; ++part) {
                const Doubles cells = Widen(tile + part * cLanes);
#pragma GCC unroll 8
                for (std::size_t v = 0; v < Vectors; ++v) {
                    sums[v][part] += cells * vectors[v][a];
                }
            }
        }
    }

    // `Rows` rows of the inverse from `row` on: d += x_a * (M_a . x) for each of them, in order.
    template <std::size_t Rows>
    [[gnu::always_inline]] static inline void AddRows(const float* tile,
                                                      std::size_t columns,
                                                      const double* row,
                                                      std::size_t stride,
                                                      std::size_t first,
                                                      Doubles (&d)[cParts]) {
        const double* vectors[Rows];
#pragma GCC unroll 8
        for (std::size_t r = 0; r < Rows; ++r) {
            vectors[r] = row + r * stride;
        }
        Doubles sums[Rows][cParts];
        Sum<Rows>(tile, columns, vectors, sums);
#pragma GCC unroll 8
        for (std::size_t r = 0; r < Rows; ++r) {
            const float* const cells = tile + (first + r) * TileView::cWidth;
#pragma GCC unroll 8
            for (std::size_t part = 0; part < cParts; ++part) {
                d[part] += Widen(cells + part * cLanes) * sums[r][part];
            }
        }
    }

    static void Variances(const TileView& tiles,
                          const double* inverse,
                          std::size_t stride,
                          double* d) {
        const float* tile = tiles.cells;
        for (std::size_t t = 0; t < tiles.tiles; ++t, tile += tiles.stride) {
            Doubles sums[cParts] = {};
            std::size_t a = 0;
            for (; a + cStep <= tiles.columns; a += cStep) {
                AddRows<cStep>(tile, tiles.columns, inverse + a * stride, stride, a, sums);
            }
            for (; a < tiles.columns; ++a) {
                AddRows<1>(tile, tiles.columns, inverse + a * stride, stride, a, sums);
            }
            for (std::size_t part = 0; part < cParts; ++part, d += cLanes) {
                Store(d, sums[part]);
            }
        }
    }

    static void Enter(const TileView& tiles, RankOne entering, double* d) {
        const double* const vectors[1] = {entering.u};
        const float* tile = tiles.cells;
        for (std::size_t t = 0; t < tiles.tiles; ++t, tile += tiles.stride) {
            Doubles sums[1][cParts];
            Sum<1>(tile, tiles.columns, vectors, sums);
            for (std::size_t part = 0; part < cParts; ++part, d += cLanes) {
                Store(d, Load(d) - sums[0][part] * sums[0][part] / entering.t);
            }
        }
    }

    static void Exchange(const TileView& tiles, RankOne entering, RankOne leaving, double* d) {
        const double* const vectors[2] = {entering.u, leaving.u};
        const float* tile = tiles.cells;
        for (std::size_t t = 0; t < tiles.tiles; ++t, tile += tiles.stride) {
            Doubles sums[2][cParts];
            Sum<2>(tile, tiles.columns, vectors, sums);
            for (std::size_t part = 0; part < cParts; ++part, d += cLanes) {
                const Doubles in = sums[0][part];
                const Doubles out = sums[1][part];
                const Doubles entered = Load(d) - (in / entering.t) * in;
                Store(d, entered + (out / leaving.t) * out);
            }
        }
    }

    static void Products(const TileView& tiles,
                         const std::size_t* list,
                         std::size_t count,
                         const double* const* vectors,
                         double* const* products) {
        const double* const local[TileKernels::cVectors] = {vectors[0], vectors[1], vectors[2]};
        for (std::size_t i = 0; i < count; ++i) {
            Doubles sums[TileKernels::cVectors][cParts];
            Sum<TileKernels::cVectors>(
                tiles.cells + list[i] * tiles.stride, tiles.columns, local, sums);
            const std::size_t first = list[i] * TileView::cWidth;
#pragma GCC unroll 8
            for (std::size_t v = 0; v < TileKernels::cVectors; ++v) {
#pragma GCC unroll 8
                for (std::size_t part = 0; part < cParts; ++part) {
                    Store(products[v] + first + part * cLanes, sums[v][part]);
                }
            }
        }
    }

    static void Multiply(
        const double* columns, std::size_t size, std::size_t stride, const double* x, double* u) {
        for (std::size_t first = 0; first < stride; first += TileView::cWidth) {
            Doubles sums[cParts] = {};
            const double* column = columns + first;
            for (std::size_t b = 0; b < size; ++b, column += stride) {
#pragma GCC unroll 8
                for (std::size_t part = 0; part < cParts; ++part) {
                    sums[part] += Load(column + part * cLanes) * x[b];
                }
            }
#pragma GCC unroll 8
            for (std::size_t part = 0; part < cParts; ++part) {
                Store(u + first + part * cLanes, sums[part]);
            }
        }
    }

    static void SubtractSquare(double* matrix,
                               std::size_t size,
                               std::size_t stride,
                               RankOne point) {
        for (std::size_t b = 0; b < size; ++b, matrix += stride) {
            for (std::size_t a = 0; a < stride; a += cLanes) {
                const Doubles change = Load(point.u + a) * point.u[b] / point.t;
                Store(matrix + a, Load(matrix + a) - change);
            }
        }
    }

    static void AddProduct(
        double* columns, std::size_t size, std::size_t stride, const double* w, const double* u) {
        for (std::size_t b = 0; b < size; ++b, columns += stride) {
            for (std::size_t a = 0; a < stride; a += cLanes) {
                Store(columns + a, Load(columns + a) + Load(w + a) * u[b]);
            }
        }
    }
};

}  // namespace
}  // namespace DOpt
// NOLINTEND(modernize-avoid-c-arrays)
