// Helpers for the record store's tests, with what they all include: raw
// file bytes, header patches, a test identity, a small record type, and a
// folder seen as a company's.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "core/qvdatabase/QVGroupFile.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVProfilerEmpresa.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

// 32 bytes, like the small record files of the system.
struct REG_TESTE {
  std::uint32_t lCodigo;  // unique key, never zero (column 0)
  std::uint32_t lGrupo;   // repeated keys allowed, zero allowed (column 1)
  char szNome[24];
};
static_assert(sizeof(REG_TESTE) == 32);

// The key of the code column.
std::uint64_t QVTesteChaveCodigo(const REG_TESTE& r, QVUInt coluna);
REG_TESTE QVTesteRegistro(std::uint32_t codigo, std::uint32_t grupo = 0, const char* nome = "");
// The bytes of records as a file holds them, one after the other.
std::string QVTesteBytesDe(const std::vector<REG_TESTE>& registros);

// Appends at the end of a file (position 0); the status of the write.
HRESULT QVTesteAcrescenta(CQVFile<REG_TESTE>& f, std::initializer_list<std::uint32_t> codigos);
HRESULT QVTesteAcrescenta(CQVTextFile& f, const std::vector<std::string>& textos);

// The identity files are opened under in the tests.
const CQVProfilerEmpresa& QVTesteIdentidade();

inline std::string QVTesteBytes(const std::string& caminho) { return QVTesteLeArquivo(caminho); }
void QVTesteGravaBytes(const std::string& caminho, const std::string& bytes);
// Changes header fields on disk; with bCorrigeCrc the header check is
// recomputed (so only the changed field is wrong).
void QVTesteAlteraCabecalho(const std::string& caminho, const std::function<void(QVCabecalhoArquivo&)>& altera,
                            bool bCorrigeCrc = true);
QVCabecalhoArquivo QVTesteLeCabecalho(const std::string& caminho);
// The lines of the error log that hold every one of these pieces; how the
// log writes a status ("hr = 0X81080C07").
std::size_t QVTesteLinhasCom(std::initializer_list<std::string> trechos);
std::string QVTesteHrNoLog(HRESULT hr);

// A process's view of a test folder as a company's: every file is opened
// through a database of its own (kept here, as files point at theirs), with
// the file-creation control at work, read-only or not. m_hr is the status
// of the last initialisation.
class CQVTestePasta {
 public:
  // bLiberaArquivos: the files load without being held, and reads look at
  // the disk once per reading epoch (several server processes).
  explicit CQVTestePasta(std::string dir, bool bSomenteLeitura = false, bool bLiberaArquivos = false)
      : m_Dir(std::move(dir)), m_bSomenteLeitura(bSomenteLeitura), m_bLiberaArquivos(bLiberaArquivos) {}
  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }

  // Records of REG_TESTE, lCodigo a unique key never zero (column 0).
  std::unique_ptr<CQVFile<REG_TESTE>> Registros(const std::string& nome = "GEATRPS.dat");
  std::unique_ptr<CQVTextFile> Textos(const std::string& nome = "GeAtDsDe.dat");
  std::unique_ptr<CQVGroupFile<REG_TESTE>> Meses();
  // What a file holds, read by an object of its own (nothing when refused).
  std::vector<std::uint32_t> Codigos(const std::string& nome = "GEATRPS.dat");
  std::vector<std::string> TextosNoDisco(const std::string& nome = "GeAtDsDe.dat");
  std::vector<std::string> ListaDoControle();

  HRESULT m_hr = S_OK;
  // The database of the file made last.
  CQVDataBase& UltimoBanco() { return *m_DBs.back(); }

 private:
  CQVDataBase* Banco();
  template <class F>
  std::unique_ptr<F> Inicializa(std::unique_ptr<F> f) {
    m_hr = f->Inicializa(Banco());
    return f;
  }
  std::string m_Dir;
  bool m_bSomenteLeitura;
  bool m_bLiberaArquivos;
  std::vector<std::unique_ptr<CQVDataBase>> m_DBs;
};
