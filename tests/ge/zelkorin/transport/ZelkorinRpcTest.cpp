// The transport between client and server processes: every method's records
// both ways, refusal of bad data, the ends of objects (release, lost
// connection, SIGTERM), lost servers, time limits, the listeners.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/CQVGE_Projeto.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

struct ObsEco {
  std::atomic<std::int32_t> criados;
  std::atomic<std::int32_t> destruidos;
  std::atomic<std::int32_t> chamadas;  // business calls that reached a server
};
ObsEco& Obs() { return QVTesteCompartilhado<ObsEco>("eco"); }

// The sample of each kind that both processes build alike.
template <class T>
T AmostraDoTipo() {
  return Amostra<T>(static_cast<std::uint32_t>(sizeof(T)));
}

// What a server accepts: exactly the sample of its kind.
template <class T>
HRESULT Confere(const T& recebido) {
  ++Obs().chamadas;
  T esperado = AmostraDoTipo<T>();
  const bool igual = QVIguais(recebido, esperado);
  QVLibera(&esperado);
  return igual ? S_OK : E_INVALIDARG;
}

template <class T>
HRESULT Devolve(T* p) {
  ++Obs().chamadas;
  *p = AmostraDoTipo<T>();
  return S_OK;
}

constexpr std::uint32_t kNumeroLento = 999;
const char* const kLeiautes = "Leiaute padrão;Ordem de serviço";

// Servers that check every record they receive against its sample and
// answer samples: a round trip through them shows both directions intact.
class CEcoAtendimento final : public CGeServidorAtendimento {
 public:
  CEcoAtendimento() { ++Obs().criados; }
  ~CEcoAtendimento() override { ++Obs().destruidos; }

  HRESULT FuncaoGenerica(std::uint32_t, const _REG_DF_FUNCAO_GENERICAPS& in,
                         _REG_DF_FUNCAO_GENERICAPS** out) override {
    QV_CHECK(Confere(in));
    *out = static_cast<_REG_DF_FUNCAO_GENERICAPS*>(CoTaskMemAlloc(sizeof(_REG_DF_FUNCAO_GENERICAPS)));
    return Devolve(*out);
  }
  HRESULT BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS& f, _REG_LISTA_PONTEIROS_PS* l,
                         _REG_CLIENTES_ATENDIMENTO_PS* c) override {
    QV_CHECK(Confere(f));
    Devolve(l);
    return Devolve(c);
  }
  HRESULT BuscaRegistros(const _REG_LISTA_PONTEIROS_PS& p, _REG_LISTA_REGISTROS_PS* r) override {
    QV_CHECK(Confere(p));
    return Devolve(r);
  }
  HRESULT BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS& f, _REG_LISTA_PONTEIROS_AGENDA* l) override {
    QV_CHECK(Confere(f));
    return Devolve(l);
  }
  HRESULT BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA& p, _REG_LISTA_SERVICOS_AGENDA_PS* l) override {
    QV_CHECK(Confere(p));
    return Devolve(l);
  }
  HRESULT LeAtendimento(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS* r) override { return Devolve(r); }
  HRESULT LeAtendimentoLight(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS* r) override { return Devolve(r); }
  HRESULT GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, const _REG_ATENDIMENTO_PS& r,
                           std::uint32_t* pos) override {
    QV_CHECK(Confere(r));
    *pos = lPosicao + iMA;
    return S_OK;
  }
  HRESULT LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* p, std::uint32_t) override { return Devolve(p); }
  HRESULT GravaPropriedades(const _REG_PROPRIEDADES_ATENDIMENTO_PS& p, std::uint32_t) override {
    return Confere(p);
  }
  HRESULT BuscaLeiautesAtendimento(BSTR* bs) override { return Lista(bs); }
  HRESULT BuscaLeiautesAtendimentoDFCLAY(BSTR* bs) override { return Lista(bs); }
  HRESULT BuscaLeiautesAtendimentoDFCMOD(BSTR* bs) override {
    *bs = nullptr;  // none: travels as no string
    return S_OK;
  }
  HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t n, std::int32_t* p) override {
    if (n == kNumeroLento) std::this_thread::sleep_for(std::chrono::milliseconds(600));
    *p = static_cast<std::int32_t>(n % 2);
    return S_OK;
  }
  HRESULT GeraRelatorioAgrupamento(const _REG_RELATORIO_ATENDIMENTO_PS& r, std::uint8_t tipo) override {
    QV_CHECK(Confere(r));
    return tipo == 3 ? S_OK : E_INVALIDARG;
  }
  HRESULT GeraRelatorioPeriodo(const _REG_RELATORIO_ATENDIMENTO_PS& r) override { return Confere(r); }
  HRESULT GeraRelatorioAtendimento(const _REG_RELATORIO_ATENDIMENTO_PS& r) override { return Confere(r); }
  HRESULT GeraRelatorioControleHoras(const _REG_FILTRO_REL_CONTROLE_HORAS& f) override { return Confere(f); }
  HRESULT GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* r) override {
    QV_CHECK(Confere(*r));
    QVLibera(r);
    *r = Amostra<_REG_REL_CONSULTA_AGENDAMENTO>(5);
    return S_OK;
  }

 private:
  static HRESULT Lista(BSTR* bs) {
    *bs = QVBstrFromUtf8(kLeiautes);
    return S_OK;
  }
};

