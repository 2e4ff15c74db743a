#include "report/area.hpp"

namespace lf {

AREARec AREA;

}  // namespace lf
