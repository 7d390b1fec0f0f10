#include "df/qvlibex/QVRegistrosDF.h"

#include <gtest/gtest.h>

#include <cstring>

#include "df/qvlibex/CQVUltimoErro.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "platform/QVCodePage.h"

// An empty text has no buffer; any other, its bytes and a terminator,
// counted. Defining again frees the previous buffer (sanitizer build). A
// buffer with no terminator inside its declared length is read up to that
// length and no further.
TEST(QVTextoPs, DefineLeELibera) {
  _REG_DF_TEXTOPS t{};
  ASSERT_EQ(QVTextoPsDefine(&t, ""), S_OK);
  EXPECT_TRUE(t.ulQtdBytes == 0 && t.pTexto == nullptr);
  EXPECT_EQ(QVTextoPsLe(t), "");
  ASSERT_EQ(QVTextoPsDefine(&t, "A"), S_OK);
  ASSERT_EQ(t.ulQtdBytes, 2u);
  EXPECT_EQ(std::memcmp(t.pTexto, "A", 2), 0);
  ASSERT_EQ(QVTextoPsDefine(&t, "troca"), S_OK);
  EXPECT_EQ(QVTextoPsLe(t), "troca");
  t.ulQtdBytes = 3;
  EXPECT_EQ(QVTextoPsLe(t), "tro");
  QVTextoPsLibera(&t);
  EXPECT_TRUE(t.ulQtdBytes == 0 && t.pTexto == nullptr);
}

TEST(QVMontaInicializaPS, RegistroValidoComCRC) {
  // A company longer than its field: cut, the terminator kept.
  const _REG_DF_INICIALIZAPS reg = QVMontaInicializaPS({.empresa = std::string(60, 'E')});
  EXPECT_EQ(reg.usVersaoVireo, kQVVersaoSistema);
  EXPECT_EQ(reg.cControle, 'B');
  EXPECT_EQ(QVLeCampoTexto(reg.szEmpresa), std::string(47, 'E'));
  EXPECT_EQ(reg.uiCRC, QVCrc64(&reg, 288));  // every byte before the CRC
  EXPECT_EQ(reg.szFiller[21], 0);
}

TEST(CQVUltimoErro, PreencheORegistroDoCliente) {
  struct CHolder : CQVUltimoErro { using CQVUltimoErro::DefineEmpresaErro; } holder;
  holder.DefineEmpresaErro("Construções Ltda");
  holder.SetErro(E_QVCR_ARQUIVO_NAO_EXISTE, 9, 123);

  _REG_DF_ERROPS reg;
  std::memset(&reg, 0xCC, sizeof reg);
  holder.GetErro().CopiarPara(&reg);
  EXPECT_EQ(reg.hr, E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(reg.usNumeroServidor, 9);
  EXPECT_EQ(reg.lCodigoMensagem, 123);
  EXPECT_EQ(QVLeCampoTexto(reg.cMensagem), QVUtf8ToAnsi("O arquivo não existe"));
  EXPECT_EQ(QVLeCampoTexto(reg.szEmpresa), "Constru\xE7\xF5" "es Ltda");  // the suite's code page
  for (unsigned char c : reg.cFiller) EXPECT_EQ(c, 0);

  holder.SetErro(E_FAIL, 9, 0, "%s", std::string(400, 'x').c_str());
  holder.GetErro().CopiarPara(&reg);
  EXPECT_EQ(QVLeCampoTexto(reg.cMensagem).size(), 301u);

  holder.LimpaErro();
  holder.GetErro().CopiarPara(&reg);
  EXPECT_EQ(reg.hr, 0);
  EXPECT_EQ(reg.cMensagem[0], 0);
}

// The fixed bytes count in the comparison, fillers too (what a record owns
// is copied, compared and freed for every kind in the records' own tests).
TEST(QVDescritorRegistro, BytesFixosContamNaComparacao) {
  _REG_DF_FUNCAO_GENERICAPS a{}, b{};
  EXPECT_TRUE(QVIguais(a, b));
  b.cFiller[0] = 1;
  EXPECT_FALSE(QVIguais(a, b));
}
