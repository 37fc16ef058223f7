#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace pellak {

class Json;
class JsonWriter;

/// A setting whose written value must lie between two bounds, both allowed.
struct LimiteIntero {
  std::string_view chiave;
  std::int64_t predefinito;
  std::int64_t minimo;
  std::int64_t massimo;
};

/// The user's settings: what "impostazioni.json" holds over fixed defaults. A plain value.
class Config {
 public:
  /// A stored member that this version does not know; kept as JSON text and written back.
  struct Sconosciuto {
    std::string json;
  };
  using Valore = std::variant<std::int64_t, bool, std::vector<std::string>, Sconosciuto>;

  /// From a settings document. Anything but an object gives the defaults; a known key of the
  /// wrong type counts as absent. Values are not clamped.
  static Config daJson(Json documento);

  /// The stored value, or the key's default. `chiave` must be a setting of that type.
  std::int64_t intero(std::string_view chiave) const;
  bool booleano(std::string_view chiave) const;
  std::vector<std::string> testi(std::string_view chiave) const;

  /// Takes the values of a write request: integers only inside their bounds, booleans, the list
  /// of excluded folders trimmed and without empty elements. Everything else is ignored.
  void applica(Json richiesta);

  /// All settings, defaults included, in the order of the table.
  void scriviValori(JsonWriter& uscita) const;
  /// The text of "impostazioni.json": all settings and the unknown members.
  std::string serializza() const;

  static void scriviPredefiniti(JsonWriter& uscita);
  /// Each integer key with [minimum, maximum].
  static void scriviLimiti(JsonWriter& uscita);
  static std::span<const LimiteIntero> limiti();

 private:
  std::map<std::string, Valore, std::less<>> raw_;
};

}  // namespace pellak
