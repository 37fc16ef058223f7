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

/// What a section's findings come to, in bytes.
struct SommeSezione {
  std::int64_t libera = 0;
  std::int64_t totale = 0;
  std::int64_t segnalati = 0;  ///< of what is only reported
};

/// The sums of sections, kept until their findings move. One thread at a time.
class LiberaSezioni {
 public:
  const SommeSezione& sezione(std::string_view id, const Sec& sezione);

  /// What comes free of all together.
  std::int64_t tutte(std::span<const Sec* const> sezioni);

 private:
  struct Nota {
    std::uint64_t findingsVer;
    SommeSezione somme;
  };

  std::map<std::string_view, Nota> note_;
  std::vector<std::uint64_t> versioni_;
  std::int64_t tutte_ = 0;
};

}  // namespace pellak
