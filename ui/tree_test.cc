#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ui/controls.h"
#include "ui/form.h"
#include "ui/testing/fake_form_host.h"

namespace kw::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TreeNode MakeNode(const std::string& text, int parent = -1) {
  TreeNode node;
  node.key = "key " + text;
  node.text = text;
  node.parent = parent;
  return node;
}

class TreeForm : public Form {
 public:
  explicit TreeForm(FormHost& host) : Form(host, "frmTree", "Tree", FormStyle::kPage) {}
  Layout ContentLayout() override { return Place(tree); }
  Tree tree{*this, "tree"};
};

class TreeTest : public ::testing::Test {
 protected:
  std::vector<std::string> Drawn() const {
    std::vector<std::string> texts;
    for (const int index : tree.DrawnOrder()) texts.push_back(tree.Node(index).text);
    return texts;
  }

  Transcript transcript;
  testing::FakeFormHost host{transcript};
  TreeForm form{host};
  Tree& tree = form.tree;
};

TEST_F(TreeTest, DrawsEachNodeBeforeItsChildrenAndSiblingsInOrderOfAdding) {
  const int a = tree.Add(MakeNode("a"));
  const int b = tree.Add(MakeNode("b"));
  tree.Add(MakeNode("b1", b));
  const int a1 = tree.Add(MakeNode("a1", a));
  tree.Add(MakeNode("a2", a));
  const int deep = tree.Add(MakeNode("a1x", a1));
  EXPECT_THAT(Drawn(), ElementsAre("a", "a1", "a1x", "a2", "b", "b1"));
  EXPECT_EQ(tree.Depth(a), 0);
  EXPECT_EQ(tree.Depth(deep), 2);
}

TEST_F(TreeTest, FindsNodesByKeyButNeverByNone) {
  TreeNode keyless = MakeNode("x");
  keyless.key.clear();
  tree.Add(keyless);
  const int a = tree.Add(MakeNode("a"));
  EXPECT_EQ(tree.Find("key a"), a);
  EXPECT_EQ(tree.Find("key b"), -1);
  EXPECT_EQ(tree.Find(""), -1);
}

TEST_F(TreeTest, UpdateKeepsTheNodesPlace) {
  const int a = tree.Add(MakeNode("a"));
  const int child = tree.Add(MakeNode("child", a));
  tree.Update(child, MakeNode("renamed"));
  EXPECT_EQ(tree.Node(child).parent, a);
  EXPECT_EQ(tree.Node(child).text, "renamed");
}

TEST_F(TreeTest, APersonsClickPressesThenClicks) {
  std::vector<std::string> events;
  tree.on_mouse_down = [&](MouseButton button) {
    events.push_back(button == MouseButton::kRight ? "right" : "left");
  };
  tree.on_node_click = [&](int index) { events.push_back("node " + tree.Node(index).text); };
  const int a = tree.Add(MakeNode("a"));
  tree.UserClickNode(a, MouseButton::kRight);
  EXPECT_THAT(events, ElementsAre("right", "node a"));
  EXPECT_EQ(tree.Selected(), a);
  tree.Clear();
  EXPECT_EQ(tree.Selected(), -1);
  EXPECT_THAT(Drawn(), IsEmpty());
  tree.Select(3);
  EXPECT_EQ(tree.Selected(), -1);
}

}  // namespace
}  // namespace kw::ui
