#include "df/qvlibex/QVTranslate.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <set>
#include <stdexcept>

#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVStatus.h"

namespace {

template <class E>
HRESULT Traduz(E&& excecao) {
  try {
    throw std::forward<E>(excecao);
  } catch (...) {
    const HRESULT hr = QVTranslateThrownExceptionToHresult();
    QVLiberaExcecaoLancada();
    return hr;
  }
}

class COutraExcecao : public CException {};

}  // namespace

TEST(QVTranslate, CadaClausulaNaOrdem) {
  EXPECT_EQ(Traduz(_com_error(E_ACCESSDENIED)), E_ACCESSDENIED);
  EXPECT_EQ(Traduz(CQVExceptionEx(QVHr(0x81080A43u), 1, 2, "x")), QVHr(0x81080A43u));
  EXPECT_EQ(Traduz(new CQVException(100, 0, 5)), QVHr(0x80040005u));  // not HRESULT_FROM_WIN32
  EXPECT_EQ(Traduz(new CQVException(100, 0, 0)), QVHr(0x8004EA61u));
  EXPECT_EQ(Traduz(new CQVException("texto", 0, 0)), QVHr(0x8004EA61u));
  EXPECT_EQ(Traduz(new CFileException(CFileException::fileNotFound, 2)), QVHr(0x80070002u));
  EXPECT_EQ(Traduz(new CFileException(CFileException::genericException, 0)), S_OK);
  EXPECT_EQ(Traduz(new CFileException(CFileException::genericException, -5)), -5);
  EXPECT_EQ(Traduz(new CMemoryException()), QVHr(0x8004EA62u));
  EXPECT_EQ(Traduz(new CInvalidArgException()), QVHr(0x8004EA67u));
  EXPECT_EQ(Traduz(new COutraExcecao()), QVHr(0x8004EA63u));
  EXPECT_EQ(Traduz(QVHr(0x80041234u)), QVHr(0x80041234u));  // a thrown status
  EXPECT_EQ(Traduz(std::bad_alloc()), QVHr(0x8004EA64u));
  EXPECT_EQ(Traduz(std::runtime_error("x")), QVHr(0x8004EA65u));
  EXPECT_EQ(Traduz(CQVSEH()), QVHr(0x8004EA66u));
  EXPECT_EQ(Traduz(0x80041234u), QVHr(0x8004EA66u));  // an unsigned int is no status
  // A 64-bit long is a status only when the value is one, spelt signed or
  // unsigned; wider values are not cut down to one.
  static_assert(sizeof(long) == 8);
  for (const auto& [valor, status] : {std::pair{static_cast<long>(QVHr(0x80041234u)), 0x80041234u},
                                      {0x80041234L, 0x80041234u}, {0xFFFFFFFFL, 0xFFFFFFFFu},
                                      {-2147483648L, 0x80000000u}, {0x100000000L, 0x8004EA66u},
                                      {0x180041234L, 0x8004EA66u}, {-2147483649L, 0x8004EA66u}})
    EXPECT_EQ(Traduz(valor), QVHr(status)) << std::hex << valor;
}

TEST(QVTranslate, CQVExceptionRelatorio) {
  EXPECT_EQ(CQVException(0, 0, 0).TextoRelatorio(), "Erro desconhecido encontrado. Código (0)");
  EXPECT_EQ(CQVException("Falhou", 0, 5).TextoRelatorio(), "Falhou\nErro do SO: 5 - Acesso negado");
  // A message number's text comes from the table, filled on first use.
  EXPECT_EQ(CQVException(16284, 0, 0).GetErrorMessage(), QVDescricaoHResult(QVHr(0x80043F9Cu)));
}

