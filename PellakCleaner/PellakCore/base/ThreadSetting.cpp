#include "PellakCore/base/ThreadSetting.h"

namespace pellak {
namespace {

thread_local ThreadSetting applied = nullptr;

}  // namespace

ThreadSetting threadSetting() { return applied; }

void applyToThread(ThreadSetting setting) {
  if (setting == nullptr) return;
  setting();
  applied = setting;
}

}  // namespace pellak
