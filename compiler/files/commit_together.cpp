#include "compiler/files/commit_together.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "core/paths.h"
#include "core/whole_path.h"

namespace tarnwick::compiler {

namespace fs = std::filesystem;

namespace {

/// What stands under a file's name while that may have to come back.
class Before {
 public:
  explicit Before(const core::OutputFile& file) {
    if (file.TemporaryPath().empty()) return;  // what is held in memory goes away with its store
    std::error_code error;
    m_target = core::NativePath(core::PathText(core::RealPathOfNew(core::NativePath(file.Path()), error)));
    if (error || !fs::is_regular_file(m_target, error)) return;
    m_kept = file.TemporaryPath();
    m_kept += ".old";
    fs::create_hard_link(m_target, m_kept, error);
    if (error) fs::copy_file(m_target, m_kept, error);  // not every file system has links
    if (!error) return;
    m_problem = error.message();
    m_kept.clear();
  }
  Before(Before&& other) noexcept
      : m_target(std::move(other.m_target)),
        m_kept(std::exchange(other.m_kept, {})),
        m_problem(std::move(other.m_problem)) {}
  Before(const Before&) = delete;
  Before& operator=(const Before&) = delete;
  Before& operator=(Before&&) = delete;
  ~Before() {
    std::error_code ignored;
    if (!m_kept.empty()) fs::remove(m_kept, ignored);
  }

  const std::string& Problem() const { return m_problem; }

  void BringBack() {
    std::error_code ignored;
    if (m_kept.empty()) {
      fs::remove(m_target, ignored);
    } else {
      fs::rename(m_kept, m_target, ignored);
    }
  }

 private:
  fs::path m_target, m_kept;  // no kept file where there was none
  std::string m_problem;
};

}  // namespace

bool CommitTogether(std::vector<core::OutputFile>& files, std::string& path, std::string& reason) {
  std::vector<Before> before;
  before.reserve(files.size());
  for (const core::OutputFile& file : files) {
    before.emplace_back(file);
    if (before.back().Problem().empty()) continue;
    path = file.Path();
    reason = before.back().Problem();
    return false;
  }
  for (size_t i = 0; i < files.size(); ++i) {
    if (files[i].Commit()) continue;
    path = files[i].Path();
    reason = files[i].Error();
    while (i-- > 0) before[i].BringBack();
    return false;
  }
  return true;
}

}  // namespace tarnwick::compiler
