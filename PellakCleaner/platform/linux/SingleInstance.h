#pragma once

#include <functional>
#include <memory>
#include <string>

namespace pellak::native {

/// Makes sure that a user has one window: the first start takes a name on the session's message
/// bus, every further one asks it to show its window and should end. Where there is no bus every
/// start is a first one.
///
/// Made and used on the main thread, before anything heavy: a few milliseconds.
///
///     const SingleInstance instance;
///     if (!instance.first()) return 0;
class SingleInstance {
 public:
  /// The application's name on the bus and in the desktop's files.
  static constexpr const char* kName = "com.pellaklab.cleaner";

  /// Takes `nome`. When another process has it and answers within five seconds, this one is not
  /// the first; one that hangs or is just ending does not keep the user from working.
  explicit SingleInstance(const std::string& nome = kName);
  ~SingleInstance();
  SingleInstance(const SingleInstance&) = delete;
  SingleInstance& operator=(const SingleInstance&) = delete;

  bool first() const { return first_; }

  /// `called` gets what the desktop gave the further start so that it may come to the front; often
  /// empty. Called by the running main loop.
  void onActivate(std::function<void(const std::string& token)> called);

 private:
  struct Service;

  std::unique_ptr<Service> service_;
  bool first_ = true;
};

}  // namespace pellak::native
