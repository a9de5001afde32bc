#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/NCDesign.h"

/// A family whose answers a test sets. It records in `calls` which of its defaults were asked for,
/// in order, and which options it saw then.
class ProbeBuilder : public DesignBuilder {
  public:
    struct Call {
        std::string operation;
        DesignOptions options;
    };

    ProbeBuilder() : ProbeBuilder("Probe", "Probe", "Probe") {}
    using DesignBuilder::DesignBuilder;
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    std::unique_ptr<NCDesign> Build(const Factors& /*factors*/,
                                    const DesignOptions& /*options*/,
                                    bool* /*cancel*/) const override {
        return nullptr;
    }
    unsigned int GetDefaultRuns(const Factors& /*factors*/,
                                EObjective::Type objective) const override {
        return defaultRuns(objective);
    }
    unsigned int GetDefaultRuns(const Factors& factors,
                                const DesignOptions& options) const override {
        calls.push_back({"runs", options});
        return DesignBuilder::GetDefaultRuns(factors, options);
    }
    float GetDefaultStarDistance(unsigned int factorCount,
                                 const DesignOptions& options) const override {
        calls.push_back({"star distance of " + std::to_string(factorCount), options});
        return starDistance;
    }
    unsigned int GetDefaultReplicatedRuns() const override { return replicatedRuns; }
    unsigned int GetMinimumCenterPoints() const override { return minimumCenterPoints; }
    std::vector<unsigned int> GetLegalRuns(const Factors& /*factors*/,
                                           const DesignOptions& options) const override {
        calls.push_back({"legal runs", options});
        return legalRuns;
    }
    unsigned char GetPriority(const Factors& /*factors*/) const override { return 0; }
    EDesign::Type IsDesign() const override { return type; }
    bool IsCenterPointsAllowed() const override { return centerPointsAllowed; }
    bool IsMixtureOnlyDesign() const override { return mixtureOnly; }
    bool IsREDMUPRecommended(const Factors& /*factors*/,
                             const DesignOptions& /*options*/) const override {
        return recommended;
    }
    bool IsValid(const Factors& /*factors*/, const DesignOptions& options) const override {
        return valid(options);
    }
    EModel::Type GetDefaultModel(const Factors& /*factors*/,
                                 EObjective::Type objective) const override {
        return defaultModel(objective);
    }
    std::shared_ptr<DesignSpecificOptions> GetDefaultDesignSpecificOptions(
        const Factors& /*factors*/, const DesignOptions& options) const override {
        calls.push_back({"specific options", options});
        return specificOptions;
    }

    EDesign::Type type = EDesign::Plugin;
    bool mixtureOnly = false;
    bool recommended = true;
    bool centerPointsAllowed = true;
    unsigned int minimumCenterPoints = 0;
    unsigned int replicatedRuns = 0;
    float starDistance = -99.0F;
    std::vector<unsigned int> legalRuns{8};
    std::shared_ptr<DesignSpecificOptions> specificOptions;
    std::function<unsigned int(EObjective::Type)> defaultRuns = [](EObjective::Type) { return 8U; };
    std::function<EModel::Type(EObjective::Type)> defaultModel = [](EObjective::Type) {
        return EModel::Quadratic;
    };
    std::function<bool(const DesignOptions&)> valid = [](const DesignOptions&) { return true; };
    mutable std::vector<Call> calls;
};
