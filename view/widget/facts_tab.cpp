#include "view/widget/facts_tab.h"

#include <QLabel>
#include <QLocale>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "core/byte_size.h"
#include "platform/text.h"
#include "view/widget/model_view.h"

namespace tarnwick::view {

using platform::ToQt;

FactsTab::FactsTab(ModelView& view) : ViewerTab(view), m_counts(new QLabel), m_troubles(new QTreeWidget) {
  m_counts->setObjectName("modelFacts");
  m_counts->setTextFormat(Qt::PlainText);
  m_counts->setWordWrap(true);
  m_counts->setAlignment(Qt::AlignLeft | Qt::AlignTop);  // also where nothing stands below
  m_counts->setTextInteractionFlags(Qt::TextSelectableByMouse);
  m_troubles->setObjectName("missingList");
  m_troubles->setAccessibleName("What is missing");
  m_troubles->setHeaderHidden(true);
  m_troubles->setToolTip("What could not be found or read; below each the paths that were tried");
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(m_counts);
  rows->addWidget(m_troubles, 1);
}

int FactsTab::Troubles() const {
  return m_troubles->topLevelItemCount();
}

void FactsTab::TakeModel() {
  m_troubles->clear();
  const ShownModel& model = View().Model();
  const auto add = [this](const QString& text) {
    auto* row = new QTreeWidgetItem(m_troubles, {text});
    row->setToolTip(0, text);
    return row;
  };
  if (model.Materials) {
    for (const MissingFile& missing : model.Materials->Missing) {
      QTreeWidgetItem* row = add(ToQt(missing.Name + ": " + missing.Reason));
      if (!missing.NeededBy.empty()) new QTreeWidgetItem(row, {"needed by " + ToQt(missing.NeededBy)});
      for (const std::string& path : missing.Tried) new QTreeWidgetItem(row, {ToQt(path)});
    }
  }
  for (const core::Trouble& trouble : model.Troubles) {
    QTreeWidgetItem* row = add(ToQt(trouble.Text));
    if (!trouble.Details.empty()) new QTreeWidgetItem(row, {ToQt(trouble.Details)});
  }
  m_troubles->setVisible(m_troubles->topLevelItemCount() > 0);
}

void FactsTab::TakeState() {
  const ShownModel& model = View().Model();
  if (!model.Model) return m_counts->clear();
  const Scene& scene = *model.Model;
  const ViewState& state = View().State();
  const int32_t lod = ShownLod(scene, state, static_cast<float>(std::max(View().height(), 1)));
  const SceneCounts counts = CountsOf(scene, state.BodyGroups, lod);
  const QLocale numbers;
  const auto counted = [&](int64_t count, const char* thing) {
    return QString("%1 %2%3").arg(numbers.toString(count), thing, count == 1 ? "" : "s");
  };
  const uint64_t memory = static_cast<uint64_t>(std::max<int64_t>(scene.MeshBytes(), 0)) + model.TextureBytes;
  const QStringList lines = {
      counted(counts.Triangles, "triangle") + ", " + counted(counts.Vertices, "vertex").replace("vertexs", "vertices"),
      counted(counts.Draws, "draw") + ", " + counted(static_cast<int64_t>(scene.Bones.size()), "bone") + ", " +
          counted(static_cast<int64_t>(scene.Materials.size()), "material"),
      counted(static_cast<int64_t>(scene.Sequences.size()), "sequence") +
          (scene.Included.empty()
               ? QString()
               : ", with those of " + counted(static_cast<int64_t>(scene.Included.size()), "included model")),
      QString("Level of detail %1 of %2").arg(lod).arg(scene.Lods.size()),
      ToQt(core::FormatByteSize(static_cast<uint64_t>(std::max<int64_t>(scene.FileBytes, 0)))) + " of files, " +
          ToQt(core::FormatByteSize(memory)) + " in memory"};
  m_counts->setText(lines.join("\n"));
}

}  // namespace tarnwick::view
