// The master-data readers of company 1 over a store with two: what each
// finds, and that another company's pointer, 0 or none is refused with one
// line naming the table and the pointer.
#include "suite/masterdata/CQVAcessoEmpresarialSuite.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

using U = std::vector<std::uint32_t>;

constexpr const char* kDados = R"sql(
INSERT INTO municipios(ponteiro, nome, uf) VALUES (1, 'Curitiba', 'PR');
INSERT INTO empresas(ponteiro, nome, pasta) VALUES (1, 'EMP_A', 'a'), (2, 'EMP_B', '');
INSERT INTO usuarios(ponteiro, login, perfil, executor, ativo) VALUES (7, 'u7', 'tec', 1, 1), (8, 'u8', 'tec', 1, 0),
  (9, 'u9', 'adm', 0, 1), (10, 'u10', 'tec', 1, 1);
INSERT INTO usuarios_empresas VALUES (7, 1), (8, 1), (9, 1), (10, 2);
INSERT INTO filiais(ponteiro, ponteiro_empresa, nome, ativa) VALUES (1, 1, 'M', 1), (2, 1, 'Sul', 0), (3, 2, 'B', 1),
  (4, 1, 'N', 1);
INSERT INTO filiais_usuarios VALUES (7, 4), (7, 1), (7, 2), (7, 3), (10, 3);
INSERT INTO clientes(ponteiro, ponteiro_empresa, nome, ponteiro_municipio) VALUES (1, 1, 'Cli', 1), (2, 2, 'B', NULL);
INSERT INTO unidades VALUES (1, 'H', 'Hora', 2), (2, 'KM', 'Quilômetro', 0);
INSERT INTO servicos(ponteiro, ponteiro_empresa, codigo, descricao, tipo, classificacao, ponteiro_unidade, valor_unitario)
VALUES (1, 1, 'T01', '', 'T', '01', NULL, 0), (2, 1, 'T0101', '', 'T', '01.01', NULL, 0),
  (3, 1, 'S1', '', 'S', '01.01.001', 2, 150000), (5, 2, 'TB', '', 'T', '02', NULL, 0), (6, 1, 'TX', '', 'T', '', NULL, 0);
INSERT INTO contratos(ponteiro, ponteiro_empresa, codigo, ponteiro_cliente, valor_hora) VALUES (1, 1, 'K1', 1, 900000),
  (2, 2, 'K2', 2, 0);
INSERT INTO vinculos VALUES (1, 300, 5, -1946157006, 0, 'azul'), (1, 300, 5, -1946157056, 44000, ''),
  (2, 300, 6, -1946157056, 1, '');
)sql";

// A reader, and what it read in a few words ("" for the reset object).
using Leitor = std::function<HRESULT(IQVAcessoEmpresarial&, std::uint32_t, std::string*)>;
template <class T>
Leitor Le(HRESULT (IQVAcessoEmpresarial::*le)(std::uint32_t, T*), std::string (*resumo)(const T&)) {
  return [=](IQVAcessoEmpresarial& a, std::uint32_t l, std::string* ps) {
    T dados;
    const HRESULT hr = (a.*le)(l, &dados);
    *ps = dados.lPonteiro == 0 ? "" : resumo(dados);
    return hr;
  };
}
std::string Servico(const CQVDadosDF_Servico& s) {
  return s.sCodigo + s.cTipo + " " + s.sUnidade + " " + std::to_string(s.iCasasDecimais) + " " +
         std::to_string(s.vValorUnitario);
}

class CQVAcessoEmpresarialSuiteTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // One root per test: the process's store stays open on its root's file.
    QVDefineRaizDados(QVTesteNovoDiretorio(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    QVTesteExecutaSql(kDados);
    m_Acesso.emplace(QVTesteBancoSuite(), 1);
    QVTesteLimpaLog();
  }
  void TearDown() override { QVDefineRaizDados(QVTesteDiretorio() + "/dados"); }
  std::optional<CQVAcessoEmpresarialSuite> m_Acesso;
};

}  // namespace

