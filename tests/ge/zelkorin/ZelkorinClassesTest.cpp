#include "ge/zelkorin/ZelkorinClasses.h"

#include <gtest/gtest.h>

#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "tests/support/QVTestSupport.h"

TEST(ZelkorinClasses, CriacaoPorIdentificadorDeClasse) {
  ASSERT_EQ(QVRegistraClassesZelkorin(), S_OK);
  ASSERT_EQ(QVRegistraClassesZelkorin(), S_OK);  // idempotent

  CQVComPtr<IQVGE_Atendimento> atendimento;
  ASSERT_EQ(CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Atendimento, atendimento.ppv()),
            S_OK);
  CQVComPtr<IQVGE_Projeto> projeto;
  ASSERT_EQ(CoCreateInstance(CLSID_QVGE_Projeto, nullptr, CLSCTX_ALL, IID_IQVGE_Projeto, projeto.ppv()), S_OK);
  // Each class gives its own interface only.
  CQVComPtr<IQVGE_Projeto> errado;
  EXPECT_EQ(CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Projeto, errado.ppv()),
            E_NOINTERFACE);
  EXPECT_FALSE(errado);

  // Two objects of one company: each initialises and answers on its own.
  ASSERT_EQ(atendimento->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  ASSERT_EQ(projeto->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  _REG_PROPRIEDADES_ATENDIMENTO_PS propriedades;
  EXPECT_EQ(atendimento->LePropriedades(&propriedades, 0), E_NOTIMPL);
  _REG_PROJETO_ATENDIMENTO_PS registro;
  EXPECT_EQ(projeto->LeRegistro(1, &registro), E_NOTIMPL);
  EXPECT_EQ(registro.rCodigo.pTexto, nullptr);  // an unfilled out record owns nothing

  IClassFactory* fabrica = nullptr;
  ASSERT_EQ(CoGetClassObject(CLSID_QVGE_Projeto, &fabrica), S_OK);
  void* p = nullptr;
  EXPECT_EQ(fabrica->CreateInstance(projeto.get(), IID_IQVGE_Projeto, &p), CLASS_E_NOAGGREGATION);
  fabrica->Release();

  QVRevogaClassesZelkorin();
  CQVComPtr<IQVGE_Atendimento> depois;
  EXPECT_EQ(CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Atendimento, depois.ppv()),
            REGDB_E_CLASSNOTREG);
  // Objects made before the revocation live on.
  std::int32_t ok = 0;
  EXPECT_EQ(atendimento->KeepAlive(&ok), S_OK);
}
