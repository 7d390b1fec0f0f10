#include "ge/zelkorin/ZelkorinClasses.h"

#include <gtest/gtest.h>

#include <cstring>

#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "tests/support/QVTestSupport.h"

// The real classes by their identifiers. (What any object or class object
// answers for an interface it lacks, or an outer object, the platform's
// and the frame's tests cover.)
TEST(ZelkorinClasses, CriacaoPorIdentificadorDeClasse) {
  ASSERT_EQ(QVRegistraClassesZelkorin(), S_OK);
  ASSERT_EQ(QVRegistraClassesZelkorin(), S_OK);  // idempotent

  CQVComPtr<IQVGE_Atendimento> atendimento;
  ASSERT_EQ(CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Atendimento, atendimento.ppv()),
            S_OK);
  CQVComPtr<IQVGE_Projeto> projeto;
  ASSERT_EQ(CoCreateInstance(CLSID_QVGE_Projeto, nullptr, CLSCTX_ALL, IID_IQVGE_Projeto, projeto.ppv()), S_OK);

  // Two objects of one company: each initialises and answers on its own.
  ASSERT_EQ(atendimento->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  ASSERT_EQ(projeto->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  _REG_PROJETO_ATENDIMENTO_PS registro;
  std::memset(&registro, 0xAB, sizeof registro);
  EXPECT_EQ(projeto->LeRegistro(1, &registro), E_NOTIMPL);
  EXPECT_EQ(registro.rCodigo.pTexto, nullptr);  // an unfilled out record owns nothing

  QVRevogaClassesZelkorin();
  CQVComPtr<IQVGE_Atendimento> depois;
  EXPECT_EQ(CoCreateInstance(CLSID_QVGE_Atendimento, nullptr, CLSCTX_ALL, IID_IQVGE_Atendimento, depois.ppv()),
            REGDB_E_CLASSNOTREG);
  // Objects made before the revocation live on.
  std::int32_t ok = 0;
  EXPECT_EQ(atendimento->KeepAlive(&ok), S_OK);
}
