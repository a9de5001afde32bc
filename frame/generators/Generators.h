#pragma once

#include <array>
#include <string>
#include <vector>

#include "foundation/mat/NCDataMatrix.h"
#include "foundation/stream/Export.h"
#include "foundation/utl/JsonValue.h"

class ConfigurationSection;
class DesignOptions;
class Factors;
class IniFileSection;

/// Which base factors a column of a two-level fraction is the product of, as a bit mask, with a
/// sign.
using GeneratorWord = unsigned short;

/// The generator words of one two-level design: one for each design column, then those of up to
/// three block generators. Beside the object stand the tables of words for every combination of
/// resolution, factors, runs and block generators that the engine offers, behind the selectors
/// GetGen3, GetGen4, GetGen5 and GetGenFullFactorial.
///
/// Row numbers of the selectors: 1 to k give the word of a design factor; 0 gives the resolution as
/// a plain number; -1, -2, -3 give the words of the block generators; -4 gives the table's class
/// code as a plain number (9, 10 or 11). 0 is the answer where nothing exists.
class QORVA_EXPORT Generators {
  public:
    static constexpr GeneratorWord A = 0x8000;
    static constexpr GeneratorWord B = 0x4000;
    static constexpr GeneratorWord C = 0x2000;
    static constexpr GeneratorWord D = 0x1000;
    static constexpr GeneratorWord E = 0x0800;
    static constexpr GeneratorWord F = 0x0400;
    static constexpr GeneratorWord G = 0x0200;
    static constexpr GeneratorWord H = 0x0100;
    static constexpr GeneratorWord I = 0x0080;
    static constexpr GeneratorWord J = 0x0040;
    static constexpr GeneratorWord K = 0x0020;
    /// No table and no text sets it; it has no letter.
    static constexpr GeneratorWord BLOCK = 0x0002;
    /// The column is the product with a minus sign.
    static constexpr GeneratorWord NEGATIVE = 0x0001;
    static constexpr GeneratorWord NONE = 0x0000;
    static constexpr char cMinChar = 'a';
    /// There are eleven letters, a to k, hence at most 2048 runs.
    static constexpr unsigned int cMaxBaseFactors = 11;
    /// Words that an object holds, counted from 1.
    static constexpr unsigned int cMaxWords = 55;

    /// No words; the letters up to 'a' + log2(runs) - 1 may serve as base factors, 'a' at least.
    explicit Generators(int runs);

    [[nodiscard]] static GeneratorWord GetGeneratorNEGATIVE() { return NEGATIVE; }

    /// Stores the word of design column `index`, counted from 1; nothing outside 1 to 55.
    void SetGenerator(int index, GeneratorWord word);
    /// The word of the block generator named "$B1", "$B2" or "$B3", the product of those in a name
    /// such as "$B1$B3", or for any other name the word of design column `index`; 0 outside 1
    /// to 48.
    [[nodiscard]] GeneratorWord GetGenerator(const Factors& factors,
                                             int index,
                                             const char* name) const;

    /// Parses letters a to k in either case; '-' anywhere makes the word negative; everything else
    /// is ignored.
    [[nodiscard]] GeneratorWord GetGeneratorWord(const char* text) const;
    /// Letters in lower case and ascending order, "-" in front of a negative word; empty for 0.
    [[nodiscard]] static std::string GetGeneratorString(GeneratorWord word);
    /// The text names each base factor at most once, none above the highest letter, with a '-' in
    /// front at most. Lower-cases the caller's text in place.
    [[nodiscard]] bool IsLegal(char* text) const;
    /// Checks the words against a design: every base factor has a column of its own, every word is
    /// legal, no two are alike, and there are as many as factors and block generators, without
    /// holes.
    /// @param hasStarBlock one of the blocks holds star points and has no generator
    /// @param message replaced by all complaints; empty when the answer is true
    [[nodiscard]] bool IsValid(const Factors& factors,
                               const DesignOptions& options,
                               bool hasStarBlock,
                               std::string& message) const;

    /// Makes the fraction: every column becomes the product of base columns that its word tells,
    /// and the column behind the factors the block letters. The base factors' full factorial stands
    /// in the leading columns, level factors as letter codes 65 and 66, which become -1 and +1.
    /// @throws NCInternalError when a word names a base column that the matrix does not have; the
    ///         matrix stays.
    void AdjustDesignMatrix(int factorCount, NCDataMatrix<float>& matrix) const;
    /// Writes the block letters of a two-level full factorial into its last column, which stays as
    /// it is unless `blocks` is above 1 and the factorial has the base columns.
    static void AdjustDMFFBlock(NCDataMatrix<float>& matrix, int blocks);

