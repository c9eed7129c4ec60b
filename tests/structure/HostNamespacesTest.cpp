// The host's namespaces are the contract's: headers under host/ declare what is in them, for any
// host. What the reference host adds is in RefHost.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::set<std::string>;

const fs::path kRoot = QUILLON_SOURCE_DIR;

std::vector<std::string> HeaderLines(const fs::path& folder) {
  std::vector<std::string> lines;
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
    if (entry.path().extension() != ".h") continue;
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) lines.push_back(line);
  }
  return lines;
}

/// A line that begins a declaration: one whose first column has a letter, as headers are formatted.
struct Declaration {
  /// The outermost namespace that it is in; empty where that has no name.
  std::string space;
  std::string line;
};

/// How many more braces a line opens than it closes.
int OpenedBraces(const std::string& line) {
  static const std::regex kNoCode(R"(//.*|"[^"]*")");
  const std::string code = std::regex_replace(line, kNoCode, "");
  return static_cast<int>(std::count(code.begin(), code.end(), '{') -
                          std::count(code.begin(), code.end(), '}'));
}

std::vector<Declaration> Declarations(const std::vector<std::string>& lines) {
  static const std::regex kOpening(R"(namespace (?:(\w+)[\w:]* )?\{)");
  std::vector<Declaration> declarations;
  std::string space;
  int depth = 0;
  for (const std::string& line : lines) {
    std::smatch match;
    if (std::regex_match(line, match, kOpening)) {
      if (depth == 0) space = match.str(1);
    } else if (!line.empty() && std::isalpha(static_cast<unsigned char>(line[0])) != 0) {
      declarations.push_back({space, line});
    }
    depth += OpenedBraces(line);
    if (depth == 0) space.clear();
  }
  return declarations;
}

Names Namespaces(const std::vector<Declaration>& declarations) {
  Names names;
  for (const Declaration& declaration : declarations) names.insert(declaration.space);
  names.erase("");
  return names;
}

/// Names of the classes whose declarations end in this way.
Names Classes(const std::vector<Declaration>& declarations, const std::string& ending) {
  const std::regex pattern(R"(class (\w+))" + ending);
  Names names;
  for (const Declaration& declaration : declarations) {
    std::smatch match;
    if (std::regex_match(declaration.line, match, pattern)) names.insert(match.str(1));
  }
  return names;
}

/// What headers under host/ say.
struct Contract {
  Names namespaces;
  /// Classes that they name and leave to the host.
  Names openClasses;
};

Contract ReadContract() {
  const std::vector<Declaration> declarations = Declarations(HeaderLines("host"));
  Contract contract{Namespaces(declarations), Classes(declarations, ";")};
  for (const std::string& whole : Classes(declarations, R"( \{)")) {
    contract.openClasses.erase(whole);
  }
  return contract;
}

/// The declarations in the contract's namespaces, but for classes that it leaves to the host.
std::vector<std::string> Additions(const std::vector<std::string>& lines,
                                   const Contract& contract) {
  std::vector<std::string> additions;
  for (const Declaration& declaration : Declarations(lines)) {
    if (!contract.namespaces.contains(declaration.space)) continue;
    const Names name = Classes({declaration}, R"( \{)");
    if (name.empty() || !contract.openClasses.contains(*name.begin())) {
      additions.push_back(declaration.line);
    }
  }
  return additions;
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

TEST(HostNamespaces, AreThoseOfTheContract) {
  const Contract contract = ReadContract();
  EXPECT_THAT(contract.namespaces,
              ElementsAre("CHR", "IL", "KS", "PX", "Quillon", "orvcore", "orvmediatypes"));
  EXPECT_THAT(contract.openClasses, ElementsAre("AsyncExecutor", "RecycledMemory"));
}

TEST(HostNamespaces, GetNothingFromTheReferenceHost) {
  EXPECT_THAT(Additions(HeaderLines("refhost"), ReadContract()), IsEmpty());
}

TEST(HostNamespaces, StandBesideTheReferenceHostsOne) {
  Names others = Namespaces(Declarations(HeaderLines("refhost")));
  for (const std::string& name : ReadContract().namespaces) others.erase(name);
  EXPECT_THAT(others, ElementsAre("RefHost"));
}

TEST(HostNamespaces, WouldBeFoundAddedTo) {
  const Contract contract = ReadContract();
  for (const char* added :
       {"int Added();", "struct Added {", "class Added {", "class Device {", "enum class Added {",
        "inline constexpr int kAdded = 1;", "using Added = int;", "template <class T>"}) {
    const auto lines =
        Lines("namespace KS {\n\n/// Text.\n" + std::string(added) + "\n  int inside;\n");
    EXPECT_THAT(Additions(lines, contract), ElementsAre(added));
  }
  EXPECT_THAT(Additions(Lines("namespace orvcore::allocator {\n\nclass RecycledMemory {\n};\n\n"
                              "}  // namespace orvcore::allocator\n\nnamespace RefHost {\n\n"
                              "int Added();\n\n}  // namespace RefHost\n"),
                        contract),
              IsEmpty());
}

}  // namespace
