#include "commands/Apici.h"

namespace pellak {

std::string traApici(std::string_view testo) {
  std::string quoted = "'";
  for (const char byte : testo) {
    if (byte == '\'') {
      quoted += "'\\''";
    } else {
      quoted += byte;
    }
  }
  quoted += '\'';
  return quoted;
}

std::string traVirgolette(std::string_view testo) {
  std::string quoted = "\"";
  for (const char byte : testo) {
    if (byte == '\\' || byte == '"') quoted += '\\';
    quoted += byte;
  }
  return quoted + '"';
}

}  // namespace pellak
