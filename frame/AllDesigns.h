#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"
#include "frame/EDesign.h"
#include "frame/EModel.h"
#include "frame/EObjective.h"

class DesignBuilder;
class Factors;

/// The one place where all design families are known: ordered lists of builders. Each list is made
/// on first use, which is safe from any thread, and only read afterwards.
class QORVA_EXPORT AllDesigns {
  public:
    /// The classic families, as EDesign::GetClassicDesigns.
    [[nodiscard]] static const AllDesigns& ClassicDesigns();
    /// The classic families, then the builders that serve as parts of plate designs only.
    [[nodiscard]] static const AllDesigns& ClassicAndREDMUPDesigns();
    /// The previous list, then the families that are asked for by name.
    [[nodiscard]] static const AllDesigns& AllPossibleDesigns();

    /// The builders of the families that are asked for by name; made on first use.
    [[nodiscard]] static std::shared_ptr<const DesignBuilder> GetStabilityBuilder();
    [[nodiscard]] static std::shared_ptr<const DesignBuilder> GetREDMUPBuilder();
    [[nodiscard]] static std::shared_ptr<const DesignBuilder> GetGeneralizedSubsetBuilder();

    /// The first builder of AllPossibleDesigns() of that type and exactly that data; for Custom any
    /// data will do. An empty handle when there is none.
    [[nodiscard]] static std::shared_ptr<const DesignBuilder> GetDesignBuilder(
        EDesign::Type type, const std::string& data);

    void Add(std::shared_ptr<const DesignBuilder> builder);
    [[nodiscard]] const std::vector<std::shared_ptr<const DesignBuilder>>& GetAllDesigns() const {
        return builders_;
    }

    /// Some builder of this list is valid, with its default options under the objective, the model
    /// (for process and mixture factors alike) and the run limit. False without factors.
    [[nodiscard]] bool IsAnyDesignValid(EObjective::Type objective,
                                        EModel::Type model,
                                        int maxRuns,
                                        const Factors& factors,
                                        bool redmupOnly) const;

  private:
    AllDesigns() = default;

    std::vector<std::shared_ptr<const DesignBuilder>> builders_;
};
