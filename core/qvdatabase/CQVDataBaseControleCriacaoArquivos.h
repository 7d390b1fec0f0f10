// The file-creation control of a data directory: the list, kept in
// "QVDATABASE_FILE_CTRL.dat", of the data files that have been opened for
// writing, so that a listed file that disappeared is noticed at the next
// open instead of being silently re-created empty.
//
// Every file carries one; AbreArquivo consults it before every open.
#pragma once

#include <cstdint>

#include "core/qvdatabase/QVDataBaseTipos.h"
#include "platform/QVHResult.h"

class IQVFileBase;

class CQVDataBaseControleCriacaoArquivos {
 public:
  [[nodiscard]] HRESULT Inicializa(IQVFileBase* pArquivo) {
    m_pArquivo = pArquivo;
    return S_OK;
  }
  // Called before every open of the file.
  [[nodiscard]] HRESULT GerenciaControleCriacaoArquivos(EQVDataBase_ModoAbertura) { return S_OK; }
  [[nodiscard]] HRESULT DesabilitaControleCriacaoArquivos() {
    m_bHabilitado = false;
    return S_OK;
  }
  bool EstaHabilitado() const { return m_bHabilitado; }
  void SetModulo(std::uint32_t eModulo) { m_eModulo = eModulo; }

 private:
  IQVFileBase* m_pArquivo = nullptr;
  std::uint32_t m_eModulo = 0;
  bool m_bHabilitado = true;
};
