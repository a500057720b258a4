// Loads any bytes as a project file. What came of it is saved and loaded again, which must change nothing.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_writer.h"
#include "project/field_rules.h"
#include "project/project_edit.h"
#include "project/project_store.h"
#include "project/qc_statements.h"
#include "support/silent_report.h"

using namespace tarnwick;
using namespace tarnwick::project;

namespace {

ProfileStore Saved(const ModelProject& project) {
  ProfileStore store;
  SaveProjectToStore(project, store);
  return store;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ProfileStore store;
  ProfileLoadNotes found;
  store.LoadText({reinterpret_cast<const char*>(data), size}, &found);
  ModelOptions options;
  ModelProject project(options);
  std::vector<std::string> notes;
  LoadProjectFromStore(store, project, &notes);

  const ProfileStore first = Saved(project);
  ModelOptions optionsAgain;
  ModelProject again(optionsAgain);
  LoadProjectFromStore(first, again);
  const ProfileStore second = Saved(again);
  if (first.Entries() != second.Entries()) std::abort();

  std::string script;
  {
    tests::SilentReport report;
    core::TextWriter writer(script);
    WriteQcStatements(project, writer, report);
  }
  if (script.empty()) std::abort();
  // Whatever a load has brought, the checks let a save keep.
  if (CheckProjectForFile(project)) std::abort();
  for (const auto& entry : store.Entries()) {
    const std::string_view key = std::string_view(entry.first).substr(entry.first.find('/') + 1);
    if (!RemoveProjectEntry(project, key.substr(0, key.find('/')))) break;
  }
  return 0;
}
