#include "tests/oracles/GeneratorSelectorsOracle.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tests/oracles/GeneratorTablesOracle.h"

namespace oracles {

Word Single(int index) {
    const std::string letters = "abcdefghijk";
    return index >= 1 && index <= 11
               ? WordOf(letters.substr(static_cast<std::size_t>(index) - 1, 1))
               : Word{0};
}

Word Gen3Computed(int index) {
    static const std::vector<Word> rows = [] {
        std::vector<Word> list;
        for (const std::size_t size : {1u, 3u, 4u, 2u, 5u, 6u}) {
            std::vector<std::string> subsets;
            for (unsigned bits = 1; bits < 64; ++bits) {
                std::string letters;
                for (unsigned letter = 0; letter < 6; ++letter) {
                    if ((bits >> letter & 1u) != 0) {
                        letters += static_cast<char>('a' + letter);
                    }
                }
                if (letters.size() == size) {
                    subsets.push_back(letters);
                }
            }
            std::sort(subsets.begin(), subsets.end());
            for (const std::string& letters : subsets) {
                list.push_back(WordOf(letters));
            }
        }
        return list;
    }();
    return index >= 1 && index <= 63 ? rows[static_cast<std::size_t>(index) - 1] : Word{0};
}

Word Gen3(int index, int factors, int runs, int blockGens) {
    if (blockGens == 2) {
        return GenII3(index, factors, runs);
    }
    if (blockGens == 3) {
        return GenIII3(index, factors, runs);
    }
    if (blockGens == 1) {
        const int next = factors + 1;
        if (Gen3(next, factors, runs, 0) != 0) {
            index = index < 0 ? next : index;
        } else if (Gen3(next, next, runs, 0) != 0) {
            factors = next;
            index = index < 0 ? next : index;
        }
    }
    if (index > factors + 1) {
        return 0;
    }
    if (index == 0) {
        return 3;
    }
    if (index == -4) {
        return 11;
    }
    if (index < 0) {
        return 0;
    }
    if (factors == 1 || factors == 2) {
        return index < 3 ? Single(index) : GenI3_3.Row(index);
    }
    if (factors == 3) {
        return runs == 4 ? GenI3_3.Row(index) : Word{0};
    }
    if (factors == 4 || factors == 8 || factors == 16) {
        return 0;
    }
    if (factors >= 5 && factors <= 7) {
        return runs == 8 ? GenI3_5_7.Row(index) : Word{0};
    }
    if (factors >= 9 && factors <= 15) {
        return runs == 16 ? GenI3_9_15.Row(index) : Word{0};
    }
    if (factors >= 17 && factors <= 31) {
        return runs == 32 ? GenI3_17_31.Row(index) : Word{0};
    }
    if (factors >= 32 && factors <= 63) {
        return runs == 64 ? Gen3Computed(index) : Word{0};
    }
    return 0;
}

Word Gen4(int index, int factors, int runs, int blockGens) {
    if (blockGens == 2) {
        return GenII4(index, factors, runs);
    }
    if (blockGens == 3) {
        return GenIII4(index, factors, runs);
    }
    if (blockGens == 1) {
        const int next = factors + 1;
        if (Gen4(next, factors, runs, 0) == 0) {
            const bool nextServes = Gen4(next, next, runs, 0) != 0;
            if (!nextServes && Gen3(-1, factors, runs, 1) != 0) {
                return Gen3(index, factors, runs, 1);
            }
            factors = next;
        }
        if (index < 0 && index != -4) {
            index = next;
        }
    }
    if (index > factors + 1) {
        return 0;
    }
    if (index == 0) {
        return 4;
    }
    if (index == -4) {
        return 9;
    }
    if (index < 0 || factors <= 0 || factors > 32) {
        return 0;
    }
    if (factors <= 3) {
        return index < 4 ? Single(index) : GenI4_4_8.Row(index);
    }
    if (factors == 4) {
        return runs == 8 ? GenI4_4_8.Row(index) : Word{0};
    }
    if (factors == 5) {
        return 0;
    }
    if (factors == 6) {
        return runs == 16 ? GenI4_6_16.Row(index) : Word{0};
    }
    if (factors == 7) {
        return runs == 32 ? GenI4_7_32.Row(index) : runs == 16 ? GenI4_7_16.Row(index) : Word{0};
    }
    if (factors == 8) {
        return runs == 32 ? GenI4_8_32.Row(index) : runs == 16 ? GenI4_8_16.Row(index) : Word{0};
    }
    if (factors == 9) {
        return runs == 64 ? GenI4_9_64.Row(index) : runs == 32 ? GenI4_9_32.Row(index) : Word{0};
    }
    if (factors == 10) {
        return runs == 64 ? GenI4_10_64.Row(index) : runs == 32 ? GenI4_10_32.Row(index) : Word{0};
    }
    if (factors == 11) {
        return runs == 64 ? GenI4_11_64.Row(index) : runs == 32 ? GenI4_11_32.Row(index) : Word{0};
    }
    if (factors <= 16) {
        switch (runs) {
            case 128:
                return GenI4_12_16_128.Row(index);
            case 64:
                return GenI4_12_16_64.Row(index);
            case 32:
                return GenI4_12_16_32.Row(index);
            default:
                return 0;
        }
    }
    switch (runs) {
        case 256:
            return GenI4_17_32_256.Row(index);
        case 128:
            return GenI4_17_32_128.Row(index);
        case 64:
            return GenI4_17_32_64.Row(index);
        default:
            return 0;
    }
}

Word Gen5(int index, int factors, int runs, int blockGens) {
    if (blockGens == 2) {
        return GenII5(index, factors, runs);
    }
    if (blockGens == 3) {
        return GenIII5(index, factors, runs);
    }
    if (blockGens == 1) {
        const int next = factors + 1;
        const bool ownSpare = factors >= 4 && Gen5(next, factors, runs, 0) != 0;
        const bool nextServes = factors >= 4 && Gen5(next, next, runs, 0) != 0;
        if (!ownSpare && !nextServes && Gen4(-1, factors, runs, 1) != 0) {
            return Gen4(index, factors, runs, 1);
        }
        if (!ownSpare) {
            factors = next;
        }
        if (index < 0 && index != -4) {
            index = next;
        }
    }
    if (index > factors + 1 || factors <= 0 || factors > 32) {
        return 0;
    }
    if (index == 0) {
        return factors == 17 ? 4 : 5;
    }
    if (index == -4) {
        if (factors == 17) {
            return 11;
        }
        const std::vector<int> classC{4, 5, 6, 7, 8, 9, 11, 21, 29, 32};
        return std::find(classC.begin(), classC.end(), factors) != classC.end() ? 10 : 9;
    }
    if (index < 0) {
        return 0;
    }
    const auto accepts = [runs](int own) { return runs == 0 || runs == own; };
    if (factors <= 4) {
        return index <= 4 ? Single(index) : GenI5_5_16.Row(index);
    }
    if (factors == 5) {
        return accepts(16) ? GenI5_5_16.Row(index) : Word{0};
    }
    if (factors == 6) {
        return accepts(32) ? GenI5_6_32.Row(index) : Word{0};
    }
    if (factors == 7) {
        return accepts(64) ? GenI5_7_64.Row(index) : Word{0};
    }
    if (factors == 8) {
        return runs == 128 ? GenI5_8_128.Row(index)
                           : (accepts(64) ? GenI5_8_64.Row(index) : Word{0});
    }
    if (factors == 9) {
        return accepts(128) ? GenI5_9_128.Row(index) : Word{0};
    }
    if (factors <= 11) {
        return accepts(128) ? GenI5_10_11_128.Row(index) : Word{0};
    }
    if (factors <= 17) {
        return accepts(256) ? GenI5_12_17_256.Row(index) : Word{0};
    }
    if (factors <= 21) {
        return accepts(512) ? GenI5_18_21_512.Row(index) : Word{0};
    }
    if (factors <= 29) {
        return accepts(1024) ? GenI5_22_29_1024.Row(index) : Word{0};
    }
    return accepts(2048) ? GenI5_30_32_2048.Row(index) : Word{0};
}

Word GenII5(int index, int factors, int runs) {
    Word row = 0;
    if (index <= factors) {
        if (factors == 7 && (runs == 0 || runs == 64)) {
            row = GenII5_7_C_64.Row(index);
        } else if (factors == 8 && (runs == 0 || runs == 64)) {
            row = GenII5_C_8_64.Row(index);
        } else if (factors == 8 && runs == 128) {
            row = GenII5_A_8_128.Row(index);
        } else if (factors >= 12 && factors <= 14 && (runs == 0 || runs == 256)) {
            row = GenII5_C_12_14_256.Row(index);
        } else if (factors >= 10 && factors <= 18 && (runs == 0 || runs == 512)) {
            row = GenII5_C_10_18_512.Row(index);
        } else if (factors >= 22 && factors <= 27 && (runs == 0 || runs == 1024)) {
            row = GenII5_C_22_27_1024.Row(index);
        } else if (factors >= 28 && factors <= 29 && (runs == 0 || runs == 1024)) {
            row = GenII4_N_28_29_1024.Row(index);
        }
    }
    return row != 0 ? row : GenII4(index, factors, runs);
}

Word GenII4(int index, int factors, int runs) {
    Word row = 0;
    if (index <= factors) {
        if (factors >= 6 && factors <= 7 && runs == 32) {
            row = GenII4_A_6_7_32.Row(index);
        } else if (factors >= 9 && factors <= 11 && runs == 64) {
            row = GenII4_C_9_11_64.Row(index);
        } else if (factors >= 9 && factors <= 13 && runs == 128) {
            row = GenII4_A_9_13_128.Row(index);
        } else if (factors >= 14 && factors <= 29 && runs == 128) {
            row = GenII4_N_14_29_128.Row(index);
        } else if (factors >= 15 && factors <= 17 && runs == 256) {
            row = GenII4_A_15_17_256.Row(index);
        } else if (factors >= 18 && factors <= 29 && runs == 256) {
            row = GenII4_N_18_29_256.Row(index);
        } else if (factors >= 19 && factors <= 21 && runs == 512) {
            row = GenII4_C_19_21_512.Row(index);
        }
    }
    return row != 0 ? row : GenII3(index, factors, runs);
}

Word GenII3(int index, int factors, int runs) {
    if (index > factors) {
        return 0;
    }
    if (factors == 5 && runs == 16) {
        return GenII3_N_5_16.Row(index);
    }
    if (factors >= 6 && factors <= 12 && runs == 16) {
        return GenII3_N_6_12_16.Row(index);
    }
    if (factors >= 8 && factors <= 9 && runs == 32) {
        return GenII3_N_8_9_32.Row(index);
    }
    if (factors >= 10 && factors <= 28 && runs == 32) {
        return GenII3_N_10_28_32.Row(index);
    }
    if (factors >= 12 && factors <= 29 && runs == 64) {
        return GenII3_N_12_29_64.Row(index);
    }
    return 0;
}

Word GenIII5(int index, int factors, int runs) {
    Word row = 0;
    if (index <= factors) {
        if (factors == 7 && (runs == 0 || runs == 64)) {
            row = GenIII5_C_7_64.Row(index);
        } else if (factors == 8 && (runs == 0 || runs == 128)) {
            row = GenIII5_C_8_128.Row(index);
        } else if (factors >= 10 && factors <= 14 && (runs == 0 || runs == 256)) {
            row = GenIII5_C_10_14_256.Row(index);
        } else if (factors == 18 && (runs == 0 || runs == 512)) {
            row = GenIII5_C_18_512.Row(index);
        } else if (factors >= 11 && factors <= 25 &&
                   (runs == 1024 || (runs == 0 && factors != 18))) {
            row = GenIII5_C_11_25_1024.Row(index);
        }
    }
    return row != 0 ? row : GenIII4(index, factors, runs);
}

Word GenIII4(int index, int factors, int runs) {
    Word row = 0;
    if (index <= factors) {
        if (factors >= 9 && factors <= 11 && runs == 128) {
            row = GenIII4_N_9_11_128.Row(index);
        } else if (factors == 15 && runs == 256) {
            row = GenIII4_A_15_256.Row(index);
        } else if (factors >= 16 && factors <= 17 && runs == 256) {
            row = GenIII4_N_16_17_256.Row(index);
        } else if (factors >= 18 && factors <= 25 && runs == 256) {
            row = GenIII4_N_18_25_256.Row(index);
        } else if (factors >= 19 && factors <= 20 && runs == 512) {
            row = GenIII4_C_19_20_512.Row(index);
        } else if (factors == 21 && runs == 512) {
            row = GenIII4_N_21_512.Row(index);
        }
    }
    return row != 0 ? row : GenIII3(index, factors, runs);
}

Word GenIII3(int index, int factors, int runs) {
    if (index > factors || (factors == 11 && runs != 32 && runs != 64)) {
        return 0;
    }
    if (factors == 6 && runs == 32) {
        return GenIII3_N_6_32.Row(index);
    }
    if (factors >= 7 && factors <= 10 && runs == 32) {
        return GenIII3_N_7_10_32.Row(index);
    }
    if (factors >= 8 && factors <= 10 && runs == 64) {
        return GenIII3_N_8_10_64.Row(index);
    }
    if (factors >= 11 && factors <= 24 && runs == 32) {
        return GenIII3_N_11_24_32.Row(index);
    }
    if (factors == 11 && runs == 64) {
        return GenIII3_N_11_64.Row(index);
    }
    if (factors >= 12 && factors <= 25 && runs == 64) {
        return GenIII3_N_12_25_64.Row(index);
    }
    if (factors >= 12 && factors <= 25 && runs == 128) {
        return GenIII3_N_12_25_128.Row(index);
    }
    return 0;
}

Word GenFullFactorial(int index, int runs, int blockGens) {
    if (blockGens == 0) {
        return index == -4 ? 9 : index == 0 ? 5 : 0;
    }
    if (blockGens < 0 || blockGens > 3) {
        return 0;
    }
    if (index > 0) {
        return Single(index);
    }
    // Rows 0, -4, -1, -2, -3.
    const auto row = [index](Word resolution, Word classCode, const std::string& words) -> Word {
        const std::vector<Word> blocks = WordsOf(words);
        if (index == 0) {
            return resolution;
        }
        if (index == -4) {
            return classCode;
        }
        return -index <= static_cast<int>(blocks.size())
                   ? blocks[static_cast<std::size_t>(-index) - 1]
                   : Word{0};
    };
    if (blockGens == 1) {
        return runs == 8 ? row(4, 10, "abc") : runs >= 16 ? row(5, 9, "abcd") : Word{0};
    }
    if (blockGens == 2) {
        return runs == 16   ? row(3, 11, "abc acd")
               : runs == 32 ? row(5, 10, "abc ade")
               : runs >= 64 ? row(5, 9, "abcd abef")
                            : Word{0};
    }
    return runs == 32    ? row(3, 11, "abc cde acd")
           : runs == 64  ? row(5, 10, "bdf abef abcd")
           : runs >= 128 ? row(5, 9, "abcd abef aceg")
                         : Word{0};
}

}  // namespace oracles
