#include "designs/optimal/ModelExpansion.h"

#include <algorithm>
#include <cmath>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/DOptGen.h"

namespace DOpt {

namespace {

constexpr float cMissing = NCDataMatrix<float>::cMissing;
// Beyond these sizes the additional terms would be too many to be of use.
constexpr std::size_t cMaxFactorsWithCubes = 10;
constexpr std::size_t cMaxMixtureWithPairs = 20;
constexpr std::size_t cMaxMixtureWithCubes = 12;
constexpr std::size_t cLeastMixture = 2;
constexpr int cSquare = 2;
constexpr int cCube = 3;

// The one of largest range, the first on ties, among the mixture variables; they stand last.
int FindSlack(const DOptGen& generator) {
    const auto ranges = generator.GetVarRangeMix();
    if (ranges == nullptr) {
        return 0;
    }
    int largest = 0;
    for (int i = 1; i <= ranges->Size(); ++i) {
        if ((*ranges)(i) != cMissing && (largest == 0 || (*ranges)(i) > (*ranges)(largest))) {
            largest = i;
        }
    }
    return largest == 0 ? 0 : generator.GetVariables() - generator.GetMixtureVariables() + largest;
}

float Transformed(const Transforms* transform, float value) {
    if (transform != nullptr) {
        transform->TransformValue(&value);
    }
    return value;
}

// In float throughout. A factor without a range has no coded value.
float Coded(float value, float low, float high) {
    if (value == cMissing || low == cMissing || high == cMissing) {
        return cMissing;
    }
    const float coded = (value - (low + high) * 0.5F) / ((high - low) * 0.5F);
    return std::isfinite(coded) ? coded : cMissing;
}

}  // namespace

ModelExpansion::ModelExpansion(const DOptGen& generator, const DOptFactorAdapter& factors)
    : generator_(generator), factors_(factors), slack_(FindSlack(generator)) {}

bool ModelExpansion::IsQualitative(int factor) const {
    return factors_.GetFactorType(factor - 1) == CEType::Qualitative;
}

bool ModelExpansion::IsMixtureFactor(int factor) const {
    return (*generator_.GetIsMix())(factors_.FactorToExpanded(factor)) == 1;
}

void ModelExpansion::AddModelTerms(const ModelTerms::List& terms) {
    const auto count = static_cast<int>(factors_.GetDesignFactorCount());
    for (const ModelTerms::Term& term : terms) {
        const bool isOfFactors = std::ranges::all_of(
            term, [count](int factor) { return factor >= 0 && factor < count; });
        if (isOfFactors && (term.size() == cSquare || term.size() == cCube)) {
            Product factors{};
            std::ranges::transform(
                term, factors.begin(), [this](int i) { return factors_.FactorPosition(i); });
            std::ranges::sort(factors);
            terms_.insert(factors);
            AddTerm(factors, model_);
        }
    }
}

void ModelExpansion::AddTerm(Product factors, std::vector<Product>& columns) {
    const std::span<const int> used =
        std::span(factors).subspan(static_cast<std::size_t>(std::ranges::count(factors, 0)));
    for (std::size_t i = 0; i < used.size(); ++i) {
        const bool isRepeated = i > 0 && used[i] == used[i - 1];
        if (factors_.FactorToExpanded(used[i]) == slack_ ||
            (isRepeated && IsQualitative(used[i]))) {
            return;
        }
    }
    AddCombinations(used, {}, columns);
}

// One column for each choice of a variable from each of the factors, the last changing fastest.
void ModelExpansion::AddCombinations(std::span<const int> factors,
                                     Product variables,
                                     std::vector<Product>& columns) {
    if (factors.empty()) {
        std::ranges::sort(variables);
        if (known_.insert(variables).second) {
            columns.push_back(variables);
        }
        return;
    }
    const int first = factors_.FactorToExpanded(factors.front());
    const int shifted = slack_ != 0 && first > slack_ ? first - 1 : first;
    for (int e = 0; e < factors_.ExpandedWidth(factors.front()); ++e) {
        variables[variables.size() - factors.size()] = shifted + e;
        AddCombinations(factors.subspan(1), variables, columns);
    }
}

void ModelExpansion::AddPotentialTerms(EModel::Type process, EModel::Type mixture) {
    if (process == EModel::None && mixture == EModel::None) {
        return;
    }
    std::vector<int> processFactors;
    std::vector<int> mixtureFactors;
    for (int f = 1; f <= static_cast<int>(factors_.GetDesignFactorCount()); ++f) {
        (IsMixtureFactor(f) ? mixtureFactors : processFactors).push_back(f);
    }
    AddProcessPotential(process, processFactors);
    AddMixturePotential(mixture, mixtureFactors);
    for (const int i : processFactors) {
        for (const int j : mixtureFactors) {
            AddPotential(0, i, j);
        }
    }
}

void ModelExpansion::AddProcessPotential(EModel::Type model, const std::vector<int>& process) {
    if (model == EModel::Linear || model == EModel::Interaction) {
        AddPairs(process);
        if (!HasSquare() || potentialTerms_ == 0) {
            AddPowers(process, cSquare, true);
        }
    } else if (model == EModel::Quadratic) {
        AddPairs(process);
        if (process.size() <= cMaxFactorsWithCubes) {
            AddPowers(process, cCube, true);
        }
    }
}

void ModelExpansion::AddMixturePotential(EModel::Type model, const std::vector<int>& mixture) {
    const auto isUpTo = [&mixture](std::size_t most) {
        return mixture.size() >= cLeastMixture && mixture.size() <= most;
    };
    if (model == EModel::Linear && isUpTo(cMaxMixtureWithPairs)) {
        AddPairs(mixture);
        AddPowers(mixture, cSquare, false);
    } else if (model == EModel::Quadratic && isUpTo(cMaxMixtureWithCubes)) {
        AddPowers(mixture, cCube, false);
    }
}

bool ModelExpansion::HasSquare() const {
    return std::ranges::any_of(
        terms_, [](const Product& term) { return term[0] == 0 && term[1] == term[2]; });
}

void ModelExpansion::AddPairs(const std::vector<int>& factors) {
    for (std::size_t i = 0; i < factors.size(); ++i) {
        for (std::size_t j = i + 1; j < factors.size(); ++j) {
            AddPotential(0, factors[i], factors[j]);
        }
    }
}

void ModelExpansion::AddPowers(const std::vector<int>& factors, int degree, bool rangedOnly) {
    for (const int f : factors) {
        const CEType::EType type = factors_.GetFactorType(f - 1);
        if (!rangedOnly || type == CEType::Quantitative || type == CEType::Multilevel) {
            AddPotential(degree == cCube ? f : 0, f, f);
        }
    }
}

// The limit counts terms of factors, dropped ones among them, and not columns.
void ModelExpansion::AddPotential(int a, int b, int c) {
    const Product term{a, b, c};
    if (potentialTerms_ < cMaxPotentialTerms && !terms_.contains(term)) {
        ++potentialTerms_;
        AddTerm(term, potential_);
    }
}

int ModelExpansion::GetModelTerms() const {
    return 1 + generator_.GetVariables() - (slack_ != 0 ? 1 : 0) + static_cast<int>(model_.size());
}

std::vector<std::vector<int>> ModelExpansion::GetColumns() const {
    std::vector<std::vector<int>> columns{{}};
    std::vector<int> variables{0};  // of the columns of main effects, 0 for the constant
    for (int variable = 1; variable <= generator_.GetVariables(); ++variable) {
        if (variable != slack_) {
            columns.push_back({variable});
            variables.push_back(variable);
        }
    }
    for (const Product& product : model_) {
        std::vector<int>& column = columns.emplace_back();
        for (const int main : product) {
            if (main != 0) {
                column.push_back(variables[static_cast<std::size_t>(main)]);
            }
        }
    }
    return columns;
}

void ModelExpansion::FillMainEffects(std::span<const float> source, std::span<float> target) const {
    std::size_t next = 0;
    for (int variable = 1; variable <= generator_.GetVariables(); ++variable) {
        if (variable == slack_) {
            continue;
        }
        const Transforms* transform = generator_.GetTransform(variable);
        const float value = Transformed(transform, source[static_cast<std::size_t>(variable - 1)]);
        target[next++] = generator_.search.scale
                             ? Coded(value,
                                     Transformed(transform, (*generator_.GetVarMin())(variable)),
                                     Transformed(transform, (*generator_.GetVarMax())(variable)))
                             : value;
    }
}

NCDataMatrix<float> ModelExpansion::MakeMatrix(const NCDataMatrix<float>& rows) const {
    NCDataMatrix<float> matrix(rows.SizeRows(), GetModelTerms() + GetPotentialTerms());
    std::vector<Product> products = model_;
    products.insert(products.end(), potential_.begin(), potential_.end());
    const auto mainEnd = static_cast<std::size_t>(GetModelTerms()) - model_.size();
    for (int row = 1; row <= rows.SizeRows(); ++row) {
        const std::span<float> cells = matrix.RowSpan(row);
        cells[0] = 1;
        FillMainEffects(rows.RowSpan(row), cells.subspan(1));
        for (std::size_t i = 0; i < products.size(); ++i) {
            float product = 1;
            for (const int variable : products[i]) {
                const float cell = variable == 0 ? 1 : cells[static_cast<std::size_t>(variable)];
                product = product == cMissing || cell == cMissing ? cMissing : product * cell;
            }
            cells[mainEnd + i] = product;
        }
    }
    return matrix;
}

}  // namespace DOpt
