#include "rtdb/binding.hpp"

#include <cstring>

namespace lf {

int bind_columns(int statement, void* row, std::span<const ColumnDef> columns) {
  for (const ColumnDef& c : columns) {
    int rc = cli_column(statement, c.name, c.type, nullptr, static_cast<char*>(row) + c.offset);
    if (rc != 0) return rc;
  }
  return 0;
}

void reset_row(void* row, std::span<const ColumnDef> columns) {
  for (const ColumnDef& c : columns) {
    char* p = static_cast<char*>(row) + c.offset;
    switch (c.type) {
      case cli_int4:
        std::memset(p, 0, sizeof(int32_t));
        break;
      case cli_real4:
        std::memset(p, 0, sizeof(float));
        break;
      case cli_real8:
        std::memset(p, 0, sizeof(double));
        break;
      default:
        p[0] = '\0';
        std::memset(p + 1, ' ', kTextWidth - 1);
        break;
    }
  }
}

void strc2f(char* text, int width) {
  char* nul = static_cast<char*>(std::memchr(text, '\0', static_cast<std::size_t>(width)));
  if (nul) std::memset(nul, ' ', static_cast<std::size_t>(text + width - nul));
}

}  // namespace lf
