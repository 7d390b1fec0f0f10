// CQVFileBase: one data file of the record store, with the 240-byte block
// (QVFormatoCabecalho.h) that identifies it, records who last wrote it and
// guards its length with a CRC-64.
//
// Files written before headers existed have none: they are read as they
// are (data from offset 0) and get a header the first time they are opened
// for writing with header management on. Every position of the derived
// classes is counted from the end of the block (GetSeekCabecalho).
//
// Invariants:
//  1. A file that is open for writing and not in doubt has, after each
//     Flush, a header whose data length is the file's length minus 240
//     (with the deferred-header switch on: after the final Flush only).
//  2. A header that fails validation fails the open; the file is left as
//     it is. Nothing is repaired behind the user's back.
//  3. After a write or flush that failed, the derived class restores the
//     file from its memory at once (the last content its callers were told
//     was written). When that fails too, the file is "in doubt": it refuses
//     every further write with the first failure's status and its header is
//     no longer updated, so a damaged file is refused at its next open
//     instead of being read wrong.
//  4. Failures of the platform's file layer never leave the class: each is
//     mapped to a status (CatchGravacao, CatchInicializacao) and logged with
//     its cause and the file's name.
//
// Between processes. Memory is what the disk held when it was last read or
// written here; the snapshot (m_Retrato: which file, its length, its time of
// change, and its header's update and wrap counters) records that state.
//  5. While this process holds the file open for writing (the open denies
//     writing to every other handle), nobody else can change it: reads are
//     pure memory reads. A file not held (absent at the load, read since, or
//     open read-only) may be created, appended to, rewritten or replaced by
//     another process: SincronizaLeitura, before every read, and
//     SincronizaGravacao, after every open for writing and before the
//     write's checks, compare the disk with the snapshot and read the file
//     again when it changed. So a unique key another process wrote is seen
//     by the index check, and an append lands at the end of the file as it
//     is on disk.
//  6. The content lock (IQVOsFile::LockContent) is held exclusively from the
//     first byte a write changes until the flush that follows has written
//     the header, and shared by a reader while it reads a file it does not
//     hold: no reader sees data without its header.
//  7. A whole-file rewrite writes a copy (extension "tra"), flushes it, and
//     puts it in the file's place with one rename: a crash leaves the old
//     file or the new one, never a mixture (SubstituiDados).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "core/qvdatabase/CQVDataBaseControleCriacaoArquivos.h"
#include "core/qvdatabase/IQVFileBase.h"
#include "core/qvdatabase/QVDataBaseTipos.h"
#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVOsFile.h"

class CQVDataBase;

// The check-and-log step inside the file classes: the line names the class
// ("CQVFile<REG_X>::GravaRegistros"), the failing expression, and the file's
// name plus any named values given after the expression:
//   QV_CHECK_ARQ(Flush(), {"uiPosicao", std::to_string(uiPosicao)});
#define QV_CHECK_ARQ(expr, ...)                                                                 \
  QV_CHECK_COM(([&, qvMetodo_ = static_cast<const char*>(__func__)](const char* qvExpr_, HRESULT qvHr_) { \
                 this->LogaFalha(qvMetodo_, __LINE__, qvExpr_, qvHr_, {__VA_ARGS__});                \
               }),                                                                              \
               expr)
