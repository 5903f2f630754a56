// Every Help button finds its page, in both forms of the help books.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mspack.h>
#include <unistd.h>
#include <wx/app.h>
#include <wx/evtloop.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "settings/frm_add_task.h"
#include "shell/shell_test_support.h"
#include "ui/wx/testing/toolkit.h"
#include "ui/wx/wx_dialogs.h"
#include "ui/wx/wx_host.h"

namespace kw {
namespace {

namespace fs = std::filesystem;

using Topics = std::map<std::string, std::set<int>>;  ///< by the file name of the book

const fs::path kBooks = KITWRIGHT_HELP_FOLDER;
const fs::path kSources = fs::path(KITWRIGHT_SOURCE_DIR) / "help";

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// What the Help buttons of all forms open, in every state that has a topic of its own.
Topics UsedTopics() {
  testing::ShellFixture wizard;
  // Pages are made when program entry has made these.
  wizard.run.Installer = std::move(*wizard.machine.services.create_installer());
  wizard.run.InstallerSecond = std::move(*wizard.machine.services.create_installer());
  Topics topics;
  const auto press_help = [&](ui::Form& form) {
    ui::Control* help = form.FindControl("Help");
    if (!help) help = form.FindControl("cmdHelp");
    if (!help) return false;
    wizard.Take();
    dynamic_cast<ui::Button&>(*help).on_click();
    const std::vector<std::string> lines = wizard.Take();
    EXPECT_EQ(lines.size(), 1U) << form.Name();
    const std::string book = wizard.machine.dialogs.help_files.back();
    topics[book.substr(book.rfind('\\') + 1)].insert(std::stoi(lines.at(0).substr(lines.at(0).find(' '))));
    return true;
  };
  int without = 0;
  for (const auto& [name, make] : AllFormFactories()) {
    if (!press_help(wizard.app.Context().navigator.FormByName(name))) ++without;
  }
  EXPECT_EQ(without, 1) << "only the wait window has no Help button";
  auto& task = wizard.app.Context().navigator.Get<frmAddTask>();
  for (const TaskKind kind : {TaskKind::kScan, TaskKind::kUpdate, TaskKind::kMirror}) {
    for (const bool is_new : {true, false}) {
      task.ReadConfig("{1}", "A task", is_new, kind);
      press_help(task);
    }
  }
  return topics;
}

uint32_t Word(const std::string& bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 4; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return value;
}

/// A compiled book, read by a library that has nothing to do with its compiler.
class CompiledBook {
 public:
  explicit CompiledBook(fs::path path)
      : path_(std::move(path)),
        reader_(mspack_create_chm_decompressor(nullptr)),
        book_(reader_->open(reader_, path_.c_str())) {
    if (!book_) throw std::runtime_error(path_.string() + " is no compiled book");
  }
  ~CompiledBook() {
    reader_->close(reader_, book_);
    mspack_destroy_chm_decompressor(reader_);
  }
  CompiledBook(const CompiledBook&) = delete;
  CompiledBook& operator=(const CompiledBook&) = delete;

  /// "" when there is no such member.
  std::string Contents(const std::string& name) const {
    mschmd_file* file = Find(name);
    if (!file) return {};
    const fs::path out = fs::path(::testing::TempDir()) / ("kitwright_help_" + std::to_string(getpid()));
    EXPECT_EQ(reader_->extract(reader_, file, out.c_str()), MSPACK_ERR_OK) << name;
    const std::string bytes = ReadAll(out);
    fs::remove(out);
    return bytes;
  }

  /// The page of each topic number: pairs of a number and the place of the page's name.
  std::map<int, std::string> Topics() const {
    const std::string numbers = Contents("/#IVB"), strings = Contents("/#STRINGS");
    std::map<int, std::string> pages;
    for (size_t at = 4; at + 8 <= numbers.size(); at += 8) {
      pages[static_cast<int>(Word(numbers, at))] = strings.substr(Word(numbers, at + 4)).c_str();
    }
    return pages;
  }

 private:
  mschmd_file* Find(const std::string& name) const {
    for (mschmd_file* list : {book_->files, book_->sysfiles}) {
      for (mschmd_file* file = list; file; file = file->next) {
        if (name == file->filename) return file;
      }
    }
    return nullptr;
  }

