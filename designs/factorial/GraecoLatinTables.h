#pragma once

#include <array>
#include <string_view>

/// The orthogonal arrays behind the Graeco-Latin designs, one string a run, one digit a column:
/// levels 1, 2 and 3. Sizes and names are those of Taguchi (1987), "System of Experimental Design":
/// L9 has 3^4, L18 2 x 3^7, L27 3^13, and of L36 the thirteen columns at three levels are kept. L9
/// and L27 are saturated: their columns use up all degrees of freedom.
///
/// Invariants: every column has each of its levels equally often, and every two columns have each
/// pair of levels equally often (strength 2). All columns have three levels, except the first of
/// L18, which takes 1 and 3 only. GraecoLatinTest proves all of it, pair by pair.
namespace GraecoLatinTables {

// clang-format off
inline constexpr std::array<std::string_view, 9> cL9{
    "1111", "1222", "1333",
    "2123", "2231", "2312",
    "3132", "3213", "3321",
};

inline constexpr std::array<std::string_view, 18> cL18{
    "11111111", "11222222", "11333333",
    "12112233", "12223311", "12331122",
    "13121323", "13232131", "13313212",
    "31133221", "31211332", "31322113",
    "32123132", "32231213", "32312321",
    "33132312", "33213123", "33321231",
};

inline constexpr std::array<std::string_view, 27> cL27{
    "1111111111111", "1111222222222", "1111333333333",
    "1222111222333", "1222222333111", "1222333111222",
    "1333111333222", "1333222111333", "1333333222111",
    "2123123123123", "2123231231231", "2123312312312",
    "2231123231312", "2231231312123", "2231312123231",
    "2312123312231", "2312231123312", "2312312231123",
    "3132132132132", "3132213213213", "3132321321321",
    "3213132213321", "3213213321132", "3213321132213",
    "3321132321213", "3321213132321", "3321321213132",
};

inline constexpr std::array<std::string_view, 36> cL36{
    "1111111111111", "2222222222221", "3333333333331",
    "1111222233331", "2222333311111", "3333111122221",
    "1123123312231", "2231231123311", "3312312231121",
    "1132132321321", "2213213132131", "3321321213211",
    "1231321332122", "2312132113232", "3123213221312",
    "1232113233212", "2313221311322", "3121332122132",
    "1213331221232", "2321112332312", "3132223113122",
    "1223312113322", "2331123221132", "3112231332212",
    "1321233131223", "2132311212333", "3213122323113",
    "1322211323133", "2133322131213", "3211133212323",
    "1333232212113", "2111313323223", "3222121131333",
    "1312323122313", "2123131233123", "3231212311233",
};
// clang-format on

}  // namespace GraecoLatinTables
