// The file-creation control of a data directory: "QVDATABASE_FILE_CTRL.dat"
// (a text file in the layout of CQVTextFile, never with a header) lists the
// data files that have been opened for writing, one name per text. A listed
// file that is no longer on disk makes its next open for writing fail with
// E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS, instead of the system
// silently re-creating it empty.
//
// Rules (every data file carries one control, consulted by AbreArquivo):
//  - opens for writing: a file on disk that is not listed gets listed; a
//    listed file that is not on disk is refused; a new file is listed as
//    soon as its creating open made it;
//  - read-only opens (and every open of a read-only database) neither
//    consult nor change the control;
//  - temporary files ("tra"), "ofl" files and the control file itself are
//    never controlled;
//  - an entry is removed only when the file is deleted through
//    CQVDataBaseUtil::DeletaArquivo, by rewriting the control through a
//    "QVDATABASE_FILE_CTRL.tra" copy (an existing copy stops the removal
//    with E_QVCR_ARQUIVO_TRA_ENCONTRADO).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/qvdatabase/QVDataBaseTipos.h"
#include "platform/QVHResult.h"

class IQVFileBase;

class CQVDataBaseControleCriacaoArquivos {
 public:
  [[nodiscard]] HRESULT Inicializa(IQVFileBase* pArquivo);
  // Called by AbreArquivo before every open for writing, and again after an
  // open that created the file.
  [[nodiscard]] HRESULT GerenciaControleCriacaoArquivos(EQVDataBase_ModoAbertura eModoAbertura);
  // Whether the file's name is listed (letter case ignored).
  [[nodiscard]] HRESULT PossuiControleCriacaoArquivos(bool* pbPossui);
  [[nodiscard]] HRESULT CriaControleCriacaoArquivos();
  // Takes a name (the file's own when empty) out of the list.
  [[nodiscard]] HRESULT RemoveControleCriacaoArquivos(const std::string& sNomeArquivo = {});
  [[nodiscard]] HRESULT DesabilitaControleCriacaoArquivos() {
    m_bHabilitado = false;
    return S_OK;
  }
  bool EstaHabilitado() const { return m_bHabilitado; }
  void SetModulo(std::uint32_t eModulo) { m_eModulo = eModulo; }

  // Whether a file name is never controlled.
  static bool EhExcluido(const std::string& sNomeArquivo);

  // The names listed, as written, through a read-only open: nothing is
  // written and no other process is held up (the administrators' tools).
  [[nodiscard]] HRESULT LeLista(std::vector<std::string>* pNomes);
  // Writes the list to "QVDATABASE_FILE_CTRL.tra" (refused when one is
  // there: the trace of an interrupted removal, left for an administrator).
  [[nodiscard]] HRESULT EscreveCopia(const std::vector<std::string>& aRegistrosNew);

 private:

  IQVFileBase* m_pArquivo = nullptr;
  std::uint32_t m_eModulo = 0;
  bool m_bHabilitado = true;
};
