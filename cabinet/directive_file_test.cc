#include "cabinet/directive_file.h"

#include <gmock/gmock.h>

namespace kw::cabinet {
namespace {

using testing::HasSubstr;

TEST(DirectiveFile, TheSettingsOfThePackageCabinetAreUnderstood) {
  const auto parsed = ParseDirectives(
      "; Generated from C:\\Temp\\Kte710.msi on 1/2/2003\r\n"
      ".Set CabinetNameTemplate=Cab1*.CAB\r\n.Set CabinetName1=Cab1.CAB\r\n.Set ReservePerCabinetSize=8\r\n"
      ".Set MaxDiskSize=CDROM\r\n.Set CompressionType=MSZIP\r\n"
      ".Set InfFileLineFormat=(*disk#*) *file#*: *file* = *Size*\r\n.Set InfFileName=C:\\Temp\\Cab1.INF\r\n"
      ".Set RptFileName=C:\\Temp\\Cab1.RPT\r\n.Set InfHeader=\r\n.Set InfFooter=\r\n"
      ".Set DiskDirectoryTemplate=C:\\Temp\r\n.Set Compress=ON\r\n.Set Cabinet=ON\r\n"
      "\"C:\\Temp\\CabData\\_id_1 x\" \"_id_1 x\"\r\n");
  ASSERT_TRUE(parsed.ok());
  EXPECT_EQ(parsed->CabinetName(), "Cab1.CAB");
  EXPECT_EQ(parsed->OutputFolder(), "C:\\Temp");
  EXPECT_EQ(parsed->reserved_header, 8);
  EXPECT_EQ(parsed->max_disk_size, 681984000u);
  EXPECT_EQ(parsed->inf_file_line_format, "(*disk#*) *file#*: *file* = *Size*");
  ASSERT_EQ(parsed->files.size(), 1u);
  EXPECT_EQ(parsed->files[0].path, "C:\\Temp\\CabData\\_id_1 x");
  EXPECT_EQ(parsed->files[0].name, "_id_1 x");
  EXPECT_EQ(parsed->files[0].line, 15u);
}

TEST(DirectiveFile, TheSettingsOfTheSettingsCabinetAreUnderstood) {
  const auto parsed = ParseDirectives(
      ".OPTION EXPLICIT\n.Set Cabinet=ON\n.Set Compress=ON\n.Set ReservePerCabinetSize=6144\n"
      ".Set DiskDirectoryTemplate=\n.Set CompressionType=MSZIP\n.Set MaxDiskSize=CDRom\n.Set "
      "CompressionLevel=7\n"
      ".Set RptFileName=C:\\Temp\\KTE700.RPT\n.Set CompressionMemory=21\n"
      ".Set CabinetNameTemplate=\"KTECFG.CAB\"\n.Set DiskDirectoryTemplate=\"C:\\Temp\\Config App\"\n"
      "\"C:\\Temp\\Config App\\KTE700.CFG\"");
  ASSERT_TRUE(parsed.ok());
  EXPECT_EQ(parsed->CabinetName(), "KTECFG.CAB");
  EXPECT_EQ(parsed->OutputFolder(), "C:\\Temp\\Config App");
  EXPECT_EQ(parsed->reserved_header, 6144);
  EXPECT_EQ(parsed->files[0].name, "KTE700.CFG");
}

TEST(DirectiveFile, NamesAndDirectivesAreFoundWithoutRegardToCase) {
  const auto parsed =
      ParseDirectives(".sET  cabinetname1 = X.cab \n.option explicit\n.SET compress=off\nplain name");
  ASSERT_TRUE(parsed.ok());
  EXPECT_EQ(parsed->CabinetName(), "X.cab");
  EXPECT_FALSE(parsed->compress);
  EXPECT_EQ(parsed->files[0].path, "plain");
  EXPECT_EQ(parsed->files[0].name, "name");
}

TEST(DirectiveFile, AStarInATemplateBecomesTheNumberOne) {
  EXPECT_EQ(ParseDirectives(".Set CabinetNameTemplate=Cab*.CAB")->CabinetName(), "Cab1.CAB");
  EXPECT_EQ(ParseDirectives("")->CabinetName(), "1.cab");
  EXPECT_EQ(
      ParseDirectives(".Set DiskDirectoryTemplate=C:\\Disk*\n.Set DiskDirectory1=D:\\x")->OutputFolder(),
      "D:\\x");
}

TEST(DirectiveFile, WhatIsNotKnownIsAnErrorWithTheLinesNumber) {
  for (const char* line : {".Foo", ".Set Unknown=1", ".Set", ".Set =x", ".Set MaxDiskSize=big",
                           ".Option Loose", ".Set CompressionType=LZX", ".Set ReservePerCabinetSize=60001",
                           ".Set Compress=maybe", ".Set CompressionLevel=8", ".Set CabinetNameTemplate=",
                           "\"a\" \"b\" \"c\"", "\"\" \"x\"", "\"C:\\folder\\\""}) {
    const auto parsed = ParseDirectives(std::string("; first\n\n") + line + "\n");
    ASSERT_EQ(parsed.number(), kErrorInvalidData) << line;
    EXPECT_THAT(parsed.error().message, HasSubstr("Line 3:")) << line;
  }
}

}  // namespace
}  // namespace kw::cabinet
