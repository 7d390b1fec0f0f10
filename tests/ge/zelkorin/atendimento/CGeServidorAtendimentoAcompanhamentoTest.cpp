// The follow-up integration of saved calls over the suite store, every
// manager call counted (one made to fail) by a session library wrapping the
// embedded one.
#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "platform/QVCodePage.h"
#include "suite/hostlink/CQVConexaoSuitePadrao.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

const std::uint16_t kMarco = QVMesAno(2024, 3), kAbril = QVMesAno(2024, 4);
constexpr QVMoeda kReal = kQVMoedaEscala;
std::map<std::string, int> g_chamadas;  // manager calls by name
std::string g_sFalha;                   // the one that answers E_QVDF_BANCO_SUITE_OCUPADO

#define QV_CONTA(metodo, params, args)                                            \
  HRESULT metodo params override {                                                \
    ++g_chamadas[#metodo];                                                        \
    return g_sFalha == #metodo ? E_QVDF_BANCO_SUITE_OCUPADO : m_real.metodo args; \
  }
struct GerenciadorContado : IQVAcessoGerenciador {
  IQVAcessoGerenciador& m_real;
  explicit GerenciadorContado(IQVAcessoGerenciador& real) : m_real(real) {}
  QV_CONTA(LeEventosGoogle, (const std::uint32_t* p, CQVDadosGE_ListaEventos* l), (p, l))
  QV_CONTA(GravaEventosGoogle, (const CQVDadosGE_ListaEventos* l, std::uint32_t* p), (l, p))
  QV_CONTA(LeAcompanhamentoServico, (const REG_QVDMC* p, CQVDadosGE_AcompanhamentoServico* d, std::uint32_t m),
           (p, d, m))
  QV_CONTA(GravaAcompanhamentoServico, (const CQVDadosGE_AcompanhamentoServico& d, REG_QVDMC* p, bool b), (d, p, b))
  QV_CONTA(LeRegistroIntegracaoAcompanhamentoATTEC,
           (const REG_QVDMC& i, CQVDadosGE_DadosIntegracaoAcompanhamentoServico* d), (i, d))
  QV_CONTA(InsereAcompanhamentoIntegracaoATTEC,
           (CQVDadosGE_AcompanhamentoServico & d, const REG_QVDMC& a,
            CQVDadosGE_DadosIntegracaoAcompanhamentoServico* g),
           (d, a, g))
  QV_CONTA(LePropriedadesAcompanhamento, (CQVDadosGE_PropriedadesAcompanhamento * d), (d))
  QV_CONTA(LeMestre, (CQVDadosGE_Mestre * d), (d))
  QV_CONTA(LeProjeto, (std::uint32_t l, CQVDadosGE_Projeto* d), (l, d))
  QV_CONTA(GravaProjeto, (CQVDadosGE_Projeto & d), (d))
};

struct ConexaoContada : CQVConexaoSuitePadrao {
  GerenciadorContado m_contado{*CQVConexaoSuitePadrao::GetAcessoGerenciador()};
  using CQVConexaoSuitePadrao::CQVConexaoSuitePadrao;
  IQVAcessoGerenciador* GetAcessoGerenciador() override { return &m_contado; }
};

struct SessaoContada : CQVSessaoSuitePadrao {
  HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps, std::shared_ptr<IQVConexaoSuite>* pp) override {
    const std::uint32_t lEmpresa = QVTesteCadastraEmpresa(QVAnsiToUtf8(QVLeCampoTexto(regps.szEmpresa)));
    *pp = std::make_shared<ConexaoContada>(QVTesteBancoSuite(), lEmpresa, regps.ulUsuario);
    return S_OK;
  }
};

