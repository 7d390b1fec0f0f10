// CQVTextFile: variable-length texts that fixed-size records refer to by
// position, held whole in memory and written through to disk.
//
// On disk, after the header block (or from offset 0 in a file without one),
// the texts follow one another with nothing between them:
//   +0 u32 n (little-endian)   number of characters
//   +4 n bytes                 the characters, single-byte, no terminator
// A text's position is its ordinal in this sequence, from 1.
//
// Placement of a write (GravaColecao):
//  - a text of the same length is overwritten in place;
//  - a run that lies within the existing texts and holds a longer text is
//    appended at the end and gets new positions (the old texts keep theirs);
//  - a shorter text compacts the whole file (ExecutaShrink): positions stay,
//    offsets change. The compacted file is written as a copy and put in the
//    file's place with one rename (QVFileBase.h, invariant 7): a crash
//    leaves every text of the old file or of the new one.
// Invariants: the entries in memory equal the file's texts, offset for
// offset, as they were at the snapshot (QVFileBase.h, invariant 5), after
// every call that returned; a failed write is rolled back on disk from
// memory (QVFileBase.h, invariant 3). Every read first reads the file again
// if another process changed it; every write does so once it holds the file.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "core/qvdatabase/QVFileBase.h"

class CQVTextFile : public CQVFileBase {
 public:
  struct Entrada {
    QVUInt uiOffset;  // from the start of the data
    std::string sTexto;
  };

  CQVTextFile(std::string sNomeArquivo, std::uint32_t eModulo) : CQVFileBase(std::move(sNomeArquivo), eModulo) {}
  ~CQVTextFile() override;

  QVUInt GetQtdRegistros() override;
  // Under this file's lock: no read of another thread meets it half closed.
  [[nodiscard]] HRESULT LiberaGravacao() override {
    std::lock_guard lock(m_mutex);
    return CQVFileBase::LiberaGravacao();
  }
  [[nodiscard]] HRESULT Le(QVUInt uiPosicao, std::string* psTexto);
  // uiPosicao is in-out: on return it holds the position the (first) text
  // now has, which the caller stores in its record.
  [[nodiscard]] HRESULT Grava(QVUInt& uiPosicao, const std::string& sTexto);
  [[nodiscard]] HRESULT GravaColecao(QVUInt& uiPosicao, const std::vector<std::string>& aRegistros);

  bool PrecisaGravar(QVUInt uiPosicao, const std::vector<std::string>& aRegistros);
  bool DeveGravarNoFinal(QVUInt uiPosicao, const std::vector<std::string>& aRegistros);
  bool DeveExecutarShrink(QVUInt uiPosicao, const std::vector<std::string>& aRegistros);
  // Every entry, in position order, valid until the next call on this file;
  // null when the file is not initialised.
  const std::vector<Entrada>* GetPtrRegistros();

 protected:
  HRESULT OnInicializa() override;
  HRESULT OnFinaliza() override;
  HRESULT LeConteudo(bool bExiste, QVUInt uiTamanho) override;
  std::string NomeClasseLog() const override { return "CQVTextFile"; }
  const char* FonteLog() const override { return "core/qvdatabase/QVTextFile"; }

  [[nodiscard]] HRESULT GravaRegistros(QVUInt& uiPosicao, const std::vector<std::string>& aRegistros);
  [[nodiscard]] HRESULT ExecutaShrink(QVUInt uiPosicao, const std::vector<std::string>& aRegistros);

 private:
  // The end of the last text (the data length a consistent file has).
  QVUInt FimDosTextos() const;
  // Writes every entry from the first whose offset is at least uiOffset,
  // cuts the file after the last text and flushes.
  [[nodiscard]] HRESULT EscreveDesde(QVUInt uiOffset);
  void RestauraDoMemoria(QVUInt uiOffset, HRESULT hrFalha);

  std::recursive_mutex m_mutex;
  std::vector<Entrada> m_Entradas;
  bool m_bArquivoExiste = false;
};
