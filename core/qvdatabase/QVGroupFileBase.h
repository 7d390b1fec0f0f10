// CQVGroupFileBase: one logical file made of many per-month record files,
// each reached by a numeric key: the month code of its name.
//
// The group's own name is a pattern in which each character of the period
// is a '?' ("GEATTPINT??????.DAT"). At initialisation every file of the
// directory that matches the pattern (letter case ignored) becomes a member;
// a member whose period cannot be read fails the initialisation with
// E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO. Members are kept, and finalised, in
// key order, i.e. in month order. Writing to a key without a member creates
// that month's file.
//
// Another process may create a month's file after the initialisation: a
// read or look-up of a month without a member looks for its file on disk,
// and the listing of every member (GetChaves, the total count) looks at the
// directory again. A member found so is loaded without being held (the file
// is held from its first write here), as a read never takes the place of
// another process's writer. A write to a month without a member loads what
// is on disk before it writes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/qvdatabase/QVFileBase.h"

class CQVGroupFileBase : public CQVFileBase {
 public:
  CQVGroupFileBase(std::string sPadrao, std::uint32_t eModulo);
  ~CQVGroupFileBase() override;

  // The records of every member.
  QVUInt GetQtdRegistros() override;
  // The records of one member; 0 when the key has none.
  QVUInt GetQtdRegistros(std::uint64_t uiChaveNomeArquivo);
  // The member of a key, or null.
  [[nodiscard]] HRESULT LookupMapFiles(std::uint64_t uiChaveNomeArquivo, IQVFileBase** ppQVFileInterface);
  // The member of a key (null when the month has no file).
  [[nodiscard]] HRESULT ProcuraMembro(std::uint64_t uiChaveNomeArquivo, CQVFileBase** ppMembro);
  // Deletes every member's file.
  [[nodiscard]] HRESULT DeletaArquivo() override;
  [[nodiscard]] HRESULT DesabilitaControleCriacaoArquivos() override;
  // Every member's; each is let go even when one fails.
  [[nodiscard]] HRESULT LiberaGravacao() override;

  std::vector<std::uint64_t> GetChaves();
  // The member name of a key, and the key of a member name (0: not a name of
  // this group).
  std::string NomeArquivoDaChave(std::uint64_t uiChaveNomeArquivo) const;
  std::uint64_t ChaveDoNomeArquivo(const std::string& sNome) const;
  bool CorrespondeAoPadrao(const std::string& sNome) const;

 protected:
  // Makes the member object of a name (not initialised).
  virtual std::unique_ptr<CQVFileBase> NewFile(const std::string& sNomeArquivo) = 0;
  HRESULT OnInicializa() override;
  HRESULT OnFinaliza() override;
  std::string NomeClasseLog() const override { return "CQVGroupFileBase"; }
  const char* FonteLog() const override { return "core/qvdatabase/QVGroupFileBase"; }

  // The member of a key, made and initialised (its file created at its
  // first write) when there is none yet; bReter false loads it without
  // holding its file.
  [[nodiscard]] HRESULT IncluiMembro(std::uint64_t uiChaveNomeArquivo, CQVFileBase** ppMembro, bool bReter = true);
  CQVFileBase* Membro(std::uint64_t uiChaveNomeArquivo) const;

 private:
  [[nodiscard]] HRESULT InicializaMembro(CQVFileBase* pQVFile);
  // Adds a member for every file of the directory that matches the pattern
  // and has none yet. The directory is listed again only when its entries
  // changed since the last listing: reads of a group cost a stat, not a
  // directory scan.
  [[nodiscard]] HRESULT IncluiMembrosDoDiretorio(bool bReter);

  // Guards the map: reads may add members. A member, once in, stays until
  // the group is finalised, so the pointers handed out stay valid.
  mutable std::recursive_mutex m_mutex;
  std::map<std::uint64_t, std::unique_ptr<CQVFileBase>> m_Membros;
  bool m_bControleDesabilitado = false;
  // The directory's time of change seen by the last listing (-1: none yet)
  // and the wall-clock time that listing began.
  std::int64_t m_iDiretorioMudouNs = -1;
  std::int64_t m_iListadoEmNs = 0;
};
