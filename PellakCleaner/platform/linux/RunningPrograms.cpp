#include "platform/linux/RunningPrograms.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/KeyFile.h"
#include "platform/posix/PathParts.h"
#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxProcBytes = std::size_t{64} << 10U;

std::string readProc(const std::string& path) {
  auto text = posix::readToEnd(path, kMaxProcBytes);
  return text ? *text : std::string();
}

std::string linkTarget(const std::string& link) {
  std::error_code failure;
  std::string target = fs::read_symlink(link, failure).native();
  // A program that was updated while it runs.
  constexpr std::string_view kGone = " (deleted)";
  if (target.ends_with(kGone)) target.resize(target.size() - kGone.size());
  return target;
}

std::vector<std::string> splitAt(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    pieces.emplace_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

/// Undoes the "\x2d" escapes of unit names.
std::string unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i).starts_with("\\x") && i + 4 <= text.size()) {
      plain +=
          static_cast<char>(std::strtol(std::string(text.substr(i + 2, 2)).c_str(), nullptr, 16));
      i += 3;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

/// Desktops start each application in a unit "app-[launcher-]<id>-<random>.scope" or
/// "app-[launcher-]<id>[@<random>].service", dashes of the id escaped.
bool inUnitOf(std::string_view groups, std::string_view id) {
  for (const std::string& line : splitAt(groups, '\n')) {
    for (const std::string& unit : splitAt(line, '/')) {
      if (!unit.starts_with("app-")) continue;
      std::string_view stem = std::string_view(unit).substr(4);
      stem = stem.substr(0, stem.rfind('.'));
      stem = stem.substr(0, stem.find('@'));
      for (const std::string& piece : splitAt(stem, '-')) {
        if (unescaped(piece) == id) return true;
      }
    }
  }
  return false;
}

bool inFlatpak(const RunningProgram& process, const std::string& id) {
  const auto info = KeyFile::load(process.folder + "/root/.flatpak-info", kMaxProcBytes);
  return info && info->text("Application", "name") == id;
}

bool inSnap(const RunningProgram& process, const std::string& name) {
  return process.program.starts_with("/snap/" + name + "/") ||
         process.program.starts_with("/var/lib/snapd/snap/" + name + "/");
}

std::string resolved(const std::string& path) {
  std::error_code failure;
  const fs::path real = fs::canonical(path, failure);
  return failure ? path : real.native();
}

/// The folder of a program that shares it with nobody ("/opt/x", "/usr/lib/x"); empty otherwise.
std::string_view ownFolder(std::string_view program) {
  for (const std::string_view base : {"/opt/", "/usr/lib/", "/usr/lib64/"}) {
    if (!program.starts_with(base)) continue;
    const std::string_view below = program.substr(base.size());
    const std::string_view first = below.substr(0, below.find('/'));
    const bool shared = first.size() == below.size() || first.find("-linux-") != first.npos;
    return shared ? std::string_view() : program.substr(0, program.rfind('/') + 1);
  }
  return {};
}

bool runsScript(const RunningProgram& process, const std::string& wanted, const std::string& real) {
  const auto& words = process.arguments;
  if (words.empty()) return false;
  const auto script = std::find_if(words.begin() + 1, words.end(),
                                   [](const std::string& word) { return !word.starts_with('-'); });
  if (script == words.end()) return process.program == real;
  if (!script->starts_with('/')) return posix::nameOf(*script) == posix::nameOf(wanted);
  return *script == wanted || resolved(*script) == real;
}

bool runsProgram(const RunningProgram& process, const std::string& wanted) {
  if (wanted.empty()) return false;
  const std::string real = resolved(wanted);
  const std::string_view name = posix::nameOf(process.program);
  if (isInterpreter(name)) return runsScript(process, wanted, real);
  // The command of every Snap is a link to the one program that starts them all.
  const std::string& target = posix::nameOf(real) == "snap" ? wanted : real;
  if (process.program == target || name == posix::nameOf(target) || name == posix::nameOf(wanted)) {
    return true;
  }
  const std::string_view folder = ownFolder(target);
  return !folder.empty() && process.program.starts_with(folder);
}

}  // namespace

std::vector<RunningProgram> runningPrograms() {
  std::vector<RunningProgram> all;
  std::error_code failure;
  for (fs::directory_iterator place("/proc", failure);
       !failure && place != fs::directory_iterator(); place.increment(failure)) {
    RunningProgram process;
    process.folder = place->path().native();
    if (posix::nameOf(process.folder).find_first_not_of("0123456789") != std::string_view::npos)
      continue;
    struct stat info {};
    if (::stat(process.folder.c_str(), &info) != 0 || info.st_uid != ::geteuid()) continue;
    process.pid = std::atoi(process.folder.c_str() + process.folder.rfind('/') + 1);
    process.program = linkTarget(process.folder + "/exe");
    process.arguments = splitAt(readProc(process.folder + "/cmdline"), '\0');
    // A process that has ended and waits to be collected tells neither.
    if (process.program.empty() && process.arguments.empty()) continue;
    process.groups = readProc(process.folder + "/cgroup");
    all.push_back(std::move(process));
  }
  return all;
}

bool belongsTo(const RunningProgram& process, const DesktopEntry& entry) {
  if (inUnitOf(process.groups, entry.info.id)) return true;
  if (!entry.flatpak.empty()) {
    return inUnitOf(process.groups, entry.flatpak) || inFlatpak(process, entry.flatpak);
  }
  if (!entry.snap.empty() && inSnap(process, entry.snap)) return true;
  return !process.program.empty() && runsProgram(process, entry.info.executable);
}

}  // namespace pellak::native
