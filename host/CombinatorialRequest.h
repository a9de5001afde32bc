#pragma once

#include "host/DesignMaker.h"

/// Whether the design is a reduced combinatorial one.
[[nodiscard]] bool IsCombinatorial(const DesignBuilder& builder);

/// Refuses levels of continuous factors for any other design.
/// @throws Exception naming the option
void RequireLevelsTaken(const DesignRequest& request, const DesignBuilder& builder);

/// Puts the request into the options of a reduced combinatorial design, before its runs are set: an
/// explicit model brings its own default of the runs.
/// @throws Exception naming the option and what is allowed
void ApplyCombinatorialRequest(const DesignRequest& request,
                               const Study& study,
                               const DesignBuilder& builder,
                               DesignOptions& options);

/// Refuses replicates, which these designs do not have.
void RequireNoReplicates(const Study& study, const DesignOptions& options);
