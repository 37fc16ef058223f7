#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "fakes/CartellaTemporanea.h"
#include "fakes/MemoryLister.h"
#include "platform/Native.h"

namespace pellak::walker {

/// A tree to walk, in memory or on the disk, built by the same verbs. Paths are relative to
/// `root` and begin with "/".
class World {
 public:
  virtual ~World() = default;
  virtual std::string root() const = 0;
  virtual DirectoryLister& lister() = 0;
  virtual void folder(const std::string& percorso) = 0;
  virtual void file(const std::string& percorso, std::int64_t size) = 0;
  virtual void link(const std::string& percorso, const std::string& target) = 0;
  virtual void pipe(const std::string& percorso) = 0;
  virtual void hardLink(const std::string& percorso, const std::string& existing) = 0;
  /// Bytes on disk, found without the walker.
  virtual std::int64_t alloc(const std::string& percorso) = 0;

  std::string at(const std::string& percorso) const { return root() + percorso; }
};

class MemoryWorld final : public World {
 public:
  using Setup = std::function<void(fakes::MemoryLister&)>;
  explicit MemoryWorld(const Setup& setup) {
    setup(lister_);
    lister_.folder(root());
  }
  std::string root() const override { return "/volume"; }
  DirectoryLister& lister() override { return lister_; }
  void folder(const std::string& p) override { lister_.folder(at(p)); }
  void file(const std::string& p, std::int64_t size) override { lister_.file(at(p), size); }
  void link(const std::string& p, const std::string&) override { lister_.link(at(p)); }
  void pipe(const std::string& p) override { lister_.other(at(p)); }
  void hardLink(const std::string& p, const std::string& existing) override {
    lister_.hardLink(at(p), at(existing));
  }
  std::int64_t alloc(const std::string& p) override { return lister_.attributes(at(p))->alloc; }

 private:
  fakes::MemoryLister lister_;
};

class DiskWorld final : public World {
 public:
  std::string root() const override { return folder_.percorso(); }
  DirectoryLister& lister() override { return native_->platform().lister; }
  void folder(const std::string& p) override { std::filesystem::create_directories(at(p)); }
  void file(const std::string& p, std::int64_t size) override {
    fakes::scriviFile(at(p), std::string(static_cast<std::size_t>(size), 'x'));
  }
  void link(const std::string& p, const std::string& target) override {
    check(::symlink(target.c_str(), at(p).c_str()));
  }
  void pipe(const std::string& p) override { check(::mkfifo(at(p).c_str(), 0600)); }
  void hardLink(const std::string& p, const std::string& existing) override {
    check(::link(at(existing).c_str(), at(p).c_str()));
  }
  std::int64_t alloc(const std::string& p) override {
    struct stat record = {};
    check(::lstat(at(p).c_str(), &record));
    return record.st_blocks * 512;
  }

 private:
  static void check(int outcome) {
    if (outcome != 0) throw std::runtime_error("the test's tree cannot be made");
  }

  fakes::CartellaTemporanea folder_;
  const std::unique_ptr<Native> native_ = creaNative();
};

}  // namespace pellak::walker
