#include "platform/linux/DesktopEntries.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <sys/stat.h>

#include "platform/linux/GlibPtr.h"
#include "platform/linux/KeyFile.h"
#include "platform/posix/PathParts.h"

namespace pellak::native {
namespace {

namespace fs = std::filesystem;

constexpr const char* kGroup = "Desktop Entry";
constexpr std::string_view kSuffix = ".desktop";
constexpr std::size_t kMaxFileBytes = std::size_t{1} << 20U;
constexpr std::size_t kMaxEntries = 20'000;
constexpr int kMaxDepth = 4;

/// Programs that only prepare the ground for the one named behind them.
constexpr std::array<std::string_view, 3> kPrefixes{"env", "nohup", "pkexec"};
constexpr std::array<std::string_view, 13> kInterpreters{"sh",   "bash", "dash",  "zsh", "fish",
                                                         "perl", "ruby", "node",  "gjs", "java",
                                                         "mono", "wine", "python"};

template <std::size_t N>
bool holds(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// Nanoseconds; 0 when there is no such folder.
std::int64_t modified(const std::string& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) return 0;
  return std::int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec;
}

std::vector<std::string> wordsOf(const std::string& exec) {
  int count = 0;
  char** parsed = nullptr;
  if (!g_shell_parse_argv(exec.c_str(), &count, &parsed, nullptr)) return {};
  const GlibTexts owner(parsed);
  return {parsed, parsed + count};
}

std::string located(const std::string& program) {
  if (program.find('/') != std::string::npos) return program;
  const GlibText found(g_find_program_in_path(program.c_str()));
  return found != nullptr ? std::string(found.get()) : program;
}

bool sameName(const std::string& a, std::string_view b) {
  return a.size() == b.size() && g_ascii_strncasecmp(a.data(), b.data(), b.size()) == 0;
}

}  // namespace

bool isInterpreter(std::string_view name) {
  // "python3.11" is python.
  while (!name.empty() && (name.back() == '.' || (name.back() >= '0' && name.back() <= '9'))) {
    name.remove_suffix(1);
  }
  return holds(kInterpreters, name);
}

std::string programOf(const std::string& exec) {
  const std::vector<std::string> words = wordsOf(exec);
  const auto assignment = [](const std::string& word) {
    const std::size_t sign = word.find('=');
    return sign != std::string::npos && word.find('/') > sign;
  };
  auto word = words.begin();
  while (word != words.end() &&
         (holds(kPrefixes, posix::nameOf(*word)) || word->starts_with('-') || assignment(*word))) {
    ++word;
  }
  if (word == words.end()) return {};
  if (!isInterpreter(posix::nameOf(*word))) return located(*word);
  const auto script = std::find_if(word + 1, words.end(), [](const std::string& candidate) {
    return !candidate.starts_with('-') && !candidate.starts_with('%');
  });
  if (script == words.end()) return located(*word);
  return script->starts_with('/') ? *script : std::string();
}

DesktopEntries DesktopEntries::read(const std::vector<std::string>& dataFolders) {
  DesktopEntries all;
  for (const std::string& folder : dataFolders) all.readFolder(folder + "/applications");
  return all;
}

void DesktopEntries::readFolder(const std::string& folder) {
  // The time is taken before the listing: a change meanwhile is seen the next time.
  stamps_.emplace_back(folder, modified(folder));
  std::error_code failure;
  fs::recursive_directory_iterator place(folder, fs::directory_options::skip_permission_denied,
                                         failure);
  for (; !failure && place != fs::recursive_directory_iterator(); place.increment(failure)) {
    if (entries_.size() >= kMaxEntries) return;
    const std::string& path = place->path().native();
    std::error_code ignored;
    if (place->symlink_status(ignored).type() == fs::file_type::directory) {
      stamps_.emplace_back(path, modified(path));
      if (place.depth() >= kMaxDepth) place.disable_recursion_pending();
    } else if (path.ends_with(kSuffix)) {
      std::string id = path.substr(folder.size() + 1);
      id.resize(id.size() - kSuffix.size());
      std::replace(id.begin(), id.end(), '/', '-');
      readFile(path, std::move(id));
    }
  }
}

void DesktopEntries::readFile(const std::string& path, std::string id) {
  if (seen_.contains(id)) return;
  const auto file = KeyFile::load(path, kMaxFileBytes);
  if (!file || file->text(kGroup, "Type") != "Application") return;
  seen_.insert(id);
  if (file->flag(kGroup, "Hidden")) return;
  DesktopEntry entry;
  entry.info.id = std::move(id);
  entry.info.path = path;
  entry.info.name = file->localText(kGroup, "Name");
  entry.plainName = file->text(kGroup, "Name");
  entry.icon = file->text(kGroup, "Icon");
  entry.flatpak = file->text(kGroup, "X-Flatpak");
  entry.snap = file->text(kGroup, "X-SnapInstanceName");
  if (entry.flatpak.empty()) entry.info.executable = programOf(file->text(kGroup, "Exec"));
  entries_.push_back(std::move(entry));
}

bool DesktopEntries::current() const {
  return std::all_of(stamps_.begin(), stamps_.end(),
                     [](const auto& stamp) { return modified(stamp.first) == stamp.second; });
}

const DesktopEntry* DesktopEntries::find(std::string_view key) const {
  if (key.empty()) return nullptr;
  std::string_view id = key;
  if (id.ends_with(kSuffix)) id.remove_suffix(kSuffix.size());
  const auto first = [this](const auto& matches) -> const DesktopEntry* {
    const auto found = std::find_if(entries_.begin(), entries_.end(), matches);
    return found == entries_.end() ? nullptr : &*found;
  };
  if (const auto* entry = first([&](const auto& e) { return e.info.id == id; })) return entry;
  if (key.starts_with('/')) {
    return first([&](const auto& e) { return e.info.path == key || e.info.executable == key; });
  }
  if (const auto* entry = first([&](const auto& e) { return e.info.name == key; })) return entry;
  return first([&](const auto& e) { return sameName(e.info.name, key) || e.plainName == key; });
}

}  // namespace pellak::native
