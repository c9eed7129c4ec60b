// What the curves' headers tell, against the texts that say it again: the kernels' arguments and
// the documentation's tables.

#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cpu/GamutCompression.h"
#include "tonemap/Algorithms.h"

namespace {

using Quillon::KernelControl;
using Quillon::KernelSignature;
using Quillon::ParamEntry;
using Quillon::Unit;

/// Floats of kernels by kernel.
using Arguments = std::map<std::string, std::vector<std::string>>;

std::string ReadSource(const char* name) {
  std::ifstream file(std::string(QUILLON_SOURCE_DIR) + "/" + name);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> FloatsIn(const std::string& declaration) {
  static const std::regex kFloat(R"(\bfloat\s+(\w+))");
  std::vector<std::string> names;
  for (std::sregex_iterator found(declaration.begin(), declaration.end(), kFloat), end;
       found != end; ++found) {
    names.push_back((*found)[1]);
  }
  return names;
}

/// The arguments that a text of kernels declares, by themselves or in a macro.
Arguments DeclaredIn(const std::string& text) {
  static const std::regex kMacro(R"(#define (\w+)((?:.*\\\n)*.*\n))");
  static const std::regex kKernel(R"(QUILLON_KERNEL\s+(\w+)\(QUILLON_HEAD,\s*([^)]*)\))");
  std::map<std::string, std::string> macros;
  for (std::sregex_iterator found(text.begin(), text.end(), kMacro), end; found != end; ++found) {
    macros[(*found)[1]] = (*found)[2];
  }
  Arguments declared;
  for (std::sregex_iterator found(text.begin(), text.end(), kKernel), end; found != end; ++found) {
    const std::string list = (*found)[2];
    const auto macro = macros.find(list);
    declared[(*found)[1]] = FloatsIn(macro == macros.end() ? list : macro->second);
  }
  return declared;
}

std::string NameOf(KernelControl control) {
  switch (control) {
    case KernelControl::Peak:
      return "peak";
    case KernelControl::PeakGain:
      return "gain";
    case KernelControl::ColorPreservation:
      return "colorPreservation";
  }
  return "";
}

std::vector<std::string> FloatsOf(const KernelSignature& kernel,
                                  std::span<const ParamEntry> entries) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < kernel.floatCount; ++i) {
    const Quillon::KernelFloat& source = kernel.floats[i];
    names.push_back(source.control ? NameOf(*source.control)
                                   : std::string(entries[source.entry].id));
  }
  return names;
}

Arguments ToldByTheHeaders() {
  Arguments told;
  const auto add = [&](const auto& curves) {
    for (const auto& curve : curves) {
      told[std::string(curve.kernel.name)] = FloatsOf(curve.kernel, curve.entries);
    }
  };
  add(Quillon::kToneCurves);
  add(Quillon::kGamutCurves);
  return told;
}

TEST(KernelText, DeclaresTheFloatsThatTheCurvesHeadersTellInTheirOrder) {
  const Arguments declared = DeclaredIn(ReadSource("kernels/ToneMapMain.cl"));
  EXPECT_EQ(declared.size(), Quillon::kToneCurves.size() + Quillon::kGamutCurves.size());
  EXPECT_EQ(declared, ToldByTheHeaders());
}

TEST(KernelText, IsReadWithItsMacros) {
  const Arguments expected = {{"First", {"a", "bC"}}, {"Second", {"peak", "knee", "gain"}}};
  EXPECT_EQ(DeclaredIn("#define QUILLON_HEAD int x\n"
                       "#define ARGUMENTS float peak, \\\n  float knee, float gain\n#define B c\n"
                       "QUILLON_KERNEL First(QUILLON_HEAD, float a,\n   float bC) { float d; }\n"
                       "QUILLON_KERNEL Second(QUILLON_HEAD, ARGUMENTS) {\n  f(g);\n}\n"),
            expected);
}

std::string NameOf(Unit unit) {
  switch (unit) {
    case Unit::None:
      return "";
    case Unit::Linear:
      return "linear light";
    case Unit::Nits:
      return "nits";
    case Unit::PQCode:
      return "PQ code value";
    case Unit::PQShare:
      return "share of the source's PQ range";
  }
  return "";
}

std::string KneeOf(const Quillon::ToneCurveFacts& curve) {
  if (!curve.knee) return "";
  return std::string(curve.entries[curve.knee->entry].name) +
         (curve.knee->isSetting ? ", by `--knee`" : ", by the peaks");
}

std::string KneeOf(const Quillon::GamutCurveFacts& /*curve*/) { return ""; }

std::string Quoted(std::string_view text) { return '`' + std::string(text) + '`'; }

/// A line a curve.
template <class Curves>
void WriteCurves(const Curves& curves, std::ostream& out) {
  for (const auto& curve : curves) {
    out << "| " << Quoted(curve.id) << " | " << static_cast<int>(curve.type) << " | " << curve.name
        << " | " << KneeOf(curve) << " | " << Quoted(curve.kernel.name) << ':';
    const char* separator = " ";
    for (const std::string& name : FloatsOf(curve.kernel, curve.entries)) {
      out << separator << name;
      separator = ", ";
    }
    out << " |\n";
  }
}

/// A table for each support vector, which curves one after the other may share.
template <class Curves>
void WriteEntries(const Curves& curves, std::ostream& out) {
  for (auto curve = curves.begin(); curve != curves.end();) {
    const auto entries = curve->entries;
    std::string ids;
    for (; curve != curves.end() && curve->entries.data() == entries.data(); ++curve) {
      ids += (ids.empty() ? "" : ", ") + Quoted(curve->id);
    }
    out << "\n| " << ids << " | | given in |\n|---|---|---|\n";
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::string unit = NameOf(entries[i].unit);
      out << "| " << i << " | " << entries[i].name
          << (unit.empty() ? " | |\n" : " | " + unit + " |\n");
    }
  }
}

TEST(AlgorithmsDocument, HasTheTablesOfTheCurvesHeaders) {
  std::ostringstream tables;
  tables << "| | value | name | knee | kernel, and its floats in their order |\n"
            "|---|---|---|---|---|\n";
  WriteCurves(Quillon::kToneCurves, tables);
  WriteCurves(Quillon::kGamutCurves, tables);
  WriteEntries(Quillon::kToneCurves, tables);
  WriteEntries(Quillon::kGamutCurves, tables);
  const std::string document = ReadSource("docs/algorithms.md");
  const std::size_t first = document.find("| | value |");
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(document.substr(first, document.find("\n## ", first) - first), tables.str());
}

}  // namespace
