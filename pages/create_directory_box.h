#pragma once

#include <functional>

#include "images/conversion.h"
#include "platform/job_report.h"

namespace tarnwick::pages {

/// How the conversions of one job ask whether to create the directory that their file needs: with the box of the
/// failure, which has a second button for that. What the user has once refused is not asked again in the same job.
/// `report` outlives the result.
std::function<bool(const images::MissingDirectory&)> OfferToCreateDirectory(platform::JobReport& report);

}  // namespace tarnwick::pages