class CEcoProjeto final : public CGeProjetoBase {
 public:
  CEcoProjeto() { ++Obs().criados; }
  ~CEcoProjeto() override { ++Obs().destruidos; }

  HRESULT BuscaPonteiros(const _REG_FILTRO_PROJETO_PS& f, _REG_PTR_PROJETO_PS* p) override {
    QV_CHECK(Confere(f));
    return Devolve(p);
  }
  HRESULT BuscaRegistros(const _REG_PTR_PROJETO_PS& p, _REG_LISTA_PROJETOS_PS* l) override {
    QV_CHECK(Confere(p));
    return Devolve(l);
  }
  HRESULT LeRegistro(std::uint32_t, _REG_PROJETO_ATENDIMENTO_PS* r) override { return Devolve(r); }
  HRESULT Grava(_REG_PROJETO_ATENDIMENTO_PS* r) override {
    QV_CHECK(Confere(*r));
    r->lPos = 42;
    return S_OK;
  }
};

template <class Classe, class Servidor>
auto FabricaEco() {
  return TQVFabricaDeClasse([] { return new Classe([] { return std::make_unique<Servidor>(); }); });
}

void RegistraEco() {
  static auto atendimento = FabricaEco<CQVGE_Atendimento, CEcoAtendimento>();
  static auto projeto = FabricaEco<CQVGE_Projeto, CEcoProjeto>();
  std::uint32_t cookie;
  if (FAILED(CoRegisterClassObject(CLSID_QVGE_Atendimento, &atendimento, &cookie)) ||
      FAILED(CoRegisterClassObject(CLSID_QVGE_Projeto, &projeto, &cookie)))
    std::abort();
}
QV_TESTE_PERSONALIDADE("eco", RegistraEco);

// Limits small enough to reach in a test (the fixture's server has the
// defaults).
const std::vector<std::string> kLimites{"--max-elementos", "10", "--max-caracteres", "64", "--max-bytes", "4096"};

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

class Transporte : public ::testing::Test {
 protected:
  void SetUp() override {
    QVTesteLimpaLog();
    Obs().criados = Obs().destruidos = Obs().chamadas = 0;
    m_pServidor = std::make_unique<CQVServidorTeste>("eco");
    ASSERT_TRUE(m_pServidor->Pronto()) << m_pServidor->Processo().Erros();
    ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = m_pServidor->Socket()}, &m_pConexao), S_OK);
  }

  template <class I>
  CQVComPtr<I> Cria(REFCLSID clsid, REFIID iid, bool inicializa = true) {
    CQVComPtr<I> p;
    EXPECT_EQ(m_pConexao->CriaObjeto(clsid, iid, p.ppv()), S_OK);
    if (p && inicializa) {
      EXPECT_EQ(p->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
    }
    return p;
  }
  CQVComPtr<IQVGE_Atendimento> Atendimento(bool inicializa = true) {
    return Cria<IQVGE_Atendimento>(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, inicializa);
  }
  CQVComPtr<IQVGE_Projeto> Projeto(bool inicializa = true) {
    return Cria<IQVGE_Projeto>(CLSID_QVGE_Projeto, IID_IQVGE_Projeto, inicializa);
  }

  std::unique_ptr<CQVServidorTeste> m_pServidor;
  std::shared_ptr<CQVConexaoZelkorin> m_pConexao;
};

