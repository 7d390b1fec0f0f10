// CQVFileRegistros: a file of fixed-size records, held whole in memory and
// written through to disk, with in-memory indexes over computed keys. The
// typed face is CQVFile<T> (QVFile.h); this untyped core knows only the
// record size, so tools can open any record file.
//
// On disk the records follow one another from GetSeekCabecalho(), in
// position order: record p (1-based) lies at GetSeekCabecalho() +
// (p - 1) * size. In memory the array holds every record; element p - 1 is
// position p.
//
// Invariants (all under m_mutex):
//  1. The array equals the file's data, record for record, as it was at the
//     snapshot of QVFileBase.h (invariant 5), after every call that returned
//     (a failed write is rolled back on disk, not applied in memory). Every
//     read and look-up first reads the file again if another process
//     changed it; every write does so once it holds the file.
//  2. Each index maps every non-zero key of its column to the positions
//     holding it; it is built from the array at the first look-up or write
//     and kept up to date by every write after that.
//  3. Reads and look-ups of a file this process holds for writing never
//     touch the disk.
//  4. Memory that SetArrayData/SetRegData changed and that is not written
//     yet (a conversion at work) is never replaced by a reading again.
//
// Memory: the records sit in one block (platform/QVMemoria.h) with room to
// grow: a load leaves an eighth more (at least 16 records), a write that
// needs more makes it half as large again. The room is address space, not
// memory, until records are written there, and growing never copies the
// records, so the first append after loading a large file costs no more than
// any other.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/qvdatabase/QVFileBase.h"
#include "platform/QVMemoria.h"

class CQVFileRegistros : public CQVFileBase {
 public:
  // The key of a record for an index column; 0 means "no key" (not entered).
  using FuncaoChave = std::function<std::uint64_t(const void* pRegistro, QVUInt uiColunaIndexacao)>;
  struct DescritorIndice {
    FuncaoChave chave;
    bool bPermiteChaveZero = true;
    bool bPermiteChaveRepetida = true;
  };

  CQVFileRegistros(std::string sNomeArquivo, std::uint32_t eModulo, std::size_t tamRegistro,
                   std::string sNomeEstrutura, std::vector<DescritorIndice> indices = {});
  ~CQVFileRegistros() override;

  QVUInt GetQtdRegistros() override;
  // Under this file's lock: no read of another thread meets it half closed.
  [[nodiscard]] HRESULT LiberaGravacao() override {
    std::lock_guard lock(m_mutex);
    return CQVFileBase::LiberaGravacao();
  }
  std::string GetNomeEstrutura() const override { return m_sNomeEstrutura; }
  std::size_t GetTamanhoRegistro() const { return m_tamRegistro; }

  // Copies record uiPosicao out of memory.
  [[nodiscard]] HRESULT LeRegistro(QVUInt uiPosicao, void* pRegistro);
  // Writes n consecutive records from uiPosicao (0 = append); on return
  // uiPosicao is the position of the first record written. Everything is
  // checked (position, every index) before anything is written; the run
  // goes to disk in one write, then Flush.
  [[nodiscard]] HRESULT GravaRegistros(QVUInt& uiPosicao, const void* pRegistros, std::size_t n);

  // Index look-ups of a column: whether a key is present; its first
  // position (0 when absent); all its positions. A column outside the
  // declared ones, and a key found with no position, answer
  // E_QVCR_COLUNA_INDEXACAO_INVALIDA.
  [[nodiscard]] HRESULT ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste);
  [[nodiscard]] HRESULT ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste,
                                    QVUInt* puiPosicaoIndex);
  [[nodiscard]] HRESULT ExisteIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave, bool* pbExiste,
                                    std::vector<QVUInt>* plistaPosicao);

  // Conversions replace content. SetArrayData and SetRegData change memory
  // only (and mark it as differing from the disk); SetConteudo replaces the
  // array and writes the file, unless memory and the new content are the
  // same and nothing is pending.
  [[nodiscard]] HRESULT SetConteudo(const void* pRegistros, std::size_t n);
  [[nodiscard]] HRESULT SetArrayData(const void* pRegistros, std::size_t n);
  [[nodiscard]] HRESULT SetRegData(QVUInt uiPosicao, const void* pRegistro);
  bool PrecisaGravar() const;

  // The record in memory; valid until the next call on this file. Null
  // outside 1..count.
  const void* GetPonteiroRegistro(QVUInt uiPosicao);

 protected:
  HRESULT OnInicializa() override;
  HRESULT OnFinaliza() override;
  HRESULT LeConteudo(bool bExiste, QVUInt uiTamanho) override;
  std::string NomeClasseLog() const override { return "CQVFile<" + m_sNomeEstrutura + ">"; }
  const char* FonteLog() const override { return "core/qvdatabase/QVFile"; }

 private:
  using Indice = std::map<std::uint64_t, std::vector<QVUInt>>;

  [[nodiscard]] HRESULT ValidaIndex(QVUInt uiPosicao, const unsigned char* pRegistros, std::size_t n, QVUInt idx);
  void RemoveIndex(QVUInt uiPosicao, std::size_t n);
  void AtualizaIndex(QVUInt uiPosicao, const unsigned char* pRegistros, std::size_t n);
  void IncluiIndex(QVUInt idx, std::uint64_t uiChave, QVUInt uiPosicao);
  void ConstroiIndices();
  // The positions of a key in a column's index (null when absent), after
  // the column and the entry were checked.
  [[nodiscard]] HRESULT ProcuraIndex(QVUInt uiColunaIndexacao, std::uint64_t uiChave,
                                     const std::vector<QVUInt>** ppPosicoes);
  // Puts back on disk what memory holds for the data bytes from uiOffset on,
  // cuts the file to the array's length and flushes; a failure leaves the
  // file in doubt. Called after a failed write.
  void RestauraDoMemoria(QVUInt uiOffset, HRESULT hrFalha);
  // SincronizaLeitura, unless memory holds changes not written (invariant 4).
  [[nodiscard]] HRESULT SincronizaParaLer();
  // Makes room for uiCapacidade records (the count stays); E_OUTOFMEMORY
  // leaves everything as it was.
  [[nodiscard]] HRESULT Reserva(QVUInt uiCapacidade);
  // Sets the count to uiQtd, making room first.
  [[nodiscard]] HRESULT Redimensiona(QVUInt uiQtd);
  unsigned char* Registro(QVUInt uiPosicao) { return m_pDados.get() + (uiPosicao - 1) * m_tamRegistro; }

  std::recursive_mutex m_mutex;
  const std::size_t m_tamRegistro;
  const std::string m_sNomeEstrutura;
  std::vector<DescritorIndice> m_Descritores;
  std::vector<Indice> m_Indices;
  bool m_bIndicesProntos = false;
  // The records: m_uiQtd of them in a block of m_uiCapacidade records.
  CQVBloco m_pDados;
  // The largest block a finalised content left, for the next load (one
  // block per file object, never more: a month file's object keeps at most
  // its largest month's size).
  CQVBloco m_pReserva;
  void Guarda(CQVBloco bloco);
  QVUInt m_uiQtd = 0;
  QVUInt m_uiCapacidade = 0;
  bool m_bArquivoExiste = false;
  bool m_bAlteradoEmMemoria = false;
};
