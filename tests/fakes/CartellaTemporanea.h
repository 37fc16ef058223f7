#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace pellak::fakes {

/// A folder of the test's own, gone with everything in it at the end of the scope.
class CartellaTemporanea {
 public:
  CartellaTemporanea() {
    std::string modello = (std::filesystem::temp_directory_path() / "pellak-XXXXXX").string();
    if (::mkdtemp(modello.data()) == nullptr) throw std::runtime_error("mkdtemp");
    percorso_ = modello;
  }
  ~CartellaTemporanea() {
    std::error_code ignorato;
    std::filesystem::remove_all(percorso_, ignorato);
  }
  CartellaTemporanea(const CartellaTemporanea&) = delete;
  CartellaTemporanea& operator=(const CartellaTemporanea&) = delete;

  const std::string& percorso() const { return percorso_; }
  std::string operator/(const std::string& nome) const { return percorso_ + "/" + nome; }

 private:
  std::string percorso_;
};

/// Writes a file, making its folders.
inline void scriviFile(const std::string& percorso, const std::string& testo) {
  std::filesystem::create_directories(std::filesystem::path(percorso).parent_path());
  std::ofstream(percorso, std::ios::binary) << testo;
}

inline std::string leggiFile(const std::string& percorso) {
  std::ifstream file(percorso, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// What a folder holds; nothing where there is none.
inline std::size_t quanteVoci(const std::string& cartella) {
  std::error_code manca;
  const std::filesystem::directory_iterator voci(cartella, manca);
  return static_cast<std::size_t>(std::distance(begin(voci), end(voci)));
}

}  // namespace pellak::fakes
