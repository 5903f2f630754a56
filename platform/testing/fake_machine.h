#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_

#include "base/transcript.h"
#include "platform/services.h"
#include "platform/shared/ini_profile_files.h"
#include "platform/shared/pe_file_versions.h"
#include "platform/shared/recording.h"
#include "platform/shared/xml_files.h"
#include "platform/testing/fake_closed_libraries.h"
#include "platform/testing/fake_dialogs.h"
#include "platform/testing/fake_file_system.h"
#include "platform/testing/fake_processes.h"
#include "platform/testing/fake_registry.h"
#include "platform/testing/fake_system.h"

namespace kw::platform::testing {

/// A whole machine in memory for page tests. Everything that happens on it is in `transcript`, in the lines
/// of a script run.
///
///   FakeMachine machine;
///   machine.files.AddFile("C:\\Source\\Setup.ini", "[Startup]\r\n");
///   machine.dialogs.answers = {Answer::kOk};
///   SomeRule(machine.services);
///   EXPECT_THAT(machine.transcript.Take(), ElementsAre("message Done."));
///
/// It begins with the folders "C:\Temp" and the program's "C:\Kitwright", which is the current folder.
struct FakeMachine {
  FakeMachine();
  FakeMachine(const FakeMachine&) = delete;
  FakeMachine& operator=(const FakeMachine&) = delete;

  Transcript transcript;
  FakeFileSystem files;
  FakeDialogs dialogs{transcript};
  FakeProcesses processes{files};
  FakeSystem system;
  FakeRegistry registry;
  IniProfileFiles profiles{files, system};
  XmlFiles xml{files};
  PeFileVersions versions{files};
  FakeClosedLibraries libraries{files};
  RecordingProcesses recorded_processes{processes, transcript};
  RecordingClosedLibraries recorded_libraries{libraries, transcript};
  /// What pages are given.
  Services services;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_MACHINE_H_
