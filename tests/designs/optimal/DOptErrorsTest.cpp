#include "designs/optimal/DOptErrors.h"

#include <gtest/gtest.h>

#include "designs/optimal/D_OptimalOptions.h"

namespace {

using DOpt::GetErrorString;

TEST(DOptErrors, KnownCodesHaveTheirTexts) {
    EXPECT_EQ(GetErrorString(5001, nullptr), "Not enough memory.");
    EXPECT_EQ(GetErrorString(6001, nullptr), "The constraints are inconsistent.");
    EXPECT_EQ(GetErrorString(6019, nullptr), "The candidate set will exceed the limit of runs.");
    EXPECT_EQ(GetErrorString(6011, nullptr), GetErrorString(6016, nullptr));
}

TEST(DOptErrors, UnknownCodesAreNamed) {
    EXPECT_EQ(GetErrorString(5999, nullptr), "Internal MAT error number 5999.");
    EXPECT_EQ(GetErrorString(6003, nullptr),
              "No design for the problem. Internal D-Optimal error number 6003.");
    EXPECT_EQ(GetErrorString(-4, nullptr),
              "No design for the problem. Internal D-Optimal error number -4.");
}

TEST(DOptErrors, BalanceIsBlamedWhereOnlyBalancedDesignsCount) {
    EXPECT_EQ(GetErrorString(6020, nullptr), GetErrorString(6017, nullptr));
    D_OptimalOptions options;
    options.SetOnlyAllowBalanced(true);
    EXPECT_EQ(GetErrorString(6020, &options), GetErrorString(6017, nullptr));
    options.SetBalanceOnFactor(0);
    EXPECT_EQ(GetErrorString(6020, &options),
              "A balanced D-Optimal design could not be generated. Try unchecking the 'Use "
              "balanced only' option.");
}

}  // namespace
