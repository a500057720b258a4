#include "core/memory_store.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "core/paths.h"

namespace tarnwick::core {

namespace {

/// The longest name that file systems take. A file that no disk could hold is refused here too.
constexpr size_t LongestName = 255;

/// The path with one slash between its names, without names that lead nowhere; "" for the current folder.
std::string PlainPath(std::string_view path) {
  const bool isAbsolute = path.starts_with('/') || path.starts_with('\\');
  std::vector<std::string_view> names;
  while (!path.empty()) {
    const size_t end = std::min(path.find_first_of("/\\"), path.size());
    const std::string_view name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    if (name.empty() || name == ".") continue;
    if (name != ".." || names.empty() || names.back() == "..") {
      if (name != ".." || !isAbsolute) names.push_back(name);
    } else {
      names.pop_back();
    }
  }
  std::string plain = isAbsolute ? "/" : "";
  for (size_t i = 0; i < names.size(); ++i) plain.append(i == 0 ? "" : "/").append(names[i]);
  return plain;
}

/// The part of a plain path before its last name; "" for the current folder.
std::string_view FolderOf(std::string_view plain) {
  const size_t slash = plain.rfind('/');
  if (slash == std::string_view::npos) return {};
  return plain.substr(0, std::max<size_t>(slash, 1));
}

/// What the plain paths of all in a folder begin with.
std::string StartBelow(std::string plainFolder) {
  if (!plainFolder.empty() && plainFolder != "/") plainFolder += '/';
  return plainFolder;
}

void Explain(std::string* reason, std::string_view text) {
  if (reason != nullptr) *reason = text;
}

}  // namespace

bool MemoryBudget::Take(int64_t bytes) {
  int64_t left = m_left;
  while (bytes <= left) {
    if (m_left.compare_exchange_weak(left, left - bytes)) return true;
  }
  return false;
}

/// The bytes of a file: in memory, or under a name on the disk.
class MemoryStore::Content {
 public:
  explicit Content(MemoryBudget& budget) : m_budget(budget) {}
  Content(const Content&) = delete;
  Content& operator=(const Content&) = delete;
  ~Content() { m_budget.GiveBack(static_cast<int64_t>(m_size)); }

  /// Adds bytes in memory. False if there is no room for them.
  bool Add(std::string_view bytes) {
    const auto taken = static_cast<int64_t>(bytes.size());
    if (!m_budget.Take(taken)) return false;
    const size_t needed = m_size + bytes.size();
    if (needed > m_capacity && !Resize(std::max(needed, 2 * m_capacity))) {
      m_budget.GiveBack(taken);
      return false;
    }
    if (!bytes.empty()) std::memcpy(m_bytes.get() + m_size, bytes.data(), bytes.size());
    m_size = needed;
    return true;
  }
  /// Moves the bytes so far into `file`.
  bool MoveTo(OutputFile& file) {
    if (!file.Write(Bytes())) return false;
    m_path = file.Path();
    m_bytes.reset();
    m_capacity = 0;
    m_budget.GiveBack(static_cast<int64_t>(std::exchange(m_size, 0)));
    return true;
  }
  /// Gives up the room that no byte needs; nothing is added behind that.
  void Close() {
    if (m_capacity > m_size && m_size > 0) Resize(m_size);
  }

  /// On the disk; "" for a file in memory.
  const std::string& Path() const { return m_path; }
  std::string_view Bytes() const { return {m_bytes.get(), m_size}; }

 private:
  struct Free {
    void operator()(char* bytes) const { std::free(bytes); }
  };

  /// By the C library's way, which moves most bytes to no other place. False if memory has run out.
  bool Resize(size_t capacity) {
    char* const moved = static_cast<char*>(std::realloc(m_bytes.get(), capacity));
    if (moved == nullptr) return false;
    static_cast<void>(m_bytes.release());
    m_bytes.reset(moved);
    m_capacity = capacity;
    return true;
  }

  MemoryBudget& m_budget;
  std::unique_ptr<char, Free> m_bytes;
  std::string m_path;
  size_t m_size = 0;  // in memory
  size_t m_capacity = 0;
};

class MemoryStore::Target : public OutputTarget {
 public:
  Target(MemoryStore& store, std::string plain)
      : m_store(store), m_plain(std::move(plain)), m_content(std::make_shared<Content>(store.m_budget)) {}

  bool Write(std::string_view bytes, std::string& error) override {
    if (!m_overflow) {
      if (m_content->Add(bytes)) return true;
      m_overflow = m_store.CreateOverflow(error);
      if (!m_overflow) return false;
      if (!m_content->MoveTo(*m_overflow)) return Fail(error);
    }
    return m_overflow->Write(bytes) || Fail(error);
  }
  bool Commit(std::string& error) override {
    if (m_overflow && !m_overflow->Commit()) return Fail(error);
    m_content->Close();
    const std::lock_guard lock(m_store.m_lock);
    m_store.m_files[m_plain] = std::move(m_content);
    return true;
  }

 private:
  bool Fail(std::string& error) {
    error = m_overflow->Error();
    return false;
  }

