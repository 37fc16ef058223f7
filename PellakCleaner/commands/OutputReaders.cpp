#include "commands/OutputReaders.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace pellak {

namespace {

constexpr double kLook = 0.1;  // seconds between two looks at the clock

}  // namespace

OutputReaders::OutputReaders(ChildProcess& child, Clock& clock) : child_(child), clock_(clock) {
  outputReader_ = std::thread([this] {
    Stream read;
    read.completo = child_.readOutput(read.byte) == ReadEnd::endOfFile;
    store(output_, std::move(read));
  });
  try {
    errorReader_ = std::thread([this] {
      Stream read;
      read.completo = child_.readError(read.byte) == ReadEnd::endOfFile;
      store(error_, std::move(read));
    });
  } catch (const std::system_error&) {
    join();
    throw;
  }
}

OutputReaders::~OutputReaders() { join(); }

void OutputReaders::finish(double limite) {
  awaitBoth(limite);
  join();
}

OutputReaders::Stream OutputReaders::takeOutput() {
  const std::lock_guard hold(lock_);
  return std::move(output_);
}

OutputReaders::Stream OutputReaders::takeError() {
  const std::lock_guard hold(lock_);
  return std::move(error_);
}

void OutputReaders::join() {
  child_.giveUpReading();
  if (outputReader_.joinable()) outputReader_.join();
  if (errorReader_.joinable()) errorReader_.join();
}

void OutputReaders::store(Stream& where, Stream what) {
  {
    const std::lock_guard hold(lock_);
    where = std::move(what);
    --pending_;
  }
  stored_.notify_one();
}

void OutputReaders::awaitBoth(double limite) {
  const double end = clock_.steady() + limite;
  std::unique_lock hold(lock_);
  while (pending_ > 0) {
    const double left = end - clock_.steady();
    if (!(left > 0.0)) return;
    clock_.waitFor(stored_, hold, std::min(left, kLook));
  }
}

}  // namespace pellak
