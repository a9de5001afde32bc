#include "designs/optimal/D_OptimalOptions.h"

#include <climits>
#include <map>
#include <span>

#include "designs/optimal/DOptFactorAdapter.h"
#include "designs/optimal/ModelTerms.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cBaseSection = "DesignSpecificOptions";
constexpr const char* cInclusionsKey = "Inclusions";
constexpr const char* cSection = "DOptimalOptions";
constexpr const char* cMixtureModelKey = "DOptMixtureModel";
constexpr const char* cSelectDesignByKey = "SelectDesignBy";
constexpr const char* cPmInteractionKey = "PMInteraction";
constexpr const char* cPotentialTermsKey = "UsePotentialTerms";
constexpr const char* cBalanceKey = "BalanceOnFactor";
constexpr const char* cOnlyBalancedKey = "OnlyAllowBalanced";
constexpr const char* cUseInclusionKey = "UseInclusion";
constexpr const char* cNewCandidatesKey = "CandidateSet";
constexpr const char* cRepetitionsKey = "Repetitions";
constexpr const char* cRunRangeKey = "RunRange";
constexpr const char* cTermSection = "OptModels";
constexpr const char* cTermKey = "OptModel";

constexpr const char* cJsonMixtureModel = "mixtureModelType";
constexpr const char* cJsonPmInteraction = "processMixtureInteraction";
constexpr const char* cJsonBalance = "balanceOnFactor";
constexpr const char* cJsonOnlyBalanced = "useBalancedOnly";
constexpr const char* cJsonUseInclusion = "useInclusions";
constexpr const char* cJsonPotentialTerms = "usePotentialTerms";
constexpr const char* cJsonNewCandidates = "isCandidatesetGenerated";
constexpr const char* cJsonRepetitions = "repetitions";
constexpr const char* cJsonRunRange = "runSpan";
constexpr const char* cJsonCandidates = "candidateSet";

/// The mixture model of a design without a run limit.
constexpr unsigned int cAnyRuns = INT_MAX;

int FirstQualitative(const Factors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        if (factors.GetFactorType(factor) == CEType::Qualitative) {
            return factor;
        }
    }
    return -1;
}

// Reads a stored number; one that is no member of the enumeration counts as missing.
template <class Enumeration>
void ReadNumber(const ConfigurationSection& section,
                const char* key,
                Enumeration first,
                Enumeration last,
                Enumeration& value) {
    int number = 0;
    if (section.ReadInt(key, &number) && number >= first && number <= last) {
        value = static_cast<Enumeration>(number);
    }
}

bool BoolFromJson(const json_value& object, const char* name, bool otherwise) {
    if (!object.has_child(name)) {
        return otherwise;
    }
    const json_value& value = object.get_child(name);
    return value.is_bool() && value.get_bool();
}

int IntFromJson(const json_value& object, const char* name, int otherwise) {
    if (!object.has_child(name) || !object.get_child(name).is_integer()) {
        return otherwise;
    }
    const long long number = object.get_child(name).get_integer();
    return number >= INT_MIN && number <= INT_MAX ? static_cast<int>(number) : otherwise;
}

// Column of every factor index of the caller, counted from 1.
std::map<int, int> ColumnsByFactor(const DOptFactorAdapter& adapter) {
    std::map<int, int> columns;
    const int count = static_cast<int>(adapter.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        columns[factor] = adapter.FactorPosition(factor);
    }
    return columns;
}

void FillConstraintRow(const NCDOE::Constraint& constraint,
                       const std::map<int, int>& columns,
                       std::span<float> row) {
    // An upper bound turns into a lower one of the negated sum.
    const double sign = constraint.greaterOrEqual ? 1.0 : -1.0;
    for (const NCDOE::Constraint::Term& term : constraint.terms) {
        const auto column = columns.find(term.factor);
        if (column == columns.end()) {
            throw Exception(
                ExceptionMessage::translate("Constraints are set on an illegal variable."));
        }
        // Added, so that a factor that is named twice means here what it means to
        // Constraint::IsConstrained.
        row[static_cast<std::size_t>(column->second - 1)] +=
            static_cast<float>(sign * term.coefficient);
    }
    row.back() = static_cast<float>(-sign * constraint.value);
}

