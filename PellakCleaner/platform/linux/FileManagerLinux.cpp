#include "platform/linux/FileManagerLinux.h"

#include <algorithm>
#include <chrono>
#include <gio/gio.h>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/Deadline.h"
#include "platform/linux/GlibPtr.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/XdgFolders.h"
#include "platform/posix/PathParts.h"

namespace pellak::native {
namespace {

constexpr std::chrono::seconds kBusPatience{5};
/// How long xdg-open gets to report that it can't open the item.
constexpr std::chrono::milliseconds kOpenPatience{1000};
constexpr std::chrono::milliseconds kOpenPoll{10};
/// Windows that one request may open.
constexpr std::size_t kMaxFolders = 16;

Error failure(std::string text) { return {ErrorKind::failed, 0, std::move(text)}; }

Error failure(GError* error) {
  const GlibError owner(error);
  return failure(error != nullptr ? error->message : "no answer");
}

bool usable(std::string_view percorso) {
  return percorso.starts_with('/') && percorso.find('\0') == std::string_view::npos;
}

/// Every byte outside the plain set is escaped, so any file name makes a valid address.
GVariant* addresses(std::span<const std::string> percorsi) {
  GVariantBuilder list;
  g_variant_builder_init(&list, G_VARIANT_TYPE("as"));
  for (const std::string& percorso : percorsi) {
    const GlibText uri(g_filename_to_uri(percorso.c_str(), nullptr, nullptr));
    if (uri != nullptr) g_variant_builder_add(&list, "s", uri.get());
  }
  return g_variant_new("(ass)", &list, "");
}

Result<void> showOverBus(std::span<const std::string> percorsi) {
  const std::string address = sessionBusAddress();
  if (address.empty()) return failure("no message bus");
  const Deadline deadline(kBusPatience);
  GError* error = nullptr;
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  const GlibObject<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
      address.c_str(), flags, nullptr, deadline.cancellable(), &error));
  if (bus == nullptr) return failure(error);
  GVariant* reply = g_dbus_connection_call_sync(
      bus.get(), "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
      "org.freedesktop.FileManager1", "ShowItems", addresses(percorsi), nullptr,
      G_DBUS_CALL_FLAGS_NONE, -1, deadline.cancellable(), &error);
  if (reply == nullptr) return failure(error);
  g_variant_unref(reply);
  return {};
}

std::vector<std::string> foldersOf(std::span<const std::string> percorsi) {
  std::vector<std::string> folders;
  for (const std::string& percorso : percorsi) {
    std::string folder = posix::folderOf(percorso);
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
      folders.push_back(std::move(folder));
    }
    if (folders.size() == kMaxFolders) break;
  }
  return folders;
}

/// Still running after a moment is success: some desktops keep xdg-open until the application
/// ends.
Result<void> firstAnswer(ChildProcess& child) {
  const auto limit = std::chrono::steady_clock::now() + kOpenPatience;
  while (std::chrono::steady_clock::now() < limit) {
    if (const auto end = child.ended()) {
      const bool fine = !end->signalled && end->number == 0;
      return fine ? Result<void>() : failure("xdg-open: status " + std::to_string(end->number));
    }
    std::this_thread::sleep_for(kOpenPoll);
  }
  return {};
}

Result<void> xdgOpen(ProcessLauncher& launcher, const std::string& percorso) {
  const GlibText program(g_find_program_in_path("xdg-open"));
  if (program == nullptr) return Error{ErrorKind::missing, 0, "xdg-open"};
  LaunchRequest request;
  // Through the shell, so that what the application prints in its life goes nowhere: a pipe to us
  // would end it at its first word after we let go.
  request.percorso = "/bin/sh";
  request.argomenti = {"-c", "exec \"$0\" \"$1\" >/dev/null 2>&1", program.get(), percorso};
  auto child = launcher.start(request);
  if (!child) return child.error();
  return firstAnswer(**child);
}

}  // namespace

Result<void> FileManagerLinux::show(std::span<const std::string> percorsi) {
  if (percorsi.empty() || !std::all_of(percorsi.begin(), percorsi.end(), usable)) {
    return Error{ErrorKind::invalid, 0, "path"};
  }
  if (showOverBus(percorsi)) return {};
  Result<void> outcome;
  for (const std::string& folder : foldersOf(percorsi)) {
    if (Result<void> opened = xdgOpen(launcher_, folder); !opened) outcome = opened;
  }
  return outcome;
}

Result<void> FileManagerLinux::open(std::string_view percorso) {
  if (!usable(percorso)) return Error{ErrorKind::invalid, 0, "path"};
  return xdgOpen(launcher_, std::string(percorso));
}

Result<void> FileManagerLinux::openTrash() {
  if (xdgOpen(launcher_, "trash:///")) return {};
  return xdgOpen(launcher_, xdgDataHome() + "/Trash/files");
}

}  // namespace pellak::native
