// Runs one duplicate search over real folders, for timing it against other programs.
//
//   pellak-dup-bench MIB FOLDER...   each set of equal files of at least MIB: one path a line, an
//                                    empty line after each set
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/linux/DirectoryListerLinux.h"
#include "platform/posix/ClockPosix.h"
#include "platform/posix/FileReaderPosix.h"
#include "scanners/duplicati/ScannerDuplicati.h"

int main(int count, char** values) {
  using namespace pellak;
  const std::vector<std::string> arguments(values + 1, values + count);
  if (arguments.size() < 2) {
    std::fputs("pellak-dup-bench MIB FOLDER...\n", stderr);
    return 2;
  }
  Regole regole;
  regole.duplicati.minSizeMb = std::strtoll(arguments[0].c_str(), nullptr, 10);
  regole.duplicati.roots.assign(arguments.begin() + 1, arguments.end());
  const Config impostazioni;
  Contatore contatore("/");
  native::DirectoryListerLinux lister;
  posix::ClockPosix clock;
  posix::FileReaderPosix reader;
  const ScanContext ctx{regole, impostazioni, "/", {}, {}, contatore, lister, clock};
  for (const Group& gruppo : scanners::scanDuplicati(ctx, reader).groups) {
    for (const std::string& percorso : gruppo.paths) std::puts(percorso.c_str());
    std::puts("");
  }
  return 0;
}
