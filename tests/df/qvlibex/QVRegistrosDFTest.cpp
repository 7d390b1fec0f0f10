#include "df/qvlibex/QVRegistrosDF.h"

#include <gtest/gtest.h>

#include <cstring>

#include "df/qvlibex/CQVUltimoErro.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "platform/QVCodePage.h"
#include "platform/QVTaskMem.h"

TEST(QVTextoPs, VazioEUmaLetra) {
  _REG_DF_TEXTOPS t{};
  ASSERT_EQ(QVTextoPsDefine(&t, ""), S_OK);
  EXPECT_EQ(t.ulQtdBytes, 0u);
  EXPECT_EQ(t.pTexto, nullptr);
  EXPECT_EQ(QVTextoPsLe(t), "");

  ASSERT_EQ(QVTextoPsDefine(&t, "A"), S_OK);
  EXPECT_EQ(t.ulQtdBytes, 2u);
  ASSERT_NE(t.pTexto, nullptr);
  EXPECT_EQ(t.pTexto[1], 0);
  EXPECT_EQ(QVTextoPsLe(t), "A");

  ASSERT_EQ(QVTextoPsDefine(&t, "troca"), S_OK);  // the previous buffer is freed (sanitizer build)
  EXPECT_EQ(QVTextoPsLe(t), "troca");
  QVTextoPsLibera(&t);
  EXPECT_EQ(t.ulQtdBytes, 0u);
  EXPECT_EQ(t.pTexto, nullptr);
}

TEST(QVTextoPs, LeituraNaoPassaDoTamanhoDeclarado) {
  // A buffer without terminator inside its declared length is read up to
  // that length and no further.
  _REG_DF_TEXTOPS t{};
  t.pTexto = static_cast<std::uint8_t*>(CoTaskMemAlloc(3));
  std::memcpy(t.pTexto, "abc", 3);
  t.ulQtdBytes = 3;
  EXPECT_EQ(QVTextoPsLe(t), "abc");
  QVTextoPsLibera(&t);
}

TEST(QVMontaInicializaPS, RegistroValidoComCRC) {
  QVDadosInicializacao d;
  d.empresa = std::string(60, 'E');  // longer than the field: cut, terminator kept
  d.usuario = 3;
  d.aplicativo = "app";
  d.moduleName = "mod";
  d.arquivoFonte = "fonte.cpp";
  d.linhaFonte = 10;
  const _REG_DF_INICIALIZAPS reg = QVMontaInicializaPS(d);
  EXPECT_EQ(reg.usVersaoVireo, 118);
  EXPECT_EQ(reg.cControle, 'B');
  EXPECT_EQ(QVLeCampoTexto(reg.szEmpresa), std::string(47, 'E'));
  EXPECT_EQ(reg.uiCRC, QVCrc64(&reg, 288));
  EXPECT_EQ(reg.szFiller[21], 0);
}

TEST(CQVUltimoErro, PreencheORegistroDoCliente) {
  class CHolder : public CQVUltimoErro {
   public:
    using CQVUltimoErro::DefineEmpresaErro;
  } holder;
  holder.DefineEmpresaErro("Construções Ltda");
  holder.SetErro(E_QVCR_ARQUIVO_NAO_EXISTE, 9, 123);
  EXPECT_EQ(holder.GetUltimoHR(), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(holder.GetNumeroServidorUltimoHR(), 9);

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

TEST(QVDescritorRegistro, CopiaProfundaDeUmBlocoGenerico) {
  _REG_DF_FUNCAO_GENERICAPS a{};
  a.ulQtdBytes = 4;
  a.pListaBytes = static_cast<std::uint8_t*>(CoTaskMemAlloc(4));
  std::memcpy(a.pListaBytes, "\x01\x02\x03\x04", 4);
  _REG_DF_FUNCAO_GENERICAPS b{};
  ASSERT_EQ(QVCopia(a, &b), S_OK);
  EXPECT_NE(a.pListaBytes, b.pListaBytes);
  EXPECT_TRUE(QVIguais(a, b));
  b.pListaBytes[3] = 9;
  EXPECT_FALSE(QVIguais(a, b));
  b.cFiller[0] = 1;  // fixed bytes count too
  b.pListaBytes[3] = 4;
  EXPECT_FALSE(QVIguais(a, b));
  QVLibera(&a);
  QVLibera(&b);
  EXPECT_EQ(a.pListaBytes, nullptr);
  EXPECT_EQ(a.ulQtdBytes, 0u);
}
