#include "evaluation/SignColumns.h"

#include <bit>

namespace {

constexpr int cWordBits = 64;

}  // namespace

SignColumns::SignColumns(int runs, int columns)
    : runs_(runs),
      columns_(columns),
      words_((static_cast<std::size_t>(runs) + cWordBits - 1) / cWordBits),
      bits_(words_ * static_cast<std::size_t>(columns)) {}

void SignColumns::SetNegative(int run, int column) {
    const auto word = static_cast<std::size_t>(run / cWordBits);
    bits_[static_cast<std::size_t>(column) * words_ + word] |= std::uint64_t{1}
                                                               << (run % cWordBits);
}

std::span<const std::uint64_t> SignColumns::Column(int column) const {
    return std::span(bits_).subspan(static_cast<std::size_t>(column) * words_, words_);
}

std::vector<std::uint64_t> SignColumns::Product(std::span<const std::uint64_t> a,
                                                std::span<const std::uint64_t> b) const {
    std::vector<std::uint64_t> product(words_);
    for (std::size_t i = 0; i < words_; ++i) {
        product[i] = a[i] ^ b[i];
    }
    return product;
}

int SignColumns::InnerProduct(std::span<const std::uint64_t> a,
                              std::span<const std::uint64_t> b) const {
    int differing = 0;
    for (std::size_t i = 0; i < words_; ++i) {
        differing += std::popcount(a[i] ^ b[i]);
    }
    return runs_ - 2 * differing;
}

int SignColumns::Sum(std::span<const std::uint64_t> column) const {
    int negative = 0;
    for (const std::uint64_t word : column) {
        negative += std::popcount(word);
    }
    return runs_ - 2 * negative;
}

std::vector<std::uint64_t> SignColumns::Rows() const {
    std::vector<std::uint64_t> rows(static_cast<std::size_t>(runs_));
    for (int column = 0; column < columns_; ++column) {
        const auto bits = Column(column);
        for (std::size_t run = 0; run < rows.size(); ++run) {
            const std::uint64_t bit = bits[run / cWordBits] >> (run % cWordBits) & 1U;
            rows[run] |= bit << column;
        }
    }
    return rows;
}
