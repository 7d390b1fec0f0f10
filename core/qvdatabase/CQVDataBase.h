// The files of one module of one company, initialised and finalised
// together, and the two switches every file of the database reads: read-only
// (every open becomes a read-only open) and deferred header update (the
// header is written once, when the file is finalised, instead of at every
// flush).
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "core/qvdatabase/IQVFileBase.h"
#include "suite/hostlink/CQVInicializador.h"

class CQVDataBase : public CQVInicializador {
 public:
  explicit CQVDataBase(std::uint32_t eModulo = 0) : m_eModulo(eModulo) {}
  ~CQVDataBase() override;

  std::uint32_t GetModulo() const { return m_eModulo; }
  void SetModulo(std::uint32_t eModulo) { m_eModulo = eModulo; }

  // Files are owned by the derived database (as members); the map only
  // points at them, keyed by file name.
  void AddFile(IQVFileBase* pFile);
  void RemoveFile(const std::string& sNomeArquivo);
  // Finalises every file (flushed and closed); the database itself stays
  // initialised. Used after a conversion, before the files are opened again.
  [[nodiscard]] HRESULT FechaArquivos();

  bool GetSomenteLeitura() const { return m_bSomenteLeitura; }
  void SetSomenteLeitura(bool b) { m_bSomenteLeitura = b; }
  bool GetAtualizacaoCabecalhoAdiada() const { return m_bAtualizacaoCabecalhoAdiada; }
  void SetAtualizacaoCabecalhoAdiada(bool b) { m_bAtualizacaoCabecalhoAdiada = b; }

  // A directory that replaces the company's data directory of the module
  // for every file of this database ("" = the company's).
  const std::string& GetDiretorio() const { return m_sDiretorio; }
  void SetDiretorio(std::string sDiretorio) { m_sDiretorio = std::move(sDiretorio); }

 protected:
  HRESULT OnInicializa() override;
  HRESULT OnFinaliza() override;

 private:
  std::uint32_t m_eModulo;
  std::map<std::string, IQVFileBase*> m_Arquivos;
  bool m_bSomenteLeitura = false;
  bool m_bAtualizacaoCabecalhoAdiada = false;
  std::string m_sDiretorio;
};
