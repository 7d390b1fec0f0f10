// Searches over calls saved through the server, with the company's master
// data in the suite store: each test of the filter tells a pair of calls
// apart, the month list follows the tree, the settings and the files, the
// agenda comes out in order, and bad input or a failed read hands nothing
// out.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "df/qvlibex/QVDatas.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "tests/support/QVTesteArquivos.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

// Master data, pointers from a base of the company's own: branches 10 and 11
// are user 7's (12 is not); clients 100 and 102 live in municipality 1, 101
// in 2; service 200 is the title "01" of 201 ("01.001"); executor 8 has the
// profile of user 7, executor 9 another.
enum : std::uint32_t { kMunA = 1, kMunB, kFil = 10, kFil2, kFilAlheia, kCliA = 100, kCliB, kCliC };
enum : std::uint32_t { kTitulo = 200, kServ, kServ2, kExec = 8, kExecOutro = 9 };
std::uint32_t g_base = 0;
std::uint32_t P(std::uint32_t k) { return g_base + k; }

void CadastraMestres(const std::string& empresa) {
  const std::uint32_t e = QVTesteCadastraEmpresa(empresa);
  g_base = e * 1000;
  std::string sql = "UPDATE usuarios SET perfil = 'tecnico', executor = 1 WHERE ponteiro = 7;";
  auto linha = [&](const char* tabela, const std::string& valores) {
    sql += std::string("INSERT INTO ") + tabela + " VALUES (" + valores + ");";
  };
  auto p = [](std::uint32_t k) { return std::to_string(P(k)) + ","; };
  const std::string se = std::to_string(e);
  for (std::uint32_t m : {kMunA, kMunB}) linha("municipios(ponteiro, nome)", p(m) + "'m'");
  for (std::uint32_t f : {kFil, kFil2, kFilAlheia}) linha("filiais(ponteiro, ponteiro_empresa, nome)", p(f) + se + ",'f'");
  for (std::uint32_t f : {kFil, kFil2}) linha("filiais_usuarios", "7," + std::to_string(P(f)));
  for (auto [c, m] : {std::pair{kCliA, kMunA}, {kCliB, kMunB}, {kCliC, kMunA}})
    linha("clientes(ponteiro, ponteiro_empresa, nome, ponteiro_municipio)", p(c) + se + ",'c'," + std::to_string(P(m)));
  for (auto [s, tipo, classe] : {std::tuple{kTitulo, "T", "01"}, {kServ, "S", "01.001"}, {kServ2, "S", "02.001"}})
    linha("servicos(ponteiro, ponteiro_empresa, descricao, tipo, classificacao)",
          p(s) + se + ",'s','" + tipo + "','" + classe + "'");
  for (auto [u, perfil] : {std::pair{kExec, "tecnico"}, {kExecOutro, "gerente"}}) {
    linha("usuarios(ponteiro, login, perfil, executor)", p(u) + "'e" + std::to_string(P(u)) + "','" + perfil + "',1");
    linha("usuarios_empresas", p(u) + se);
  }
  QVTesteExecutaSql(sql);
}

void Vinculo(std::uint16_t iMA, std::uint32_t lPosicao, std::uint32_t campo, std::int64_t valor, const char* texto) {
  QVTesteExecutaSql("INSERT INTO vinculos VALUES (" + std::to_string(g_base / 1000) + "," + std::to_string(iMA) + "," +
                    std::to_string(lPosicao) + "," + std::to_string(campo) + "," + std::to_string(valor) + ",'" +
                    texto + "')");
}

struct Servidor {
  CGeServidorAtendimento s;
  HRESULT hr;
  explicit Servidor(const std::string& empresa) : hr(s.Inicializa(QVTesteInicializaPS(empresa))) {}
};

// A call of branch 10 and client 100 on day iData (all its dates), with one
// service (201, executor 8, pending, leaving the next day, code 15, "Troca
// de peça") and room for a second one.
struct Chamado {
  CQVRegistroPs<_REG_ATENDIMENTO_PS> r;
  Chamado(std::uint32_t lNumero, std::uint32_t iData) {
    _REG_ATENDIMENTO_PS& a = r.reg;
    a.lNumeroAtendimento = lNumero, a.lPonteiroFilial = P(kFil), a.lPonteiroCliente = P(kCliA);
    a.iDataEmissao = a.iDataFaturamento = a.iDataConclusao = a.iDataAgendamento = iData;
    a.iQuantidadeServicoAtend = 1, a.pServicos = Novo<_REG_SERVICO_ATENDIMENTO_PS>(2);
    _REG_SERVICO_ATENDIMENTO_PS& s = a.pServicos[0];
    s.lPonteiroServico = P(kServ), s.lPonteiroExecutor = P(kExec), s.iDataSaida = iData + 1, s.lCodigo = 15;
    s.bsDescricao = QVBstrFromUtf8("Troca de peça");
  }
};

