// A double of the platform's file layer that fails chosen operations of the
// files created while it is installed: the Nth write (optionally after
// writing half of its bytes), the Nth flush, the Nth length change. Counts
// are shared by every file the double made, from its installation. While
// installed, every new file object is such a wrapper around a real file.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "platform/QVOsFile.h"

struct QVPlanoFalhas {
  int iFalharEscrita = 0;  // 1-based: the write that fails; 0 = none
  int iFalharFlush = 0;
  int iFalharTamanho = 0;
  bool bEscritaParcial = false;  // the failing write first writes half its bytes
  bool bFalharDaiEmDiante = false;  // every operation of that kind after the first failure fails too
  std::uint32_t ulErro = ERROR_DISK_FULL;
};

class CQVArquivoFalho {
 public:
  // Installs the double with a plan; uninstalls it when destroyed.
  explicit CQVArquivoFalho(const QVPlanoFalhas& plano);
  ~CQVArquivoFalho();
  CQVArquivoFalho(const CQVArquivoFalho&) = delete;
  CQVArquivoFalho& operator=(const CQVArquivoFalho&) = delete;

  int Escritas() const { return m_Estado->escritas; }
  int Flushes() const { return m_Estado->flushes; }
  int Falhas() const { return m_Estado->falhas; }

  struct Estado {
    QVPlanoFalhas plano;
    std::atomic<int> escritas{0};
    std::atomic<int> flushes{0};
    std::atomic<int> tamanhos{0};
    std::atomic<int> falhas{0};
  };

 private:
  std::shared_ptr<Estado> m_Estado;
};
