#include "frame/DesignBuilder.h"

#include <array>
#include <string>

#include "foundation/util/ConfigurationStore.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/ProbeBuilder.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;

const TestFactors cThree = TestFactors().Quantitatives(3);
const TestFactors cBlend = TestFactors().Formulation().Formulation().Formulation();

TEST(DesignBuilder, KeepsItsThreeTexts) {
    const ProbeBuilder builder("short", "display name", "description");
    EXPECT_EQ(builder.GetShortString(), "short");
    EXPECT_EQ(builder.GetDisplayName(), "display name");
    EXPECT_EQ(builder.GetDescription(), "description");
}

TEST(DesignBuilder, BaseAnswersAreThePlainOnes) {
    const ProbeBuilder builder;
    EXPECT_FALSE(builder.DesignBuilder::IsPMInteractionDefault(cThree, DesignOptions()));
    EXPECT_EQ(builder.DesignBuilder::GetDefaultStarDistance(3, DesignOptions()), -99.0F);
    EXPECT_EQ(builder.DesignBuilder::GetDefaultReplicatedRuns(), 0U);
    EXPECT_EQ(builder.DesignBuilder::GetDesignData(), "");
    EXPECT_TRUE(builder.DesignBuilder::IsCenterPointsAllowed());
    EXPECT_FALSE(builder.DesignBuilder::IsMixtureOnlyDesign());
    EXPECT_TRUE(builder.DesignBuilder::IsREDMUPRecommended(cThree, DesignOptions()));
    EXPECT_EQ(builder.DesignBuilder::GetDefaultDesignSpecificOptions(cThree, DesignOptions()),
              nullptr);
}

TEST(DesignBuilder, RunsForOptionsAreThoseForTheirObjective) {
    ProbeBuilder builder;
    builder.defaultRuns = [](EObjective::Type objective) {
        return 10U + static_cast<unsigned>(objective);
    };
    DesignOptions options;
    options.SetObjective(EObjective::SystemCharacterization);
    EXPECT_EQ(builder.GetDefaultRuns(cThree, options), 15U);
}

TEST(DesignBuilder, ProcessModelIsTheDefaultModelOfAProcessDesign) {
    ProbeBuilder builder;
    EXPECT_EQ(builder.GetDefaultProcessModel(cThree, EObjective::Screening, 0), EModel::Quadratic);
}

TEST(DesignBuilder, ProcessModelIsNoneForMixtureFactorsOrMixtureDesigns) {
    ProbeBuilder builder;
    EXPECT_EQ(builder.GetDefaultProcessModel(cBlend, EObjective::Screening, 0), EModel::None);
    builder.mixtureOnly = true;
    EXPECT_EQ(builder.GetDefaultProcessModel(cThree, EObjective::Screening, 0), EModel::None);
}

TEST(DesignBuilder, MixtureModelNeedsMixtureFactorsAndAMixtureDesign) {
    ProbeBuilder builder;
    EXPECT_EQ(builder.GetDefaultMixtureModel(cBlend, EObjective::Screening, 0), EModel::None);
    builder.mixtureOnly = true;
    EXPECT_EQ(builder.GetDefaultMixtureModel(cThree, EObjective::Screening, 0), EModel::None);
    EXPECT_EQ(builder.GetDefaultMixtureModel(cBlend, EObjective::Screening, 0), EModel::Quadratic);
}

TEST(DesignBuilder, ThreeCentrePointsAreUsualAndOneForRobustness) {
    const ProbeBuilder builder;
    for (const int objective : {0, 1, 2, 3, 5}) {
        EXPECT_EQ(builder.GetDefaultCenterPoints(static_cast<EObjective::Type>(objective)), 3U)
            << objective;
    }
    EXPECT_EQ(builder.GetDefaultCenterPoints(EObjective::RobustnessVerification), 1U);
}

TEST(DesignBuilder, MinimumOfCentrePointsIsKept) {
    ProbeBuilder builder;
    builder.minimumCenterPoints = 2;
    EXPECT_EQ(builder.GetDefaultCenterPoints(EObjective::Screening), 3U);
    EXPECT_EQ(builder.GetDefaultCenterPoints(EObjective::RobustnessVerification), 2U);
    builder.minimumCenterPoints = 5;
    EXPECT_EQ(builder.GetDefaultCenterPoints(EObjective::Screening), 5U);
}

TEST(DesignBuilder, NoCentrePointsWhereTheyAreNotAllowed) {
    ProbeBuilder builder;
    builder.centerPointsAllowed = false;
    builder.minimumCenterPoints = 2;
    EXPECT_EQ(builder.GetDefaultCenterPoints(EObjective::Screening), 0U);
}

TEST(DesignBuilder, DegreesOfFreedomGoByObjective) {
    constexpr std::array<unsigned, 7> cExpected{1, 3, 5, 1, 1, 3, 1};
    for (std::size_t objective = 0; objective < cExpected.size(); ++objective) {
        EXPECT_EQ(DesignBuilder::GetDefaultDF(static_cast<EObjective::Type>(objective)),
                  cExpected[objective])
            << objective;
    }
}

