#include "sample/libraries/zip_archive.h"

#include <zip.h>

#include <ctime>
#include <memory>
#include <span>
#include <vector>

#include "base/text.h"
#include "cabinet/entry_name.h"
#include "cabinet/folder_sink.h"

namespace kw::sample {
namespace {

struct CloseArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseMember {
  void operator()(zip_file_t* member) const { zip_fclose(member); }
};

struct Member {
  zip_uint64_t index;
  cabinet::CabinetEntry entry;
};

/// The stamp that an archive gives a member: local time in steps of two seconds.
cabinet::FileStamp StampOf(const zip_stat_t& about) {
  cabinet::FileStamp stamp;
  const std::tm* local = (about.valid & ZIP_STAT_MTIME) != 0 ? std::localtime(&about.mtime) : nullptr;
  if (local == nullptr || local->tm_year < 80 || local->tm_year > 207) return stamp;
  stamp.date = static_cast<uint16_t>((local->tm_year - 80) << 9 | (local->tm_mon + 1) << 5 | local->tm_mday);
  stamp.time = static_cast<uint16_t>(local->tm_hour << 11 | local->tm_min << 5 | local->tm_sec / 2);
  return stamp;
}

Result<std::vector<Member>> Members(zip_t* archive, const std::string& path) {
  std::vector<Member> members;
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    zip_stat_t about;
    const auto index = static_cast<zip_uint64_t>(i);
    if (zip_stat_index(archive, index, ZIP_FL_ENC_GUESS, &about) != 0) {
      return Result<std::vector<Member>>(kErrorInvalidData, path + " is damaged.");
    }
    std::string name = ReplaceAll(about.name, "/", "\\");
    // Some packers name everything from the folder that they began in.
    while (name.starts_with(".\\")) name.erase(0, 2);
    if (name.empty()) continue;
    // A folder of its own brings nothing; files make the folders that they need.
    if (name.ends_with('\\') && about.size == 0) {
      KW_RETURN_IF_ERROR(cabinet::SafeParts(name.substr(0, name.size() - 1)).status());
      continue;
    }
    KW_RETURN_IF_ERROR(cabinet::SafeParts(name).status());
    if ((about.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && about.encryption_method != ZIP_EM_NONE) {
      return Result<std::vector<Member>>(kErrorAccessDenied, name + " in " + path + " has a password.");
    }
    if (about.size > UINT32_MAX) {
      return Result<std::vector<Member>>(kErrorInvalidData, name + " in " + path + " is too large.");
    }
    Member member{index, {}};
    member.entry.name = name;
    member.entry.size = static_cast<uint32_t>(about.size);
    member.entry.stamp = StampOf(about);
    members.push_back(std::move(member));
  }
  return members;
}

Status UnpackMember(zip_t* archive, const Member& member, cabinet::FolderSink& sink) {
  const std::unique_ptr<zip_file_t, CloseMember> file(zip_fopen_index(archive, member.index, 0));
  if (!file) return Status(kErrorInvalidData, member.entry.name + " cannot be unpacked.");
  KW_RETURN_IF_ERROR(sink.Begin(member.entry));
  std::vector<std::byte> buffer(1 << 16);
  const Status damaged(kErrorInvalidData, member.entry.name + " is damaged.");
  Status outcome;
  // The library unpacks to whatever comes, also to more than the archive tells.
  zip_int64_t left = member.entry.size;
  while (outcome.ok()) {
    const zip_int64_t got = zip_fread(file.get(), buffer.data(), buffer.size());
    if (got == 0) break;
    left -= got;
    outcome = got < 0 || left < 0 ? damaged : sink.Write(std::span(buffer).first(static_cast<size_t>(got)));
  }
  if (outcome.ok() && left != 0) outcome = damaged;
  const Status end = sink.End(member.entry, outcome);
  return outcome.ok() ? end : outcome;
}

}  // namespace

Status UnpackZip(Storage& storage, const std::string& archive, const std::string& folder) {
  int code = 0;
  const std::unique_ptr<zip_t, CloseArchive> zip(zip_open(archive.c_str(), ZIP_RDONLY, &code));
  if (!zip) {
    return Status(code == ZIP_ER_NOENT ? kErrorFileNotFound : kErrorInvalidData, archive + " is no archive.");
  }
  KW_ASSIGN_OR_RETURN(const std::vector<Member> members, Members(zip.get(), archive));
  cabinet::FolderSink sink(storage, folder);
  for (const Member& member : members) KW_RETURN_IF_ERROR(UnpackMember(zip.get(), member, sink));
  return {};
}

}  // namespace kw::sample
