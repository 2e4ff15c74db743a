#include "rtdb/binding.hpp"

#include <cstring>
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

TEST_F(BindingTest, BinderStopsAtTheFirstRefusedColumnAndLeavesTheRestAtDefault) {
  sql("ALTER TABLE ln DROP COLUMN x1;"
      "INSERT INTO ln (id, r1, bch, q) VALUES ('L1', 0.5, 0.25, 3);");
  int s = open();
  ln_row row;
  std::memset(&row, 0x5a, sizeof row);
  reset(row);
  EXPECT_EQ(row.id[0], '\0');
  EXPECT_EQ(std::string(row.id + 1, 24), std::string(24, ' '));
  int st = cli_statement(s, "select * from ln");
  EXPECT_EQ(bindln(st, row), cli_column_not_found);
  ASSERT_EQ(cli_fetch(st, cli_view_only), 1);
  ASSERT_EQ(cli_get_next(st), cli_ok);
  EXPECT_STREQ(row.id, "L1");
  EXPECT_EQ(row.r1, 0.5f);   // bound before the refused column
  EXPECT_EQ(row.bch, 0.0f);  // behind it: unbound, still the default
  EXPECT_EQ(row.q, 0);
  cli_free(st);
}

TEST(Strc2f, BlanksFromTheFirstNulAndLeavesAFullFieldAlone) {
  char a[8] = {'a', 'b', '\0', 'x', '\0', 'y', 'z', 'w'};
  strc2f(a, 8);
  EXPECT_EQ(std::string(a, 8), "ab      ");
  char b[4] = {'a', 'b', 'c', 'd'};
  strc2f(b, 4);
  EXPECT_EQ(std::string(b, 4), "abcd");
}

}  // namespace
}  // namespace lf::test
