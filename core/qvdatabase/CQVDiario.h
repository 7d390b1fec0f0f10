// The write-ahead journal of a company's folder: the writes of one logical
// operation (bytes at offsets of the folder's files, or a file's new
// length) are appended as one transaction and made durable with one flush;
// the data files may then be written without waiting for theirs. After a
// crash, the committed transactions are applied again (applying twice is
// harmless: every write is a whole image of its bytes), and an incomplete
// or damaged last transaction is dropped. The journal is emptied at a
// checkpoint, once the data files have reached the disk.
//
// On disk ("QVDIARIO.jnl", little-endian):
//   header, 32 bytes:     "QVDIARIO" | u32 version (1) | u32 0 | u64 generation
//                         | u64 CRC-64 of the 24 bytes before it
//   transaction:          u32 "TRN1" | u32 writes | u64 generation | u64 sequence
//                         | u64 body length | body | u64 CRC-64 of the 32-byte
//                           transaction header and the body
//   body, one per write:  u8 kind (1 bytes, 2 length) | u8 0 | u16 name length
//                         | u32 0 | u64 offset (the new length for kind 2)
//                         | u64 data length | name | data
// Sequences start at 1 in each generation; a transaction of another
// generation (bytes left past an emptied journal) ends the reading.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/QVHResult.h"
#include "platform/QVOsFile.h"

inline constexpr const char* kQVNomeArquivoDiario = "QVDIARIO.jnl";

struct QVEscritaDiario {
  enum class Tipo : std::uint8_t { Bytes = 1, Tamanho = 2 };
  Tipo eTipo = Tipo::Bytes;
  std::string sArquivo;  // a name in the journal's folder
  std::uint64_t uiOffset = 0;  // where the bytes go; the new length for Tamanho
  std::string dados;
};

struct QVRecuperacaoDiario {
  std::uint32_t uiTransacoes = 0;  // committed transactions applied
  std::uint32_t uiEscritasSemArquivo = 0;  // writes to files no longer there (skipped)
  std::uint64_t uiBytesDescartados = 0;  // a torn or damaged tail
};

class CQVDiario {
 public:
  explicit CQVDiario(std::string sDiretorio);
  ~CQVDiario();
  CQVDiario(const CQVDiario&) = delete;
  CQVDiario& operator=(const CQVDiario&) = delete;

  // Opens the journal of the folder for writing, denying other writers
  // (created with an empty header when absent), and applies what a crash
  // left in it (see Recupera).
  [[nodiscard]] HRESULT Abre(QVRecuperacaoDiario* pRecuperacao = nullptr);
  void Fecha();
  // Appends one transaction and flushes it: once S_OK, it survives any
  // crash. On failure the journal is cut back to where it was.
  [[nodiscard]] HRESULT Confirma(const std::vector<QVEscritaDiario>& escritas);
  // Applies every committed transaction to its files, flushes them and
  // empties the journal. A write to a file that is no longer there is
  // skipped (the file was deleted after the write was applied) with a log
  // line; a torn or damaged tail is dropped with a log line.
  [[nodiscard]] HRESULT Recupera(QVRecuperacaoDiario* pRecuperacao);
  // The checkpoint's end: the caller has flushed the data files; the
  // journal starts a new generation, empty.
  [[nodiscard]] HRESULT Esvazia();
  // Bytes of transactions since the last checkpoint.
  std::uint64_t GetTamanhoTransacoes() const { return m_uiFim - kTamanhoCabecalho; }

  static constexpr std::uint64_t kTamanhoCabecalho = 32;
  // A journal larger than this is refused at recovery (damage, not a
  // journal: checkpoints keep it far smaller), so that reading it back
  // never asks for unbounded memory.
  static constexpr std::uint64_t kTamanhoMaximo = std::uint64_t{1} << 30;

 private:
  [[nodiscard]] HRESULT GravaCabecalho();
  [[nodiscard]] HRESULT Aplica(const std::string& corpo, std::uint32_t uiEscritas, QVRecuperacaoDiario* pRecuperacao);

  std::string m_sDiretorio;
  std::unique_ptr<IQVOsFile> m_pArquivo;
  std::uint64_t m_uiGeracao = 0;
  std::uint64_t m_uiSequencia = 0;  // the last one written
  std::uint64_t m_uiFim = kTamanhoCabecalho;
};
