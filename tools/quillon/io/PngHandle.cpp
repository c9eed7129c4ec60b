#include "tools/quillon/io/PngHandle.h"

#include <cstring>
#include <new>

namespace Quillon::Cli {

namespace {
constexpr std::size_t kMostWarnings = 8;
}

PngHandle::PngHandle(Use use) : use_(use) {
  png_ = use == Use::Read
             ? png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning)
             : png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning);
  if (png_ != nullptr) info_ = png_create_info_struct(png_);
}

PngHandle::~PngHandle() {
  if (use_ == Use::Read) {
    png_destroy_read_struct(&png_, &info_, nullptr);
  } else {
    png_destroy_write_struct(&png_, &info_);
  }
}

void PngHandle::OnError(png_structp png, png_const_charp message) {
  auto* self = static_cast<PngHandle*>(png_get_error_ptr(png));
  std::strncpy(self->error_, message, sizeof(self->error_) - 1);
  png_longjmp(png, 1);
}

void PngHandle::OnWarning(png_structp png, png_const_charp message) {
  auto* self = static_cast<PngHandle*>(png_get_error_ptr(png));
  if (self->warnings_.size() >= kMostWarnings) return;
  try {
    self->warnings_.emplace_back(message);
  } catch (const std::bad_alloc&) {
    // No exception may pass through libpng; the warning is lost.
  }
}

}  // namespace Quillon::Cli
