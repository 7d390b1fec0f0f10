// The manager access over a real store: the follow-up calls in the order the
// server's integration makes them, references that name nothing of this
// company and month, refused input, two processes writing at once.
#include "suite/hostlink/CQVAcessoGerenciadorSuite.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "suite/store/CQVBancoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

using Acm = CQVDadosGE_AcompanhamentoServico;
using Integ = CQVDadosGE_DadosIntegracaoAcompanhamentoServico;
using Numeros = std::vector<std::uint32_t>;

// The first column of the first row, as text.
std::string Consulta(const std::string& sql) {
  auto p = QVTesteBancoSuite();
  auto trava = p->Trava();
  CQVComandoSuite cmd;
  bool b = false;
  return SUCCEEDED(p->Prepara(sql.c_str(), &cmd)) && SUCCEEDED(cmd.Passo(&b)) && b ? cmd.Texto(0) : "?";
}

// A follow-up as the integration builds it: the class entry, then the service.
Acm NovoAcompanhamento(std::uint32_t iData, const std::string& sObs) {
  CQVDadosGE_ServicoAcompanhamentoServico classe;
  classe.SetClasse(10);
  classe.vValor = 99;
  classe.PreparaParaSerClasse();
  Acm a;
  a.SetDataAbertura(iData);
  a.sObservacao = sObs;
  a.AdicionaServicos({classe, Acm::CriaNovoServicoAcompanhamento(11, 10, 7, 15000, 300000, iData)});
  return a;
}

Numeros NumerosDe(const Acm& a) {
  Numeros v;
  for (const auto& s : a.m_servicos) v.push_back(s.lIdentificador);
  return v;
}

class AcessoGerenciadorTest : public ::testing::Test {
 protected:
  void SetUp() override { QVTesteLimpaLog(); }
  const std::uint32_t m_lEmpresa = QVTesteCadastraEmpresa("EMPRESA_ACM");
  CQVAcessoGerenciadorSuite m_Acesso{QVTesteBancoSuite(), m_lEmpresa};
  CQVAcessoGerenciadorSuite m_Outra{QVTesteBancoSuite(), QVTesteCadastraEmpresa("OUTRA_ACM")};
  const REG_QVDMC m_dmcAtendimento = REG_QVDMC().SetDMC(5, QVMesAno(2026, 2));
};

}  // namespace

