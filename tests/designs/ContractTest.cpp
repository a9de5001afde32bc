// What every registered family promises, over a grid of factor sets. A family is covered from the
// day it is registered; what it deliberately does otherwise stands in cExceptions and cUnsearchable
// with its reason.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "designs/optimal/D_OptimalOptions.h"
#include "designs/plate/LevelsDuplicate.h"
#include "foundation/util/ConfigurationStore.h"
#include "foundation/utl/ConfigurationSection.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/NCDesign.h"
#include "frame/generators/Generators.h"
#include "tests/support/DesignMatchers.h"
#include "tests/support/PlateRowCases.h"
#include "tests/support/TestFactors.h"
#include "tests/support/ValidatingScope.h"

namespace {

using Table = NCDataMatrix<float>;
using BuilderHandle = std::shared_ptr<const DesignBuilder>;

// --- Named exceptions -------------------------------------------------------------------------

enum class Check {
    ImpossibleFactors,  // no design for factors that no design exists for
    Columns,            // one column for each factor, and none before them
    Finishing,          // runs, centre points, replicates and replicated runs as the options say
    LegalRuns,          // every legal run count builds
    LegalBlocks,        // every legal block count builds
    StoredTexts,        // the store holds the whole description
    EmptyHandle,        // an invalid request gives an empty handle
    Json                // options have a form for exchange
};

struct ContractException {
    EDesign::Type type;
    Check check;
    const char* reason;
};

constexpr std::array cExceptions{
    ContractException{EDesign::Custom,
                      Check::ImpossibleFactors,
                      "the matrix that the caller brings along decides, and none fits no factors"},
    ContractException{EDesign::Custom,
                      Check::Finishing,
                      "the caller's matrix is taken as it stands, with nothing added"},
    ContractException{
        EDesign::Custom, Check::LegalRuns, "the caller's matrix decides the run count"},
    ContractException{EDesign::DOpt,
                      Check::ImpossibleFactors,
                      "the search finds out, and tells the reason in an exception"},
    ContractException{EDesign::DOpt,
                      Check::LegalRuns,
                      "every count up to the run limit is legal; its own tests build those that "
                      "take no minutes"},
    ContractException{EDesign::DOpt,
                      Check::LegalBlocks,
                      "blocks stand in coding columns, without letters; its own tests look there"},
    ContractException{EDesign::OnionDOpt,
                      Check::ImpossibleFactors,
                      "the search finds out, and tells the reason in an exception"},
    ContractException{EDesign::OnionDOpt,
                      Check::Finishing,
                      "each layer shows the best of the designs within two runs of its own"},
    ContractException{
        EDesign::OnionDOpt, Check::LegalRuns, "the runs of the family's layers decide"},
    ContractException{EDesign::OnionDOpt, Check::Json, "the family's options refuse, and say so"},
    ContractException{
        EDesign::J2,
        Check::Finishing,
        "no centre points and no replicates; replicated runs have a test of their own"},
    ContractException{
        EDesign::Stability, Check::Columns, "the first column tells the design set of a run"},
    ContractException{EDesign::Stability,
                      Check::Finishing,
                      "runs follow from the family's options; centre points and replicates are set "
                      "for each design set"},
    ContractException{EDesign::Stability, Check::LegalRuns, "the family's options decide"},
    ContractException{
        EDesign::GeneralizedSubset, Check::Columns, "the first column tells the subset of a run"},
    ContractException{EDesign::GeneralizedSubset,
                      Check::Finishing,
                      "runs follow from the family's options; centre points and replicates are set "
                      "for each subset"},
    ContractException{EDesign::GeneralizedSubset, Check::LegalRuns, "the family's options decide"},
    ContractException{
        EDesign::Plugin,
        Check::StoredTexts,
        "how a row came to fit the plate is told behind the description, and would be "
        "told twice if it were read back with it"},
    ContractException{EDesign::REDMUP,
                      Check::Finishing,
                      "runs are the wells of the plates; centre points and repeated runs belong to "
                      "the designs along the sides"},
    ContractException{EDesign::REDMUP,
                      Check::EmptyHandle,
                      "plates have many parts that may be wrong, and an exception tells which"},
    ContractException{EDesign::REDMUP, Check::Json, "plates have no such form, and say so"},
};

/// A valid request of the grid that ends in an exception instead of a design.
struct UnsearchableSet {
    EDesign::Type type;
    const char* factors;
    bool isResponseSurface;
    const char* reason;
};

constexpr const char* cNoThirdLevel = "a factor of 2 levels has no square of its own";

constexpr std::array cUnsearchable{
    UnsearchableSet{EDesign::DOpt, "one multilevel of 2, 2 quantitative", true, cNoThirdLevel},
    UnsearchableSet{EDesign::DOpt, "one of 2 levels, four quantitative", true, cNoThirdLevel},
};

const char* ReasonToSkip(EDesign::Type type, Check check) {
    for (const ContractException& exception : cExceptions) {
        if (exception.type == type && exception.check == check) {
            return exception.reason;
        }
    }
    return nullptr;
}

// --- The grid ---------------------------------------------------------------------------------

struct FactorSet {
    std::string name;
    TestFactors factors;
};

TestFactors Blend(int count, float low, float high) {
    TestFactors factors;
    for (int i = 0; i < count; ++i) {
        factors.Formulation(low, high);
    }
    return factors;
}

std::vector<FactorSet> MakeGrid() {
    std::vector<FactorSet> grid;
    for (int count = 0; count <= 12; ++count) {
        grid.push_back(
            {std::to_string(count) + " quantitative", TestFactors().Quantitatives(count)});
    }
    for (unsigned levels = 2; levels <= 5; ++levels) {
        const std::string text = std::to_string(levels);
        grid.push_back({"one qualitative of " + text, TestFactors().Qualitative(levels)});
        grid.push_back({"one multilevel of " + text, TestFactors().MultilevelOf(levels)});
        grid.push_back({"3 quantitative, one qualitative of " + text,
                        TestFactors().Quantitatives(3).Qualitative(levels)});
        grid.push_back({"one multilevel of " + text + ", 2 quantitative",
                        TestFactors().MultilevelOf(levels).Quantitatives(2)});
        grid.push_back({"qualitative and multilevel of " + text,
                        TestFactors().Qualitative(levels).MultilevelOf(levels)});
    }
    grid.push_back({"four qualitative of 2",
                    TestFactors().Qualitative(2).Qualitative(2).Qualitative(2).Qualitative(2)});
    grid.push_back(
        {"three qualitative of 3", TestFactors().Qualitative(3).Qualitative(3).Qualitative(3)});
    grid.push_back(
        {"three multilevel of 3", TestFactors().MultilevelOf(3).MultilevelOf(3).MultilevelOf(3)});
    grid.push_back(
        {"one of 2 levels, four quantitative", TestFactors().MultilevelOf(2).Quantitatives(4)});
    grid.push_back({"qualitative of 2, 3, 4 and 5",
                    TestFactors().Qualitative(2).Qualitative(3).Qualitative(4).Qualitative(5)});
    for (int count = 1; count <= 6; ++count) {
        grid.push_back({std::to_string(count) + " formulation", Blend(count, 0, 1)});
    }
    grid.push_back({"3 formulation, upper simplex", Blend(3, 0, 0.5F)});
    grid.push_back({"3 formulation of 0.2 to 0.6", Blend(3, 0.2F, 0.6F)});
    grid.push_back({"3 formulation, no simplex", Blend(2, 0, 1).Formulation(0.1F, 0.3F)});
    grid.push_back({"3 formulation, 2 quantitative", Blend(3, 0, 1).Quantitatives(2)});
    grid.push_back({"3 formulation, one qualitative", Blend(3, 0, 1).Qualitative(3)});
    grid.push_back({"3 formulation with a filler", Blend(3, 0, 0.2F).WithFiller(true)});
    grid.push_back({"2 formulation, 2 quantitative with a filler",
                    Blend(2, 0, 0.2F).Quantitatives(2).WithFiller(true)});
    return grid;
}

// No family has a design for these.
std::vector<FactorSet> MakeInvalidGrid() {
    std::vector<FactorSet> grid;
    grid.push_back({"no factors", TestFactors()});
    grid.push_back({"a filler beside a fixed sum", Blend(3, 0, 1).WithFiller(false)});
    grid.push_back({"lows above the whole", Blend(3, 0.5F, 1)});
    grid.push_back({"highs below the whole", Blend(3, 0, 0.2F)});
    return grid;
}

// Plate rows are for few factor sets each. Levels are repeated up to the run limit and not once
// more: without a limit of the request's own, only thousands of them.
std::vector<FactorSet> GridOf(const DesignBuilder& builder) {
    std::vector<FactorSet> grid = MakeGrid();
    if (const auto* levels = dynamic_cast<const LevelsDuplicate*>(&builder)) {
        grid.push_back(
            {"levels for the largest design",
             TestFactors().MultilevelOf(DesignOptions::cNoRunLimit / levels->GetTimes())});
        return grid;
    }
    for (const plate::RowCase& row : plate::AllRows()) {
        if (builder.IsDesign() == EDesign::Plugin && builder.GetDesignData() == row.name) {
            grid.push_back({"the row's factors", plate::FactorsOf(row)});
            grid.push_back(
                {"the row's factors in another order", plate::FactorsInEveryOrder(row).back()});
        }
    }
    return grid;
}

// --- Requests ---------------------------------------------------------------------------------

struct Request {
    std::string name;
    const Factors* factors;
    DesignOptions options;
    std::string set;  // name of the factor set
};

DesignOptions OptionsUnder(const DesignBuilder& builder,
                           const Factors& factors,
                           EObjective::Type objective) {
    constexpr unsigned cNoLimit = 12000;
    return {builder,
            factors,
            objective,
            builder.GetDefaultProcessModel(factors, objective, cNoLimit),
            builder.GetDefaultMixtureModel(factors, objective, cNoLimit),
            cNoLimit};
}

// A search looks at several run counts and takes the best, again and again: here it is to find what
// was asked for, at once.
DesignOptions Searched(DesignOptions options) {
    if (auto* family = dynamic_cast<D_OptimalOptions*>(options.GetDesignSpecificOptions())) {
        family->SetRunRange(0);
        family->SetRepetitions(1);
    }
    return options;
}

std::vector<Request> RequestsFor(const DesignBuilder& builder, const FactorSet& set) {
    std::vector<Request> requests;
    requests.push_back({set.name + ", defaults",
                        &set.factors,
                        Searched(DesignOptions(builder, set.factors)),
                        set.name});
    for (const EObjective::Type objective : {EObjective::Screening,
                                             EObjective::Optimization,
                                             EObjective::RobustnessVerification,
                                             EObjective::SystemCharacterization}) {
        requests.push_back({set.name + ", " + EObjective::GetString(objective),
                            &set.factors,
                            Searched(OptionsUnder(builder, set.factors, objective)),
                            set.name});
    }
    return requests;
}

// Rows for plates answer for the length of a plate's side. Qualitative levels are left to their own
// tests: repeated, they fill a side up with further levels instead of centre points.
std::vector<Request> SideRequestsFor(const DesignBuilder& builder, const FactorSet& set) {
    std::vector<Request> requests;
    if (builder.IsDesign() != EDesign::Plugin ||
        (set.factors.GetDesignFactorCount() == 1 && set.factors.GetQualitativeCount() == 1)) {
        return requests;
    }
    for (const EModel::Type model :
         {EModel::Linear, EModel::Interaction, EModel::Quadratic, EModel::LinearQuadratic}) {
        const EObjective::Type objective =
            model <= EModel::Interaction ? EObjective::Screening : EObjective::Optimization;
        for (const unsigned side : {8U, 12U, 16U, 24U, 32U, 48U}) {
            requests.push_back(
                {set.name + ", " + EModel::GetString(model) + ", side of " + std::to_string(side),
                 &set.factors,
                 DesignOptions(builder, set.factors, objective, model, model, side),
                 set.name});
        }
    }
    return requests;
}

// Built designs larger than this are looked at once, with their defaults.
constexpr unsigned cMostRunsToVary = 300;
// A search takes longer than a table: the suite would take a minute for its larger designs.
constexpr unsigned cMostRunsToSearch = 45;

unsigned MostRunsToVary(EDesign::Type type) {
    const bool searches = type == EDesign::DOpt || type == EDesign::OnionDOpt;
    return searches ? cMostRunsToSearch : cMostRunsToVary;
}

unsigned Total(const DesignOptions& options) {
    return (options.GetRuns() + options.GetReplicatedRuns() + options.GetCenterPoints()) *
           (options.GetReplicates() + 1);
}

Table FirstRows(const Table& table, int count) {
    Table first = table;
    first.RemoveRows(count + 1, table.SizeRows() - count);
    return first;
}

bool IsUnsearchable(const DesignBuilder& builder, const Request& request) {
    const EObjective::Type objective = request.options.GetObjective();
    const bool isResponseSurface =
        objective == EObjective::Optimization || objective == EObjective::SystemCharacterization;
    return std::any_of(
        cUnsearchable.begin(), cUnsearchable.end(), [&](const UnsearchableSet& excepted) {
            return excepted.type == builder.IsDesign() && excepted.factors == request.set &&
                   excepted.isResponseSurface == isResponseSurface;
        });
}

bool HasEqualRow(const Table& table, int within, int row) {
    for (int other = 1; other <= within; ++other) {
        if (table.GetRow(other) == table.GetRow(row)) {
            return true;
        }
    }
    return false;
}

/// Family options compare by what they store and exchange.
ConfigurationStore StoreOf(const DesignOptions& options) {
    ConfigurationStore store;
    options.Save(store.OpenRoot().get());
    return store;
}

// --- The suite --------------------------------------------------------------------------------

struct BuilderCase {
    std::size_t index;  // in AllDesigns::AllPossibleDesigns()
    std::string name;

