// Which block counts each design type allows; the one place where DesignBuilder looks at the type.

#include <algorithm>
#include <memory>
#include <vector>

#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/Factors.h"
#include "frame/FloorLog2.h"
#include "frame/generators/Generators.h"

namespace {

// More factors than this are never blocked.
constexpr unsigned int cMaxBlockedFactors = 31;
// At most 2^3 blocks of a factorial: there are three block generators.
constexpr int cMaxBlockGenerators = 3;
constexpr int cMaxDOptimalBlocks = 9;

GeneratorWord BlockGenerator(EDesign::Type type, int index, unsigned factors, int runs) {
    switch (type) {
        case EDesign::FF2:
            return Generators::GetGenFullFactorial(-index, runs, index);
        case EDesign::FFR_III:
            return Generators::GetGen3(
                -index, factors, static_cast<unsigned>(runs), static_cast<unsigned>(index));
        case EDesign::FFR_IV:
            return Generators::GetGen4(-index, factors, runs, index);
        default:
            return Generators::GetGen5(-index, factors, runs, index);
    }
}

void AppendFactorialBlocks(EDesign::Type type,
                           unsigned factors,
                           int runs,
                           std::vector<int>& blocks) {
    const int most = std::min(FloorLog2(runs / 4), cMaxBlockGenerators);
    for (int i = 1; i <= most; ++i) {
        if (BlockGenerator(type, i, factors, runs) != Generators::NONE) {
            blocks.push_back(1 << i);
        }
    }
}

void AppendBoxBehnkenBlocks(unsigned factors, std::vector<int>& blocks) {
    switch (factors) {
        case 4:
            blocks.push_back(3);
            break;
        case 5:
        case 6:
        case 7:
        case 10:
        case 12:
            blocks.push_back(2);
            break;
        case 9:
            blocks.insert(blocks.end(), {5, 10});
            break;
        default:
            break;
    }
}

// The fractional part's blocks plus one block of star runs.
void AppendCompositeBlocks(unsigned factors, int runs, std::vector<int>& blocks) {
    blocks.push_back(2);
    const int most = std::min(FloorLog2(runs >> 2), cMaxBlockGenerators);
    const int cubeRuns = runs - 2 * static_cast<int>(factors);
    for (int i = 1; i <= most; ++i) {
        const bool clear = Generators::GetGen5(0, factors, cubeRuns, i) == 5;
        if (clear && Generators::GetGen5(-i, factors, cubeRuns, i) != Generators::NONE) {
            blocks.push_back((1 << i) + 1);
        }
    }
}

void AppendDOptimalBlocks(const Factors& factors,
                          const DesignOptions& options,
                          std::vector<int>& blocks) {
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::DOpt, "");
    const std::vector<unsigned int> legal =
        builder ? builder->GetLegalRuns(factors, options) : std::vector<unsigned int>();
    if (legal.empty() || (factors.IsProcessAndMixture() && factors.GetDesignFactorCount() > 11)) {
        return;
    }
    const int expanded = static_cast<int>(factors.GetDesignFactorCountExpanded());
    const int top =
        std::min({static_cast<int>(legal.back() / 2), cMaxDOptimalBlocks, 33 - expanded});
    for (int count = 2; count <= top; ++count) {
        blocks.push_back(count);
    }
}

}  // namespace

std::vector<int> DesignBuilder::GetLegalBlocks(const Factors& factors,
                                               const DesignOptions& options,
                                               bool noBlocks) const {
    std::vector<int> blocks{1};
    const unsigned int count = factors.GetDesignFactorCount();
    if (noBlocks || count > cMaxBlockedFactors) {
        return blocks;
    }
    const int runs = static_cast<int>(options.GetRuns());
    switch (IsDesign()) {
        case EDesign::FF2:
        case EDesign::FFR_III:
        case EDesign::FFR_IV:
        case EDesign::FFR_V:
            AppendFactorialBlocks(IsDesign(), count, runs, blocks);
            break;
        case EDesign::BB:
            AppendBoxBehnkenBlocks(count, blocks);
            break;
        case EDesign::CCC:
            AppendCompositeBlocks(count, runs, blocks);
            break;
        case EDesign::PB:
            if (static_cast<int>(count) < runs - 1) {
                blocks.push_back(2);
            }
            break;
        case EDesign::DOpt:
            AppendDOptimalBlocks(factors, options, blocks);
            break;
        default:
            break;
    }
    return blocks;
}
