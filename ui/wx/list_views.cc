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
    const auto pick = [this](wxCommandEvent&) {
      User([this] {
        const int index = box_->GetSelection();
        if (index >= 0 && index < list_.Count() && index != list_.Selected()) list_.UserPick(index);
      });
    };
    box_->Bind(wxEVT_LISTBOX, pick);
    box_->Bind(wxEVT_LISTBOX_DCLICK, [this, pick](wxCommandEvent& event) {
      pick(event);
      User([this] {
        if (list_.on_double_click) list_.on_double_click();
      });
    });
    box_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
      const int key = event.GetKeyCode();
      if (key == WXK_DELETE || key == WXK_NUMPAD_DELETE) {
        UserByKey([this] {
          if (list_.on_delete_key) list_.on_delete_key();
        });
      } else if (key == WXK_INSERT || key == WXK_NUMPAD_INSERT) {
        UserByKey([this] {
          if (list_.on_insert_key) list_.on_insert_key();
        });
      } else {
        event.Skip();
      }
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
  ListBox& list_;
  wxListBox* box_;
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