// A named code raised by a file class.
#define QV_RETURN_ARQ(codigo, ...)                                          \
  do {                                                                      \
    const HRESULT qvHrArq_ = (codigo);                                      \
    this->LogaFalha(__func__, __LINE__, #codigo, qvHrArq_, {__VA_ARGS__});  \
    return qvHrArq_;                                                        \
  } while (0)

class CQVFileBase : public IQVFileBase {
 public:
  CQVFileBase(std::string sNomeArquivo, std::uint32_t eModulo);
  ~CQVFileBase() override;

  using IQVFileBase::Inicializa;
  [[nodiscard]] HRESULT Inicializa(CQVDataBase* pDataBase) override;

  // Opens in a mode (replaced by eModoLeitura in a read-only database). A
  // file that does not exist is created only by eModoLeituraGravacaoCriacao;
  // otherwise the open succeeds and leaves it closed (the derived classes
  // then see an empty file).
  [[nodiscard]] HRESULT AbreArquivo(EQVDataBase_ModoAbertura eModoAbertura);
  // Re-opens in the mode last asked for.
  [[nodiscard]] HRESULT AbreArquivo();
  void FechaArquivo();
  bool ExisteArquivo() const;
  // Updates the header (when this flush is the one the deferred-header
  // switch selects) and makes everything written reach the disk.
  [[nodiscard]] HRESULT Flush(bool bFinal = false);

  // 240 when the open file has a version-1 header, else 0.
  QVUInt GetSeekCabecalho();
  bool PossuiCabecalho();
  // Whether headers are managed for this file (the machine switch, and not
  // a temporary or control file).
  bool GerenciarCabecalho() const;
  [[nodiscard]] HRESULT GerenciaCabecalho();
  [[nodiscard]] HRESULT GeraDadosCabecalho();
  [[nodiscard]] HRESULT CriaCabecalho();
  [[nodiscard]] HRESULT ValidaCabecalho();
  [[nodiscard]] HRESULT ValidaCabecalhoV01();
  [[nodiscard]] HRESULT AtualizaCabecalho();
  // Stamps the file's own format version (conversions mark converted files).
  [[nodiscard]] HRESULT GravaVersaoArquivo(std::uint16_t usVersaoArquivo);

  [[nodiscard]] HRESULT DeletaArquivo() override;
  std::string GetNomeArquivo() const override { return m_sNomeArquivo; }
  std::uint32_t GetModulo() const override { return m_eModulo; }
  void SetModulo(std::uint32_t eModulo) override;
  QVUInt GetQtdRegistros() override { return 0; }
  [[nodiscard]] HRESULT DesabilitaControleCriacaoArquivos() override;
  std::string GetNomeEstrutura() const override { return "Invalid"; }
  std::string GetDiretorio() const override;
  // Places the file in a directory of its own instead of its database's or
  // company's (tools that inspect a folder, tests).
  void SetDiretorio(std::string sDiretorio) { m_sDiretorio = std::move(sDiretorio); }
  // The load reads the file and closes it again instead of holding it open
  // for writing (a month file that a read found on disk): it is held from
  // its first write on.
  void SetCargaSemReter(bool b) { m_bCargaSemReter = b; }
  [[nodiscard]] HRESULT LiberaGravacao() override;
  // Whether the disk still holds what memory reflects (nothing written by
  // another process since this one last read or wrote it); free for a file
  // held for writing.
  [[nodiscard]] HRESULT ConfereDisco(bool* pbAtual);
  // The header counters of the disk as memory reflects it (0 without a
  // header).
  std::uint64_t GetContadorRetrato() const { return m_uiRetratoContador; }
  std::uint16_t GetVoltasRetrato() const { return m_usRetratoVoltas; }

  [[nodiscard]] HRESULT GetPathArquivo(std::string* pPath) const;
  EQVDataBase_ModoAbertura GetModoAbertura() const { return m_eOpenMode; }
  const QVPreambuloArquivo& GetPreambulo() const { return m_Preambulo; }
  const QVCabecalhoArquivo& GetCabecalho() const { return m_Cabecalho; }
  // S_OK, or the status of the failure that left the file in doubt.
  HRESULT GetEstadoDuvida() const { return m_hrDuvida; }

  // The open's retries after a transient failure: 500 attempts 10 ms apart.
  // Tests shorten them; nothing else may.
  static void DefineTentativasAbertura(int iTentativas, std::uint32_t ulIntervaloMs);
  // Forgets the machine-wide header switch so that the next file reads it
  // again (it is otherwise read once per process).
  static void RecarregaChaveCabecalho();

 protected:
  HRESULT OnInicializa() override;
  HRESULT OnFinaliza() override;

  // File exceptions of the platform's file layer, mapped to statuses and
  // logged with their cause: while writing, and while opening or flushing.
  [[nodiscard]] HRESULT CatchGravacao(const CFileException& ex);
  [[nodiscard]] HRESULT CatchInicializacao(const CFileException& ex);
  // Whether an exception must end the operation (all but a read past the end).
  bool EhUmaExcecaoFatal(const CFileException& ex) const;
  // The exception of the platform file layer's last failure.
  CFileException ExcecaoDoArquivo(int iCausaPadrao) const;

  // Data access for the derived classes; offsets count from the data start
  // (GetSeekCabecalho). Reads fail with the end-of-file cause when fewer
  // bytes are there.
  [[nodiscard]] HRESULT LeDados(QVUInt uiOffset, void* pBuffer, std::size_t n);
  // Writes at an offset of the data, or at its end (uiOffset kQVFimDados);
  // *puiOffset receives where the bytes went.
  static constexpr QVUInt kQVFimDados = ~QVUInt{0};
  [[nodiscard]] HRESULT GravaDados(QVUInt uiOffset, const void* pBuffer, std::size_t n, QVUInt* puiOffset = nullptr);
  [[nodiscard]] HRESULT TamanhoDados(QVUInt* puiTamanho);
  // The file's data bytes, an unfinished write past the header's length
  // included.
  [[nodiscard]] HRESULT TamanhoDadosSemLimite(QVUInt* puiTamanho);
  [[nodiscard]] HRESULT TruncaDados(QVUInt uiTamanho);
  // The load of a derived class: opens the file for reading and writing (an
  // absent file stays closed; see SetCargaSemReter) and reads its content
  // through LeConteudo.
  [[nodiscard]] HRESULT Carrega();
  // Reads the whole data (uiTamanho bytes from the data start; bExiste false
  // and 0 when the file is absent) into memory, replacing what memory held;
  // on failure memory is unchanged. Called by the load and by every reload.
  // A file with no content of its own in memory has nothing to read.
  [[nodiscard]] virtual HRESULT LeConteudo(bool /*bExiste*/, QVUInt /*uiTamanho*/) { return S_OK; }
  // See invariant 5. SincronizaLeitura does nothing for a file held for
  // writing. SincronizaGravacao needs the file open for writing;
  // *pbRecarregado tells whether memory was read again (the write's checks
  // must then be made again).
  [[nodiscard]] HRESULT SincronizaLeitura();
  [[nodiscard]] HRESULT SincronizaGravacao(bool* pbRecarregado = nullptr);
  // Replaces the whole data by pDados (n bytes) through a copy and one
  // rename (invariant 7), with the header updated as a flush would. Needs
  // the file open for writing, and no other handle open on it: the platform
  // refuses to rename over an open file, and the call then fails with the
  // file as it was. *pbSubstituido tells whether the new data is the file's:
  // memory must then take it, even when the reopen that follows failed.
  [[nodiscard]] HRESULT SubstituiDados(const void* pDados, std::size_t n, bool* pbSubstituido);
  // Finalises the file and initialises it again with the database or
  // identity it had (a new name, a deleted file).
  [[nodiscard]] HRESULT Reinicializa();
  CQVDataBase* GetDataBase() const { return m_pDataBase; }
  // Whether writing is allowed now: open for writing and not in doubt.
  [[nodiscard]] HRESULT PodeGravar();
  // Called by a derived class when restoring after a failed write failed too.
  void MarcaDuvida(HRESULT hr);
  bool ArquivoAberto() const { return m_pArquivo && m_pArquivo->IsOpen(); }

  // The class name used in log lines ("CQVFile<REG_X>"); derived classes
  // name themselves.
  virtual std::string NomeClasseLog() const { return "CQVFileBase"; }
  virtual const char* FonteLog() const { return "core/qvdatabase/QVFileBase"; }
  // One error line: the method, the failing expression, its status and the
  // file's name plus any named values.
  void LogaFalha(const char* metodo, int linha, const char* expressao, HRESULT hr,
                 std::initializer_list<QVParametroLog> extras = {}) const;

  std::string m_sNomeArquivo;
  std::uint32_t m_eModulo;

 private:
  bool EhArquivoExcluido() const;
  // The header fields an update changes, for a data length.
  void PreparaAtualizacao(QVCabecalhoArquivo* pCabecalho, QVUInt uiTamanhoDados) const;
  // Writes a copy (".tra": bloco, then pDados or, when null, this file's
  // first uiTamanho bytes) and renames it over the file, which is then
  // opened again in its mode. A copy already there is refused
  // (E_QVCR_ARQUIVO_TRA_ENCONTRADO) or replaced. A copy left by a failure
  // is deleted.
  [[nodiscard]] HRESULT SubstituiPorCopia(const unsigned char* pBloco, std::size_t nBloco, const void* pDados,
                                          QVUInt uiTamanho, bool bRecusaCopiaExistente, bool* pbSubstituido);
  [[nodiscard]] HRESULT LeDoDisco();
  [[nodiscard]] HRESULT CarregaSemReter();
  [[nodiscard]] HRESULT TiraRetrato();
  static bool AlteradoHaPouco(const QVFileIdentity& id);
  // The header counters of the file on disk, opened for reading and closed.
  [[nodiscard]] HRESULT LeContadoresSemReter(std::uint64_t* puiContador, std::uint16_t* pusVoltas);
  // Cuts off the bytes past the header's data length (a dead writer's
  // unfinished write), with one log line; the file is open for writing.
  [[nodiscard]] HRESULT DescartaEscritaInacabada(QVUInt uiTamanhoDados, QVUInt uiTamanhoArquivo);
  // SincronizaLeitura's look at the disk, whatever the epoch.
  [[nodiscard]] HRESULT VerificaDisco();
  std::uint64_t EpocaLeitura() const;
  [[nodiscard]] HRESULT DiscoMudou(bool* pbMudou);
  [[nodiscard]] HRESULT LeContadores(std::uint64_t* puiContador, std::uint16_t* pusVoltas);
  [[nodiscard]] HRESULT TravaConteudo(bool bExclusiva);
  void LiberaConteudo();
  // The end of a write (its flush): readers may look again.
  void LiberaTravaExclusiva();
  [[nodiscard]] HRESULT LeAbsoluto(QVUInt uiOffset, void* pBuffer, std::size_t n);
  [[nodiscard]] HRESULT GravaAbsoluto(QVUInt uiOffset, const void* pBuffer, std::size_t n);
  [[nodiscard]] HRESULT TamanhoArquivo(QVUInt* puiTamanho);
  void PreencheTextos(QVCabecalhoArquivo& c, bool bCriacao, std::int64_t agora) const;

  std::unique_ptr<IQVOsFile> m_pArquivo;
  CQVDataBase* m_pDataBase = nullptr;
  EQVDataBase_ModoAbertura m_eOpenMode = EQVDataBase_ModoAbertura::eModoFechado;
  EQVDataBase_ModoAbertura m_eUltimoModo = EQVDataBase_ModoAbertura::eModoLeituraGravacao;
  CQVDataBaseControleCriacaoArquivos m_ControleCriacaoArquivos;
  bool m_bCabecalhoExaminado = false;
  bool m_bPossuiCabecalho = false;
  QVPreambuloArquivo m_Preambulo{};
  QVCabecalhoArquivo m_Cabecalho{};
  std::string m_sDiretorio;
  HRESULT m_hrDuvida = S_OK;
  // Bytes were written since the last sync: a flush of a file that was only
  // read costs no fdatasync.
  bool m_bSujo = false;
  // The content lock is held exclusively for a write in progress.
  bool m_bTravaExclusiva = false;
  bool m_bCargaSemReter = false;
  // What memory reflects (invariant 5); an absent file's is all zero.
  QVFileIdentity m_Retrato{};
  std::uint64_t m_uiRetratoContador = 0;
  std::uint16_t m_usRetratoVoltas = 0;
  // Taken with the file open for writing, which has stayed open since.
  bool m_bRetratoGarantido = false;
  // Read-only: the header's data length when the file holds more (a dead
  // writer's unfinished write past it); kSemLimiteDados otherwise.
  static constexpr QVUInt kSemLimiteDados = ~QVUInt{0};
  QVUInt m_uiLimiteDados = kSemLimiteDados;
  // The database's reading epoch in which memory was last checked against
  // (or read from) the disk; 0 = never.
  std::uint64_t m_uiEpocaVerificada = 0;
};

// The cause names the log uses for a file failure ("eSharingViolation"...).
const char* QVNomeCausaArquivo(int iCausa);
// The cause of a platform file error (a Win32 error number).
int QVCausaDoErroArquivo(std::uint32_t ulErro);
// The cause of the read-only attribute, beyond the platform's own causes.
inline constexpr int kQVCausaSomenteLeitura = 100;
inline constexpr int kQVCausaErroGenerico = 101;
