#include "tests/peers/statements_test_support.h"

#include <cstdint>

namespace kw::msi {
namespace {

/// Numbers without an order, the same on every system.
class Chance {
 public:
  size_t Below(size_t count) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<size_t>(state_ >> 33) % count;
  }
  bool OneIn(size_t count) { return Below(count) == 0; }
  template <typename T>
  const T& Of(const std::vector<T>& list) {
    return list[Below(list.size())];
  }

 private:
  uint64_t state_ = 20021123;
};

class Generator {
 public:
  std::string Next() {
    switch (chance_.Below(6)) {
      case 0:
        return Insert();
      case 1:
        return Update();
      case 2:
        return Delete();
      default:
        return Select();
    }
  }

 private:
  struct Column {
    const char* table;
    const char* name;
    bool text;
  };
  using Columns = std::vector<Column>;

  static Columns Of(bool one, bool two) {
    Columns columns;
    if (one) columns = {{"One", "K", true}, {"One", "A", false}, {"One", "B", true}, {"One", "L", false}};
    if (two) {
      for (const Column& column :
           Columns{{"Two", "P", true}, {"Two", "Q", false}, {"Two", "One_", true}, {"Two", "C", true}}) {
        columns.push_back(column);
      }
    }
    return columns;
  }

  std::string Name(const Column& column) {
    if (chance_.OneIn(3)) return "`" + std::string(column.table) + "`.`" + column.name + "`";
    return chance_.OneIn(4) ? std::string(column.name) : "`" + std::string(column.name) + "`";
  }
  std::string Text() {
    return chance_.Of<std::string>(
        {"'a'", "'b'", "'c'", "'E'", "'p'", "'q'", "'x'", "'X'", "'1'", "''", "'gone'", "'first'", "'none'"});
  }
  std::string Number() {
    return chance_.Of<std::string>(
        {"0", "1", "2", "-1", "-7", "5", "9", "100000", "-100000", "32767", "-32767", "2147483647"});
  }
  std::string Constant(const Column& column) { return column.text ? Text() : Number(); }
  std::string Key(const std::string& word) {
    if (!chance_.OneIn(3)) return word;
    std::string upper = word;
    for (char& c : upper) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return upper;
  }

  std::string Test(const Columns& columns) {
    const Column& column = chance_.Of(columns);
    if (chance_.OneIn(5)) return Name(column) + Key(chance_.OneIn(2) ? " is null" : " is not null");
    if (column.text) return Name(column) + (chance_.OneIn(4) ? " <> " : " = ") + Text();
    return Name(column) + " " + chance_.Of<std::string>({"=", "<>", "<", ">", "<=", ">="}) + " " + Number();
  }
  std::string Condition(const Columns& columns, int depth) {
    if (depth == 0 || chance_.OneIn(3)) return Test(columns);
    std::string text = Condition(columns, depth - 1);
    const size_t more = 1 + chance_.Below(2);
    for (size_t i = 0; i < more; ++i)
      text += Key(chance_.OneIn(2) ? " and " : " or ") + Condition(columns, depth - 1);
    return chance_.OneIn(2) ? "(" + text + ")" : text;
  }

  std::string Select() {
    const size_t which = chance_.Below(4);
    const bool join = which >= 2;
    const Columns columns = Of(join || which == 0, join || which == 1);
    std::string sql = Key("select ");
    if (chance_.OneIn(5)) sql += Key("distinct ");
    if (chance_.OneIn(4)) {
      sql += "*";
    } else {
      const size_t count = 1 + chance_.Below(3);
      for (size_t i = 0; i < count; ++i) sql += (i ? ", " : "") + Name(chance_.Of(columns));
    }
    sql += Key(" from ") + (join ? chance_.Of<std::string>({"`One`, `Two`", "`Two`, `One`", "One,Two"})
                                 : std::string(which == 0 ? "`One`" : "`Two`"));
    if (join) {
      sql += Key(" where ") + chance_.Of<std::string>(
                                  {"`K` = `One_`", "`One_` = `K`", "`One`.`K` = `Two`.`One_`", "`A` = `Q`"});
      if (chance_.OneIn(2)) sql += Key(" and ") + "(" + Condition(columns, 1) + ")";
    } else if (!chance_.OneIn(5)) {
      sql += Key(" where ") + Condition(columns, 2);
    }
    if (chance_.OneIn(4)) sql += Key(" order by ") + Name(chance_.Of(columns));
    return sql;
  }