std::uint32_t Grava(CGeServidorAtendimento& s, std::uint16_t iMA, const _REG_ATENDIMENTO_PS& a) {
  std::uint32_t lPosicao = 0;
  EXPECT_EQ(s.GravaAtendimento(iMA, 0, a, &lPosicao), S_OK);
  return lPosicao;
}

using Ponteiros = std::vector<std::pair<std::uint16_t, std::uint32_t>>;

// Pointers and clients of a search (through the frame or not); both empty
// after a failure.
template <class S>
HRESULT Pesquisa(S& s, const _REG_FILTRO_ATENDIMENTO_PS& f, Ponteiros* pPonteiros,
                 std::vector<std::uint32_t>* pClientes = nullptr) {
  _REG_LISTA_PONTEIROS_PS lista;
  _REG_CLIENTES_ATENDIMENTO_PS clientes;
  const HRESULT hr = s.BuscaPonteiros(f, &lista, &clientes);
  pPonteiros->clear();
  for (std::uint32_t i = 0; i < lista.iQuantidadePonteiros; ++i)
    pPonteiros->emplace_back(lista.pPonteiro[i].iMA, lista.pPonteiro[i].lPonteiroAtendimento);
  if (pClientes != nullptr) pClientes->assign(clientes.pClientes, clientes.pClientes + clientes.iQuantidadeClientes);
  if (FAILED(hr)) {
    EXPECT_TRUE(lista.pPonteiro == nullptr && clientes.pClientes == nullptr);
  }
  CoTaskMemFree(lista.pPonteiro);
  CoTaskMemFree(clientes.pClientes);
  return hr;
}

// A row's month, and its base call's day and number.
std::uint16_t g_iMA;
std::uint32_t g_iData, g_lNumero;

using MudaFiltro = void (*)(_REG_FILTRO_ATENDIMENTO_PS&);
using MudaChamado = void (*)(_REG_ATENDIMENTO_PS&);
#define F(...) [](_REG_FILTRO_ATENDIMENTO_PS & f) { static_cast<void>(f); __VA_ARGS__; }
#define C(...) [](_REG_ATENDIMENTO_PS & a) { static_cast<void>(a); __VA_ARGS__; }
#define SV a.pServicos[0]

struct CasoFiltro {
  const char* nome;
  MudaFiltro filtro;
  MudaChamado variante;  // the second call: the base, changed so
  MudaChamado base = nullptr;  // both calls' change, when the filter needs one
  std::vector<std::uint32_t> mantidos = {1};  // positions kept: 1 the base, 2 the variant
  void (*dados)() = nullptr;  // linked data of the month
};

