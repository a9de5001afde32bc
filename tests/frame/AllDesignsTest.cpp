#include "frame/AllDesigns.h"

#include <algorithm>
#include <string>
#include <vector>

#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "tests/support/ProbeBuilder.h"
#include "tests/support/TestFactors.h"

namespace {

struct BuilderTexts {
    int type;
    std::string shortString;
    std::string displayName;
    std::string description;

    friend bool operator==(const BuilderTexts&, const BuilderTexts&) = default;
    friend void PrintTo(const BuilderTexts& texts, std::ostream* out) {
        *out << texts.type << " \"" << texts.shortString << "\" \"" << texts.displayName << "\" \""
             << texts.description << '"';
    }
};

// The classic families in the order of proposal.
// clang-format off
const std::vector<BuilderTexts> cClassic{
    {1, "FF2", "Full Fac (2 levels)",
     "Orthogonal (balanced) design with all combinations of the factor levels. Main effects and all interactions are clear of each other (not confounded)."},
    {2, "FF3", "Full Fac (3 levels)",
     "Full factorial design with every factor varied at three levels. You can estimate the full quadratic model."},
    {3, "FFM", "Full Fac (Mixed)",
     "Full factorial designs with some factors at more than two levels. Main effects and all interactions are clear of each other (not confounded)."},
    {4, "L9", "L9 (3 levels)",
     "Fractional design at three levels for up to four factors from the Graeco-Latin square family. You can estimate square terms but not all interactions."},
    {5, "L18", "L18 (3 levels)",
     "Fractional design from the Graeco-Latin square family with one factor at two levels and with up to 8 factors at three levels."},
    {6, "L27", "L27 (3 levels)",
     "Fractional design at three levels for up to 13 factors from the Graeco-Latin square family. You can estimate square terms but not all interactions."},
    {7, "L36", "L36 (3 levels)",
     "Fractional design at three levels for up to 13 factors from the Graeco-Latin square family. You can estimate square terms but not all interactions."},
    {8, "FFR_III", "Frac Fac Res III",
     "Balanced subset of the full factorial at two levels. Main effects are confounded with two-factor interactions."},
    {9, "FFR_IV", "Frac Fac Res IV",
     "Balanced subset of the full factorial at two levels. Main effects are clear of two-factor interactions, but the latter are confounded."},
    {10, "FFR_V", "Frac Fac Res V+",
     "Balanced subset of the full factorial at two levels. Main effects and all two-factor interactions are clear of each other (not confounded)."},
    {11, "PB", "Plackett Burman",
     "Fractional design of resolution III. You cannot estimate any two-factor interactions."},
    {12, "PB_SS", "Plackett Burman Super-Saturated",
     "A super-saturated design is a Resolution II design with fewer runs than factors. Factor main effects are confounded with each other. It is assumed that only very few of the factors investigated are active."},
    {13, "BB", "Box Behnken",
     "A three level RSM design. All design points, except the center points, are located at the center of the edges of the hypercube, and are also on the surface of a sphere. You can estimate the full quadratic model."},
    {14, "CCC", "CCC",
     "Central Composite Circumscribed design composed of a full or fractional factorial design and star points."},
    {15, "CCF", "CCF",
     "Central Composite Face design composed of a full or fractional factorial design and star points placed on the faces of the sides."},
    {16, "CCO", "CCO",
     "Central Composite Orthogonal design composed of a full or fractional factorial design and star points."},
    {17, "RCCF", "Reduced CCF",
     "Reduced Central Composite Face design valid for four factors. The design is composed of the fractional part of the design reduced from 16 to 12 runs and star points on the faces of the sides."},
    {18, "RCCC", "Reduced CCC",
     "Reduced Central Composite Circumscribed design valid for four factors. The design is composed of the fractional part of the design reduced from 16 to 12 runs and star points."},
    {19, "AxN", "Axial Normal",
     "Mixture design with at least twice as many runs as formulation factors. The runs included are the vertex points, the interior check points, and the overall centroid."},
    {20, "AxE", "Axial Extended",
     "Mixture design with at least three times as many runs as formulation factors. The runs included are the vertex points, interior check points, the face centers (dimension q-1), and the overall centroid."},
    {21, "AxR", "Reduced Axial Normal",
     "Mixture design with at least as many runs as formulation factors. The runs included are the vertex points, a selection of the interior check points, and the overall centroid."},
    {22, "SimM", "Modified Simplex Centroid",
     "Mixture design for the full quadratic model. The runs included are the vertex points, the interior check points, the edge centers, and the overall centroid."},
    {23, "SimF", "Modified Simplex Centroid w/Face",
     "Mixture design for the full quadratic model with more runs than Modified Simplex Centroid. The runs included are the vertex points, the interior check points, the edge centers, the face centers (dimension q-1), and the overall centroid."},
    {24, "SimSC", "Special Cubic Simplex Centroid",
     "Mixture design for a reduced cubic model. The runs included are the vertex points, the interior check points, the edge points (1/3, 2/3), the face centers (dimension q-2), and the overall centroid."},
    {25, "SimC", "Full Cubic Simplex Centroid",
     "Mixture design for the full cubic model. The runs included are the vertex points, the interior check points, the edge points (1/3, 2/3), the edge centers, the face centers (dimension q-2), and the overall centroid."},
    {26, "DOpt", "D-Optimal",
     "D-Optimal designs are computer generated designs that maximize the volume (maximize the determinant of the X'X matrix). This is similar to a maximal spread of the points."},
    {27, "OnionDOpt", "Onion D-Optimal",
     "Several D-Optimal designs generated from layers of the candidate set."},
    {28, "RSS", "Rechtschaffner",
     "Saturated fractions of the 3n designs that supports all the first order interactions and quadratic terms."},
    {28, "RSR", "Rechtschaffner Res V",
     "Saturated fractions with resolution 5 of the 2n designs that support all the first order interactions."},
    {31, "Doehlert", "Doehlert",
     "RSM design constructed from regular simplexes. Doehlert designs are extendable in different directions and new factors can be added to an existing design."},
    {32, "Levels", "Levels",
     "Single factor design varied at several levels for a quantitative factor or at the specified levels for a discrete factor."},
    {37, "J2", "Reduced Combinatorial",
     "Generated from a strict combinatorial perspective in order to create a reduced design with a balanced distribution of all factor settings. The algorithm selecting the points treats multilevel and qualitative factors equally."},
    {39, "Definitive Screening", "Definitive Screening",
     "Definitive Screening Design investigates linear and square effects with as few experiments as possible."},
    {33, "Custom", "Custom",
     "Custom"},
};

// The families outside the classic list.
const std::vector<BuilderTexts> cNamed{
    {36, "Stability", "Stability", "Stability testing design"},
    {30, "RED-MUP", "RED-MUP", "RED-MUP"},
    {38, "Generalized Subset Designs", "Generalized Subset Designs",
     "A design that generates a sequence of complementary design sets. "},
};
// clang-format on

using Builders = std::vector<std::shared_ptr<const DesignBuilder>>;

BuilderTexts TextsOf(const DesignBuilder& builder) {
    return {builder.IsDesign(),
            builder.GetShortString(),
            builder.GetDisplayName(),
            builder.GetDescription()};
}

const Builders& Classic() {
    return AllDesigns::ClassicDesigns().GetAllDesigns();
}

const Builders& All() {
    return AllDesigns::AllPossibleDesigns().GetAllDesigns();
}

bool StartsWith(const Builders& list, const Builders& start) {
    return list.size() >= start.size() && std::equal(start.begin(), start.end(), list.begin());
}

TEST(AllDesigns, ClassicListIsTheWholeTableInItsOrder) {
    std::vector<BuilderTexts> registered;
    for (const auto& builder : Classic()) {
        registered.push_back(TextsOf(*builder));
    }
    EXPECT_EQ(registered, cClassic);
}

TEST(AllDesigns, ClassicListIsThatOfTheVocabulary) {
    EXPECT_EQ(Classic(), EDesign::GetClassicDesigns());
}

TEST(AllDesigns, EachListStartsWithThePreviousOne) {
    const Builders& plates = AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns();
    EXPECT_TRUE(StartsWith(plates, Classic()));
    EXPECT_TRUE(StartsWith(All(), plates));
}

TEST(AllDesigns, ListsAreMadeOnce) {
    EXPECT_EQ(&AllDesigns::ClassicDesigns(), &AllDesigns::ClassicDesigns());
    EXPECT_EQ(&AllDesigns::ClassicAndREDMUPDesigns(), &AllDesigns::ClassicAndREDMUPDesigns());
    EXPECT_EQ(&AllDesigns::AllPossibleDesigns(), &AllDesigns::AllPossibleDesigns());
    EXPECT_EQ(&EDesign::GetClassicDesigns(), &EDesign::GetClassicDesigns());
}

TEST(AllDesigns, FamiliesOutsideTheClassicListHaveTheirTexts) {
    for (const BuilderTexts& texts : cNamed) {
        const auto found = std::ranges::find(
            All(), texts.type, [](const auto& builder) { return builder->IsDesign(); });
        ASSERT_NE(found, All().end()) << texts.shortString;
        EXPECT_EQ(TextsOf(**found), texts);
        EXPECT_EQ(std::ranges::count(Classic(), *found), 0) << texts.shortString;
    }
}

TEST(AllDesigns, FamiliesAskedForByNameAreTheirOneInstance) {
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::Stability, ""),
              AllDesigns::GetStabilityBuilder());
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::GeneralizedSubset, ""),
              AllDesigns::GetGeneralizedSubsetBuilder());
    EXPECT_EQ(AllDesigns::GetStabilityBuilder(), AllDesigns::GetStabilityBuilder());
}

