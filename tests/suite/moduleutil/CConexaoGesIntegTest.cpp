// The integration connection over the store's invoices: which invoices a
// load keeps and in what order, what a call received, and the refusal of a
// company the suite does not know.
#include "suite/moduleutil/CConexaoGesInteg.h"

#include <gtest/gtest.h>

#include <tuple>

#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

using Lista = std::vector<std::uint32_t>;

// A data root of its own per test: the process's store opens again there.
class CConexaoGesIntegTest : public ::testing::Test {
 protected:
  void SetUp() override {
    QVDefineRaizDados(QVTesteNovoDiretorio(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    const std::string a = std::to_string(QVTesteCadastraEmpresa("Construções Ágil"));
    const std::string b = std::to_string(QVTesteCadastraEmpresa("OUTRA"));
    QVTesteExecutaSql("INSERT INTO clientes(ponteiro, ponteiro_empresa, nome) VALUES (10, " + a + ", 'C10'), (11, " +
                      a + ", 'C11'), (20, " + b + ", 'C20')");
    // pointer, company (@ or #), number, series, issued, client, service, month, position, value, received, cancelled
    const char* notas[] = {
        "1, @, 300, '1', 100, 10, 5, 7, 1, 1000000, 400000, 0", "2, @, 200, '1', 100, 11, 6, 7, 1, 500000, 100000, 0",
        "3, @, 100, '1', 120, 10, 5, 7, 2, 1, 200000, 0",       "4, @, 400, '1', 110, 10, 5, 7, 1, 1, 900000, 1",
        "5, #, 500, '1', 105, 20, 5, 7, 1, 1, 700000, 0",       "6, @, 150, '1', 90, 11, 0, 0, 0, 1, 300000, 0",
        "7, @, 200, '2', 100, 10, 5, 7, 1, 1, 50000, 0",        "9, @, 901, '', 130, 10, 0, 9, 1, 1, 1, 0",
        "8, @, 900, '', 130, 10, 0, 9, 1, 1, 9223372036854775807, 0"};
    for (const char* nota : notas) {
      std::string sql = "INSERT INTO notas_fiscais VALUES (";
      for (const char* c = nota; *c != '\0'; ++c) sql += *c == '@' ? a : *c == '#' ? b : std::string(1, *c);
      QVTesteExecutaSql(sql + ")");
    }
    QVTesteLimpaLog();
  }
  void TearDown() override { QVDefineRaizDados(QVTesteDiretorio() + "/dados"); }

  static Lista Ponteiros(IQVGE_Integracao* p) {
    Lista v;
    for (const CQVDadosGE_NotaFiscal& n : p->GetNotasFiscais()) v.push_back(n.lPonteiro);
    return v;
  }
};

}  // namespace

TEST_F(CConexaoGesIntegTest, LeNotasFiltraEOrdenaPorEmissaoENumero) {
  CConexaoGesInteg conexao;
  // Letter case in the code page does not count (the store's index folds ASCII only).
  ASSERT_EQ(conexao.Inicializa("CONSTRUÇÕES ÁGIL", kQVTesteUsuario, 1), S_OK);
  const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, Lista> casos[] = {
      // first day, last day, client, service; the invoices' pointers
      {0, 129, 0, 0, {6, 2, 7, 1, 3}},  // 4 cancelled, 5 another company's
      {100, 100, 0, 0, {2, 7, 1}}, {101, 0, 0, 0, {3, 8, 9}}, {0, 99, 0, 0, {6}}, {0, 129, 10, 0, {7, 1, 3}},
      {0, 0, 0, 6, {2}}, {100, 120, 10, 5, {7, 1, 3}}, {131, 0, 0, 0, {}}, {120, 100, 0, 0, {}},
      {0, 0, 20, 0, {}}};  // the other company's client
  for (const auto& [ini, fim, cliente, servico, esperado] : casos) {
    ASSERT_EQ(conexao->LeNotasFiscais(ini, fim, cliente, servico), S_OK);
    EXPECT_EQ(Ponteiros(conexao.Get()), esperado) << ini << ".." << fim << " c" << cliente << " s" << servico;
  }
  ASSERT_EQ(conexao->LeNotasFiscais(0, 0, 0, 6), S_OK);
  const CQVDadosGE_NotaFiscal& n = conexao->GetNotasFiscais().at(0);
  EXPECT_EQ(std::tie(n.i64Numero, n.sSerie, n.iDataEmissao, n.lPonteiroCliente, n.lPonteiroServico, n.iMAAtendimento,
                     n.lPosicaoAtendimento, n.vValor, n.vValorRecebido, n.bCancelada),
            std::make_tuple(200, std::string("1"), 100u, 11u, 6u, std::uint16_t{7}, 1u, 500000, 100000, false));
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TEST_F(CConexaoGesIntegTest, ValorRecebidoSomaAsNotasDoAtendimento) {
  CConexaoGesInteg conexao;
  ASSERT_EQ(conexao.Inicializa("Construções Ágil", kQVTesteUsuario, 1), S_OK);
  const std::tuple<std::uint16_t, std::uint32_t, HRESULT, QVMoeda> casos[] = {
      {7, 1, S_OK, 550000},  // 1, 2 and 7: not the cancelled 4 nor the other company's 5
      {7, 2, S_OK, 200000}, {7, 3, S_OK, 0}, {8, 1, S_OK, 0},
      {0, 0, S_OK, 0},                 // no call: invoice 6 is nobody's receipt
      {9, 1, DISP_E_OVERFLOW, 0}};     // refused, not wrapped
  for (const auto& [ma, pos, hr, valor] : casos) {
    QVMoeda v = -1;
    EXPECT_EQ(conexao->GetValorRecebidoAtTecFaturado(ma, pos, &v), hr) << ma << "/" << pos;
    EXPECT_EQ(v, valor) << ma << "/" << pos;
  }
  EXPECT_EQ(QVTesteLinhasErro().size(), 1u);

  // An unknown company: refused with one line, and the former connection is gone.
  for (const char* empresa : {"NINGUEM", "", "Construções Agil"}) {
    EXPECT_EQ(conexao.Inicializa(empresa, kQVTesteUsuario, 1), E_QVDF_EMPRESA_NAO_CADASTRADA) << empresa;
    EXPECT_EQ(conexao.Get(), nullptr);
  }
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 4u);
  EXPECT_NE(linhas[1].find("sEmpresa = NINGUEM"), std::string::npos) << linhas[1];
}