    friend void PrintTo(const BuilderCase& builder, std::ostream* out) { *out << builder.name; }
};

// The short string, as far as a test's name may hold it; numbered where it stands for several.
std::vector<BuilderCase> AllBuilders() {
    std::vector<BuilderCase> builders;
    std::set<std::string> used;
    std::size_t index = 0;
    for (const BuilderHandle& builder : AllDesigns::AllPossibleDesigns().GetAllDesigns()) {
        std::string name = builder->GetShortString();
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
        if (!used.insert(name).second) {
            name += "_" + std::to_string(index);
        }
        builders.push_back({index++, name});
    }
    return builders;
}

class Contract : public ::testing::TestWithParam<BuilderCase> {
  protected:
    const DesignBuilder& builder() const { return *handle(); }
    const BuilderHandle& handle() const {
        return AllDesigns::AllPossibleDesigns().GetAllDesigns()[GetParam().index];
    }

    bool IsExcepted(Check check) const {
        return ReasonToSkip(builder().IsDesign(), check) != nullptr;
    }

    /// The matrix without the column that some families put before the factors.
    Table FactorColumns(Table table) const {
        if (IsExcepted(Check::Columns)) {
            table.RemoveColumns(1, 1);
        }
        return table;
    }

    /// Every request of the grid, valid or not.
    void ForEachRequest(const std::function<void(const Request&)>& look) const {
        for (const FactorSet& set : grid_) {
            for (const Request& request : RequestsFor(builder(), set)) {
                SCOPED_TRACE(request.name);
                look(request);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
    void ForEachValidRequest(const std::function<void(const Request&)>& look) const {
        const auto lookIfValid = [&](const Request& request) {
            if (builder().IsValid(*request.factors, request.options) &&
                !IsUnsearchable(builder(), request)) {
                look(request);
            }
        };
        ForEachRequest(lookIfValid);
        for (const FactorSet& set : grid_) {
            for (const Request& request : SideRequestsFor(builder(), set)) {
                SCOPED_TRACE(request.name);
                lookIfValid(request);
            }
        }
    }
    /// Valid requests of moderate size, for checks that build more than once.
    void ForEachSmallRequest(const std::function<void(const Request&)>& look) const {
        ForEachValidRequest([&](const Request& request) {
            if (request.options.GetRuns() <= MostRunsToVary(builder().IsDesign())) {
                look(request);
            }
        });
    }

    std::unique_ptr<NCDesign> Build(const Factors& factors, const DesignOptions& options) const {
        return builder().Build(factors, options);
    }
    /// An invalid request gives no design.
    void ExpectRefusal(const Request& request) const {
        if (IsExcepted(Check::EmptyHandle)) {
            EXPECT_THROW((void)Build(*request.factors, request.options), Exception);
        } else {
            EXPECT_EQ(Build(*request.factors, request.options), nullptr);
        }
    }
    /// The finished matrix, or an empty one with a failure.
    Table Built(const Factors& factors, const DesignOptions& options) const {
        const auto design = Build(factors, options);
        if (!design || !design->GetDesignMatrix()) {
            ADD_FAILURE() << "a valid request gave no design";
            return {};
        }
        return *design->GetDesignMatrix();
    }

  private:
    const std::vector<FactorSet> grid_ = GridOf(builder());
    // Designs are compared below, so searches and shuffles have to repeat.
    const ValidatingScope validating_;
};

INSTANTIATE_TEST_SUITE_P(Builders,
                         Contract,
                         ::testing::ValuesIn(AllBuilders()),
                         [](const auto& test) { return test.param.name; });

TEST(ContractExceptions, EachSetWithoutADesignFailsLoudly) {
    for (const UnsearchableSet& excepted : cUnsearchable) {
        const auto builder = AllDesigns::GetDesignBuilder(excepted.type, "");
        ASSERT_NE(builder, nullptr);
        int failures = 0;
        for (const FactorSet& set : MakeGrid()) {
            for (const Request& request : RequestsFor(*builder, set)) {
                if (builder->IsValid(set.factors, request.options) &&
                    IsUnsearchable(*builder, request)) {
                    EXPECT_THROW((void)builder->Build(set.factors, request.options), Exception)
                        << excepted.reason;
                    ++failures;
                }
            }
        }
        EXPECT_GT(failures, 0) << excepted.factors;
    }
}

TEST(ContractExceptions, EachNamesARegisteredFamilyAndAReason) {
    for (const ContractException& exception : cExceptions) {
        EXPECT_FALSE(std::string(exception.reason).empty());
        EXPECT_THAT(AllDesigns::AllPossibleDesigns().GetAllDesigns(),
                    ::testing::Contains(::testing::Truly([&](const BuilderHandle& builder) {
                        return builder->IsDesign() == exception.type;
                    })))
            << exception.reason;
    }
}

TEST_P(Contract, SomeRequestOfTheGridIsValid) {
    int valid = 0;
    ForEachValidRequest([&](const Request&) { ++valid; });
    EXPECT_GT(valid, 0);
}

TEST_P(Contract, IsFoundByItsTypeAndData) {
    EXPECT_EQ(AllDesigns::GetDesignBuilder(builder().IsDesign(), builder().GetDesignData()),
              handle());
}

TEST_P(Contract, HasTexts) {
    EXPECT_FALSE(builder().GetShortString().empty());
    EXPECT_FALSE(builder().GetDisplayName().empty());
    EXPECT_FALSE(builder().GetDescription().empty());
    EXPECT_EQ(EDesign::GetType(builder().GetShortString()), builder().IsDesign());
}

TEST_P(Contract, DefaultOptionsAreTheBuildersAnswers) {
    ForEachRequest([&](const Request& request) {
        const DesignOptions& options = request.options;
        EXPECT_EQ(options.GetBlocks(), 1U);
        EXPECT_EQ(options.GetReplicates(), 0U);
        EXPECT_EQ(options.GetMaxRuns(), 12000U);
        EXPECT_EQ(options.GetReplicatedRuns(), builder().GetDefaultReplicatedRuns());
        EXPECT_EQ(options.GetCenterPoints(),
                  builder().GetDefaultCenterPoints(options.GetObjective()));
        EXPECT_EQ(options.GetRuns(), builder().GetDefaultRuns(*request.factors, options));
        EXPECT_EQ(options.GetCreatedFromDesign(), builder().IsDesign());
    });
}

TEST_P(Contract, CentrePointDefaultsKeepTheMinimum) {
    for (int objective = 0; objective <= 5; ++objective) {
        const unsigned points =
            builder().GetDefaultCenterPoints(static_cast<EObjective::Type>(objective));
        if (builder().IsCenterPointsAllowed()) {
            EXPECT_GE(points, builder().GetMinimumCenterPoints()) << objective;
        } else {
            EXPECT_EQ(points, 0U) << objective;
        }
    }
}

TEST_P(Contract, ValidityFormsAgree) {
    const bool computerGenerated =
        builder().IsDesign() == EDesign::DOpt || builder().IsDesign() == EDesign::OnionDOpt;
    ForEachRequest([&](const Request& request) {
        const DesignOptions& options = request.options;
        const bool valid = builder().IsValid(*request.factors, options);
        EXPECT_EQ(builder().IsValid(*request.factors, options, false, false), valid);
        EXPECT_EQ(builder().IsValid(*request.factors, options, true, false),
                  valid && computerGenerated);
        EXPECT_EQ(builder().IsValid(*request.factors, options, false, true),
                  valid && builder().IsREDMUPRecommended(*request.factors, options));
    });
}

TEST_P(Contract, RequestsForImpossibleFactorsGiveNoDesign) {
    for (const FactorSet& set : MakeInvalidGrid()) {
        for (const Request& request : RequestsFor(builder(), set)) {
            SCOPED_TRACE(request.name);
            if (!builder().IsValid(*request.factors, request.options)) {
                ExpectRefusal(request);
            } else if (!IsExcepted(Check::ImpossibleFactors)) {
                ADD_FAILURE() << "valid for factors without a design";
            }
        }
    }
}

TEST_P(Contract, InvalidRequestsGiveAnEmptyHandle) {
    int invalid = 0;
    ForEachRequest([&](const Request& request) {
        if (!builder().IsValid(*request.factors, request.options)) {
            ExpectRefusal(request);
            ++invalid;
        }
    });
    EXPECT_GT(invalid, 0);
}

TEST_P(Contract, DefaultsBuildTheRunsAndColumnsThatTheOptionsTell) {
    ForEachValidRequest([&](const Request& request) {
        const auto design = Build(*request.factors, request.options);
        ASSERT_NE(design, nullptr);
        ASSERT_NE(design->GetDesignMatrix(), nullptr);
        EXPECT_EQ(&design->GetFactors(), request.factors);
        const unsigned columns = design->IsDesignMatrixCoded()
                                     ? request.factors->GetDesignFactorCount()
                                     : request.factors->GetDesignFactorCountExpanded();
        EXPECT_EQ(FactorColumns(*design->GetDesignMatrix()).SizeColumns(),
                  static_cast<int>(columns));
        if (!IsExcepted(Check::Finishing)) {
            EXPECT_EQ(design->GetDesignMatrix()->SizeRows(),
                      static_cast<int>(Total(request.options)));
        }
    });
}

TEST_P(Contract, EveryCellIsALegalLevel) {
    ForEachValidRequest([&](const Request& request) {
        const auto design = Build(*request.factors, request.options);
        ASSERT_NE(design, nullptr);
        if (design->IsDesignMatrixCoded()) {
            EXPECT_THAT(FactorColumns(*design->GetDesignMatrix()),
                        HasOnlyLegalLevels(*request.factors, request.options));
        } else {
            for (const float cell : design->GetDesignMatrix()->Cells()) {
                EXPECT_TRUE(std::isfinite(cell) && cell != -99.0F) << cell;
            }
        }
    });
}

TEST_P(Contract, SameRequestGivesTheSameDesign) {
    ForEachSmallRequest([&](const Request& request) {
        EXPECT_EQ(Built(*request.factors, request.options),
                  Built(*request.factors, request.options));
    });
}

TEST_P(Contract, BuildingLeavesTheOptionsAsTheyAre) {
    ForEachSmallRequest([&](const Request& request) {
        const ConfigurationStore before = StoreOf(request.options);
        (void)Built(*request.factors, request.options);
        EXPECT_TRUE(StoreOf(request.options) == before);
    });
}

TEST_P(Contract, CentrePointsAddAsManyRows) {
    if (IsExcepted(Check::Finishing)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::Finishing);
    }
    if (!builder().IsCenterPointsAllowed()) {
        GTEST_SKIP() << "the family allows no centre points";
    }
    ForEachSmallRequest([&](const Request& request) {
        for (const unsigned more : {0U, 1U, 4U}) {
            DesignOptions options = request.options;
            options.SetCenterPoints(builder().GetMinimumCenterPoints() + more);
            EXPECT_EQ(Built(*request.factors, options).SizeRows(),
                      static_cast<int>(Total(options)));
        }
    });
}

TEST_P(Contract, ReplicatesCopyTheWholeDesign) {
    if (IsExcepted(Check::Finishing)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::Finishing);
    }
    ForEachSmallRequest([&](const Request& request) {
        const Table once = Built(*request.factors, request.options);
        DesignOptions options = request.options;
        options.SetReplicates(2);
        Table expected = once;
        expected.ConcatRows(once);
        expected.ConcatRows(once);
        EXPECT_EQ(Built(*request.factors, options), expected);
    });
}

TEST_P(Contract, ReplicatedRunsRepeatExistingRuns) {
    if (IsExcepted(Check::Finishing)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::Finishing);
    }
    ForEachSmallRequest([&](const Request& request) {
        DesignOptions options = request.options;
        options.SetReplicatedRuns(0);
        options.SetCenterPoints(builder().GetMinimumCenterPoints());
        const Table without = Built(*request.factors, options);
        for (const unsigned repeated : {1U, 3U}) {
            options.SetReplicatedRuns(repeated);
            const Table with = Built(*request.factors, options);
            ASSERT_EQ(with.SizeRows(), without.SizeRows() + static_cast<int>(repeated));
            // Centroids are points of a design on a simplex, and an adapted composite design keeps
            // the centre points of its base: they come before the repeated runs and can be among
            // them.
            const bool holdsCentres =
                builder().IsMixtureOnlyDesign() || builder().IsDesign() == EDesign::Plugin;
            const int core =
                holdsCentres ? without.SizeRows() : static_cast<int>(options.GetRuns());
            EXPECT_EQ(FirstRows(with, core), FirstRows(without, core));
            for (int row = core + 1; row <= core + static_cast<int>(repeated); ++row) {
                EXPECT_TRUE(HasEqualRow(with, core, row)) << "row " << row;
            }
        }
    });
}

TEST_P(Contract, LegalRunsAscend) {
    ForEachRequest([&](const Request& request) {
        const std::vector<unsigned> legal =
            builder().GetLegalRuns(*request.factors, request.options);
        EXPECT_TRUE(std::is_sorted(legal.begin(), legal.end(), std::less_equal<>()))
            << ::testing::PrintToString(legal);
    });
}

// At most so many run counts of one request are built: the first, the last and those spread
// between.
constexpr std::size_t cMostLegalRuns = 8;

std::vector<unsigned> Spread(const std::vector<unsigned>& legal) {
    if (legal.size() <= cMostLegalRuns) {
        return legal;
    }
    std::vector<unsigned> chosen;
    for (std::size_t i = 0; i < cMostLegalRuns; ++i) {
        chosen.push_back(legal[i * (legal.size() - 1) / (cMostLegalRuns - 1)]);
    }
    return chosen;
}

TEST_P(Contract, EveryLegalRunCountBuilds) {
    if (IsExcepted(Check::LegalRuns)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::LegalRuns);
    }
    ForEachSmallRequest([&](const Request& request) {
        const std::vector<unsigned> legal =
            builder().GetLegalRuns(*request.factors, request.options);
        EXPECT_FALSE(legal.empty());
        for (const unsigned runs : Spread(legal)) {
            SCOPED_TRACE(runs);
            DesignOptions options = request.options;
            options.SetRuns(runs);
            EXPECT_EQ(Built(*request.factors, options).SizeRows(),
                      static_cast<int>(Total(options)));
        }
    });
}

