#include "jobs/image_questions.h"

#include "images/tga_path.h"

namespace tarnwick::jobs {

namespace {

/// The host has asked and heard a no, so nobody has to be shown a box; the item has failed all the same.
bool Refuse(ItemRun& run, core::Report& log, core::TroubleKind kind, const std::string& file, const std::string& text) {
  log.Log(text + "\r\n");
  run.Tell({.Kind = kind, .File = file, .Text = text});
  return false;
}

}  // namespace

images::ConversionContext ConversionFor(ItemRun& run, core::Report& log, const images::ImageWorker& worker,
                                        bool useDamaged) {
  images::ConversionContext context{log, worker};
  context.MayCreate = [&run, &log](const images::MissingDirectory& missing) {
    const std::string details = "The directory " + missing.Directory + " does not exist.";
    // By directory, so that a no holds for all images that would go there.
    if (run.Ask({.Kind = QuestionKind::MakeDirectory,
                 .Text = missing.Text,
                 .Caption = missing.Caption,
                 .Details = details,
                 .Yes = "Create Directory",
                 .Icon = core::BoxIcon::Stop,
                 .Assumed = true,
                 .About = missing.Directory})) {
      return true;
    }
    return Refuse(run, log, core::TroubleKind::Missing, missing.Directory, details);
  };
  context.MayUseDamaged = [&run, &log, useDamaged](const images::DamagedImage& damaged) {
    if (useDamaged) return true;
    const std::string cause = std::string(images::ImageFileName(damaged.Source)) + ": " + damaged.Reason;
    if (run.Ask({.Kind = QuestionKind::UseDamaged,
                 .Text = damaged.Text,
                 .Caption = damaged.Caption,
                 .Details = cause,
                 .Yes = "Use it all the same",
                 .Icon = core::BoxIcon::Stop,
                 .Assumed = false})) {
      return true;
    }
    return Refuse(run, log, core::TroubleKind::Damaged, damaged.Source, cause);
  };
  return context;
}

}  // namespace tarnwick::jobs
