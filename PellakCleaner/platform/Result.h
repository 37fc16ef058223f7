#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace pellak {

/// The few ways in which a call to the system fails. Everything a caller decides on is here;
/// the rest is `failed`.
enum class ErrorKind {
  missing,    ///< the path or program is not there (any more)
  denied,     ///< EPERM or EACCES: the only kind that counts as "not readable"
  busy,       ///< in use by somebody else
  full,       ///< no room, or a quota reached
  exists,     ///< the target name is taken
  readOnly,   ///< the volume can't be written
  mounted,    ///< another volume is mounted below; the text says where
  cancelled,  ///< the user or a stop request ended it
  invalid,    ///< the argument can't be meant (empty, NUL inside, wrong type)
  failed      ///< anything else
};

/// One failure: its kind, the system's error number (0 when there is none) and the system's own
/// words. The Italian sentence for a user is chosen by whoever answers the user; `causa` is the
/// true reason in the user's words, where the back end looked for it.
struct Error {
  ErrorKind kind = ErrorKind::failed;
  int code = 0;
  std::string text;
  std::string percorso = {};  ///< of the file of ours that could not be written, where that is why
  std::string causa = {};
};

/// Either a value or an `Error`. Reading the wrong side throws std::bad_variant_access.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return content_.index() == 0; }
  explicit operator bool() const { return ok(); }

  T& value() & { return std::get<0>(content_); }
  const T& value() const& { return std::get<0>(content_); }
  T&& value() && { return std::get<0>(std::move(content_)); }
  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }
  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }

  const Error& error() const { return std::get<1>(content_); }

 private:
  std::variant<T, Error> content_;
};

/// Success without a value, or an `Error`.
template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  bool ok() const { return !error_.has_value(); }
  explicit operator bool() const { return ok(); }
  const Error& error() const { return error_.value(); }

 private:
  std::optional<Error> error_;
};

}  // namespace pellak