TEST_P(Contract, LegalBlocksAscendFromOne) {
    ForEachRequest([&](const Request& request) {
        const std::vector<int> legal =
            builder().GetLegalBlocks(*request.factors, request.options, false);
        ASSERT_FALSE(legal.empty());
        EXPECT_EQ(legal.front(), 1);
        EXPECT_TRUE(std::is_sorted(legal.begin(), legal.end(), std::less_equal<>()))
            << ::testing::PrintToString(legal);
    });
}

TEST_P(Contract, WithoutBlocksOneIsLegal) {
    ForEachRequest([&](const Request& request) {
        EXPECT_THAT(builder().GetLegalBlocks(*request.factors, request.options, true),
                    ::testing::ElementsAre(1));
    });
}

TEST_P(Contract, EveryLegalBlockCountBuilds) {
    if (IsExcepted(Check::LegalBlocks)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::LegalBlocks);
    }
    ForEachSmallRequest([&](const Request& request) {
        for (const int blocks :
             builder().GetLegalBlocks(*request.factors, request.options, false)) {
            if (blocks == 1) {
                continue;
            }
            SCOPED_TRACE(blocks);
            DesignOptions options = request.options;
            options.SetBlocks(static_cast<unsigned>(blocks));
            const Table table = Built(*request.factors, options);
            std::set<float> used;
            for (int row = 1; row <= table.SizeRows(); ++row) {
                used.insert(table(row, table.SizeColumns()));
            }
            EXPECT_EQ(used.size(), static_cast<std::size_t>(blocks));
            EXPECT_EQ(*used.begin(), 65);
            EXPECT_EQ(*used.rbegin(), static_cast<float>(64 + blocks));
        }
    });
}

