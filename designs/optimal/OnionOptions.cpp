#include "designs/optimal/OnionOptions.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "designs/optimal/OnionBuilder.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cBaseSection = "DesignSpecificOptions";
constexpr const char* cSection = "OnionOptions";
constexpr const char* cLayersSection = "Layers";
constexpr const char* cLayerSection = "LayersOption";
constexpr const char* cRatioKey = "Ratio";
constexpr const char* cRunsKey = "Runs";
constexpr const char* cRepetitionsKey = "Repetitions";
constexpr const char* cModelKey = "Model";
constexpr const char* cTermSection = "OptModels";
constexpr const char* cTermKey = "OptModel";

/// How many runs a layer may have.
struct Bounds {
    int low = 0;
    int high = 0;

    // Where few candidates leave no room, the terms win: a layer that cannot be estimated is of no
    // use, one that repeats candidates is.
    [[nodiscard]] int Hold(long long runs) const {
        return static_cast<int>(std::max<long long>(std::min<long long>(runs, high), low));
    }
};

int TermsOf(const LayerOption& layer, const Factors& factors) {
    if (layer.OptModels.empty()) {
        return OnionBuilder::GetDefaultNoModelTerms(
            layer.Model, static_cast<int>(factors.GetDesignFactorCount()));
    }
    // The constant is estimated whether the list names it or not.
    const auto beside =
        std::ranges::count_if(layer.OptModels, [](const auto& term) { return !term.empty(); });
    return static_cast<int>(beside) + 1;
}

std::vector<Bounds> BoundsOf(const std::vector<LayerOption>& layers,
                             const OnionBuilder& builder,
                             const Factors& factors,
                             const DesignOptions& options) {
    std::vector<Bounds> bounds;
    bounds.reserve(layers.size());
    for (const LayerOption& layer : layers) {
        const int terms = TermsOf(layer, factors);
        const int number = static_cast<int>(bounds.size()) + 1;
        bounds.push_back({builder.GetMinimumRunsPerLayer(terms),
                          builder.GetMaximumRunsPerLayer(options, terms, number)});
    }
    return bounds;
}

void SaveLayer(const LayerOption& layer, ConfigurationSection& section) {
    section.WriteDouble(cRatioKey, static_cast<double>(layer.Ratio));
    section.WriteInt(cRunsKey, layer.Runs);
    section.WriteInt(cRepetitionsKey, layer.Repetitions);
    section.WriteInt(cModelKey, layer.Model);
    int index = 0;
    for (const std::vector<int>& term : layer.OptModels) {
        section.OpenOrCreateSection(cTermSection, ++index)->WriteIntVector(cTermKey, term);
    }
}

LayerOption LoadLayer(const ConfigurationSection& section) {
    LayerOption layer;
    section.ReadFloat(cRatioKey, &layer.Ratio);
    section.ReadInt(cRunsKey, &layer.Runs);
    section.ReadInt(cRepetitionsKey, &layer.Repetitions);
    int model = 0;
    // A number that is no model counts as missing.
    if (section.ReadInt(cModelKey, &model) && model >= EModel::None &&
        model <= EModel::LinearQuadratic) {
        layer.Model = static_cast<EModel::Type>(model);
    }
    const int terms = section.SectionCount(cTermSection);
    layer.OptModels.resize(static_cast<std::size_t>(terms));
    for (int i = 1; i <= terms; ++i) {
        section.OpenSection(cTermSection, i)
            ->ReadIntVector(cTermKey, &layer.OptModels[static_cast<std::size_t>(i) - 1]);
    }
    return layer;
}

}  // namespace

OnionOptions::OnionOptions(const OnionBuilder& builder,
                           const Factors& factors,
                           const DesignOptions& options) {
    const int layers =
        OnionBuilder::GetDefaultLayers(options, static_cast<int>(factors.GetDesignFactorCount()));
    if (layers >= 1) {
        SetLayers(layers, builder, factors, options);
    }
}

const LayerOption& OnionOptions::GetLayer(int layer) const {
    if (layer < 1 || layer > GetLayerCount()) {
        throw InvalidOperationException("OnionOptions::GetLayer");
    }
    return layers_[static_cast<std::size_t>(layer) - 1];
}

