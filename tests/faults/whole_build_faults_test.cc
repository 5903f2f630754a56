// Whole builds by the real program, with every system call on a file made to fail in turn, in the wizard and
// in the tools that it starts, and with the process killed around each call that changes the disk.
//
// A test takes a sample of the calls; with KITWRIGHT_FAULTS=all it takes them all, and with
// KITWRIGHT_FAULTS=N about N.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/faults/package_dump.h"
#include "tests/faults/wizard_run.h"

namespace kw::faults {
namespace {

using ::testing::IsEmpty;

constexpr const char* kDone = "This folder contains your customized";
constexpr const char* kSettingsDone = "This file contains your customized";
constexpr const char* kNotDone = "Kitwright did not complete successfully.";
constexpr const char* kNotOpened = "disabled frmFeatures.Finsh";

/// After how many killed wizards one makes another build.
constexpr int kDeathsForABuild = 4;

struct Scenario {
  const char* name;
  const char* script;
  const char* level;
  const char* output;  ///< the destination, below drive C
  bool optimized = false;
  bool opens = false;  ///< the calls of opening the package count too
};
void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

std::string ScriptOf(const Scenario& scenario) {
  std::string script = ReadHostFile(std::string(KITWRIGHT_SOURCE_DIR "/tests/faults/") + scenario.script);
  const std::string plain = "click frmSourceAndDestination.Optimize\n";
  if (const size_t at = script.find(plain); scenario.optimized && at != std::string::npos)
    script.erase(at, plain.size());
  return script;
}

std::string BuildCommands(const Scenario& scenario) {
  std::string cancels;
  // Whoever is asked gives up.
  for (int i = 0; i < 100; ++i) cancels += "answer Cancel\n";
  std::string commands;
  if (scenario.opens)
    commands =
        "answer OK\n" + cancels + "click frmSourceAndDestination.NextButton\nclick frmFeatures.Finsh\n";
  commands += cancels +
              "click frmReviewConfiguration.Save\nprint frmFinish\nprint frmFinish.lblFinalMessage\nclick "
              "frmFinish.Exit\n";
  if (scenario.opens) commands += "click frmSourceAndDestination.Cancel\n";
  return commands;
}

/// Names of a destination's files that the console alone needs: their loss is a notice.
bool IsConsoleFile(const std::string& name) {
  static const std::set<std::string> kNames = {
      "PkgCatalog.z",     "Install.pkg",      "KT710Det.TxS",    "KT700Det.TxS",       "BCN/PkgCatalog.z",
      "BCN/BC470Det.TxS", "BWK/PkgCatalog.z", "BWK/Install.pkg", "BWK/BulwarkDet.TxS", "BWK/BULWARK80.OVP",
      "BCN470.OVP",       "BULWARK80.OVP",    "ZEDInstall.txs"};
  return kNames.contains(name);
}

/// What a copy that was cut off leaves under a name of its own, which begins with a dot.
bool IsUnfinished(const std::string& name) { return name.substr(name.rfind('/') + 1).starts_with(".kw-"); }

class WholeBuildFaults : public ::testing::TestWithParam<Scenario> {
 protected:
  WholeBuildFaults() : runs_(GetParam().level, ScriptOf(GetParam()), BuildCommands(GetParam())) {
    const Outcome outcome = runs_.Run({});
    EXPECT_TRUE(outcome.Says(kDone) || outcome.Says(kSettingsDone));
    EXPECT_THAT(outcome.Boxes(), IsEmpty());
    good_ = Output();
    good_package_ = DumpOf(PackagePath());
    calls_ = runs_.Calls();
    EXPECT_GT(calls_.size(), 300U);
    EXPECT_LT(calls_.size(), FaultPlan::kMostCalls);
  }

  std::string PackagePath() const {
    return runs_.Folder(GetParam().output) + "/Kte" + GetParam().level + ".msi";
  }
  Contents Output() const { return ContentsOf(runs_.Folder(GetParam().output)); }

