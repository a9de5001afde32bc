#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/Cli.h"
#include "tests/host/HostTesting.h"
#include "tests/support/TemporaryFolder.h"

/// What the program answered.
struct Answer {
    int code = 0;
    std::string out;
    std::string err;
};

inline Answer Ask(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = RunCommandLine(arguments, out, err);
    return {code, out.str(), err.str()};
}

inline std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// A folder with a study of two quantitative factors, Temp (150 to 180) and Flow (1 to 100, in
/// decades), and the catalyst Cat of the levels A, B and C, which asks for a D-optimal design.
class ReactorStudy : public testing::Test {
  protected:
    ReactorStudy() { WriteStudy(R"("design":"DOpt")"); }

    void WriteStudy(const std::string& more) const {
        HostTesting::WriteFile(study_,
                               R"({"factors":[
            {"name":"Temp","type":"Quantitative","low":150,"high":180},
            {"name":"Flow","type":"Quantitative","low":1,"high":100,"transform":"log10"},
            {"name":"Cat","type":"Qualitative","levels":["A","B","C"]}],)" +
                                   more + "}");
    }

    /// A command on the study.
    [[nodiscard]] Answer AskStudy(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin() + 1, study_);
        return Ask(arguments);
    }

    /// A quick build: one search of one run count, then the arguments.
    [[nodiscard]] Answer Build(const std::vector<std::string>& arguments) const {
        std::vector<std::string> all{
            "build", "--repetitions", "1", "--run-range", "0", "--seed", "1"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return AskStudy(all);
    }

    TemporaryFolder folder_;
    std::string study_ = folder_.File("study.json");
    std::string csv_ = folder_.File("runs.csv");
    std::string project_ = folder_.File("project.txt");
};
