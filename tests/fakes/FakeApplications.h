#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>

#include "platform/Applications.h"

namespace pellak::fakes {

/// Applications as the test lists them, by key. Fill it before other threads use it.
class FakeApplications : public Applications {
 public:
  std::optional<ApplicationInfo> find(std::string_view chiave) override {
    const auto trovata = installate.find(chiave);
    if (trovata == installate.end()) return {};
    return trovata->second;
  }

  bool running(const ApplicationInfo& app) override { return attive.contains(app.id); }
  bool quit(const ApplicationInfo& app) override {
    attive.erase(app.id);
    return true;
  }

  Result<std::string> iconPng(std::string_view chiave) override {
    const std::lock_guard<std::mutex> hold(lock_);
    ++iconeDisegnate;
    const auto trovata = icone.find(chiave);
    if (trovata == icone.end()) return Error{ErrorKind::missing, 0, "no icon"};
    return trovata->second;
  }

  std::map<std::string, ApplicationInfo, std::less<>> installate;
  std::set<std::string> attive;
  std::map<std::string, std::string, std::less<>> icone;  ///< key to PNG bytes
  int iconeDisegnate = 0;

 private:
  std::mutex lock_;
};

}  // namespace pellak::fakes
