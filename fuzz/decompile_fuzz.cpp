// A whole decompile job over the files of one model. The job's folder is in memory where the system has such a place.

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "decompile_input.h"
#include "decompiler/decompile_job.h"
#include "support/silent_report.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

namespace fs = std::filesystem;
using tarnwick::fuzz::DecompileInput;

/// What a job may write here; an input that asks for more is not looked at for longer.
constexpr int64_t OutputLimit = 1 << 20;

/// A folder of this process, removed at its end.
class JobFolder {
 public:
  JobFolder() {
    const char* named = std::getenv("TMPDIR");
    const fs::path top = named != nullptr ? named : fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
    m_path = top / ("tarnwick-fuzz-" + std::to_string(::getpid()));
    fs::create_directories(Out());
  }
  ~JobFolder() { fs::remove_all(m_path); }

  fs::path Model() const { return m_path / "cube"; }
  fs::path Out() const { return m_path / "out"; }

  void Fill(const DecompileInput& input) const {
    for (size_t i = 0; i < input.Files.size(); ++i) {
      const fs::path path = Model().concat(DecompileInput::Extensions[i]);
      if (input.Files[i].empty()) {
        fs::remove(path);
      } else {
        std::ofstream(path, std::ios::binary) << input.Files[i];
      }
    }
  }
  /// Removes what a job has written; ends the program if that is not all inside the output folder.
  void Clear() const {
    fs::remove_all(Out());
    for (const auto& entry : fs::directory_iterator(m_path)) {
      if (!entry.path().filename().string().starts_with("cube")) std::abort();
    }
    fs::create_directory(Out());
  }

 private:
  fs::path m_path;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const JobFolder folder;
  const auto input = DecompileInput::Unpack({reinterpret_cast<const char*>(data), size});
  folder.Fill(input);
  tarnwick::decompiler::DecompileJob job;
  job.ModelPath = folder.Model().concat(".mdl").string();
  job.OutputDirectory = folder.Out().string();
  job.Options = input.Options & 7u;
  job.OutputLimit = OutputLimit;
  tarnwick::tests::SilentReport report;
  tarnwick::decompiler::DecompileModel(job, report);
  folder.Clear();
  return 0;
}

/// Changes one file at a time and keeps the sizes of the others right. Half of the time a 4-byte field gets a value
/// that counts and offsets tend to break at.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned int seed) {
  std::minstd_rand random(seed);
  auto input = DecompileInput::Unpack({reinterpret_cast<const char*>(data), size});
  std::string& file = input.Files[random() % input.Files.size()];
  if (random() % 16 == 0) input.Options = static_cast<uint8_t>(random());
  if (file.size() >= 8 && random() % 2 == 0) {
    const size_t place = random() % (file.size() / 4) * 4;
    int32_t field = 0;
    std::memcpy(&field, file.data() + place, sizeof(field));
    const int32_t near = static_cast<int32_t>(static_cast<uint32_t>(field) + random() % 9 - 4);
    const int32_t fileSize = static_cast<int32_t>(file.size());
    const int32_t values[] = {near,       near,       near, 0, 1, -1, fileSize, -static_cast<int32_t>(place),
                              0x7FFFFFFF, -0x7FFFFFFF};
    field = values[random() % std::size(values)];
    std::memcpy(file.data() + place, &field, sizeof(field));
  } else {
    const size_t before = file.size();
    const size_t room = maxSize > size ? maxSize - size : 0;
    file.resize(before + std::min<size_t>(room, 64));
    if (!file.empty()) file.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(file.data()), before, file.size()));
  }
  const std::string packed = input.Pack();
  if (packed.size() > maxSize) return size;
  std::copy(packed.begin(), packed.end(), data);
  return packed.size();
}
