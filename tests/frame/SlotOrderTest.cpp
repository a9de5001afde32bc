// Hosts are linked against these classes, so the order of their virtual operations is fixed. The
// order is read from pointers to members, which hold the slot's offset in the Itanium C++ ABI.

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "foundation/utl/ConfigurationSection.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/DesignSpecificOptions.h"
#include "frame/Factors.h"
#include "frame/NCDesign.h"

namespace {

template <class Member>
std::ptrdiff_t Slot(Member member) {
    std::ptrdiff_t words[2];
    static_assert(sizeof(member) == sizeof(words));
    std::memcpy(words, &member, sizeof(words));
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

std::vector<std::ptrdiff_t> Consecutive(std::ptrdiff_t first, std::size_t count) {
    std::vector<std::ptrdiff_t> slots;
    for (std::size_t i = 0; i < count; ++i) {
        slots.push_back(first + static_cast<std::ptrdiff_t>(i));
    }
    return slots;
}

// A virtual destructor takes two slots.
constexpr std::ptrdiff_t cBehindDestructor = 2;

TEST(SlotOrder, FactorsBeginWithTheDestructor) {
    EXPECT_EQ((std::vector<std::ptrdiff_t>{Slot(&Factors::GetDesignFactorCount),
                                           Slot(&Factors::GetFactorType),
                                           Slot(&Factors::GetFactorSettings),
                                           Slot(&Factors::GetLevelCount),
                                           Slot(&Factors::SetFactorRange),
                                           Slot(&Factors::GetFactorTransform),
                                           Slot(&Factors::HasFiller),
                                           Slot(&Factors::IsFormulationSumFree),
                                           Slot(&Factors::GetConstantMixtureShare)}),
              Consecutive(cBehindDestructor, 9));
}

using B = DesignBuilder;
using F = const Factors&;
using O = const DesignOptions&;

TEST(SlotOrder, BuildersHaveTwentyEightOperations) {
    EXPECT_EQ((std::vector<std::ptrdiff_t>{
                  Slot(&B::Build),
                  Slot<unsigned (B::*)(F, EObjective::Type) const>(&B::GetDefaultRuns),
                  Slot<unsigned (B::*)(F, O) const>(&B::GetDefaultRuns),
                  Slot(&B::GetDefaultProcessModel),
                  Slot(&B::GetDefaultMixtureModel),
                  Slot(&B::IsPMInteractionDefault),
                  Slot(&B::GetDefaultStarDistance),
                  Slot(&B::GetMinimumCenterPoints),
                  Slot(&B::GetDefaultCenterPoints),
                  Slot(&B::GetDefaultReplicatedRuns),
                  Slot(&B::GetDesignData),
                  Slot(&B::GetDisplayName),
                  Slot(&B::GetShortString),
                  Slot(&B::GetDescription),
                  Slot(&B::GetLegalRuns),
                  Slot(&B::GetLegalBlocks),
                  Slot(&B::GetPriority),
                  Slot(&B::IsDesign),
                  Slot(&B::IsCenterPointsAllowed),
                  Slot(&B::IsMixtureOnlyDesign),
                  Slot(&B::IsREDMUPRecommended),
                  Slot<bool (B::*)(F, O) const>(&B::IsValid),
                  Slot<bool (B::*)(F, bool, bool, int) const>(&B::IsValid),
                  Slot<bool (B::*)(F, O, bool, bool) const>(&B::IsValid),
                  Slot(&B::Save),
                  Slot(&B::Load),
                  Slot(&B::GetDefaultModel),
                  Slot(&B::GetDefaultDesignSpecificOptions)}),
              Consecutive(0, 28));
}

// Names the protected operations of a design.
class Open : public NCDesign {
  public:
    static std::vector<std::ptrdiff_t> ProtectedSlots() {
        return {Slot(&Open::GetDesignCoding), Slot(&Open::AddReplicates)};
    }
};

TEST(SlotOrder, DesignsBeginWithTheDestructor) {
    using Adjust = void (NCDesign::*)(F, O);
    std::vector<std::ptrdiff_t> slots{Slot(&NCDesign::GetDesignMatrix),
                                      Slot(&NCDesign::Clone),
                                      Slot(&NCDesign::Save),
                                      Slot(&NCDesign::Load),
                                      Slot(&NCDesign::Remove),
                                      Slot<Adjust>(&NCDesign::AdjustCenterPoints),
                                      Slot(&NCDesign::IsDesignMatrixCoded),
                                      Slot(&NCDesign::SetDesignMatrix),
                                      Slot(&NCDesign::AddCenterPoints),
                                      Slot(&NCDesign::IsMixtureOnlyDesign)};
    for (const std::ptrdiff_t slot : Open::ProtectedSlots()) {
        slots.push_back(slot);
    }
    EXPECT_EQ(slots, Consecutive(cBehindDestructor, 12));
}

TEST(SlotOrder, FamilyOptionsHaveSixOperationsInFront) {
    using S = DesignSpecificOptions;
    EXPECT_EQ((std::vector<std::ptrdiff_t>{Slot(&S::GetConstraints),
                                           Slot(&S::Save),
                                           Slot(&S::Load),
                                           Slot(&S::Remove),
                                           Slot(&S::FromJson),
                                           Slot(&S::ToJson)}),
              Consecutive(0, 6));
}

TEST(ClassShape, FamilyOptionsHaveNoVirtualDestructor) {
    EXPECT_TRUE(std::is_polymorphic_v<DesignSpecificOptions>);
    EXPECT_FALSE(std::has_virtual_destructor_v<DesignSpecificOptions>);
}

TEST(ClassShape, OptionsAreAPlainValue) {
    EXPECT_FALSE(std::is_polymorphic_v<DesignOptions>);
    EXPECT_TRUE(std::is_copy_constructible_v<DesignOptions>);
    EXPECT_TRUE(std::is_copy_assignable_v<DesignOptions>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<DesignOptions>);
    EXPECT_TRUE(std::is_move_assignable_v<DesignOptions>);
}

TEST(ClassShape, ListsAreCopiedButNeverMadeEmpty) {
    EXPECT_FALSE(std::is_default_constructible_v<AllDesigns>);
    EXPECT_TRUE(std::is_copy_constructible_v<AllDesigns>);
    EXPECT_TRUE(std::is_move_constructible_v<AllDesigns>);
    EXPECT_TRUE(std::is_copy_assignable_v<AllDesigns>);
    EXPECT_TRUE(std::is_move_assignable_v<AllDesigns>);
}

TEST(ClassShape, FactorsAreCopiedAndDestroyedThroughTheBase) {
    EXPECT_TRUE(std::is_copy_assignable_v<Factors>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Factors>);
    EXPECT_TRUE(std::has_virtual_destructor_v<NCDesign>);
}

}  // namespace
