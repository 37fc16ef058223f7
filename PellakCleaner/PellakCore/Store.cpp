#include "PellakCore/Store.h"

#include <utility>

namespace pellak {

Store::Store(std::string home)
    : home_(std::move(home)),
      cartella_((home_ == "/" ? std::string() : home_) +
                "/Library/Application Support/PellakCleaner") {}

std::string Store::loginItem() const {
  return (home_ == "/" ? std::string() : home_) +
         "/Library/LaunchAgents/com.pellaklab.cleaner.plist";
}

}  // namespace pellak
