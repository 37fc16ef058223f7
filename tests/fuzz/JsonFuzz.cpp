// Arbitrary text through the JSON entry: every value read leniently, written again and compared.
#include <cmath>
#include <cstdlib>
#include <map>
#include <utility>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"
#include "PellakCore/base/Utf8.h"

namespace {

using namespace pellak;

void require(bool condition) {
  if (!condition) std::abort();
}

/// What a JSON text says, with the document that owns it.
JsonDocument reread(std::string_view json) {
  Result<JsonDocument> documento = JsonDocument::parse(json);
  require(documento.ok());
  return std::move(documento.value());
}

void checkText(const std::string& testo) {
  const std::string scritto = jsonText(testo);
  require(utf8Valido(scritto));
  require(reread(scritto).radice().testo() == testo);
}

/// Whole and small enough that a double holds it exactly.
bool exact(double numero) { return numero == std::trunc(numero) && std::fabs(numero) < 0x1p53; }

void checkNumber(Json valore) {
  const double numero = *valore.numero();
  JsonWriter writer;
  if (const auto intero = valore.intero()) {
    require(static_cast<double>(*intero) == numero);
    require(reread(writer.integer(*intero).take()).radice().intero() == intero);
  }
  if (!std::isfinite(numero)) return;
  const auto riletto = reread(writer.number(numero).take()).radice().numero();
  require(riletto.has_value());
  // The parser may miss the nearest double by a few units of the last place.
  require(exact(numero) ? *riletto == numero
                        : std::fabs(*riletto - numero) <= std::fabs(numero) * 1e-14 + 1e-320);
}

void rewrite(Json valore, JsonWriter& writer);

void rewriteObject(Json oggetto, JsonWriter& writer) {
  // Names that differ only in how they are encoded stand for the same bytes; as with any repeated
  // name the last value counts.
  std::map<std::string, Json> membri;
  std::size_t quanti = 0;
  oggetto.perOgniMembro([&](const std::string& nome, Json membro) {
    ++quanti;
    checkText(nome);
    membri.insert_or_assign(nome, membro);
  });
  require(quanti == oggetto.quanti());
  writer.beginObject();
  for (const auto& [nome, membro] : membri) {
    writer.textKey(nome);
    rewrite(membro, writer);
  }
  writer.endObject();
}

void rewriteList(Json lista, JsonWriter& writer) {
  std::size_t quanti = 0;
  writer.beginArray();
  lista.perOgni([&](Json elemento) {
    ++quanti;
    rewrite(elemento, writer);
  });
  require(quanti == lista.quanti());
  writer.endArray();
}

/// Writes the value again as our readers see it; numbers that need not come back exactly, which
/// `checkNumber` has compared, all alike. Each value answers to one type only.
void rewrite(Json valore, JsonWriter& writer) {
  require(valore.presente());
  const int tipi = static_cast<int>(valore.oggetto()) + static_cast<int>(valore.lista()) +
                   static_cast<int>(valore.testo().has_value()) +
                   static_cast<int>(valore.booleano().has_value()) +
                   static_cast<int>(valore.numero().has_value());
  require(tipi <= 1);
  if (valore.oggetto()) {
    rewriteObject(valore, writer);
  } else if (valore.lista()) {
    rewriteList(valore, writer);
  } else if (const auto testo = valore.testo()) {
    checkText(*testo);
    writer.text(*testo);
  } else if (const auto booleano = valore.booleano()) {
    writer.boolean(*booleano);
  } else if (const auto numero = valore.numero()) {
    checkNumber(valore);
    writer.number(exact(*numero) ? *numero : 0.5);
  } else {
    writer.raw("null");
  }
}

std::string rewritten(std::string_view json) {
  const JsonDocument documento = reread(json);
  JsonWriter writer;
  rewrite(documento.radice(), writer);
  return writer.take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view testo(reinterpret_cast<const char*>(data), size);
  checkText(std::string(testo));
  require(decodificaByte(codificaByte(testo)) == testo);

  const auto documento = JsonDocument::parse(testo);
  if (!documento) {
    require(documento.error().kind == ErrorKind::invalid);
    return 0;
  }
  const std::string nostro = rewritten(testo);
  require(rewritten(nostro) == nostro);
  require(rewritten(documento->radice().serializza()) == nostro);
  return 0;
}
