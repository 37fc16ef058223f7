#include "platform/linux/IconImage.h"

#include <algorithm>
#include <cstdint>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <string_view>

#include "platform/linux/GlibPtr.h"
#include "platform/posix/FilesPosix.h"

namespace pellak::native {
namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{8} << 20U;
constexpr int kMaxSide = 4096;

struct Size {
  int width;
  int height;
};

Size fitted(Size image, int side) {
  const std::int64_t longest = std::max({image.width, image.height, 1});
  if (longest <= side) return image;
  const auto scaled = [&](std::int64_t length) {
    return static_cast<int>(std::max<std::int64_t>(length * side / longest, 1));
  };
  return {scaled(image.width), scaled(image.height)};
}

/// How an image is to be decoded.
struct Wanted {
  int side;
  bool drawn;  ///< vectors: the size they state costs nothing
};

/// Decoders that can draw at any size do so at once; a size of zero makes the others give up.
void chooseSize(GdkPixbufLoader* loader, int width, int height, void* user) {
  const auto& wanted = *static_cast<const Wanted*>(user);
  const bool tooLarge = !wanted.drawn && (width > kMaxSide || height > kMaxSide);
  const Size size = tooLarge ? Size{0, 0} : fitted({width, height}, wanted.side);
  gdk_pixbuf_loader_set_size(loader, size.width, size.height);
}

/// Icons come in three formats; telling them here needs no database of file types. nullptr for
/// all others.
const char* formatOf(std::string_view content) {
  if (content.starts_with("\x89PNG")) return "png";
  if (content.starts_with("/* XPM */")) return "xpm";
  const bool compressed = content.starts_with("\x1f\x8b");
  return compressed || content.starts_with('<') ? "svg" : nullptr;
}

GlibObject<GdkPixbufLoader> loaderFor(const char* format) {
  return GlibObject<GdkPixbufLoader>(format == nullptr
                                         ? gdk_pixbuf_loader_new()
                                         : gdk_pixbuf_loader_new_with_type(format, nullptr));
}

GlibObject<GdkPixbuf> decoded(const std::string& content, int side) {
  const char* format = formatOf(content);
  const GlibObject<GdkPixbufLoader> loader = loaderFor(format);
  if (loader == nullptr) return nullptr;
  Wanted wanted{side, format != nullptr && std::string_view(format) == "svg"};
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(chooseSize), &wanted);
  const auto* bytes = reinterpret_cast<const unsigned char*>(content.data());
  const bool written = gdk_pixbuf_loader_write(loader.get(), bytes, content.size(), nullptr) != 0;
  // Closed in any case, otherwise the library complains aloud.
  const bool closed = gdk_pixbuf_loader_close(loader.get(), nullptr) != 0;
  GdkPixbuf* image = written && closed ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
  if (image == nullptr) return nullptr;
  const Size size = fitted({gdk_pixbuf_get_width(image), gdk_pixbuf_get_height(image)}, side);
  return GlibObject<GdkPixbuf>(
      gdk_pixbuf_scale_simple(image, size.width, size.height, GDK_INTERP_BILINEAR));
}

Error unreadable() { return {ErrorKind::missing, 0, "no readable image"}; }

}  // namespace

Result<std::string> iconImagePng(const std::string& path, int side) {
  const Result<std::string> content = posix::FilesPosix().read(path, kMaxFileBytes);
  if (!content) return unreadable();
  const GlibObject<GdkPixbuf> image = decoded(*content, side);
  if (image == nullptr) return unreadable();
  char* bytes = nullptr;
  gsize count = 0;
  if (!gdk_pixbuf_save_to_buffer(image.get(), &bytes, &count, "png", nullptr, nullptr)) {
    return unreadable();
  }
  const GlibText owner(bytes);
  return std::string(bytes, count);
}

}  // namespace pellak::native
