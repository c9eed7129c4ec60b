#pragma once

#include <csetjmp>
#include <string>
#include <vector>

#include <png.h>

namespace Quillon::Cli {

/// One libpng structure for reading or writing. libpng reports errors by a jump: every call that
/// may fail goes through `Guard`, whose body must own nothing.
class PngHandle {
 public:
  enum class Use { Read, Write };

  explicit PngHandle(Use use);
  ~PngHandle();
  PngHandle(const PngHandle&) = delete;
  PngHandle& operator=(const PngHandle&) = delete;

  /// libpng could allocate its structures.
  bool IsUsable() const { return png_ != nullptr && info_ != nullptr; }
  png_structp Png() const { return png_; }
  png_infop Info() const { return info_; }
  /// libpng's words on the failure that ended the last `Guard`.
  const char* Error() const { return error_; }
  /// libpng's words on chunks that it did not like.
  const std::vector<std::string>& Warnings() const { return warnings_; }

  /// Runs `body`; false when libpng reported an error in it.
  template <class Body>
  bool Guard(const Body& body) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    body();
    return true;
  }

 private:
  static void OnError(png_structp png, png_const_charp message);
  static void OnWarning(png_structp png, png_const_charp message);

  Use use_;
  char error_[128] = "";
  std::vector<std::string> warnings_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
};

}  // namespace Quillon::Cli
