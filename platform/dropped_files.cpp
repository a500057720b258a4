#include "platform/dropped_files.h"

#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include "platform/native_path.h"
#include "platform/text.h"

namespace tarnwick::platform {

namespace {

constexpr const char* NamesFormat = "application/x-tarnwick-names";

}  // namespace

bool DroppedFiles::IsOver(const QWidget& control) const {
  return control.isVisible() && control.rect().contains(control.mapFromGlobal(Point));
}

void PutNames(QMimeData& data, const std::vector<std::string>& names) {
  std::string joined;  // a name may hold anything but the byte 0
  for (const std::string& name : names) joined += name + '\0';
  data.setData(NamesFormat, QByteArray::fromStdString(joined));
}

DroppedFiles FilesOf(const QMimeData& data) {
  DroppedFiles files;
  const std::string names = data.data(NamesFormat).toStdString();
  for (size_t begin = 0, end = 0; (end = names.find('\0', begin)) != std::string::npos; begin = end + 1) {
    files.Paths.push_back(names.substr(begin, end - begin));
  }
  if (!files.Paths.empty()) return files;
  for (const QUrl& url : data.urls()) {
    if (url.isLocalFile()) files.Paths.push_back(PathFromQt(url.toLocalFile()));
  }
  return files;
}

}  // namespace tarnwick::platform
