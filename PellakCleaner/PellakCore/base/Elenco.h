#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace pellak {

/// A vector of plain values that costs one pointer where it is empty and no more than its values
/// otherwise, for records that come by the hundred thousand. Grows like a vector unless `reserve`
/// said how many there will be.
template <class T>
class Elenco {
  static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= sizeof(std::uint64_t));

 public:
  Elenco() = default;
  Elenco(std::initializer_list<T> valori) {
    reserve(valori.size());
    for (const T& valore : valori) push_back(valore);
  }
  Elenco(const Elenco& altro) {
    reserve(altro.size());
    for (const T& valore : altro) push_back(valore);
  }
  Elenco(Elenco&& altro) noexcept : blocco_(std::exchange(altro.blocco_, nullptr)) {}
  Elenco& operator=(Elenco altro) noexcept {
    std::swap(blocco_, altro.blocco_);
    return *this;
  }
  ~Elenco() { std::free(blocco_); }

  std::size_t size() const { return blocco_ ? blocco_->presenti : 0; }
  bool empty() const { return size() == 0; }

  T* begin() { return blocco_ ? valori() : nullptr; }
  T* end() { return begin() + size(); }
  const T* begin() const { return blocco_ ? valori() : nullptr; }
  const T* end() const { return begin() + size(); }

  T& operator[](std::size_t indice) { return valori()[indice]; }
  const T& operator[](std::size_t indice) const { return valori()[indice]; }
  const T& at(std::size_t indice) const {
    if (indice >= size()) throw std::out_of_range("Elenco::at");
    return valori()[indice];
  }

  void reserve(std::size_t quanti) {
    if (quanti > posti()) rialloca(quanti);
  }
  void push_back(T valore) {
    if (size() == posti()) rialloca(size() == 0 ? 1 : 2 * size());
    new (valori() + blocco_->presenti) T(valore);
    ++blocco_->presenti;
  }
  /// New ones are as `T()` makes them.
  void resize(std::size_t quanti) {
    reserve(quanti);
    while (size() < quanti) push_back(T());
    if (blocco_) blocco_->presenti = static_cast<std::uint32_t>(quanti);
  }
  void erase(const T* uno) {
    T* posto = begin() + (uno - begin());
    std::memmove(posto, posto + 1, static_cast<std::size_t>(end() - posto - 1) * sizeof(T));
    --blocco_->presenti;
  }
  void clear() { resize(0); }

  friend bool operator==(const Elenco& a, const Elenco& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (!(a[i] == b[i])) return false;
    }
    return true;
  }

 private:
  struct Blocco {  ///< followed by the values
    std::uint32_t presenti;
    std::uint32_t posti;
  };

  std::size_t posti() const { return blocco_ ? blocco_->posti : 0; }
  T* valori() const { return reinterpret_cast<T*>(blocco_ + 1); }

  void rialloca(std::size_t posti) {
    const auto presenti = static_cast<std::uint32_t>(size());
    void* nuovo =
        posti > UINT32_MAX ? nullptr : std::realloc(blocco_, sizeof(Blocco) + posti * sizeof(T));
    if (nuovo == nullptr) throw std::bad_alloc();
    blocco_ = new (nuovo) Blocco{presenti, static_cast<std::uint32_t>(posti)};
  }

  Blocco* blocco_ = nullptr;
};

}  // namespace pellak
