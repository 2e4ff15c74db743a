// The free-form reader: the first byte picks the kinds of four items, the
// rest is the file, read statement by statement to its end.
#include <cstddef>
#include <cstdint>

#include "fuzz/scratch.hpp"
#include "support/arr.hpp"
#include "support/freeread.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string path = lf::fuzz::scratch() + "/free.txt";
  lf::fuzz::write_file(path, std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
  int32_t i = 0;
  double x = 0;
  lf::Text<20> name;
  std::string s;
  lf::ReadItem items[4];
  for (int k = 0; k < 4; ++k) {
    switch ((data[0] >> (2 * k)) & 3) {
      case 0:
        items[k] = lf::ReadItem::of(i);
        break;
      case 1:
        items[k] = lf::ReadItem::of(x);
        break;
      case 2:
        items[k] = lf::ReadItem::of(name);
        break;
      default:
        items[k] = lf::ReadItem::of(s);
        break;
    }
  }
  lf::FreeReader in(path);
  for (int n = 0; n < 10000 && (in.read(items) || !in.at_end()); ++n)
    if (n % 7 == 3) in.skip();
  return 0;
}
