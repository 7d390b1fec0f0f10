// Small pieces shared by the reading and writing of service calls.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/qvdatabase/QVFileRegistros.h"
#include "df/qvlibex/QVCodigos.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVTaskMem.h"
#include "suite/servicedata/QVDadosGE.h"

// Whether a stored list (n records from position lPonteiro) lies inside a
// file of uiQtdRegistros records: S_OK for an empty list;
// E_QVCR_TENTATIVA_LER_POSICAO_ZERO for records without a first position;
// E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO for a run past the
// end. The caller's check names the list.
[[nodiscard]] HRESULT QVValidaLista(std::uint32_t lPonteiro, std::uint32_t n, QVUInt uiQtdRegistros);
[[nodiscard]] inline HRESULT QVValidaLista(CQVFileRegistros& arquivo, std::uint32_t lPonteiro, std::uint32_t n) {
  return n == 0 ? S_OK : QVValidaLista(lPonteiro, n, arquivo.GetQtdRegistros());
}

// A zeroed array of n elements from the task allocator (null for 0), for
// a wire record that owns it.
template <class T>
[[nodiscard]] HRESULT QVAlocaLista(T*& p, std::uint32_t n) {
  p = nullptr;
  if (n == 0) return S_OK;
  p = static_cast<T*>(CoTaskMemAlloc(static_cast<std::size_t>(n) * sizeof(T)));
  if (p == nullptr) return E_OUTOFMEMORY;
  std::memset(static_cast<void*>(p), 0, static_cast<std::size_t>(n) * sizeof(T));
  return S_OK;
}

// Whether every byte of a stored record is zero.
template <class T>
bool QVRegistroZerado(const T& reg) {
  const auto* p = reinterpret_cast<const unsigned char*>(&reg);
  for (std::size_t i = 0; i < sizeof reg; ++i)
    if (p[i] != 0) return false;
  return true;
}

// A wire record owned here: whatever it owns is freed when it goes.
template <class T>
struct CQVRegistroPs {
  T reg;
  CQVRegistroPs() { std::memset(static_cast<void*>(&reg), 0, sizeof reg); }
  ~CQVRegistroPs() { QVLibera(&reg); }
  CQVRegistroPs(const CQVRegistroPs&) = delete;
  CQVRegistroPs& operator=(const CQVRegistroPs&) = delete;
};

// Calendar events between the suite's list and the wire's. The identifiers
// travel as the bytes given.
[[nodiscard]] HRESULT QVEventosParaPs(const CQVDadosGE_ListaEventos& dados, _REG_GE_LISTA_EVENTO_GOOGLEPS& lista);
void QVEventosParaDados(const _REG_GE_LISTA_EVENTO_GOOGLEPS& lista, CQVDadosGE_ListaEventos& dados);

// A system string as a text of the data files (the suite's code page; a
// character it lacks becomes '?'), and back.
std::string QVTextoArquivoDoBstr(BSTR bs);