// An out record the caller got back: equal to the sample, then freed.
template <class T>
void ComoAmostra(T& recebido, std::uint32_t semente = sizeof(T)) {
  T esperado = Amostra<T>(semente);
  EXPECT_TRUE(QVIguais(recebido, esperado)) << QVDescritor<T>().nome;
  QVLibera(&esperado);
  QVLibera(&recebido);
}

// Sends a record's bytes as given through one of an object's methods.
template <class P, class R>
HRESULT Envia(CQVConexaoZelkorin& conexao, capnp::Request<P, R>& req, zk::Registro::Builder registro,
              const std::string& fixo, const std::string& anexos) {
  registro.setFixo(QVDataDe(fixo));
  registro.setAnexos(QVDataDe(anexos));
  std::optional<capnp::Response<R>> r;
  const HRESULT hr = conexao.Chama(req, &r);
  return FAILED(hr) ? hr : r->getHr();
}

std::string Utf8(BSTR bs) {
  std::string s = QVBstrToUtf8(bs);
  SysFreeString(bs);
  return s;
}

}  // namespace

TEST_F(Transporte, CadaMetodoLevaETrazSeusRegistrosIntactos) {
  auto a = Atendimento();
  auto filtro = AmostraDoTipo<_REG_FILTRO_ATENDIMENTO_PS>();
  _REG_LISTA_PONTEIROS_PS ponteiros;
  _REG_CLIENTES_ATENDIMENTO_PS clientes;
  ASSERT_EQ(a->BuscaPonteiros(filtro, &ponteiros, &clientes), S_OK);
  ComoAmostra(clientes);
  _REG_LISTA_REGISTROS_PS registros;
  ASSERT_EQ(a->BuscaRegistros(ponteiros, &registros), S_OK);  // the answer goes back as it came
  ComoAmostra(ponteiros);
  ComoAmostra(registros);

  auto filtroAgenda = AmostraDoTipo<_REG_FILTRO_AGENDA_PS>();
  _REG_LISTA_PONTEIROS_AGENDA ponteirosAgenda;
  ASSERT_EQ(a->BuscaPonteirosAgenda(filtroAgenda, &ponteirosAgenda), S_OK);
  _REG_LISTA_SERVICOS_AGENDA_PS servicos;
  ASSERT_EQ(a->BuscaRegistrosAgenda(ponteirosAgenda, &servicos), S_OK);
  ComoAmostra(ponteirosAgenda);
  ComoAmostra(servicos);

  _REG_ATENDIMENTO_PS atendimento;
  ASSERT_EQ(a->LeAtendimento(1, 2, &atendimento), S_OK);
  std::uint32_t gravada = 0;
  EXPECT_EQ(a->GravaAtendimento(10, 20, atendimento, &gravada), S_OK);
  EXPECT_EQ(gravada, 30u);
  ComoAmostra(atendimento);
  ASSERT_EQ(a->LeAtendimentoLight(1, 2, &atendimento), S_OK);
  ComoAmostra(atendimento);

  _REG_PROPRIEDADES_ATENDIMENTO_PS propriedades;
  ASSERT_EQ(a->LePropriedades(&propriedades, 0), S_OK);
  EXPECT_EQ(a->GravaPropriedades(propriedades, 0), S_OK);
  ComoAmostra(propriedades);

  BSTR bs = nullptr;
  ASSERT_EQ(a->BuscaLeiautesAtendimento(&bs), S_OK);
  EXPECT_EQ(Utf8(bs), kLeiautes);
  ASSERT_EQ(a->BuscaLeiautesAtendimentoDFCLAY(&bs), S_OK);
  EXPECT_EQ(Utf8(bs), kLeiautes);
  bs = reinterpret_cast<BSTR>(1);
  ASSERT_EQ(a->BuscaLeiautesAtendimentoDFCMOD(&bs), S_OK);
  EXPECT_EQ(bs, nullptr);
  std::int32_t naoDuplicado = 7;
  ASSERT_EQ(a->ConsistirNumeroAtendimentoPS(5, &naoDuplicado), S_OK);
  EXPECT_EQ(naoDuplicado, 1);

  auto relatorio = AmostraDoTipo<_REG_RELATORIO_ATENDIMENTO_PS>();
  EXPECT_EQ(a->GeraRelatorioAgrupamento(relatorio, 3), S_OK);
  EXPECT_EQ(a->GeraRelatorioPeriodo(relatorio), S_OK);
  EXPECT_EQ(a->GeraRelatorioAtendimento(relatorio), S_OK);
  auto horas = AmostraDoTipo<_REG_FILTRO_REL_CONTROLE_HORAS>();
  EXPECT_EQ(a->GeraRelatorioControleHoras(horas), S_OK);
  // An in/out record: replaced by the answer, what it owned freed (the
  // sanitizer build sees a leak otherwise).
  auto agenda = AmostraDoTipo<_REG_REL_CONSULTA_AGENDAMENTO>();
  ASSERT_EQ(a->GeraRelatorioConsultaAgendamento(&agenda), S_OK);
  ComoAmostra(agenda, 5);

  auto entrada = AmostraDoTipo<_REG_DF_FUNCAO_GENERICAPS>();
  _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
  ASSERT_EQ(a->FuncaoGenerica(1, entrada, &saida), S_OK);
  ASSERT_NE(saida, nullptr);
  ComoAmostra(*saida);
  CoTaskMemFree(saida);

  auto p = Projeto();
  auto filtroProjeto = AmostraDoTipo<_REG_FILTRO_PROJETO_PS>();
  _REG_PTR_PROJETO_PS ptr;
  ASSERT_EQ(p->BuscaPonteiros(filtroProjeto, &ptr), S_OK);
  _REG_LISTA_PROJETOS_PS projetos;
  ASSERT_EQ(p->BuscaRegistros(ptr, &projetos), S_OK);
  ComoAmostra(ptr);
  ComoAmostra(projetos);
  _REG_PROJETO_ATENDIMENTO_PS projeto;
  ASSERT_EQ(p->LeRegistro(1, &projeto), S_OK);
  ASSERT_EQ(p->Grava(&projeto), S_OK);
  EXPECT_EQ(projeto.lPos, 42u);
  projeto.lPos = 0;
  auto esperado = AmostraDoTipo<_REG_PROJETO_ATENDIMENTO_PS>();
  esperado.lPos = 0;
  EXPECT_TRUE(QVIguais(projeto, esperado));
  QVLibera(&esperado);
  QVLibera(&projeto);

  QVLibera(&filtro);
  QVLibera(&filtroAgenda);
  QVLibera(&relatorio);
  QVLibera(&horas);
  QVLibera(&entrada);
  QVLibera(&filtroProjeto);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TEST_F(Transporte, ChamadaQueFalhaZeraAsSaidasEPreservaAsEntradasSaidas) {
  // Not initialised: every business call fails in the frame.
  auto a = Atendimento(false);
  _REG_ATENDIMENTO_PS reg;
  std::memset(&reg, 0xAB, sizeof reg);
  EXPECT_EQ(a->LeAtendimento(1, 1, &reg), QVHr(0x81080A04u));
  const _REG_ATENDIMENTO_PS zero{};
  EXPECT_EQ(std::memcmp(&reg, &zero, sizeof reg), 0);
  BSTR bs = reinterpret_cast<BSTR>(1);
  EXPECT_EQ(a->BuscaLeiautesAtendimento(&bs), QVHr(0x81080A04u));
  EXPECT_EQ(bs, nullptr);
  auto agenda = AmostraDoTipo<_REG_REL_CONSULTA_AGENDAMENTO>();
  const auto copia = agenda;  // the same pointers: nothing was freed or replaced
  EXPECT_EQ(a->GeraRelatorioConsultaAgendamento(&agenda), QVHr(0x81080A04u));
  EXPECT_EQ(std::memcmp(&agenda, &copia, sizeof agenda), 0);
  ComoAmostra(agenda);
  EXPECT_EQ(Obs().chamadas, 0);

  // A record the server does not accept comes back as its status.
  auto p = Projeto();
  auto projeto = Amostra<_REG_PROJETO_ATENDIMENTO_PS>(3);
  EXPECT_EQ(p->Grava(&projeto), E_INVALIDARG);
  ComoAmostra(projeto, 3);
}

TEST_F(Transporte, DadosRuinsSaoRecusadosAntesDoObjetoEOServidorContinua) {
  CQVServidorTeste estrito("eco", kLimites);
  ASSERT_TRUE(estrito.Pronto());
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = estrito.Socket()}, &conexao), S_OK);
  auto fabrica = conexao->Fabrica();
  auto Cria = [&](const CLSID& clsid, std::size_t tamanho) -> std::optional<capnp::Response<zk::Fabrica::CriaObjetoResults>> {
    auto req = fabrica.criaObjetoRequest();
    req.setClsid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&clsid), tamanho));
    std::optional<capnp::Response<zk::Fabrica::CriaObjetoResults>> r;
    EXPECT_EQ(conexao->Chama(req, &r), S_OK);
    return r;
  };
  EXPECT_EQ(Cria(CLSID_QVGE_Atendimento, 3)->getHr(), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(Cria(QVGuid("{00000000-0000-0000-0000-000000000001}"), sizeof(CLSID))->getHr(), REGDB_E_CLASSNOTREG);
  auto objeto = Cria(CLSID_QVGE_Atendimento, sizeof(CLSID))->getObjeto().castAs<zk::Atendimento>();
  {
    auto req = objeto.inicializaPadraoRequest();
    QVParaRegistro(QVTesteInicializaPS(), req.initRegps());
    std::optional<capnp::Response<zk::QVUnknown::InicializaPadraoResults>> r;
    ASSERT_EQ(conexao->Chama(req, &r), S_OK);
    ASSERT_EQ(r->getHr(), S_OK);
  }
  auto Grava = [&](const std::string& fixo, const std::string& anexos) {
    auto req = objeto.gravaAtendimentoRequest();
    return Envia(*conexao, req, req.initRegAtendimentoPs(), fixo, anexos);
  };
  auto GravaPropriedades = [&](const std::string& fixo, const std::string& anexos) {
    auto req = objeto.gravaPropriedadesRequest();
    return Envia(*conexao, req, req.initRegPropriedadesPs(), fixo, anexos);
  };
  auto ControleHoras = [&](const std::string& fixo, const std::string& anexos) {
    auto req = objeto.geraRelatorioControleHorasRequest();
    return Envia(*conexao, req, req.initRegFiltro(), fixo, anexos);
  };

  std::string fixo, anexos;
  auto atendimento = AmostraDoTipo<_REG_ATENDIMENTO_PS>();
  QVMarshal(atendimento, &fixo, &anexos);
  QVLibera(&atendimento);
  ASSERT_GT(anexos.size(), 4096u);  // over the server's byte limit
  EXPECT_EQ(Grava(fixo, anexos), RPC_X_BAD_STUB_DATA);
  // Wrong size, data cut short or running on, a count beyond the elements
  // limit: all refused whatever their size.
  auto pequeno = Zerado<_REG_ATENDIMENTO_PS>();
  pequeno.lQtdRepresentante = 3;
  pequeno.pRepresentante = Novo<std::uint32_t>(3);
  QVMarshal(pequeno, &fixo, &anexos);
  QVLibera(&pequeno);
  EXPECT_EQ(Grava(fixo.substr(1), anexos), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(Grava(fixo + "x", anexos), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(Grava(fixo, anexos.substr(1)), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(Grava(fixo, anexos + "x"), RPC_X_BAD_STUB_DATA);
  const std::uint32_t onze = 11;
  std::memcpy(fixo.data() + offsetof(_REG_ATENDIMENTO_PS, lQtdRepresentante), &onze, 4);
  EXPECT_EQ(Grava(fixo, std::string(44, '\1')), RPC_X_BAD_STUB_DATA);

  // A text without its terminating zero.
  auto propriedades = AmostraDoTipo<_REG_PROPRIEDADES_ATENDIMENTO_PS>();
  QVMarshal(propriedades, &fixo, &anexos);
  QVLibera(&propriedades);
  ASSERT_EQ(anexos.back(), '\0');  // the only text, last
  EXPECT_EQ(GravaPropriedades(fixo, anexos.substr(0, anexos.size() - 1) + "x"), RPC_X_BAD_STUB_DATA);

  // A system string one character over the limit; at the limit it passes
  // (and the server, which wants its sample, answers for itself).
  auto horas = Zerado<_REG_FILTRO_REL_CONTROLE_HORAS>();
  horas.bsProjeto = QVBstrFromUtf8(std::string(65, 'p'));
  QVMarshal(horas, &fixo, &anexos);
  EXPECT_EQ(ControleHoras(fixo, anexos), RPC_X_BAD_STUB_DATA);
  QVLibera(&horas);
  horas.bsProjeto = QVBstrFromUtf8(std::string(64, 'p'));
  QVMarshal(horas, &fixo, &anexos);
  QVLibera(&horas);
  EXPECT_EQ(ControleHoras(fixo, anexos), E_INVALIDARG);
  EXPECT_EQ(Obs().chamadas, 1);  // only that last one reached the server

  EXPECT_EQ(LinhasCom("hr = QVDeRegistro(p.getRegAtendimentoPs(), &reg.r, Limites())\thr = 0X800706F7"), 6u);
  // The object and the server live on.
  propriedades = AmostraDoTipo<_REG_PROPRIEDADES_ATENDIMENTO_PS>();
  QVMarshal(propriedades, &fixo, &anexos);
  QVLibera(&propriedades);
  EXPECT_EQ(GravaPropriedades(fixo, anexos), S_OK);
  CQVComPtr<IQVUnknown> outro;
  ASSERT_EQ(conexao->CriaObjeto(CLSID_QVGE_Projeto, IID_IQVUnknown, outro.ppv()), S_OK);
  std::int32_t ok = 0;
  EXPECT_EQ(outro->KeepAlive(&ok), S_OK);
}

TEST_F(Transporte, LiberarOProxyEncerraOObjetoNoServidor) {
  auto a = Atendimento();
  auto p = Projeto();
  EXPECT_EQ(Obs().criados, 2);
  a.Release();
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 1; }));
  p.Release();
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 2; }));
  // Asked for what it does not implement, a proxy says so.
  auto outro = Atendimento(false);
  void* q = nullptr;
  EXPECT_EQ(outro->QueryInterface(IID_IQVGE_Projeto, &q), E_NOINTERFACE);
  EXPECT_EQ(q, nullptr);
}

