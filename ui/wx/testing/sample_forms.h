#ifndef KITWRIGHT_UI_WX_TESTING_SAMPLE_FORMS_H_
#define KITWRIGHT_UI_WX_TESTING_SAMPLE_FORMS_H_

#include <string>
#include <vector>

#include "ui/form.h"
#include "ui/wizard_layout.h"

namespace kw::ui::testing {

/// A wizard page with every kind of control, which writes down the events that it gets.
class SamplePage : public Form {
 public:
  SamplePage(FormHost& host, std::string name, std::string caption);
  Layout ContentLayout() override;

  std::vector<std::string> events;
  bool may_close = true;

  Image band{*this, "TitleImage", "TITLEBITMAP"};
  Image logo{*this, "Logo", "LOGO"};
  Label title{*this, "Title", "Sample Page"};
  Label description{*this, "Label4", "Every kind of control, with the events that it sends."};
  Line line1{*this, "Line1"};
  Tree pages{*this, "TreeView1"};
  Label folder_label{*this, "Label2", "&Source folder:"};
  TextBox folder{*this, "SourceDir"};
  Button browse{*this, "SourceBrowse", "B&rowse..."};
  Label password_label{*this, "Label3", "Pass&word:"};
  TextBox password{*this, "Password"};
  CheckBox optimize{*this, "Optimize", "Create an &optimized package"};
  Frame modes{*this, "Frame1", "Mode"};
  Option first{*this, "First", "&First way"};
  Option second{*this, "Second", "S&econd way"};
  Label list_label{*this, "Label5", "&List:"};
  ListBox list{*this, "List1"};
  Label combo_label{*this, "Label6", "&Kind:"};
  ComboBox combo{*this, "Combo1"};
  Grid grid{*this, "Grid1"};
  Tree features{*this, "treFeatures"};
  Label hint{*this, "lblHint", ""};
  Line line2{*this, "Line2"};
  Button help{*this, "Help", "&Help"};
  Button back{*this, "Back", "< &Back"};
  Button next{*this, "Next", "&Next >"};
  Button cancel{*this, "Cancel", "Cancel"};
  PopupMenu menu{"mnuFeatureState", {}};

 protected:
  void OnActivate() override { events.push_back("activate"); }
  bool OnQueryUnload() override {
    events.push_back("close");
    return may_close;
  }

 private:
  void Note(const std::string& event) { events.push_back(event); }
};

/// A modal dialog with a text box, an editor and two buttons that hide it.
class SampleDialog : public Form {
 public:
  SampleDialog(FormHost& host, std::string name);
  Layout ContentLayout() override;

  Label name_label{*this, "Label1", "&Name:"};
  TextBox name{*this, "Name"};
  Editor editor{*this, "Editor1"};
  Button ok{*this, "OK", "OK"};
  Button cancel{*this, "Cancel", "Cancel"};
};

/// The small status window.
class SampleStatus : public Form {
 public:
  explicit SampleStatus(FormHost& host);
  Layout ContentLayout() override { return Place(text); }

  Label text{*this, "lblStatus", "Please wait while the installation database is copied."};
};

}  // namespace kw::ui::testing

#endif  // KITWRIGHT_UI_WX_TESTING_SAMPLE_FORMS_H_
