#include "refhost/chromant/rows/ConvertRunOf.h"

namespace CHR {

void ConvertRunAvx2(const ConversionParams& params, float* red, float* green, float* blue,
                    std::size_t count) {
  ConvertRun(params, red, green, blue, count);
}

}  // namespace CHR