TEST(AllDesigns, StabilityFollowsThePlatesAndGeneralizedSubsetsEndTheList) {
    const Builders& plates = AllDesigns::ClassicAndREDMUPDesigns().GetAllDesigns();
    ASSERT_GT(All().size(), plates.size());
    EXPECT_EQ(All()[plates.size()], AllDesigns::GetStabilityBuilder());
    EXPECT_EQ(All().back(), AllDesigns::GetGeneralizedSubsetBuilder());
}

TEST(AllDesigns, NoTypeHasNoBuilder) {
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::None, ""), nullptr);
}

TEST(AllDesigns, ReservedAndPluginTypesHaveNoBuilder) {
    for (const int type : {29, 34, 35, 40}) {
        EXPECT_EQ(AllDesigns::GetDesignBuilder(static_cast<EDesign::Type>(type), ""), nullptr);
    }
}

TEST(AllDesigns, BuilderIsFoundByTypeAndData) {
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FF3, "");
    ASSERT_NE(builder, nullptr);
    EXPECT_EQ(builder->GetShortString(), "FF3");
}

TEST(AllDesigns, OtherDataFindNoBuilder) {
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::FF2, "Screening"), nullptr);
}

TEST(AllDesigns, CustomBuilderIsFoundWhateverTheData) {
    for (const std::string data : {"", "anything"}) {
        const auto builder = AllDesigns::GetDesignBuilder(EDesign::Custom, data);
        ASSERT_NE(builder, nullptr) << data;
        EXPECT_EQ(builder->IsDesign(), 33);
    }
}

