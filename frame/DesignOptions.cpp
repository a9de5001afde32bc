#include "frame/DesignOptions.h"

#include <algorithm>
#include <array>
#include <climits>
#include <set>
#include <string>

#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/Factors.h"
#include "frame/generators/Generators.h"

namespace {

constexpr const char* cSection = "DesignOptions";
constexpr const char* cSpecificSection = "SpecificOptions";
// Default models may depend on a run limit; the constructors ask without one.
constexpr unsigned int cUnlimited = 2147483647;

bool IsMixtureDesign(const DesignBuilder& builder, const Factors& factors) {
    return factors.IsMixtureOnly() && builder.IsMixtureOnlyDesign();
}

EModel::Type DefaultModel(const DesignBuilder& builder,
                          const Factors& factors,
                          EObjective::Type objective) {
    return IsMixtureDesign(builder, factors)
               ? builder.GetDefaultMixtureModel(factors, objective, cUnlimited)
               : builder.GetDefaultProcessModel(factors, objective, cUnlimited);
}

// The legal run count that fits a target best: the largest not above it, or the smallest there is.
unsigned int LegalRunsFor(const std::vector<unsigned int>& legal, long long target) {
    auto found = std::find_if(legal.begin(), legal.end(), [target](unsigned int runs) {
        return static_cast<long long>(runs) >= target;
    });
    if (found == legal.end()) {
        return legal.back();
    }
    const bool exceeds = static_cast<long long>(*found) > target;
    return exceeds && found != legal.begin() ? *std::prev(found) : *found;
}

unsigned int CountFromStore(const ConfigurationSection& section,
                            const char* key,
                            unsigned int present) {
    int value = 0;
    if (!section.ReadInt(key, &value)) {
        return present;
    }
    if (value < 0) {
        throw Exception(ExceptionMessage::translate(
                            "The setting {1} of the design is {2}, but must be 0 or more.")
                        << key << value);
    }
    return static_cast<unsigned int>(value);
}

unsigned int CountFromJson(const json_value& value, const char* key) {
    if (value.has_child(key) && value.get_child(key).is_integer()) {
        const long long count = value.get_child(key).get_integer();
        if (count >= 0 && count <= INT_MAX) {
            return static_cast<unsigned int>(count);
        }
    }
    throw Exception(
        ExceptionMessage::translate(
            "The member \"{1}\" of the design options must be a whole number from 0 to {2}.")
        << key << INT_MAX);
}

unsigned int CountFromJson(const json_value& value, const char* key, unsigned int otherwise) {
    return value.has_child(key) && value.get_child(key).is_integer() ? CountFromJson(value, key)
                                                                     : otherwise;
}

json_value CountToJson(unsigned int count) {
    return static_cast<long long>(count);
}

// The letters of the base factors, by factor number without sign; empty when the words are not
// legal.
std::vector<long long> BaseFactors(const std::vector<std::vector<int>>& words, bool* legal) {
    std::set<long long> base;
    *legal = true;
    for (const std::vector<int>& word : words) {
        if (word.empty()) {
            *legal = false;
        } else if (word.size() == 1) {
            *legal = base.insert(std::abs(static_cast<long long>(word.front()))).second && *legal;
        }
    }
    return {base.begin(), base.end()};
}

// The word as letters, or an empty text when it names a factor that is no base factor.
std::string WordText(const std::vector<int>& word, const std::vector<long long>& base) {
    const auto negative = std::count_if(word.begin(), word.end(), [](int n) { return n < 0; });
    std::string text = negative % 2 != 0 ? "-" : "";
    for (const int number : word) {
        const auto found =
            std::lower_bound(base.begin(), base.end(), std::abs(static_cast<long long>(number)));
        if (found == base.end() || *found != std::abs(static_cast<long long>(number))) {
            return {};
        }
        text += static_cast<char>(Generators::cMinChar + (found - base.begin()));
    }
    return text;
}

}  // namespace

