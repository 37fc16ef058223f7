#pragma once

#include <string>

namespace pellak::app {

class Applicazione;

struct OpzioniLog {
  std::string operazione;  ///< empty: the list of operations
  bool json = false;
};

/// Prints the operations, newest first, as a table or as the reply of "/api/log", or the items of
/// one. Exit status 0; 1 when there is no such operation.
int comandoLog(Applicazione& applicazione, const OpzioniLog& opzioni);

}  // namespace pellak::app