TEST(AllDesigns, RechtschaffnerNeedsItsData) {
    EXPECT_EQ(AllDesigns::GetDesignBuilder(EDesign::Rechtschaffner, ""), nullptr);
}

// Valid where told, for every request; it keeps the options that it was asked with.
std::shared_ptr<ProbeBuilder> MakeProbe(bool valid, std::vector<DesignOptions>* asked = nullptr) {
    auto probe = std::make_shared<ProbeBuilder>();
    probe->legalRuns = {4, 8};
    probe->valid = [valid, asked](const DesignOptions& options) {
        if (asked != nullptr) {
            asked->push_back(options);
        }
        return valid;
    };
    return probe;
}

AllDesigns ListOf(const std::vector<std::shared_ptr<const DesignBuilder>>& more) {
    AllDesigns list = AllDesigns::ClassicDesigns();
    for (const auto& builder : more) {
        list.Add(builder);
    }
    return list;
}

TEST(AllDesigns, AddAppends) {
    const auto probe = MakeProbe(true);
    const AllDesigns list = ListOf({probe});
    ASSERT_EQ(list.GetAllDesigns().size(), Classic().size() + 1);
    EXPECT_EQ(list.GetAllDesigns().back(), probe);
}

TEST(AllDesigns, NoFactorsHaveNoValidDesign) {
    const AllDesigns list = ListOf({MakeProbe(true)});
    EXPECT_FALSE(
        list.IsAnyDesignValid(EObjective::Screening, EModel::Linear, 12000, TestFactors(), false));
}

TEST(AllDesigns, OneValidBuilderIsEnough) {
    const AllDesigns list = ListOf({MakeProbe(false), MakeProbe(true)});
    // No family plans for an objective of this number.
    EXPECT_TRUE(list.IsAnyDesignValid(
        EObjective::None, EModel::Linear, 12000, TestFactors().Quantitatives(2), false));
}

TEST(AllDesigns, BuildersAreAskedUnderTheObjectiveModelAndRunLimit) {
    std::vector<DesignOptions> asked;
    const AllDesigns list = ListOf({MakeProbe(false, &asked)});
    // From three factors on, the saturated screening design takes an objective of this number; so
    // do onion designs, but not with a level factor.
    (void)list.IsAnyDesignValid(
        EObjective::None, EModel::Cubic, 7, TestFactors().Quantitative().MultilevelOf(3), false);
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].GetObjective(), EObjective::None);
    EXPECT_EQ(asked[0].GetModel(), EModel::Cubic);
    EXPECT_EQ(asked[0].GetMaxRuns(), 7U);
    // The run limit is assured first: 4 runs and the 3 centre points that still fit.
    EXPECT_EQ(asked[0].GetRuns(), 4U);
    EXPECT_EQ(asked[0].GetCenterPoints(), 3U);
}

TEST(AllDesigns, PlatePartsMustBeRecommended) {
    std::vector<DesignOptions> asked;
    const auto probe = MakeProbe(true, &asked);
    probe->recommended = false;
    const AllDesigns list = ListOf({probe});
    EXPECT_FALSE(list.IsAnyDesignValid(EObjective::None,
                                       EModel::Linear,
                                       12000,
                                       TestFactors().Quantitative().MultilevelOf(3),
                                       true));
    EXPECT_TRUE(asked.empty());
}

TEST(AllDesigns, RunLimitBelowEveryDesignLeavesNoneForTwoLevels) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    EXPECT_TRUE(AllDesigns::ClassicDesigns().IsAnyDesignValid(
        EObjective::Screening, EModel::Interaction, 8, factors, false));
    EXPECT_FALSE(AllDesigns::ClassicDesigns().IsAnyDesignValid(
        EObjective::Screening, EModel::Interaction, 1, factors, false));
}

}  // namespace
