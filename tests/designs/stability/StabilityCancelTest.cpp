#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "designs/stability/StabilityDesign.h"
#include "designs/stability/StabilityDesignCalculator.h"
#include "foundation/util/NCProgress.h"
#include "foundation/utl/Exceptions.h"
#include "frame/AllDesigns.h"
#include "frame/DesignOptions.h"
#include "tests/support/TestFactors.h"

namespace {

/// Sets the caller's flag when the progress is shown for the so-manieth time.
class CancellingDisplay : public NCProgressDisplay {
  public:
    CancellingDisplay(bool& cancel, int after) : cancel_(cancel), left_(after) {}
    void Begin(const std::string&, const std::string&, bool) override {}
    void Show(double, const std::string&) override {
        if (--left_ == 0) {
            cancel_ = true;
        }
    }
    void Hide() override {}
    void End() override {}
    [[nodiscard]] bool IsBreakPressed() const override { return false; }

  private:
    bool& cancel_;
    int left_;
};

// A division into fifths of factors with three levels is never perfect, so that only the time limit
// of 45 seconds or a stop ends the search.
class StabilityCancel : public ::testing::Test {
  protected:
    StabilityCancel() {
        for (int i = 0; i < 4; ++i) {
            factors_.MultilevelOf(3);
        }
    }
    ~StabilityCancel() override { NCProgress::SetDisplay(nullptr); }

    std::unique_ptr<NCDesign> Build(bool* cancel) const {
        const auto builder = AllDesigns::GetGeneralizedSubsetBuilder();
        DesignOptions options(*builder, factors_);
        auto& family = dynamic_cast<GeneralizedSubsetDesignsDesignOptions&>(
            *options.GetDesignSpecificOptions());
        family.SetReduction(reduction_);
        return builder->Build(factors_, options, cancel);
    }

    TestFactors factors_;
    unsigned long long reduction_ = 5;
};

TEST_F(StabilityCancel, AFlagThatIsSetEndsTheBuildAtOnce) {
    bool cancel = true;
    EXPECT_THROW(static_cast<void>(Build(&cancel)), CancelException);
}

TEST_F(StabilityCancel, AFlagThatIsSetWhileSearchingEndsTheBuild) {
    bool cancel = false;
    NCProgress::SetDisplay(std::make_shared<CancellingDisplay>(cancel, 20));
    EXPECT_THROW(static_cast<void>(Build(&cancel)), CancelException);
    EXPECT_TRUE(cancel);
}

TEST_F(StabilityCancel, AFlagThatIsNotSetLeavesTheBuildAlone) {
    bool cancel = false;
    reduction_ = 3;
    const auto design = Build(&cancel);
    ASSERT_NE(design, nullptr);
    EXPECT_EQ(design->GetDesignMatrix()->SizeRows(), 81);
}

TEST_F(StabilityCancel, AFlagEndsACalculationWithoutAProgress) {
    const bool cancel = true;
    StabilityDesignCalculator calculator(5, factors_, 45, true, &cancel);
    std::vector<bool> unique;
    std::vector<bool> balance;
    std::vector<bool> oa;
    std::vector<bool> noa;
    std::vector<int> iterations;
    std::vector<std::vector<int>> distances;
    EXPECT_THROW(static_cast<void>(calculator.Calculate(
                     nullptr, unique, balance, iterations, distances, oa, noa)),
                 CancelException);
}

}  // namespace
