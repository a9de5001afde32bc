#include "host/FactorReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>

#include "host/HostError.h"
#include "host/Study.h"

namespace {

// Rounding of a sum of shares that were written as decimals.
constexpr double cShareTolerance = 1e-6;

// The worksheet's own columns.
constexpr std::array<std::string_view, 3> cReservedNames{"StdOrder", "RunOrder", "Block"};

using KindName = std::pair<std::string_view, TransformStruct::Kind>;
constexpr std::array<KindName, 6> cTransformKinds{{{"log10", TransformStruct::Log10},
                                                   {"neglog10", TransformStruct::NegLog10},
                                                   {"ln", TransformStruct::Ln},
                                                   {"power", TransformStruct::Power},
                                                   {"exp", TransformStruct::Exp},
                                                   {"logit", TransformStruct::Logit}}};

// A filler as it was read, with the range that the user may have given it.
struct FillerFactor {
    StudyFactors::Filler filler;
    double low = 0;
    double high = 1;
};

CEType::EType ReadType(const JsonPlace& place) {
    const CEType::EType type = CEType::GetEnum(place.Text());
    // Time is a factor that stability designs bring along themselves.
    if (type == CEType::NotDefined || type == CEType::Time) {
        place.Refuse(
            "is no type of factor; allowed are Quantitative, Multilevel, Qualitative, Formulation "
            "and Filler");
    }
    return type;
}

bool IsFiller(const JsonPlace& place, CEType::EType type) {
    return type == CEType::Filler ||
           (type == CEType::Formulation && place.Has("filler") && place.Member("filler").Flag());
}

// The members that belong to a type; a member of another type is most likely a mistake.
std::vector<std::string_view> MembersOf(CEType::EType type) {
    switch (type) {
        case CEType::Quantitative:
            return {"name", "type", "unit", "low", "high", "transform"};
        case CEType::Multilevel:
            return {"name", "type", "unit", "settings", "transform"};
        case CEType::Qualitative:
            return {"name", "type", "unit", "levels"};
        case CEType::Formulation:
            return {"name", "type", "unit", "low", "high", "filler"};
        default:
            return {"name", "type", "unit", "low", "high"};
    }
}

std::string ReadName(const JsonPlace& place, std::set<std::string>& taken) {
    const JsonPlace member = place.Member("name");
    std::string name = member.Name();
    if (std::find(cReservedNames.begin(), cReservedNames.end(), name) != cReservedNames.end()) {
        member.Refuse("is the name of a worksheet column of its own; choose another name");
    }
    if (!taken.insert(name).second) {
        member.Refuse("names two factors; every factor must have a name of its own");
    }
    return name;
}

std::string ReadUnit(const JsonPlace& place) {
    if (!place.Has("unit") || place.Member("unit").Text().empty()) {
        return {};
    }
    return place.Member("unit").Name();
}

TransformStruct::Kind ReadKind(const JsonPlace& place) {
    const std::string name = place.Text();
    const auto found = std::find_if(cTransformKinds.begin(),
                                    cTransformKinds.end(),
                                    [&](const KindName& kind) { return kind.first == name; });
    if (found == cTransformKinds.end()) {
        place.Refuse("is no transform; allowed are log10, neglog10, ln, power, exp and logit");
    }
    return found->second;
}

TransformStruct ReadTransform(const JsonPlace& place) {
    if (place.Value().is_string()) {
        return TransformStruct(ReadKind(place));
    }
    if (!place.Value().is_object()) {
        place.Refuse("must be the name of a transform or an object with its kind");
    }
    place.RequireMembers({"kind", "scale", "offset", "exponent"});
    TransformStruct transform(ReadKind(place.Member("kind")));
    const auto read = [&](std::string_view name, float& parameter) {
        if (place.Has(name)) {
            parameter = place.Member(name).Number();
        }
    };
    read("scale", transform.scale);
    read("offset", transform.offset);
    read("exponent", transform.exponent);
    if (transform.scale == 0) {
        place.Member("scale").Refuse("must not be 0");
    }
    if (transform.exponent == 0) {
        place.Member("exponent").Refuse("must not be 0");
    }
    if (place.Has("exponent") && transform.kind != TransformStruct::Power) {
        place.Member("exponent").Refuse("belongs to the transform power alone");
    }
    return transform;
}

float ImageOf(const TransformStruct& transform, float value, const JsonPlace& place) {
    float image = value;
    transform.TransformValue(&image);
    if (image == Factors::cNoValue) {
        place.Refuse("has no image under the factor's transform");
    }
    return image;
}

// Coded values are formed in float from the ends' sum and difference.
void RequireSpan(float low, float high, const JsonPlace& place) {
    if (!std::isfinite(high - low) || !std::isfinite(low + high)) {
        place.Fail(
            fmt::format("the range from {} to {} is too wide; its ends must add up to less "
                        "than 3.4e38.",
                        low,
                        high));
    }
}

void ReadRange(const JsonPlace& place, StudyFactor& factor) {
    const JsonPlace low = place.Member("low");
    const JsonPlace high = place.Member("high");
    factor.low = low.Number();
    factor.high = high.Number();
    if (factor.low >= factor.high) {
        low.Refuse(fmt::format("must be less than the high setting {}", factor.high));
    }
    RequireSpan(factor.low, factor.high, place);
    if (factor.transform) {
        const float lowImage = ImageOf(*factor.transform, factor.low, low);
        const float highImage = ImageOf(*factor.transform, factor.high, high);
        RequireSpan(lowImage, highImage, place);
        if (lowImage == highImage) {
            low.Refuse(fmt::format(
                "and the high setting {} have the same image under the factor's transform",
                factor.high));
        }
    }
}

void ReadSettings(const JsonPlace& place, StudyFactor& factor) {
    for (const JsonPlace& element : place.Elements(2, StudyLimits::cMaxLevels)) {
        const float setting = element.Number();
        if (!factor.settings.empty() && setting <= factor.settings.back()) {
            element.Refuse(
                fmt::format("must be above the setting before it, {}: settings ascend "
                            "and occur once",
                            factor.settings.back()));
        }
        if (factor.transform) {
            ImageOf(*factor.transform, setting, element);
        }
        factor.settings.push_back(setting);
    }
    RequireSpan(factor.settings.front(), factor.settings.back(), place);
}

void ReadLevels(const JsonPlace& place, StudyFactor& factor) {
    std::set<std::string> taken;
    for (const JsonPlace& element : place.Elements(2, StudyLimits::cMaxLevels)) {
        factor.levels.push_back(element.Name());
        if (!taken.insert(factor.levels.back()).second) {
            element.Refuse("occurs twice; every level must have a name of its own");
        }
    }
}

StudyFactor ReadFactor(const JsonPlace& place, CEType::EType type, std::set<std::string>& taken) {
    StudyFactor factor;
    factor.name = ReadName(place, taken);
    factor.unit = ReadUnit(place);
    factor.type = type;
    if (place.Has("transform")) {
        factor.transform = ReadTransform(place.Member("transform"));
    }
    if (type == CEType::Multilevel) {
        ReadSettings(place.Member("settings"), factor);
    } else if (type == CEType::Qualitative) {
        ReadLevels(place.Member("levels"), factor);
    } else {
        ReadRange(place, factor);
    }
    if (type == CEType::Formulation && (factor.low < 0 || factor.high > 1)) {
        place.Member(factor.low < 0 ? "low" : "high").Refuse("must be a share from 0 to 1");
    }
    return factor;
}

FillerFactor ReadFiller(const JsonPlace& place, std::size_t number, std::set<std::string>& taken) {
    FillerFactor filler;
    filler.filler.name = ReadName(place, taken);
    filler.filler.unit = ReadUnit(place);
    filler.filler.place = number;
    const auto read = [&](std::string_view name, double& share) {
        if (place.Has(name)) {
            share = place.Member(name).WideNumber();
            if (share < 0 || share > 1) {
                place.Member(name).Refuse("must be a share from 0 to 1");
            }
        }
    };
    read("low", filler.low);
    read("high", filler.high);
    if (filler.low >= filler.high) {
        place.Fail("the filler's low setting must be less than its high setting.");
    }
    return filler;
}

// What the other formulation factors leave at their extremes must be a share that the filler can
// take, since nothing else keeps a design from asking for it.
void RequireRoomFor(const FillerFactor& filler,
                    const std::vector<StudyFactor>& factors,
                    const JsonPlace& place) {
    double sumLow = 0;
    double sumHigh = 0;
    bool any = false;
    for (const StudyFactor& factor : factors) {
        if (factor.type == CEType::Formulation) {
            any = true;
            sumLow += static_cast<double>(factor.low);
            sumHigh += static_cast<double>(factor.high);
        }
    }
    if (!any) {
        place.Fail("a filler needs at least one other factor of type Formulation beside it.");
    }
    if (1 - sumHigh < filler.low - cShareTolerance) {
        place.Fail(
            fmt::format("the high settings of the other formulation factors add up to {:.6g} "
                        "and must leave the filler at least {:.6g} of the whole.",
                        sumHigh,
                        filler.low));
    }
    if (1 - sumLow > filler.high + cShareTolerance) {
        place.Fail(
            fmt::format("the low settings of the other formulation factors add up to {:.6g} "
                        "and must leave the filler at most {:.6g} of the whole.",
                        sumLow,
                        filler.high));
    }
}

}  // namespace

StudyFactors ReadFactors(const JsonPlace& place) {
    std::vector<StudyFactor> factors;
    std::optional<FillerFactor> filler;
    std::optional<JsonPlace> fillerPlace;
    std::set<std::string> taken;
    const std::vector<JsonPlace> elements = place.Elements(1, StudyLimits::cMaxFactors);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const JsonPlace& element = elements[i];
        if (!element.Value().is_object()) {
            element.Refuse("must be an object");
        }
        const CEType::EType type = ReadType(element.Member("type"));
        element.RequireMembers(MembersOf(type));
        if (!IsFiller(element, type)) {
            factors.push_back(ReadFactor(element, type, taken));
            continue;
        }
        if (filler) {
            element.Fail("a study can have one filler only, and there is one before this factor.");
        }
        filler = ReadFiller(element, i, taken);
        fillerPlace = element;
    }
    if (!filler) {
        return {std::move(factors), std::nullopt};
    }
    RequireRoomFor(*filler, factors, *fillerPlace);
    return {std::move(factors), filler->filler};
}