const CasoFiltro kCasosFiltro[] = {
    {"filial nao ativa para o usuario", F(), C(a.lPonteiroFilial = P(kFilAlheia))},
    {"dia exato da arvore", F(f.cNivelDataTree = 3), C(a.iDataEmissao = g_iData + 1)},
    {"cliente da arvore", F(f.lClienteSelecionadoTree = P(kCliA)), C(a.lPonteiroCliente = P(kCliB))},
    {"filial", F(f.lPonteiroFilial = P(kFil)), C(a.lPonteiroFilial = P(kFil2))},
    {"numero", F(f.lNumeroAtendimento = g_lNumero), C()},
    {"cliente", F(f.lPonteiroCliente = P(kCliA)), C(a.lPonteiroCliente = P(kCliB))},
    {"segundo cliente como gravado", F(f.lPonteiroCliente2 = P(kCliC)), C(a.lPonteiroCliente2 = 0),
     C(a.lPonteiroCliente2 = P(kCliC))},
    {"faturamento: o cliente sem segundo", F(f.lPonteiroClienteParaFaturamento = P(kCliA)),
     C(a.lPonteiroCliente2 = P(kCliB))},
    {"faturamento: o segundo quando ha", F(f.lPonteiroClienteParaFaturamento = P(kCliC)), C(a.lPonteiroCliente2 = 0),
     C(a.lPonteiroCliente = P(kCliB), a.lPonteiroCliente2 = P(kCliC))},
    {"contrato", F(f.lPonteiroContrato = 5), C(a.lPonteiroContrato = 6), C(a.lPonteiroContrato = 5)},
    {"codigo do contrato com caixa", F(std::strcpy(f.cContrato, "CT-1")), C(std::strcpy(a.cContrato, "ct-1")),
     C(std::strcpy(a.cContrato, "CT-1"))},
    {"faturamento desde", F(f.iDataFaturamentoInicio = g_iData), C(a.iDataFaturamento = g_iData - 1)},
    {"periodo ate", F(f.iPeriodoFim = g_iData), C(a.iDataEmissao = g_iData + 1)},
    {"conclusao desde", F(f.iDataConclusaoInicial = g_iData), C(a.iDataConclusao = g_iData - 1)},
    {"agendamento ate", F(f.iDataAgendFinal = g_iData), C(a.iDataAgendamento = g_iData + 1)},
    {"conferidos", F(f.cConferido = 1), C(a.cConferido = 0), C(a.cConferido = 1)},
    {"nao conferidos", F(f.cNaoConferido = 1), C(a.cConferido = 1)},
    {"os dois: todos", F(f.cConferido = 1, f.cNaoConferido = 1), C(a.cConferido = 1), nullptr, {1, 2}},
    {"origem web", F(f.bOrigemWeb = 1), C(a.bWeb = 0), C(a.bWeb = 1)},
    {"origem importacao", F(f.bOrigemImportacao = 1), C(a.cImportacao = 0), C(a.cImportacao = 1)},
    {"origem gerenciador: nao web", F(f.bOrigemGerenciador = 1), C(a.bWeb = 1)},
    {"origem gerenciador: nao importada", F(f.bOrigemGerenciador = 1), C(a.cImportacao = 1)},
    {"integracao sozinha nao liga a origem", F(f.cOrigemIntegracaoAcompanhamento = 1), C(a.cOrigemAcompServ = 0),
     C(a.cOrigemAcompServ = 1), {1, 2}},
    {"integracao com a web", F(f.bOrigemWeb = 1, f.cOrigemIntegracaoAcompanhamento = 1), C(a.cOrigemAcompServ = 0),
     C(a.cOrigemAcompServ = 1)},
    {"nao faturados: faturado", F(f.cSomenteNaoFaturados = 1), C(a.bFaturado = 1)},
    {"nao faturados: reembolsado", F(f.cSomenteNaoFaturados = 1), C(a.bReembolsado = 1)},
    {"ativos", F(f.bFiltrarAtivoECancelado = 1, f.bAtivo = 1), C(a.bCancelado = 1)},
    {"cancelados", F(f.bFiltrarAtivoECancelado = 1, f.bCancelado = 1), C(a.bCancelado = 0), C(a.bCancelado = 1)},
    {"ativos e cancelados: todos", F(f.bFiltrarAtivoECancelado = 1, f.bAtivo = 1, f.bCancelado = 1),
     C(a.bCancelado = 1), nullptr, {1, 2}},
    {"municipio do cliente", F(f.lPonteiroMunicipio = P(kMunA)), C(a.lPonteiroCliente = P(kCliB))},
    {"lista explicita", F(static std::uint16_t m[1]; static std::uint32_t p[2] = {9, 1}; m[0] = g_iMA;
                          f.iQtdeMA = 1, f.arrMA = m, f.iQtdePos = 2, f.arrlPos = p), C()},
    {"lista explicita sem posicoes: nada", F(static std::uint16_t m[1]; m[0] = g_iMA; f.iQtdeMA = 1, f.arrMA = m),
     C(), nullptr, {}},
    {"servico", F(f.lPonteiroServico = P(kServ)), C(SV.lPonteiroServico = P(kServ2))},
    {"executor", F(f.lPonteiroExecutor = P(kExec)), C(SV.lPonteiroExecutor = P(kExecOutro))},
    {"um servico basta", F(f.lPonteiroExecutor = P(kExecOutro)), C(a.pServicos[1].lPonteiroExecutor = P(kExec)),
     C(a.iQuantidadeServicoAtend = 2, a.pServicos[1].lPonteiroExecutor = P(kExecOutro))},
    {"pendentes", F(f.bPendente = 1), C(SV.cSituacao = 1)},
    {"realizados", F(f.bRealizado = 1), C(SV.cSituacao = 0), C(SV.cSituacao = 1)},
    {"descricao sem caixa", F(std::strcpy(f.cDescricaoServico, "PE\xC7" "A")),
     C(SysFreeString(SV.bsDescricao), SV.bsDescricao = QVBstrFromUtf8("Troca de óleo"))},
    {"saida no periodo", F(f.iDataSaidaInicial = g_iData, f.iDataSaidaFinal = g_iData + 1),
     C(SV.iDataSaida = g_iData + 2)},
    {"saida so com o inicio: nada", F(f.iDataSaidaInicial = g_iData), C(), nullptr, {}},
    {"saida so com o fim", F(f.iDataSaidaFinal = g_iData + 1), C(SV.iDataSaida = g_iData + 2)},
    {"projeto", F(f.lPtrProjeto = 3), C(SV.lPtrProjeto = 4), C(SV.lPtrProjeto = 3)},
    {"executores do mesmo perfil", F(f.bListarExecutoresPermissoesIguais = 1, f.lPonteiroExecutor = P(kExec)),
     C(SV.lPonteiroExecutor = P(kExecOutro))},
    {"executor de outro perfil: nada", F(f.bListarExecutoresPermissoesIguais = 1, f.lPonteiroExecutor = P(kExecOutro)),
     C(), C(SV.lPonteiroExecutor = P(kExecOutro)), {}},
    {"titulo: o proprio titulo nao passa", F(f.bVerificarTituloServico = 1, f.lPonteiroServico = P(kTitulo)), C(),
     C(SV.lPonteiroServico = P(kTitulo)), {}},
    {"vinculo de texto sem caixa",
     F(f.ieInfoPlus[3].id = IE_CAMPO_LIVRE_TEXTO_0; f.ieInfoPlus[3].ulTamanhoTexto = 5;
       f.ieInfoPlus[3].pcTexto = reinterpret_cast<std::uint8_t*>(const_cast<char*>("azul"))),
     C(), nullptr, {1}, [] {
       Vinculo(g_iMA, 1, IE_CAMPO_LIVRE_TEXTO_0, 0, "AZUL");
       Vinculo(g_iMA, 2, IE_CAMPO_LIVRE_TEXTO_0, 0, "verde");
     }},
    {"vinculo de valor; sem dados nao passa",
     F(f.ieInfoPlus[0].id = IE_CAMPO_LIVRE_V0_0; std::int64_t v = 42; std::memcpy(f.ieInfoPlus[0].BinaryData, &v, 8)),
     C(), nullptr, {1}, [] { Vinculo(g_iMA, 1, IE_CAMPO_LIVRE_V0_0, 42, ""); }},
};

}  // namespace

