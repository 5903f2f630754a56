#include "shell/page_contract.h"

#include <utility>

#include "package/clean_up.h"
#include "ui/wizard_layout.h"

namespace kw {

WizardPage& Navigator::Page(std::string_view name) {
  auto& page = dynamic_cast<WizardPage&>(FormByName(name));
  page.EnsureLoaded();
  return page;
}

WizardPage::WizardPage(PageContext& context, std::string name, std::string title,
                       std::string description_name, std::string description, int help_id,
                       std::string next_name)
    : ui::Form(context.host, std::move(name), title, ui::FormStyle::kPage),
      TitleImage(*this, "TitleImage", "TITLEBITMAP"),
      Logo(*this, "Logo", "LOGO"),
      Title(*this, "Title", std::move(title)),
      Description(*this, std::move(description_name), std::move(description)),
      Line1(*this, "Line1"),
      TreeView1(*this, "TreeView1"),
      context_(context),
      navigator_(context.navigator),
      services_(context.services),
      run_(context.run),
      help_id_(help_id),
      next_name_(std::move(next_name)) {
  Title.emphasized = true;
  TreeView1.on_mouse_down = [this](ui::MouseButton button) {
    RightButtonDown = button == ui::MouseButton::kRight;
    TreeView1.SetEnabled(false);
    TreeView1.SetEnabled(true);
  };
  TreeView1.on_node_click = [this](int index) { OnNodeClick(index); };
}

void WizardPage::AddButtons(bool review) {
  const auto button = [this](const char* name, const char* caption, std::function<void()> on_click) {
    auto made = std::make_unique<ui::Button>(*this, name, caption);
    made->on_click = std::move(on_click);
    return made;
  };
  Line2 = std::make_unique<ui::Line>(*this, "Line2");
  Help = button("Help", "&Help", [this] { ShowHelp(context_, help_id_); });
  Back = button("Back", "< &Back", [this] { OnBack(); });
  if (review) {
    Save = button("Save", "&Save", nullptr);
    Save->is_default = true;
  } else {
    Next = button(next_name_.c_str(), "&Next >", [this] { OnNext(); });
    Next->is_default = true;
    Finsh = button("Finsh", "&Finish", [this] { OnFinish(); });
  }
  Cancel = button("Cancel", "Cancel", [this] { OnCancel(); });
  Cancel->is_cancel = true;
}

ui::Layout WizardPage::ContentLayout() {
  ui::WizardParts parts;
  parts.band = &TitleImage;
  parts.logo = &Logo;
  parts.title = &Title;
  parts.description = &Description;
  parts.line1 = &Line1;
  parts.tree = &TreeView1;
  parts.line2 = Line2.get();
  parts.help = Help.get();
  parts.buttons = {Back.get(), Next.get(), Finsh.get(), Save.get(), Cancel.get()};
  return ui::WizardLayout(parts, PageLayout());
}

void WizardPage::LeavePage(const std::string& name) { navigator_.GoToPage(name); }

void WizardPage::OnNext() { LeavePage(navigator_.NextPageName()); }

void WizardPage::OnBack() { LeavePage(navigator_.PreviousPageName()); }

void WizardPage::OnFinish() {
  // Opening a package makes the form anew, and its caption with it.
  const std::string caption = navigator_.FormByName("frmReviewConfiguration").Caption();
  LeavePage(caption);
}

void WizardPage::OnCancel() {
  if (!ConfirmCancel(context_)) return;
  Hide();
  context_.host.EndProgram();
}

void WizardPage::BackToWelcome() {
  navigator_.FormByName("frmWelcome").Show();
  Hide();
}

void WizardPage::OnLoad() {
  InitializePage(context_, *this);
  LoadPage();
}

void WizardPage::OnActivate() {
  if (!Visible()) {
    navigator_.ActivateCurrentPage();
    return;
  }
  navigator_.FillPageTree(TreeView1);
  ActivatePage();
}

bool WizardPage::OnQueryUnload() {
  if (navigator_.UnloadingPages()) return true;
  if (!ConfirmCancel(context_)) return false;
  Hide();
  context_.host.EndProgram();
  return true;
}

void WizardPage::OnNodeClick(int index) {
  if (RightButtonDown) return;
  const std::string caption = TreeView1.Node(index).text;
  if (!navigator_.IsPageBlocked(caption)) LeavePage(caption);
}

}  // namespace kw