  /// Which of the calls that `wanted` holds of are to suffer, as their number among those of `kinds`.
  /// In a sample each kind of call on each file of each program comes once before any comes twice.
  std::vector<uint32_t> Choose(uint32_t kinds, uint32_t wanted,
                               const std::function<bool(const CountedCall&)>& filter = nullptr) const {
    struct Choice {
      uint32_t number;
      uint32_t times_before;
    };
    std::vector<Choice> choices;
    std::map<std::string, uint32_t> seen;
    uint32_t number = 0;
    for (const CountedCall& call : calls_) {
      if ((call.kind & kinds) == 0) continue;
      ++number;
      if ((call.kind & wanted) == 0 || (filter && !filter(call))) continue;
      std::string path = call.path;
      std::erase_if(path, [](char c) { return c >= '0' && c <= '9'; });
      choices.push_back({number, seen[std::string(call.program) + call.call + path]++});
    }
    const char* asked = std::getenv("KITWRIGHT_FAULTS");
    const size_t limit = !asked                        ? 4
                         : std::string(asked) == "all" ? choices.size()
                                                       : std::strtoul(asked, nullptr, 10);
    std::stable_sort(choices.begin(), choices.end(),
                     [](const Choice& a, const Choice& b) { return a.times_before < b.times_before; });
    // Of the first of each, some from everywhere.
    const size_t firsts =
        std::max<size_t>(std::count_if(choices.begin(), choices.end(),
                                       [](const Choice& choice) { return choice.times_before == 0; }),
                         std::min(limit, choices.size()));
    std::vector<uint32_t> numbers;
    for (size_t i = 0; i < std::min(limit, firsts); ++i) {
      const size_t at = limit >= firsts ? i : i * firsts / limit;
      numbers.push_back(choices[at].number);
    }
    std::sort(numbers.begin(), numbers.end());
    if (asked) std::cout << numbers.size() << " of " << choices.size() << " calls" << std::endl;
    return numbers;
  }

  /// What must hold after every run, whatever happened.
  void ExpectMachineUnharmed(bool killed) {
    for (const std::string& changed : runs_.ChangedFiles()) {
      // Between the swap of the live list and its return lies no other way back than the run itself.
      if (killed && changed.find("SiteList") != std::string::npos) continue;
      ADD_FAILURE() << "changed on the machine: " << changed;
    }
  }

  void ExpectNoBranchAfterNextStart() {
    const std::string transcript = runs_.StartAgain();
    EXPECT_NE(transcript.find("page frmWelcome"), std::string::npos) << transcript;
    EXPECT_FALSE(runs_.HasStagingBranches());
  }

  /// True when the program ended by itself and told an end.
  bool EndedWell(const Outcome& outcome) {
    EXPECT_FALSE(outcome.hung);
    EXPECT_TRUE(WIFEXITED(outcome.status) && WEXITSTATUS(outcome.status) == 0) << "status " << outcome.status;
    const bool told = outcome.Says(kDone) || outcome.Says(kSettingsDone) || outcome.Says(kNotDone) ||
                      (GetParam().opens && outcome.Says(kNotOpened));
    EXPECT_TRUE(told);
    return told;
  }

  bool Succeeded(const Outcome& outcome) { return outcome.Says(kDone) || outcome.Says(kSettingsDone); }

