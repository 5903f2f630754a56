// The embedded registry with many values, beside the plain way of writing the whole file for each change.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "formats/reg_file.h"
#include "platform/embedded/registry.h"
#include "platform/registry_trees.h"

namespace {

using kw::platform::Hive;
using kw::platform::RegistryValue;
using kw::platform::embedded::EmbeddedRegistry;

constexpr Hive kUser = Hive::kCurrentUser;

double Milliseconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void Check(const kw::Status& status) {
  if (status.ok()) return;
  std::fprintf(stderr, "%s\n", status.message().c_str());
  std::exit(1);
}

void Measure(uint32_t count) {
  std::string pattern = (std::filesystem::temp_directory_path() / "kw-bench-XXXXXX").string();
  const std::string root = ::mkdtemp(pattern.data());
  const auto name = [](uint32_t i) { return "value number " + std::to_string(i); };
  double set = 0;
  double query = 0;
  double enumerate = 0;
  double copy = 0;
  double rest = 0;
  {
    auto registry = std::make_unique<EmbeddedRegistry>(root, 1252);
    const auto key = std::move(*registry->CreateKey(kUser, "SOFTWARE\\Bench", kw::platform::kKeyAll));
    set = Milliseconds([&] {
      for (uint32_t i = 0; i < count; ++i) Check(key->SetValue(name(i), RegistryValue::OfText("some text")));
    });
    query = Milliseconds([&] {
      for (uint32_t i = 0; i < count; ++i) Check(key->QueryValue(name(i), 255).status());
    });
    enumerate = Milliseconds([&] {
      for (uint32_t i = 0; i < count; ++i) Check(key->EnumValue(i, 255).status());
    });
    copy = Milliseconds(
        [&] { Check(kw::platform::CopyTree(*registry, kUser, "SOFTWARE\\Bench", kUser, "SOFTWARE\\Copy")); });
    rest = Milliseconds([&] { Check(registry->Flush()); });
  }
  EmbeddedRegistry registry(root, 1252);
  const double open = Milliseconds(
      [&] { Check(registry.OpenKey(kUser, "SOFTWARE\\Bench", kw::platform::kKeyQuery).status()); });
  kw::formats::RegFileWriter writer;
  Check(registry.Export(kUser, "SOFTWARE", "HKEY_CURRENT_USER\\SOFTWARE", writer));
  const double whole =
      Milliseconds([&] {
        for (int i = 0; i < 10; ++i) {
          Check(kw::WriteFileAtomically(kw::SystemStorage(), root + "/whole.reg", writer.File()));
        }
      }) /
      10 * count;
  std::printf("%7u %9.1f %9.1f %9.1f %9.1f %9.1f %9.1f %10.0f\n", count, set, query, enumerate, copy, rest,
              open, whole / set);
  std::filesystem::remove_all(root);
}

}  // namespace

int main() {
  std::printf("milliseconds for so many values, and how many times longer whole files would take\n");
  std::printf("%7s %9s %9s %9s %9s %9s %9s %10s\n", "values", "set", "query", "enumerate", "copy", "flush",
              "open", "ratio");
  for (const uint32_t count : {1000u, 10000u, 20000u}) Measure(count);
  return 0;
}