TEST_F(Transporte, ClienteMortoTemSeusObjetosLiberados) {
  CQVProcessoTeste cliente({"--cliente-teste", "--socket", m_pServidor->Socket(), "--classe",
                            QVGuidFormat(CLSID_QVGE_Projeto)});
  ASSERT_TRUE(cliente.EsperaLinha("pronto")) << cliente.Erros();
  EXPECT_EQ(Obs().criados, 1);
  EXPECT_EQ(Obs().destruidos, 0);
  const int status = cliente.Termina(SIGKILL);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 1; }));
  // Other clients go on.
  std::int32_t ok = 0;
  EXPECT_EQ(Atendimento()->KeepAlive(&ok), S_OK);
}

TEST_F(Transporte, SigtermLiberaTudoEOsClientesVeemADesconexao) {
  auto a = Atendimento();
  auto p = Projeto();
  ASSERT_EQ(Obs().criados, 2);
  const int status = m_pServidor->Processo().Termina(SIGTERM);
  ASSERT_TRUE(WIFEXITED(status)) << status;
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(Obs().destruidos, 2);
  const std::string erros = m_pServidor->Processo().Erros();
  EXPECT_NE(erros.find("sinal SIGTERM: encerrando 1 conexões"), std::string::npos) << erros;
  EXPECT_NE(erros.find("encerrado; objetos ativos no processo: 0"), std::string::npos) << erros;
  struct stat info {};
  EXPECT_NE(::stat(m_pServidor->Socket().c_str(), &info), 0);  // the socket went with it

  // Every later call answers the same, at once, and leaves out records empty.
  for (int i = 0; i < 2; ++i) {
    _REG_PROJETO_ATENDIMENTO_PS reg;
    std::memset(&reg, 0xAB, sizeof reg);
    EXPECT_EQ(p->LeRegistro(1, &reg), RPC_E_DISCONNECTED);
    EXPECT_EQ(reg.rNome.pTexto, nullptr);
    std::int32_t ok = 5;
    EXPECT_EQ(a->KeepAlive(&ok), RPC_E_DISCONNECTED);
    EXPECT_EQ(ok, 0);
  }
  EXPECT_TRUE(m_pConexao->Desconectada());
  CQVComPtr<IQVGE_Atendimento> novo;
  EXPECT_EQ(m_pConexao->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, novo.ppv()), RPC_E_DISCONNECTED);
  EXPECT_FALSE(novo);
  std::shared_ptr<CQVConexaoZelkorin> outra;
  EXPECT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = m_pServidor->Socket()}, &outra),
            HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
}

