#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace pellak {

/// Writes JSON text straight into one string, in the order of the calls, without spaces.
///
/// Made for the state reply, which holds every finding: no tree is built. Commas are placed by
/// the writer; nesting is the caller's. Every text passes through the byte encoding of
/// BytePath.h, so the result is well-formed UTF-8 whatever the bytes. One object serves one
/// thread.
class JsonWriter {
 public:
  JsonWriter& beginObject();
  JsonWriter& endObject();
  JsonWriter& beginArray();
  JsonWriter& endArray();

  /// The name of the next member; names are the program's own plain ASCII words.
  JsonWriter& key(std::string_view nome);
  /// A member name that comes from outside (a path, an icon key).
  JsonWriter& textKey(std::string_view nome);

  JsonWriter& text(std::string_view valore);
  JsonWriter& texts(std::span<const std::string> valori);
  JsonWriter& integer(std::int64_t valore);
  /// Whole numbers without a fraction, others in the shortest form that stands for the same double;
  /// infinities and NaN, which JSON can't hold, become 0.
  JsonWriter& number(double valore);
  JsonWriter& boolean(bool valore);
  /// JSON text that is already complete.
  JsonWriter& raw(std::string_view json);

  /// A string whose content formatters of plain ASCII append to `uscita()` until `closeText`.
  JsonWriter& openText();
  JsonWriter& closeText();
  std::string& uscita() { return uscita_; }
  /// The text so far, ready for one whole value that the caller appends.
  std::string& openRaw() {
    separate();
    return uscita_;
  }

  void reserve(std::size_t byte) { uscita_.reserve(byte); }
  /// The text so far; the writer is empty afterwards.
  std::string take();

 private:
  void separate();

  std::string uscita_;
  bool comma_ = false;
};

/// One JSON string, with its quotes.
std::string jsonText(std::string_view valore);

// The same values for code that writes thousands of equal objects and puts the punctuation there
// itself, as one literal between two values.

/// Appends what stands between the quotes of a JSON string.
void appendJsonText(std::string& uscita, std::string_view valore);
void appendJsonInteger(std::string& uscita, std::int64_t valore);
void appendJsonNumber(std::string& uscita, double valore);

}  // namespace pellak
