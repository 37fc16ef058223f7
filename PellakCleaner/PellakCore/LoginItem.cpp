#include "PellakCore/LoginItem.h"

#include <array>
#include <string_view>

namespace pellak {
namespace {

constexpr std::string_view kPropertyList =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n"
    "<dict>\n"
    "\t<key>Label</key>\n"
    "\t<string>com.pellaklab.cleaner</string>\n"
    "\t<key>ProgramArguments</key>\n"
    "\t<array>\n"
    "\t\t<string>/usr/bin/open</string>\n"
    "\t\t<string>-b</string>\n"
    "\t\t<string>com.pellaklab.cleaner</string>\n"
    "\t</array>\n"
    "\t<key>RunAtLoad</key>\n"
    "\t<true/>\n"
    "</dict>\n"
    "</plist>\n";

}  // namespace

Result<void> applicaLoginItem(Files& files, const Store& store,
                              const std::optional<LoginEntry>& altra, bool attivo) {
  const auto applica = [&](const std::string& file, std::string_view testo) {
    const std::array<std::string_view, 1> contenuto = {testo};
    return attivo ? files.replace(file, contenuto) : files.removeOwn(file);
  };
  auto fatto = applica(store.loginItem(), kPropertyList);
  if (fatto && altra) fatto = applica(altra->file, altra->text);
  return fatto;
}

}  // namespace pellak
