#include "shell/Riavvio.h"

namespace pellak::shell {

std::string comandoRiavvio(long vecchio, const std::string& avvio) {
  return "sleep 0.5; n=0; while [ $n -lt 150 ] && kill -0 " + std::to_string(vecchio) +
         " 2>/dev/null; do sleep 0.2; n=$((n+1)); done; " + avvio;
}

}  // namespace pellak::shell
