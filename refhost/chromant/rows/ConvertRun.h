#pragma once

// The run of an instruction set, put together from its transfer functions. Included like
// WideLanes.h.

#include "refhost/chromant/ConversionParams.h"
#include "refhost/chromant/rows/QuickCurves.h"
#include "refhost/chromant/rows/WideTransfer.h"

namespace RefHost {
namespace {

/// Pixels whose light is kept between decoding and encoding.
constexpr std::size_t kBlock = 64;

/// Red, green and blue light of a block.
struct Light {
  alignas(64) double components[3][kBlock];
};

struct Planes {
  float* components[3];
};

template <class Curve>
void DecodeBlock(const Planes& signals, const Curve& curve, Light& light) {
  for (int c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < kBlock; i += kLanes) {
      Store(light.components[c] + i, curve(LoadWidened(signals.components[c] + i)));
    }
  }
}

template <class Curve>
void EncodeBlock(const Light& light, const Curve& curve, const Planes& signals) {
  for (int c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < kBlock; i += kLanes) {
      StoreNarrowed(signals.components[c] + i, curve(Load<WideLanes>(light.components[c] + i)));
    }
  }
}

#if defined(__AVX512F__)

/// From PQ straight to linear floats. False where that is not what is asked for.
bool ConvertQuickly(const ConversionParams& params, const QuickTables& tables,
                    const Planes& planes) {
  constexpr int kPQ = 16;
  constexpr int kLinear = 8;
  if (params.source.transfer != kPQ || params.destination.transfer != kLinear) return false;
  const double white = params.source.whiteNits;
  const QuickPQDecoder decode = {tables, PQDecoder{white}, 10000.0 / white};
  if (params.hasMatrix != 0) {
    const QuickPQTransformer transform = {decode, params.matrix, params.hasCommonGrey != 0};
    const auto& [red, green, blue] = planes.components;
    for (std::size_t i = 0; i < kBlock; i += kLanes) transform(red + i, green + i, blue + i);
    return true;
  }
  for (float* component : planes.components) {
    for (std::size_t i = 0; i < kBlock; i += kLanes) decode(component + i, component + i);
  }
  return true;
}

void EncodeRoot(const Light& light, const QuickTables& tables, const Planes& signals) {
  const QuickRoot encode = {tables.root24, OddPower{1.0 / 2.4}};
  for (int c = 0; c < 3; ++c) {
    for (std::size_t i = 0; i < kBlock; i += kLanes) {
      encode(light.components[c] + i, signals.components[c] + i);
    }
  }
}

#else

bool ConvertQuickly(const ConversionParams& /*params*/, const QuickTables& /*tables*/,
                    const Planes& /*planes*/) {
  return false;
}

void EncodeRoot(const Light& light, const QuickTables& /*tables*/, const Planes& signals) {
  EncodeBlock(light, OddPower{1.0 / 2.4}, signals);
}

#endif

void Decode(const TransferParams& params, const Planes& signals, Light& light) {
  switch (params.transfer) {
    case 1:
      return DecodeBlock(signals, OddPower{2.4}, light);
    case 4:
      return DecodeBlock(signals, OddPower{2.2}, light);
    case 5:
      return DecodeBlock(signals, OddPower{2.8}, light);
    case 13:
      return DecodeBlock(signals, SrgbDecoder{}, light);
    case 16:
      return DecodeBlock(signals, PQDecoder{params.whiteNits}, light);
    default:
      return DecodeBlock(signals, Identity{}, light);
  }
}

void Encode(const TransferParams& params, const QuickTables& tables, const Light& light,
            const Planes& signals) {
  switch (params.transfer) {
    case 1:
      return EncodeRoot(light, tables, signals);
    case 4:
      return EncodeBlock(light, OddPower{1.0 / 2.2}, signals);
    case 5:
      return EncodeBlock(light, OddPower{1.0 / 2.8}, signals);
    case 13:
      return EncodeBlock(light, SrgbEncoder{}, signals);
    case 16:
      return EncodeBlock(light, PQEncoder{params.whiteNits}, signals);
    default:
      return EncodeBlock(light, Identity{}, signals);
  }
}

/// ConvertPrimaries, or TransformByMatrix3 where grey has no claim to stay grey.
void Transform(const double* m, bool keepsGrey, Light& light) {
  auto& [reds, greens, blues] = light.components;
  for (std::size_t i = 0; i < kBlock; i += kLanes) {
    const WideLanes from[3] = {Load<WideLanes>(reds + i), Load<WideLanes>(greens + i),
                               Load<WideLanes>(blues + i)};
    WideLanes to[3];
    MixLight(m, keepsGrey, from, to);
    Store(reds + i, to[0]);
    Store(greens + i, to[1]);
    Store(blues + i, to[2]);
  }
}

void ConvertBlock(const ConversionParams& params, const QuickTables& tables, const Planes& planes) {
  if (ConvertQuickly(params, tables, planes)) return;
  Light light;
  Decode(params.source, planes, light);
  if (params.hasMatrix != 0) Transform(params.matrix, params.hasCommonGrey != 0, light);
  Encode(params.destination, tables, light, planes);
}

/// In place. What is left over at the end goes through a block of its own, filled up with black.
void ConvertRun(const ConversionParams& params, const QuickTables& tables, float* red, float* green,
                float* blue, std::size_t count) {
  std::size_t done = 0;
  for (; done + kBlock <= count; done += kBlock) {
    ConvertBlock(params, tables, {{red + done, green + done, blue + done}});
  }
  if (done == count) return;
  alignas(64) float rest[3][kBlock] = {};
  const Planes planes = {{red + done, green + done, blue + done}};
  const std::size_t bytes = (count - done) * sizeof(float);
  for (int c = 0; c < 3; ++c) __builtin_memcpy(rest[c], planes.components[c], bytes);
  ConvertBlock(params, tables, {{rest[0], rest[1], rest[2]}});
  for (int c = 0; c < 3; ++c) __builtin_memcpy(planes.components[c], rest[c], bytes);
}

}  // namespace
}  // namespace RefHost
