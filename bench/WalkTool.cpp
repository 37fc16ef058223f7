// Runs one walk over real folders, for timing it against other programs.
//
//   pellak-walk-bench list BYTES FOLDER...   regular files of at least BYTES, NUL after each
//   pellak-walk-bench home FOLDER            bytes on disk below FOLDER, its children measured
//                                            together as the disk map does
//   pellak-walk-bench size PATH              the same by one thread
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/DirectoryListerLinux.h"
#include "scanners/walker/Walker.h"

namespace {

using namespace pellak;

int list(const walker::Ambiente& ambiente, std::span<const std::string> arguments) {
  walker::Filtro filtro;
  filtro.minBytes = std::strtoll(arguments[0].c_str(), nullptr, 10);
  const auto found = walker::parallelWalk(
      ambiente, arguments.subspan(1), filtro, {},
      [](std::string_view percorso, const struct stat&) -> std::optional<std::string> {
        return std::string(percorso);
      });
  for (const std::string& percorso : found) {
    std::fwrite(percorso.c_str(), 1, percorso.size() + 1, stdout);
  }
  return 0;
}

int home(const walker::Ambiente& ambiente, const std::string& folder) {
  std::vector<std::string> children;
  for (const std::string& name : walker::nameList(ambiente, folder).value_or(children)) {
    children.push_back(folder + '/' + name);
  }
  std::int64_t total = 0;
  for (const auto& bytes : walker::measureTrees(ambiente, children)) total += bytes.value_or(0);
  std::printf("%lld\n", static_cast<long long>(total));
  return 0;
}

int size(const walker::Ambiente& ambiente, const std::string& path) {
  std::printf("%lld\n", static_cast<long long>(walker::treeSize(ambiente, path)));
  return 0;
}

}  // namespace

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  native::DirectoryListerLinux lister;
  const walker::Ambiente ambiente{lister, {}};
  if (arguments.size() >= 3 && arguments[0] == "list") {
    return list(ambiente, std::span(arguments).subspan(1));
  }
  if (arguments.size() == 2 && arguments[0] == "home") return home(ambiente, arguments[1]);
  if (arguments.size() == 2 && arguments[0] == "size") return size(ambiente, arguments[1]);
  std::fputs("usage: pellak-walk-bench list BYTES FOLDER... | home FOLDER | size PATH\n", stderr);
  return 2;
}