TEST_F(Transporte, ServidorQueMorreDeixaOClienteDesconectadoSemTravar) {
  auto a = Atendimento();
  m_pServidor->Processo().Termina(SIGKILL);
  _REG_ATENDIMENTO_PS reg;
  EXPECT_EQ(a->LeAtendimento(1, 1, &reg), RPC_E_DISCONNECTED);
  EXPECT_EQ(a->LeAtendimento(1, 1, &reg), RPC_E_DISCONNECTED);
  EXPECT_EQ(LinhasCom("hr = RPC_E_DISCONNECTED\t"), 1u);  // found once, logged once
}

TEST_F(Transporte, ChamadaSemRespostaNoPrazoDaTempoEsgotado) {
  std::shared_ptr<CQVConexaoZelkorin> apressada;
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = m_pServidor->Socket(), .ulTempoLimiteMs = 100}, &apressada),
            S_OK);
  CQVComPtr<IQVGE_Atendimento> a;
  ASSERT_EQ(apressada->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, a.ppv()), S_OK);
  ASSERT_EQ(a->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  std::int32_t resposta = 0;
  EXPECT_EQ(a->ConsistirNumeroAtendimentoPS(kNumeroLento, &resposta), RPC_E_TIMEOUT);
  // The connection is still good once the server is free again.
  std::this_thread::sleep_for(std::chrono::milliseconds(700));
  EXPECT_EQ(a->ConsistirNumeroAtendimentoPS(6, &resposta), S_OK);
  EXPECT_EQ(resposta, 0);
  EXPECT_FALSE(apressada->Desconectada());
}