DesignOptions::DesignOptions(const DesignBuilder& builder, const Factors& factors)
    : replicatedRuns_(builder.GetDefaultReplicatedRuns()) {
    // The order of the steps matters: later ones read what earlier ones stored.
    const bool screens = DefaultModel(builder, factors, EObjective::Screening) != EModel::None;
    objective_ = screens ? EObjective::Screening : EObjective::Optimization;
    centerPoints_ = builder.GetDefaultCenterPoints(objective_);
    model_ = DefaultModel(builder, factors, objective_);
    designSpecificOptions_ = builder.GetDefaultDesignSpecificOptions(factors, *this);
    SetStarDistanceAndRuns(builder, factors);
    createdFromDesign_ = builder.IsDesign();
}

DesignOptions::DesignOptions(const DesignBuilder& builder,
                             const Factors& factors,
                             EObjective::Type objective,
                             EModel::Type processModel,
                             EModel::Type mixtureModel,
                             unsigned int maxRuns)
    : replicatedRuns_(builder.GetDefaultReplicatedRuns()), objective_(objective) {
    centerPoints_ = builder.GetDefaultCenterPoints(objective_);
    model_ = IsMixtureDesign(builder, factors) ? mixtureModel : processModel;
    designSpecificOptions_ = builder.GetDefaultDesignSpecificOptions(factors, *this);
    if (designSpecificOptions_) {
        designSpecificOptions_->SetMixtureModel(mixtureModel);
    }
    SetStarDistanceAndRuns(builder, factors);
    maxRuns_ = maxRuns;
    AssureMaxRuns(builder, factors);
    createdFromDesign_ = builder.IsDesign();
}

void DesignOptions::SetStarDistanceAndRuns(const DesignBuilder& builder, const Factors& factors) {
    starDistance_ = builder.GetDefaultStarDistance(factors.GetDesignFactorCount(), *this);
    runs_ = builder.GetDefaultRuns(factors, *this);
}

void DesignOptions::SetGenerators(const Generators* generators) {
    generators_ = generators != nullptr ? std::make_shared<Generators>(*generators) : nullptr;
}

bool DesignOptions::SetGenerators(const std::vector<std::vector<int>>& words) {
    bool legal = false;
    const std::vector<long long> base = BaseFactors(words, &legal);
    if (!legal || base.size() > Generators::cMaxBaseFactors ||
        words.size() > Generators::cMaxWords) {
        return false;
    }
    auto generators = std::make_shared<Generators>(1 << base.size());
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string text = WordText(words[i], base);
        if (text.empty()) {
            return false;
        }
        generators->SetGenerator(static_cast<int>(i) + 1,
                                 generators->GetGeneratorWord(text.c_str()));
    }
    generators_ = std::move(generators);
    return true;
}

bool DesignOptions::AssureMaxRuns(const DesignBuilder& builder, const Factors& factors) {
    if (maxRuns_ == cNoRunLimit) {
        return true;
    }
    // Signed throughout: the room that is left may be negative.
    const long long limit = maxRuns_;
    const long long minimum = builder.GetMinimumCenterPoints();
    const auto fits = [&] { return static_cast<long long>(runs_) + centerPoints_ <= limit; };
    const auto fillWithCenterPoints = [&] {
        centerPoints_ = static_cast<unsigned int>(std::max(minimum, limit - runs_));
    };

    if (!fits() && builder.IsCenterPointsAllowed() && centerPoints_ > minimum) {
        fillWithCenterPoints();
    }
    if (!fits() && limit > centerPoints_) {
        const std::vector<unsigned int> legal = builder.GetLegalRuns(factors, *this);
        if (!legal.empty()) {
            runs_ = LegalRunsFor(legal, limit - centerPoints_);
        }
        if (builder.IsCenterPointsAllowed()) {
            fillWithCenterPoints();
        }
    }
    return fits();
}

void DesignOptions::Save(ConfigurationSection* section) const {
    const auto own = section->OpenOrCreateSection(cSection);
    if (!own) {
        return;
    }
    own->WriteInt("Blocks", static_cast<int>(blocks_));
    own->WriteInt("Runs", static_cast<int>(runs_));
    own->WriteInt("Centerpoints", static_cast<int>(centerPoints_));
    own->WriteInt("Replicates", static_cast<int>(replicates_));
    own->WriteInt("ReplicatedRuns", static_cast<int>(replicatedRuns_));
    own->WriteInt("MaxRuns", static_cast<int>(maxRuns_));
    own->WriteDouble("StarDistance", starDistance_);
    own->WriteKey("Objective", EObjective::GetString(objective_));
    own->WriteKey("Model", EModel::GetString(model_));
    if (generators_) {
        generators_->Save(own.get());
    } else {
        Generators::Remove(own.get());
    }
    if (designSpecificOptions_) {
        designSpecificOptions_->Save(own->OpenOrCreateSection(cSpecificSection).get());
    } else {
        own->RemoveSection(cSpecificSection);
    }
    own->WriteInt("CreatedByDesign", createdFromDesign_);
}

