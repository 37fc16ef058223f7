#include "scanners/Luoghi.h"

#include <algorithm>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak::scanners {

std::vector<std::string> radiciEsistenti(const walker::Ambiente& ambiente,
                                         const std::vector<std::string>& scritte,
                                         const std::string& home) {
  std::vector<std::string> radici;
  for (const std::string& scritta : scritte) {
    std::string radice = standardizza(scritta, home);
    if (radice.empty() || std::find(radici.begin(), radici.end(), radice) != radici.end()) continue;
    const auto stato = walker::statNoFollow(ambiente, radice);
    if (stato && S_ISDIR(stato->st_mode)) radici.push_back(std::move(radice));
  }
  return radici;
}

}  // namespace pellak::scanners