TEST_P(Contract, FittingUnderARunLimitTellsTheTruth) {
    ForEachRequest([&](const Request& request) {
        for (const unsigned limit : {1U, 5U, 12U, 40U, 12000U}) {
            DesignOptions options = request.options;
            options.SetMaxRuns(limit);
            const bool fits = options.AssureMaxRuns(builder(), *request.factors);
            if (limit != 12000) {
                EXPECT_EQ(fits, options.GetRuns() + options.GetCenterPoints() <= limit) << limit;
            }
            if (options.GetRuns() != request.options.GetRuns()) {
                EXPECT_THAT(builder().GetLegalRuns(*request.factors, request.options),
                            ::testing::Contains(options.GetRuns()))
                    << limit;
            }
        }
    });
}

// Every scalar away from its default, beside the family's own options.
DesignOptions Changed(DesignOptions options) {
    options.SetBlocks(3);
    options.SetRuns(options.GetRuns() + 1);
    options.SetCenterPoints(options.GetCenterPoints() + 2);
    options.SetReplicates(4);
    options.SetReplicatedRuns(5);
    options.SetMaxRuns(678);
    options.SetStarDistance(1.25F);
    options.SetObjective(EObjective::SystemCharacterization);
    options.SetModel(EModel::LinearQuadratic);
    return options;
}