NCIntegralVector<int, -99> ConstrainableColumns(const DOptFactorAdapter& adapter) {
    NCIntegralVector<int, -99> kept;
    const int count = static_cast<int>(adapter.GetDesignFactorCount());
    for (int factor = 0; factor < count; ++factor) {
        const CEType::EType type = adapter.GetFactorType(factor);
        if (type == CEType::Quantitative || type == CEType::Formulation) {
            kept.Insert(kept.Size() + 1, factor + 1);
        }
    }
    kept.Insert(kept.Size() + 1, count + 1);
    return kept;
}

}  // namespace

D_OptimalOptions::D_OptimalOptions(const DesignBuilder& builder,
                                   const Factors& factors,
                                   const DesignOptions& options)
    : mixtureModel_(builder.GetDefaultMixtureModel(factors, options.GetObjective(), cAnyRuns)),
      pmInteraction_(builder.IsPMInteractionDefault(factors, options)),
      balanceOnFactor_(FirstQualitative(factors)) {}

void D_OptimalOptions::SetInclusions(const NCDataMatrix<float>& matrix, const Factors& factors) {
    const int columns = static_cast<int>(factors.GetDesignFactorCountExpanded());
    // Deliberate: the matrix stored so far is tested.
    if (inclusions_.SizeRows() > 0 && inclusions_.SizeColumns() != columns) {
        throw Exception(ExceptionMessage::translate(
            "The inclusions doesn't match the number of design factors."));
    }
    inclusions_ = matrix;
}

void D_OptimalOptions::SetModel(const Model& model) {
    if (model.empty()) {
        model_.reset();
    } else {
        model_ = model;
    }
}

D_OptimalOptions::Model D_OptimalOptions::GetModel(EDesign::Type type,
                                                   const Factors& factors,
                                                   const DesignOptions& options) const {
    return model_ ? *model_ : GetDefaultModel(type, factors, options);
}

D_OptimalOptions::Model D_OptimalOptions::GetDefaultModel(EDesign::Type type,
                                                          const Factors& factors,
                                                          const DesignOptions& options) const {
    return ModelTerms::Make(
        ModelTerms::Describe(factors),
        {options.GetModel(), mixtureModel_, pmInteraction_, options.GetBlocks(), type});
}

std::unique_ptr<NCDataMatrix<float>> D_OptimalOptions::GetDOptConstraints(
    const DOptFactorAdapter& adapter) const {
    const std::vector<NCDOE::Constraint>& constraints = GetConstraints().GetConstraints();
    const int factors = static_cast<int>(adapter.GetDesignFactorCount());
    auto rows = std::make_unique<NCDataMatrix<float>>(
        static_cast<int>(constraints.size()), factors + 1, 0.0F);
    const std::map<int, int> columns = ColumnsByFactor(adapter);
    int row = 0;
    for (const NCDOE::Constraint& constraint : constraints) {
        FillConstraintRow(constraint, columns, rows->RowSpan(++row));
    }
    rows->ReduceColumns(ConstrainableColumns(adapter));
    return rows;
}

void D_OptimalOptions::Save(ConfigurationSection* section) const {
    // What an earlier save left behind (a longer model, names of other candidates) must not come
    // back.
    Remove(section);
    DesignSpecificOptions::Save(section);
    const auto base = section->OpenOrCreateSection(cBaseSection);
    GetCandidateSet().Save(base.get());
    if (inclusions_.SizeRows() > 0) {
        base->WriteMatrix(cInclusionsKey, inclusions_);
    }
    const auto own = base->OpenOrCreateSection(cSection);
    SaveSettings(own.get());
    SaveModel(own.get());
}

void D_OptimalOptions::SaveSettings(ConfigurationSection* section) const {
    section->WriteInt(cMixtureModelKey, mixtureModel_);
    section->WriteInt(cSelectDesignByKey, selectDesignBy_);
    section->WriteBool(cPmInteractionKey, pmInteraction_);
    section->WriteBool(cPotentialTermsKey, usePotentialTerms_);
    section->WriteInt(cBalanceKey, balanceOnFactor_);
    section->WriteBool(cOnlyBalancedKey, onlyAllowBalanced_);
    section->WriteBool(cUseInclusionKey, useInclusion_);
    section->WriteBool(cNewCandidatesKey, newCandidateSet_);
    section->WriteInt(cRepetitionsKey, repetitions_);
    section->WriteInt(cRunRangeKey, runRange_);
}

void D_OptimalOptions::SaveModel(ConfigurationSection* section) const {
    int index = 0;
    for (const ModelTerms::Term& term : model_.value_or(Model())) {
        section->OpenOrCreateSection(cTermSection, ++index)->WriteIntVector(cTermKey, term);
    }
}

