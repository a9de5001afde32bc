#include "designs/optimal/OnionDesign.h"

#include <utility>

#include "designs/optimal/OnionLayerSearch.h"
#include "designs/optimal/OnionOptions.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/DesignOptions.h"

namespace {

constexpr const char* cDesignSection = "Design";
constexpr const char* cSection = "OnionDesign";
constexpr const char* cLayerSection = "LayerDOptimal";

const OnionOptions& RequireFamilyOptions(const DesignOptions& options) {
    const auto* family = dynamic_cast<const OnionOptions*>(options.GetDesignSpecificOptions());
    if (family == nullptr) {
        throw InvalidOperationException("An onion design without options of its family.");
    }
    if (family->GetLayerCount() == 0) {
        throw Exception(ExceptionMessage::translate("Illegal number of layers"));
    }
    return *family;
}

}  // namespace

OnionDesign::OnionDesign(const Factors& factors, const DesignOptions& options, bool* cancel)
    : NCDesign(factors) {
    const OnionOptions& family = RequireFamilyOptions(options);
    RequireFinishedSize(family.GetTotalRuns(), options);
    layers_.reserve(static_cast<std::size_t>(family.GetLayerCount()));
    for (int layer = 1; layer <= family.GetLayerCount(); ++layer) {
        layers_.push_back(std::make_shared<D_Optimal>(
            factors, OnionLayers::MakeSearchOptions(layer, factors, options), cancel));
    }
    Stack(options);
}

OnionDesign::OnionDesign(const Factors& factors, const ConfigurationSection& section)
    : NCDesign(factors) {
    Load(&section);
}

OnionDesign::OnionDesign(const OnionDesign& other) : NCDesign(other), CandidatePicks(other) {
    // A selection in one copy must not show in the other.
    layers_.reserve(other.layers_.size());
    for (const auto& layer : other.layers_) {
        layers_.push_back(std::make_shared<D_Optimal>(*layer));
    }
}

void OnionDesign::SelectDesign(int layer, int index, const DesignOptions& options) {
    if (Find(layer) == nullptr) {
        throw InvalidOperationException("OnionDesign::SelectDesign");
    }
    const OnionOptions& family = RequireFamilyOptions(options);
    if (layer > family.GetLayerCount()) {
        throw InvalidOperationException("OnionDesign::SelectDesign");
    }
    layers_[static_cast<std::size_t>(layer) - 1]->SelectDesign(
        index, GetFactors(), OnionLayers::MakeSearchOptions(layer, GetFactors(), options), 0);
    UpdateDesignMatrix(options);
}

void OnionDesign::UpdateDesignMatrix(const DesignOptions& options) {
    RequireFamilyOptions(options);
    int layer = 0;
    for (const auto& design : layers_) {
        ++layer;
        if (design->GetDesignMatrix() == nullptr) {
            design->SelectDesign(design->GetSelectedIndex(),
                                 GetFactors(),
                                 OnionLayers::MakeSearchOptions(layer, GetFactors(), options),
                                 0);
        }
    }
    Stack(options);
}

void OnionDesign::Stack(const DesignOptions& options) {
    NCDataMatrix<float> stack;
    for (const auto& design : layers_) {
        stack.ConcatRows(*design->GetDesignMatrix());
    }
    // Centre points and replicated runs are in the layers already.
    DesignOptions copies;
    copies.SetCenterPoints(0);
    copies.SetReplicates(options.GetReplicates());
    RequireFinishedSize(stack.SizeRows(), copies);
    SetDesignMatrix(stack);
    AddReplicates(options.GetReplicates());
}

void OnionDesign::RemoveGeneratedDesigns() {
    for (const auto& layer : layers_) {
        layer->RemoveGeneratedDesigns();
    }
}

std::shared_ptr<NCDesign> OnionDesign::Clone() const {
    return std::make_shared<OnionDesign>(*this);
}

void OnionDesign::Save(ConfigurationSection* section) const {
    NCDesign::Save(section);
    const auto design = section->OpenOrCreateSection(cDesignSection);
    // Layers of an earlier, longer list must not come back.
    design->RemoveSection(cSection);
    const auto own = design->OpenOrCreateSection(cSection);
    int index = 0;
    for (const auto& layer : layers_) {
        layer->Save(own->OpenOrCreateSection(cLayerSection, ++index).get());
    }
}

bool OnionDesign::Load(const ConfigurationSection* section) {
    if (!NCDesign::Load(section)) {
        return false;
    }
    const auto own = section->OpenSection(cDesignSection)->OpenSection(cSection);
    if (!own) {
        return false;
    }
    const int count = own->SectionCount(cLayerSection);
    Layers layers;
    layers.reserve(static_cast<std::size_t>(count));
    for (int index = 1; index <= count; ++index) {
        layers.push_back(
            std::make_shared<D_Optimal>(GetFactors(), *own->OpenSection(cLayerSection, index)));
    }
    layers_ = std::move(layers);
    // An earlier matrix is not that of these layers.
    ClearDesignMatrix();
    return true;
}

const std::vector<int>& OnionDesign::GetPickedRows(int layer) const {
    static const std::vector<int> none;
    const D_Optimal* design = Find(layer);
    return design != nullptr ? design->GetPickedRows(1) : none;
}

int OnionDesign::GetInclusionRows(int layer) const {
    const D_Optimal* design = Find(layer);
    return design != nullptr ? design->GetInclusionRows(1) : 0;
}

const D_Optimal* OnionDesign::Find(int layer) const {
    return layer >= 1 && layer <= GetLayerCount()
               ? layers_[static_cast<std::size_t>(layer) - 1].get()
               : nullptr;
}
