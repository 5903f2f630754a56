#include "platform/windows/system.h"

#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "platform/windows/system_headers.h"
#include "platform/windows/wide.h"

namespace kw::platform::windows {
namespace {

constexpr DWORD kLongestPath = 32768;

std::string WithoutBackslash(std::string folder) {
  while (folder.size() > 3 && folder.back() == '\\') folder.pop_back();
  return folder;
}

// The short form of a folder's path where the system keeps one.
std::wstring WithoutBlanks(const std::wstring& folder) {
  if (folder.find(L' ') == std::wstring::npos) return folder;
  std::wstring text(kLongestPath, L'\0');
  const DWORD length = GetShortPathNameW(folder.c_str(), text.data(), kLongestPath);
  if (length == 0 || length >= kLongestPath) return folder;
  text.resize(length);
  return text;
}

int DayOfYear(const SYSTEMTIME& time) {
  constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const bool leap = (time.wYear % 4 == 0 && time.wYear % 100 != 0) || time.wYear % 400 == 0;
  return kDaysBefore[time.wMonth - 1] + time.wDay + (leap && time.wMonth > 2 ? 1 : 0);
}

}  // namespace

int32_t WindowsSystem::TotalPhysicalMemory() {
  constexpr DWORDLONG kMost = std::numeric_limits<uint32_t>::max();
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof memory;
  if (!GlobalMemoryStatusEx(&memory)) return 0;
  return static_cast<int32_t>(static_cast<uint32_t>(std::min(memory.ullTotalPhys, kMost)));
}

int WindowsSystem::UserDefaultLocale() { return static_cast<int>(GetUserDefaultLCID()); }

int WindowsSystem::CodePage() { return static_cast<int>(GetACP()); }

std::string WindowsSystem::TempFolder() {
  std::wstring folder(kLongestPath, L'\0');
  const DWORD length = GetTempPathW(kLongestPath, folder.data());
  folder.resize(length < kLongestPath ? length : 0);
  return WithoutBackslash(Narrow(WithoutBlanks(folder)));
}

std::string WindowsSystem::SpecialFolder(int id) {
  wchar_t folder[MAX_PATH] = {};
  if (!SHGetSpecialFolderPathW(nullptr, folder, id, FALSE)) return {};
  return WithoutBackslash(Narrow(folder));
}

std::string WindowsSystem::ProgramFolder() {
  std::wstring program(kLongestPath, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, program.data(), kLongestPath);
  program.resize(length < kLongestPath ? length : 0);
  return Narrow(program.substr(0, program.rfind(L'\\')));
}

bool WindowsSystem::PreviousInstance() {
  if (asked_) return previous_;
  asked_ = true;
  // One name for all sessions: the machine's registry and products are shared by them.
  claim_ =
      OwnedHandle(CreateMutexW(nullptr, FALSE, L"Global\\Kitwright-6C0E0B0A-1E57-4BD5-8B0B-5D1F53C6A0B4"));
  const DWORD number = GetLastError();
  // Another user's claim cannot be opened; it is there all the same.
  previous_ = number == ERROR_ALREADY_EXISTS || (!claim_.valid() && number == ERROR_ACCESS_DENIED);
  return previous_;
}

LocalTime WindowsSystem::Now() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, DayOfYear(now)};
}

Result<std::array<uint8_t, 16>> WindowsSystem::CreateGuid() {
  GUID guid{};
  const HRESULT made = CoCreateGuid(&guid);
  if (FAILED(made)) return Error{static_cast<int>(made), "Could not make a unique identifier."};
  std::array<uint8_t, 16> bytes{};
  static_assert(sizeof guid == sizeof bytes);
  std::memcpy(bytes.data(), &guid, sizeof guid);
  return bytes;
}

}  // namespace kw::platform::windows
