#include "frame/CustomDesign.h"

#include <functional>
#include <memory>
#include <string>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "tests/support/TestFactors.h"

namespace {

using ::testing::ElementsAre;
using Table = NCDataMatrix<float>;

const CustomDesignBuilder cBuilder("Custom", "Custom", "Custom");
const TestFactors cTwo = TestFactors().Quantitative(10, 20).Quantitative(1, 2);
const Table cMatrix{{12.5F, 1}, {20, 1.75F}, {10, 2}};

DesignOptions WithMatrix(const Factors& factors, const Table& matrix) {
    DesignOptions options(cBuilder, factors);
    const auto custom = std::make_shared<CustomDesignOptions>();
    custom->SetMatrix(matrix);
    options.SetDesignSpecificOptions(custom);
    return options;
}

std::string MessageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& e) {
        return e.what();
    }
    return "no exception";
}

TEST(CustomDesignBuilder, AnswersWhateverTheFactors) {
    EXPECT_EQ(cBuilder.GetDefaultRuns(cTwo, EObjective::Screening), 1U);
    EXPECT_EQ(cBuilder.GetMinimumCenterPoints(), 0U);
    EXPECT_THAT(cBuilder.GetLegalRuns(cTwo, DesignOptions()), ElementsAre(1U));
    EXPECT_EQ(cBuilder.GetPriority(cTwo), 1);
    EXPECT_EQ(cBuilder.IsDesign(), 33);
    EXPECT_TRUE(cBuilder.IsCenterPointsAllowed());
}

TEST(CustomDesignBuilder, ModelIsLinearWhateverTheObjective) {
    for (int objective = 0; objective <= 6; ++objective) {
        EXPECT_EQ(cBuilder.GetDefaultModel(cTwo, static_cast<EObjective::Type>(objective)),
                  EModel::Linear);
    }
}

TEST(CustomDesignBuilder, OptionsAreNewForEachRequest) {
    const auto first = cBuilder.GetDefaultDesignSpecificOptions(cTwo, DesignOptions());
    const auto second = cBuilder.GetDefaultDesignSpecificOptions(cTwo, DesignOptions());
    ASSERT_NE(dynamic_cast<CustomDesignOptions*>(first.get()), nullptr);
    EXPECT_NE(first, second);
}

TEST(CustomDesignBuilder, EmptyMatrixIsValidForNoFactorsOnly) {
    EXPECT_FALSE(cBuilder.IsValid(cTwo, DesignOptions(cBuilder, cTwo)));
    const TestFactors none;
    EXPECT_TRUE(cBuilder.IsValid(none, DesignOptions(cBuilder, none)));
}

TEST(CustomDesignBuilder, MatrixOfTheFactorsWidthIsValid) {
    EXPECT_TRUE(cBuilder.IsValid(cTwo, WithMatrix(cTwo, cMatrix)));
    EXPECT_FALSE(cBuilder.IsValid(cTwo, WithMatrix(cTwo, Table(3, 1, 0))));
    EXPECT_FALSE(cBuilder.IsValid(cTwo, WithMatrix(cTwo, Table(3, 3, 0))));
}

TEST(CustomDesignBuilder, QualitativeFactorsAreCountedExpanded) {
    const TestFactors factors = TestFactors().Quantitative().Qualitative(3);
    EXPECT_FALSE(cBuilder.IsValid(factors, WithMatrix(factors, Table(2, 2, 0))));
    EXPECT_TRUE(cBuilder.IsValid(factors, WithMatrix(factors, Table(2, 3, 0))));
}

TEST(CustomDesignBuilder, OptionsOfAnotherFamilyAreNotValid) {
    DesignOptions options(cBuilder, cTwo);
    options.SetDesignSpecificOptions(nullptr);
    EXPECT_FALSE(cBuilder.IsValid(cTwo, options));
    options.SetDesignSpecificOptions(std::make_shared<DesignSpecificOptions>());
    EXPECT_FALSE(cBuilder.IsValid(cTwo, options));
}

