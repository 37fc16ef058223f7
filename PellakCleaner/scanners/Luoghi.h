#pragma once

#include <span>
#include <string>
#include <vector>

#include "PellakCore/ScanContext.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {

/// Throws the reason when the rules file could not be read: what to look for is not known then.
void esigiRegole(const ScanContext& ctx);

/// The places in or below these folders where something remote is mounted.
std::vector<std::string> volumiLontani(const ScanContext& ctx,
                                       std::span<const std::string> cartelle);

/// Says in the finding which volumes a scan stayed out of.
void segnaVolumi(const walker::Confini& confini, Finding& finding);

/// Refusals go to the section's counter, from whatever thread.
walker::Ambiente ambienteDi(const ScanContext& ctx);

/// Where a scan over whole folders goes: the rules' roots that are folders now, as real paths, each
/// once and without those that the walk of another one comes to by itself or that `filtro` keeps
/// out. Volumes below them that are remote are not entered; a root may be one. Where no root is
/// left, the section's result line says so.
class Cammino {
 public:
  /// `scritte` as the rules write them; those that are not absolute, "~" expanded, are none.
  Cammino(const ScanContext& ctx, const std::vector<std::string>& scritte,
          const walker::Filtro& filtro);
  Cammino(const Cammino&) = delete;
  Cammino& operator=(const Cammino&) = delete;

  const walker::Ambiente& ambiente() const { return ambiente_; }
  const std::vector<std::string>& radici() const { return radici_; }
  void segna(Finding& finding) const { segnaVolumi(confini_, finding); }

 private:
  walker::Ambiente ambiente_;
  const std::vector<std::string> radici_;
  walker::Confini confini_;
};

}  // namespace pellak::scanners
