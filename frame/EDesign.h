#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"

class DesignBuilder;

/// The design families.
class QORVA_EXPORT EDesign {
  public:
    /// The numbers are stored in options and design files and index the priority table, and so are
    /// fixed. Rechtschaffner is one number for two designs, told apart by the builder's data text:
    /// "Screening" or "Optimization (RSM)".
    enum Type {
        None = 0,
        FF2 = 1,
        FF3 = 2,
        FFM = 3,
        L9 = 4,
        L18 = 5,
        L27 = 6,
        L36 = 7,
        FFR_III = 8,
        FFR_IV = 9,
        FFR_V = 10,
        PB = 11,
        PB_SS = 12,
        BB = 13,
        CCC = 14,
        CCF = 15,
        CCO = 16,
        RCCF = 17,
        RCCC = 18,
        AxN = 19,
        AxE = 20,
        AxR = 21,
        SimM = 22,
        SimF = 23,
        SimSC = 24,
        SimC = 25,
        DOpt = 26,
        OnionDOpt = 27,
        Rechtschaffner = 28,
        Reserved29 = 29,
        REDMUP = 30,
        Doehlert = 31,
        Levels = 32,
        Custom = 33,
        Plugin = 34,  // a pre-made design, which its data tells
        Reserved35 = 35,
        Stability = 36,
        J2 = 37,
        GeneralizedSubset = 38,
        DefinitiveScreening = 39
    };

    /// Which quality figure picks the best of several generated designs. Stored as its number.
    enum DOptimalSelectBy {
        GEfficiency = 1,
        ConditionNumber = 2,
        LogDeterminant = 3,
        NormalizedLogDeterminant = 4,
        IOptimality = 5
    };

    /// Display name of the registered builder of that type and data; empty without one.
    [[nodiscard]] static std::string GetString(Type type, const std::string& data);
    /// Short string of the registered builder of that type and data; empty without one.
    [[nodiscard]] static std::string GetShortString(Type type, const std::string& data);
    /// Type of the first registered builder whose short string or display name is the text; Plugin
    /// for "Plugin"; None for anything else.
    [[nodiscard]] static Type GetType(const std::string& text);
    /// The short string of the builder with empty data. Types without one, and Rechtschaffner,
    /// which always has data, have no JSON form and give an empty text.
    [[nodiscard]] static json_value ToJson(Type type);
    [[nodiscard]] static Type FromJson(const json_value& value);

    /// CCC, CCF or CCO.
    [[nodiscard]] static bool IsCCDesign(Type type) { return type >= CCC && type <= CCO; }
    [[nodiscard]] static bool IsFractionalFactorial(Type type) {
        return type >= FFR_III && type <= FFR_V;
    }
    [[nodiscard]] static bool IsJ2(Type type) { return type == J2; }
    [[nodiscard]] static bool IsStabilityDesign(Type type) {
        return type == Stability || type == GeneralizedSubset;
    }

    /// The classic builders in their fixed order; made on first use, never changed.
    [[nodiscard]] static const std::vector<std::shared_ptr<const DesignBuilder>>&
    GetClassicDesigns();
};
