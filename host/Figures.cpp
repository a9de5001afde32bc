#include "host/Figures.h"

#include <fmt/format.h>

#include <cmath>

std::string Figures::Text(double figure) {
    constexpr double cNone = -99.0;
    return std::isfinite(figure) && figure != cNone ? fmt::format("{:.5g}", figure) : "-";
}

std::string Figures::Lines(const DesignStatistics::Results& results) {
    std::string text;
    const auto print = [&text](const char* label, double figure) {
        text += fmt::format("{:<32}{}\n", label, Text(figure));
    };
    print("Condition number", results.CondNo);
    print("G-efficiency (percent)", results.GEff);
    print("Log10 determinant", results.LogDet);
    print("Normalised log10 determinant", results.NormLogDet);
    print("I-value", results.IOptimality);
    return text;
}