  /// A success is what a good build gives, but for what the user was told of.
  void ExpectWholeOutput(const Outcome& outcome, bool nothing_can_be_removed = false) {
    const Contents output = Output();
    const bool told = !outcome.Boxes().empty();
    if (outcome.Says("An unoptimized package was created successfully")) {
      EXPECT_FALSE(DumpOf(PackagePath()).begin()->starts_with("error:")) << "the package that stands";
      for (const char* name : {"Setup.ini", "SETUP.EXE", "BCN/BCN470.msi", "BWK/Bulwark.EXE"})
        EXPECT_TRUE(output.contains(name)) << name;
      return;
    }
    for (const auto& [name, bytes] : good_) {
      const auto place = output.find(name);
      if (place != output.end() && place->second == bytes) continue;
      if (place != output.end() && HoldsSettings(name) && SettingsMayLack(outcome)) {
        // Whoever packs settings is not told of a product's tool that failed to hand out some.
        EXPECT_TRUE(!name.ends_with(".msi") || DumpOf(PackagePath()) == good_package_) << name;
        continue;
      }
      // A script or plug-in for the console that cannot be copied is passed over, and a companion's folder
      // that cannot be looked at is none.
      if (place == output.end() &&
          (name.ends_with(".TxS") || name == "BULWARK80.OVP" || name == "BCN470.OVP"))
        continue;
      if (outcome.call.ends_with(": stat machine/drive_c/Packages/Beaconry")) continue;
      // Neither a line of the descriptor that is not written nor a late copy of the engine's text is told.
      if (place != output.end() && (name.ends_with("Install.pkg") || name == "SIGTERMS.TXT")) continue;
      // What a copy that was given up leaves out is missing in the one program too.
      const bool packed = name == "SETUP.EXE" && GetParam().optimized;
      const bool optional = IsConsoleFile(name) || !IsPackageItself(name) || packed;
      EXPECT_TRUE(told && optional) << name << (place == output.end() ? " is missing" : " is another")
                                    << " and nothing was said";
    }
    for (const auto& [name, bytes] : output) {
      // So is that the trace of the test whether the destination can be written cannot be removed.
      if (GetParam().opens && name == "write.txt") continue;
      // A tool that is killed leaves what it had begun, and the wizard tells that there is no result. That
      // the plain catalogue cannot be removed is passed over.
      EXPECT_TRUE(good_.contains(name) || (told && name.ends_with(".new")) ||
                  name.ends_with("PkgCatalog.XML") || (told && nothing_can_be_removed && IsUnfinished(name)))
          << "too much: " << name;
    }
  }

  static bool HoldsSettings(const std::string& name) {
    return name.ends_with(".msi") || name == "SETUP.EXE" || name == "KTECFG.CAB";
  }

  /// The fault met the settings on their way from the product.
  static bool SettingsMayLack(const Outcome& outcome) {
    for (const char* part :
         {" machine/registry", "/Program Files/", "OasCfg32: ", "OdsCfg32: ", "TxDesk: ", "TxFetch: "}) {
      if (outcome.call.find(part) != std::string::npos) return true;
    }
    return false;
  }

  /// The files without which the output is no package.
  static bool IsPackageItself(const std::string& name) {
    static const std::set<std::string> kNames = {"Kte710.msi", "Kte700.msi", "Setup.ini", "SETUP.EXE",
                                                 "KTECFG.CAB"};
    return kNames.contains(name);
  }

  void ExpectNothingLeft(const Outcome& outcome) {
    EXPECT_THAT(Output(), IsEmpty());
    EXPECT_FALSE(runs_.IsFolder(GetParam().output)) << "the folder that the run made";
    ExpectTempEmpty(outcome);
  }

  void ExpectTempEmpty(const Outcome& outcome) {
    if (outcome.Says("Could not remove temporary files or folders.")) return;
    std::vector<std::string> left;
    for (const auto& [name, bytes] : ContentsOf(runs_.Folder("Temp"))) left.push_back(name);
    EXPECT_THAT(left, IsEmpty()) << "in the temp folder, and nothing was said";
  }

  /// One call suffers, or `times` in a row: the build fails and leaves nothing, or succeeds as ever.
  void SufferAndExpectAll(const Fault& fault, bool must_be_whole = false) {
    SCOPED_TRACE("call " + std::to_string(fault.first));
    const Outcome outcome = runs_.Run(fault);
    SCOPED_TRACE(outcome.call);
    std::string boxes;
    for (const std::string& box : outcome.Boxes()) boxes += box + "\n";
    SCOPED_TRACE(boxes);
    if (EndedWell(outcome)) {
      if (Succeeded(outcome)) {
        ExpectWholeOutput(outcome);
        ExpectTempEmpty(outcome);
      } else {
        EXPECT_FALSE(must_be_whole) << "the build failed";
        EXPECT_FALSE(boxes.empty() && !outcome.Says(kNotDone));
        ExpectNothingLeft(outcome);
      }
    }
    ExpectMachineUnharmed(false);
    ExpectNoBranchAfterNextStart();
  }