// The server, with the insertion hook reachable; its company has titles 01
// and 02 over services 01.001, 01.002 and 02.001 (servicos: code -> pointer).
struct Empresa : CGeServidorAtendimento {
  using CGeServidorAtendimento::InsereServicoAcompanhamentoIntegrado;
  std::string e;
  std::map<std::string, std::uint32_t> servicos;
  Empresa(const std::string& nome, bool bMistura) : e(std::to_string(QVTesteCadastraEmpresa(nome))) {
    std::uint32_t lPonteiro = static_cast<std::uint32_t>(std::stoul(e)) * 10;
    for (const char* s : {"01", "02", "01.001", "01.002", "02.001"}) {
      servicos[s] = ++lPonteiro;
      QVTesteExecutaSql(
          "INSERT INTO servicos(ponteiro, ponteiro_empresa, codigo, descricao, tipo, classificacao)"
          " VALUES (" +
          std::to_string(servicos[s]) + ", " + e + ", '" + s + "', 'Serviço', '" + (s[2] ? "S" : "T") + "', '" + s +
          "')");
    }
    if (bMistura)
      QVTesteExecutaSql("INSERT INTO parametros_ge(ponteiro_empresa, permitir_classes_diferentes) VALUES (" + e +
                        ", 1)");
    EXPECT_EQ(Inicializa(QVTesteInicializaPS(nome)), S_OK);
  }
  std::uint32_t Grava(std::uint16_t iMA, std::uint32_t lPosicao, const _REG_ATENDIMENTO_PS& a, HRESULT hr = S_OK) {
    std::uint32_t l = 0;
    EXPECT_EQ(GravaAtendimento(iMA, lPosicao, a, &l), hr);
    return l;
  }
  CQVDadosGE_AcompanhamentoServico Acompanhamento(std::uint64_t dmc) {
    CQVDadosGE_AcompanhamentoServico d;
    const REG_QVDMC r(dmc);
    EXPECT_EQ(GetAcessoGerenciador()->LeAcompanhamentoServico(&r, &d), S_OK);
    return d;
  }
  // A call of client 5 issued 2024-03-10, invoice 77: (code, to integrate, value) per service.
  void Chamado(CQVRegistroPs<_REG_ATENDIMENTO_PS>& c, const std::vector<std::tuple<const char*, int, QVMoeda>>& lista) {
    c.reg.lPonteiroCliente = 5, c.reg.iDataEmissao = QVDia(2024, 3, 10), c.reg.i64NumeroNF = 77;
    c.reg.iQuantidadeServicoAtend = static_cast<std::uint32_t>(lista.size());
    ASSERT_EQ(QVAlocaLista(c.reg.pServicos, c.reg.iQuantidadeServicoAtend), S_OK);
    for (std::size_t i = 0; i < lista.size(); ++i) {
      _REG_SERVICO_ATENDIMENTO_PS& s = c.reg.pServicos[i];
      s.lPonteiroServico = servicos.count(std::get<0>(lista[i])) ? servicos[std::get<0>(lista[i])] : 99999;
      s.cIntegrarAcompServ = static_cast<std::uint8_t>(std::get<1>(lista[i]));
      s.vValorTotal = std::get<2>(lista[i]), s.vTotalHoras = 2 * kReal, s.lPonteiroExecutor = 3;
    }
  }
};

class Acompanhamento : public ::testing::Test {
 protected:
  void SetUp() override {
    QVDefineSessaoSuite(std::make_shared<SessaoContada>());
    g_chamadas.clear(), g_sFalha.clear();
  }
  void TearDown() override { QVDefineSessaoSuite(std::make_shared<CQVSessaoSuitePadrao>()); }
};

}  // namespace

