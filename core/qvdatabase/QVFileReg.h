// CQVFileReg<T, F>: a record file whose name comes from a root and, for the
// per-month format, a period. Selecting a period closes the current month's
// file and opens that month's (every month is its own physical file).
#pragma once

#include <cstdint>
#include <string>

#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVFileNameFormat.h"

template <class T, class F = CQVFileNameFormat>
class CQVFileReg : public CQVFile<T> {
 public:
  using typename CQVFile<T>::Indice;

  CQVFileReg(std::string sRaiz, std::uint32_t eModulo, std::initializer_list<Indice> indices = {})
      : CQVFile<T>(F::Nome(sRaiz, 0), eModulo, indices), m_sRaiz(std::move(sRaiz)) {}

  const std::string& GetRaiz() const { return m_sRaiz; }
  std::uint16_t GetPeriodo() const { return m_iMA; }

  // Makes iMA's file the current one: the previous month's is finalised
  // (flushed, closed) and the new one loaded. An object not yet initialised
  // only takes the name.
  [[nodiscard]] HRESULT SelecionaPeriodo(std::uint16_t iMA) {
    if (iMA == m_iMA && this->EstaInicializado()) return S_OK;
    m_iMA = iMA;
    this->m_sNomeArquivo = F::Nome(m_sRaiz, iMA);
    if (!this->EstaInicializado()) return S_OK;
    return this->Reinicializa();
  }

 private:
  const std::string m_sRaiz;
  std::uint16_t m_iMA = 0;
};
