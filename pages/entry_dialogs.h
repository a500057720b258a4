#pragma once

#include <memory>
#include <string>

#include "platform/dialog.h"
#include "project/project_entries.h"

namespace Ui {
class AttachDialog;
class GibDialog;
class LodDialog;
class SkinDialog;
}  // namespace Ui

namespace tarnwick::pages {

// The editors of the model options' entries. `Entry` is set before a dialog is shown and holds what was entered after
// OK; an entry that is refused keeps the dialog open.

class CAttachDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CAttachDialog(platform::Desktop& desktop, QWidget* parent);
  ~CAttachDialog() override;

  project::AttachmentEntry Entry;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  std::unique_ptr<Ui::AttachDialog> m_ui;
};

class CGibDialog : public platform::CDialog {
  Q_OBJECT

 public:
  /// A model that is chosen below `gameDirectory`'s models is named by its path below them.
  CGibDialog(platform::Desktop& desktop, QWidget* parent, std::string gameDirectory);
  ~CGibDialog() override;

  project::GibEntry Entry;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  void OnBrowse();

  std::unique_ptr<Ui::GibDialog> m_ui;
  std::string m_gameDirectory;
};

class CLodDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CLodDialog(platform::Desktop& desktop, QWidget* parent);
  ~CLodDialog() override;

  project::LodEntry Entry;

  /// A file dropped on the file field.
  void OnDropFiles(const platform::DroppedFiles& drop) override;

 protected:
  void OnInitDialog() override;
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  void OnBrowse();

  std::unique_ptr<Ui::LodDialog> m_ui;
};

class CSkinDialog : public platform::CDialog {
  Q_OBJECT

 public:
  CSkinDialog(platform::Desktop& desktop, QWidget* parent);
  ~CSkinDialog() override;

  project::SkinEntry Entry;

 protected:
  void DoDataExchange(platform::CDataExchange& exchange) override;
  void OnOK() override;

 private:
  std::unique_ptr<Ui::SkinDialog> m_ui;
};

}  // namespace tarnwick::pages