  /// All calls suffer from one on, those that tidy up among them: what is left lies where it was, but nothing
  /// is claimed that is not so, and the next start finds its way.
  void SufferForeverAndExpectNoFalseClaim(const Fault& fault) {
    SCOPED_TRACE("from call " + std::to_string(fault.first));
    const Outcome outcome = runs_.Run(fault);
    SCOPED_TRACE(outcome.call);
    std::string told;
    for (const std::string& line : outcome.told) told += line + "\n";
    SCOPED_TRACE(told);
    if (EndedWell(outcome)) {
      if (Succeeded(outcome)) ExpectWholeOutput(outcome, true);
      EXPECT_TRUE(Succeeded(outcome) || !outcome.Boxes().empty());
    }
    ExpectMachineUnharmed(true);
    ExpectNoBranchAfterNextStart();
  }

  /// The wizard dies at one call. Every file in the destination is a whole one, and databases open.
  void DieAndExpectWholeFiles(const Fault& fault) {
    SCOPED_TRACE("call " + std::to_string(fault.first));
    const Outcome outcome = runs_.Run(fault);
    SCOPED_TRACE(outcome.call);
    EXPECT_FALSE(outcome.hung);
    EXPECT_TRUE(outcome.Killed());
    for (const auto& [name, bytes] : Output()) {
      if (name.ends_with('/') || IsUnfinished(name)) continue;
      // What lay there for a moment only, or is filled in a line at a time; the package stands without it.
      if (name.ends_with("Install.pkg") || name.ends_with(".XML") || GetParam().optimized) continue;
      const auto place = good_.find(name);
      EXPECT_TRUE((place != good_.end() && place->second == bytes) ||
                  bytes == ReadHostFile(runs_.Folder("Packages/Kestrane/") + name))
          << name << " is not whole";
    }
    EXPECT_TRUE(Output().contains("PkgCatalog.z") || !Succeeded(outcome));
    for (const std::string& folder : {runs_.Folder("Temp"), runs_.Folder("Out")}) {
      for (const auto& [name, bytes] : ContentsOf(folder)) {
        // Peers need not look at the same bytes again.
        if (!name.ends_with(".msi") || !judged_.insert(std::hash<std::string>()(bytes)).second) continue;
        EXPECT_TRUE(OpensForPeers(folder + "/" + name)) << name;
        EXPECT_FALSE(DumpOf(folder + "/" + name).begin()->starts_with("error:")) << name;
      }
    }
    ExpectMachineUnharmed(true);
    ExpectNoBranchAfterNextStart();
    if (deaths_++ % kDeathsForABuild != 0) return;
    const Outcome afterwards = runs_.RunAfterwards();
    EXPECT_TRUE(EndedWell(afterwards) && Succeeded(afterwards)) << "the next build";
    EXPECT_THAT(afterwards.Boxes(), IsEmpty());
  }

  static bool OpensForPeers(const std::string& msi) {
    const std::string command =
        "{ msiinfo suminfo '" + msi + "' && msiinfo export '" + msi + "' File; } >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
  }

