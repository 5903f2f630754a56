#include "ui/wx/wx_dialogs.h"

#include <wx/dirdlg.h>
#include <wx/display.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/fs_zip.h>
#include <wx/html/helpctrl.h>
#include <wx/html/helpfrm.h>
#include <wx/msgdlg.h>

#include <algorithm>
#include <utility>

#include "ui/wx/file_chooser.h"
#include "ui/wx/help_colors.h"
#include "ui/wx/label_text.h"
#include "ui/wx/system_help.h"
#include "ui/wx/wx_host.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

using platform::Answer;

namespace {

constexpr int kHelpWidth = 900;  // of the help window at 100 %
constexpr int kHelpHeight = 680;

wxString Caption(Answer answer) {
  switch (answer) {
    case Answer::kOk:
      return "&OK";
    case Answer::kCancel:
      return "&Cancel";
    case Answer::kYes:
      return "&Yes";
    case Answer::kNo:
      return "&No";
    case Answer::kRetry:
      return "&Retry";
  }
  return "";
}

/// What closing a box means when it holds `buttons`.
Answer ClosingAnswer(const std::vector<Answer>& buttons) {
  for (const Answer closing : {Answer::kCancel, Answer::kNo}) {
    if (std::find(buttons.begin(), buttons.end(), closing) != buttons.end()) return closing;
  }
  return buttons.empty() ? Answer::kCancel : buttons.back();
}

void ShowBox(WxHost& host, const std::string& text, long icon) {
  if (host.Ended()) return;
  host.Flush();
  wxMessageDialog box(host.BoxParent(), ToWxLines(text), platform::kProgramTitle, wxOK | wxCENTRE | icon);
  box.SetOKLabel(Caption(Answer::kOk));
  box.ShowModal();
}

/// A folder on the host that exists, at `windows_path` or above it; the usual one where none is asked for.
wxString StartFolder(const PathMapper& paths, const std::string& windows_path) {
  if (windows_path.empty()) return UsualStartFolder(paths);
  wxFileName folder = wxFileName::DirName(ToWx(paths.to_host(windows_path)));
  while (!folder.DirExists() && folder.GetDirCount() > 0) folder.RemoveLastDir();
  return folder.DirExists() ? folder.GetPath() : wxString();
}

}  // namespace

WxDialogs::WxDialogs(WxHost& host, PathMapper paths) : host_(host), paths_(std::move(paths)) {}

WxDialogs::~WxDialogs() { CloseSystemViewer(); }

void WxDialogs::Message(const std::string& text) { ShowBox(host_, text, wxICON_NONE); }

void WxDialogs::CriticalMessage(const std::string& text) { ShowBox(host_, text, wxICON_ERROR); }

Answer WxDialogs::Question(const std::string& text, const std::vector<Answer>& buttons, Answer default_button,
                           const std::string& title) {
  host_.Flush();
  // Two buttons: the first one agrees, the second one is what closing the box means.
  const Answer agree = buttons.empty() ? Answer::kOk : buttons.front();
  const Answer closing = ClosingAnswer(buttons);
  if (host_.Ended()) return closing;
  const bool yes_no = closing == Answer::kNo;
  long style = wxCENTRE | wxICON_NONE | (yes_no ? wxYES_NO : wxOK | wxCANCEL);
  if (default_button == closing) style |= yes_no ? wxNO_DEFAULT : wxCANCEL_DEFAULT;
  wxMessageDialog box(host_.BoxParent(), ToWxLines(text),
                      title.empty() ? wxString(platform::kProgramTitle) : ToWx(title), style);
  if (yes_no) {
    box.SetYesNoLabels(Caption(agree), Caption(closing));
  } else {
    box.SetOKCancelLabels(Caption(agree), Caption(closing));
  }
  const int answer = box.ShowModal();
  return answer == wxID_OK || answer == wxID_YES ? agree : closing;
}

std::string WxDialogs::OpenFile(const std::string& title, const std::string& filter,
                                const std::string& start_folder, const std::string& start_name) {
  host_.Flush();
  wxFileDialog dialog(host_.BoxParent(), ToWx(title), StartFolder(paths_, start_folder), ToWx(start_name),
                      filter.empty() ? wxString(wxFileSelectorDefaultWildcardStr) : ToWx(filter),
                      wxFD_OPEN | wxFD_FILE_MUST_EXIST);
  ShowMachinePaths(dialog, paths_);
  return dialog.ShowModal() == wxID_OK ? paths_.to_windows(FromWx(dialog.GetPath())) : "";
}

std::string WxDialogs::BrowseForFolder(const std::string& title, const std::string& start) {
  host_.Flush();
  wxDirDialog dialog(host_.BoxParent(), ToWx(title), StartFolder(paths_, start),
                     wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
  ShowMachinePaths(dialog, paths_);
  return dialog.ShowModal() == wxID_OK ? paths_.to_windows(FromWx(dialog.GetPath())) : "";
}

Status WxDialogs::ShowHelp(const std::string& help_file, int context_id) {
  wxFileName book(ToWx(paths_.to_host(help_file)));
  if (book.FileExists() && ShowInSystemViewer(host_.BoxParent(), book.GetFullPath(), context_id)) return {};
  book.SetExt("htb");
  if (!book.FileExists()) {
    return {kErrorFileNotFound, "The help book " + FromWx(book.GetFullName()) + " was not found."};
  }
  const std::string path = FromWx(book.GetFullPath());
  if (!help_ || help_book_ != path) {
    if (!wxFileSystem::HasHandlerForPath("a#zip:b")) wxFileSystem::AddHandler(new wxZipFSHandler);
    ShowHelpInThemeColors();
    help_ = std::make_unique<wxHtmlHelpController>(wxHF_DEFAULT_STYLE, host_.BoxParent());
    help_->SetTitleFormat("%s");
    if (!help_->AddBook(book)) {
      help_.reset();
      return {kErrorInvalidData, "The help book " + FromWx(book.GetFullName()) + " cannot be read."};
    }
    help_book_ = path;
  }
  const bool shown_before = help_->GetFrame() != nullptr;
  if (!help_->DisplaySection(context_id)) {
    return {kErrorFileNotFound, "The help book has no page for topic " + std::to_string(context_id) + "."};
  }
  if (wxFrame* frame = shown_before ? nullptr : help_->GetFrame()) {
    wxSize size = ScaledSize(*frame, wxSize(kHelpWidth, kHelpHeight));
    const wxRect screen = wxDisplay(frame).GetClientArea();
    size.DecTo(screen.GetSize());
    frame->SetSize(size);
    frame->CentreOnScreen();
  }
  return {};
}

}  // namespace kw::ui
