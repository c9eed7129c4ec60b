#include <OpenColorIO/OpenColorIO.h>

#include "tests/refhost/chromant/Witnesses.h"

namespace OCIO = OCIO_NAMESPACE;

namespace {

std::vector<Rgb> Through(const OCIO::ConstTransformRcPtr& transform, std::vector<Rgb> pixels) {
  const auto processor = OCIO::Config::CreateRaw()->getProcessor(transform);
  // The default optimisation trades accuracy for speed.
  const auto cpu = processor->getOptimizedCPUProcessor(OCIO::OPTIMIZATION_NONE);
  for (Rgb& pixel : pixels) cpu->applyRGB(pixel.data());
  return pixels;
}

}  // namespace

std::vector<Rgb> ThroughOcioBuiltin(std::vector<Rgb> pixels, const char* style) {
  const auto transform = OCIO::BuiltinTransform::Create();
  transform->setStyle(style);
  return Through(transform, std::move(pixels));
}

std::vector<Rgb> ThroughOcioPower(std::vector<Rgb> pixels, double exponent) {
  const auto transform = OCIO::ExponentTransform::Create();
  transform->setValue({exponent, exponent, exponent, 1.0});
  transform->setNegativeStyle(OCIO::NEGATIVE_MIRROR);
  return Through(transform, std::move(pixels));
}

std::vector<Rgb> ThroughOcioMonitorCurve(std::vector<Rgb> pixels, double exponent, double offset) {
  const auto transform = OCIO::ExponentWithLinearTransform::Create();
  transform->setGamma({exponent, exponent, exponent, 1.0});
  transform->setOffset({offset, offset, offset, 0.0});
  return Through(transform, std::move(pixels));
}
