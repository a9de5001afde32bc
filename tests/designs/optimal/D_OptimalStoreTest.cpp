#include "designs/optimal/D_Optimal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/IniFileSection.h"
#include "tests/designs/optimal/D_OptimalCases.h"

namespace {

using D_OptimalCases::FamilyOf;
using D_OptimalCases::Given;
using D_OptimalCases::Request;
using D_OptimalCases::Search;

TEST(DOptimal, StatusTextsHoldTheirNumber) {
    EXPECT_EQ(D_Optimal::GetErrorString(5999, nullptr), "Internal MAT error number 5999.");
    EXPECT_EQ(D_Optimal::GetErrorString(6020, nullptr), D_Optimal::GetErrorString(6017, nullptr));
}

TEST(DOptimal, SearchIsReadBackFromAStore) {
    const TestFactors factors = TestFactors().Quantitatives(3);
    DesignOptions options = Request(factors, EObjective::Optimization, 15);
    FamilyOf(options).SetInclusions({{0.25F, 0.5F, -0.5F}}, factors);
    const auto design = Search(factors, options);
    ConfigurationStore store;
    design->Save(store.OpenRoot().get());
    const D_Optimal loaded(factors, *store.OpenRoot());
    ASSERT_EQ(loaded.GetResults().size(), design->GetResults().size());
    for (std::size_t i = 0; i < loaded.GetResults().size(); ++i) {
        EXPECT_EQ(loaded.GetResults()[i].rows, design->GetResults()[i].rows);
        EXPECT_EQ(loaded.GetResults()[i].balanced, design->GetResults()[i].balanced);
        EXPECT_EQ(loaded.GetResults()[i].LogDet, design->GetResults()[i].LogDet);
        EXPECT_EQ(loaded.GetResults()[i].IOptimality, design->GetResults()[i].IOptimality);
    }
    EXPECT_EQ(loaded.GetNumData(), design->GetNumData());
    EXPECT_EQ(loaded.GetSelectedIndex(), design->GetSelectedIndex());
    EXPECT_EQ(loaded.GetReplicateRow(), design->GetReplicateRow());
    EXPECT_EQ(loaded.GetInclusionRows(1), 1);
    EXPECT_EQ(loaded.GetPickedRows(1), design->GetPickedRows(1));
    EXPECT_EQ(loaded.GetDesignMatrix(), nullptr);
}

TEST(DOptimal, SecondSaveForgetsTheFirst) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    Given().Result({}).Result({}).Result({}).Design(factors).Save(store.OpenRoot().get());
    Given().Result({}).Design(factors).Save(store.OpenRoot().get());
    EXPECT_EQ(D_Optimal(factors, *store.OpenRoot()).GetResults().size(), 1U);
}

TEST(DOptimal, NoStoreIsNoDesign) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    D_Optimal design = Given().Result({}).Design(factors);
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    store.OpenRoot()->OpenOrCreateSection("Design");
    EXPECT_FALSE(design.Load(store.OpenRoot().get()));
    EXPECT_EQ(design.GetResults().size(), 1U);
}

TEST(DOptimal, FiguresThatAreNotStoredAreMissing) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    ConfigurationStore store;
    store.OpenRoot()
        ->OpenOrCreateSection("Design")
        ->OpenOrCreateSection("DOptimal")
        ->OpenOrCreateSection("Result", 1)
        ->WriteDouble("GEff", 80);
    const D_Optimal design(factors, *store.OpenRoot());
    ASSERT_EQ(design.GetResults().size(), 1U);
    EXPECT_EQ(design.GetResults()[0].GEff, 80);
    EXPECT_EQ(design.GetResults()[0].CondNo, -99);
    EXPECT_EQ(design.GetNumData(), DOpt::NumData());
}

TEST(DOptimal, OlderFormIsRead) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const IniFileSection section = IniFileSection::FromText(
        "ExtremeVertices=8\nEdges=12\nHighDimensionalCentroids=1\nOptionIndex=1\n"
        "DOpt10=CondNo:3.5\n"
        "DOpt2=CondNo:1.5 LogDet:3.25 LogDetNorm:-0.5 GEff:88.5 DesignIndex:1,4,5\n",
        "old");
    const D_Optimal design(factors, section);
    EXPECT_EQ(design.GetNumData(), (DOpt::NumData{8, 12, 1}));
    EXPECT_EQ(design.GetSelectedIndex(), 1);
    ASSERT_EQ(design.GetResults().size(), 2U);
    const auto& first = design.GetResults()[0];
    EXPECT_EQ(first.CondNo, 1.5);
    EXPECT_EQ(first.LogDet, 3.25);
    EXPECT_EQ(first.NormLogDet, -0.5);
    EXPECT_EQ(first.GEff, 88.5);
    EXPECT_EQ(first.IOptimality, -99);
    EXPECT_THAT(first.rows, ::testing::ElementsAre(1, 4, 5));
    EXPECT_EQ(design.GetResults()[1].CondNo, 3.5);
}

TEST(DOptimal, NumbersOfTheOlderFormMustBeNumbers) {
    const TestFactors factors = TestFactors().Quantitatives(2);
    const auto text = [&](const char* content) -> std::string {
        try {
            (void)D_Optimal(factors, IniFileSection::FromText(content, "old"));
        } catch (const std::invalid_argument& error) {
            return error.what();
        } catch (const std::out_of_range& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(text("DOptX=GEff:1\n"), "invalid stoi argument");
    EXPECT_EQ(text("DOpt99999999999=GEff:1\n"), "stoi argument out of range");
    EXPECT_EQ(text("DOpt1=DesignIndex:1,two\n"), "invalid stoi argument");
    EXPECT_EQ(text("DOpt1=GEff:1\n"), "");
}

}  // namespace
