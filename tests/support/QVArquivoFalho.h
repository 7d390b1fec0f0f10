// A double of the platform's file layer that fails chosen operations of the
// files opened while it is installed: the Nth open, the Nth write
// (optionally after writing half of its bytes), the Nth flush, the Nth
// length change; or that simulates a crash, or a slow disk. Counts are shared by every file
// the double made, from its installation. While installed, every new file
// object is such a wrapper around a real file.
//
// A crash at operation N (opens, writes, length changes, flushes, renames
// and deletions, counted together in the order they happen): operation N
// and every later one fail, as if the process had died there. What was
// written before stays, as when a process dies; or, as after a power cut,
// every file returns to what it held at its last flush (or when the double
// first saw it opened). Renames and deletions made before the crash stay
// made (the platform syncs their directory). Reads still work: the code's
// clean-up after the failure runs, but changes nothing on disk. The test
// then destroys the objects that used the double, uninstalls it, and opens
// the files again.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/QVOsFile.h"

struct QVPlanoFalhas {
  int iFalharEscrita = 0;  // 1-based: the write that fails; 0 = none
  int iFalharFlush = 0;
  int iFalharTamanho = 0;
  int iFalharAbertura = 0;
  bool bEscritaParcial = false;  // the failing write first writes half its bytes
  bool bFalharDaiEmDiante = false;  // every operation of that kind after the first failure fails too
  std::uint32_t ulErro = ERROR_DISK_FULL;
  int iCrashNaOperacao = 0;  // 1-based; 0 = no crash
  bool bCrashPerdeNaoSincronizado = false;  // a power cut rather than a process's death
  // Every write waits this long after writing (a slow disk, whose writes
  // another process may look at half done).
  int iPausaAposEscritaMs = 0;
};

class CQVArquivoFalho {
 public:
  // Installs the double with a plan; uninstalls it when destroyed.
  explicit CQVArquivoFalho(const QVPlanoFalhas& plano);
  ~CQVArquivoFalho();
  CQVArquivoFalho(const CQVArquivoFalho&) = delete;
  CQVArquivoFalho& operator=(const CQVArquivoFalho&) = delete;

  int Falhas() const;
  // The operations a crash can stop, counted so far (a run without a crash
  // tells how many fault points an operation has).
  int Operacoes() const;
  bool Caiu() const;

  struct Estado;

 private:
  std::shared_ptr<Estado> m_Estado;
};
