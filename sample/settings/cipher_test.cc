#include "sample/settings/cipher.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "platform/embedded/temp_machine.h"

namespace kw::sample {
namespace {

class CipherFileTest : public ::testing::Test {
 protected:
  std::string Path(const std::string& name) { return machine_.root() + "/" + name; }
  std::string Content(const std::string& name) {
    return ReadWholeFile(SystemStorage(), Path(name)).value_or("(missing)");
  }
  Status Encipher() { return EncipherFile(SystemStorage(), Path("plain"), Path("sealed")); }
  Status Decipher() { return DecipherFile(SystemStorage(), Path("sealed"), Path("back")); }

  platform::embedded::TempMachine machine_;
};

TEST_F(CipherFileTest, TheTwoOperationsInvertEachOther) {
  for (size_t size : {0u, 1u, 65535u, 65536u, 65537u, 200000u}) {
    std::string plain(size, 'x');
    for (size_t i = 0; i < size; ++i) plain[i] = static_cast<char>(i * 7 % 251);
    machine_.Put("plain", plain);
    ASSERT_TRUE(Encipher().ok()) << size;
    EXPECT_EQ(Content("sealed").find("\x07\x0E\x15\x1C\x23\x2A\x31\x38"), std::string::npos);
    ASSERT_TRUE(Decipher().ok()) << size;
    EXPECT_EQ(Content("back"), plain) << size;
  }
}

TEST_F(CipherFileTest, AChangedByteFailsToDecipherAndLeavesTheTargetAlone) {
  machine_.Put("plain", "Windows Registry Editor");
  machine_.Put("back", "old");
  ASSERT_TRUE(Encipher().ok());
  const std::string sealed = Content("sealed");
  for (size_t i = 0; i < sealed.size(); ++i) {
    std::string damaged = sealed;
    damaged[i] = static_cast<char>(damaged[i] ^ 1);
    machine_.Put("sealed", damaged);
    EXPECT_EQ(Decipher().number(), kErrorInvalidData) << i;
  }
  EXPECT_EQ(Content("back"), "old");
}

TEST_F(CipherFileTest, AShortenedOrLengthenedFileFailsToDecipher) {
  machine_.Put("plain", std::string(65536, 'a'));
  ASSERT_TRUE(Encipher().ok());
  const std::string sealed = Content("sealed");
  for (const std::string& damaged : {std::string(), sealed.substr(0, 20), sealed.substr(0, sealed.size() - 1),
                                     sealed + "x", sealed + sealed.substr(32)}) {
    machine_.Put("sealed", damaged);
    EXPECT_EQ(Decipher().number(), kErrorInvalidData) << damaged.size();
  }
}

TEST_F(CipherFileTest, AMissingSourceFails) { EXPECT_EQ(Encipher().number(), kErrorFileNotFound); }

TEST_F(CipherFileTest, TheSameFileEnciphersDifferentlyEachTime) {
  machine_.Put("plain", "text");
  ASSERT_TRUE(Encipher().ok());
  const std::string first = Content("sealed");
  ASSERT_TRUE(Encipher().ok());
  EXPECT_NE(Content("sealed"), first);
}

TEST(CipherText, KeepsItsLengthAndComesBackInOneBytePages) {
  const std::string clear = *Utf8ToCodePage("Geheim 123 ~äöüß€\"\\", 1252);
  const std::string sealed = CipherText(clear, 1252, true);
  EXPECT_EQ(sealed.size(), clear.size());
  EXPECT_EQ(CipherText(sealed, 1252, false), clear);
  for (size_t i = 0; i < clear.size(); ++i) EXPECT_NE(sealed[i], clear[i]) << i;
}

TEST(CipherText, NeverYieldsNulOrAByteThatThePageDoesNotKnow) {
  for (int page : {1252, 1250, 932, 936, 949, 950}) {
    for (int byte = 1; byte < 256; ++byte) {
      const std::string sealed = CipherText(std::string(40, static_cast<char>(byte)), page, true);
      EXPECT_EQ(sealed.size(), 40u);
      EXPECT_EQ(sealed.find('\0'), std::string::npos);
      if (page != 1252 && byte >= 0x80 && page != 1250) {
        const Result<std::string> back = Utf8ToCodePage(CodePageToUtf8(sealed, page), page);
        EXPECT_EQ(back.value_or(""), sealed) << page << " " << byte;
      }
    }
  }
}

TEST(CipherText, AnEmptyTextStaysEmpty) { EXPECT_EQ(CipherText("", 1252, true), ""); }

}  // namespace
}  // namespace kw::sample