// Services go to the call's follow-ups, each offered first to those made
// for the services before it: it joins one of its class (any, when the
// settings let classes mix), else gets its own. Stored services and the
// call's list carry the identity; with nothing left to attach, no call.
TEST_F(Acompanhamento, ServicosVaoAosAcompanhamentosDoChamado) {
  for (const auto& [nome, bMistura, segundo, n] :
       {std::tuple{"ACM MESMA", false, "01.002", 1u}, std::tuple{"ACM OUTRA", false, "02.001", 2u},
        std::tuple{"ACM MISTURA", true, "02.001", 1u}}) {
    SCOPED_TRACE(nome);
    Empresa emp(nome, bMistura);
    CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado, lido;
    emp.Chamado(chamado,
                {{"01.001", 1, 100 * kReal}, {"01.001", 0, kReal}, {segundo, 1, 30 * kReal}, {"01.002", 1, 5 * kReal}});
    g_chamadas.clear();
    const std::uint32_t lPos = emp.Grava(kMarco, 0, chamado.reg);
    EXPECT_EQ(g_chamadas["InsereAcompanhamentoIntegracaoATTEC"], static_cast<int>(n));
    EXPECT_EQ(g_chamadas["LePropriedadesAcompanhamento"], 1);
    ASSERT_EQ(emp.LeAtendimento(kMarco, lPos, &lido.reg), S_OK);
    ASSERT_EQ(lido.reg.regListaPonteirosIntegACM.ulQuantidade, n);
    EXPECT_EQ(lido.reg.pServicos[1].lIdentificadorServicoAcompanhamento, 0u);
    for (const std::uint32_t i : {0u, 2u, 3u}) {
      const _REG_SERVICO_ATENDIMENTO_PS& s = lido.reg.pServicos[i];
      const bool bProprio = i == 2 && n == 2;  // the second class's own follow-up
      const QVMoeda vAcompanhamento = (bProprio ? 30 : n == 1 ? 135 : 105) * kReal;  // 100 + 5 (+ 30)
      EXPECT_EQ(s.dmcRegIntegracaoAcompanhamento, lido.reg.regListaPonteirosIntegACM.pLista[bProprio ? 1 : 0]);
      EXPECT_EQ(REG_QVDMC().SetDMC(s.lPonteiroACSGerado, s.iMaACSGerado).ui, s.rDMCAcompanhamentoGerado);
      const CQVDadosGE_AcompanhamentoServico acm = emp.Acompanhamento(s.rDMCAcompanhamentoGerado);
      const auto* pEntrada = acm.ProcuraServico(s.lIdentificadorServicoAcompanhamento);
      ASSERT_TRUE(pEntrada != nullptr && acm.GetClasse() != nullptr);
      EXPECT_EQ(std::tuple(pEntrada->bClasse, pEntrada->dmcAtendimento.ui, pEntrada->lPonteiroServicoAtendimento,
                           pEntrada->vValor, acm.GetClasse()->lPonteiroServico, acm.vValorServicos),
                std::tuple(false, REG_QVDMC().SetDMC(lPos, kMarco).ui, lido.reg.lPonteiroServicoAtend + i,
                           s.vValorTotal, emp.servicos[bProprio ? "02" : "01"], vAcompanhamento));
      EXPECT_EQ(
          std::tuple(acm.lPonteiroCliente, acm.iDataAbertura, acm.i64NumeroNF, acm.cOrigemRegistro,
                     acm.usVersaoRegistro, acm.dmc.GetMa().iMA),
          std::tuple(5u, QVDia(2024, 3, 10), std::int64_t{77}, kQVOrigemAcmAtendimento, std::uint16_t{1}, kMarco));
    }
    g_chamadas.clear();
    {
      auto* db = emp.GetDataBase();
      std::lock_guard trava(db->Trava());
      ASSERT_EQ(db->SelecionaMes(kMarco), S_OK);
      EXPECT_EQ(emp.InsereServicoAcompanhamentoIntegrado(lido.reg, REG_QVDMC().SetDMC(lPos, kMarco), db), S_OK);
    }
    CQVRegistroPs<_REG_ATENDIMENTO_PS> semIntegrar;
    emp.Chamado(semIntegrar, {{"01.001", 0, kReal}, {"02.001", 0, kReal}});
    emp.Grava(kMarco, 0, semIntegrar.reg);
    EXPECT_TRUE(g_chamadas.empty());
  }
}