// Every test of the filter, with a pair of calls in a month of their own:
// the base call is kept, the variant told apart.
TEST(Busca, CadaTesteDoFiltroSeparaUmPar) {
  CadastraMestres("BUSCA FILTRO");
  Servidor srv("BUSCA FILTRO");
  ASSERT_EQ(srv.hr, S_OK);
  g_iMA = QVMesAno(2030, 1);
  for (const CasoFiltro& c : kCasosFiltro) {
    SCOPED_TRACE(c.nome);
    ++g_iMA;
    g_iData = QVPrimeiroDiaDoMes(g_iMA) + 4;
    g_lNumero = 2u * g_iMA;
    Chamado base(g_lNumero, g_iData), variante(g_lNumero + 1, g_iData);
    if (c.base) c.base(base.r.reg), c.base(variante.r.reg);
    c.variante(variante.r.reg);
    ASSERT_EQ(Grava(srv.s, g_iMA, base.r.reg), 1u);
    ASSERT_EQ(Grava(srv.s, g_iMA, variante.r.reg), 2u);
    if (c.dados) c.dados();
    _REG_FILTRO_ATENDIMENTO_PS f{};
    f.iDataTreeInicial = g_iData;
    f.iDataTreeFinal = QVUltimoDiaDoMes(g_iMA);
    c.filtro(f);
    Ponteiros ponteiros, esperados;
    for (const std::uint32_t p : c.mantidos) esperados.emplace_back(g_iMA, p);
    EXPECT_EQ(Pesquisa(srv.s, f, &ponteiros), S_OK);
    EXPECT_EQ(ponteiros, esperados);
  }
}

