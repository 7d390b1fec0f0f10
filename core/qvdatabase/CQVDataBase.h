// The files of one module of one company, initialised and finalised
// together, and the two switches every file of the database reads: read-only
// (every open becomes a read-only open) and deferred header update (the
// header is written once, when the file is finalised, instead of at every
// flush).
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "core/qvdatabase/IQVFileBase.h"
#include "df/qvlibex/QVLog.h"
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

  // Files loaded without holding them (read, then closed): every write
  // opens its file and LiberaArquivos lets them all go, so that several
  // processes can write one company's files in turn. Off, a load holds
  // each file for writing until it is finalised.
  bool GetRetemArquivos() const { return m_bRetemArquivos; }
  void SetRetemArquivos(bool b) { m_bRetemArquivos = b; }
  // LiberaGravacao of every file; each is let go even when one fails, and
  // the first failure is the result.
  [[nodiscard]] HRESULT LiberaArquivos();
  // Reading epochs: while the epoch is 0 every read of a file this process
  // does not hold looks at the disk first. Once epochs are started, such a
  // file looks once per epoch: an operation starts a new one, and sees
  // every change made before it began.
  std::uint64_t GetEpocaLeitura() const { return m_uiEpocaLeitura.load(std::memory_order_acquire); }
  void NovaEpocaLeitura() { m_uiEpocaLeitura.fetch_add(1, std::memory_order_acq_rel); }

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
  bool m_bRetemArquivos = true;
  std::atomic<std::uint64_t> m_uiEpocaLeitura{0};
  bool m_bAtualizacaoCabecalhoAdiada = false;
  std::string m_sDiretorio;
};

// Lets every file of a database go (LiberaArquivos) at the end of a write:
// declared after the mark the write takes, it runs before the mark's
// release on every way out. Libera does it early, with its status, for the
// way out that must report it.
class CQVLiberacaoArquivos {
 public:
  explicit CQVLiberacaoArquivos(CQVDataBase& db) : m_db(db) {}
  ~CQVLiberacaoArquivos() {
    if (!m_bLiberado) QV_LOGA(m_db.LiberaArquivos());
  }
  CQVLiberacaoArquivos(const CQVLiberacaoArquivos&) = delete;
  CQVLiberacaoArquivos& operator=(const CQVLiberacaoArquivos&) = delete;
  [[nodiscard]] HRESULT Libera() {
    m_bLiberado = true;
    return m_db.LiberaArquivos();
  }

 private:
  CQVDataBase& m_db;
  bool m_bLiberado = false;
};
