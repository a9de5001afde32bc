#pragma once

#include <memory>
#include <string>

#include "foundation/stream/Export.h"
#include "frame/DesignBuilder.h"

/// Base of the builders that adapt a classical design to the fixed run count of a plate's side.
/// All have the type Plugin, so one is found by its data and not by its type.
class QORVA_EXPORT CustomREDMUPDesign : public DesignBuilder {
  public:
    /// @param data tells the builders of this type apart
    /// @param strength the priority, up to 255: the smaller, the stronger the proposal; 0 counts as
    /// 1
    CustomREDMUPDesign(const char* shortString,
                       const char* displayName,
                       const char* description,
                       std::string data,
                       unsigned int strength = 1);
    using DesignBuilder::GetDefaultRuns;
    using DesignBuilder::IsValid;

    [[nodiscard]] std::string GetDesignData() const override;
    [[nodiscard]] unsigned char GetPriority(const Factors& factors) const override;
    [[nodiscard]] EDesign::Type IsDesign() const override { return EDesign::Plugin; }
    /// The family that is adapted; Plugin where the design stands for itself.
    [[nodiscard]] virtual EDesign::Type GetBaseDesignType() const = 0;

  private:
    std::string data_;
    unsigned int priority_;
};
