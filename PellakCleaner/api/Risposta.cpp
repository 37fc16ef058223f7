#include "api/Risposta.h"

#include <utility>

#include "PellakCore/base/JsonWriter.h"

namespace pellak::api {

Risposta errore(std::string_view testo, int stato) {
  JsonWriter uscita;
  uscita.beginObject().key("err").text(testo).endObject();
  return {stato, Rope(uscita.take())};
}

Risposta riuscito() { return conTesto("{\"ok\":true}"); }

Risposta conTesto(std::string json) { return {200, Rope(std::move(json))}; }

}  // namespace pellak::api
