// The numbers of a company's service calls, kept by the process, so that a
// save finds the first free number without reading every month's call file.
//
// One index per company folder and process (Da), filled at the first query
// and kept for the life of the process. It holds, per month, the number of
// the call at each position and the state of the month's call file it was
// read from (which file, its length, its time of change: what one stat
// tells); over all months, how many calls have each number.
//
// How it stays right:
//  - a save of this process reports the number it wrote (RegistraGravacao),
//    and the month takes the file's new state;
//  - every query (Consulta) first looks at the folder (one stat; listed
//    again only when its entries changed) and at each month's call file
//    (one stat each), and reads again a month whose file is not in the
//    state its numbers came from: another process saved there, or replaced
//    the file; a month whose file went is dropped, a new one is read;
//  - a state seen less than 2 s after the file's last change is not
//    trusted: a change in the same tick of the file system's clock would
//    not move the time. Such a month is read again at the next query;
//  - but the month a database holds for writing (its current month, after
//    a save there) is judged by that database instead: nobody else can
//    write the file while it is held, and a file let go and loaded again
//    brings the header of whoever wrote it since, whose update counter
//    every write moves. While the database holds it with the counters
//    the index last saw, the month is as the index has it: a busy month is
//    not read again at every save.
// The current month of the querying database is read from its memory (the
// record store keeps it equal to the file); the others from their files,
// opened read-only: a query selects no month and changes no file.
//
// A save queries under the database mark, so no other process saves a call
// meanwhile and the answer is exact. A query without the mark (the check
// a client makes before saving) is as current as the files were.
//
// Thread safety: one lock per index. A query hands its answer with the
// lock held (CQVNumerosAtendimento); the caller holds the database's
// Trava() around both (lock order: Trava, then the index).
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "df/qvlibex/QVProfilerEmpresa.h"
#include "platform/QVHResult.h"
#include "platform/QVOsFile.h"

class CGeServidorAtendimentoDatabase;
class CQVIndiceNumeros;

// The numbers of every stored call but one, as a query answers them; valid
// (and the index locked) while it lives.
class CQVNumerosAtendimento {
 public:
  CQVNumerosAtendimento() = default;
  // How many calls have the number, the excluded one not counted: the
  // interface of the set of numbers the numbering rule is written against.
  std::size_t count(std::uint32_t lNumero) const;

 private:
  friend class CQVIndiceNumeros;
  std::unique_lock<std::mutex> m_trava;
  const CQVIndiceNumeros* m_pIndice = nullptr;
  // The excluded call's number, when it has a place in the index.
  bool m_bExcluido = false;
  std::uint32_t m_lExcluido = 0;
};

class CQVIndiceNumeros {
 public:
  // The index of a company's data folder (made empty at the first request).
  static CQVIndiceNumeros& Da(const std::string& sDiretorio);

  // Brings the index up to date with the folder's call files and answers
  // the numbers of every call but the one at (iMA, lPosicao) (lPosicao 0:
  // none excluded). pPerfil identifies the company for the read-only
  // opens. On failure the index is left as it was for the months not yet
  // looked at, and pNumeros answers nothing.
  [[nodiscard]] HRESULT Consulta(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB,
                                 std::uint16_t iMA, std::uint32_t lPosicao, CQVNumerosAtendimento* pNumeros);

  // A save of this process wrote the call at (iMA, lPosicao) with this
  // number; pGEAtendimentoDB holds the month's call file (nobody else can
  // change it). Never fails the save: a month the index cannot follow
  // (never read, a position beyond its end, a failed stat) is forgotten
  // and read again at the next query.
  void RegistraGravacao(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA, std::uint32_t lPosicao,
                        std::uint32_t lNumero);

  // How many times a month was read whole, since the process began (the
  // tests' witness that an unchanged month is not read again).
  std::uint64_t GetQtdLeiturasMes();

 private:
  friend class CQVNumerosAtendimento;
  struct Mes {
    QVFileIdentity identidade;
    bool bConfiavel = false;  // seen 2 s or more after its last change
    // Read from (or written through) the memory of a database whose
    // current month it was, reflecting the disk with these header counters.
    bool bRetido = false;
    std::uint64_t uiContador = 0;
    std::uint16_t usVoltas = 0;
    std::vector<std::uint32_t> numeros;  // element p - 1: the call at position p
  };

  explicit CQVIndiceNumeros(std::string sDiretorio) : m_sDiretorio(std::move(sDiretorio)) {}

  [[nodiscard]] HRESULT Atualiza(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT MesesDaPasta(CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT Identidade(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA,
                                   QVFileIdentity* pIdentidade, bool* pbConfiavel) const;
  // Records in mes whether the month is pGEAtendimentoDB's current one, and
  // the counters its memory reflects; whether it still is, with those
  // counters, and the disk still holds what its memory reflects.
  static void MarcaRetido(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA, Mes& mes);
  static bool RetidoSemMudanca(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, std::uint16_t iMA, const Mes& mes);
  [[nodiscard]] HRESULT LeMes(const IQVDF_Profiler* pPerfil, CGeServidorAtendimentoDatabase* pGEAtendimentoDB,
                              std::uint16_t iMA, Mes* pMes);
  void Conta(const std::vector<std::uint32_t>& numeros, int iSinal);
  void Conta(std::uint32_t lNumero, int iSinal);
  void Esquece(std::uint16_t iMA);

  std::mutex m_mutex;
  const std::string m_sDiretorio;
  std::map<std::uint16_t, Mes> m_Meses;
  std::unordered_map<std::uint32_t, std::uint32_t> m_Contagem;
  // The months with a call file, as the folder's last listing found them.
  std::vector<std::uint16_t> m_MesesPasta;
  std::int64_t m_iPastaMudouNs = -1;
  std::int64_t m_iListadaEmNs = 0;
  std::uint64_t m_uiLeiturasMes = 0;
};