TEST_P(Contract, OptionsAreReadBackFromAStore) {
    ForEachRequest([&](const Request& request) {
        for (const DesignOptions& options : {request.options, Changed(request.options)}) {
            const ConfigurationStore store = StoreOf(options);
            DesignOptions loaded(builder(), *request.factors);
            EXPECT_TRUE(loaded.Load(store.OpenRoot().get()));
            EXPECT_EQ(loaded.GetBlocks(), options.GetBlocks());
            EXPECT_EQ(loaded.GetRuns(), options.GetRuns());
            EXPECT_EQ(loaded.GetStarDistance(), options.GetStarDistance());
            EXPECT_EQ(loaded.GetObjective(), options.GetObjective());
            EXPECT_EQ(loaded.GetModel(), options.GetModel());
            // Saved again, nothing is lost.
            EXPECT_EQ(StoreOf(loaded).ToText(), store.ToText());
        }
    });
}

TEST_P(Contract, OptionsAreReadBackFromJson) {
    if (IsExcepted(Check::Json)) {
        GTEST_SKIP() << ReasonToSkip(builder().IsDesign(), Check::Json);
    }
    ForEachRequest([&](const Request& request) {
        for (const DesignOptions& options : {request.options, Changed(request.options)}) {
            const json_value json = json_value::parse(options.ToJson().to_text());
            DesignOptions read(builder(), *request.factors);
            read.FromJson(json);
            EXPECT_EQ(read.GetRuns(), options.GetRuns());
            EXPECT_EQ(read.ToJson().to_text(), json.to_text());
        }
    });
}

