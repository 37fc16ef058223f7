#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "PellakCore/Sec.h"

/// What emptying the Trash surely frees, in bytes: never more than the disk gets back.
namespace pellak {

/// When all of the finding is in the Trash; of a duplicate set all copies but one. What is only
/// reported, or was not measured, frees nothing.
std::int64_t libera(const Finding& finding);

/// Of one group of that finding.
std::int64_t libera(const Finding& finding, const Group& gruppo);

/// When all is in the Trash that these lists offer for making room (`Finding::faSpazio`). A path
/// that stands in several of them, or below another one, counts once.
std::int64_t libera(std::span<const std::vector<Finding>* const> liste);

/// The same of sections, kept until their findings move. One thread at a time.
class LiberaSezioni {
 public:
  std::int64_t sezione(std::string_view id, const Sec& sezione);

  /// Of all together.
  std::int64_t tutte(std::span<const Sec* const> sezioni);

 private:
  struct Nota {
    std::uint64_t findingsVer;
    std::int64_t byte;
  };

  std::map<std::string_view, Nota> note_;
  std::vector<std::uint64_t> versioni_;
  std::int64_t tutte_ = 0;
};

}  // namespace pellak
