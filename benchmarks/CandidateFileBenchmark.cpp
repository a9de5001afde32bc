// Writing and reading the text file of a candidate set: ten columns of levels and of measured
// scores, in memory, so that the disk is left out.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>

#include "frame/CandidateSetFile.h"

namespace {

constexpr int cColumns = 10;

struct Named {
    NCDataMatrix<float> rows;
    std::vector<std::string> names;
    std::vector<float> percentages;
};

Named MakeRows(int count) {
    std::mt19937 engine(5489);
    Named set{NCDataMatrix<float>(count, cColumns, 0), {}, {}};
    for (float& cell : set.rows.Cells()) {
        const auto draw = static_cast<std::uint32_t>(engine());
        // Half settings, half scores that fill all six digits.
        cell = draw % 2 == 0 ? (draw % 4 == 0 ? -1.0F : 1.0F) : static_cast<float>(draw) * 1e-5F;
    }
    for (int row = 1; row <= count; ++row) {
        set.names.push_back("Candidate " + std::to_string(row));
        set.percentages.push_back(100.0F / static_cast<float>(count));
    }
    return set;
}

std::string Write(const Named& set) {
    return CandidateSetFile::Write({set.rows, &set.names, &set.percentages, {}}, "set", "now");
}

void WriteCandidates(benchmark::State& state) {
    const Named set = MakeRows(static_cast<int>(state.range(0)));
    for (auto unused : state) {
        static_cast<void>(unused);
        benchmark::DoNotOptimize(Write(set));
    }
    state.SetComplexityN(state.range(0));
}

void ReadCandidates(benchmark::State& state) {
    const std::string text = Write(MakeRows(static_cast<int>(state.range(0))));
    for (auto unused : state) {
        static_cast<void>(unused);
        CandidateSetFile::Content content;
        if (CandidateSetFile::Read(text, {}, nullptr, content) != CandidateSetFile::Success) {
            throw std::runtime_error("the file is not read");
        }
        benchmark::DoNotOptimize(content);
    }
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}

BENCHMARK(WriteCandidates)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);
BENCHMARK(ReadCandidates)->RangeMultiplier(10)->Range(1000, 100000)->Complexity(benchmark::oN);

}  // namespace