TEST_P(Contract, FamilyOptionsAreNewForEachRequest) {
    ForEachRequest([&](const Request& request) {
        const auto first =
            builder().GetDefaultDesignSpecificOptions(*request.factors, request.options);
        const auto second =
            builder().GetDefaultDesignSpecificOptions(*request.factors, request.options);
        EXPECT_TRUE(first == nullptr || first != second);
    });
}

TEST_P(Contract, TextsAreWrittenToAStore) {
    ConfigurationStore store;
    builder().Save(store.OpenRoot().get());
    std::vector<std::string> texts;
    const auto section = store.OpenRoot()->OpenSection("DesignBuilder");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(section->ReadStringList("DesignNameAndDesciption", &texts, ';'), 3);
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0], builder().GetShortString());
    EXPECT_EQ(texts[1], builder().GetDisplayName());
    if (IsExcepted(Check::StoredTexts)) {
        EXPECT_THAT(builder().GetDescription(), ::testing::StartsWith(texts[2]));
    } else {
        EXPECT_EQ(texts[2], builder().GetDescription());
    }
}

TEST_P(Contract, DesignIsSavedLoadedAndRemoved) {
    ForEachSmallRequest([&](const Request& request) {
        const auto design = Build(*request.factors, request.options);
        ASSERT_NE(design, nullptr);
        ConfigurationStore store;
        EXPECT_FALSE(design->Load(store.OpenRoot().get()));
        design->Save(store.OpenRoot().get());
        EXPECT_TRUE(design->Load(store.OpenRoot().get()));
        design->Remove(store.OpenRoot().get());
        EXPECT_FALSE(design->Load(store.OpenRoot().get()));
    });
}