// The months come from the tree when both its days are set, else from the
// files within the settings' bounds (unless ignored); a month without a
// file is no error. Pointers by month, then position; each client once;
// the records of the pointers come back whole.
TEST(Busca, MesesDaArvoreDasPropriedadesEDosArquivos) {
  CadastraMestres("BUSCA MESES");
  Servidor srv("BUSCA MESES");
  ASSERT_EQ(srv.hr, S_OK);
  const std::uint16_t jan = QVMesAno(2024, 1), fev = jan + 1, mar = jan + 2;
  Chamado a1(1, QVDia(2024, 1, 5)), a2(2, QVDia(2024, 1, 6)), c1(3, QVDia(2024, 3, 5));
  a1.r.reg.lPonteiroCliente = P(kCliB);
  Grava(srv.s, mar, c1.r.reg), Grava(srv.s, jan, a1.r.reg), Grava(srv.s, jan, a2.r.reg);
  const Ponteiros todos = {{jan, 1}, {jan, 2}, {mar, 1}}, deJan = {{jan, 1}, {jan, 2}}, deMar = {{mar, 1}};
  const std::uint32_t dJan = QVDia(2024, 1, 20), dFev = QVDia(2024, 2, 20), dMar = QVDia(2024, 3, 20);
  const struct {
    std::uint32_t iArvoreInicial, iArvoreFinal, iEmissaoInicial, iEmissaoFinal;
    std::uint8_t cIgnorar;
    Ponteiros esperados;
  } casos[] = {
      {0, 0, 0, 0, 0, todos},     {dJan, dMar, 0, 0, 0, todos}, {dFev, dFev, 0, 0, 0, {}},
      {dMar, 0, 0, 0, 0, todos},  {0, dJan, 0, 0, 0, todos},    {0, 0, mar, 0, 0, deMar},
      {0, 0, 0, fev, 0, deJan},   {0, 0, mar, mar, 1, todos},   {dJan, dJan, mar, 0, 0, deJan},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(std::to_string(c.iArvoreInicial) + "-" + std::to_string(c.iArvoreFinal) + " " +
                 std::to_string(c.iEmissaoInicial) + "-" + std::to_string(c.iEmissaoFinal));
    CQVRegistroPs<_REG_PROPRIEDADES_ATENDIMENTO_PS> propriedades;
    ASSERT_EQ(srv.s.LePropriedades(&propriedades.reg, 0), S_OK);
    propriedades.reg.iEmissaoInicial = c.iEmissaoInicial;
    propriedades.reg.iEmissaoFinal = c.iEmissaoFinal;
    ASSERT_EQ(srv.s.GravaPropriedades(propriedades.reg, 0), S_OK);
    _REG_FILTRO_ATENDIMENTO_PS f{};
    f.iDataTreeInicial = c.iArvoreInicial, f.iDataTreeFinal = c.iArvoreFinal, f.cIgnorarDatasEmissao = c.cIgnorar;
    Ponteiros ponteiros;
    std::vector<std::uint32_t> clientes;
    EXPECT_EQ(Pesquisa(srv.s, f, &ponteiros, &clientes), S_OK);
    EXPECT_EQ(ponteiros, c.esperados);
    if (c.esperados == todos) {
      EXPECT_EQ(clientes, (std::vector<std::uint32_t>{P(kCliA), P(kCliB)}));
    }
  }

  // Without a database, the search opens a read-only one of its own.
  _REG_LISTA_PONTEIROS_PS lista;
  _REG_CLIENTES_ATENDIMENTO_PS clientes;
  _REG_FILTRO_ATENDIMENTO_PS semLimites{};
  semLimites.cIgnorarDatasEmissao = 1;
  ASSERT_EQ(srv.s.BuscaPonteiros(semLimites, &lista, &clientes, nullptr), S_OK);
  EXPECT_EQ(lista.iQuantidadePonteiros, 3u);
  CoTaskMemFree(lista.pPonteiro), CoTaskMemFree(clientes.pClientes);

  _REG_PONTEIRO_ATENDIMENTO_PS ponteiros[] = {{mar, 0, 1}, {jan, 0, 2}, {jan, 0, 1}};
  _REG_LISTA_REGISTROS_PS registros;
  ASSERT_EQ(srv.s.BuscaRegistros(_REG_LISTA_PONTEIROS_PS{3, 0, nullptr, ponteiros}, &registros), S_OK);
  ASSERT_EQ(registros.iQuantidadeRegistros, 3u);
  for (std::uint32_t i = 0; i < 3; ++i) {
    _REG_ATENDIMENTO_PS& a = registros.pRegistros[i];
    EXPECT_EQ(a.lNumeroAtendimento, 3 - i);
    EXPECT_EQ(a.lPonteiro, ponteiros[i].lPonteiroAtendimento);
    ASSERT_EQ(a.iQuantidadeServicoAtend, 1u);
    EXPECT_EQ(QVBstrToUtf8(a.pServicos[0].bsDescricao), "Troca de peça");
    QVLibera(&a);
  }
  CoTaskMemFree(registros.pRegistros);
}

