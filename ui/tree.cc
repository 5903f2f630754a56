#include <utility>

#include "ui/controls.h"

namespace kw::ui {

Tree::Tree(Form& form, std::string name) : Control(form, ControlKind::kTree, std::move(name), "") {}

void Tree::Clear() {
  if (nodes_.empty()) return;
  nodes_.clear();
  selected_ = -1;
  Notify(Change::kItems);
}

int Tree::Add(TreeNode node) {
  nodes_.push_back(std::move(node));
  Notify(Change::kItems);
  return Count() - 1;
}

void Tree::Update(int index, TreeNode node) {
  TreeNode& old = nodes_[static_cast<size_t>(index)];
  node.parent = old.parent;
  old = std::move(node);
  Notify(Change::kItems);
}

int Tree::Find(std::string_view key) const {
  if (key.empty()) return -1;
  for (int i = 0; i < Count(); ++i) {
    if (Node(i).key == key) return i;
  }
  return -1;
}

std::vector<int> Tree::DrawnOrder() const {
  std::vector<std::vector<int>> children(nodes_.size() + 1);
  for (int i = 0; i < Count(); ++i) children[static_cast<size_t>(Node(i).parent + 1)].push_back(i);
  std::vector<int> order;
  std::vector<int> pending(children[0].rbegin(), children[0].rend());
  while (!pending.empty()) {
    const int next = pending.back();
    pending.pop_back();
    order.push_back(next);
    const auto& below = children[static_cast<size_t>(next + 1)];
    pending.insert(pending.end(), below.rbegin(), below.rend());
  }
  return order;
}

int Tree::Depth(int index) const {
  int depth = 0;
  for (int parent = Node(index).parent; parent >= 0; parent = Node(parent).parent) ++depth;
  return depth;
}

void Tree::Select(int index) {
  if (index == selected_ || index < -1 || index >= Count()) return;
  selected_ = index;
  Notify(Change::kSelection);
}

void Tree::UserClickNode(int index, MouseButton button) {
  if (on_mouse_down) on_mouse_down(button);
  Select(index);
  if (on_node_click) on_node_click(index);
}

}  // namespace kw::ui
