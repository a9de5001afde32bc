#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "designs/plate/PreCreatedRows.h"
#include "designs/plate/ReducedRows.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

/// The pre-made plate rows as their tables tell them, and the factor sets that they are for.
namespace plate {

struct RowCase {
    std::string name;
    std::vector<int> levels;
    std::vector<int> masks;
    EModel::Type model = EModel::None;
    unsigned runs = 0;

    [[nodiscard]] EObjective::Type Objective() const {
        return model == EModel::Quadratic ? EObjective::Optimization : EObjective::Screening;
    }
    friend void PrintTo(const RowCase& row, std::ostream* out) { *out << row.name; }
};

inline std::vector<int> Digits(std::string_view text) {
    std::vector<int> digits;
    for (const char digit : text) {
        digits.push_back(digit - '0');
    }
    return digits;
}

/// In the order of registration.
inline std::vector<RowCase> AllRows() {
    std::vector<RowCase> rows;
    for (const auto& row : ReducedRows::cRows) {
        rows.push_back(
            {row.shortString, Digits(row.levels), Digits(row.typeMasks), row.model, row.runs});
    }
    for (const auto& row : PreCreatedRows::cRows) {
        rows.push_back({row.shortString,
                        Digits(row.levels),
                        Digits(row.typeMasks),
                        row.model,
                        static_cast<unsigned>(row.runs.size())});
    }
    return rows;
}

inline RowCase RowNamed(const std::string& name) {
    const std::vector<RowCase> rows = AllRows();
    return *std::find_if(
        rows.begin(), rows.end(), [&](const RowCase& row) { return row.name == name; });
}

/// The registered builder; empty when there is none.
inline std::shared_ptr<const DesignBuilder> BuilderNamed(const std::string& name) {
    return AllDesigns::GetDesignBuilder(EDesign::Plugin, name);
}

/// A factor that a row asks for, before factors stand in an order.
using FactorKind = std::pair<CEType::EType, int>;  // type and level count

inline TestFactors FactorsOf(const std::vector<FactorKind>& kinds) {
    TestFactors factors;
    for (const auto& [type, levels] : kinds) {
        if (type == CEType::Quantitative) {
            factors.Quantitative();
        } else if (type == CEType::Multilevel) {
            factors.MultilevelOf(static_cast<unsigned>(levels));
        } else {
            factors.Qualitative(static_cast<unsigned>(levels));
        }
    }
    return factors;
}

/// One factor for each column, in the columns' order. `variant` turns through the types that a
/// column allows; composite designs, whose masks allow one type, take quantitative factors only.
inline std::vector<FactorKind> KindsOf(const RowCase& row, int variant) {
    static const std::vector<CEType::EType> cAll{
        CEType::Quantitative, CEType::Qualitative, CEType::Multilevel};
    static const std::vector<CEType::EType> cLevels{CEType::Qualitative, CEType::Multilevel};
    static const std::vector<CEType::EType> cContinuous{CEType::Quantitative};
    std::vector<FactorKind> kinds;
    for (std::size_t column = 0; column < row.levels.size(); ++column) {
        const auto& types = row.masks[column] == 7   ? cAll
                            : row.masks[column] == 6 ? cLevels
                                                     : cContinuous;
        const std::size_t turn = (static_cast<std::size_t>(variant) + column) % types.size();
        kinds.emplace_back(types[turn], row.levels[column]);
    }
    return kinds;
}

inline TestFactors FactorsOf(const RowCase& row, int variant = 0) {
    return FactorsOf(KindsOf(row, variant));
}

/// Every order of the factors of each of three variants.
inline std::vector<TestFactors> FactorsInEveryOrder(const RowCase& row) {
    std::vector<TestFactors> sets;
    for (int variant = 0; variant < 3; ++variant) {
        std::vector<FactorKind> kinds = KindsOf(row, variant);
        std::sort(kinds.begin(), kinds.end());
        do {
            sets.push_back(FactorsOf(kinds));
        } while (std::next_permutation(kinds.begin(), kinds.end()));
    }
    return sets;
}

/// What a side of a plate asks a row for: its runs and least centre points, no more.
inline DesignOptions SideOptions(const DesignBuilder& builder,
                                 const Factors& factors,
                                 const RowCase& row) {
    DesignOptions options(builder, factors, row.Objective(), row.model, row.model, row.runs);
    options.SetCenterPoints(builder.GetMinimumCenterPoints());
    return options;
}

/// The finished side of a plate; an empty matrix when the request is refused.
inline NCDataMatrix<float> BuiltSide(const DesignBuilder& builder,
                                     const Factors& factors,
                                     const RowCase& row) {
    const auto design = builder.Build(factors, SideOptions(builder, factors, row));
    return design ? *design->GetDesignMatrix() : NCDataMatrix<float>();
}

}  // namespace plate
