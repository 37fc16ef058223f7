#include "platform/linux/IconImage.h"

#include <algorithm>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include "platform/linux/GlibPtr.h"
#include "platform/posix/FilesPosix.h"

namespace pellak::linux_ {
namespace {

constexpr std::size_t kMaxFileBytes = std::size_t{8} << 20U;
constexpr int kMaxSide = 4096;

struct Size {
  int width;
  int height;
};

Size fitted(Size image, int side) {
  const int longest = std::max({image.width, image.height, 1});
  if (longest <= side) return image;
  return {std::max(image.width * side / longest, 1), std::max(image.height * side / longest, 1)};
}

/// Decoders that can draw at any size do so at once; a size of zero makes them give up.
void chooseSize(GdkPixbufLoader* loader, int width, int height, void* wanted) {
  const bool tooLarge = width > kMaxSide || height > kMaxSide;
  const Size size =
      tooLarge ? Size{0, 0} : fitted({width, height}, *static_cast<const int*>(wanted));
  gdk_pixbuf_loader_set_size(loader, size.width, size.height);
}

GlibObject<GdkPixbuf> decoded(const std::string& content, int side) {
  const GlibObject<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(chooseSize), &side);
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

}  // namespace pellak::linux_
