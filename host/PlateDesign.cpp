#include "host/PlateDesign.h"

#include <fmt/format.h>

#include <algorithm>

#include "foundation/utl/QvStdString.h"
#include "host/DesignNames.h"
#include "host/HostError.h"
#include "host/JsonPlace.h"

namespace {

using Group = std::vector<unsigned long long>;
using SubDesign = REDMUPOptions::REDMUPSubDesign;

bool Holds(const Group& group, unsigned long long factor) {
    return std::find(group.begin(), group.end(), factor) != group.end();
}

std::string NamesText(const Group& group, const StudyFactors& factors) {
    std::vector<std::string> names;
    for (const std::string& name : FactorNames(group, factors)) {
        names.push_back(Quoted(name));
    }
    return ListOf(names, "and");
}

REDMUPOptions::EPlateSize SizeOf(const PlateArguments& arguments) {
    switch (arguments.size.value_or(96)) {
        case 96:
            return REDMUPOptions::Wells96;
        case 384:
            return REDMUPOptions::Wells384;
        case 1536:
            return REDMUPOptions::Wells1536;
        default:
            FailWith(
                fmt::format("--size: there is no plate of {} wells; allowed are 96, 384 and "
                            "1536.",
                            *arguments.size));
    }
}

int PlateCount(const PlateArguments& arguments) {
    const long long plates = arguments.plates.value_or(1);
    const long long most = StudyLimits::cMaxRuns / arguments.size.value_or(96);
    if (plates < 1 || plates > most) {
        FailWith(fmt::format("--plates: {} must be a whole number from 1 to {}.", plates, most));
    }
    return static_cast<int>(plates);
}

bool WantsPlateColumn(const PlateArguments& arguments) {
    if (arguments.plateFactors.empty() || EqualsIgnoringCase(arguments.plateFactors, "no")) {
        return false;
    }
    if (!EqualsIgnoringCase(arguments.plateFactors, "yes")) {
        FailWith(
            fmt::format("--plate-factors: {} must be yes or no.", Quoted(arguments.plateFactors)));
    }
    if (PlateCount(arguments) == 1) {
        FailWith("--plate-factors: a single plate has no letter to tell; ask for more --plates.");
    }
    return true;
}

Group ParseGroup(const std::string& text, const char* option, const StudyFactors& factors) {
    Group group;
    for (const std::string& part : QvStdString::Split(text, ",")) {
        const std::string name(Trimmed(part));
        const int factor = factors.Find(name);
        if (factor < 0) {
            Group all;
            for (unsigned int i = 0; i < factors.GetDesignFactorCount(); ++i) {
                all.push_back(i);
            }
            FailWith(fmt::format("{}: {} is no factor of the study; its factors are {}.",
                                 option,
                                 Quoted(name),
                                 NamesText(all, factors)));
        }
        if (Holds(group, static_cast<unsigned long long>(factor))) {
            FailWith(fmt::format("{}: the factor {} is named twice.", option, Quoted(name)));
        }
        group.push_back(static_cast<unsigned long long>(factor));
    }
    return group;
}

Group OthersThan(const Group& group, const StudyFactors& factors) {
    Group others;
    for (unsigned long long factor = 0; factor < factors.GetDesignFactorCount(); ++factor) {
        if (!Holds(group, factor)) {
            others.push_back(factor);
        }
    }
    return others;
}

// Takes the groups that the user named; the engine divides the factors where there are none.
void SetGroups(REDMUPOptions& options, const Study& study, const PlateArguments& arguments) {
    const StudyFactors& factors = study.factors;
    Group& horizontal = options.GetHorizontalDesign().factors;
    Group& vertical = options.GetVerticalDesign().factors;
    if (arguments.horizontal) {
        horizontal = ParseGroup(*arguments.horizontal, "--horizontal", factors);
    }
    if (arguments.vertical) {
        vertical = ParseGroup(*arguments.vertical, "--vertical", factors);
    }
    if (arguments.horizontal && !arguments.vertical) {
        vertical = OthersThan(horizontal, factors);
    } else if (arguments.vertical && !arguments.horizontal) {
        horizontal = OthersThan(vertical, factors);
    }
    for (const unsigned long long factor : vertical) {
        if (Holds(horizontal, factor)) {
            FailWith(fmt::format("--vertical: the factor {} stands in --horizontal, too.",
                                 Quoted(FactorNames({factor}, factors).front())));
        }
    }
    if (horizontal.empty() || vertical.empty()) {
        throw NoValidDesign(
            fmt::format("{}: no factor is left for the {} of the plate; each side needs one that "
                        "does not have to add up with the other side's.",
                        study.file,
                        horizontal.empty() ? "columns" : "rows"));
    }
}

void RequirePlatesFor(const REDMUPOptions& options, const Study& study) {
    const Group group = options.GetPlateFactors(study.factors);
    if (group.empty()) {
        return;
    }
    const std::string names = NamesText(group, study.factors);
    if (options.GetNumPlates() == 1) {
        FailWith(
            fmt::format("--plates: {} would have no value on a single plate; ask for {} plates, or "
                        "name every factor in --horizontal or --vertical.",
                        names,
                        group.size() < 20 ? std::to_string(1 << group.size()) : "more"));
    }
    if (group.size() >= 20 || 1 << group.size() != options.GetNumPlates()) {
        FailWith(
            fmt::format("--plates: {} plates cannot hold all combinations of {}; wanted are {}.",
                        options.GetNumPlates(),
                        names,
                        group.size() < 20 ? std::to_string(1 << group.size())
                                          : "2 to the number of these factors"));
    }
}

// One side of the plate, in the words of messages.
struct Side {
    const char* option;  // of its design
    const char* wells;
    SubDesign* design;
    int size;
};

// Sets the family's design that fills the side: its default runs, else the most that fit.
bool TrySetDesign(SubDesign& design, const DesignBuilder& builder, const Factors& all, int size) {
    // Its runs are candidates in real units, which are no settings of a plate.
    if (builder.IsDesign() == EDesign::OnionDOpt) {
        return false;
    }
    const auto view = design.GetREDMUPFactors(all);
    DesignOptions options(builder, *view);
    const EModel::Type model = options.GetModel();
    std::vector<unsigned int> runs{options.GetRuns()};
    options.SetMaxRuns(static_cast<unsigned int>(size));
    std::vector<unsigned int> legal = builder.GetLegalRuns(*view, options);
    runs.insert(runs.end(), legal.rbegin(), legal.rend());
    const Group group = design.factors;
    return std::any_of(runs.begin(), runs.end(), [&](unsigned int count) {
        return count > 0 && count <= static_cast<unsigned int>(size) &&
               design.SetDesign(
                   all, group, builder.IsDesign(), builder.GetDesignData(), count, 0, model, size);
    });
}

std::vector<std::string> FittingDesigns(const Side& side, const Study& study) {
    std::vector<std::string> names;
    for (const auto& builder : AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns()) {
        SubDesign trial;
        trial.factors = side.design->factors;
        trial.runOrder = side.design->runOrder;
        if (TrySetDesign(trial, *builder, study.factors, side.size)) {
            names.push_back(builder->GetShortString());
        }
    }
    return names;
}

void SetNamedDesign(const Side& side, const std::string& name, const Study& study) {
    if (name.empty()) {
        return;
    }
    const BuilderHandle builder = FindBuilder(name);
    if (builder && TrySetDesign(*side.design, *builder, study.factors, side.size)) {
        return;
    }
    const std::vector<std::string> fitting = FittingDesigns(side, study);
    const std::string allowed = fitting.empty() ? "none" : ListOf(fitting, "and");
    if (!builder) {
        FailWith(fmt::format(
            "{}: {} is no design; allowed here: {}.", side.option, Quoted(name), allowed));
    }
    throw NoValidDesign(fmt::format("{}: {} cannot fill {} {} with {}; allowed: {}.",
                                    side.option,
                                    builder->GetShortString(),
                                    side.size,
                                    side.wells,
                                    NamesText(side.design->factors, study.factors),
                                    allowed));
}

void RequireDesign(const Side& side, const Study& study) {
    if (!side.design->options) {
        throw NoValidDesign(
            fmt::format("{}: no design fills {} {} of a plate with {}; try other groups "
                        "(--horizontal, --vertical) or another --size.",
                        study.file,
                        side.size,
                        side.wells,
                        NamesText(side.design->factors, study.factors)));
    }
}

void SetDesigns(REDMUPOptions& options, const Study& study, const PlateArguments& arguments) {
    const Side horizontal{"--horizontal-design",
                          "columns",
                          &options.GetHorizontalDesign(),
                          static_cast<int>(options.GetHorizontalSize())};
    const Side vertical{"--vertical-design",
                        "rows",
                        &options.GetVerticalDesign(),
                        static_cast<int>(options.GetVerticalSize())};
    SetNamedDesign(horizontal, arguments.horizontalDesign, study);
    SetNamedDesign(vertical, arguments.verticalDesign, study);
    RequireDesign(horizontal, study);
    RequireDesign(vertical, study);
}

bool IsMixtureDesign(const SubDesign& design) {
    const auto builder = AllDesigns::GetDesignBuilder(design.designType, design.designData);
    return builder && builder->IsMixtureOnlyDesign();
}

// Proportions run from the low setting up, or from the high one down.
void CodeProportions(NCDataMatrix<float>& matrix,
                     const SubDesign& design,
                     const StudyFactors& factors) {
    const bool upwards = MixtureUtilities::IsSimplexLower(*design.GetREDMUPFactors(factors), false);
    for (const unsigned long long factor : design.factors) {
        const int column = static_cast<int>(factor) + 1;
        for (int run = 1; run <= matrix.SizeRows(); ++run) {
            const float code = 2 * matrix(run, column) - 1;
            matrix(run, column, upwards ? code : -code);
        }
    }
}

}  // namespace

