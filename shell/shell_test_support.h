#ifndef KITWRIGHT_SHELL_SHELL_TEST_SUPPORT_H_
#define KITWRIGHT_SHELL_SHELL_TEST_SUPPORT_H_

#include <string>
#include <vector>

#include "platform/testing/fake_machine.h"
#include "shell/app.h"
#include "ui/testing/fake_form_host.h"

namespace kw::testing {

/// A form with a list, for what pages add to the review list.
struct ReviewListForm : ui::Form {
  explicit ReviewListForm(ui::FormHost& form_host)
      : Form(form_host, "frmReviewList", "", ui::FormStyle::kDialog), list(*this, "List1") {}
  ui::ListBox list;
  ui::Layout ContentLayout() override { return ui::Place(list); }
};

/// The whole wizard on a machine in memory, with all features of the product installed. Program entry has not
/// run.
struct ShellFixture {
  explicit ShellFixture(FormFactories factories = AllFormFactories())
      : app(machine.services, host, std::move(factories)), table(app.Pages()), run(app.State()) {
    run.HasConsoleFeature = run.HasEmailScanFeature = run.HasOnAccessFeature = true;
    run.HasOnDemandFeature = run.HasAutoUpdateFeature = run.AnyFeatureInstalled = true;
    run.ProductInstalled = true;
  }

  /// Nodes of a page tree: text, then "[IMAGE]", "*" for bold and "-" for grey where they apply.
  static std::vector<std::string> Nodes(const ui::Tree& tree) {
    std::vector<std::string> lines;
    for (int i = 0; i < tree.Count(); ++i) {
      const ui::TreeNode& node = tree.Node(i);
      lines.push_back(node.text + (node.image.empty() ? "" : "[" + node.image + "]") +
                      (node.bold ? "*" : "") + (node.grey ? "-" : ""));
    }
    return lines;
  }

  WizardPage& Page(const std::string& name) { return table.Page(name); }
  /// Clicks the node of that caption in a page's tree.
  void ClickNode(const std::string& page, const std::string& caption,
                 ui::MouseButton button = ui::MouseButton::kLeft) {
    ui::Tree& tree = Page(page).TreeView1;
    for (int i = 0; i < tree.Count(); ++i) {
      if (tree.Node(i).text == caption) return tree.UserClickNode(i, button);
    }
    ADD_FAILURE() << "no node " << caption;
  }
  std::vector<std::string> Take() { return machine.transcript.Take(); }
  /// What happened, without calls of the closed libraries.
  std::vector<std::string> Steps() {
    std::vector<std::string> lines = Take();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("call "); });
    return lines;
  }
  /// Lines that a page adds to the review list.
  template <typename T>
  std::vector<std::string> Choices() {
    ReviewListForm form(host);
    table.Get<T>().AddChoices(form.list);
    return form.list.Items();
  }

  platform::testing::FakeMachine machine;
  ui::testing::FakeFormHost host{machine.transcript};
  WizardApp app;
  PageTable& table;
  RunState& run;
};

}  // namespace kw::testing

#endif  // KITWRIGHT_SHELL_SHELL_TEST_SUPPORT_H_
