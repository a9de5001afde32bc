#pragma once

#include <cstddef>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "frame/EModel.h"
#include "frame/Factors.h"
#include "tests/oracles/ModelOracles.h"

/// The model of a whole plate, written out term by term: every term of the horizontal group's model
/// times every term of the vertical one's.
namespace PlateModel {

using Columns = std::vector<std::vector<long double>>;

/// Model columns of one factor: a number, or an indicator for every level but the first.
inline Columns MainEffect(const NCDataMatrix<float>& wells, const Factors& all, int factor) {
    const bool qualitative = all.GetFactorType(factor) == CEType::Qualitative;
    const int count = qualitative ? static_cast<int>(all.GetLevelCount(factor)) - 1 : 1;
    Columns columns(static_cast<std::size_t>(count));
    for (int run = 1; run <= wells.SizeRows(); ++run) {
        const float cell = wells(run, factor + 1);
        for (int level = 1; level <= count; ++level) {
            const float value = qualitative ? (cell == 65 + static_cast<float>(level) ? 1.0F : 0.0F)
                                            : (cell > 60 ? cell - 65 : cell);
            columns[static_cast<std::size_t>(level - 1)].push_back(static_cast<long double>(value));
        }
    }
    return columns;
}

inline void AppendProducts(Columns& terms, const Columns& a, const Columns& b) {
    for (const auto& left : a) {
        for (const auto& right : b) {
            std::vector<long double> product;
            for (std::size_t i = 0; i < left.size(); ++i) {
                product.push_back(left[i] * right[i]);
            }
            terms.push_back(product);
        }
    }
}

/// The terms of one group over all wells: the constant (unless the group is a blend, whose
/// proportions take its place), main effects, and as the model asks products of two factors and
/// squares.
inline Columns GroupTerms(const NCDataMatrix<float>& wells,
                          const Factors& all,
                          const std::vector<unsigned long long>& group,
                          EModel::Type model,
                          bool blend) {
    Columns terms;
    if (!blend) {
        terms.emplace_back(static_cast<std::size_t>(wells.SizeRows()), 1.0L);
    }
    std::vector<Columns> effects;
    for (const unsigned long long factor : group) {
        effects.push_back(MainEffect(wells, all, static_cast<int>(factor)));
        terms.insert(terms.end(), effects.back().begin(), effects.back().end());
    }
    const bool products = model != EModel::Linear && model != EModel::LinearQuadratic;
    const bool squares = model >= EModel::Quadratic && !blend;
    for (std::size_t i = 0; i < effects.size(); ++i) {
        for (std::size_t j = i + 1; j < effects.size() && products; ++j) {
            AppendProducts(terms, effects[i], effects[j]);
        }
        if (squares && all.GetFactorType(static_cast<int>(group[i])) != CEType::Qualitative) {
            AppendProducts(terms, effects[i], effects[i]);
        }
    }
    return terms;
}

/// Terms of the whole and how many of them the wells tell apart.
struct Estimability {
    std::size_t terms = 0;
    std::size_t rank = 0;
};

inline Estimability Estimate(const Columns& horizontal, const Columns& vertical) {
    Columns model;
    AppendProducts(model, horizontal, vertical);
    return {model.size(), oracles::Rank(oracles::Transposed(model), 1e-4L)};
}

}  // namespace PlateModel
