// Sample wire records with every owned part present, for the tests of
// what copies, compares, frees and carries records.
#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/QVRPCDLL/QVMetodos.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"

template <class T>
T* Novo(std::size_t n) {
  auto* p = static_cast<T*>(CoTaskMemAlloc(n * sizeof(T)));
  std::memset(static_cast<void*>(p), 0, n * sizeof(T));
  return p;
}

template <class T>
T Zerado() {
  T r;
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  return r;
}

// A record of any kind with everything its descriptor lists present: fixed
// bytes (fillers and all) from a pattern of the seed, one to three elements
// in each array (two levels of nested records), texts with their
// terminating zero, short system strings with non-ASCII characters. The
// same seed gives the same record in every process.
void QVTesteAmostra(const QVDescritorRegistro& d, void* registro, std::uint32_t semente);
template <class T>
T Amostra(std::uint32_t semente = 1) {
  T r;
  QVTesteAmostra(QVDescritor<T>(), &r, semente);
  return r;
}

// A value of any type a method's parameter may have, from a seed, alike in
// every process: a record as Amostra makes it, an allocated record holding
// one, an integer, a system string (none for seeds divisible by 3).
template <class T>
T QVTesteAmostraValor(std::uint32_t semente) {
  if constexpr (std::integral<T>) {
    return static_cast<T>(semente * 7 + 1);
  } else if constexpr (std::is_class_v<T>) {
    return Amostra<T>(semente);
  } else if constexpr (std::same_as<T, BSTR>) {
    return semente % 3 == 0 ? nullptr : QVBstrFromUtf8("leiaute nº " + std::to_string(semente));
  } else {
    auto* p = Novo<std::remove_pointer_t<T>>(1);
    *p = Amostra<std::remove_pointer_t<T>>(semente);
    return p;
  }
}

template <class T>
bool QVTesteIgualAmostra(const T& valor, std::uint32_t semente) {
  T esperado = QVTesteAmostraValor<T>(semente);
  bool igual;
  if constexpr (std::integral<T>)
    igual = valor == esperado;
  else if constexpr (std::is_class_v<T>)
    igual = QVIguais(valor, esperado);
  else if constexpr (std::same_as<T, BSTR>)
    igual = (valor == nullptr) == (esperado == nullptr) && QVBstrToUtf8(valor) == QVBstrToUtf8(esperado);
  else
    igual = valor != nullptr && QVIguais(*valor, *esperado);
  QVLiberaValor(&esperado);
  return igual;
}
