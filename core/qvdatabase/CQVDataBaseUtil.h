// Paths, renames and deletions of data files.
#pragma once

#include <cstdint>
#include <string>

#include "core/qvdatabase/IQVFileBase.h"
#include "core/qvdatabase/QVDataBaseTipos.h"
#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFileSingleReg.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVHResult.h"

class CQVDataBaseUtil {
 public:
  // The full path of a data file in the company's directory of a module.
  // A company without a directory answers E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS.
  [[nodiscard]] static HRESULT GetPathArquivo(std::uint32_t eModulo, const std::string& sEmpresa,
                                              const std::string& sNomeArquivo, std::string* pPath);
  // The same, for a name that lives beside a file object: in the file's own
  // directory when it has one, else in its company's.
  [[nodiscard]] static HRESULT GetPathArquivo(const IQVFileBase* pArquivo, const std::string& sNomeArquivo,
                                              std::string* pPath);
  // Puts the temporary copy (the name with extension "tra") in the file's
  // place, durably.
  [[nodiscard]] static HRESULT RenomeiaArquivoTRA(const IQVFileBase* pArquivo, std::uint32_t eModulo,
                                                  const std::string& sNomeArquivo);
  // Deletes a data file (absent is no failure).
  [[nodiscard]] static HRESULT DeletaArquivo(IQVFileBase* pArquivo, std::uint32_t eModulo,
                                             const std::string& sNomeArquivo, EQVDataBase_DeletaArquivoFlag eFlag);
  // The record of a single-record file of a module of a company (zeros when
  // the file does not exist), and its writing.
  template <class T>
  [[nodiscard]] static HRESULT LeSingleReg(const IQVDF_Profiler* pProfiler, std::uint32_t eModulo, T* pRegistro,
                                           const std::string& sNomeArquivo);
  template <class T>
  [[nodiscard]] static HRESULT GravaSingleReg(const IQVDF_Profiler* pProfiler, std::uint32_t eModulo,
                                              const T& registro, const std::string& sNomeArquivo);

  // A database of its own for a caller's file: the caller's identity, and its
  // directory when the caller is a file that has one.
  [[nodiscard]] static HRESULT InicializaDataBaseDoChamador(CQVDataBase* pDB, const IQVDF_Profiler* pProfiler);

  // "GEATPRJ.dat" -> "GEATPRJ.tra".
  static std::string NomeArquivoTRA(const std::string& sNomeArquivo);
  // The extension after the last '.', "" when there is none.
  static std::string Extensao(const std::string& sNomeArquivo);
};

// A single-record file is opened through a database of its own, so that it
// takes the caller's company, user and session.
template <class T>
HRESULT CQVDataBaseUtil::LeSingleReg(const IQVDF_Profiler* pProfiler, std::uint32_t eModulo, T* pRegistro,
                                     const std::string& sNomeArquivo) {
  CQVDataBase qvDB(eModulo);
  QV_CHECK(InicializaDataBaseDoChamador(&qvDB, pProfiler));
  CQVFileSingleReg<T> arquivo(sNomeArquivo, eModulo);
  QV_CHECK(arquivo.Inicializa(&qvDB));
  QV_CHECK(arquivo.Le(pRegistro));
  return S_OK;
}

template <class T>
HRESULT CQVDataBaseUtil::GravaSingleReg(const IQVDF_Profiler* pProfiler, std::uint32_t eModulo, const T& registro,
                                        const std::string& sNomeArquivo) {
  CQVDataBase qvDB(eModulo);
  QV_CHECK(InicializaDataBaseDoChamador(&qvDB, pProfiler));
  CQVFileSingleReg<T> arquivo(sNomeArquivo, eModulo);
  QV_CHECK(arquivo.Inicializa(&qvDB));
  QV_CHECK(arquivo.Grava(registro));
  QV_CHECK(arquivo.Finaliza());
  return S_OK;
}
