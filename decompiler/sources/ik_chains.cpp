#include "decompiler/sources/ik_chains.h"

#include <algorithm>

#include "decompiler/sources/script_values.h"
#include "model/script_records.h"

namespace tarnwick::decompiler::sources {

namespace {

/// Links that a compile makes at most: the bone of the statement and those above it.
constexpr int64_t LinksOfALimb = 3;

std::optional<core::RecordArray<StudioIkLink>> LinksOf(JobContext& job, const core::Record<StudioIkChain>& chain) {
  if (chain->LinkCount <= 0) return std::nullopt;
  return job.Model.View().Array<StudioIkLink>(chain.Offset() + chain->LinkOffset, chain->LinkCount);
}

/// Whether a chain holds what no statement says.
bool HasMore(const StudioIkChain& chain, const core::RecordArray<StudioIkLink>& links) {
  if (chain.Type != 0) return true;
  for (int64_t i = 0; i < links.Count(); ++i) {
    if ((i > 0 && !IsZero(links[i]->KneeDirection)) || !IsZero(links[i]->Unread10)) return true;
  }
  return false;
}

/// Whether a compile makes these links of the bone that they end with.
bool IsLimb(JobContext& job, const core::RecordArray<StudioIkLink>& links) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return true;  // which is told as damage
  if (links.Count() > LinksOfALimb) return false;
  int64_t bone = links[links.Count() - 1]->Bone;
  for (int64_t i = links.Count() - 1; i >= 0; --i) {
    if (links[i]->Bone != bone || !skeleton->Bones.Holds(bone)) return false;
    bone = skeleton->Bones[bone]->Parent;
  }
  return links.Count() == LinksOfALimb || bone < 0;
}

void WriteChain(JobContext& job, const core::Record<StudioIkChain>& chain) {
  const auto name = job.NameOf("IK chain name", chain, chain->NameOffset);
  const auto links = job.Table<StudioIkLink>("IK link table", chain.Offset() + chain->LinkOffset, chain->LinkCount);
  if (!links || links->Count() == 0) return job.Lose("IK chains without links");
  if (!job.Spend(links->Count() * RecordCost)) return;
  if (!IsLimb(job, *links)) job.Lose("links of IK chains that no limb has");
  if (HasMore(*chain, *links)) job.Lose("values of IK chains without a statement");
  const auto last = (*links)[links->Count() - 1];
  const auto bone = BoneName(job, "IK link", last.Offset(), last->Bone);
  if (!name || !bone || !job.ScriptWithinBounds()) return;
  const Vec3 knee = (*links)[0]->KneeDirection;
  std::string line = "$ikchain " + Quoted(job, *name) + " " + Quoted(job, *bone);
  if (!IsZero(knee)) line += " knee " + Numbers(job, knee);
  job.Script().Text(line + "\n");
}

void WriteLocks(JobContext& job, int64_t chains) {
  const auto header = job.Model.Header();
  const auto locks = job.Table<StudioIkLock>("autoplay IK lock table", header->IkLockOffset, header->IkLockCount);
  if (!locks) return;
  for (const auto lock : *locks) {
    if (!job.ScriptWithinBounds()) return;
    const auto name = ChainName(job, lock->Chain);
    if (lock->Chain < 0 || lock->Chain >= chains) {
      job.Damaged(job.Model.Mdl.Path(), "autoplay IK lock", lock.Offset(),
                  "names IK chain " + std::to_string(lock->Chain) + " of " + std::to_string(chains));
    } else if (!name) {
      job.Lose("IK locks whose chain is not there");
    } else {
      job.Script().Text("$ikautoplaylock " + Quoted(job, *name) + " " + Number(job, lock->PositionWeight) + " " +
                        Number(job, lock->RotationWeight) + "\n");
      if (lock->Flags != 0) job.Lose("flags of IK locks");
    }
  }
}

}  // namespace

void WriteIkStatements(JobContext& job) {
  const auto header = job.Model.Header();
  const auto chains = job.Table<StudioIkChain>("IK chain table", header->IkChainOffset, header->IkChainCount);
  if (!chains) return;
  for (const auto chain : *chains) WriteChain(job, chain);
  WriteLocks(job, chains->Count());
}

std::optional<std::string_view> ChainName(JobContext& job, int64_t number) {
  const auto header = job.Model.Header();
  const auto chains = job.Model.View().Array<StudioIkChain>(header->IkChainOffset, header->IkChainCount);
  if (!chains || !chains->Holds(number)) return std::nullopt;
  const auto chain = (*chains)[number];
  const auto links = LinksOf(job, chain);
  const Skeleton* skeleton = GetSkeleton(job);
  if (!links || skeleton == nullptr || !skeleton->Bones.Holds((*links)[links->Count() - 1]->Bone)) return std::nullopt;
  return job.Model.NameOf(chain, chain->NameOffset);
}

}  // namespace tarnwick::decompiler::sources
