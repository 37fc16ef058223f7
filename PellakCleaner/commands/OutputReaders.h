#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "platform/Clock.h"
#include "platform/ProcessLauncher.h"

namespace pellak {

/// Reads a child's output and error at the same time, one thread each, so that a child that
/// writes much to both never blocks on a full pipe. Destroying the readers tells them to give up
/// and joins them: nothing outlives the object. Used from one thread.
class OutputReaders {
 public:
  /// What one stream delivered. `completo` is false when the reader gave up before the end.
  struct Stream {
    std::string byte;
    bool completo = false;
  };

  /// Starts both threads. Throws std::system_error when there is no thread to be had.
  OutputReaders(ChildProcess& child, Clock& clock);
  ~OutputReaders();
  OutputReaders(const OutputReaders&) = delete;
  OutputReaders& operator=(const OutputReaders&) = delete;

  /// Waits for both ends of file, at most `limite` seconds, and has the readers give up then.
  void finish(double limite);

  /// What was read. After `finish`, once.
  Stream takeOutput();
  Stream takeError();

 private:
  void join();
  void store(Stream& where, Stream what);
  void awaitBoth(double limite);

  ChildProcess& child_;
  Clock& clock_;
  std::mutex lock_;  // guards both streams and the count
  std::condition_variable stored_;
  Stream output_;
  Stream error_;
  int pending_ = 2;
  std::thread outputReader_;
  std::thread errorReader_;
};

}  // namespace pellak