  std::string Insert() {
    const bool one = chance_.OneIn(2);
    const Columns columns = Of(one, !one);
    const size_t keys = one ? 1 : 2;
    std::string names;
    std::string values;
    for (size_t i = 0; i < columns.size(); ++i) {
      if (i >= keys && chance_.OneIn(2)) continue;
      names += (i ? ", `" : "`") + std::string(columns[i].name) + "`";
      values += (i ? ", " : "") + (i == 0 ? chance_.Of<std::string>({"'a'", "'p'", "'new'", "'n2'", "''"})
                                          : Constant(columns[i]));
    }
    return Key("insert into ") + (one ? "`One` (" : "`Two` (") + names + Key(") values (") + values + ")" +
           (chance_.OneIn(6) ? Key(" temporary") : "");
  }
  std::string Update() {
    const bool one = chance_.OneIn(2);
    const Columns columns = Of(one, !one);
    const size_t keys = one ? 1 : 2;
    std::string sql = Key("update ") + (one ? "`One`" : "`Two`") + Key(" set ");
    const size_t count = 1 + chance_.Below(columns.size() - keys);
    for (size_t i = 0; i < count; ++i) {
      const Column& column = columns[keys + i];
      sql += (i ? ", `" : "`") + std::string(column.name) + "` = " + Constant(column);
    }
    return chance_.OneIn(4) ? sql : sql + Key(" where ") + Condition(columns, 1);
  }
  std::string Delete() {
    const bool one = chance_.OneIn(2);
    const std::string sql = Key("delete from ") + (one ? "`One`" : "`Two`");
    return chance_.OneIn(5) ? sql : sql + Key(" where ") + Condition(Of(one, !one), 1);
  }

  Chance chance_;
};

}  // namespace

std::vector<std::string> TablesOfStatements() {
  return {
      "CREATE TABLE `One` (`K` CHAR(20) NOT NULL, `A` SHORT, `B` CHAR(50) LOCALIZABLE, `L` LONG PRIMARY KEY "
      "`K`)",
      "CREATE TABLE `Two` (`P` CHAR(20) NOT NULL, `Q` SHORT NOT NULL, `One_` CHAR(20), `C` LONGCHAR PRIMARY "
      "KEY "
      "`P`, `Q`)",
      "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('a', 1, 'x', 100000)",
      "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('b', 2, 'y', -100000)",
      "INSERT INTO `One` (`K`, `A`, `B`) VALUES ('c', 0, 'x')",
      "INSERT INTO `One` (`K`, `A`, `B`, `L`) VALUES ('d', -7, '1', 5)",
      "INSERT INTO `One` (`K`) VALUES ('E')",
      "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('p', 1, 'a', 'first')",
      "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('p', 2, 'a', 'second')",
      "INSERT INTO `Two` (`P`, `Q`, `One_`, `C`) VALUES ('q', 1, 'b', 'x')",
      "INSERT INTO `Two` (`P`, `Q`, `One_`) VALUES ('r', -1, 'gone')",
      "INSERT INTO `Two` (`P`, `Q`) VALUES ('s', 0)",
  };
}

std::vector<std::string> WrittenSelects() {
  std::vector<std::string> list;
  for (const std::string comparison : {"=", "<>", "<", ">", "<=", ">="}) {
    for (const std::string column : {"A", "L"}) {
      for (const std::string value : {"0", "1", "-7", "100000", "-100000", "2147483647"}) {
        list.push_back("select `K` from `One` where `" + column + "` " + comparison + " " + value);
      }
    }
  }
  for (const std::string comparison : {"=", "<>"}) {
    for (const std::string column : {"K", "B"}) {
      for (const std::string value : {"'a'", "'x'", "'X'", "'1'", "''", "'E'", "'nothing'"}) {
        list.push_back("select `K`, `A` from `One` where `" + column + "` " + comparison + " " + value);
        list.push_back("select * from One where One.`" + column + "`" + comparison + value + " and `A` > 0");
        list.push_back("select * from `One` where (`A` = 2 or `" + column + "` " + comparison + value + ")");
      }
    }
  }
  for (const std::string column : {"K", "A", "B", "L"}) {
    for (const std::string test : {"is null", "IS NOT NULL"}) {
      list.push_back("select `K` from `One` where `" + column + "` " + test);
      list.push_back("select distinct `B` from `One` where `" + column + "` " + test);
      list.push_back("select `K`, `P` from `One`, `Two` where `" + column + "` " + test +
                     " and `K` = `One_`");
    }
    list.push_back("select distinct `" + column + "` from `One`");
    list.push_back("select `One`.`" + column +
                   "`, `Two`.`C` from `One`, `Two` where `One`.`K` = `Two`.`One_`");
    list.push_back("select `" + column + "`, `Q` from `Two`, `One` where `K` = `One_` and `Q` > 1");
    list.push_back("select * from `Two`, `One` where `One_` = `K` and `" + column + "` = 'x'");
    list.push_back("select `" + column + "` from `One` order by `A`");
    list.push_back("select `" + column + "`, `P` from `One`, `Two`");
  }
  list.push_back("select `K`, `P`, `Q` from `One`, `Two` where `A` = `Q`");
  list.push_back("select `K` from `One` where `A` = '1'");
  list.push_back("select `K` from `One` where `K` < 'b'");
  list.push_back("select `K` from `One` where `K` = 'a' and `A` = 1 or `K` = 'b'");
  list.push_back("select `K` from `One` where (`K` = 'a' or `K` = 'b') and (`A` = 1 or `A` = 2)");
  list.push_back("select `Nope` from `One`");
  list.push_back("select `K` from `Missing`");
  list.push_back("select `K` from `One` where `Nope` = 1");
  list.push_back("select `K` from `One` where");
  list.push_back("select from `One`");
  list.push_back("select `K` `A` from `One`");
  list.push_back("select `Table`, `Number`, `Name`, `Type` from `_Columns`");
  list.push_back("select * from `_Tables`");
  return list;
}

std::vector<std::string> WrittenChanges() {
  return {
      "insert into `One` (`K`, `A`) values ('n1', 5)",
      "insert into `One` (`K`, `A`) values ('a', 6)",
      "insert into `One` (`K`, `A`, `B`, `L`) values ('n2', -32767, 'text', 2147483647)",
      "INSERT INTO `One` (`B`, `K`) VALUES ('order of columns', 'n3')",
      "insert into `One` (`K`) values ('')",
      "insert into `One` (`A`) values (5)",
      "insert into `One` (`K`, `A`) values ('big', 40000)",
      "insert into `One` (`K`, `A`) values ('word', 'word')",
      "insert into `Two` (`P`, `Q`) values ('p', 1)",
      "insert into `Two` (`P`, `Q`) values ('p', 3)",
      "insert into `Two` (`P`) values ('no number')",
      "insert into `Missing` (`P`) values ('p')",
      "insert into `One` (`Nope`) values ('p')",
      "update `One` set `A` = 9 where `K` = 'a'",
      "update `One` set `A` = 10, `B` = 'both' where `K` = 'b'",
      "update `One` set `A` = 11 where `B` = 'x'",
      "update `One` set `B` = '' where `K` = 'a'",
      "update `One` set `L` = -5 where `A` = 2 or `A` = 0",
      "update `One` set `B` = 'all'",
      "update `Two` set `C` = 'z' where `P` = 'p' and `Q` = 2",
      "update `Two` set `C` = 'none' where `P` = 'absent'",
      "update `One` set `A` = '12' where `K` = 'c'",
      "update `One` set `Nope` = 1",
      "update `One` set `K` = 'other' where `K` = 'a'",
      "delete from `One` where `K` = 'a'",
      "delete from `One` where `K` = 'absent'",
      "delete from `One` where `A` = 2",
      "delete from `One` where `B` = 'x'",
      "delete from `Two` where `P` = 'p' and `Q` = 1",
      "delete from `Two` where `P` = 'p' or `P` = 's'",
      "delete from `Two`",
      "insert into `One` (`K`) values ('again')",
  };
}

std::vector<std::string> GeneratedStatements(int count) {
  Generator generator;
  std::vector<std::string> list;
  for (int i = 0; i < count; ++i) list.push_back(generator.Next());
  return list;
}

}  // namespace kw::msi
