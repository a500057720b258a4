#include "jobs/not_begun.h"

namespace tarnwick::jobs {

JobResult NotBegun(const JobPlan& plan, const core::Trouble& trouble, Host& host) {
  JobResult result;
  result.Troubles = plan.Troubles;
  result.Troubles.push_back(trouble);
  for (const PlannedItem& item : plan.Items) {
    ItemResult& each = result.Items.emplace_back();
    each.Input = each.Source = item.Input;
    each.Target = item.Target;
  }
  for (const core::Trouble& each : result.Troubles) host.On(Told{NoItem, each});
  host.On(Finished{result});
  return result;
}

core::Trouble NotWanted() {
  return {.Kind = core::TroubleKind::Stopped, .Text = "Nothing was done, as it was not wanted."};
}

}  // namespace tarnwick::jobs