    /// Column numbers of the word's letters, counted from 1, ascending; the sign is ignored.
    [[nodiscard]] static std::vector<int> GetRows(GeneratorWord word);
    /// "$B1", "$B2", "$B3", "$B1$B2", "$B1$B3", "$B2$B3", "$B1$B2$B3" for 1 to 7; empty otherwise.
    [[nodiscard]] static const char* GetBlockGen(int i);
    /// Base factors of the resolution V fraction of 5 to 32 factors; 0 otherwise.
    [[nodiscard]] static int GetBaseFactors5(int factors);

    /// The highest letter that may be a base factor.
    [[nodiscard]] char GetMaxChar() const { return maxChar_; }
    void SetMaxChar(char maxChar) { maxChar_ = maxChar; }

    /// Writes the child section "Generators".
    void Save(ConfigurationSection* section) const;
    /// Reads the child section "Generators". With a null `section`, reads the section of that name
    /// of the older text store instead, its values in the order of `keyNames`. False when there is
    /// none.
    bool Load(const ConfigurationSection* section,
              const IniFileSection* ini,
              const std::vector<std::string>& keyNames);
    /// Reads the words from the older text store: the value of the first key is the word of
    /// column 1.
    void ReadFromFile(const std::vector<std::string>& keyNames, const IniFileSection* ini);
    static void Remove(ConfigurationSection* section);
    /// An array of the words' texts, from column 1 to the last word.
    [[nodiscard]] json_value ToJson() const;
    /// Reads that array. The highest letter becomes the highest that is used.
    void FromJson(const json_value& value);

    /// The tables by resolution: the row `index` for a number of factors, runs and block
    /// generators. A request with block generators falls back to the next lower resolution where
    /// there is no table, and row 0 tells what was found. In GetGen5, 0 runs mean the fraction's
    /// natural count.
    [[nodiscard]] static GeneratorWord GetGen3(int index,
                                               unsigned factors,
                                               unsigned runs,
                                               unsigned blockGens);
    [[nodiscard]] static GeneratorWord GetGen4(int index,
                                               unsigned factors,
                                               int runs,
                                               int blockGens);
    [[nodiscard]] static GeneratorWord GetGen5(int index,
                                               unsigned factors,
                                               int runs,
                                               int blockGens);
    /// Block generators of a full factorial.
    [[nodiscard]] static GeneratorWord GetGenFullFactorial(int index, int runs, int blockGens);

    friend bool operator==(const Generators&, const Generators&) = default;

  protected:
    [[nodiscard]] int WBitCount(unsigned short value) const;
    [[nodiscard]] int DWBitCount(unsigned int value) const;
    /// Words of a single letter among the columns 1 to 51.
    [[nodiscard]] int PrimaryFactorCount() const;

    // Tables with two and with three block generators; the last argument is not looked at.
    [[nodiscard]] static GeneratorWord GetGenII3(int index,
                                                 unsigned factors,
                                                 int runs,
                                                 int blockGens);
    [[nodiscard]] static GeneratorWord GetGenII4(int index,
                                                 unsigned factors,
                                                 int runs,
                                                 int blockGens);
    [[nodiscard]] static GeneratorWord GetGenII5(int index,
                                                 unsigned factors,
                                                 int runs,
                                                 int blockGens);
    [[nodiscard]] static GeneratorWord GetGenIII3(int index,
                                                  unsigned factors,
                                                  int runs,
                                                  int blockGens);
    [[nodiscard]] static GeneratorWord GetGenIII4(int index,
                                                  unsigned factors,
                                                  int runs,
                                                  int blockGens);
    [[nodiscard]] static GeneratorWord GetGenIII5(int index,
                                                  unsigned factors,
                                                  int runs,
                                                  int blockGens);
    [[nodiscard]] static GeneratorWord GetGenIFullFactorial(int index, int runs);
    [[nodiscard]] static GeneratorWord GetGenIIFullFactorial(int index, int runs);
    [[nodiscard]] static GeneratorWord GetGenIIIFullFactorial(int index, int runs);
    /// The word of the index-th letter, 1 to 11; 0 otherwise.
    [[nodiscard]] static GeneratorWord GetGenSingle(int index);

  private:
    /// Words before the first hole, among the columns 1 to 51.
    [[nodiscard]] int ListLength() const;

    // Index 0 is no column and stays 0; the first 0 behind it ends the list.
    std::array<GeneratorWord, cMaxWords + 1> words_{};
    char maxChar_ = cMinChar;
};
