#include "platform/shared/xml_files.h"

#include "formats/xml_text.h"

namespace kw::platform {
namespace {

using formats::XmlText;

class Node : public XmlNode {
 public:
  explicit Node(pugi::xml_node node) : node_(node) {}

  std::unique_ptr<XmlNode> SelectSingleNode(std::string_view name) override {
    const pugi::xml_node child = node_.child(std::string(name).c_str());
    return child ? std::make_unique<Node>(child) : nullptr;
  }
  std::unique_ptr<XmlNode> AppendElement(std::string_view name) override {
    return std::make_unique<Node>(node_.append_child(std::string(name).c_str()));
  }
  bool HasChildNodes() override { return !node_.first_child().empty(); }
  void RemoveFirstChild() override { node_.remove_child(node_.first_child()); }
  void SetText(std::string_view text) override { XmlText::SetText(node_, text); }
  std::string Text() override { return XmlText::TextOf(node_); }

 private:
  pugi::xml_node node_;
};

class FileDocument : public XmlDocument {
 public:
  explicit FileDocument(FileSystem& files) : files_(files) {}

  Status Load(const std::string& path) override {
    xml_ = std::make_unique<XmlText>();
    KW_ASSIGN_OR_RETURN(const std::string bytes, files_.ReadFile(path));
    auto parsed = XmlText::Parse(bytes);
    if (!parsed.ok()) return {parsed.number(), path + ": " + parsed.error().message};
    xml_ = std::move(*parsed);
    return {};
  }
  Status Save(const std::string& path) override { return files_.WriteFile(path, xml_->Serialize()); }
  std::unique_ptr<XmlNode> Document() override { return std::make_unique<Node>(xml_->Root()); }

 private:
  FileSystem& files_;
  std::unique_ptr<XmlText> xml_ = std::make_unique<XmlText>();
};

}  // namespace

Result<std::unique_ptr<XmlDocument>> XmlFiles::CreateDocument() {
  return std::unique_ptr<XmlDocument>(std::make_unique<FileDocument>(files_));
}

}  // namespace kw::platform