TEST_F(AcessoGerenciadorTest, IntegracaoNaOrdemDoServidor) {
  Acm novo = NovoAcompanhamento(QVDia(2026, 3, 15), "integração"), lido, servicos;
  Integ gerada, integ;
  ASSERT_EQ(m_Acesso.InsereAcompanhamentoIntegracaoATTEC(novo, m_dmcAtendimento, &gerada), S_OK);
  EXPECT_EQ(novo.dmc.GetMa().iMA, QVMesAno(2026, 3));
  EXPECT_EQ(NumerosDe(novo), (Numeros{1, 2}));
  EXPECT_EQ(gerada.dmcIntegracao.GetMa().iMA, QVMesAno(2026, 2));
  ASSERT_EQ(m_Acesso.LeAcompanhamentoServico(&novo.dmc, &lido), S_OK);
  ASSERT_TRUE(lido.GetClasse() != nullptr && lido.ProcuraServico(2) != nullptr);
  EXPECT_EQ(lido.GetClasse()->vValor, 0);  // a class entry has no value of its own
  EXPECT_EQ(lido.ProcuraServico(2)->vValor, 300000);

  // A third service; then the second removed and a new one: a number is not
  // handed out again within the write that removes it.
  lido.vValorServicos = 450000;
  lido.m_servicos.push_back(Acm::CriaNovoServicoAcompanhamento(12, 10, 7, 0, 150000, 0));
  REG_QVDMC gravado;
  ASSERT_EQ(m_Acesso.GravaAcompanhamentoServico(lido, &gravado, true), S_OK);
  lido.m_servicos.erase(lido.m_servicos.begin() + 1);
  lido.m_servicos.back().lIdentificador = 0;
  ASSERT_EQ(m_Acesso.GravaAcompanhamentoServico(lido, &gravado, true), S_OK);
  EXPECT_EQ(gravado, novo.dmc);
  ASSERT_EQ(m_Acesso.LeAcompanhamentoServico(&gravado, &servicos, GE_ACM_LER_SOMENTE_SERVICO), S_OK);
  EXPECT_EQ(NumerosDe(servicos), (Numeros{1, 4}));
  EXPECT_EQ(servicos.vValorServicos, 0);  // the header is not read
  lido.m_servicos.clear();  // without its services, the header alone is written
  ASSERT_EQ(m_Acesso.GravaAcompanhamentoServico(lido, &gravado, false), S_OK);
  ASSERT_EQ(m_Acesso.LeAcompanhamentoServico(&gravado, &servicos), S_OK);
  EXPECT_EQ(servicos.vValorServicos, 450000);
  EXPECT_EQ(NumerosDe(servicos), (Numeros{1, 4}));

  ASSERT_EQ(m_Acesso.LeRegistroIntegracaoAcompanhamentoATTEC(gerada.dmcIntegracao, &integ), S_OK);
  EXPECT_EQ(integ.dmcAcompanhamento, novo.dmc);
  EXPECT_EQ(integ.dmcAtendimento, m_dmcAtendimento);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TEST_F(AcessoGerenciadorTest, ReferenciaDeOutroRegistroEmpresaOuMesNaoLeNemGrava) {
  Acm acm = NovoAcompanhamento(QVDia(2026, 4, 1), "");
  Integ integ;
  ASSERT_EQ(m_Acesso.InsereAcompanhamentoIntegracaoATTEC(acm, m_dmcAtendimento, &integ), S_OK);
  CQVDadosGE_ListaEventos eventos{{{3, 0, 0, "agenda", "evento"}}};
  std::uint32_t lLista = 0;
  ASSERT_EQ(m_Acesso.GravaEventosGoogle(&eventos, &lLista), S_OK);
  CQVDadosGE_Projeto proj{0, "P1", "Projeto", 0, false};
  ASSERT_EQ(m_Acesso.GravaProjeto(proj), S_OK);

  using A = CQVAcessoGerenciadorSuite;
  using Eventos = CQVDadosGE_ListaEventos;
  const REG_QVDMC lista(lLista), projeto(proj.lPonteiro);
  const std::pair<REG_QVDMC, std::function<HRESULT(A&, REG_QVDMC)>> ops[] = {
      {acm.dmc, [](A& a, auto d) { Acm x; return a.LeAcompanhamentoServico(&d, &x); }},
      {acm.dmc, [](A& a, auto d) { Acm x; x.dmc = d; return a.GravaAcompanhamentoServico(x, &d, true); }},
      {integ.dmcIntegracao, [](A& a, auto d) { Integ x; return a.LeRegistroIntegracaoAcompanhamentoATTEC(d, &x); }},
      {lista, [](A& a, auto d) { auto l = d.GetPosicao(); Eventos x; return a.LeEventosGoogle(&l, &x); }},
      {lista, [](A& a, auto d) { auto l = d.GetPosicao(); Eventos x; return a.GravaEventosGoogle(&x, &l); }},
      {projeto, [](A& a, auto d) { CQVDadosGE_Projeto x; return a.LeProjeto(d.GetPosicao(), &x); }},
      {projeto, [](A& a, auto d) { CQVDadosGE_Projeto x{d.GetPosicao()}; return a.GravaProjeto(x); }},
  };
  for (std::size_t i = 0; i < std::size(ops); ++i) {
    const auto& [dmc, op] = ops[i];
    const std::uint16_t ma = dmc.GetMa().iMA;
    // absent; another company's; the wrong month (references with one)
    const std::pair<A*, REG_QVDMC> casos[] = {{&m_Acesso, REG_QVDMC().SetDMC(dmc.GetPosicao() + 1000, ma)},
                                               {&m_Outra, dmc},
                                               {&m_Acesso, REG_QVDMC().SetDMC(dmc.GetPosicao(), ma + 1)}};
    for (std::size_t c = 0; c < (ma != 0 ? 3u : 2u); ++c) {
      QVTesteLimpaLog();
      EXPECT_EQ(op(*casos[c].first, casos[c].second), E_QVDF_REGISTRO_SUITE_INEXISTENTE) << i << "/" << c;
      EXPECT_EQ(QVTesteLinhasErro().size(), 1u) << i << "/" << c;
    }
    EXPECT_EQ(op(m_Acesso, dmc), S_OK) << i;  // the reference itself is fine
  }
  EXPECT_EQ(Consulta("SELECT COUNT(*) FROM eventos WHERE ponteiro_lista = " + std::to_string(lLista)), "0");
}

TEST_F(AcessoGerenciadorTest, EventosSubstituidosEmOrdemPropriedadesEMestre) {
  CQVDadosGE_ListaEventos lista, lida;
  std::uint32_t lLista = 0;
  ASSERT_EQ(m_Acesso.GravaEventosGoogle(&lista, &lLista), S_OK);  // keeps nothing
  EXPECT_EQ(lLista, 0u);
  lista.m_eventos = {{1, 0, 0, "a1", "e1"}, {2, 0, 0, "a2", "e2"}, {3, 0, 0, "a3", "e3"}};
  ASSERT_EQ(m_Acesso.GravaEventosGoogle(&lista, &lLista), S_OK);
  lista.m_eventos = {lista.m_eventos[2], lista.m_eventos[1]};
  ASSERT_EQ(m_Acesso.GravaEventosGoogle(&lista, &lLista), S_OK);
  ASSERT_EQ(m_Acesso.LeEventosGoogle(&lLista, &lida), S_OK);
  ASSERT_EQ(lida.m_eventos.size(), 2u);
  EXPECT_EQ(lida.m_eventos[0].sIDEvento + lida.m_eventos[1].sIDAgenda, "e3a2");
  EXPECT_EQ(lida.m_eventos[1].lPonteiroTextoIDAgenda, lida.m_eventos[1].lPonteiroTextoIDEvento);
  EXPECT_NE(lida.m_eventos[1].lPonteiroTextoIDAgenda, 0u);

  static int iEmpresa = 0;  // a company without settings at each run
  const std::string e = std::to_string(QVTesteCadastraEmpresa("MESTRE_" + std::to_string(++iEmpresa)));
  CQVAcessoGerenciadorSuite acesso(QVTesteBancoSuite(), std::stoul(e));
  CQVDadosGE_PropriedadesAcompanhamento prop;
  CQVDadosGE_Mestre mestre;
  ASSERT_EQ(acesso.LeMestre(&mestre), S_OK);
  EXPECT_EQ(mestre.sRazaoSocial + "|" + mestre.sMunicipio, "MESTRE_" + std::to_string(iEmpresa) + "|");
  ASSERT_EQ(acesso.LePropriedadesAcompanhamento(&prop), S_OK);
  EXPECT_EQ(prop.usVersaoRegistro, 1);  // the defaults
  QVTesteExecutaSql("INSERT OR REPLACE INTO municipios(ponteiro, nome, uf) VALUES(900, 'São Paulo', 'SP');"
                    "UPDATE empresas SET ponteiro_municipio = 900 WHERE ponteiro = " + e + ";"
                    "INSERT INTO parametros_ge VALUES(" + e + ", 1, 1, 0, 3)");
  ASSERT_EQ(acesso.LePropriedadesAcompanhamento(&prop), S_OK);
  EXPECT_TRUE(prop.GetPermitirAcompanhamentoClassesDiferentes());
  EXPECT_EQ(prop.cOrigemPadrao * 100 + prop.usVersaoRegistro, 3);
  ASSERT_EQ(acesso.LeMestre(&mestre), S_OK);
  EXPECT_EQ(mestre.sMunicipio, "São Paulo/SP");
  EXPECT_TRUE(mestre.bRelatoriosPorFaturamento);
  EXPECT_EQ(CQVAcessoGerenciadorSuite(QVTesteBancoSuite(), 999999).LeMestre(&mestre),
            E_QVDF_REGISTRO_SUITE_INEXISTENTE);
}

TEST_F(AcessoGerenciadorTest, EntradaRecusadaComUmaLinhaENadaGravado) {
  Acm acm = NovoAcompanhamento(QVDia(2026, 5, 2), ""), a;
  Integ integ;
  ASSERT_EQ(m_Acesso.InsereAcompanhamentoIntegracaoATTEC(acm, m_dmcAtendimento, &integ), S_OK);
  const std::string total = Consulta("SELECT COUNT(*) FROM acompanhamentos");
  Acm duplicado = acm, estouro = acm, semData = NovoAcompanhamento(0xFFFFFFF0u, "");
  duplicado.m_servicos[1].lIdentificador = 1;
  estouro.m_servicos[0].lIdentificador = 0xFFFFFFFFu;
  estouro.m_servicos[1].lIdentificador = 0;
  REG_QVDMC d;
  const std::function<HRESULT()> casos[] = {
      [&] { return m_Acesso.GravaAcompanhamentoServico(duplicado, &d, true); },
      [&] { return m_Acesso.GravaAcompanhamentoServico(estouro, &d, true); },
      [&] { return m_Acesso.InsereAcompanhamentoIntegracaoATTEC(semData, m_dmcAtendimento, &integ); },
      [&] { return m_Acesso.InsereAcompanhamentoIntegracaoATTEC(a, REG_QVDMC(5), &integ); },  // no month
      [&] { return m_Acesso.LeAcompanhamentoServico(&acm.dmc, &a, 7); },
      [&] { return m_Acesso.LeAcompanhamentoServico(&acm.dmc, nullptr); },
  };
  for (std::size_t i = 0; i < std::size(casos); ++i) {
    QVTesteLimpaLog();
    EXPECT_EQ(casos[i](), i < 5 ? E_INVALIDARG : E_POINTER) << i;
    EXPECT_EQ(QVTesteLinhasErro().size(), 1u) << i;
  }
  EXPECT_EQ(Consulta("SELECT COUNT(*) FROM acompanhamentos"), total);
  ASSERT_EQ(m_Acesso.LeAcompanhamentoServico(&acm.dmc, &a), S_OK);
  EXPECT_EQ(NumerosDe(a), (Numeros{1, 2}));
}

TEST_F(AcessoGerenciadorTest, DoisProcessosGravamAcompanhamentosSemPerda) {
  constexpr int kN = 15;
  auto* dmcs = QVTesteCompartilhado<std::array<std::uint64_t, 2 * kN>>();
  const char* sIntegracoes = "SELECT COUNT(DISTINCT ponteiro_acompanhamento) FROM integracoes_acompanhamento";
  const int antes = std::stoi(Consulta(sIntegracoes));
  const auto corpo = [&](int p) {
    std::shared_ptr<CQVBancoSuite> pBanco;  // this process's own connection
    if (FAILED(QVBancoSuite(&pBanco))) return 1;
    CQVAcessoGerenciadorSuite acesso(pBanco, m_lEmpresa);
    for (int k = 0; k < kN; ++k) {
      Acm a = NovoAcompanhamento(QVDia(2026, 6, 1 + k), std::to_string(p * kN + k));
      Integ integ;
      REG_QVDMC gravado;
      if (FAILED(acesso.InsereAcompanhamentoIntegracaoATTEC(a, REG_QVDMC().SetDMC(k + 1, 2000), &integ))) return 2;
      a.m_servicos.push_back(Acm::CriaNovoServicoAcompanhamento(13, 10, 7, 0, 1, 0));
      if (FAILED(acesso.GravaAcompanhamentoServico(a, &gravado, true))) return 3;
      (*dmcs)[p * kN + k] = gravado.ui;
    }
    return 0;
  };
  ASSERT_EQ(QVTesteEmProcessos(2, corpo), std::vector<int>(2, 0));
  for (int i = 0; i < 2 * kN; ++i) {
    const REG_QVDMC dmc((*dmcs)[i]);
    Acm lido;
    ASSERT_EQ(m_Acesso.LeAcompanhamentoServico(&dmc, &lido), S_OK) << i;
    EXPECT_EQ(lido.sObservacao, std::to_string(i));
    EXPECT_EQ(NumerosDe(lido), (Numeros{1, 2, 3}));
  }
  EXPECT_EQ(Consulta(sIntegracoes), std::to_string(antes + 2 * kN));
}
