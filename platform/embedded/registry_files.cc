#include "platform/embedded/registry_files.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <system_error>

#include "base/text.h"

namespace kw::platform::embedded {
namespace {

// ";journal <8 digits: length> <16 digits: checksum>" CR LF.
constexpr std::string_view kRecordMark = ";journal ";
constexpr size_t kRecordHead = kRecordMark.size() + 8 + 1 + 16 + 2;
// ";base <16 digits: size> <16 digits: time of the last change>" CR LF, the first line of a journal.
constexpr std::string_view kBaseMark = ";base ";
// A journal longer than this, and longer than its file, is folded in.
constexpr uint64_t kLongJournal = 1 << 20;

uint64_t Checksum(std::string_view bytes) {
  uint64_t hash = 14695981039346656037u;  // FNV-1a
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
  return hash;
}

std::string Hex(uint64_t number, size_t digits) {
  char buffer[16];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, 16).ptr;
  const std::string text(buffer, end);
  return std::string(digits - text.size(), '0') + text;
}

std::optional<uint64_t> FromHex(std::string_view text) {
  uint64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

// Binds a journal to the file on which it stands.
std::string JournalHead(const FileIdentity& file) {
  std::string head(kBaseMark);
  head.append(Hex(static_cast<uint64_t>(file.size), 16)).append(" ");
  return head.append(Hex(static_cast<uint64_t>(file.changed), 16)).append("\r\n");
}

std::string MakeRecord(const formats::RegFile& change) {
  formats::RegFileWriter writer;
  for (const formats::RegFileKey& key : change.keys) {
    // Without its "\" the root would have no name, and a key "-a" would read as the deletion of "a".
    const std::string path = "\\" + key.path;
    if (key.deleted) {
      writer.AddKeyDeletion(path);
      continue;
    }
    writer.AddKey(path);
    for (const formats::RegFileValue& value : key.values) {
      if (value.deleted) {
        writer.AddValueDeletion(value.name);
      } else {
        writer.AddValue(value.name, value.type, value.data);
      }
    }
  }
  const std::string& lines = writer.lines();
  std::string record(kRecordMark);
  record.append(Hex(lines.size(), 8)).append(" ").append(Hex(Checksum(lines), 16)).append("\r\n");
  return record + lines;
}

// The lines of the record at the start of `journal`; nothing when it is not whole.
std::optional<std::string_view> FirstRecord(std::string_view journal) {
  if (journal.size() < kRecordHead || !journal.starts_with(kRecordMark)) return std::nullopt;
  const auto length = FromHex(journal.substr(kRecordMark.size(), 8));
  const auto checksum = FromHex(journal.substr(kRecordMark.size() + 9, 16));
  if (!length || !checksum || journal.size() - kRecordHead < *length) return std::nullopt;
  const std::string_view lines = journal.substr(kRecordHead, static_cast<size_t>(*length));
  if (Checksum(lines) != *checksum) return std::nullopt;
  return lines;
}

class Locked {
 public:
  Locked(FileLock& lock, FileLock::Mode mode) : lock_(lock), status_(lock.Acquire(mode)) {}
  ~Locked() {
    if (status_.ok()) lock_.Release();
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  const Status& status() const { return status_; }

 private:
  FileLock& lock_;
  Status status_;
};

}  // namespace

RegistryFiles::RegistryFiles(std::string folder, int code_page, Storage& storage)
    : folder_(std::move(folder)), code_page_(code_page), storage_(storage), lock_(folder_ + "/.lock") {
  for (const Hive hive : {Hive::kCurrentUser, Hive::kLocalMachine}) {
    const std::string stem = folder_ + "/" + std::string(HiveName(hive));
    State(hive).file = stem + ".reg";
    State(hive).journal = stem + ".journal";
  }
}

RegistryFiles::~RegistryFiles() { Flush().IgnoreError(); }

// The file is looked at before the journal: a fold replaces the file first.
bool RegistryFiles::IsPresent(const HiveState& state) {
  if (!state.loaded) return false;
  const Result<FileIdentity> file = FileIdentity::Of(state.file);
  if (!file.ok() || *file != state.file_seen) return false;
  const Result<FileIdentity> journal = FileIdentity::Of(state.journal);
  return journal.ok() && JournalIsAsSeen(state, *journal);
}

// A journal only grows, so that its size tells, unless it ends in a record that was cut off: another one may
// have taken that one's place.
bool RegistryFiles::JournalIsAsSeen(const HiveState& state, const FileIdentity& journal) {
  return journal.SameFileAs(state.journal_seen) && journal.size == state.journal_seen.size &&
         static_cast<uint64_t>(journal.size) == state.journal_end;
}

Result<const RegistryTree*> RegistryFiles::Read(Hive hive) {
  HiveState& state = State(hive);
  if (IsPresent(state)) return &state.tree;
  KW_ASSIGN_OR_RETURN(const FileIdentity folder, FileIdentity::Of(folder_));
  if (folder.exists) {
    const Locked locked(lock_, FileLock::Mode::kShared);
    KW_RETURN_IF_ERROR(locked.status());
    KW_RETURN_IF_ERROR(Refresh(hive));
  } else {
    state.tree = RegistryTree();
  }
  return &state.tree;
}

Status RegistryFiles::Change(Hive hive, const Decide& decide) {
  if (!lock_.IsOpen()) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    if (error) return {kErrorAccessDenied, "Could not make " + folder_ + ": " + error.message() + "."};
  }
  const Locked locked(lock_, FileLock::Mode::kExclusive);
  KW_RETURN_IF_ERROR(locked.status());
  KW_RETURN_IF_ERROR(Refresh(hive));
  HiveState& state = State(hive);
  KW_ASSIGN_OR_RETURN(const formats::RegFile change, decide(state.tree));
  if (change.keys.empty()) return {};
  KW_RETURN_IF_ERROR(Append(state, MakeRecord(change)));
  for (const formats::RegFileKey& key : change.keys) state.tree.Apply(key);
  if (state.journal_end > kLongJournal && state.journal_end > static_cast<uint64_t>(state.file_seen.size)) {
    Fold(hive).IgnoreError();  // the change is safe in the journal
  }
  return {};
}

Status RegistryFiles::Refresh(Hive hive) {
  HiveState& state = State(hive);
  KW_ASSIGN_OR_RETURN(const FileIdentity file, FileIdentity::Of(state.file));
  KW_ASSIGN_OR_RETURN(const FileIdentity journal, FileIdentity::Of(state.journal));
  const bool same_file = state.loaded && file == state.file_seen;
  if (same_file && JournalIsAsSeen(state, journal)) return {};
  const bool same_journal = !state.journal_seen.exists || journal.SameFileAs(state.journal_seen);
  const bool continues =
      same_file && journal.exists && same_journal && journal.size >= static_cast<int64_t>(state.journal_end);
  state.loaded = false;
  if (!continues) {
    state.journal_writer.reset();
    state.journal_end = 0;
    KW_RETURN_IF_ERROR(LoadFile(hive));
  }
  state.file_seen = file;
  state.journal_seen = journal;
  if (journal.exists) KW_RETURN_IF_ERROR(ReplayJournal(state));
  state.loaded = true;
  return {};
}

Status RegistryFiles::LoadFile(Hive hive) {
  HiveState& state = State(hive);
  state.tree = RegistryTree();
  const Result<std::string> bytes = ReadWholeFile(storage_, state.file);
  if (bytes.number() == kErrorFileNotFound) return {};
  if (!bytes.ok()) return bytes.status();
  auto parsed = formats::ParseRegFile(*bytes, code_page_);
  if (!parsed.ok()) {
    return {parsed.error().number, "The registry file " + state.file + " is no registry-editor file."};
  }
  const std::string_view root = HiveName(hive);
  for (formats::RegFileKey& key : parsed->keys) {
    if (!StartsWithNoCase(key.path, root)) continue;
    if (key.path.size() > root.size() && key.path[root.size()] != '\\') continue;
    key.path.erase(0, root.size());
    state.tree.Apply(key);
  }
  return {};
}

Status RegistryFiles::ReplayJournal(HiveState& state) {
  KW_ASSIGN_OR_RETURN(const auto file, storage_.Open(state.journal, Storage::Mode::kRead));
  const auto size = static_cast<uint64_t>(state.journal_seen.size);
  std::string content(static_cast<size_t>(size - std::min(size, state.journal_end)), '\0');
  KW_ASSIGN_OR_RETURN(const size_t got,
                      file->ReadAt(state.journal_end, std::as_writable_bytes(std::span(content))));
  std::string_view rest = std::string_view(content).substr(0, got);
  if (state.journal_end == 0) {
    const std::string head = JournalHead(state.file_seen);
    if (!rest.starts_with(head)) return {};
    rest.remove_prefix(head.size());
    state.journal_end = head.size();
  }
  while (const auto lines = FirstRecord(rest)) {
    const formats::RegFile change = formats::ParseRegLines(*lines);
    for (const formats::RegFileKey& key : change.keys) state.tree.Apply(key);
    rest.remove_prefix(kRecordHead + lines->size());
    state.journal_end += kRecordHead + lines->size();
  }
  return {};
}

Status RegistryFiles::Append(HiveState& state, std::string_view record) {
  if (!state.journal_writer) {
    const auto mode = state.journal_seen.exists ? Storage::Mode::kReadWrite : Storage::Mode::kCreateAlways;
    KW_ASSIGN_OR_RETURN(auto opened, storage_.Open(state.journal, mode));
    KW_ASSIGN_OR_RETURN(state.journal_seen, FileIdentity::Of(state.journal));
    state.journal_writer = std::move(opened);
  }
  StorageFile& writer = *state.journal_writer;
  // A record that a kill cut off must not stand between whole ones.
  if (state.journal_seen.size > static_cast<int64_t>(state.journal_end)) {
    KW_RETURN_IF_ERROR(writer.Truncate(state.journal_end));
  }
  const std::string bytes =
      state.journal_end == 0 ? JournalHead(state.file_seen) + std::string(record) : std::string(record);
  if (Status status = writer.WriteAt(state.journal_end, std::as_bytes(std::span(bytes))); !status.ok()) {
    writer.Truncate(state.journal_end).IgnoreError();  // else the checksum tells
    state.loaded = false;  // what lies in the journal now is for the next reading to see
    return status;
  }
  state.journal_end += bytes.size();
  state.journal_seen.size = static_cast<int64_t>(state.journal_end);
  return {};
}

Status RegistryFiles::Fold(Hive hive) {
  HiveState& state = State(hive);
  formats::RegFileWriter writer;
  RegistryTree::Write(state.tree.root(), std::string(HiveName(hive)), writer);
  // A journal that stays behind the new file counts no more, and nothing may be added to it.
  state.loaded = false;
  if (state.journal_end != 0) {
    KW_RETURN_IF_ERROR(WriteFileAtomically(storage_, state.file, writer.File()));
  }
  state.journal_writer.reset();
  KW_RETURN_IF_ERROR(storage_.Remove(state.journal));
  state.journal_end = 0;
  state.journal_seen = {};
  KW_ASSIGN_OR_RETURN(state.file_seen, FileIdentity::Of(state.file));
  state.loaded = true;
  return {};
}

Status RegistryFiles::Flush() {
  Status result;
  for (const Hive hive : {Hive::kCurrentUser, Hive::kLocalMachine}) {
    const Result<FileIdentity> journal = FileIdentity::Of(State(hive).journal);
    if (!journal.ok()) result = journal.status();
    if (!journal.ok() || !journal->exists) continue;
    const Locked locked(lock_, FileLock::Mode::kExclusive);
    Status status = locked.status();
    if (status.ok()) status = Refresh(hive);
    if (status.ok() && State(hive).journal_seen.exists) status = Fold(hive);
    if (!status.ok()) result = status;
  }
  return result;
}

}  // namespace kw::platform::embedded
