#include "refhost/chromant/rows/ConvertRunOf.h"

namespace CHR {

void ConvertRunAvx512(const ConversionParams& params, const QuickTables& tables, float* red,
                      float* green, float* blue, std::size_t count) {
  ConvertRun(params, tables, red, green, blue, count);
}

}  // namespace CHR
