#include "pages/create_directory_box.h"

#include <memory>
#include <set>

namespace tarnwick::pages {

std::function<bool(const images::MissingDirectory&)> OfferToCreateDirectory(platform::JobReport& report) {
  return [&report, refused = std::make_shared<std::set<std::string>>()](const images::MissingDirectory& missing) {
    if (refused->contains(missing.Directory)) return false;
    platform::MessageBoxRequest box{missing.Text, missing.Caption, platform::BoxIcon::Stop,
                                    platform::BoxButtons::OkCancel};
    box.Details = "The directory " + missing.Directory + " does not exist.";
    box.OkLabel = "Create Directory";
    if (report.Ask(box) == platform::BoxAnswer::Ok) return true;
    refused->insert(missing.Directory);
    return false;
  };
}

}  // namespace tarnwick::pages
