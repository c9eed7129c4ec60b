#include "tests/curves/CurveDomains.h"

namespace curves {

namespace {

template <class Number>
using Domains = std::map<std::string, Domain<Number>>;

Domains<float> MathDomains() {
  return {
      {"Power",
       {2,
        8.0F,
        {{{},
          {0x1p-34F, 0.25F, 0.4166F, 1.0F, 1.25F, 2.4F, 3.0F, 6.0F, 0x1p23F, 0x1p24F, 0x1p34F}}}}},
      {"PowerOfBase",
       {2, 33.0F, {{{}, {0.5F, 1.0F, 2.0F, 6.0F, 126.0F, 128.0F, 149.0F, 0x1p23F, 0x1p24F}}}}},
      {"Logarithm", {1, 100.0F, {{{}, {1e-15F, 0x1.6a09e6p-1F, 1.0F, 0x1.6a09e6p0F}}}}},
      {"Exponential", {1, 90.0F, {{{}, {0.5F, 1.0F, 87.33654F, 88.72283F, 103.97208F, 707.0F}}}}},
      {"SoftKnee",
       {1,
        6.0F,
        {{{0.5F, 5.0F, 1.0F}, {0.5F, 1.0F, 5.0F}},
         {{0.0F, 5.0F, 1.0F}, {1.0F, 5.0F}},
         {{1.0F, 5.0F, 1.0F}, {1.0F, 5.0F}},
         {{-0.5F, 2.0F, 1.0F}, {0.5F, 1.0F, 2.0F}},
         {{0.25F, 1.0F, 1.0F}, {0.25F, 1.0F}}}}},
      {"Three", {3, 2.0F, {{{}, {0.5F, 1.0F}}}}},
      {"SingleSt2084", {1, 2.0F, {{{}, {0x1p-40F, 0x1p-17F, 0.5F, 1.0F}}}}},
      {"GamutFit", {3, 24.0F, {{{}, {0.5F, 0.9F, 1.0F, 23.0F, 24.0F}}}}},
      {"HalfFloat",
       {1, 70000.0F, {{{}, {0x1p-25F, 0x1p-24F, 0x1p-14F, 1.0F, 65504.0F, 65519.0F, 65520.0F}}}}},
  };
}

Domains<float> ToneMapDomains() {
  return {
      // gain, source peak, knee, destination peak, colour preservation
      {"HuePreservation",
       {3,
        6.0F,
        {{{1.0F, 5.0F, 0.5F, 1.0F, 0.5F}, {1e-15F, 0.5F, 1.0F, 5.0F}},
         {{1.7F, 5.0F, 0.0F, 1.0F, 0.1F}, {1e-15F, 1.0F}},
         {{0.5F, 49.0F, 0.25F, 1.0F, 0.0F}, {0.5F, 2.0F}},
         {{1.0F, 5.0F, 0.5F, 1.0F, 1.0F}, {0.5F, 5.0F}},
         {{1.0F, 1.0F, 0.5F, 1.0F, 0.0F}, {0.5F}}}}},
      // gain, threshold, peak, colour preservation, weights
      {"HighlightDesaturation",
       {3,
        6.0F,
        {{{1.0F, 1.0F, 5.0F, 0.5F, 0.2126F, 0.7152F, 0.0722F}, {1.0F, 5.0F}},
         {{1.5F, 0.25F, 5.0F, 0.0F, 0.2627F, 0.678F, 0.0593F}, {0.16666667F, 3.3333333F}},
         {{1.0F, 2.0F, 1.0F, 0.5F, 0.2126F, 0.7152F, 0.0722F}, {1.0F, 2.0F}},
         {{1.0F, 1.0F, 1.0F, 0.5F, 0.2126F, 0.7152F, 0.0722F}, {1.0F}}}}},
      // gain, rho of HDR and of SDR, input scale, output scale, colour preservation
      {"Bt2446A",
       {3,
        6.0F,
        {{{1.0F, 13.26171F, 7.098651F, 0.2F, 1.0F, 0.5F}, {1e-15F, 1.0F, 5.0F}},
         {{1.3F, 33.0F, 5.696F, 0.0203F, 0.5F, 1.0F}, {1.0F, 50.0F}},
         {{1.0F, 13.26171F, 7.098651F, 1.0F, 2.0F, 0.0F}, {0.5F, 1.0F}},
         {{1.0F, 1.0F, 0.5F, 1.0F, 2.0F, 0.25F}, {1.0F}}}}},
      // knee, a, b, destination peak
      {"Car",
       {3,
        6.0F,
        {{{0.5F, 1.4F, 0.7F, 1.0F}, {1e-15F, 0.5F, 1.0F, 1.5F}},
         {{0.0F, 1.0F, 1.0F, 1.0F}, {1.0F}},
         {{0.9F, 0.2F, 0.3F, 0.8F}, {0.9F, 1.9F}},
         {{-0.5F, 0.0F, 0.0F, 1.0F}, {0.5F}}}}},
  };
}

/// Source black, source range, knee start, black and peak of the destination.
std::vector<Setting<float>> EetfSettings() {
  return {{{0.0F, 0.751827F, 0.6585553F, 0.0F, 0.7723702F}, {1e-15F, 0.49511966F, 0.751827F}},
          {{0.05F, 0.7F, 0.5F, 0.02F, 0.8F}, {1e-15F, 0.05F, 0.4F, 0.75F}},
          {{0.0F, 0.75F, 1.25F, 0.0F, 0.77F}, {0.75F, 1.0F}},
          {{0.1F, 0.65F, 0.3F, -0.5F, 0.6F}, {0.1F, 0.295F, 0.75F}},
          {{0.0F, 0.0F, 0.5F, 0.0F, 1.0F}, {1.0F}}};
}

/// Black and peak of source and destination, reference white, gain, peak, colour preservation.
std::vector<Setting<float>> Bt2390LinearSettings() {
  return {{{0.0F, 0.751827F, 0.0F, 0.5806889F, 203.0F, 1.0F, 4.926F, 0.5F}, {0.5F, 1.0F, 4.926F}},
          {{0.05F, 0.9F, 0.1F, 0.6F, 100.0F, 1.3F, 40.0F, 0.0F}, {1e-6F, 1.0F, 40.0F}},
          {{0.0F, 0.5F, 0.0F, 0.6F, 203.0F, 1.0F, 1.0F, 0.5F}, {0.5F, 1.0F}},
          {{0.5F, 0.5F, 0.0F, 0.5F, 203.0F, 1.0F, 1.0F, 0.5F}, {1.0F}}};
}

Domains<float> GamutDomains() {
  return {
      // weights of red, green and blue
      {"GamutDesaturation",
       {3,
        2.0F,
        {{{0.2126F, 0.7152F, 0.0722F}, {1e-15F, 0.01F, 0.04F, 1.0F, 5.0F}},
         {{0.2627F, 0.678F, 0.0593F}, {1e-15F, 0.04F, 1.0F}},
         {{0.0F, 0.0F, 0.0F}, {1e-15F, 0.22F}}}}},
      // limit
      {"GamutReinhard",
       {3,
        2.0F,
        {{{2.0F}, {1e-15F, 0.02F, 0.08F, 1.0F}},
         {{1.1F}, {1e-15F, 0.1F, 1.0F}},
         {{1.0F}, {0.02F, 1.0F}},
         {{0.5F}, {0.5F, 1.0F}}}}},
  };
}

/// Weights of red, green and blue, peak in nits, gamma.
std::vector<Setting<double>> HlgSettings() {
  return {{{0.2627, 0.678, 0.0593, 1000.0, 1.2}, {1.0 / 12.0, 0.5, 1.0, 1000.0}},
          {{0.2126, 0.7152, 0.0722, 4000.0, 1.4528651971}, {1.0 / 12.0, 0.5, 4000.0}},
          {{0.2627, 0.678, 0.0593, 2.0, 0.0664327}, {0.5, 2.0}},
          {{0.2627, 0.678, 0.0593, 334.0, 1.0}, {0.5, 1.0}}};
}

std::vector<Setting<double>> PowerSettings() {
  std::vector<Setting<double>> settings;
  for (const double exponent : {2.4, 2.2, 2.8, 2.6, 1.0, -0.5, 0.0}) {
    settings.push_back({{exponent}, {0x1p-1020, 1e-15, 0.5, 1.0}});
  }
  return settings;
}

Domains<double> TransferDomains() {
  const double beta = 0.0228215855294448;
  return {
      {"Power64",
       {2, 8.0, {{{}, {0x1p-1020, 0x1p-52, 0.1593017578125, 1.0, 2.4, 78.84375, 1020.0}}}}},
      {"Logarithm64",
       {1, 100.0, {{{}, {0x1p-1020, 0x1.6a09e667f3bcdp-1, 1.0, 0x1.6a09e667f3bcdp0}}}}},
      {"Exponential64", {1, 90.0, {{{}, {0x1p-53, 1.0, 707.0111241711, 709.782712893384}}}}},
      {"DecodeSt2084", {1, 1.0, {{{}, {7.3e-7, 0.5, 0.50807842, 1.0, 1.9908, 1.9909, 1.991}}}}},
      {"EncodeSt2084", {1, 10000.0, {{{}, {0x1p-1020, 1e-6, 100.0, 203.0, 10000.0}}}}},
      {"HlgOetf", {1, 1.0, {{{}, {1.0 / 12.0, 1.0, 0.02372241}}}}},
      {"HlgInverseOetf", {1, 1.0, {{{}, {0.5, 0.55991073, 1.0}}}}},
      {"HlgSystemGamma", {1, 10000.0, {{{}, {0x1p-1010, 2.0, 334.0, 1000.0, 10000.0}}}}},
      {"DecodeHlg", {3, 1.0, HlgSettings()}},
      {"EncodeHlg", {3, 1000.0, HlgSettings()}},
      {"DecodePower", {1, 1.0, PowerSettings()}},
      {"EncodePower", {1, 1.0, PowerSettings()}},
      {"DecodeSrgb", {1, 1.0, {{{}, {0.04045, 0.055, 1.0}}}}},
      {"EncodeSrgb", {1, 1.0, {{{}, {0.0031308, 0.04045 / 12.92, 1.0}}}}},
      {"DecodeSmpte240M", {1, 1.0, {{{}, {4.0 * beta, 1.0}}}}},
      {"EncodeSmpte240M", {1, 1.0, {{{}, {beta, 1.0}}}}},
      {"DecodeSt428", {1, 1.0, {{{}, {48.0 / 52.37, 1.0}}}}},
      {"EncodeSt428", {1, 1.0, {{{}, {52.37 / 48.0, 1.0}}}}},
  };
}

using Numbers = std::vector<double>;

Numbers Joined(Numbers first, const Numbers& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

Domains<double> MatrixDomains() {
  // BT.709 to BT.2020, ITU-R BT.2087-0, and what no conversion has.
  const Numbers wider = {0.6274, 0.3293, 0.0433, 0.0691, 0.9195, 0.0114, 0.0164, 0.088, 0.8956};
  const Numbers identity = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
  const Numbers singular = {1.0, 2.0, 3.0, 2.0, 4.0, 6.0, -1.0, 0.0, 1.0};
  std::vector<Setting<double>> vectors;
  std::vector<Setting<double>> products;
  std::vector<Setting<double>> inverses;
  for (const Numbers& matrix : {wider, identity, singular}) {
    const Numbers lowerRows(matrix.begin() + 3, matrix.end());
    vectors.push_back({matrix, {0.5, 1.0}});
    products.push_back({Joined(lowerRows, wider), {0.5, 1.0}});
    inverses.push_back({lowerRows, {0.5, 1.0}});
  }
  return {{"TransformByMatrix3", {3, 1.0, vectors}},
          {"ConvertPrimaries", {3, 1.0, vectors}},
          {"MultiplyMatrix3", {3, 1.0, products}},
          {"InvertMatrix3", {3, 1.0, inverses}}};
}

}  // namespace

const std::map<std::string, Domain<float>>& FloatDomains() {
  static const Domains<float> kDomains = [] {
    Domains<float> domains = MathDomains();
    domains.merge(ToneMapDomains());
    domains.merge(GamutDomains());
    domains["EetfByChannel"] = {3, 1.0F, EetfSettings()};
    domains["EetfMaxRGB"] = {3, 1.0F, EetfSettings()};
    domains["Bt2390LinearByChannel"] = {3, 6.0F, Bt2390LinearSettings()};
    domains["Bt2390LinearMaxRGB"] = {3, 6.0F, Bt2390LinearSettings()};
    return domains;
  }();
  return kDomains;
}

const std::map<std::string, Domain<double>>& DoubleDomains() {
  static const Domains<double> kDomains = [] {
    Domains<double> domains = TransferDomains();
    domains.merge(MatrixDomains());
    return domains;
  }();
  return kDomains;
}

}  // namespace curves
