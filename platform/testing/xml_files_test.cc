#include "platform/shared/xml_files.h"

#include "platform/testing/fake_file_system.h"
#include "platform/testing/xml_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public XmlUnderTest {
 public:
  FakeUnderTest() { files_.AddFolder("C:\\Work"); }
  XmlFactory& Xml() override { return xml_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  FakeFileSystem files_;
  XmlFiles xml_{files_};
};

INSTANTIATE_TEST_SUITE_P(Fake, XmlContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing
