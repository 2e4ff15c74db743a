#include "rtdb/binding.hpp"

#include <vector>

#include "rtdb/rtdbls.hpp"
#include "rtdb/rtlfcase.hpp"
#include "testdb.hpp"

namespace lf::test {
namespace {

using BindingTest = TestDb;

TEST_F(BindingTest, SchemaHasEveryBoundColumnInBinderOrderAndType) {
  std::vector<TableDef> tables;
  for (auto group : {rtdbls_tables(), rtlfcase_tables()})
    tables.insert(tables.end(), group.begin(), group.end());
  EXPECT_EQ(std::to_string(tables.size()),
            value("SELECT count(*) FROM sqlite_master WHERE type = 'table'"));
  for (const TableDef& t : tables) {
    std::string expected, actual;
    for (const ColumnDef& c : t.columns)
      expected += std::string(c.name) + ":" +
                  (c.type == cli_int4    ? "INT4"
                   : c.type == cli_real4 ? "REAL4"
                   : c.type == cli_real8 ? "REAL8"
                                         : "TEXT") +
                  " ";
    actual = value("SELECT group_concat(name || ':' || type, ' ') || ' ' FROM pragma_table_info('" +
                   std::string(t.name) + "')");
    EXPECT_EQ(actual, expected) << t.name;
  }
}

TEST(Strc2f, BlanksFromTheFirstNulAndLeavesAFullFieldAlone) {
  char a[8] = {'a', 'b', '\0', 'x', '\0', 'y', 'z', 'w'};
  strc2f(a, 8);
  EXPECT_EQ(std::string(a, 8), "ab      ");
  strc2f(a, 2);  // a full field
  EXPECT_EQ(std::string(a, 8), "ab      ");
}

}  // namespace
}  // namespace lf::test
