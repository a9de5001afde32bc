#include "frame/DesignSpecificOptions.h"

#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "tests/support/TestFactors.h"

namespace {

const TestFactors cTwo = TestFactors().Quantitatives(2);
const NCDOE::Constraints cConstraints({{{{0, 1.0}, {1, 2.0}}, 0.5, true}});

TEST(DesignSpecificOptions, StartWithoutConstraintsAndCandidates) {
    const DesignSpecificOptions options;
    EXPECT_TRUE(options.GetConstraints().IsEmpty());
    EXPECT_TRUE(options.GetCandidateSet().GetMatrix().IsEmpty());
}

TEST(DesignSpecificOptions, CandidateSetIsKept) {
    CandidateSet candidates;
    candidates.SetCandidateSet({{1, 2}, {3, 4}}, DOpt::NumData());
    DesignSpecificOptions options;
    options.SetCandidateSet(candidates);
    EXPECT_EQ(options.GetCandidateSet().GetMatrix(), (NCDataMatrix<float>{{1, 2}, {3, 4}}));
}

TEST(DesignSpecificOptions, SaveMakesASectionThatLoadFinds) {
    ConfigurationStore store;
    DesignSpecificOptions options;
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    options.Save(store.OpenRoot().get());
    EXPECT_NE(store.OpenRoot()->OpenSection("DesignSpecificOptions"), nullptr);
    EXPECT_TRUE(options.Load(store.OpenRoot().get()));
}

TEST(DesignSpecificOptions, SaveWritesNothingIntoItsSection) {
    ConfigurationStore saved;
    DesignSpecificOptions options;
    options.SetConstraints(cConstraints, cTwo);
    options.Save(saved.OpenRoot().get());
    ConfigurationStore expected;
    expected.OpenRoot()->OpenOrCreateSection("DesignSpecificOptions");
    EXPECT_EQ(saved, expected);
}

TEST(DesignSpecificOptions, LoadKeepsTheConstraints) {
    ConfigurationStore store;
    DesignSpecificOptions options;
    options.SetConstraints(cConstraints, cTwo);
    options.Save(store.OpenRoot().get());
    EXPECT_TRUE(options.Load(store.OpenRoot().get()));
    EXPECT_EQ(options.GetConstraints(), cConstraints);
}

TEST(DesignSpecificOptions, RemoveRemovesTheSection) {
    ConfigurationStore store;
    DesignSpecificOptions options;
    options.Save(store.OpenRoot().get());
    options.Remove(store.OpenRoot().get());
    EXPECT_FALSE(options.Load(store.OpenRoot().get()));
    EXPECT_EQ(store, ConfigurationStore());
}

TEST(DesignSpecificOptions, HaveNoJsonForm) {
    DesignSpecificOptions options;
    options.SetConstraints(cConstraints, cTwo);
    EXPECT_EQ(options.ToJson(), json_value());
    options.FromJson(json_value::parse(R"({"constraints": []})"));
    EXPECT_EQ(options.GetConstraints(), cConstraints);
}

}  // namespace
