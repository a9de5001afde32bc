#include "designs/optimal/CandidateSetGenerator.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "frame/CEType.h"
#include "frame/Factors.h"

namespace NCDOE::detail {

/// The settings of one factor, round and round.
class IOptCandidateVariable {
  public:
    explicit IOptCandidateVariable(int count) : count_(count) {}
    IOptCandidateVariable(const IOptCandidateVariable&) = delete;
    IOptCandidateVariable& operator=(const IOptCandidateVariable&) = delete;
    virtual ~IOptCandidateVariable() = default;

    /// Moves to the next setting. Returns true when it is the first one again.
    bool Next(double& value) {
        at_ = (at_ + 1) % count_;
        value = Setting(at_);
        return at_ == 0;
    }
    [[nodiscard]] int Count() const { return count_; }

  protected:
    [[nodiscard]] virtual double Setting(int at) const = 0;

  private:
    int count_;
    int at_ = 0;
};

namespace {

constexpr long cDefaultSteps = 7;
constexpr std::size_t cFewestSettings = 2;
// Deliberate: a Qualitative factor of two levels is refused, although the text speaks of two.
constexpr unsigned int cFewestLevels = 3;

class QuantitativeVar : public IOptCandidateVariable {
  public:
    using IOptCandidateVariable::IOptCandidateVariable;

  protected:
    double Setting(int at) const override { return 2.0 * at / (Count() - 1) - 1.0; }
};

class QualitativeVar : public IOptCandidateVariable {
  public:
    using IOptCandidateVariable::IOptCandidateVariable;

  protected:
    double Setting(int at) const override { return at; }
};

class MultiLevelVar : public IOptCandidateVariable {
  public:
    explicit MultiLevelVar(std::vector<float> ascending)
        : IOptCandidateVariable(static_cast<int>(ascending.size())),
          settings_(std::move(ascending)) {}

  protected:
    double Setting(int at) const override {
        // Differences in float, as the settings are.
        const float above = settings_[static_cast<std::size_t>(at)] - settings_.front();
        const float range = settings_.back() - settings_.front();
        return 2.0 * static_cast<double>(above) / static_cast<double>(range) - 1.0;
    }

  private:
    std::vector<float> settings_;
};

std::vector<float> AscendingSettings(const Factors& factors, int factor) {
    std::vector<float> settings = factors.GetFactorSettings(factor);
    if (settings.size() < cFewestSettings) {
        throw std::invalid_argument("Multilevel factors must have at least two levels.");
    }
    std::sort(settings.begin(), settings.end());
    return settings;
}

int LevelsOf(const Factors& factors, int factor) {
    const unsigned int levels = factors.GetLevelCount(factor);
    if (levels < cFewestLevels) {
        throw std::invalid_argument("Qualitative factors factors must have at least two settings.");
    }
    return static_cast<int>(levels);
}

}  // namespace

CandidateSetGenerator::CandidateSetGenerator(const Factors& factors, long steps)
    : mColumns(static_cast<long>(factors.GetDesignFactorCount())) {
    if (mColumns == 0) {
        throw std::invalid_argument("No factors defined");
    }
    if (steps < 0) {
        steps = cDefaultSteps;
    }
    if (steps < 2) {
        throw std::invalid_argument("Number of steps must be at least 2");
    }
    mRow.assign(static_cast<std::size_t>(mColumns), std::numeric_limits<double>::quiet_NaN());
    for (int factor = 0; factor < static_cast<int>(mColumns); ++factor) {
        AddFactor(factors, factor, steps);
    }
    if (mMixtureFactors.empty()) {
        return;
    }
    if (mMixtureFactors.size() == 1) {
        throw std::invalid_argument("Mixtures must consist of at least two factors.");
    }
    mMixtureTotal = steps - 1;
    mMixture = std::make_unique<QvCombinatorics::NIntoK>(mMixtureTotal,
                                                         static_cast<long>(mMixtureFactors.size()));
    mRows *= mMixture->SizeCombinations();
    mFirstRow = false;
}

CandidateSetGenerator::~CandidateSetGenerator() = default;
CandidateSetGenerator::CandidateSetGenerator(CandidateSetGenerator&&) noexcept = default;
CandidateSetGenerator& CandidateSetGenerator::operator=(CandidateSetGenerator&&) noexcept = default;

bool CandidateSetGenerator::Next() {
    if (mMixture && !NextMixture()) {
        return false;
    }
    if (mFirstRow) {
        mFirstRow = false;
        return false;
    }
    bool wrapped = false;
    for (auto& [factor, variable] : mVariables) {
        wrapped = variable->Next(mRow[static_cast<std::size_t>(factor)]);
        if (!wrapped) {
            break;
        }
    }
    // Without a variable the answer is false for ever, also where the mixture wraps.
    return wrapped;
}

void CandidateSetGenerator::AddFactor(const Factors& factors, int factor, long steps) {
    const CEType::EType type = factors.GetFactorType(factor);
    const bool isMixture = type == CEType::Formulation && !factors.IsFormulationSumFree();
    if (isMixture) {
        mMixtureFactors.push_back(factor);
    } else if (type == CEType::Quantitative || type == CEType::Formulation) {
        AddVariable(factor, -1.0, std::make_shared<QuantitativeVar>(static_cast<int>(steps)));
    } else if (type == CEType::Multilevel) {
        AddVariable(
            factor, -1.0, std::make_shared<MultiLevelVar>(AscendingSettings(factors, factor)));
    } else if (type == CEType::Qualitative) {
        AddVariable(factor, 0.0, std::make_shared<QualitativeVar>(LevelsOf(factors, factor)));
    } else if (type != CEType::Filler && type != CEType::Time) {
        throw std::invalid_argument(std::string("Don't know how to handle factors of type ") +
                                    CEType::GetString(type));
    }
}

void CandidateSetGenerator::AddVariable(int factor,
                                        double first,
                                        std::shared_ptr<IOptCandidateVariable> variable) {
    mRow[static_cast<std::size_t>(factor)] = first;
    mRows *= variable->Count();
    mVariables.emplace(factor, std::move(variable));
}

bool CandidateSetGenerator::NextMixture() {
    const bool wrapped = mMixture->Next();
    for (std::size_t i = 0; i < mMixtureFactors.size(); ++i) {
        mRow[static_cast<std::size_t>(mMixtureFactors[i])] =
            static_cast<double>(mMixture->GetParts()[i]) / static_cast<double>(mMixtureTotal);
    }
    return wrapped;
}

}  // namespace NCDOE::detail
