#pragma once

#include <glib-object.h>
#include <memory>

// For .cpp files of this folder only: the heavy headers stay out of everything else.
namespace pellak::native {

struct GlibFree {
  void operator()(void* memory) const { g_free(memory); }
};
struct GlibUnref {
  void operator()(void* object) const { g_object_unref(object); }
};
struct GlibErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};
struct GlibTextsFree {
  void operator()(char** texts) const { g_strfreev(texts); }
};

using GlibText = std::unique_ptr<char, GlibFree>;
using GlibTexts = std::unique_ptr<char*, GlibTextsFree>;
using GlibError = std::unique_ptr<GError, GlibErrorFree>;
template <class T>
using GlibObject = std::unique_ptr<T, GlibUnref>;

}  // namespace pellak::native