TEST(CustomDesignBuilder, InvalidRequestGivesAnEmptyHandle) {
    EXPECT_EQ(cBuilder.Build(cTwo, DesignOptions(cBuilder, cTwo)), nullptr);
}

TEST(CustomDesign, HoldsTheMatrixAsItIs) {
    DesignOptions options = WithMatrix(cTwo, cMatrix);
    options.SetCenterPoints(3);
    options.SetReplicates(2);
    options.SetReplicatedRuns(4);
    const auto design = cBuilder.Build(cTwo, options);
    ASSERT_NE(design, nullptr);
    EXPECT_EQ(*design->GetDesignMatrix(), cMatrix);
}

TEST(CustomDesign, LevelsAreNotRecoded) {
    const TestFactors factors = TestFactors().Qualitative(2).MultilevelOf(2);
    const Table matrix{{-1, -1}, {1, 1}, {0, 0}};
    const auto design = cBuilder.Build(factors, WithMatrix(factors, matrix));
    ASSERT_NE(design, nullptr);
    EXPECT_EQ(*design->GetDesignMatrix(), matrix);
}

TEST(CustomDesign, MatrixHoldsRealValues) {
    EXPECT_FALSE(CustomDesign(cTwo).IsDesignMatrixCoded());
}

TEST(CustomDesign, IsMadeFromOptionsDirectly) {
    const CustomDesign design(cTwo, WithMatrix(cTwo, cMatrix));
    EXPECT_EQ(*design.GetDesignMatrix(), cMatrix);
}

TEST(CustomDesign, OptionsWithoutMatrixAreTold) {
    EXPECT_EQ(MessageOf([] { const CustomDesign design(cTwo, DesignOptions()); }),
              "Missing matrix.");
}

TEST(CustomDesign, MatrixOfAnotherWidthIsTold) {
    EXPECT_EQ(MessageOf([] { const CustomDesign design(cTwo, WithMatrix(cTwo, Table(3, 3, 0))); }),
              "Incorrect number of columns.");
}

TEST(CustomDesign, CloneIsACustomDesignOfTheSameMatrix) {
    const CustomDesign design(cTwo, WithMatrix(cTwo, cMatrix));
    const auto clone = design.Clone();
    EXPECT_NE(dynamic_cast<CustomDesign*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetDesignMatrix(), design.GetDesignMatrix());
    EXPECT_EQ(&clone->GetFactors(), &cTwo);
}

TEST(CustomDesignOptions, KeepTheFilePathButNotTheMatrix) {
    ConfigurationStore store;
    CustomDesignOptions options;
    options.SetFilePath("/data/design.csv");
    options.SetMatrix(cMatrix);
    options.Save(store.OpenRoot().get());
    CustomDesignOptions loaded;
    EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
    EXPECT_EQ(loaded.GetFilePath(), "/data/design.csv");
    EXPECT_TRUE(loaded.GetMatrix().IsEmpty());
}

TEST(CustomDesignOptions, SectionHoldsTheFilePathAlone) {
    ConfigurationStore store;
    CustomDesignOptions options;
    options.SetFilePath("a.csv");
    options.SetMatrix(cMatrix);
    options.Save(store.OpenRoot().get());
    ConfigurationStore expected;
    expected.OpenRoot()->OpenOrCreateSection("CustomDesign")->WriteKey("FilePath", "a.csv");
    EXPECT_EQ(store, expected);
}

TEST(CustomDesignOptions, MissingSectionChangesNothing) {
    ConfigurationStore store;
    CustomDesignOptions options;
    options.SetFilePath("a.csv");
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    EXPECT_EQ(options.GetFilePath(), "a.csv");
}

TEST(CustomDesignOptions, HaveNoJsonForm) {
    CustomDesignOptions options;
    options.SetFilePath("a.csv");
    EXPECT_EQ(options.ToJson(), json_value());
    options.FromJson(json_value::parse(R"({"filePath": "b.csv"})"));
    EXPECT_EQ(options.GetFilePath(), "a.csv");
}

}  // namespace
