#include "designs/plate/LevelsDuplicate.h"

#include <fmt/format.h>

#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

CEType::EType FirstType(const Factors& factors) {
    return factors.GetDesignFactorCount() > 0 ? factors.GetFactorType(0) : CEType::NotDefined;
}

bool IsFirstQualitative(const Factors& factors) {
    return FirstType(factors) == CEType::Qualitative;
}

bool IsFirstLevelFactor(const Factors& factors) {
    return FirstType(factors) == CEType::Multilevel || IsFirstQualitative(factors);
}

// Of the first factor; 0 where it has no levels.
unsigned long long LevelCount(const Factors& factors) {
    return IsFirstLevelFactor(factors) ? factors.GetLevelCount(0) : 0;
}

std::string NameOf(unsigned int times) {
    switch (times) {
        case 2:
            return "Levels Duplicate";
        case 3:
            return "Levels Triplicate";
        case 4:
            return "Levels Quad.";
        default:
            return fmt::format("Levels * {}", times);
    }
}

// `times` copies of the base's runs; a qualitative factor has as many of those as levels.
DesignOptions BaseOptions(const Factors& factors,
                          const DesignOptions& options,
                          unsigned int times,
                          unsigned int centerPoints) {
    DesignOptions base = options;
    base.SetCenterPoints(centerPoints);
    base.SetRuns(IsFirstQualitative(factors) ? static_cast<unsigned int>(LevelCount(factors))
                                             : options.GetRuns() / times);
    base.SetReplicates(times - 1);
    // They are added once, to the copies together.
    base.SetReplicatedRuns(0);
    return base;
}

}  // namespace

LevelsDuplicateClass::LevelsDuplicateClass(const Factors& factors,
                                           const DesignOptions& options,
                                           const LevelsDuplicate& builder)
    : NCDesign(factors) {
    const auto base = builder.GetBaseBuilder();
    const unsigned int baseCenters = base->GetMinimumCenterPoints();
    const auto levels =
        base->Build(factors, BaseOptions(factors, options, builder.GetTimes(), baseCenters));
    RequireFinishedSize(levels->GetDesignMatrix()->SizeRows(), options);
    SetDesignMatrix(*levels->GetDesignMatrix());
    const unsigned int centersIn = builder.GetTimes() * baseCenters;
    // A qualitative factor has no centre; its first levels fill the room instead.
    if (options.GetCenterPoints() > centersIn && !IsFirstQualitative(factors)) {
        AddCenterPoints(static_cast<int>(options.GetCenterPoints() - centersIn), factors, options);
    }
    AddReplicatedRuns(factors, options);
    AddReplicates(options.GetReplicates());
    if (IsFirstQualitative(factors)) {
        FillUpLevels(options.GetMaxRuns());
    }
}

std::shared_ptr<NCDesign> LevelsDuplicateClass::Clone() const {
    return std::make_shared<LevelsDuplicateClass>(*this);
}

void LevelsDuplicateClass::FillUpLevels(unsigned int runs) {
    NCDataMatrix<float> matrix = *GetDesignMatrix();
    const int filled = matrix.SizeRows();
    const int missing = static_cast<int>(runs) - filled;
    if (missing <= 0) {
        return;
    }
    matrix.InsertRows(filled + 1, missing);
    for (int row = 1; row <= missing; ++row) {
        matrix(filled + row, 1, Factors::cFirstLevelCode + static_cast<float>(row - 1));
    }
    SetDesignMatrix(matrix);
}

LevelsDuplicate::LevelsDuplicate(unsigned int times)
    : CustomREDMUPDesign(
          NameOf(times).c_str(), NameOf(times).c_str(), NameOf(times).c_str(), NameOf(times)),
      times_(times) {}

std::unique_ptr<NCDesign> LevelsDuplicate::Build(const Factors& factors,
                                                 const DesignOptions& options,
                                                 bool* /*cancel*/) const {
    return IsValid(factors, options)
               ? std::make_unique<LevelsDuplicateClass>(factors, options, *this)
               : nullptr;
}

unsigned int LevelsDuplicate::GetDefaultRuns(const Factors& factors,
                                             EObjective::Type objective) const {
    if (factors.GetDesignFactorCount() == 0) {
        return 0;
    }
    const auto builder = GetBaseBuilder();
    DesignOptions options(*builder, factors);
    options.SetObjective(objective);
    options.SetModel(builder->GetDefaultModel(factors, objective));
    return times_ * builder->GetDefaultRuns(factors, options);
}

unsigned int LevelsDuplicate::GetDefaultRuns(const Factors& factors,
                                             const DesignOptions& options) const {
    // The runs of a qualitative factor follow the run limit, once they are set.
    if (IsFirstQualitative(factors) && options.GetRuns() > 0) {
        return options.GetRuns();
    }
    return GetDefaultRuns(factors, options.GetObjective());
}

unsigned int LevelsDuplicate::GetMinimumCenterPoints() const {
    return GetBaseBuilder()->GetMinimumCenterPoints();
}

std::string LevelsDuplicate::GetDescription() const {
    return CustomREDMUPDesign::GetDescription() + " Replicated to fit the plate.";
}

std::vector<unsigned int> LevelsDuplicate::GetLegalRuns(const Factors& factors,
                                                        const DesignOptions& options) const {
    const unsigned int most = options.GetMaxRuns();
    const unsigned long long levels = LevelCount(factors);
    if (IsFirstQualitative(factors) && levels * times_ < most && most < levels * (times_ + 1)) {
        return {most};
    }
    std::vector<unsigned int> legal;
    for (const unsigned int base : GetBaseBuilder()->GetLegalRuns(factors, options)) {
        if (base > most / times_) {
            break;
        }
        legal.push_back(times_ * base);
    }
    return legal;
}

bool LevelsDuplicate::IsValid(const Factors& factors, const DesignOptions& options) const {
    const unsigned int most = options.GetMaxRuns();
    if (most < times_ || factors.IsAllQuantitative()) {
        return false;
    }
    // So often, and not once more: that is for another number of times.
    const unsigned long long levels = LevelCount(factors);
    if (IsFirstLevelFactor(factors) && (most >= levels * (times_ + 1) || most < levels * times_)) {
        return false;
    }
    return GetBaseBuilder()->IsValid(factors, options);
}

EModel::Type LevelsDuplicate::GetDefaultModel(const Factors& factors,
                                              EObjective::Type objective) const {
    return GetBaseBuilder()->GetDefaultModel(factors, objective);
}

std::shared_ptr<const DesignBuilder> LevelsDuplicate::GetBaseBuilder() const {
    return AllDesigns::GetDesignBuilder(EDesign::Levels, "");
}