TEST(TransporteEscuta, TcpSocketDonoELixoDeServidorMorto) {
  QVTesteLimpaLog();
  // TCP on the loopback when only a port is given.
  CQVServidorTeste tcp("eco", {"--listen", "0"});
  ASSERT_TRUE(tcp.Pronto());
  const std::string erros = tcp.Processo().Erros();
  const std::size_t p = erros.find("ouvindo tcp:127.0.0.1:0 (porta ");
  ASSERT_NE(p, std::string::npos) << erros;
  const std::string porta = erros.substr(p + 31, erros.find(')', p) - p - 31);
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sEndereco = "127.0.0.1:" + porta}, &conexao), S_OK);
  CQVComPtr<IQVUnknown> objeto;
  ASSERT_EQ(conexao->CriaObjeto(CLSID_QVGE_Projeto, IID_IQVUnknown, objeto.ppv()), S_OK);
  std::int32_t ok = 0;
  EXPECT_EQ(objeto->KeepAlive(&ok), S_OK);
  EXPECT_EQ(ok, 1);

  // The socket is the owner's and its group's.
  struct stat info {};
  ASSERT_EQ(::stat(tcp.Socket().c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0660u);
  // A second server on a live socket does not start, and the first goes on.
  CQVProcessoTeste segundo({"--servidor-teste", "eco", "--socket", tcp.Socket()});
  EXPECT_FALSE(segundo.EsperaLinha("pronto"));
  EXPECT_EQ(segundo.Termina(SIGTERM), 1 << 8);  // exit 1
  EXPECT_EQ(objeto->KeepAlive(&ok), S_OK);
  // A server that died leaves its socket behind; the next one replaces it.
  objeto.Release();
  conexao.reset();
  tcp.Processo().Termina(SIGKILL);
  ASSERT_EQ(::stat(tcp.Socket().c_str(), &info), 0);
  CQVProcessoTeste terceiro({"--servidor-teste", "eco", "--socket", tcp.Socket()});
  ASSERT_TRUE(terceiro.EsperaLinha("pronto")) << terceiro.Erros();
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = tcp.Socket()}, &conexao), S_OK);
  // What is not a socket is never removed.
  const std::string arquivo = QVTesteDiretorio() + "/nao-e-socket";
  std::ofstream(arquivo) << "dados";
  CQVProcessoTeste quarto({"--servidor-teste", "eco", "--socket", arquivo});
  EXPECT_FALSE(quarto.EsperaLinha("pronto"));
  EXPECT_EQ(QVTesteLeArquivo(arquivo), "dados");
}