std::vector<std::string> FactorNames(const std::vector<unsigned long long>& group,
                                     const StudyFactors& factors) {
    std::vector<std::string> names;
    names.reserve(group.size());
    for (const unsigned long long factor : group) {
        names.push_back(factors.At(static_cast<int>(factor)).name);
    }
    return names;
}

const REDMUPOptions& PlateDesign::Plates() const {
    return dynamic_cast<const REDMUPOptions&>(*options.GetDesignSpecificOptions());
}

NCDataMatrix<float> PlateDesign::CodedMatrix(const StudyFactors& factors) const {
    NCDataMatrix<float> matrix = *design->GetDesignMatrix();
    for (const SubDesign* side : {&Plates().GetHorizontalDesign(), &Plates().GetVerticalDesign()}) {
        if (IsMixtureDesign(*side)) {
            CodeProportions(matrix, *side, factors);
        }
    }
    return matrix;
}

PlateDesign MakePlateDesign(const Study& study, const PlateArguments& arguments) {
    const REDMUPOptions::EPlateSize size = SizeOf(arguments);
    const int plates = PlateCount(arguments);
    const bool hasPlateColumn = WantsPlateColumn(arguments);
    if (!study.constraints.IsEmpty()) {
        throw NoValidDesign(fmt::format(
            "{}: constraints: the designs of plates keep to no constraints.", study.file));
    }
    if (arguments.validating) {
        D_Optimal::SetValidating();
    }
    auto options = std::make_shared<REDMUPOptions>(study.factors);
    options->SetNumPlates(static_cast<REDMUPOptions::ENumPlates>(plates));
    options->SetPlateFactorsUse(hasPlateColumn ? REDMUPOptions::WithPlateColumn
                                               : REDMUPOptions::WithoutPlateColumn);
    SetGroups(*options, study, arguments);
    RequirePlatesFor(*options, study);
    // A design of the default groups must not stay where the new ones have none.
    options->GetHorizontalDesign().options.reset();
    options->GetVerticalDesign().options.reset();
    options->SetPlateSize(size, study.factors, true);
    SetDesigns(*options, study, arguments);
    PlateDesign made;
    made.options.SetDesignSpecificOptions(options);
    try {
        made.design = AllDesigns::GetREDMUPBuilder()->Build(study.factors, made.options);
    } catch (const Exception& exception) {
        FailWith(fmt::format("{}: {}", study.file, exception.what()));
    }
    return made;
}
