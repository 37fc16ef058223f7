#pragma once

#include <memory>

namespace pellak {

/// A part of a record that most records do without: one pointer where it is absent. It is copied
/// with its record. Reading an absent one reads an empty `T`; only `scrivi` makes it.
template <class T>
class Parte {
 public:
  Parte() = default;
  Parte(const Parte& altra) : dati_(altra.dati_ ? std::make_unique<T>(*altra.dati_) : nullptr) {}
  Parte(Parte&&) noexcept = default;
  Parte& operator=(Parte altra) noexcept {
    dati_.swap(altra.dati_);
    return *this;
  }
  ~Parte() = default;

  const T* operator->() const { return &**this; }
  const T& operator*() const {
    static const T vuota{};
    return dati_ ? *dati_ : vuota;
  }

  bool presente() const { return dati_ != nullptr; }

  T& scrivi() {
    if (!dati_) dati_ = std::make_unique<T>();
    return *dati_;
  }

 private:
  std::unique_ptr<T> dati_;
};

}  // namespace pellak
