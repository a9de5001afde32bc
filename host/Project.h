#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/DesignMaker.h"
#include "host/Study.h"
#include "host/Worksheet.h"

/// A design with its run order, as a user keeps it. The file is a ConfigurationStore with
///   "Project"        the version of this layout
///   "Study"          the study as JSON text and the file it came from
///   "DesignBuilder", "DesignOptions", "Design"   what builder, options and design save themselves
///   "Worksheet"      the design matrix, how it is read, run order and seed
struct Project {
    Study study;
    BuilderHandle builder;
    DesignOptions options;
    NCDataMatrix<float> matrix;
    DesignForm form;
    bool isFoldedOver = false;  // the mirror image of the runs stands behind them
    std::uint32_t seed = 0;
    std::vector<int> runOrder;  // one number from 1 a row of the matrix

    /// The runs of the matrix with their run order.
    /// @throws Exception as DecodeRuns
    [[nodiscard]] std::vector<WorksheetRun> Runs() const;
};

/// Saves the project in one step. A file that was there stays as it was when saving fails.
/// @throws Exception naming the file and the reason
void SaveProject(const Project& project, const NCDesign& design, const std::string& path);

/// The D-optimal design of a project with all its results, but without a matrix. It borrows the
/// factors of the project.
/// @param path the project's file
/// @return null for a project of another design
/// @throws Exception naming the file and what is wrong in it
[[nodiscard]] std::unique_ptr<D_Optimal> LoadOptimalDesign(const Project& project,
                                                           const std::string& path);

/// @throws Exception naming the file and what is wrong in it
[[nodiscard]] Project LoadProject(const std::string& path);
