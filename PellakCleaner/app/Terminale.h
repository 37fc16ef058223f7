#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pellak::app {

/// Text that may hold anything (a file name) made safe for a terminal: control characters and
/// bytes that are not UTF-8 appear as "\n", "\t" or "\xNN" and can't move the cursor.
std::string perTerminale(std::string_view testo);

/// Number of code points, which is the width of the texts we line up.
std::size_t larghezza(std::string_view testo);

/// Whether standard output is a terminal that understands cursor movement.
bool uscitaInterattiva();
/// Whether colours and weights may be used on standard output: a terminal, and no NO_COLOR.
bool coloriAmmessi();
/// Columns of the terminal on standard error; 80 when it does not tell.
std::size_t colonneTerminale();

/// `testo` in bold when colours are allowed.
std::string grassetto(std::string_view testo);
/// `testo` in a weaker shade when colours are allowed.
std::string tenue(std::string_view testo);

enum class Allineamento { sinistra, destra };

/// Rows of text in columns as wide as their widest cell, two blanks apart. The first row is the
/// heading.
class Tabella {
 public:
  explicit Tabella(std::vector<Allineamento> colonne) : colonne_(std::move(colonne)) {}

  void riga(std::vector<std::string> celle) { righe_.push_back(std::move(celle)); }
  std::string testo() const;

 private:
  std::vector<Allineamento> colonne_;
  std::vector<std::vector<std::string>> righe_;
};

}  // namespace pellak::app
