#include "refhost/ironlane/BinaryCache.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <sstream>
#include <system_error>
#include <utility>

#include "refhost/ironlane/CacheFolder.h"

namespace RefHost {

namespace {

/// FNV-1a, 64 bits.
std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  }
  return hash;
}

std::string_view TextOf(const BinaryCache::Binary& binary) {
  return {reinterpret_cast<const char*>(binary.data()), binary.size()};
}

/// What a file begins with: the key in full, and the length and hash of the binary.
std::string HeaderOf(std::string_view key, const BinaryCache::Binary& binary) {
  std::ostringstream header;
  header << "Quillon kernels 1\n"
         << key.size() << '\n'
         << key << '\n'
         << binary.size() << ' ' << HashOf(TextOf(binary)) << '\n';
  return header.str();
}

}  // namespace

BinaryCache::BinaryCache() {
  const std::filesystem::path user = UserCacheFolder();
  if (!user.empty()) folder_ = user / "quillon" / "kernels";
}

BinaryCache::BinaryCache(std::filesystem::path folder) : folder_(std::move(folder)) {}

std::filesystem::path BinaryCache::FileOf(std::string_view key) const {
  std::ostringstream name;
  name << std::hex << HashOf(key) << ".bin";
  return folder_ / name.str();
}

std::optional<BinaryCache::Binary> BinaryCache::Find(std::string_view key) const {
  if (folder_.empty()) return std::nullopt;
  std::ifstream file(FileOf(key), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  // The header says how long the binary is only at its end: look for the key first.
  const std::string start =
      "Quillon kernels 1\n" + std::to_string(key.size()) + '\n' + std::string(key) + '\n';
  const auto lineEnd = text.find('\n', start.size());
  if (!text.starts_with(start) || lineEnd == std::string::npos) return std::nullopt;
  const auto stored = std::as_bytes(std::span(text).subspan(lineEnd + 1));
  const Binary binary(stored.begin(), stored.end());
  if (HeaderOf(key, binary) != std::string_view(text).substr(0, lineEnd + 1)) return std::nullopt;
  return binary;
}

void BinaryCache::Store(std::string_view key, const Binary& binary) const {
  if (folder_.empty()) return;
  std::error_code failure;
  std::filesystem::create_directories(folder_, failure);
  const std::filesystem::path path = FileOf(key);
  // Others may read or write the same at the same time: each writes a file of its own, and moves
  // it.
  std::filesystem::path partial = path;
  partial += '.' + std::to_string(std::random_device{}()) + ".tmp";
  {
    std::ofstream file(partial, std::ios::binary);
    file << HeaderOf(key, binary) << TextOf(binary);
    file.close();
    if (file) std::filesystem::rename(partial, path, failure);
    if (file && !failure) return;
  }
  std::filesystem::remove(partial, failure);
}

void BinaryCache::Forget(std::string_view key) const {
  std::error_code failure;
  if (!folder_.empty()) std::filesystem::remove(FileOf(key), failure);
}

}  // namespace RefHost