bool DesignOptions::Load(const ConfigurationSection* section) {
    const auto own = section->OpenSection(cSection);
    if (!own) {
        return false;
    }
    DesignOptions loaded = *this;
    loaded.blocks_ = CountFromStore(*own, "Blocks", blocks_);
    loaded.runs_ = CountFromStore(*own, "Runs", runs_);
    loaded.centerPoints_ = CountFromStore(*own, "Centerpoints", centerPoints_);
    loaded.replicates_ = CountFromStore(*own, "Replicates", replicates_);
    loaded.replicatedRuns_ = CountFromStore(*own, "ReplicatedRuns", replicatedRuns_);
    loaded.maxRuns_ = CountFromStore(*own, "MaxRuns", maxRuns_);
    own->ReadFloat("StarDistance", &loaded.starDistance_);
    std::string objective;
    std::string model;
    own->ReadString("Objective", &objective);
    own->ReadString("Model", &model);
    loaded.objective_ = EObjective::GetType(objective);
    loaded.model_ = EModel::GetType(model);
    loaded.generators_ = std::make_shared<Generators>(1);
    if (!loaded.generators_->Load(own.get(), nullptr, {})) {
        loaded.generators_.reset();
    }
    if (loaded.designSpecificOptions_) {
        if (const auto specific = own->OpenSection(cSpecificSection)) {
            loaded.designSpecificOptions_->Load(specific.get());
        }
    }
    int created = 0;
    if (own->ReadInt("CreatedByDesign", &created)) {
        loaded.createdFromDesign_ = static_cast<EDesign::Type>(created);
    }
    *this = std::move(loaded);
    return true;
}

json_value DesignOptions::ToJson() const {
    json_value value = json_value::make_object();
    value.put_child("blocks") = CountToJson(blocks_);
    value.put_child("runs") = CountToJson(runs_);
    value.put_child("centerPoints") = CountToJson(centerPoints_);
    // Deliberate: this fixed name of the format holds the replicates.
    value.put_child("replicatedDesigns") = CountToJson(replicates_);
    value.put_child("replicatedRuns") = CountToJson(replicatedRuns_);
    value.put_child("maxRuns") = CountToJson(maxRuns_);
    value.put_child("starDistance") = static_cast<double>(starDistance_);
    if (generators_) {
        value.put_child("generators") = generators_->ToJson();
    }
    if (designSpecificOptions_) {
        value.put_child("designSpecificOptions") = designSpecificOptions_->ToJson();
    }
    return value;
}

void DesignOptions::FromJson(const json_value& value) {
    if (!value.is_object()) {
        return;
    }
    DesignOptions read = *this;
    read.blocks_ = CountFromJson(value, "blocks", 1);
    read.runs_ = CountFromJson(value, "runs");
    read.centerPoints_ = CountFromJson(value, "centerPoints");
    read.replicates_ = CountFromJson(value, "replicatedDesigns", 0);
    read.replicatedRuns_ = CountFromJson(value, "replicatedRuns", 0);
    read.maxRuns_ = CountFromJson(value, "maxRuns", cNoRunLimit);
    const bool hasDistance =
        value.has_child("starDistance") && value.get_child("starDistance").is_number();
    read.starDistance_ = hasDistance
                             ? static_cast<float>(value.get_child("starDistance").get_float())
                             : cNoStarDistance;
    if (value.has_child("generators")) {
        read.generators_ = std::make_shared<Generators>(1);
        read.generators_->FromJson(value.get_child("generators"));
    }
    if (read.designSpecificOptions_ && value.has_child("designSpecificOptions") &&
        value.get_child("designSpecificOptions").is_object()) {
        read.designSpecificOptions_->FromJson(value.get_child("designSpecificOptions"));
    }
    *this = std::move(read);
}
