#include <wx/choice.h>
#include <wx/listbox.h>

#include "ui/wx/form_view.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

/// An entry as the list shows it: a tab is an indent.
wxString EntryText(std::string_view entry) {
  wxString text = ToWx(entry);
  text.Replace("\t", "      ");
  return text;
}

wxArrayString Entries(const std::vector<std::string>& items) {
  wxArrayString entries;
  for (const std::string& item : items) entries.push_back(EntryText(item));
  return entries;
}

class ListBoxView : public ControlView {
 public:
  ListBoxView(FormView& form, ListBox& list, wxWindow* parent)
      : ControlView(form, list),
        list_(list),
        box_(new wxListBox(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, 0, nullptr,
                           wxLB_SINGLE | wxLB_HSCROLL)) {
    box_->SetMinSize(box_->FromDIP(wxSize(180, 96)));
    box_->Bind(wxEVT_LISTBOX, [this](wxCommandEvent&) { Pick(); });
    box_->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
      event.Skip();
      // A click on the entry that is selected already changes nothing, and the widget says nothing of it.
      if (!picked_)
        box_->CallAfter([this, alive = std::weak_ptr<bool>(alive_)] {
          if (!alive.expired()) PickAgain();
        });
    });
    box_->Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent& event) {
      event.Skip();
      picked_ = false;
      press_ = event.GetPosition();
    });
  }

  wxWindow* Window() const override { return box_; }

 protected:
  void ApplyOwn(Changes changes) override {
    if (changes.Has(Change::kItems)) {
      const wxArrayString entries = Entries(list_.Items());
      if (box_->GetStrings() != entries) box_->Set(entries);
    }
    if (box_->GetSelection() == list_.Selected()) return;
    if (list_.Selected() < 0) {
      box_->SetSelection(wxNOT_FOUND);
    } else {
      box_->SetSelection(list_.Selected());
      box_->EnsureVisible(list_.Selected());
    }
  }

 private:
  void Pick() {
    picked_ = true;
    User([this] {
      const int index = box_->GetSelection();
      if (index >= 0 && index < list_.Count()) list_.UserPick(index);
    });
  }

  void PickAgain() {
    const int index = box_->HitTest(press_);
    if (!picked_ && index != wxNOT_FOUND && index == box_->GetSelection()) Pick();
  }

  ListBox& list_;
  wxListBox* box_;
  bool picked_ = true;
  wxPoint press_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

class ComboBoxView : public ControlView {
 public:
  ComboBoxView(FormView& form, ComboBox& combo, wxWindow* parent)
      : ControlView(form, combo), combo_(combo), choice_(new wxChoice(parent, wxID_ANY)) {
    choice_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) {
      User([this] {
        const int index = choice_->GetSelection();
        if (index >= 0 && index < static_cast<int>(combo_.Items().size())) combo_.UserPick(index);
      });
    });
  }

  wxWindow* Window() const override { return choice_; }

 protected:
  void ApplyOwn(Changes changes) override {
    if (changes.Has(Change::kItems)) {
      const wxArrayString entries = Entries(combo_.Items());
      if (choice_->GetStrings() != entries) {
        choice_->Set(entries);
        form_.NeedLayout();
      }
    }
    if (choice_->GetSelection() != combo_.Selected()) choice_->SetSelection(combo_.Selected());
  }

 private:
  ComboBox& combo_;
  wxChoice* choice_;
};

}  // namespace

std::unique_ptr<ControlView> MakeListBoxView(FormView& form, ListBox& list, wxWindow* parent) {
  return std::make_unique<ListBoxView>(form, list, parent);
}

std::unique_ptr<ControlView> MakeComboBoxView(FormView& form, ComboBox& combo, wxWindow* parent) {
  return std::make_unique<ComboBoxView>(form, combo, parent);
}

}  // namespace kw::ui
