#include "PellakCore/base/Json.h"

#include <boost/json.hpp>
#include <cmath>
#include <limits>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

namespace bj = boost::json;

constexpr std::size_t kRequestLimit = std::size_t{64} << 20U;
constexpr std::size_t kMaxDepth = 256;
constexpr double kInt64Bound = 9'223'372'036'854'775'808.0;

const bj::value* nodeOf(const void* node) { return static_cast<const bj::value*>(node); }

std::string decoded(const bj::string& testo) {
  return decodificaByte({testo.data(), testo.size()});
}

std::optional<std::int64_t> wholeNumber(double valore) {
  if (valore != std::trunc(valore) || valore < -kInt64Bound || valore >= kInt64Bound) return {};
  return static_cast<std::int64_t>(valore);
}

Error malformed(std::string motivo) { return {ErrorKind::invalid, 0, std::move(motivo)}; }

}  // namespace

struct JsonDocument::Contenuto {
  bj::monotonic_resource memoria;
  bj::value radice;
};

bool Json::oggetto() const { return node_ != nullptr && nodeOf(node_)->is_object(); }
bool Json::lista() const { return node_ != nullptr && nodeOf(node_)->is_array(); }

Json Json::operator[](std::string_view chiave) const {
  if (!oggetto()) return {};
  const bj::value* trovato =
      nodeOf(node_)->get_object().if_contains({chiave.data(), chiave.size()});
  return Json(trovato);
}

std::optional<std::string> Json::testo() const {
  if (node_ == nullptr || !nodeOf(node_)->is_string()) return {};
  return decoded(nodeOf(node_)->get_string());
}

std::optional<bool> Json::booleano() const {
  if (node_ == nullptr || !nodeOf(node_)->is_bool()) return {};
  return nodeOf(node_)->get_bool();
}

std::optional<std::int64_t> Json::intero() const {
  if (node_ == nullptr) return {};
  const bj::value& valore = *nodeOf(node_);
  if (valore.is_int64()) return valore.get_int64();
  // The parser uses the unsigned form only for numbers beyond the signed range.
  if (valore.is_double()) return wholeNumber(valore.get_double());
  return {};
}

std::optional<double> Json::numero() const {
  if (node_ == nullptr) return {};
  const bj::value& valore = *nodeOf(node_);
  // Too large for a double: nothing a caller could work with.
  if (valore.is_double() && !std::isfinite(valore.get_double())) return {};
  if (valore.is_double()) return valore.get_double();
  if (valore.is_int64()) return static_cast<double>(valore.get_int64());
  if (valore.is_uint64()) return static_cast<double>(valore.get_uint64());
  return {};
}

std::string Json::testo(std::string_view chiave, std::string_view altrimenti) const {
  return (*this)[chiave].testo().value_or(std::string(altrimenti));
}

bool Json::booleano(std::string_view chiave, bool altrimenti) const {
  return (*this)[chiave].booleano().value_or(altrimenti);
}

std::int64_t Json::intero(std::string_view chiave, std::int64_t altrimenti) const {
  return (*this)[chiave].intero().value_or(altrimenti);
}

double Json::numero(std::string_view chiave, double altrimenti) const {
  return (*this)[chiave].numero().value_or(altrimenti);
}

std::vector<std::string> Json::testi(std::string_view chiave) const {
  std::vector<std::string> raccolti;
  (*this)[chiave].perOgni([&](Json elemento) {
    if (auto testo = elemento.testo()) raccolti.push_back(std::move(*testo));
  });
  return raccolti;
}

std::size_t Json::quanti() const {
  if (lista()) return nodeOf(node_)->get_array().size();
  if (oggetto()) return nodeOf(node_)->get_object().size();
  return 0;
}

void Json::perOgni(const std::function<void(Json)>& visita) const {
  if (!lista()) return;
  for (const bj::value& elemento : nodeOf(node_)->get_array()) visita(Json(&elemento));
}

void Json::perOgniMembro(const std::function<void(std::string, Json)>& visita) const {
  if (!oggetto()) return;
  for (const auto& membro : nodeOf(node_)->get_object()) {
    visita(decodificaByte({membro.key().data(), membro.key().size()}), Json(&membro.value()));
  }
}

std::string Json::serializza() const {
  JsonWriter writer;
  scrivi(writer);
  return writer.take();
}

void Json::scrivi(JsonWriter& writer) const {
  if (oggetto()) {
    writer.beginObject();
    perOgniMembro([&](const std::string& nome, Json membro) {
      writer.textKey(nome);
      membro.scrivi(writer);
    });
    writer.endObject();
  } else if (lista()) {
    writer.beginArray();
    perOgni([&](Json elemento) { elemento.scrivi(writer); });
    writer.endArray();
  } else if (const auto valore = testo()) {
    writer.text(*valore);
  } else if (const auto booleano_ = booleano()) {
    writer.boolean(*booleano_);
  } else if (const auto intero_ = intero()) {
    writer.integer(*intero_);
  } else if (const auto numero_ = numero()) {
    writer.number(*numero_);
  } else {
    writer.raw("null");
  }
}

JsonDocument::JsonDocument(std::unique_ptr<Contenuto> contenuto)
    : contenuto_(std::move(contenuto)) {}
JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;
JsonDocument::~JsonDocument() = default;

Result<JsonDocument> JsonDocument::parse(std::string_view testo) {
  return parse(testo, kRequestLimit);
}

Result<JsonDocument> JsonDocument::parse(std::string_view testo, std::size_t limiteByte) {
  if (testo.size() > limiteByte) return malformed("too large");
  auto contenuto = std::make_unique<Contenuto>();
  bj::parse_options opzioni;
  opzioni.max_depth = kMaxDepth;
  bj::error_code errore;
  bj::parser lettore(bj::storage_ptr(&contenuto->memoria), opzioni);
  lettore.write({testo.data(), testo.size()}, errore);
  if (errore) return malformed(errore.message());
  // The value must live in the document's own memory: constructed there, not assigned.
  contenuto->radice.~value();
  new (&contenuto->radice) bj::value(lettore.release());
  return JsonDocument(std::move(contenuto));
}

Json JsonDocument::radice() const { return Json(&contenuto_->radice); }

}  // namespace pellak