// A linked service rewritten refreshes its entry and the follow-up's value
// over the follow-up's calls, another month's included; a closed follow-up
// takes no new service.
TEST_F(Acompanhamento, ServicoVinculadoRegravadoAtualizaOAcompanhamento) {
  Empresa emp("ACM REGRAVA", false);
  CQVRegistroPs<_REG_ATENDIMENTO_PS> a, lidoA, b, a2, lido;
  emp.Chamado(a, {{"01.001", 1, 100 * kReal}});
  const std::uint32_t lA = emp.Grava(kMarco, 0, a.reg);
  ASSERT_EQ(emp.LeAtendimento(kMarco, lA, &lidoA.reg), S_OK);
  const _REG_SERVICO_ATENDIMENTO_PS sA = lidoA.reg.pServicos[0];
  auto vincula = [&](_REG_SERVICO_ATENDIMENTO_PS& s, std::uint32_t lIdentificador) {
    s.cIntegrarAcompServ = 1, s.lIdentificadorServicoAcompanhamento = lIdentificador;
    s.rDMCAcompanhamentoGerado = sA.rDMCAcompanhamentoGerado;
    s.dmcRegIntegracaoAcompanhamento = sA.dmcRegIntegracaoAcompanhamento;
  };

  // A call of April for an entry planned in the follow-up that names it
  // (number 3: the class is 1, A's service 2).
  emp.Chamado(b, {{"01.002", 0, 50 * kReal}});
  const std::uint32_t lB = emp.Grava(kAbril, 0, b.reg);
  CQVDadosGE_AcompanhamentoServico acm = emp.Acompanhamento(sA.rDMCAcompanhamentoGerado);
  acm.m_servicos.push_back(CQVDadosGE_AcompanhamentoServico::CriaNovoServicoAcompanhamento(0, 0, 0, 0, 0, 0));
  acm.m_servicos.back().dmcAtendimento.SetDMC(lB, kAbril);
  REG_QVDMC dmc;
  ASSERT_EQ(emp.GetAcessoGerenciador()->GravaAcompanhamentoServico(acm, &dmc, true), S_OK);
  vincula(b.reg.pServicos[0], 3);
  g_chamadas.clear();
  EXPECT_EQ(emp.Grava(kAbril, lB, b.reg), lB);
  EXPECT_EQ(g_chamadas["InsereAcompanhamentoIntegracaoATTEC"] + g_chamadas["LePropriedadesAcompanhamento"], 0);
  acm = emp.Acompanhamento(sA.rDMCAcompanhamentoGerado);
  EXPECT_EQ(acm.vValorServicos, 150 * kReal);  // A's read from March
  ASSERT_NE(acm.ProcuraServico(3), nullptr);
  EXPECT_EQ(std::tuple(acm.ProcuraServico(3)->vValor, acm.ProcuraServico(3)->lPonteiroExecutor),
            std::tuple(50 * kReal, 3u));

  // A's service at 120 in a grown list (its entry follows it), and a new
  // one that finds the follow-up closed.
  QVTesteExecutaSql("UPDATE acompanhamentos SET situacao = 1 WHERE ponteiro_empresa = " + emp.e);
  emp.Chamado(a2, {{"01.001", 1, 120 * kReal}, {"01.002", 1, 7 * kReal}});
  vincula(a2.reg.pServicos[0], sA.lIdentificadorServicoAcompanhamento);
  ASSERT_EQ(QVAlocaLista(a2.reg.regListaPonteirosIntegACM.pLista, 1), S_OK);
  a2.reg.regListaPonteirosIntegACM.ulQuantidade = 1;
  a2.reg.regListaPonteirosIntegACM.pLista[0] = lidoA.reg.regListaPonteirosIntegACM.pLista[0];
  g_chamadas.clear();
  EXPECT_EQ(emp.Grava(kMarco, lA, a2.reg), lA);
  EXPECT_EQ(g_chamadas["InsereAcompanhamentoIntegracaoATTEC"], 1);
  ASSERT_EQ(emp.LeAtendimento(kMarco, lA, &lido.reg), S_OK);
  EXPECT_NE(lido.reg.lPonteiroServicoAtend, lidoA.reg.lPonteiroServicoAtend);
  acm = emp.Acompanhamento(sA.rDMCAcompanhamentoGerado);
  EXPECT_EQ(acm.vValorServicos, 170 * kReal);  // B's read from April
  EXPECT_EQ(acm.ProcuraServico(sA.lIdentificadorServicoAcompanhamento)->lPonteiroServicoAtendimento,
            lido.reg.lPonteiroServicoAtend);
  ASSERT_EQ(lido.reg.regListaPonteirosIntegACM.ulQuantidade, 2u);
  EXPECT_EQ(lido.reg.pServicos[1].dmcRegIntegracaoAcompanhamento, lido.reg.regListaPonteirosIntegACM.pLista[1]);
}

// A failing suite call ends the save with its status and one line naming
// it; the call stays, its service unlinked, and the next save attaches it.
TEST_F(Acompanhamento, FalhaDoGerenciadorDevolveOStatus) {
  Empresa emp("ACM FALHA", false);
  for (const auto& [falha, servico, hr] :
       {std::tuple{"LePropriedadesAcompanhamento", "01.001", E_QVDF_BANCO_SUITE_OCUPADO},
        std::tuple{"InsereAcompanhamentoIntegracaoATTEC", "01.001", E_QVDF_BANCO_SUITE_OCUPADO},
        std::tuple{"GravaAcompanhamentoServico", "01.001", E_QVDF_BANCO_SUITE_OCUPADO},
        std::tuple{"LeAcompanhamentoServico", "01.001", E_QVDF_BANCO_SUITE_OCUPADO},
        std::tuple{"LeBufferServico", "fora do catálogo", E_QVDF_REGISTRO_SUITE_INEXISTENTE}}) {
    SCOPED_TRACE(falha);
    CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado, lido, relido;
    emp.Chamado(chamado, {{servico, 1, 10 * kReal}});
    QVTesteLimpaLog();
    g_sFalha = falha;
    const std::uint32_t lPos = emp.Grava(kMarco, 0, chamado.reg, hr);
    g_sFalha.clear();
    EXPECT_EQ(QVTesteLinhasCom({std::string("->") + falha + "("}), 1u);
    EXPECT_GE(QVTesteLinhasCom({"CGeServidorAtendimento::InsereServicoAcompanhamentoIntegrado"}), 1u);
    if (hr != E_QVDF_BANCO_SUITE_OCUPADO) continue;
    ASSERT_EQ(emp.LeAtendimento(kMarco, lPos, &lido.reg), S_OK);
    EXPECT_EQ(lido.reg.pServicos[0].lIdentificadorServicoAcompanhamento, 0u);
    EXPECT_EQ(emp.Grava(kMarco, lPos, lido.reg), lPos);
    ASSERT_EQ(emp.LeAtendimento(kMarco, lPos, &relido.reg), S_OK);
    EXPECT_NE(relido.reg.pServicos[0].lIdentificadorServicoAcompanhamento, 0u);
  }
}