TEST(DesignBuilder, ValidityIsTheFamilysOwn) {
    ProbeBuilder builder;
    EXPECT_TRUE(builder.IsValid(cThree, DesignOptions(), false, false));
    builder.valid = [](const DesignOptions&) { return false; };
    EXPECT_FALSE(builder.IsValid(cThree, DesignOptions(), false, false));
}

TEST(DesignBuilder, PlatePartsMustBeRecommended) {
    ProbeBuilder builder;
    EXPECT_TRUE(builder.IsValid(cThree, DesignOptions(), false, true));
    builder.recommended = false;
    EXPECT_FALSE(builder.IsValid(cThree, DesignOptions(), false, true));
    EXPECT_TRUE(builder.IsValid(cThree, DesignOptions(), false, false));
}

TEST(DesignBuilder, ComputerGeneratedAreTheOptimalAndTheOnionDesignsOnly) {
    ProbeBuilder builder;
    for (int type = 0; type < 40; ++type) {
        builder.type = static_cast<EDesign::Type>(type);
        EXPECT_EQ(builder.IsValid(cThree, DesignOptions(), true, false), type == 26 || type == 27)
            << type;
    }
}

TEST(DesignBuilder, ValidityUnderARunLimitAsksWithDefaultOptionsUnderIt) {
    ProbeBuilder builder;
    DesignOptions asked;
    builder.valid = [&asked](const DesignOptions& options) {
        asked = options;
        return true;
    };
    EXPECT_TRUE(builder.IsValid(cThree, false, false, 5));
    EXPECT_EQ(asked.GetMaxRuns(), 5U);
    // The limit is told, but runs and centre points are not fitted under it.
    EXPECT_EQ(asked.GetRuns(), 8U);
    EXPECT_EQ(asked.GetCenterPoints(), 3U);
    EXPECT_EQ(asked.GetModel(), EModel::Quadratic);
}

TEST(DesignBuilder, ValidityUnderARunLimitKeepsTheOtherConditions) {
    ProbeBuilder builder;
    EXPECT_FALSE(builder.IsValid(cThree, true, false, 12000));
    builder.recommended = false;
    EXPECT_FALSE(builder.IsValid(cThree, false, true, 12000));
}

// Counts how often the form with options is asked.
class OverridingBuilder : public ProbeBuilder {
  public:
    using ProbeBuilder::IsValid;
    bool IsValid(const Factors&, const DesignOptions&, bool, bool) const override {
        ++asked;
        return false;
    }
    mutable int asked = 0;
};

TEST(DesignBuilder, ValidityUnderARunLimitGoesThroughTheOverride) {
    const OverridingBuilder builder;
    EXPECT_FALSE(builder.IsValid(cThree, false, false, 12000));
    EXPECT_EQ(builder.asked, 1);
}

TEST(DesignBuilder, OtherTypesHaveOneBlock) {
    ProbeBuilder builder;
    for (const int type :
         {0, 2, 3, 4, 5, 6, 7, 12, 15, 16, 17, 18, 19, 22, 27, 28, 31, 32, 33, 37}) {
        builder.type = static_cast<EDesign::Type>(type);
        DesignOptions options;
        options.SetRuns(32);
        EXPECT_THAT(builder.GetLegalBlocks(cThree, options, false), ElementsAre(1)) << type;
    }
}

TEST(DesignBuilderPersistence, TextsStandInTheSectionUnderTheirKey) {
    ConfigurationStore store;
    const ProbeBuilder builder("short", "display name", "description");
    builder.Save(store.OpenRoot().get());
    const auto section = store.OpenRoot()->OpenSection("DesignBuilder");
    ASSERT_NE(section, nullptr);
    std::vector<std::string> texts;
    EXPECT_EQ(section->ReadStringList("DesignNameAndDesciption", &texts, ';'), 3);
    EXPECT_THAT(texts, ElementsAre("short", "display name", "description"));
}

TEST(DesignBuilderPersistence, TextsAreReadBack) {
    ConfigurationStore store;
    ProbeBuilder("short", "display; name", "").Save(store.OpenRoot().get());
    ProbeBuilder loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetShortString(), "short");
    EXPECT_EQ(loaded.GetDisplayName(), "display; name");
    EXPECT_EQ(loaded.GetDescription(), "");
}

TEST(DesignBuilderPersistence, MissingSectionChangesNothing) {
    ConfigurationStore store;
    ProbeBuilder builder("short", "display", "description");
    EXPECT_FALSE(builder.Load(store.OpenRoot().get()));
    EXPECT_EQ(builder.GetShortString(), "short");
}

TEST(DesignBuilderPersistence, AnotherNumberOfTextsChangesNothing) {
    for (const std::vector<std::string>& texts :
         {std::vector<std::string>{}, {"a"}, {"a", "b"}, {"a", "b", "c", "d"}}) {
        ConfigurationStore store;
        store.OpenRoot()
            ->OpenOrCreateSection("DesignBuilder")
            ->WriteStringList("DesignNameAndDesciption", texts, ';');
        ProbeBuilder builder("short", "display", "description");
        EXPECT_FALSE(builder.Load(store.OpenRoot().get())) << texts.size();
        EXPECT_EQ(builder.GetShortString(), "short");
        EXPECT_EQ(builder.GetDisplayName(), "display");
        EXPECT_EQ(builder.GetDescription(), "description");
    }
}

}  // namespace