// Every code the filter accepts maps to its own status inside the range
// that discards the server object; the others do not pass the filter.
TEST(QVTranslate, TabelaDeExcecoesEstruturadas) {
  std::set<HRESULT> statuses;
  for (std::uint32_t c : {0xC0000005u, 0xC000008Cu, 0x80000003u, 0x80000002u, 0xC000008Du, 0xC000008Eu,
                          0xC000008Fu, 0xC0000090u, 0xC0000091u, 0xC0000092u, 0xC0000093u, 0x80000001u,
                          0xC000001Du, 0xC0000006u, 0xC0000094u, 0xC0000095u, 0xC0000026u, 0xC0000008u,
                          0xC0000025u, 0xC0000096u, 0x80000004u, 0xC00000FDu}) {
    EXPECT_TRUE(QVFiltroSEHAceita(c) && QVEhCodigoSEH(QVHresultDeSEH(c))) << std::hex << c;
    EXPECT_TRUE(statuses.insert(QVHresultDeSEH(c)).second) << std::hex << c;  // each its own
  }
  EXPECT_EQ(QVHresultDeSEH(0xC00000FDu), QVHr(0x8004EADAu));  // stack overflow
  EXPECT_EQ(QVHresultDeSEH(0x80000029u), QVHr(0x8004EADBu));  // mapped, never accepted
  EXPECT_FALSE(QVFiltroSEHAceita(0x80000029u));
  EXPECT_EQ(QVHresultDeSEH(0xE06D7363u), QVHr(0x8004EE47u));
  EXPECT_FALSE(QVFiltroSEHAceita(0xE06D7363u));
  for (std::uint32_t u : {0x8004EAC4u, 0x8004EADCu, 0x81080A04u, 0x80004005u, 0u})
    EXPECT_FALSE(QVEhCodigoSEH(QVHr(u))) << std::hex << u;
}

TEST(QVTranslate, TabelaDeErrno) {
  // The edges of every run, and the gaps between them.
  const std::pair<int, std::uint32_t> casos[] = {
      {1, 0x8004EADCu},  {14, 0x8004EAE9u}, {15, 0x8004EA60u}, {16, 0x8004EAEAu}, {25, 0x8004EAF3u},
      {26, 0x8004EA60u}, {27, 0x8004EAF4u}, {34, 0x8004EAFBu}, {35, 0x8004EA60u}, {36, 0x8004EAFCu},
      {37, 0x8004EA60u}, {38, 0x8004EAFDu}, {42, 0x8004EB01u}, {43, 0x8004EA60u}, {80, 0x8004EB02u},
      {81, 0x8004EA60u}};
  for (const auto& [e, status] : casos) EXPECT_EQ(QVHresultDeErrno(e), QVHr(status)) << e;
  // This system's numbering reaches the same statuses by name.
  EXPECT_EQ(QVHresultDeErrno(QVErrnoRuntimeDeErrno(ENOTEMPTY)), QVHr(0x8004EB00u));
  EXPECT_EQ(QVHresultDeErrno(QVErrnoRuntimeDeErrno(EDEADLK)), QVHr(0x8004EAFCu));
  EXPECT_EQ(QVHresultDeErrno(QVErrnoRuntimeDeErrno(EACCES)), QVHr(0x8004EAE8u));
}

// The names the error log prints are checked there, in whole lines; here,
// what has no name, and the table every code comes from.
TEST(QVStatus, NomesEDescricoes) {
  EXPECT_EQ(QVNomeSimbolico(QVHr(0x8004FFFFu)), "");
  EXPECT_EQ(QVGetDescricaoHRESULT(QVHr(0x8004FFFFu)), "Código de erro 0x8004FFFF sem descrição");
  // Every code of the table is found (it is kept in order), has a name of
  // its family and a message.
  for (const QVCodigoSistema& c : QVTabelaCodigosSistema()) {
    EXPECT_EQ(QVProcuraCodigoSistema(c.hr), &c);
    EXPECT_TRUE(std::string(c.nome).rfind("E_", 0) == 0 || std::string(c.nome).rfind("ER_", 0) == 0) << c.nome;
    EXPECT_GT(std::string(c.mensagem).size(), 10u) << c.nome;
  }
}