TEST_P(Contract, CloneSharesTheMatrixUntilItIsChanged) {
    ForEachSmallRequest([&](const Request& request) {
        const auto design = Build(*request.factors, request.options);
        ASSERT_NE(design, nullptr);
        const auto clone = design->Clone();
        EXPECT_EQ(clone->GetDesignMatrix(), design->GetDesignMatrix());
        EXPECT_EQ(&clone->GetFactors(), request.factors);
        EXPECT_EQ(clone->IsDesignMatrixCoded(), design->IsDesignMatrixCoded());
        const Table before = *design->GetDesignMatrix();
        clone->AddCenterPoints(2, *request.factors, request.options);
        EXPECT_EQ(*design->GetDesignMatrix(), before);
        EXPECT_EQ(clone->GetDesignMatrix()->SizeRows(), before.SizeRows() + 2);
    });
}

TEST_P(Contract, ClearingACloneLeavesTheDesign) {
    ForEachSmallRequest([&](const Request& request) {
        const auto design = Build(*request.factors, request.options);
        ASSERT_NE(design, nullptr);
        const auto clone = design->Clone();
        clone->ClearDesignMatrix();
        EXPECT_EQ(clone->GetDesignMatrix(), nullptr);
        EXPECT_NE(design->GetDesignMatrix(), nullptr);
    });
}

TEST_P(Contract, PriorityIsThatOfTheSameFactorsEveryTime) {
    ForEachRequest([&](const Request& request) {
        const int priority = builder().GetPriority(*request.factors);
        EXPECT_LE(priority, 29);
        EXPECT_EQ(builder().GetPriority(*request.factors), priority);
    });
}

}  // namespace