  const fs::path path_;  // the library keeps a pointer to it
  mschm_decompressor* reader_;
  mschmd_header* book_;
};

TEST(HelpBooks, TheWizardUsesTheseTopics) {
  const Topics expected = {{"ZED.chm", {1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1010, 1011,
                                        1012, 1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021, 1022,
                                        1023, 1024, 1025, 1027, 1029, 1030, 1031, 1032, 1033, 1034, 1035}},
                           {"Bulwark.chm", {1035}}};
  EXPECT_EQ(UsedTopics(), expected);
}

TEST(HelpBooks, EveryTopicHasItsPageInTheCompiledBook) {
  for (const auto& [name, topics] : UsedTopics()) {
    const CompiledBook book(kBooks / name);
    const std::map<int, std::string> pages = book.Topics();
    for (const int topic : topics) {
      const auto page = pages.find(topic);
      ASSERT_NE(page, pages.end()) << name << " " << topic;
      EXPECT_THAT(book.Contents("/" + page->second), ::testing::HasSubstr("<h1>")) << name << " " << topic;
    }
  }
}

TEST(HelpBooks, EveryTopicOpensInTheViewerOfTheToolkit) {
  if (!ui::testing::StartToolkit()) GTEST_SKIP() << "no virtual display: Xvfb or openbox is not installed";
  wxGUIEventLoop loop;
  wxEventLoopBase::SetActive(&loop);
  {
    ui::WxHost host;
    const auto same = [](const std::string& path) { return path; };
    ui::WxDialogs dialogs(host, {same, same});
    for (const auto& [name, topics] : UsedTopics()) {
      for (const int topic : topics) {
        const Status shown = dialogs.ShowHelp((kBooks / name).string(), topic);
        EXPECT_TRUE(shown.ok()) << name << " " << topic << ": " << shown.message();
      }
      EXPECT_FALSE(dialogs.ShowHelp((kBooks / name).string(), 999).ok());
    }
  }
  wxEventLoopBase::SetActive(nullptr);
}

TEST(HelpBooks, BothFormsNameTheSamePageForATopic) {
  for (const auto& [folder, stem] :
       std::map<std::string, std::string>{{"zed", "ZED"}, {"bulwark", "Bulwark"}}) {
    const CompiledBook book(kBooks / (stem + ".chm"));
    const std::string contents = ReadAll(kSources / folder / (stem + ".hhc"));
    static const std::regex kEntry(R"re(name="Local" value="([^"]+)">\s*<param name="ID" value="(\d+)">)re");
    std::map<int, std::string> pages;
    for (std::sregex_iterator entry(contents.begin(), contents.end(), kEntry), end; entry != end; ++entry) {
      pages[std::stoi((*entry)[2])] = (*entry)[1];
    }
    EXPECT_EQ(pages, book.Topics()) << stem;
  }
}

TEST(HelpBooks, EveryPageIsInTheBookAndEveryLinkLeadsToOne) {
  for (const auto& [folder, stem] :
       std::map<std::string, std::string>{{"zed", "ZED"}, {"bulwark", "Bulwark"}}) {
    const CompiledBook book(kBooks / (stem + ".chm"));
    const std::string contents = ReadAll(kSources / folder / (stem + ".hhc"));
    for (const fs::directory_entry& entry : fs::directory_iterator(kSources / folder)) {
      if (entry.path().extension() != ".html") continue;
      const std::string page = entry.path().filename().string();
      EXPECT_THAT(book.Contents("/" + page), ::testing::HasSubstr("<h1>")) << page;
      EXPECT_THAT(contents, ::testing::HasSubstr("value=\"" + page + "\"")) << "not in the contents";
      const std::string text = ReadAll(entry.path());
      static const std::regex kLink(R"re(href="([^"#]+))re");
      for (std::sregex_iterator link(text.begin(), text.end(), kLink), end; link != end; ++link) {
        EXPECT_TRUE(fs::exists(kSources / folder / (*link)[1].str())) << page << ": " << (*link)[1];
      }
    }
  }
}

}  // namespace
}  // namespace kw
