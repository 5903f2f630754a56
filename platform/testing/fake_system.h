#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_SYSTEM_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_SYSTEM_H_

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "platform/system.h"

namespace kw::platform::testing {

/// Facts as a test sets them. GUIDs are the bytes 01 02 ... 10, the first byte counting up with each call.
class FakeSystem : public System {
 public:
  int32_t memory = 1073741824;
  int locale = 1033;
  int code_page = 1252;
  std::string temp_folder = "C:\\Temp";
  std::map<int, std::string> special_folders{{35, "C:\\ProgramData"}};
  std::string program_folder = "C:\\Kitwright";
  bool previous_instance = false;
  LocalTime now{2004, 11, 15, 4, 53, 0, 320};
  /// Not 0: CreateGuid fails with this number.
  int guid_error = 0;

  int32_t TotalPhysicalMemory() override { return memory; }
  int UserDefaultLocale() override { return locale; }
  int CodePage() override { return code_page; }
  std::string TempFolder() override { return temp_folder; }
  std::string SpecialFolder(int id) override {
    const auto found = special_folders.find(id);
    return found == special_folders.end() ? std::string() : found->second;
  }
  std::string ProgramFolder() override { return program_folder; }
  bool PreviousInstance() override { return previous_instance; }
  LocalTime Now() override { return now; }
  Result<std::array<uint8_t, 16>> CreateGuid() override {
    if (guid_error != 0) return Error{guid_error, "Could not make a unique identifier."};
    std::array<uint8_t, 16> bytes{};
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i + 1);
    bytes[0] = static_cast<uint8_t>(bytes[0] + guids_made_++);
    return bytes;
  }

 private:
  int guids_made_ = 0;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_SYSTEM_H_