bool D_OptimalOptions::Load(const ConfigurationSection* section) {
    if (!DesignSpecificOptions::Load(section)) {
        return false;
    }
    const auto base = section->OpenSection(cBaseSection);
    const auto own = base->OpenSection(cSection);
    if (!own) {
        return false;
    }
    CandidateSet candidates = GetCandidateSet();
    candidates.Load(base.get());
    SetCandidateSet(candidates);
    base->ReadMatrix(cInclusionsKey, &inclusions_);
    LoadSettings(own.get());
    LoadModel(own.get());
    return true;
}

void D_OptimalOptions::LoadSettings(const ConfigurationSection* section) {
    ReadNumber(*section, cMixtureModelKey, EModel::None, EModel::LinearQuadratic, mixtureModel_);
    ReadNumber(
        *section, cSelectDesignByKey, EDesign::GEfficiency, EDesign::IOptimality, selectDesignBy_);
    section->ReadBool(cPmInteractionKey, &pmInteraction_);
    section->ReadBool(cPotentialTermsKey, &usePotentialTerms_);
    section->ReadInt(cBalanceKey, &balanceOnFactor_);
    section->ReadBool(cOnlyBalancedKey, &onlyAllowBalanced_);
    section->ReadBool(cUseInclusionKey, &useInclusion_);
    section->ReadBool(cNewCandidatesKey, &newCandidateSet_);
    section->ReadInt(cRepetitionsKey, &repetitions_);
    section->ReadInt(cRunRangeKey, &runRange_);
}

void D_OptimalOptions::LoadModel(const ConfigurationSection* section) {
    const int count = section->SectionCount(cTermSection);
    Model model;
    for (int i = 1; i <= count; ++i) {
        section->OpenSection(cTermSection, i)->ReadIntVector(cTermKey, &model.emplace_back());
    }
    if (!model.empty()) {
        model_ = std::move(model);
    }
}

json_value D_OptimalOptions::ToJson() const {
    json_value object = json_value::make_object();
    object.put_child(cJsonMixtureModel) = EModel::ToJson(mixtureModel_);
    object.put_child(cJsonPmInteraction) = pmInteraction_;
    object.put_child(cJsonBalance) = balanceOnFactor_;
    object.put_child(cJsonOnlyBalanced) = onlyAllowBalanced_;
    object.put_child(cJsonUseInclusion) = useInclusion_;
    object.put_child(cJsonPotentialTerms) = usePotentialTerms_;
    object.put_child(cJsonNewCandidates) = newCandidateSet_;
    object.put_child(cJsonRepetitions) = repetitions_;
    object.put_child(cJsonRunRange) = runRange_;
    object.put_child(cJsonCandidates) = GetCandidateSet().ToJson();
    return object;
}

void D_OptimalOptions::FromJson(const json_value& value) {
    if (!value.is_object()) {
        return;
    }
    // Read as a whole, so that the options stay when something in it fails.
    D_OptimalOptions read = *this;
    CandidateSet candidates;
    if (value.has_child(cJsonCandidates)) {
        candidates.FromJson(value.get_child(cJsonCandidates));
    }
    read.SetCandidateSet(candidates);
    const D_OptimalOptions defaults;
    read.mixtureModel_ = value.has_child(cJsonMixtureModel)
                             ? EModel::FromJson(value.get_child(cJsonMixtureModel))
                             : defaults.mixtureModel_;
    read.pmInteraction_ = BoolFromJson(value, cJsonPmInteraction, defaults.pmInteraction_);
    read.balanceOnFactor_ = IntFromJson(value, cJsonBalance, defaults.balanceOnFactor_);
    read.onlyAllowBalanced_ = BoolFromJson(value, cJsonOnlyBalanced, defaults.onlyAllowBalanced_);
    read.useInclusion_ = BoolFromJson(value, cJsonUseInclusion, defaults.useInclusion_);
    read.usePotentialTerms_ = BoolFromJson(value, cJsonPotentialTerms, defaults.usePotentialTerms_);
    read.newCandidateSet_ = BoolFromJson(value, cJsonNewCandidates, defaults.newCandidateSet_);
    read.repetitions_ = IntFromJson(value, cJsonRepetitions, defaults.repetitions_);
    read.runRange_ = IntFromJson(value, cJsonRunRange, defaults.runRange_);
    *this = std::move(read);
}