// The agenda: every service of every call, by month, call and service;
// executor, status (2: all) and departure day select; a line carries the
// call's client and the service's data, its code the month and the
// service's code.
TEST(Busca, AgendaEmOrdemComSeusFiltros) {
  CadastraMestres("BUSCA AGENDA");
  Servidor srv("BUSCA AGENDA");
  ASSERT_EQ(srv.hr, S_OK);
  const std::uint16_t jan = QVMesAno(2024, 1);
  const std::uint32_t d1 = QVDia(2024, 1, 8), d2 = d1 + 1;
  using Servico = std::tuple<std::uint32_t, std::uint8_t, std::uint32_t, std::uint32_t>;  // executor, done, day, code
  auto chamado = [&](std::uint16_t iMA, std::uint32_t lCliente, std::vector<Servico> servicos) {
    Chamado c(iMA * 10 + lCliente, d1);
    c.r.reg.lPonteiroCliente = lCliente;
    c.r.reg.iQuantidadeServicoAtend = static_cast<std::uint32_t>(servicos.size());
    for (std::size_t i = 0; i < servicos.size(); ++i) {
      auto& s = c.r.reg.pServicos[i];
      std::tie(s.lPonteiroExecutor, s.cSituacao, s.iDataSaida, s.lCodigo) = servicos[i];
      s.lPonteiroServico = P(kServ);
    }
    Grava(srv.s, iMA, c.r.reg);
  };
  chamado(jan + 2, P(kCliC), {{P(kExec), 0, d1, 18}});
  chamado(jan, P(kCliA), {{P(kExec), 0, d1, 15}, {P(kExecOutro), 1, d2, 16}});
  chamado(jan, P(kCliB), {{P(kExec), 1, d1, 17}});
  const struct {
    std::uint32_t lUsuario;
    std::uint8_t cSituacao;
    std::uint32_t iDataSaida;
    std::vector<std::string> codigos;
  } casos[] = {
      {0, 2, 0, {"01/2024-000015", "01/2024-000016", "01/2024-000017", "03/2024-000018"}},
      {P(kExec), 2, 0, {"01/2024-000015", "01/2024-000017", "03/2024-000018"}},
      {0, 1, 0, {"01/2024-000016", "01/2024-000017"}},
      {0, 3, 0, {}},
      {P(kExec), 0, d1, {"01/2024-000015", "03/2024-000018"}},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(std::to_string(c.lUsuario) + "/" + std::to_string(c.cSituacao) + "/" + std::to_string(c.iDataSaida));
    _REG_FILTRO_AGENDA_PS f{};
    f.lUsuario = c.lUsuario, f.cSituacao = c.cSituacao, f.iDataSaida = static_cast<std::uint16_t>(c.iDataSaida);
    _REG_LISTA_PONTEIROS_AGENDA ponteiros;
    ASSERT_EQ(srv.s.BuscaPonteirosAgenda(f, &ponteiros), S_OK);
    _REG_LISTA_SERVICOS_AGENDA_PS linhas;
    ASSERT_EQ(srv.s.BuscaRegistrosAgenda(ponteiros, &linhas), S_OK);
    std::vector<std::string> codigos;
    for (std::uint32_t i = 0; i < linhas.lQuantidade; ++i) {
      const _REG_SERVICO_AGENDA_PS& l = linhas.pServicos[i];
      const _REG_PONTEIRO_AGENDA& p = ponteiros.pPonteiros[i];
      codigos.emplace_back(l.szCodigo);
      EXPECT_EQ(std::make_tuple(l.lPonteiroAtendTec, l.lPonteiroServico), std::make_tuple(p.lPonteiroAtTec, P(kServ)));
      if (codigos.back() == "01/2024-000016") {
        EXPECT_EQ(std::make_tuple(l.lPonteiroCliente, l.lPonteiroExecutor, l.iDataSaida),
                  std::make_tuple(P(kCliA), P(kExecOutro), d2));
        EXPECT_EQ(std::make_tuple(p.iMA, p.lPonteiroAtTec), std::make_tuple(jan, 1u));
      }
    }
    EXPECT_EQ(codigos, c.codigos);
    CoTaskMemFree(ponteiros.pPonteiros);
    CoTaskMemFree(linhas.pServicos);
  }
}

