#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "scanners/duplicati/Fila.h"

namespace pellak::scanners {

/// One path of a file that is large enough. Its text lies in the `Candidati` that it came from.
struct Candidato {
  std::int64_t size = 0;
  std::uint64_t ino = 0;
  std::uint64_t nome = 0;  ///< where its name begins, counted over all pieces of its shelf
  std::int32_t dev = 0;
  std::uint32_t cartella = 0;
  std::uint32_t scaffale = 0;
};

/// Collects what a walk finds in few bytes a file: the text of a folder is kept once for the
/// files that one thread reports from it in a row.
class Candidati {
 public:
  /// Any thread, several at once.
  void aggiungi(std::string_view percorso, std::int64_t size, std::int32_t dev, std::uint64_t ino);

  /// All that was collected, in no particular order; to be called once, when no thread adds any
  /// more. Their paths can still be asked for.
  std::vector<Candidato> prendi();

  std::string percorso(const Candidato& candidato) const;

 private:
  /// What one thread fills; threads that share one take turns.
  struct alignas(64) Scaffale {
    std::mutex lock;
    Fila<Candidato> candidati;
    std::vector<std::string> cartelle;          ///< with the slash at their end
    std::vector<std::unique_ptr<char[]>> nomi;  ///< a NUL after each name; none lies in two pieces
    std::size_t scritti = kPezzo;               ///< bytes of the last piece

    /// Where it begins.
    std::uint64_t aggiungiNome(std::string_view nome);
  };
  static constexpr std::size_t kScaffali = 16;
  static constexpr std::size_t kPezzo = 524'288;

  static std::size_t scaffaleDelThread();

  std::array<Scaffale, kScaffali> scaffali_;
};

}  // namespace pellak::scanners
