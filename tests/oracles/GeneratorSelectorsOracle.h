#pragma once

/// Which word each combination of resolution, factors, runs and block generators gets, in the
/// plainest form: one condition after the other, tables looked up by name. Shares no code with the
/// engine.
namespace oracles {

using Word = unsigned short;

Word Single(int index);
/// Resolution III, 32 to 63 factors in 64 runs, by sorting all subsets of six letters.
Word Gen3Computed(int index);

Word Gen3(int index, int factors, int runs, int blockGens);
Word Gen4(int index, int factors, int runs, int blockGens);
Word Gen5(int index, int factors, int runs, int blockGens);
Word GenFullFactorial(int index, int runs, int blockGens);

Word GenII3(int index, int factors, int runs);
Word GenII4(int index, int factors, int runs);
Word GenII5(int index, int factors, int runs);
Word GenIII3(int index, int factors, int runs);
Word GenIII4(int index, int factors, int runs);
Word GenIII5(int index, int factors, int runs);

}  // namespace oracles
