#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.h"

namespace pellak {

class JsonDocument;
class JsonWriter;

/// A place in a parsed document, read leniently: what is absent or of another type answers with
/// the default. Small and freely copied; valid as long as its `JsonDocument` lives. A
/// default-made one is "absent", and so is everything below it.
class Json {
 public:
  Json() = default;

  bool presente() const { return node_ != nullptr; }
  bool oggetto() const;
  bool lista() const;

  /// A member of an object; absent when there is none or this is no object.
  Json operator[](std::string_view chiave) const;
  bool contiene(std::string_view chiave) const { return (*this)[chiave].presente(); }

  std::optional<std::string> testo() const;
  std::optional<bool> booleano() const;
  /// A whole number (7 and 7.0 alike) that fits; booleans are not numbers.
  std::optional<std::int64_t> intero() const;
  std::optional<double> numero() const;

  std::string testo(std::string_view chiave, std::string_view altrimenti = {}) const;
  bool booleano(std::string_view chiave, bool altrimenti) const;
  std::int64_t intero(std::string_view chiave, std::int64_t altrimenti) const;
  double numero(std::string_view chiave, double altrimenti) const;
  /// The texts of a list; elements of other types are left out. Empty when it is no list.
  std::vector<std::string> testi(std::string_view chiave) const;

  /// Number of elements of a list or members of an object; 0 otherwise.
  std::size_t quanti() const;
  /// Visits the elements of a list in order.
  void perOgni(const std::function<void(Json)>& visita) const;
  /// Visits the members of an object in order.
  void perOgniMembro(const std::function<void(std::string, Json)>& visita) const;

  /// This place as JSON text again.
  std::string serializza() const;

 private:
  friend class JsonDocument;
  void scrivi(JsonWriter& writer) const;
  explicit Json(const void* node) : node_(node) {}

  const void* node_ = nullptr;
};

/// A parsed JSON text and the memory of its values. Texts come out of it with the byte encoding
/// of BytePath.h undone, so a path read here is the bytes it was.
class JsonDocument {
 public:
  /// Strict JSON. Errors (kind invalid): malformed text, invalid UTF-8, more than 64 MiB, more
  /// than 256 levels deep; the limits hold before any memory is spent on the values. A repeated
  /// member name keeps the last value.
  static Result<JsonDocument> parse(std::string_view testo);
  /// The same with another size limit, for files of our own.
  static Result<JsonDocument> parse(std::string_view testo, std::size_t limiteByte);

  JsonDocument(JsonDocument&&) noexcept;
  JsonDocument& operator=(JsonDocument&&) noexcept;
  ~JsonDocument();

  Json radice() const;

 private:
  struct Contenuto;
  explicit JsonDocument(std::unique_ptr<Contenuto> contenuto);

  std::unique_ptr<Contenuto> contenuto_;
};

}  // namespace pellak
