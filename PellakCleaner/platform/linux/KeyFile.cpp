#include "platform/linux/KeyFile.h"

#include <string_view>

#include "platform/linux/GlibPtr.h"
#include "platform/posix/FilesPosix.h"

namespace pellak::native {
namespace {

std::string taken(char* text) {
  const GlibText owner(text);
  return text == nullptr ? std::string() : std::string(text);
}

/// The language to prefer, in the form that key files use; nullptr leaves it to the environment.
const char* language() {
  const char* const* names = g_get_language_names();
  const bool none = names[0] == nullptr || std::string_view(names[0]).starts_with("C");
  return none ? "it" : nullptr;
}

}  // namespace

void KeyFile::Free::operator()(_GKeyFile* file) const { g_key_file_unref(file); }

std::optional<KeyFile> KeyFile::load(const std::string& path, std::size_t limit) {
  const Result<std::string> content = posix::FilesPosix().read(path, limit);
  if (!content) return std::nullopt;
  KeyFile file(g_key_file_new());
  if (!g_key_file_load_from_data(file.file_.get(), content->data(), content->size(),
                                 G_KEY_FILE_KEEP_TRANSLATIONS, nullptr)) {
    return std::nullopt;
  }
  return file;
}

std::string KeyFile::text(const char* group, const char* key) const {
  return taken(g_key_file_get_string(file_.get(), group, key, nullptr));
}

std::string KeyFile::localText(const char* group, const char* key) const {
  return taken(g_key_file_get_locale_string(file_.get(), group, key, language(), nullptr));
}

std::vector<std::string> KeyFile::list(const char* group, const char* key, char separator) const {
  const std::string joined = text(group, key);
  std::vector<std::string> pieces;
  for (std::size_t begin = 0; begin < joined.size();) {
    const std::size_t end = std::min(joined.find(separator, begin), joined.size());
    if (end > begin) pieces.push_back(joined.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

bool KeyFile::flag(const char* group, const char* key) const {
  return g_key_file_get_boolean(file_.get(), group, key, nullptr) != 0;
}

int KeyFile::integer(const char* group, const char* key, int otherwise) const {
  GError* error = nullptr;
  const int value = g_key_file_get_integer(file_.get(), group, key, &error);
  const GlibError owner(error);
  return error == nullptr ? value : otherwise;
}

}  // namespace pellak::native
