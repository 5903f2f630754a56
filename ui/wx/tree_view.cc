#include <wx/dataview.h>
#include <wx/settings.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "ui/wx/accessibility.h"
#include "ui/wx/art.h"
#include "ui/wx/form_view.h"
#include "ui/wx/label_text.h"
#include "ui/wx/mouse_press.h"
#include "ui/wx/wx_host.h"
#include "ui/wx/wx_text.h"

namespace kw::ui {

namespace {

constexpr int kSignEdge = 16;

wxDataViewItem ItemOf(int index) {
  return wxDataViewItem(reinterpret_cast<void*>(static_cast<intptr_t>(index) + 1));
}

int IndexOf(const wxDataViewItem& item) {
  return static_cast<int>(reinterpret_cast<intptr_t>(item.GetID())) - 1;
}

/// A tree's nodes as the widget asks for them. It keeps a copy, since the widget may ask once more when the
/// form is gone.
class NodeModel : public wxDataViewModel {
 public:
  /// Takes over the nodes of `tree`; true when only their look differs from before.
  bool Take(const Tree& tree) {
    std::vector<TreeNode> nodes;
    for (int i = 0; i < tree.Count(); ++i) nodes.push_back(tree.Node(i));
    bool same = nodes.size() == nodes_.size();
    for (size_t i = 0; same && i < nodes.size(); ++i) same = nodes[i].parent == nodes_[i].parent;
    nodes_ = std::move(nodes);
    with_signs_ = with_signs_ || std::any_of(nodes_.begin(), nodes_.end(),
                                             [](const TreeNode& node) { return !node.image.empty(); });
    return same;
  }

  int Count() const { return static_cast<int>(nodes_.size()); }
  const TreeNode& Node(int index) const { return nodes_[static_cast<size_t>(index)]; }
  /// Keeps room for a sign before every caption.
  void KeepRoomForSigns() { with_signs_ = true; }
  /// The edge of the signs, which grow with the letters beside them.
  void SetSignEdge(int edge) { sign_edge_ = edge; }
  bool Flat() const {
    return std::all_of(nodes_.begin(), nodes_.end(), [](const TreeNode& node) { return node.parent < 0; });
  }

  void GetValue(wxVariant& value, const wxDataViewItem& item, unsigned) const override {
    const TreeNode& node = Node(IndexOf(item));
    const wxSize edge(sign_edge_, sign_edge_);
    wxBitmapBundle sign;
    if (!node.image.empty()) {
      sign = PictureBundle(node.image, edge);
    } else if (with_signs_) {
      sign = BlankBundle(edge);
    }
    value << wxDataViewIconText(ToWx(node.text), sign);
  }

  bool SetValue(const wxVariant&, const wxDataViewItem&, unsigned) override { return false; }

  bool GetAttr(const wxDataViewItem& item, unsigned, wxDataViewItemAttr& attr) const override {
    const TreeNode& node = Node(IndexOf(item));
    attr.SetBold(node.bold);
    if (node.grey) attr.SetColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
    return node.bold || node.grey;
  }

  wxDataViewItem GetParent(const wxDataViewItem& item) const override {
    if (!item.IsOk()) return {};
    const int parent = Node(IndexOf(item)).parent;
    return parent < 0 ? wxDataViewItem() : ItemOf(parent);
  }

  bool IsContainer(const wxDataViewItem& item) const override {
    if (!item.IsOk()) return true;
    const int index = IndexOf(item);
    return std::any_of(nodes_.begin(), nodes_.end(),
                       [index](const TreeNode& node) { return node.parent == index; });
  }

  unsigned GetChildren(const wxDataViewItem& item, wxDataViewItemArray& children) const override {
    const int parent = item.IsOk() ? IndexOf(item) : -1;
    for (int i = 0; i < Count(); ++i) {
      if (Node(i).parent == parent) children.push_back(ItemOf(i));
    }
    return static_cast<unsigned>(children.size());
  }

  bool HasDefaultCompare() const override { return true; }

  int Compare(const wxDataViewItem& first, const wxDataViewItem& second, unsigned, bool) const override {
    return IndexOf(first) - IndexOf(second);
  }

