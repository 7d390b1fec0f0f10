// Paths, renames and deletions of data files.
#pragma once

#include <cstdint>
#include <string>

#include "core/qvdatabase/IQVFileBase.h"
#include "core/qvdatabase/QVDataBaseTipos.h"
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
  // "GEATPRJ.dat" -> "GEATPRJ.tra".
  static std::string NomeArquivoTRA(const std::string& sNomeArquivo);
  // The extension after the last '.', "" when there is none.
  static std::string Extensao(const std::string& sNomeArquivo);
};
