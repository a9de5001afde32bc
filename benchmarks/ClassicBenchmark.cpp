// All classical families of the registry: the default designs of 2 to 20 factors, each family's
// largest one, and the alias structure of a fraction. Designs that are searched for have programs
// of their own.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "evaluation/AliasStructure.h"
#include "frame/AllDesigns.h"
#include "frame/DesignBuilder.h"
#include "frame/DesignOptions.h"
#include "frame/NCDesign.h"
#include "tests/support/TestFactors.h"

namespace {

constexpr int cFewestFactors = 2;
constexpr int cMostFactors = 20;

bool IsSearched(const DesignBuilder& builder) {
    const EDesign::Type type = builder.IsDesign();
    return type == EDesign::DOpt || type == EDesign::OnionDOpt || type == EDesign::J2;
}

// A default design that is ready to be built.
struct Ready {
    std::shared_ptr<const DesignBuilder> builder;
    TestFactors factors;
    DesignOptions options;

    [[nodiscard]] std::unique_ptr<NCDesign> Build() const {
        return builder->Build(factors, options);
    }
    [[nodiscard]] std::size_t Cells() const {
        return static_cast<std::size_t>(options.GetRuns() + options.GetCenterPoints()) *
               factors.GetDesignFactorCount();
    }
};

// Factors that between them every family takes.
std::vector<TestFactors> FactorSets(int count) {
    TestFactors mixture;
    TestFactors mixed;
    for (int i = 0; i < count; ++i) {
        mixture.Formulation();
        i % 2 == 0 ? mixed.Qualitative(3) : mixed.Quantitative();
    }
    return {TestFactors().Quantitatives(count), mixture, mixed};
}

std::vector<Ready> DefaultDesigns(const std::shared_ptr<const DesignBuilder>& builder) {
    std::vector<Ready> designs;
    // One factor, for the designs of single factors.
    for (int count = 1; count <= cMostFactors; ++count) {
        for (const TestFactors& factors : FactorSets(count)) {
            const DesignOptions options(*builder, factors);
            const bool isAsked = count >= cFewestFactors || builder->IsDesign() == EDesign::Levels;
            if (isAsked && builder->IsValid(factors, options)) {
                designs.push_back({builder, factors, options});
            }
        }
    }
    return designs;
}

void BuildAll(benchmark::State& state, const std::vector<Ready>& designs) {
    std::size_t cells = 0;
    for (const Ready& ready : designs) {
        cells += ready.Cells();
    }
    for (auto unused : state) {
        static_cast<void>(unused);
        for (const Ready& ready : designs) {
            benchmark::DoNotOptimize(ready.Build());
        }
    }
    state.counters["designs"] = static_cast<double>(designs.size());
    state.counters["cells"] = static_cast<double>(cells);
}

void Register(const std::string& name, const std::vector<Ready>& designs) {
    benchmark::RegisterBenchmark(name.c_str(), [designs](benchmark::State& state) {
        BuildAll(state, designs);
    })->Unit(benchmark::kMicrosecond);
}

bool RegisterFamilies() {
    std::vector<Ready> all;
    for (const auto& builder : AllDesigns::ClassicDesigns().GetAllDesigns()) {
        const std::vector<Ready> designs =
            IsSearched(*builder) ? std::vector<Ready>() : DefaultDesigns(builder);
        if (designs.empty()) {
            continue;
        }
        const auto largest =
            std::max_element(designs.begin(), designs.end(), [](const Ready& a, const Ready& b) {
                return a.Cells() < b.Cells();
            });
        Register("Defaults/" + builder->GetShortString(), designs);
        Register("Largest/" + builder->GetShortString(), {*largest});
        all.insert(all.end(), designs.begin(), designs.end());
    }
    Register("Defaults/all families", all);
    return true;
}

const bool registered = RegisterFamilies();

// The fraction of resolution IV with the default runs.
void Aliases(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const TestFactors factors = TestFactors().Quantitatives(count);
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FFR_IV, "");
    const DesignOptions options(*builder, factors);
    const auto design = builder->Build(factors, options);
    const auto matrix = design->GetDesignMatrix();
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(NCDOE::ComputeAliasStructure(*matrix, count));
    }
    state.counters["runs"] = options.GetRuns();
}
BENCHMARK(Aliases)->Arg(8)->Arg(16)->Arg(32)->Unit(benchmark::kMicrosecond);

}  // namespace