 private:
  std::vector<TreeNode> nodes_;
  bool with_signs_ = false;
  int sign_edge_ = kSignEdge;
};

/// What the sign before a caption says, for those who do not see it.
wxString SignInWords(const TreeNode& node) {
  static const std::map<std::string, wxString, std::less<>> kWords = {{"Installed", "installed"},
                                                                      {"NotInstalled", "not installed"},
                                                                      {"1", "done"},
                                                                      {"2", "done, not available"}};
  const auto found = kWords.find(node.image);
  if (found != kWords.end()) return found->second;
  return node.grey ? "not available" : "";
}

class TreeView : public ControlView {
 public:
  TreeView(FormView& form, Tree& tree, wxWindow* parent)
      : ControlView(form, tree),
        tree_(tree),
        pages_(tree.Name() == "TreeView1"),
        view_(new wxDataViewCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                 wxDV_NO_HEADER | wxDV_SINGLE | (pages_ ? wxBORDER_NONE : wxBORDER_THEME))),
        model_(new NodeModel) {
    if (pages_) model_->KeepRoomForSigns();
    sign_edge_ = ScaledSize(*view_, wxSize(kSignEdge, kSignEdge)).x;
    model_->SetSignEdge(sign_edge_);
    view_->AssociateModel(model_.get());
    column_ = view_->AppendIconTextColumn("", 0, wxDATAVIEW_CELL_INERT, wxCOL_WIDTH_AUTOSIZE);
    view_->SetMinSize(view_->FromDIP(wxSize(200, 120)));
    OnMousePress(*view_, [this](wxPoint point, MouseButton button, bool second) {
      double_click_ = second;
      pressed_ = second ? wxDataViewItem() : ItemAt(point);
      pressed_button_ = button;
    });
    wxWindow* rows = view_->GetMainWindow();
    rows->Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) { Release(event, MouseButton::kLeft); });
    rows->Bind(wxEVT_RIGHT_UP, [this](wxMouseEvent& event) { Release(event, MouseButton::kRight); });
    view_->Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent& event) {
      // A double click was two clicks already; only the keyboard activates.
      if (!std::exchange(double_click_, false)) ClickFromKeyboard(event.GetItem());
    });
    view_->Bind(wxEVT_DATAVIEW_SELECTION_CHANGED, [this](wxDataViewEvent&) { Describe(); });
    view_->Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, [](wxDataViewEvent&) {});
    view_->Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) { Key(event); });
  }

  wxWindow* Window() const override { return view_; }

 protected:
  void ApplyOwn(Changes changes) override {
    if (changes.Has(Change::kItems)) {
      const bool same = model_->Take(tree_);
      if (same) {
        for (int i = 0; i < model_->Count(); ++i) model_->ItemChanged(ItemOf(i));
      } else {
        model_->Cleared();
        if (model_->Flat()) view_->SetIndent(0);
        for (int i = 0; i < model_->Count(); ++i) {
          if (model_->Node(i).expanded && model_->IsContainer(ItemOf(i))) view_->Expand(ItemOf(i));
        }
      }
      FitWidth();
    }
    ApplySelection();
  }

 private:
  /// The page tree shows the present page as selected, others the node that was clicked last.
  void ApplySelection() {
    Select();
    Describe();
  }

  void Describe() {
    const wxDataViewItem item = view_->GetSelection();
    SetAccessibleDescription(view_, item.IsOk() ? SignInWords(model_->Node(IndexOf(item))) : wxString());
  }

  void Select() {
    int wanted = tree_.Selected();
    if (pages_) {
      for (int i = 0; i < model_->Count(); ++i) {
        if (model_->Node(i).bold) wanted = i;
      }
    }
    const wxDataViewItem present = view_->GetSelection();
    if (wanted < 0 || wanted >= model_->Count()) {
      if (present.IsOk()) view_->UnselectAll();
      return;
    }
    if (present == ItemOf(wanted)) return;
    view_->Select(ItemOf(wanted));
    view_->SetCurrentItem(ItemOf(wanted));
    view_->EnsureVisible(ItemOf(wanted));
  }

  /// Asks for the width of the longest caption, in bold, so that no page's name is cut off.
  void FitWidth() {
    if (!pages_) return;
    const wxFont bold = view_->GetFont().Bold();
    int widest = 0;
    for (int i = 0; i < model_->Count(); ++i) {
      int width = 0;
      view_->GetTextExtent(ToWx(model_->Node(i).text), &width, nullptr, nullptr, nullptr, &bold);
      widest = std::max(widest, width);
    }
    const int room = widest + sign_edge_ + view_->FromDIP(44);
    if (room <= view_->GetMinSize().x) return;
    view_->SetMinSize(wxSize(room, view_->GetMinSize().y));
    form_.NeedLayout();
  }

  wxDataViewItem ItemAt(const wxPoint& point) const {
    wxDataViewItem item;
    wxDataViewColumn* column = nullptr;
    view_->HitTest(point, item, column);
    // The sign that opens and closes a node stands before its cell and is no part of it.
    if (item.IsOk() && !model_->Flat() && point.x < view_->GetItemRect(item, column_).x) return {};
    return item;
  }

  void Release(wxMouseEvent& event, MouseButton button) {
    event.Skip();
    const wxDataViewItem item = ItemAt(event.GetPosition());
    if (!item.IsOk() || item != pressed_ || button != pressed_button_) return;
    pressed_ = {};
    // The widget finishes its own work on the event first.
    view_->CallAfter([this, item, button] { Click(item, button); });
  }

  void ClickFromKeyboard(const wxDataViewItem& item) {
    if (!item.IsOk()) return;
    // As with UserByKey.
    view_->CallAfter([this, item] {
      const wxRect place = view_->GetItemRect(item, column_);
      form_.Host().PlacePopup(view_->ClientToScreen(wxPoint(place.x + sign_edge_, place.GetBottom())));
      Click(item, MouseButton::kLeft);
    });
  }

  void Click(const wxDataViewItem& item, MouseButton button) {
    User([&] {
      const int index = IndexOf(item);
      if (index >= 0 && index < tree_.Count()) tree_.UserClickNode(index, button);
    });
    if (form_.Shown()) ApplySelection();
  }

  void Key(wxKeyEvent& event) {
    const int key = event.GetKeyCode();
    const bool acts = key == WXK_RETURN || key == WXK_NUMPAD_ENTER || key == WXK_SPACE || key == WXK_MENU ||
                      key == WXK_WINDOWS_MENU || (key == WXK_F10 && event.ShiftDown());
    const wxDataViewItem item = view_->GetCurrentItem();
    if (!acts || !item.IsOk()) {
      event.Skip();
      return;
    }
    ClickFromKeyboard(item);
  }

  Tree& tree_;
  bool pages_;
  int sign_edge_ = kSignEdge;
  wxDataViewCtrl* view_;
  wxObjectDataPtr<NodeModel> model_;
  wxDataViewColumn* column_ = nullptr;
  wxDataViewItem pressed_;
  MouseButton pressed_button_ = MouseButton::kLeft;
  bool double_click_ = false;
};

}  // namespace

std::unique_ptr<ControlView> MakeTreeView(FormView& form, Tree& tree, wxWindow* parent) {
  return std::make_unique<TreeView>(form, tree, parent);
}

}  // namespace kw::ui
