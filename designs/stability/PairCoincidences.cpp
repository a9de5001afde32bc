#include "designs/stability/PairCoincidences.h"

#include <cstddef>

PairCoincidences::PairCoincidences(int runs)
    : runs_(runs), counts_(static_cast<std::size_t>(runs) * static_cast<std::size_t>(runs)) {}

void PairCoincidences::Add(std::span<const int> column) {
    const auto runs = static_cast<std::size_t>(runs_);
    for (std::size_t i = 0; i < runs; ++i) {
        int* const row = counts_.data() + i * runs;
        const int level = column[i];
        for (std::size_t j = 0; j < runs; ++j) {
            row[j] += column[j] == level ? 1 : 0;
        }
        row[i] = 0;
    }
    ++columns_;
}

std::span<const int> PairCoincidences::Row(int run) const {
    const auto runs = static_cast<std::size_t>(runs_);
    return {counts_.data() + static_cast<std::size_t>(run) * runs, runs};
}

long long PairCoincidences::SumOfSquares() const {
    long long sum = 0;
    for (const int count : counts_) {
        sum += static_cast<long long>(count) * count;
    }
    return sum / 2;  // each pair stands twice
}