TEST_F(CQVAcessoEmpresarialSuiteTest, CadaLeitorAchaOSeuENadaDeOutraEmpresa) {
  using I = IQVAcessoEmpresarial;
  const std::tuple<const char*, Leitor, std::uint32_t, const char*, std::uint32_t> casos[] = {
      // the table, its reader, a pointer and what is read there, another company's pointer (0: shared)
      {"filiais", Le<CQVDadosDF_Filial>(&I::LeFilial, [](auto& f) { return f.sNome + std::to_string(f.bAtiva); }), 2,
       "Sul0", 3},
      {"usuarios", Le<CQVDadosDF_Usuario>(&I::LeUsuario, [](auto& u) { return u.sPerfil + std::to_string(u.bAtivo); }),
       8, "tec0", 10},
      {"clientes", Le<CQVDadosDF_Cliente>(&I::LeBufferCFRTLibPla, [](auto& c) { return c.sNome + std::to_string(
                                                                                    c.lPonteiroMunicipio); }),
       1, "Cli1", 2},
      {"municipios", Le<CQVDadosDF_Municipio>(&I::LeMunicipio, [](auto& m) { return m.sNome + m.sUF; }), 1,
       "CuritibaPR", 0},
      {"servicos", Le<CQVDadosDF_Servico>(&I::LeServico, Servico), 3, "S1S KM 0 150000", 5},
      {"servicos", Le<CQVDadosDF_Servico>(&I::LeBufferServicoEx, Servico), 1, "T01T  2 0", 5},  // no unit: 2 decimals
      {"unidades", Le<CQVDadosDF_UnidadeMedida>(&I::LeUnidadeMedida, [](auto& u) { return u.sSigla; }), 2, "KM", 0},
      {"contratos", Le<CQVDadosDF_Contrato>(&I::LeContrato, [](auto& k) { return std::to_string(k.vValorHora); }), 1,
       "900000", 2},
  };
  for (const auto& [tabela, le, lPresente, lido, lOutra] : casos) {
    SCOPED_TRACE(tabela);
    std::string s;
    EXPECT_EQ(le(*m_Acesso, lPresente, &s), S_OK);
    EXPECT_EQ(s, lido);
    for (const std::uint32_t l : {lOutra, 0u, 999u}) {
      QVTesteLimpaLog();
      EXPECT_EQ(le(*m_Acesso, l, &s), E_QVDF_REGISTRO_SUITE_INEXISTENTE) << l;
      EXPECT_EQ(s, "");
      const auto linhas = QVTesteLinhasErro();
      ASSERT_EQ(linhas.size(), 1u);
      EXPECT_NE(linhas[0].find(std::string("tabela = ") + tabela + "\tlPonteiro = " + std::to_string(l) + "\t"),
                std::string::npos);
    }
  }
}

TEST_F(CQVAcessoEmpresarialSuiteTest, FiliaisUsuariosTitulosMensagensVinculos) {
  CQVDadosDF_FiliaisAtivas filiais;
  const std::tuple<std::uint32_t, HRESULT, U> usuarios[] = {
      {7, S_OK, {1, 4}}, {9, S_OK, {}},  // not the inactive branch, nor company 2's
      {10, E_QVDF_REGISTRO_SUITE_INEXISTENTE, {}},  // a user of company 2 only
  };
  for (const auto& [lUsuario, hr, esperadas] : usuarios) {
    EXPECT_EQ(m_Acesso->LeBufferFiliaisAtivas(lUsuario, &filiais), hr) << lUsuario;
    EXPECT_EQ(filiais.m_lPonteiros, esperadas);
  }
  const std::tuple<CQVDadosDF_UsuarioFiltro, HRESULT, U> filtros[] = {
      {{}, S_OK, {7, 9}},
      {{.bSomenteExecutores = true, .bIncluirInativos = true}, S_OK, {7, 8}},
      {{.lPermissoesIguaisA = 8}, S_OK, {7}},  // the profile of an inactive user
      {{.lPermissoesIguaisA = 10}, E_QVDF_REGISTRO_SUITE_INEXISTENTE, {}},
  };
  for (const auto& [filtro, hr, esperados] : filtros) {
    U ponteiros{99};
    EXPECT_EQ(m_Acesso->BuscaPonteirosUsuario(filtro, &ponteiros), hr);
    EXPECT_EQ(ponteiros, esperados);
  }

  QVTesteLimpaLog();
  const std::pair<const char*, std::uint32_t> titulos[] = {
      {"01.01.001", 2}, {"01.01", 2}, {"01.02", 1}, {"01", 1},
      {"02.001", 0},  // company 2's title
      {"0", 0},       {"", 0},  // a title without classification (6) groups nothing
  };
  for (const auto& [classificacao, lTitulo] : titulos) {
    std::uint32_t l = 99;
    CQVDadosDF_Servico titulo;
    EXPECT_EQ(m_Acesso->ExisteClassificacaoTituloServico(classificacao, &l, &titulo), lTitulo ? S_OK : S_FALSE);
    EXPECT_EQ(l, lTitulo) << classificacao;
    EXPECT_EQ(titulo.lPonteiro, lTitulo);
  }
  EXPECT_TRUE(QVTesteLinhasErro().empty());  // none is no failure

  std::string texto;
  EXPECT_EQ(m_Acesso->LeMensagem(0x933, &texto), S_OK);
  EXPECT_EQ(texto, "Empresa não cadastrada na suíte");
  for (const std::uint32_t n : {0xFFFFu, 0x80040933u})
    EXPECT_EQ(m_Acesso->LeMensagem(n, &texto), E_QVDF_REGISTRO_SUITE_INEXISTENTE);
  CIEVinculo vinculos;
  EXPECT_EQ(m_Acesso->LeVinculos(300, 5, &vinculos), S_OK);
  ASSERT_EQ(vinculos.m_campos.size(), 2u);  // by field id
  EXPECT_EQ(vinculos.m_campos[0].id, kQVCampoLivreBase);
  EXPECT_EQ(vinculos.m_campos[0].valor + vinculos.m_campos[1].valor, 44000);
  EXPECT_EQ(vinculos.m_campos[1].sTexto, "azul");
  EXPECT_EQ(m_Acesso->LeVinculos(300, 6, &vinculos), S_FALSE);  // company 2's
  EXPECT_TRUE(vinculos.m_campos.empty());
}
