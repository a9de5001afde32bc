#include "frame/DesignSpecificOptions.h"

#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/Factors.h"

namespace {

constexpr const char* cSection = "DesignSpecificOptions";

void RequireOneKind(const NCDOE::Constraint& constraint, const Factors& factors) {
    const int count = static_cast<int>(factors.GetDesignFactorCount());
    CEType::EType kind = CEType::NotDefined;
    for (const NCDOE::Constraint::Term& term : constraint.terms) {
        if (term.factor < 0 || term.factor > count) {
            throw Exception(ExceptionMessage::translate("Constraint is out of bounds."));
        }
        const CEType::EType type = factors.GetFactorType(term.factor);
        if (kind == CEType::NotDefined) {
            kind = type;
            if (kind != CEType::Quantitative && kind != CEType::Formulation) {
                throw Exception(ExceptionMessage::translate(
                    "Constraints are only for quantitative and mixture factors."));
            }
        } else if (type != kind) {
            throw Exception(ExceptionMessage::translate(
                "Constraints should not mix quantitative and mixture factors."));
        }
    }
}

}  // namespace

void DesignSpecificOptions::Save(ConfigurationSection* section) const {
    section->OpenOrCreateSection(cSection);
}

bool DesignSpecificOptions::Load(const ConfigurationSection* section) {
    return section->OpenSection(cSection) != nullptr;
}

void DesignSpecificOptions::Remove(ConfigurationSection* section) const {
    section->RemoveSection(cSection);
}

void DesignSpecificOptions::FromJson(const json_value& /*value*/) {}

json_value DesignSpecificOptions::ToJson() const {
    return {};
}

void DesignSpecificOptions::SetMixtureModel(EModel::Type /*model*/) {}

void DesignSpecificOptions::SetConstraints(const NCDOE::Constraints& constraints,
                                           const Factors& factors) {
    for (const NCDOE::Constraint& constraint : constraints.GetConstraints()) {
        RequireOneKind(constraint, factors);
    }
    constraints_ = constraints;
}
