// Ownership of the wire records: deep copy, deep compare and deep free
// driven by the descriptor tables, and the tables themselves.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string_view>

#include "df/qvlibex/QVRegistrosDF.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"
#include "tests/support/QVTesteRegistros.h"
#include "tests/support/QVTiposRegistro.h"

namespace {

// Changes the n-th place a record owns (each string, each array, each
// element of a record array and then what the element owns, depth first),
// counting n down; false when the record has fewer places.
bool MudaLugar(const QVDescritorRegistro& d, unsigned char* r, int& n) {
  for (const QVCampoPonteiro& c : d.campos) {
    if (c.tipo == EQVCampoPonteiro::Aninhado) {
      if (MudaLugar(*c.elemento, r + c.offset, n)) return true;
      continue;
    }
    unsigned char* p;
    std::memcpy(&p, r + c.offset, sizeof p);
    const std::uint32_t quantos = c.tipo == EQVCampoPonteiro::Registros ? QVLeContagem(c, r) : 1;
    if (p == nullptr || (c.tipo != EQVCampoPonteiro::Bstr && QVLeContagem(c, r) == 0)) continue;
    for (std::uint32_t i = 0; i < quantos; ++i) {
      unsigned char* e = c.tipo == EQVCampoPonteiro::Registros ? p + std::size_t{i} * c.elemento->tamanho : p;
      if (n-- == 0) {
        ++e[0];
        return true;
      }
      if (c.tipo == EQVCampoPonteiro::Registros && MudaLugar(*c.elemento, e, n)) return true;
    }
  }
  return false;
}

}  // namespace

// Every kind, with everything it can own: the deep copy equals its source,
// and a change of any one place the copy owns tells them apart (the copy
// shares nothing, and the comparison goes everywhere). A freed record owns
// nothing. A field missing from a descriptor shows as a leak, a shared one
// as a double free, in the sanitizer build.
TEST(ZelkorinRegistros, CadaTipoCopiaEComparaTudoOQueTem) {
  QVParaCadaRegistro([]<class T>() {
    SCOPED_TRACE(QVDescritor<T>().nome);
    T original = Amostra<T>(static_cast<std::uint32_t>(sizeof(T)));
    int lugares = 0;
    for (;; ++lugares) {
      T copia;
      ASSERT_EQ(QVCopia(original, &copia), S_OK);
      EXPECT_TRUE(QVIguais(original, copia));
      int n = lugares;
      const bool mudou = MudaLugar(QVDescritor<T>(), reinterpret_cast<unsigned char*>(&copia), n);
      EXPECT_EQ(QVIguais(original, copia), !mudou) << "lugar " << lugares;
      QVLibera(&copia);
      if (!mudou) break;
    }
    EXPECT_EQ(lugares > 0, !QVDescritor<T>().campos.empty());
    QVLibera(&original);
    int n = 0;
    EXPECT_FALSE(MudaLugar(QVDescritor<T>(), reinterpret_cast<unsigned char*>(&original), n));
  });
}

TEST(ZelkorinRegistros, PonteiroNuloComContagemCopiaComoVazio) {
  auto a = Amostra<_REG_ATENDIMENTO_PS>(1);
  ASSERT_GT(a.lQtdRepresentante, 0u);
  CoTaskMemFree(a.pRepresentante);
  a.pRepresentante = nullptr;  // the count stays
  ASSERT_GT(a.pServicos[0].iQuantidadeSessao, 0u);
  CoTaskMemFree(a.pServicos[0].pSessoes);
  a.pServicos[0].pSessoes = nullptr;
  SysFreeString(a.bsComentario);
  a.bsComentario = nullptr;

  _REG_ATENDIMENTO_PS b;
  ASSERT_EQ(QVCopia(a, &b), S_OK);
  EXPECT_EQ(b.pRepresentante, nullptr);
  EXPECT_EQ(b.lQtdRepresentante, 0u);
  EXPECT_EQ(b.pServicos[0].pSessoes, nullptr);
  EXPECT_EQ(b.pServicos[0].iQuantidadeSessao, 0u);
  EXPECT_EQ(b.bsComentario, nullptr);
  QVLibera(&a);
  QVLibera(&b);
}

// Every description agrees with its own record: a wrong count width, a
// field outside the record or an element descriptor of another size would
// make the deep copy and the marshaller read or write the wrong bytes.
TEST(ZelkorinRegistros, DescritoresConsistentes) {
  for (const QVDescritorRegistro* d : QVDescritoresDeTodos()) {
    std::string erro;
    EXPECT_TRUE(QVDescritorConsistente(*d, &erro)) << erro;
  }
  // And the check itself sees a wrong element size.
  const QVCampoPonteiro errado[] = {QVCampoPonteiro{"pLista", 16, EQVCampoPonteiro::Registros, 0, 4, 8,
                                                    &QVDescritor<_REG_DF_TEXTOPS>()}};
  const QVDescritorRegistro lista{"_REG_ERRADO", 24, errado};
  std::string erro;
  EXPECT_FALSE(QVDescritorConsistente(lista, &erro));
  EXPECT_EQ(erro, "_REG_ERRADO.pLista: tamanho do elemento difere do descritor");
}
