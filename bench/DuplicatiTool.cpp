// Runs one duplicate search over real folders, for timing it against other programs.
//
//   pellak-dup-bench [-m FILE] [-l] MIB FOLDER...
//
// prints each set of equal files of at least MIB: one path a line, an empty line after each set.
// FILE remembers what was read, for the next time; -l runs as the periodic check does.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "PellakCore/base/ThreadSetting.h"
#include "platform/ThreadPriority.h"
#include "platform/linux/DirectoryListerLinux.h"
#include "platform/posix/ClockPosix.h"
#include "platform/posix/FileReaderPosix.h"
#include "platform/posix/FilesPosix.h"
#include "scanners/duplicati/ScannerDuplicati.h"

namespace {

using namespace pellak;

void search(const std::string& memory, const std::vector<std::string>& arguments) {
  Regole regole;
  regole.duplicati.minSizeMb = std::strtoll(arguments[0].c_str(), nullptr, 10);
  regole.duplicati.roots.assign(arguments.begin() + 1, arguments.end());
  const Config impostazioni;
  Contatore contatore("/");
  native::DirectoryListerLinux lister;
  posix::ClockPosix clock;
  posix::FileReaderPosix reader;
  const ScanContext ctx{regole, impostazioni, "/", {}, {}, contatore, lister, clock};
  posix::FilesPosix files;
  scanners::Impronte remembered(files, memory);
  const Finding finding =
      scanners::scanDuplicati(ctx, reader, memory.empty() ? nullptr : &remembered);
  for (const Group& gruppo : finding.groups) {
    for (const std::string& percorso : gruppo.paths) std::puts(percorso.c_str());
    std::puts("");
  }
}

}  // namespace

int main(int count, char** values) {
  std::vector<std::string> arguments(values + 1, values + count);
  std::string memory;
  bool low = false;
  while (!arguments.empty() && arguments[0].starts_with('-')) {
    const bool file = arguments[0] == "-m" && arguments.size() > 1;
    if (file) memory = arguments[1];
    low = low || arguments[0] == "-l";
    arguments.erase(arguments.begin(), arguments.begin() + (file ? 2 : 1));
  }
  if (arguments.size() < 2) {
    std::fputs("pellak-dup-bench [-m FILE] [-l] MIB FOLDER...\n", stderr);
    return 2;
  }
  std::thread([&] {
    if (low) applyToThread(lowerThisThread);
    search(memory, arguments);
  }).join();
  return 0;
}
