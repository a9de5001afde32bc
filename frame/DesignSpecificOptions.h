#pragma once

#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"
#include "frame/CandidateSet.h"
#include "frame/Constraints.h"
#include "frame/EModel.h"

class ConfigurationSection;
class Factors;

/// Base of every family's own options. It holds what any family may be given: constraints on the
/// runs and a candidate set.
///
/// Deliberate: no virtual destructor. Instances are held through shared handles that were made with
/// the concrete type, and only so.
class QORVA_EXPORT DesignSpecificOptions {
  public:
    [[nodiscard]] virtual const NCDOE::Constraints& GetConstraints() const { return constraints_; }
    /// Writes the child section "DesignSpecificOptions". The base stores neither constraints nor
    /// candidate set.
    virtual void Save(ConfigurationSection* section) const;
    /// True when that child section exists.
    virtual bool Load(const ConfigurationSection* section);
    virtual void Remove(ConfigurationSection* section) const;
    virtual void FromJson(const json_value& value);
    [[nodiscard]] virtual json_value ToJson() const;
    /// Tells a family that keeps a mixture model of its own which one the design starts with.
    virtual void SetMixtureModel(EModel::Type model);

    [[nodiscard]] const CandidateSet& GetCandidateSet() const { return candidateSet_; }
    void SetCandidateSet(const CandidateSet& candidateSet) { candidateSet_ = candidateSet; }

    /// Replaces the constraints. An empty list is always taken.
    /// @throws Exception for a factor index that is negative or above the factor count, for a
    /// factor
    ///         that is neither Quantitative nor Formulation, and for a constraint over both kinds;
    ///         the old list stays. Deliberate: the index equal to the factor count is let through
    ///         here, and the answer of `factors` decides.
    void SetConstraints(const NCDOE::Constraints& constraints, const Factors& factors);

  private:
    CandidateSet candidateSet_;
    NCDOE::Constraints constraints_;
};