// Bad input: a clear status, its error line, nothing handed out, no file
// changed. A failed read inside the per-call test reaches the frame as the
// method's status, logged by the filter.
TEST(Busca, EntradaRuimEFalhasDuranteABusca) {
  const std::string empresa = "BUSCA RUIM";
  CadastraMestres(empresa);
  auto* o = new CQVGE_Atendimento();
  ASSERT_EQ(o->Inicializa_Padrao(QVTesteInicializaPS(empresa)), S_OK);
  Servidor srv(empresa);
  const std::uint16_t jan = QVMesAno(2024, 1);
  Chamado bom(1, QVDia(2024, 1, 5));
  ASSERT_EQ(Grava(srv.s, jan, bom.r.reg), 1u);

  auto registros = [&](std::uint32_t n, std::uint16_t iMA, std::uint32_t lPos) {
    _REG_PONTEIRO_ATENDIMENTO_PS p{iMA, 0, lPos};
    _REG_LISTA_REGISTROS_PS saida;
    const HRESULT hr = srv.s.BuscaRegistros(_REG_LISTA_PONTEIROS_PS{n, 0, nullptr, n == 1 ? &p : nullptr}, &saida);
    EXPECT_TRUE(saida.pRegistros == nullptr && saida.iQuantidadeRegistros == 0);
    return hr;
  };
  auto linhas = [&](std::uint32_t n, std::uint32_t lServ) {
    _REG_PONTEIRO_AGENDA p{jan, {}, 1, lServ};
    _REG_LISTA_SERVICOS_AGENDA_PS saida;
    const HRESULT hr = srv.s.BuscaRegistrosAgenda(_REG_LISTA_PONTEIROS_AGENDA{n, 0, nullptr, n == 1 ? &p : nullptr}, &saida);
    EXPECT_TRUE(saida.pServicos == nullptr && saida.lQuantidade == 0);
    return hr;
  };
  auto busca = [&](MudaFiltro muda) {
    _REG_FILTRO_ATENDIMENTO_PS f{};
    muda(f);
    Ponteiros p;
    return Pesquisa(srv.s, f, &p);
  };
  const std::uint16_t fev = jan + 1;  // no file
  const struct {
    const char* nome;
    std::function<HRESULT()> chamada;
    HRESULT hr;
  } casos[] = {
      {"meses sem array", [&] { return busca(F(f.iQtdeMA = 2)); }, E_INVALIDARG},
      {"posicoes sem array", [&] { return busca(F(f.iQtdePos = 1)); }, E_INVALIDARG},
      {"ponteiros sem array", [&] { return registros(2, jan, 1); }, E_INVALIDARG},
      {"mes 0", [&] { return registros(1, 0, 1); }, E_INVALIDARG},
      {"mes alem do ultimo", [&] { return registros(1, kQVMesAnoMaximo + 1, 1); }, E_INVALIDARG},
      {"posicao 0", [&] { return registros(1, jan, 0); }, E_QVCR_TENTATIVA_LER_POSICAO_ZERO},
      {"alem do fim do mes", [&] { return registros(1, jan, 2); }, E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO},
      {"mes sem arquivo", [&] { return registros(1, fev, 1); }, E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO},
      {"agenda sem array", [&] { return linhas(3, 1); }, E_INVALIDARG},
      {"agenda alem do fim", [&] { return linhas(1, 2); }, E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO},
      {"saida nula", [&] { return srv.s.BuscaPonteirosAgenda(_REG_FILTRO_AGENDA_PS{}, nullptr); }, E_POINTER},
  };
  auto arquivos = [&] {
    std::map<std::string, std::string> m;
    for (const auto& e : std::filesystem::directory_iterator(srv.s.GetDiretorioDados()))
      m[e.path().filename()] = QVTesteLeArquivo(e.path());
    return m;
  };
  const auto antes = arquivos();
  for (const auto& c : casos) {
    SCOPED_TRACE(c.nome);
    QVTesteLimpaLog();
    EXPECT_EQ(c.chamada(), c.hr);
    EXPECT_GE(QVTesteLinhasCom({QVTesteHrNoLog(c.hr)}), 1u);
  }
  EXPECT_EQ(arquivos(), antes);

  // March: a call whose client the suite does not know; January's call made
  // to have its services past the service file's end.
  Chamado estranho(2, QVDia(2024, 3, 5));
  estranho.r.reg.lPonteiroCliente = 999999;
  std::uint32_t lPos = 0;
  ASSERT_EQ(o->GravaAtendimento(jan + 2, 0, estranho.r.reg, &lPos), S_OK);
  {
    auto* db = srv.s.GetDataBase();
    std::lock_guard trava(db->Trava());
    ASSERT_EQ(db->SelecionaMes(jan), S_OK);
    REG_ATENDIMENTO_V2 reg;
    ASSERT_EQ(db->m_ArqAtendimento.Le(1, &reg), S_OK);
    reg.lPonteiroServicoAtend = static_cast<std::uint32_t>(db->m_ArqServico.GetQtdRegistros()) + 1;
    QVUInt ui = 1;
    ASSERT_EQ(db->m_ArqAtendimento.Grava(ui, reg), S_OK);
  }
  const struct {
    MudaFiltro filtro;
    HRESULT hr;
    const char* sFuncao;
  } falhas[] = {
      {F(f.lPonteiroMunicipio = P(kMunA), f.iDataTreeInicial = QVDia(2024, 3, 1), f.iDataTreeFinal = QVDia(2024, 3, 9)),
       E_QVDF_REGISTRO_SUITE_INEXISTENTE, "CFiltro::Filtra"},
      {F(f.lPonteiroServico = P(kServ), f.iDataTreeInicial = QVDia(2024, 1, 1), f.iDataTreeFinal = QVDia(2024, 1, 9)),
       E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, "CFiltro::FiltraListaServicos"},
  };
  for (const auto& c : falhas) {
    SCOPED_TRACE(c.sFuncao);
    QVTesteLimpaLog();
    _REG_FILTRO_ATENDIMENTO_PS f{};
    c.filtro(f);
    Ponteiros p;
    EXPECT_EQ(Pesquisa(*o, f, &p), c.hr);
    EXPECT_GE(QVTesteLinhasCom({QVTesteHrNoLog(c.hr), c.sFuncao}), 1u);
  }
  _REG_FILTRO_AGENDA_PS todas{};
  todas.cSituacao = 2;
  _REG_LISTA_PONTEIROS_AGENDA agenda;
  EXPECT_EQ(o->BuscaPonteirosAgenda(todas, &agenda), E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);
  EXPECT_EQ(agenda.pPonteiros, nullptr);
  o->Release();
}

