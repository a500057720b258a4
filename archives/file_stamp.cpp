#include "archives/file_stamp.h"

#include "core/write_time.h"

namespace tarnwick::archives {

FileStamp StampOf(const std::filesystem::path& path) {
  std::error_code error;
  FileStamp stamp;
  stamp.Size = std::filesystem::file_size(path, error);
  if (error) return {};
  const auto written = core::WriteTime(path);
  if (!written) return {};
  stamp.Written = *written;
  stamp.Exists = true;
  return stamp;
}

}  // namespace tarnwick::archives
