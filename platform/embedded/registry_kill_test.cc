// A process that writes the registry is killed at every system call that it makes, those of folding the
// journal in at its end among them: what is read afterwards is the old state or the new one.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/embedded/registry.h"
#include "platform/embedded/temp_machine.h"
#include "platform/testing/registry_dump.h"

namespace kw::platform::embedded {
namespace {

using ::testing::AnyOf;
using testing::DumpRegistry;

enum class Ending { kKilled, kFinished, kCannotBeTraced };

// Runs `work` in a process of its own and kills it at its `stop`-th step into or out of the system, counted
// from 0.
Ending KillAtStep(int stop, const std::function<void()>& work) {
  const pid_t pid = ::fork();
  if (pid == 0) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(77);
    ::raise(SIGSTOP);
    work();
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  if (!WIFSTOPPED(status)) return Ending::kCannotBeTraced;
  for (int step = 0; step <= stop; ++step) {
    ::ptrace(PTRACE_SYSCALL, pid, nullptr, nullptr);
    ::waitpid(pid, &status, 0);
    if (WIFEXITED(status)) return Ending::kFinished;
  }
  ::kill(pid, SIGKILL);
  ::waitpid(pid, &status, 0);
  return Ending::kKilled;
}

std::vector<std::string> StateOf(const std::string& root) {
  EmbeddedRegistry registry(root, 1252);
  return DumpRegistry(registry, Hive::kCurrentUser, "");
}

void Set(Registry& registry, const std::string& name, uint32_t number) {
  const auto key = registry.CreateKey(Hive::kCurrentUser, "Software\\X", kKeyAll);
  ASSERT_TRUE(key.ok()) << key.error().message;
  ASSERT_TRUE((*key)->SetValue(name, RegistryValue::OfDword(number)).ok());
}

uint32_t Get(Registry& registry, const std::string& name) {
  const auto key = registry.OpenKey(Hive::kCurrentUser, "Software\\X", kKeyQuery);
  return key.ok() ? (*key)->QueryValue(name, 255).value_or(RegistryValue()).Dword(0xFFFFFFFF) : 0xFFFFFFFF;
}

// On a disk in memory where there is one: what a kill leaves does not depend on the disk, and the waits for a
// real one would make minutes of the many runs.
class EmbeddedRegistryKilled : public ::testing::Test {
 protected:
  EmbeddedRegistryKilled() {
    if (const char* folder = std::getenv("TMPDIR")) saved_ = folder;
    if (::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
  }
  ~EmbeddedRegistryKilled() override {
    ::unsetenv("TMPDIR");
    if (saved_) ::setenv("TMPDIR", saved_->c_str(), 1);
  }

 private:
  std::optional<std::string> saved_;
};

using Change = std::function<void(EmbeddedRegistry&)>;

// Prepares a machine with `before`, then kills `change` at each of its steps in turn, each time from a fresh
// copy.
void KillEverywhere(const std::function<void(const std::string& root)>& before, const Change& change) {
  const TempMachine prepared;
  before(prepared.root());
  const std::vector<std::string> old_state = [&] {
    const TempMachine copy;
    std::filesystem::copy(prepared.root(), copy.root(), std::filesystem::copy_options::recursive);
    return StateOf(copy.root());
  }();
  std::vector<std::string> new_state;
  {
    const TempMachine copy;
    std::filesystem::copy(prepared.root(), copy.root(), std::filesystem::copy_options::recursive);
    EmbeddedRegistry registry(copy.root(), 1252);
    change(registry);
    new_state = DumpRegistry(registry, Hive::kCurrentUser, "");
  }
  bool kept = false;
  bool changed = false;
  for (int stop = 0;; ++stop) {
    const TempMachine machine;
    std::filesystem::copy(prepared.root(), machine.root(), std::filesystem::copy_options::recursive);
    const Ending ending = KillAtStep(stop, [&] {
      EmbeddedRegistry registry(machine.root(), 1252);
      change(registry);
    });
    if (ending == Ending::kCannotBeTraced) GTEST_SKIP() << "processes cannot be traced here";
    EmbeddedRegistry registry(machine.root(), 1252);
    const std::vector<std::string> state = DumpRegistry(registry, Hive::kCurrentUser, "");
    ASSERT_THAT(state, AnyOf(old_state, new_state)) << "killed at step " << stop;
    kept = kept || state == old_state;
    changed = changed || state == new_state;
    Set(registry, "behind", 7);
    EmbeddedRegistry other(machine.root(), 1252);
    EXPECT_EQ(Get(other, "behind"), 7u) << "killed at step " << stop;
    if (ending == Ending::kFinished) break;
  }
  EXPECT_TRUE(kept);
  EXPECT_TRUE(changed);
}

void OneValue(const std::string& root) {
  EmbeddedRegistry registry(root, 1252);
  Set(registry, "n", 1);
}

TEST_F(EmbeddedRegistryKilled, AtAChangeOfOneValue) {
  KillEverywhere(OneValue, [](EmbeddedRegistry& registry) {
    (*registry.OpenKey(Hive::kCurrentUser, "Software\\X", kKeySet))
        ->SetValue("n", RegistryValue::OfDword(2))
        .IgnoreError();
  });
}

TEST_F(EmbeddedRegistryKilled, AtTheFirstChangeOfAMachine) {
  KillEverywhere(
      [](const std::string&) {},
      [](EmbeddedRegistry& registry) {
        registry.CreateKey(Hive::kCurrentUser, "Software\\X\\Deep", kKeyAll).status().IgnoreError();
      });
}

TEST_F(EmbeddedRegistryKilled, AtAnImportOfManyValuesAndDeletions) {
  KillEverywhere(OneValue, [](EmbeddedRegistry& registry) {
    formats::RegFile file;
    file.keys.push_back({"Software\\X", true, {}});
    for (int key = 0; key < 5; ++key) {
      formats::RegFileKey made{"Software\\Y\\" + std::to_string(key), false, {}};
      for (int value = 0; value < 10; ++value) {
        made.values.push_back({"value " + std::to_string(value), false, kRegBinary, std::string(30, 'x')});
      }
      file.keys.push_back(made);
    }
    file.keys.push_back({"Software\\X", false, {}});
    registry.Apply(Hive::kCurrentUser, file).IgnoreError();
  });
}

TEST_F(EmbeddedRegistryKilled, OnAJournalThatAnotherProcessLeft) {
  KillEverywhere(
      [](const std::string& root) {
        OneValue(root);
        const pid_t pid = ::fork();
        if (pid == 0) {
          EmbeddedRegistry registry(root, 1252);
          Set(registry, "n", 2);
          Set(registry, "m", 3);
          ::_exit(0);  // without folding
        }
        ::waitpid(pid, nullptr, 0);
      },
      [](EmbeddedRegistry& registry) {
        (*registry.OpenKey(Hive::kCurrentUser, "Software\\X", kKeySet))->DeleteValue("n").IgnoreError();
      });
}

TEST_F(EmbeddedRegistryKilled, AmongOtherWritersTakesNothingOfTheirs) {
  const TempMachine machine;
  constexpr uint32_t kWriters = 3;
  constexpr uint32_t kValues = 120;
  std::vector<pid_t> writers;
  for (uint32_t writer = 0; writer < kWriters; ++writer) {
    const pid_t pid = ::fork();
    if (pid == 0) {
      EmbeddedRegistry registry(machine.root(), 1252);
      for (uint32_t i = 0; i < kValues; ++i) {
        Set(registry, std::to_string(writer) + "." + std::to_string(i), i);
        if (i % 10 == 0) registry.Flush().IgnoreError();
      }
      ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    writers.push_back(pid);
  }
  for (int stop = 0; stop < 200; stop += 3) {
    const Ending ending = KillAtStep(stop, [&] {
      EmbeddedRegistry registry(machine.root(), 1252);
      for (uint32_t i = 0; i < 20; ++i) {
        Set(registry, "victim", i);
        registry.Flush().IgnoreError();
      }
    });
    if (ending == Ending::kCannotBeTraced) break;
  }
  for (const pid_t pid : writers) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EmbeddedRegistry registry(machine.root(), 1252);
  for (uint32_t writer = 0; writer < kWriters; ++writer) {
    for (uint32_t i = 0; i < kValues; ++i) {
      const std::string name = std::to_string(writer) + "." + std::to_string(i);
      EXPECT_EQ(Get(registry, name), i) << name;
    }
  }
}

}  // namespace
}  // namespace kw::platform::embedded
