#include "scanners/walker/Confini.h"

#include <iterator>

#include "PellakCore/base/BytePath.h"

namespace pellak::walker {

Confini::Confini(std::vector<std::string> luoghi)
    : luoghi_(std::make_move_iterator(luoghi.begin()), std::make_move_iterator(luoghi.end())) {
  std::set<std::string, std::less<>> nomi;
  for (const std::string& luogo : luoghi_) nomi.emplace(ultimoComponente(luogo));
  nomi_.assign(nomi.begin(), nomi.end());
}

bool Confini::fuori(std::string_view percorso) {
  const auto luogo = luoghi_.find(percorso);
  if (luogo == luoghi_.end()) return false;
  const std::lock_guard<std::mutex> hold(lock_);
  incontrati_.insert(*luogo);
  return true;
}

std::vector<std::string> Confini::incontrati() const {
  const std::lock_guard<std::mutex> hold(lock_);
  return {incontrati_.begin(), incontrati_.end()};
}

}  // namespace pellak::walker
