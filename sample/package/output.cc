#include "sample/package/output.h"

#include <cstdint>
#include <cstdio>
#include <fstream>

#include "base/text.h"

namespace kw::sample {
namespace {

uint64_t Hash(std::string_view text) {
  uint64_t hash = 0xCBF29CE484222325ULL;
  for (char c : text) hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3ULL;
  return hash;
}

uint64_t Next(uint64_t& state) {
  state ^= state << 13;
  state ^= state >> 7;
  state ^= state << 17;
  return state;
}

}  // namespace

void Output::Write(const std::string& path, std::string_view bytes) {
  if (!status_.ok()) return;
  const std::filesystem::path target = folder_ / path;
  std::error_code error;
  std::filesystem::create_directories(target.parent_path(), error);
  std::ofstream file(target, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) status_ = Status(kErrorIo, "Could not write " + target.string() + ".");
}

void Output::WriteText(const std::string& path, std::string_view text) {
  Write(path, ReplaceAll(text, "\n", "\r\n"));
}

void Output::Copy(const std::filesystem::path& from, const std::string& path) {
  if (!status_.ok()) return;
  const std::filesystem::path target = folder_ / path;
  std::error_code error;
  std::filesystem::create_directories(target.parent_path(), error);
  std::filesystem::copy_file(from, target, std::filesystem::copy_options::overwrite_existing, error);
  if (!error) {
    std::filesystem::permissions(target, std::filesystem::perms(0644), error);
  }
  if (error) status_ = Status(kErrorIo, "Could not copy " + from.string() + ": " + error.message() + ".");
}

void Output::MakeFolder(const std::string& path) {
  if (!status_.ok()) return;
  std::error_code error;
  std::filesystem::create_directories(folder_ / path, error);
  if (error) status_ = Status(kErrorIo, "Could not make the folder " + path + ": " + error.message() + ".");
}

std::string MadeUpData(std::string_view name, int size) {
  std::string bytes;
  uint64_t state = Hash(name) | 1;
  while (static_cast<int>(bytes.size()) < size) {
    const uint64_t value = Next(state);
    // Half noise, half runs, so that it packs like real data.
    bytes.append(1 + value % 7, static_cast<char>(value >> 32));
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
  }
  bytes.resize(static_cast<size_t>(size));
  return bytes;
}

std::string MadeUpText(std::string_view name, std::string_view product, int size) {
  std::string text;
  for (int line = 1; static_cast<int>(text.size()) < size; ++line) {
    text += std::string(product) + ", " + std::string(name) + ", line " + std::to_string(line) + ".\r\n";
  }
  return text;
}

std::string MadeUpGuid(std::string_view seed) {
  uint64_t state = Hash(seed) | 1;
  const uint64_t first = Next(state);
  const uint64_t second = Next(state);
  char text[40];
  std::snprintf(text, sizeof(text), "{%08X-%04X-4%03X-9%03X-%012llX}", static_cast<unsigned>(first >> 32),
                static_cast<unsigned>(first >> 16) & 0xFFFF, static_cast<unsigned>(first) & 0xFFF,
                static_cast<unsigned>(second >> 52),
                static_cast<unsigned long long>(second & 0xFFFFFFFFFFFFULL));
  return text;
}

std::string OnDrive(std::string_view windows_path) {
  return "drive_c/" + ReplaceAll(windows_path.substr(3), "\\", "/");
}

}  // namespace kw::sample
