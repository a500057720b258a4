#pragma once

#include <string>

#include "jobs/host.h"
#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// Tells the end of a job that could not begin its plan for `trouble`, or that the user did not want.
JobResult NotBegun(const JobPlan& plan, const core::Trouble& trouble, Host& host);

/// The trouble of a job that the user did not want when asked.
core::Trouble NotWanted();

}  // namespace tarnwick::jobs