  WizardRuns runs_;
  Contents good_;
  std::set<std::string> good_package_;
  std::vector<CountedCall> calls_;
  int deaths_ = 0;
  std::set<size_t> judged_;  ///< of databases that opened
};

TEST_P(WholeBuildFaults, TwoRunsGiveTheSameBytes) {
  runs_.Run({});
  const Contents again = Output();
  for (const auto& [name, bytes] : good_)
    EXPECT_TRUE(again.contains(name) && again.at(name) == bytes) << name;
  EXPECT_EQ(again.size(), good_.size());
}

TEST_P(WholeBuildFaults, ACallThatFailsWithAnInputOutputErrorFailsTheBuildCleanlyOrIsToldOrHealed) {
  for (const uint32_t number : Choose(kAllCalls, kAllCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, EIO, number, 1});
}

TEST_P(WholeBuildFaults, ACallThatIsDeniedFailsTheBuildCleanlyOrIsToldOrHealed) {
  for (const uint32_t number : Choose(kAllCalls, kDeniedCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, EACCES, number, 1});
}

TEST_P(WholeBuildFaults, ADiskThatIsFullForAMomentFailsTheBuildCleanlyOrIsToldOrHealed) {
  for (const uint32_t number : Choose(kAllCalls, kGrowingCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, ENOSPC, number, 1});
}

TEST_P(WholeBuildFaults, ADiskThatIsFullFromThenOnFailsTheBuildCleanlyOrIsTold) {
  for (const uint32_t number : Choose(kGrowingCalls, kGrowingCalls))
    SufferAndExpectAll({FaultMode::kFail, kGrowingCalls, ENOSPC, number, 1U << 30});
}

TEST_P(WholeBuildFaults, ErrorsThatLastFromThenOnAreNeverTakenForASuccess) {
  const struct {
    int error;
    uint32_t kinds;
  } lasting[] = {{EIO, kAllCalls}, {EACCES, kDeniedCalls}, {EINTR, kInterruptibleCalls}};
  for (const auto& [error, kinds] : lasting) {
    for (const uint32_t number : Choose(kinds, kinds))
      SufferForeverAndExpectNoFalseClaim({FaultMode::kFail, kinds, error, number, 1U << 30});
  }
}

TEST_P(WholeBuildFaults, ADestinationThatIsFullFailsTheBuildCleanlyOrIsTold) {
  const std::string below = std::string("machine/drive_c/") + GetParam().output;
  const auto in_destination = [&](const CountedCall& call) {
    return std::string(call.path).starts_with(below);
  };
  const size_t writes = std::count_if(calls_.begin(), calls_.end(), [&](const CountedCall& call) {
    return in_destination(call) && (call.kind & kGrowingCalls) != 0;
  });
  ASSERT_GT(writes, 1U);
  // From the first, from the last, and from some between.
  for (const size_t step : {0, 1, 2, 3}) {
    Fault fault{FaultMode::kFail, kGrowingCalls, ENOSPC, static_cast<uint32_t>(1 + (writes - 1) * step / 3),
                1U << 30};
    fault.below = GetParam().output;
    SufferAndExpectAll(fault);
  }
}

TEST_P(WholeBuildFaults, ADestinationThatTurnedReadOnlyFailsTheBuildAndIsLeftAsItWas) {
  const std::string destination = runs_.Folder(GetParam().output);
  const Outcome outcome = runs_.Run({}, [&] { ::chmod(destination.c_str(), 0555); });
  EXPECT_TRUE(EndedWell(outcome));
  EXPECT_TRUE(outcome.Says(kNotDone));
  EXPECT_THAT(outcome.Boxes(), ::testing::Not(IsEmpty()));
  ::chmod(destination.c_str(), 0755);
  EXPECT_THAT(Output(), IsEmpty());
  ExpectTempEmpty(outcome);
  ExpectMachineUnharmed(false);
  ExpectNoBranchAfterNextStart();
}

TEST_P(WholeBuildFaults, ASourceThatIsRemovedMeanwhileFailsThePackageCleanlyAndHarmsNoSettingsFile) {
  const Outcome outcome =
      runs_.Run({}, [&] { std::filesystem::remove_all(runs_.Folder("Packages/Kestrane")); });
  EXPECT_TRUE(EndedWell(outcome));
  if (std::string(GetParam().script) == "settings.kw") {
    EXPECT_TRUE(Succeeded(outcome));
    ExpectWholeOutput(outcome);
  } else {
    EXPECT_TRUE(outcome.Says(kNotDone));
    EXPECT_THAT(outcome.Boxes(), ::testing::Not(IsEmpty()));
    ExpectNothingLeft(outcome);
  }
  ExpectNoBranchAfterNextStart();
}

TEST_P(WholeBuildFaults, LinksThatAppearWhereABuildWritesAreReplacedAndNotFollowed) {
  namespace fs = std::filesystem;
  const fs::path elsewhere = runs_.Folder("Temp") + "/elsewhere";
  const auto plant = [&] {
    fs::create_directories(elsewhere / "folder");
    const fs::path destination = runs_.Folder(GetParam().output);
    for (const auto& [name, bytes] : good_) {
      const fs::path place = destination / name.substr(0, name.find('/'));
      if (fs::is_symlink(fs::symlink_status(place))) continue;
      const std::string target = name.find('/') == std::string::npos ? "file-" + name : "folder";
      if (target != "folder") std::ofstream(elsewhere / target) << "precious";
      fs::create_symlink(elsewhere / target, place);
    }
    for (const fs::directory_entry& run : fs::directory_iterator(runs_.Folder("Temp"))) {
      if (run.path() == elsewhere) continue;
      for (const char* name : {"Cab1.DDF", "Cab1.CAB", "Cab1.CAB.new", "SETUP.EXE", "SETUP.EXE.new"}) {
        std::ofstream(elsewhere / name) << "precious";
        if (!fs::exists(run.path() / name)) fs::create_symlink(elsewhere / name, run.path() / name);
      }
    }
  };
  const Outcome outcome = runs_.Run({}, plant);
  EXPECT_TRUE(EndedWell(outcome) && Succeeded(outcome));
  EXPECT_THAT(outcome.Boxes(), IsEmpty());
  // What lies in the destination is packed into the one program.
  if (!GetParam().optimized) ExpectWholeOutput(outcome);
  size_t files = 0;
  for (const auto& [name, bytes] : ContentsOf(elsewhere.string())) {
    EXPECT_TRUE(name == "folder/" || bytes == "precious") << name;
    ++files;
  }
  EXPECT_GT(files, 4U);
  for (const auto& entry : fs::recursive_directory_iterator(runs_.Folder(GetParam().output)))
    EXPECT_FALSE(entry.is_symlink()) << entry.path();
  ExpectMachineUnharmed(false);
}

TEST_P(WholeBuildFaults, ShortReadsAndWritesChangeNothing) {
  for (const uint32_t number : Choose(kAllCalls, kRead | kWrite))
    SufferAndExpectAll({FaultMode::kShort, kAllCalls, 0, number, 1}, true);
  for (const uint32_t number : Choose(kRead | kWrite, kRead | kWrite))
    SufferAndExpectAll({FaultMode::kShort, kRead | kWrite, 0, number, 1U << 30}, true);
}

TEST_P(WholeBuildFaults, InterruptedCallsAreMadeAgain) {
  // The firewall's stand-in library lists its scratch folder by the C++ library, which gives up.
  const auto ours = [](const CountedCall& call) { return !std::string(call.path).starts_with("tmp/"); };
  constexpr uint32_t kInterrupted = kRead | kWrite | kOpenToRead | kOpenToWrite | kSync | kLock;
  for (const uint32_t number : Choose(kAllCalls, kInterrupted, ours))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, EINTR, number, 1}, true);
}