LayerOption& OnionOptions::GetLayer(int layer) {
    return const_cast<LayerOption&>(std::as_const(*this).GetLayer(layer));
}

void OnionOptions::SetLayers(int layers,
                             const OnionBuilder& builder,
                             const Factors& factors,
                             const DesignOptions& options) {
    if (layers < 1 || layers > cMaxLayers) {
        throw Exception(ExceptionMessage::translate("Illegal number of layers"));
    }
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    const auto terms = [count](EModel::Type model) {
        return static_cast<unsigned int>(OnionBuilder::GetDefaultNoModelTerms(model, count));
    };
    // Explicit terms of earlier layers go as well: they would not fit the new models.
    LayerOption inner;
    inner.Runs = builder.GetRecommendedRunsPerLayer(terms(EModel::Linear), true);
    layers_.assign(static_cast<std::size_t>(layers), inner);
    for (int layer = 1; layer < layers; ++layer) {
        GetLayer(layer).Ratio = static_cast<float>(layer) / static_cast<float>(layers);
    }
    LayerOption& last = layers_.back();
    last.Ratio = 1.0F;
    last.Model = options.GetModel();
    last.Runs = builder.GetRecommendedRunsPerLayer(terms(last.Model), false);
}

bool OnionOptions::SetTotalRuns(int runs, const Factors& factors, const DesignOptions& options) {
    if (layers_.empty()) {
        return runs == 0;
    }
    const auto missing = [&] { return static_cast<long long>(runs) - GetTotalRuns(); };
    if (missing() == 0) {
        return true;
    }
    const auto registered = AllDesigns::GetDesignBuilder(EDesign::OnionDOpt, "");
    const auto& builder = dynamic_cast<const OnionBuilder&>(*registered);
    const std::vector<Bounds> bounds = BoundsOf(layers_, builder, factors, options);
    const long long share = missing() / GetLayerCount();
    for (std::size_t i = 0; i < layers_.size(); ++i) {
        layers_[i].Runs = bounds[i].Hold(layers_[i].Runs + share);
    }
    // What the even spreading left over, from the last layer inwards.
    for (std::size_t i = layers_.size(); i-- > 0 && missing() != 0;) {
        layers_[i].Runs = bounds[i].Hold(layers_[i].Runs + missing());
    }
    return missing() == 0;
}

int OnionOptions::GetTotalRuns() const {
    long long total = 0;
    for (const LayerOption& layer : layers_) {
        total += layer.Runs;
    }
    return static_cast<int>(std::clamp<long long>(total, INT_MIN, INT_MAX));
}

void OnionOptions::Save(ConfigurationSection* section) const {
    // Layers of an earlier, longer list must not come back.
    Remove(section);
    DesignSpecificOptions::Save(section);
    const auto base = section->OpenOrCreateSection(cBaseSection);
    GetCandidateSet().Save(base.get());
    const auto own = base->OpenOrCreateSection(cSection)->OpenOrCreateSection(cLayersSection);
    int index = 0;
    for (const LayerOption& layer : layers_) {
        SaveLayer(layer, *own->OpenOrCreateSection(cLayerSection, ++index));
    }
}

bool OnionOptions::Load(const ConfigurationSection* section) {
    if (!DesignSpecificOptions::Load(section)) {
        return false;
    }
    const auto base = section->OpenSection(cBaseSection);
    const auto own = base->OpenSection(cSection);
    const auto layers = own ? own->OpenSection(cLayersSection) : nullptr;
    if (!layers) {
        return false;
    }
    CandidateSet candidates;  // a missing one is empty
    candidates.Load(base.get());
    SetCandidateSet(candidates);
    layers_.clear();
    const int count = layers->SectionCount(cLayerSection);
    layers_.reserve(static_cast<std::size_t>(count));
    for (int index = 1; index <= count; ++index) {
        layers_.push_back(LoadLayer(*layers->OpenSection(cLayerSection, index)));
    }
    return true;
}

json_value OnionOptions::ToJson() const {
    throw Exception(
        ExceptionMessage::translate("This design does not support being saved as json."));
}
