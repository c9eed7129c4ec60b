#include "tools/quillon/plot/DrawScene.h"

#include <cstring>
#include <memory>
#include <new>
#include <numbers>
#include <stdexcept>
#include <string_view>

#include <cairo-svg.h>
#include <cairo.h>

#include "tools/quillon/plot/DrawnText.h"

namespace Quillon::Cli {

namespace {

constexpr const char* kFont = "DejaVu Sans";

struct Release {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, Release>;
using Context = std::unique_ptr<cairo_t, Release>;

void Check(cairo_status_t status) {
  if (status == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("the plot cannot be drawn: ") +
                             cairo_status_to_string(status));
  }
}

void SetColor(cairo_t* context, const Color& color) {
  cairo_set_source_rgb(context, color.red, color.green, color.blue);
}

void DrawPicture(cairo_t* context, const Picture& picture) {
  const Surface surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height));
  Check(cairo_surface_status(surface.get()));
  unsigned char* const data = cairo_image_surface_get_data(surface.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
  auto rgb = picture.rgb.begin();
  for (int y = 0; y < picture.height; ++y) {
    for (std::ptrdiff_t x = 0; x < picture.width; ++x, ++rgb) {
      const std::uint32_t pixel =
          std::uint32_t{(*rgb)[0]} << 16U | std::uint32_t{(*rgb)[1]} << 8U | (*rgb)[2];
      std::memcpy(data + y * stride + 4 * x, &pixel, sizeof pixel);
    }
  }
  cairo_surface_mark_dirty(surface.get());

  cairo_save(context);
  cairo_translate(context, picture.box.x, picture.box.y);
  cairo_scale(context, picture.box.width / picture.width, picture.box.height / picture.height);
  cairo_set_source_surface(context, surface.get(), 0.0, 0.0);
  cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_NEAREST);
  cairo_paint(context);
  cairo_restore(context);
}

void DrawLine(cairo_t* context, const Line& line) {
  cairo_save(context);
  if (line.clip) {
    cairo_rectangle(context, line.clip->x, line.clip->y, line.clip->width, line.clip->height);
    cairo_clip(context);
  }
  SetColor(context, line.color);
  cairo_set_line_width(context, line.width);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  cairo_set_dash(context, line.dashes.data(), static_cast<int>(line.dashes.size()), 0.0);
  for (const Point& point : line.points) cairo_line_to(context, point.x, point.y);
  cairo_stroke(context);
  cairo_restore(context);
}

void DrawDot(cairo_t* context, const Dot& dot) {
  SetColor(context, dot.color);
  cairo_arc(context, dot.center.x, dot.center.y, dot.radius, 0.0, 2.0 * std::numbers::pi);
  cairo_fill(context);
}

void DrawRim(cairo_t* context, const Point& start, const std::string& text) {
  cairo_move_to(context, start.x, start.y);
  cairo_text_path(context, text.c_str());
  cairo_set_source_rgb(context, 1.0, 1.0, 1.0);
  cairo_set_line_width(context, 3.0);
  cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
  cairo_stroke(context);
}

void DrawText(cairo_t* context, const Text& text) {
  cairo_save(context);
  cairo_select_font_face(context, kFont, CAIRO_FONT_SLANT_NORMAL,
                         text.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, text.size);
  cairo_text_extents_t extents{};
  cairo_text_extents(context, text.text.c_str(), &extents);
  const double share = text.anchor == Anchor::Start    ? 0.0
                       : text.anchor == Anchor::Middle ? 0.5
                                                       : 1.0;
  const Point start{-share * extents.x_advance, 0.0};
  cairo_translate(context, text.at.x, text.at.y);
  if (text.upright) cairo_rotate(context, -std::numbers::pi / 2.0);
  if (text.rimmed) DrawRim(context, start, text.text);
  cairo_move_to(context, start.x, start.y);
  SetColor(context, text.color);
  cairo_show_text(context, text.text.c_str());
  cairo_restore(context);
}

Scene WithDrawnTexts(Scene scene) {
  scene.title = DrawnText(scene.title);
  for (Text& text : scene.texts) text.text = DrawnText(text.text);
  return scene;
}

/// The one drawing routine of both formats.
void Draw(cairo_surface_t* surface, const Scene& scene) {
  const Context context(cairo_create(surface));
  cairo_set_source_rgb(context.get(), 1.0, 1.0, 1.0);
  cairo_paint(context.get());
  for (const Picture& picture : scene.pictures) DrawPicture(context.get(), picture);
  for (const Line& line : scene.lines) DrawLine(context.get(), line);
  for (const Dot& dot : scene.dots) DrawDot(context.get(), dot);
  for (const Text& text : scene.texts) DrawText(context.get(), text);
  Check(cairo_status(context.get()));
}

struct SvgSink {
  std::string bytes;
};

/// No exception may pass through cairo.
cairo_status_t OnWrite(void* closure, const unsigned char* data, unsigned length) {
  auto* sink = static_cast<SvgSink*>(closure);
  try {
    sink->bytes.append(reinterpret_cast<const char*>(data), length);
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
  return CAIRO_STATUS_SUCCESS;
}

std::string EscapeXml(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

/// Title and description as the root's first children, where viewers and screen readers look.
void AddDescription(std::string& svg, const Scene& scene) {
  const std::size_t root = svg.find("<svg");
  const std::size_t end = root == std::string::npos ? root : svg.find('>', root);
  if (end == std::string::npos) throw std::runtime_error("the plot's SVG has no root");
  std::string text = "\n<title>" + EscapeXml(scene.title) + "</title>\n<desc>";
  for (const Text& label : scene.texts) text += EscapeXml(label.text) + '\n';
  svg.insert(end + 1, text + "</desc>");
}

}  // namespace

std::string DrawSvg(const Scene& given) {
  const Scene scene = WithDrawnTexts(given);
  SvgSink sink;
  {
    const Surface surface(
        cairo_svg_surface_create_for_stream(OnWrite, &sink, scene.width, scene.height));
    Check(cairo_surface_status(surface.get()));
    cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
    Draw(surface.get(), scene);
    cairo_surface_finish(surface.get());
    Check(cairo_surface_status(surface.get()));
  }
  AddDescription(sink.bytes, scene);
  return std::move(sink.bytes);
}

Bitmap DrawBitmap(const Scene& given) {
  const Scene scene = WithDrawnTexts(given);
  const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, scene.width, scene.height));
  Check(cairo_surface_status(surface.get()));
  Draw(surface.get(), scene);
  cairo_surface_flush(surface.get());

  Bitmap bitmap{scene.width, scene.height, {}};
  bitmap.bgra.reserve(std::size_t{4} * scene.width * scene.height);
  const unsigned char* const data = cairo_image_surface_get_data(surface.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
  for (int y = 0; y < scene.height; ++y) {
    for (std::ptrdiff_t x = 0; x < scene.width; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, data + y * stride + 4 * x, sizeof pixel);
      for (const unsigned shift : {0U, 8U, 16U, 24U}) {
        bitmap.bgra.push_back(static_cast<std::uint8_t>(pixel >> shift & 0xFFU));
      }
    }
  }
  return bitmap;
}

}  // namespace Quillon::Cli
