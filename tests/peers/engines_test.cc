// The same statements, ours and generated, run by this engine, by the common free library and by Wine's
// Windows Installer, each on the tables as they lie in one file. Where an answer differs from ours,
// `Differences` tells why; a reason that explains nothing any more fails too.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "base/storage.h"
#include "msi/database.h"
#include "tests/peers/engines_test_support.h"
#include "tests/peers/statements_test_support.h"

namespace kw::msi {
namespace {

constexpr int kGenerated = 400;

std::vector<std::string> Everything() {
  std::vector<std::string> all = WrittenSelects();
  for (const std::string& sql : WrittenChanges()) all.push_back(sql);
  for (const std::string& sql : GeneratedStatements(kGenerated)) all.push_back(sql);
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

class EnginesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() / ("kw_engines_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    const auto database = *Database::Open(SystemStorage(), Path("tables.msi"), OpenMode::kCreate);
    for (const std::string& sql : TablesOfStatements()) {
      const auto view = database->OpenView(sql);
      ASSERT_TRUE(view.ok() && (*view)->Execute(nullptr).ok()) << sql;
    }
    ASSERT_TRUE(database->Commit().ok());
    // It complains aloud about statements that it does not take.
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::string Path(const std::string& name) { return (folder_ / name).string(); }

  Answer Ours(const std::string& sql) {
    const auto database = *Database::Open(SystemStorage(), Path("tables.msi"), OpenMode::kTransact);
    return Whole(sql, [&](const std::string& text, const std::string& mark, Answer& answer) {
      OurRows(*database, text, mark, answer);
    });
  }

  Answer Library(const std::string& sql) {
    LibmsiDatabase* database =
        libmsi_database_new(Path("tables.msi").c_str(), LIBMSI_DB_FLAGS_TRANSACT, nullptr, nullptr);
    const Answer answer = Whole(sql, [&](const std::string& text, const std::string& mark, Answer& part) {
      LibraryRows(database, text, mark, part);
    });
    g_object_unref(database);
    return answer;
  }

  template <typename Run>
  static Answer Whole(const std::string& sql, const Run& run) {
    Answer answer;
    run(sql, "", answer);
    if (!IsSelect(sql)) {
      Answer tables;
      run("SELECT * FROM `One`", "One|", tables);
      run("SELECT * FROM `Two`", "Two|", tables);
      answer.rows = tables.rows;
    }
    std::sort(answer.rows.begin(), answer.rows.end());
    return answer;
  }

  /// All answers of Wine's Windows Installer; empty where there is none.
  std::vector<Answer> Wine(const std::vector<std::string>& statements) {
    const char* const program = KITWRIGHT_WINE_STATEMENTS;
    std::vector<Answer> answers;
    if (!std::filesystem::exists(program)) return answers;
    {
      std::ofstream input(Path("statements"));
      for (const std::string& sql : statements) input << sql << "\n";
    }
    const std::string command =
        "cd '" + folder_.string() + "' && export WINEPREFIX='" + Path("prefix") +
        "' WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=d;mshtml=d' && unset DISPLAY && wine '" + program +
        "' tables.msi <statements >answers 2>/dev/null; code=$?; wineserver -k; "
        "exit $code";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::ifstream output(Path("answers"));
    Answer answer;
    for (std::string line; std::getline(output, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (line == ".") {
        std::sort(answer.rows.begin(), answer.rows.end());
        answers.push_back(std::exchange(answer, {}));
      } else if (line.starts_with("=")) {
        answer.ok = line == "= ok";
      } else {
        answer.rows.push_back(line.substr(1));
      }
    }
    EXPECT_EQ(answers.size(), statements.size());
    return answers;
  }

  std::filesystem::path folder_;
};

/// Why an engine may answer otherwise, and by what such a difference is known.
struct Difference {
  const char* reason;
  bool (*explains)(const std::string& sql, const Answer& before, const Answer& ours, const Answer& theirs);
};

bool Holds(const std::string& sql, const char* part) { return sql.find(part) != std::string::npos; }

// That the rows of `all` are those of `some` and more.
bool HoldsMore(const Answer& all, const Answer& some) {
  return all.rows.size() > some.rows.size() &&
         std::includes(all.rows.begin(), all.rows.end(), some.rows.begin(), some.rows.end());
}

// Both others have the same roots and answer alike; what they do stands as it was seen.
constexpr Difference kDifferences[] = {
    {"A delete removes all rows that it finds; theirs pass over the row that moves into the place of a "
     "removed one.",
     [](const std::string& sql, const Answer& before, const Answer& ours, const Answer& theirs) {
       return (sql[0] == 'd' || sql[0] == 'D') && ours.ok && theirs.ok &&
              before.rows.size() >= ours.rows.size() + 2 && HoldsMore(before, theirs);
     }},
    {"A value that a column cannot hold is refused before anything changes, whether a row is concerned or "
     "not; "
     "theirs keep null or half a row, or see no fault where no row is concerned.",
     [](const std::string& sql, const Answer& before, const Answer& ours, const Answer&) {
       const bool beyond =
           Holds(sql, "2147483647") || Holds(sql, "100000") || Holds(sql, "40000") || Holds(sql, "'word'");
       return !IsSelect(sql) && !ours.ok && ours.rows == before.rows && beyond;
     }},
    {"Null is less than every number; to theirs a null short is the number -32768.",
     [](const std::string& sql, const Answer&, const Answer& ours, const Answer& theirs) {
       return IsSelect(sql) && Holds(sql, "-100000") && ours.ok && theirs.ok && ours.rows != theirs.rows;
     }},
    {"A number may stand in quotes, as the wizard writes it; theirs then find nothing.",
     [](const std::string& sql, const Answer&, const Answer& ours, const Answer& theirs) {
       return Holds(sql, "`A` = '1'") && ours.rows == std::vector<std::string>{"a|"} && theirs.rows.empty();
     }},
    {"Text has an order; theirs compare it for equality alone.",
     [](const std::string& sql, const Answer&, const Answer& ours, const Answer& theirs) {
       return Holds(sql, "`K` < 'b'") && ours.ok && !theirs.ok;
     }},
};

/// Compares all answers of another engine with ours.
class Judge {
 public:
  explicit Judge(Answer before) : before_(std::move(before)) {}

  void Compare(const std::string& sql, const Answer& ours, const Answer& theirs) {
    if (ours == theirs) {
      ++same_;
      return;
    }
    for (size_t i = 0; i < std::size(kDifferences); ++i) {
      if (!kDifferences[i].explains(sql, before_, ours, theirs)) continue;
      ++explained_[i];
      return;
    }
    ADD_FAILURE() << sql << "\n  here " << Print(ours) << "\n  there " << Print(theirs);
  }
  void Finish(size_t statements) const {
    size_t explained = 0;
    for (size_t i = 0; i < std::size(kDifferences); ++i) {
      const auto count = explained_.find(i);
      EXPECT_NE(count, explained_.end()) << "no statement shows any more: " << kDifferences[i].reason;
      if (count != explained_.end()) explained += static_cast<size_t>(count->second);
    }
    EXPECT_EQ(same_ + explained, statements);
    EXPECT_GE(same_, 500u);
  }

 private:
  Answer before_;
  size_t same_ = 0;
  std::map<size_t, int> explained_;
};

TEST_F(EnginesTest, TheCommonFreeLibraryAnswersTheSameOrForAReason) {
  const std::vector<std::string> statements = Everything();
  Judge judge(Ours("update `One` set `A` = 1 where `K` = 'absent'"));
  for (const std::string& sql : statements) judge.Compare(sql, Ours(sql), Library(sql));
  judge.Finish(statements.size());
}

TEST_F(EnginesTest, WinesWindowsInstallerAnswersTheSameOrForAReason) {
  const std::vector<std::string> statements = Everything();
  const std::vector<Answer> answers = Wine(statements);
  if (answers.empty()) GTEST_SKIP() << "there is no Wine, or no compiler for its programs";
  Judge judge(Ours("update `One` set `A` = 1 where `K` = 'absent'"));
  for (size_t i = 0; i < statements.size(); ++i)
    judge.Compare(statements[i], Ours(statements[i]), answers[i]);
  judge.Finish(statements.size());
}

}  // namespace
}  // namespace kw::msi