  MemoryStore& m_store;
  const std::string m_plain;
  std::shared_ptr<Content> m_content;
  std::optional<OutputFile> m_overflow;
};

std::optional<OutputFile> MemoryStore::CreateOverflow(std::string& reason) {
  std::string path;
  {
    const std::lock_guard lock(m_lock);
    if (m_overflowFolder.empty()) m_overflowFolder = m_overflow(reason);
    if (m_overflowFolder.empty()) return std::nullopt;
    path = m_overflowFolder + PathSeparator + std::to_string(++m_overflowFiles);
  }
  return OutputFile::Create(std::move(path), &reason);
}

std::shared_ptr<const MemoryStore::Content> MemoryStore::Find(const std::string& name, std::string* reason) const {
  const std::string plain = PlainPath(name);
  const std::lock_guard lock(m_lock);
  if (const auto found = m_files.find(plain); found != m_files.end()) return found->second;
  Explain(reason, m_folders.contains(plain) ? "it is a folder" : std::strerror(ENOENT));
  return nullptr;
}

std::optional<FileImage> MemoryStore::Read(const std::string& name, std::string* reason) const {
  const auto content = Find(name, reason);
  if (content == nullptr) return std::nullopt;
  if (!content->Path().empty()) {
    auto image = FileImage::Read(content->Path(), reason);
    if (image) image = std::move(*image).Named(name);
    return image;
  }
  const auto bytes = std::as_bytes(std::span(content->Bytes()));
  return FileImage::OfShared(name, std::shared_ptr<const std::byte[]>(content, bytes.data()), bytes.size());
}

bool MemoryStore::ReadStart(const std::string& name, std::span<std::byte> out) const {
  const auto content = Find(name, nullptr);
  if (content == nullptr) return false;
  if (!content->Path().empty()) return DiskFiles().ReadStart(content->Path(), out);
  const auto bytes = std::as_bytes(std::span(content->Bytes()));
  if (bytes.size() < out.size()) return false;
  std::copy_n(bytes.begin(), out.size(), out.begin());
  return true;
}

bool MemoryStore::Holds(const std::string& name) const {
  return Find(name, nullptr) != nullptr;
}

std::optional<std::string> MemoryStore::FindBeside(const std::string& name) const {
  if (Holds(name)) return name;
  const std::string folder(DirectoryWithSeparator(name));
  const std::string start = StartBelow(PlainPath(folder));
  const std::string sought = start + std::string(LastComponent(name));
  std::optional<std::string> found;
  const std::lock_guard lock(m_lock);
  for (const auto& [path, content] : m_files) {
    if (!path.starts_with(start) || !EqualIgnoringCase(path, sought)) continue;
    if (found) return std::nullopt;
    found = folder + path.substr(start.size());
  }
  return found;
}

std::optional<OutputFile> MemoryStore::Create(std::string path, std::string* reason) {
  const std::string plain = PlainPath(path);
  const std::string_view name = LastComponent(path);
  const std::lock_guard lock(m_lock);
  std::string problem;
  if (name.empty()) {
    problem = "the file has no name";
  } else if (name.size() > LongestName) {
    problem = std::strerror(ENAMETOOLONG);
  } else if (const std::string_view folder = FolderOf(plain);
             !folder.empty() && folder != "/" && !m_folders.contains(std::string(folder))) {
    problem = std::strerror(ENOENT);
  } else if (m_folders.contains(plain)) {
    problem = "a folder of that name exists";
  }
  if (!problem.empty()) {
    Explain(reason, problem);
    return std::nullopt;
  }
  return OutputFile(std::move(path), std::make_unique<Target>(*this, plain));
}

std::string MemoryStore::MakeFolder(const std::string& path) {
  const std::string plain = PlainPath(path);
  const std::lock_guard lock(m_lock);
  std::vector<std::string> made;
  for (std::string_view folder = plain; !folder.empty() && folder != "/"; folder = FolderOf(folder)) {
    if (LastComponent(folder).size() > LongestName) return std::strerror(ENAMETOOLONG);
    if (m_files.contains(std::string(folder))) return std::strerror(ENOTDIR);
    made.emplace_back(folder);
  }
  m_folders.insert(made.begin(), made.end());
  return {};
}

std::string MemoryStore::Remove(const std::string& path) {
  const std::lock_guard lock(m_lock);
  return m_files.erase(PlainPath(path)) != 0 ? std::string() : std::strerror(ENOENT);
}

bool MemoryStore::HoldsFolder(const std::string& path) const {
  const std::string plain = PlainPath(path);
  const std::lock_guard lock(m_lock);
  return plain.empty() || plain == "/" || m_folders.contains(plain);
}

std::vector<std::string> MemoryStore::NamesIn(const std::string& folder, size_t most) const {
  const std::string start = StartBelow(PlainPath(folder));
  std::vector<std::string> names;
  const auto take = [&](const std::string& path) {
    if (path.size() <= start.size() || !path.starts_with(start)) return;
    if (path.find('/', std::max<size_t>(start.size(), 1)) == std::string::npos)
      names.push_back(path.substr(start.size()));
  };
  const std::lock_guard lock(m_lock);
  for (const auto& [path, content] : m_files) take(path);
  for (const std::string& path : m_folders) take(path);
  std::sort(names.begin(), names.end());
  names.resize(std::min(names.size(), most));
  return names;
}

std::vector<std::string> MemoryStore::FilesBelow(const std::string& folder) const {
  const std::string start = StartBelow(PlainPath(folder));
  std::vector<std::string> files;
  const std::lock_guard lock(m_lock);
  for (auto at = m_files.lower_bound(start); at != m_files.end() && at->first.starts_with(start); ++at) {
    files.push_back(at->first.substr(start.size()));
  }
  return files;
}

bool MemoryStore::LiesIn(const std::string& path, const std::string& folder) const {
  const std::string plain = PlainPath(path);
  const std::string top = PlainPath(folder);
  return plain == top || plain.starts_with(StartBelow(top));
}

}  // namespace tarnwick::core
