#include "archives/file_stamp.h"

namespace tarnwick::archives {

FileStamp StampOf(const std::filesystem::path& path) {
  std::error_code error;
  FileStamp stamp;
  stamp.Size = std::filesystem::file_size(path, error);
  if (error) return {};
  stamp.Written = std::filesystem::last_write_time(path, error);
  if (error) return {};
  stamp.Exists = true;
  return stamp;
}

}  // namespace tarnwick::archives