TEST_P(WholeBuildFaults, AToolThatIsKilledFailsTheBuildCleanlyOrIsTold) {
  const auto in_tool = [](const CountedCall& call) { return std::string(call.program) != "kitwright-drive"; };
  for (const FaultMode mode : {FaultMode::kKillBefore, FaultMode::kKillAfter}) {
    for (const uint32_t number : Choose(kAllCalls, kChangingCalls | kRead, in_tool))
      SufferAndExpectAll({mode, kAllCalls, 0, number, 1});
  }
}

TEST_P(WholeBuildFaults, AWizardThatIsKilledLeavesWholeFilesAndNothingAfterItsNextStart) {
  for (const FaultMode mode : {FaultMode::kKillWizardBefore, FaultMode::kKillWizardAfter}) {
    for (const uint32_t number : Choose(kAllCalls, kChangingCalls))
      DieAndExpectWholeFiles({mode, kAllCalls, 0, number, 1});
  }
}

/// Faults from the moment at which the source page is left; the package is then built as it was opened.
class OpeningFaults : public WholeBuildFaults {
 protected:
  OpeningFaults() {
    const auto built = std::find_if(calls_.begin(), calls_.end(), [](const CountedCall& call) {
      return std::string(call.path).find("/ConfigAppData") != std::string::npos;
    });
    EXPECT_NE(built, calls_.end());
    opened_ = static_cast<size_t>(built - calls_.begin());
    EXPECT_GT(opened_, 100U);
  }
  std::vector<uint32_t> ChooseOpening(uint32_t wanted, uint32_t kinds = kAllCalls) const {
    return Choose(kinds, wanted, [this](const CountedCall& call) { return &call < calls_.data() + opened_; });
  }

