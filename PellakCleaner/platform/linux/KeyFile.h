#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct _GKeyFile;

namespace pellak::native {

/// A file of "[group]" and "key=value" lines: desktop entries, icon themes, toolkit settings.
/// Absent keys and values of another type answer with the default.
class KeyFile {
 public:
  /// Nothing when the file is missing, no regular file, longer than `limit` bytes or malformed.
  static std::optional<KeyFile> load(const std::string& path, std::size_t limit);

  std::string text(const char* group, const char* key) const;
  /// In the user's language; Italian when the environment names none.
  std::string localText(const char* group, const char* key) const;
  std::vector<std::string> list(const char* group, const char* key, char separator) const;
  bool flag(const char* group, const char* key) const;
  int integer(const char* group, const char* key, int otherwise) const;

 private:
  struct Free {
    void operator()(_GKeyFile* file) const;
  };
  explicit KeyFile(_GKeyFile* file) : file_(file) {}

  std::unique_ptr<_GKeyFile, Free> file_;
};

}  // namespace pellak::native
