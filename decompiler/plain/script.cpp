#include "decompiler/plain/script.h"

#include "decompiler/plain/sequences.h"
#include "decompiler/plain/statements.h"

namespace tarnwick::decompiler::plain {

void WriteQcStatements(JobContext& job) {
  WritePoseParameters(job);
  WriteMaterialDirectories(job);
  WriteSkinFamilies(job);
  WriteHitboxes(job);
  WriteAttachments(job);
  WriteIncludeModels(job);
  WriteSurfaceProp(job);
  WriteKeyValues(job);
  WritePositions(job);
  WriteSequences(job);
  WriteIkChains(job);
}

}  // namespace tarnwick::decompiler::plain