  size_t opened_ = 0;
};

TEST_P(OpeningFaults, ACallThatFailsWhileAPackageIsOpenedIsToldOrChangesNothing) {
  for (const uint32_t number : ChooseOpening(kAllCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, EIO, number, 1});
  for (const uint32_t number : ChooseOpening(kDeniedCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, EACCES, number, 1});
  for (const uint32_t number : ChooseOpening(kGrowingCalls))
    SufferAndExpectAll({FaultMode::kFail, kAllCalls, ENOSPC, number, 1});
}

TEST_P(OpeningFaults, ErrorsThatLastFromThenOnAreToldAndNeverTakenForASuccess) {
  for (const int error : {EIO, EACCES, ENOSPC}) {
    for (const uint32_t number : ChooseOpening(kAllCalls))
      SufferForeverAndExpectNoFalseClaim({FaultMode::kFail, kAllCalls, error, number, 1U << 30});
  }
}

TEST_P(OpeningFaults, ShortAndInterruptedCallsChangeNothing) {
  // The threads of the unpacking tool make their calls in any order: other kinds than these do not count.
  constexpr uint32_t kMoving = kRead | kWrite;
  constexpr uint32_t kInterrupted = kMoving | kOpenToRead | kOpenToWrite | kSync | kLock;
  for (const uint32_t number : ChooseOpening(kMoving, kMoving))
    SufferAndExpectAll({FaultMode::kShort, kMoving, 0, number, 1}, true);
  for (const uint32_t number : ChooseOpening(kInterrupted, kInterrupted))
    SufferAndExpectAll({FaultMode::kFail, kInterrupted, EINTR, number, 1}, true);
}

TEST_P(OpeningFaults, AToolThatIsKilledIsToldOrChangesNothing) {
  for (const FaultMode mode : {FaultMode::kKillBefore, FaultMode::kKillAfter}) {
    for (const uint32_t number : Choose(kAllCalls, kChangingCalls | kRead, [this](const CountedCall& call) {
           return &call < calls_.data() + opened_ && std::string(call.program) != "kitwright-drive";
         }))
      SufferAndExpectAll({mode, kAllCalls, 0, number, 1});
  }
}

TEST_P(OpeningFaults, AWizardThatIsKilledLeavesNothingAfterItsNextStart) {
  for (const FaultMode mode : {FaultMode::kKillWizardBefore, FaultMode::kKillWizardAfter}) {
    for (const uint32_t number : ChooseOpening(kChangingCalls))
      DieAndExpectWholeFiles({mode, kAllCalls, 0, number, 1});
  }
}

INSTANTIATE_TEST_SUITE_P(
    Openings, OpeningFaults,
    ::testing::Values(Scenario{"package", "opening.kw", "710", "Out/Customised", false, true},
                      Scenario{"package_700", "opening.kw", "700", "Out/Customised", false, true},
                      Scenario{"two_cabinets", "opening_two_cabinets.kw", "710", "Out/Customised", false,
                               true}),
    [](const auto& scenario) { return scenario.param.name; });

INSTANTIATE_TEST_SUITE_P(Builds, WholeBuildFaults,
                         ::testing::Values(Scenario{"package", "everything.kw", "710", "Out/Customised"},
                                           Scenario{"package_700", "everything.kw", "700", "Out/Customised"},
                                           Scenario{"optimized", "everything.kw", "710", "Out/Customised",
                                                    true},
                                           Scenario{"settings", "settings.kw", "710", "Out"}),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
}  // namespace kw::faults
