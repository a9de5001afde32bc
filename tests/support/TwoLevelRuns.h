#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/Factors.h"

/// The runs of a two-level design, packed into bits, for proofs over many designs. Factors and
/// blocks count from 0. It knows nothing of generators: whatever it tells comes from the runs.
class TwoLevelRuns {
  public:
    /// Reads the first `runs` rows of a design matrix: `factors` columns of -1 and 1 or of letter
    /// codes 65 and 66, and the letters of the column behind them if `hasBlocks`.
    /// @throws std::invalid_argument for any other cell
    TwoLevelRuns(const NCDataMatrix<float>& matrix, int runs, int factors, bool hasBlocks)
        : factors_(factors), columns_(static_cast<std::size_t>(factors), EmptyColumn(runs)) {
        for (int run = 0; run < runs; ++run) {
            std::uint64_t row = 0;
            for (int factor = 0; factor < factors; ++factor) {
                if (IsHigh(matrix(run + 1, factor + 1))) {
                    row |= std::uint64_t{1} << factor;
                    SetBit(columns_[static_cast<std::size_t>(factor)], run);
                }
            }
            rows_.push_back(row);
            const float letter = hasBlocks ? matrix(run + 1, factors + 1) : cFirst;
            const bool inRange = letter >= cFirst && letter <= cFirst + cMaxBlocks;
            const auto block = inRange ? static_cast<std::size_t>(letter - cFirst) : 0;
            if (letter != cFirst + static_cast<float>(block)) {
                throw std::invalid_argument("no block letter");
            }
            if (block >= blocks_.size()) {
                blocks_.resize(block + 1, EmptyColumn(runs));
            }
            SetBit(blocks_[block], run);
        }
    }

    [[nodiscard]] int RunCount() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] int FactorCount() const { return factors_; }
    [[nodiscard]] int BlockCount() const { return static_cast<int>(blocks_.size()); }
    [[nodiscard]] int RunsOfBlock(int block) const { return Count(At(blocks_, block)); }

    /// A_0 to A_longest of the generalised word-length pattern (Xu and Wu, 2001), from the
    /// distances between all pairs of runs: A_w sums the squared correlations with the mean of all
    /// products of w columns. A regular fraction has as many words of length w.
    [[nodiscard]] std::vector<double> WordLengths(int longest) const {
        std::vector<long long> distances(static_cast<std::size_t>(factors_) + 1);
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            ++distances[0];
            for (std::size_t j = 0; j < i; ++j) {
                distances[static_cast<std::size_t>(std::popcount(rows_[i] ^ rows_[j]))] += 2;
            }
        }
        // Krawtchouk polynomials by their recurrence. All sums are exact in 64 bits for up to 1024
        // runs: up to length 8 for 63 factors, and to any length for 30.
        std::vector<long long> sums(static_cast<std::size_t>(longest) + 1);
        for (int distance = 0; distance <= factors_; ++distance) {
            long long previous = 0;
            long long current = 1;
            for (int w = 0; w <= longest; ++w) {
                sums[static_cast<std::size_t>(w)] +=
                    distances[static_cast<std::size_t>(distance)] * current;
                const long long next =
                    ((factors_ - 2 * distance) * current - (factors_ - w + 1) * previous) / (w + 1);
                previous = current;
                current = next;
            }
        }
        std::vector<double> lengths;
        for (const long long sum : sums) {
            lengths.push_back(static_cast<double>(sum) / RunCount() / RunCount());
        }
        return lengths;
    }

    /// The length of the shortest word, at most `longest` + 1.
    [[nodiscard]] int Resolution(int longest) const {
        const std::vector<double> lengths = WordLengths(longest);
        int length = 1;
        while (length <= longest && lengths[static_cast<std::size_t>(length)] == 0) {
            ++length;
        }
        return length;
    }

    /// Within every block the factor stands half the time high.
    [[nodiscard]] bool IsClearOfBlocks(int factor) const {
        return IsClearOfBlocks(At(columns_, factor));
    }
    /// The same for the product of two factors.
    [[nodiscard]] bool IsClearOfBlocks(int first, int second) const {
        std::vector<std::uint64_t> product = At(columns_, first);
        for (std::size_t i = 0; i < product.size(); ++i) {
            product[i] ^= At(columns_, second)[i];
        }
        return IsClearOfBlocks(product);
    }

  private:
    using Bits = std::vector<std::uint64_t>;
    static constexpr float cFirst = Factors::cFirstLevelCode;
    static constexpr float cMaxBlocks = 16;

    static Bits EmptyColumn(int runs) { return Bits((static_cast<std::size_t>(runs) + 63) / 64); }
    static void SetBit(Bits& bits, int at) {
        bits[static_cast<std::size_t>(at / 64)] |= std::uint64_t{1} << (at % 64);
    }
    static int Count(const Bits& bits) {
        int count = 0;
        for (const std::uint64_t word : bits) {
            count += std::popcount(word);
        }
        return count;
    }
    static const Bits& At(const std::vector<Bits>& columns, int index) {
        return columns[static_cast<std::size_t>(index)];
    }
    static bool IsHigh(float cell) {
        const bool high = cell == 1.0F || cell == cFirst + 1;
        if (!high && cell != -1.0F && cell != cFirst) {
            throw std::invalid_argument("no level of a two-level factor");
        }
        return high;
    }
    [[nodiscard]] bool IsClearOfBlocks(const Bits& contrast) const {
        for (const Bits& block : blocks_) {
            int high = 0;
            for (std::size_t i = 0; i < block.size(); ++i) {
                high += std::popcount(block[i] & contrast[i]);
            }
            if (2 * high != Count(block)) {
                return false;
            }
        }
        return true;
    }

    int factors_;
    std::vector<std::uint64_t> rows_;
    std::vector<Bits> columns_;
    std::vector<Bits> blocks_;
};
