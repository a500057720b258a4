#include "compiler/files/block_file.h"

#include <cstring>

namespace tarnwick::compiler {

namespace {

constexpr size_t BlockAlignment = 16;
constexpr size_t PieceAlignment = 4;

void Align(std::string& bytes, size_t to) {
  bytes.resize((bytes.size() + to - 1) / to * to);
}

}  // namespace

BlockFile::Place BlockFile::Add(std::string_view piece) {
  if (m_blocks.empty()) {
    m_bytes.assign(sizeof(model::StudioHeader), '\0');
    m_blocks.resize(1);
  }
  Align(m_bytes, PieceAlignment);
  const auto filled = static_cast<int64_t>(m_bytes.size()) - m_blocks.back().Start;
  if (m_blocks.size() == 1 || filled + static_cast<int64_t>(piece.size()) > m_blockSize) {
    Align(m_bytes, BlockAlignment);
    const auto start = static_cast<int32_t>(m_bytes.size());
    m_blocks.push_back({start, start});
  }
  model::StudioAnimBlock& block = m_blocks.back();
  const Place place{static_cast<int32_t>(m_blocks.size() - 1), static_cast<int32_t>(m_bytes.size()) - block.Start};
  m_bytes += piece;
  block.End = static_cast<int32_t>(m_bytes.size());
  return place;
}

std::string BlockFile::Take(int32_t version) {
  if (m_blocks.empty()) return {};
  // The head of a model file, as far as readers of blocks look at it.
  model::StudioHeader header{};
  std::memcpy(header.Id, "IDAG", sizeof header.Id);
  header.Version = version;
  header.AnimOffset = sizeof header;
  header.Length = static_cast<int32_t>(m_bytes.size());
  std::memcpy(m_bytes.data(), &header, sizeof header);
  return std::move(m_bytes);
}

}  // namespace tarnwick::compiler