// Calls saved by another server process are found by this one's search:
// before this process opened the company, and while it has it open (the
// month of the first search included). This process then saves there too.
TEST(Busca, ChamadoGravadoEmOutroProcessoEEncontrado) {
  CadastraMestres("BUSCA PROCESSOS");
  const std::uint16_t jan = QVMesAno(2024, 1), fev = jan + 1;
  const auto gravaNoutroProcesso = [&](std::uint32_t lNumero, std::uint16_t iMA) {
    const auto status = QVTesteEmProcessos(1, [&](int) {
      Servidor outro("BUSCA PROCESSOS");
      if (outro.hr != S_OK) return 1;
      std::uint32_t lPosicao = 0;
      Chamado c(lNumero, QVPrimeiroDiaDoMes(iMA) + 4);
      return outro.s.GravaAtendimento(iMA, 0, c.r.reg, &lPosicao) == S_OK ? 0 : 2;
    });
    EXPECT_EQ(status, std::vector<int>{0});
  };
  gravaNoutroProcesso(1, jan);
  Servidor srv("BUSCA PROCESSOS");
  ASSERT_EQ(srv.hr, S_OK);
  _REG_FILTRO_ATENDIMENTO_PS f{};
  f.cIgnorarDatasEmissao = 1;
  Ponteiros ponteiros;
  ASSERT_EQ(Pesquisa(srv.s, f, &ponteiros), S_OK);
  EXPECT_EQ(ponteiros, (Ponteiros{{jan, 1}}));
  gravaNoutroProcesso(2, jan);
  gravaNoutroProcesso(3, fev);
  ASSERT_EQ(Pesquisa(srv.s, f, &ponteiros), S_OK);
  EXPECT_EQ(ponteiros, (Ponteiros{{jan, 1}, {jan, 2}, {fev, 1}}));
  // Numbered past the other process's calls, and seen by it in turn.
  Chamado meu(0, QVDia(2024, 1, 20));
  EXPECT_EQ(Grava(srv.s, jan, meu.r.reg), 3u);
  gravaNoutroProcesso(0, jan);
  ASSERT_EQ(Pesquisa(srv.s, f, &ponteiros), S_OK);
  EXPECT_EQ(ponteiros, (Ponteiros{{jan, 1}, {jan, 2}, {jan, 3}, {jan, 4}, {fev, 1}}));
  CQVRegistroPs<_REG_ATENDIMENTO_PS> lido;
  for (const auto& [lPosicao, lNumero] : {std::pair{3u, 4u}, {4u, 5u}}) {
    ASSERT_EQ(srv.s.LeAtendimentoLight(jan, lPosicao, &lido.reg), S_OK);
    EXPECT_EQ(lido.reg.lNumeroAtendimento, lNumero);
  }
}
