#include "project/qc_statements.h"

#include <string>

#include "project/qc_names.h"

namespace tarnwick::project {

namespace {

using core::Report;
using core::TextWriter;

void WriteMaterialDirectory(const ModelProject& project, TextWriter& qc, Report& report) {
  if (!project.materialDirectory.empty()) {
    return qc.Format("$cdmaterials \"models/%s\"\n\n", project.materialDirectory);
  }
  report.WarningBox(core::TroubleKind::Missing, "No Materials Directory Specified\r\n,Using material/models directory",
                    "Materials Directory Warning");
  qc.Text("$cdmaterials \"models\"\n\n");
}

void WriteLods(const ModelProject& project, const std::string& referenceName, TextWriter& qc) {
  for (const LodEntry& lod : project.Lods) {
    qc.Format("$lod %s {\n", lod.distance);
    qc.Format("   replacemodel \"%s\" \"%s\"\n", referenceName, lod.smdFile);
    qc.Text("}\n\n");
  }
}

void WriteSkins(const SkinList& skins, TextWriter& qc) {
  if (skins.Count() == 0) return;
  qc.Text("$texturegroup skin {\n ");
  for (const SkinEntry& entry : skins) qc.Format("{ \"%s\" }\n", entry.skin);
  qc.Text("}\n\n");
}

void WriteSequence(const SequenceEntry& sequence, TextWriter& qc) {
  qc.Format("$sequence \"%s\" \"%s\" fps %2.3f ", sequence.name, sequence.smdFile, sequence.fps);
  if (!sequence.activity.empty()) qc.Format("%s %d ", sequence.activity, sequence.activityStrength);
  if (sequence.rotateDirection != 0) qc.Format("rotate %2.3f ", sequence.rotateAmount);
  if (sequence.loop != 0) qc.Text("loop ");
  if (sequence.Commands().empty() && sequence.Events().empty()) return qc.Text("\n\n");
  qc.Text("{\n");
  for (const std::string& command : sequence.Commands()) qc.Format("     %s\n", command);
  for (const EventEntry& event : sequence.Events()) {
    if (event.option.empty()) {
      qc.Format("     { event \"%s\" \"%s\" }\n", event.name, event.frame);
    } else {
      qc.Format("     { event \"%s\" \"%s\" \"%s\" }\n", event.name, event.frame, event.option);
    }
  }
  qc.Text("}\n\n");
}

/// False, after an error box, if a sequence is needed and there is none.
bool WriteSequences(const ModelProject& project, TextWriter& qc, Report& report) {
  if (project.useReferenceAsSequence || project.propType == PropStatic) {
    if (!project.useReferenceAsSequence)
      report.WarningBox(core::TroubleKind::Lost, "Animation on prop_static IGNORED", "Warning");
    qc.Format("$sequence \"Idle\" \"%s\" fps 30 ACT_IDLE 1\n\n", project.referenceSmd);
    return true;
  }
  if (project.Sequences.Count() == 0) {
    report.ErrorBox(core::TroubleKind::Refused, "No Sequences Specified", "Error");
    return false;
  }
  for (const SequenceEntry& sequence : project.Sequences) WriteSequence(sequence, qc);
  return true;
}

void WriteGibs(const ModelProject& project, TextWriter& qc, Report& report) {
  if (project.Gibs.Count() == 0) return;
  if (project.propType == PropStatic)
    return report.WarningBox(core::TroubleKind::Lost, "Gibs specified on prop_static IGNORED", "Warning");
  qc.Text("$collisiontext {\n");
  for (const GibEntry& gib : project.Gibs) {
    qc.Format("break { \"model\" \"%s\" ", gib.model);
    if (!gib.health.empty()) qc.Format("\"health\" \"%s\" ", gib.health);
    if (!gib.fadeTime.empty()) qc.Format("\"fadetime\" \"%s\" ", gib.fadeTime);
    qc.Text("}\n");
  }
  qc.Text("}\n\n");
}

void WriteCollision(const ModelProject& project, TextWriter& qc) {
  const std::string& name = project.useReferenceAsCollision ? project.referenceSmd : project.collisionFile;
  if (IsCollisionScript(name)) {
    qc.Format("$pushd \"%s\"\n", SlashedPath(name));
    qc.Format("$include \"%s\"\n", name);
    qc.Text("$popd\n");
  } else {
    qc.Format("$collisionmodel \"%s\" {\n", name);
    qc.Text("\t$concave\n");
    qc.Format("\t$mass %2.3f\n", project.options.mass);
    qc.Text("}\n");
  }
}

}  // namespace

bool WriteQcStatements(const ModelProject& project, TextWriter& qc, Report& report) {
  const std::string referenceName = ReferenceName(project.referenceSmd);
  qc.Format("$modelname \"%s\"\n", project.modelFile);
  qc.Format("$scale %2.2f\n", project.options.scale);
  if (project.propType == PropStatic) qc.Text("$staticprop\n");
  WriteMaterialDirectory(project, qc, report);
  qc.Format("$body \"Body\" \"%s\"\n\n", referenceName);
  WriteLods(project, referenceName, qc);
  for (const QcCommandEntry& entry : project.QcCommands) qc.Format("%s\n\n", entry.command);
  WriteSkins(project.Skins, qc);
  if (!WriteSequences(project, qc, report)) return false;
  for (const AttachmentEntry& entry : project.Attachments) {
    qc.Format("$attachment \"%s\" \"%s\" %s rotate %s\n\n", entry.name, entry.bone, entry.translation, entry.rotation);
  }
  WriteGibs(project, qc, report);
  qc.Format("$surfaceprop \"%s\"\n\n", project.options.surfaceProp);
  if (project.propType == PropPhysics) {
    qc.Format("$keyvalues { \"prop_data\" {\"base\" \"%s\"} }\n\n", project.options.propPhysicsType);
  }
  WriteCollision(project, qc);
  return true;
}

}  // namespace tarnwick::project
