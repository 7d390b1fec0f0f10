// The transport between client and server processes: every method of both
// tables, both ways, its failures and the refusal of bad data; the ends of
// objects (release, lost connection, SIGTERM), lost servers, time limits,
// the listeners.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <fstream>
#include <functional>
#include <thread>

#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/CQVGE_Projeto.h"
#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/transport/ZelkorinProxies.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteRegistros.h"

namespace {

struct ObsEco {
  std::atomic<std::int32_t> criados;
  std::atomic<std::int32_t> destruidos;
  std::atomic<std::int32_t> chamadas;  // business calls that reached a server
  std::atomic<bool> recusa;  // servers fill their out values, then fail
  std::atomic<std::int32_t> msEspera;  // servers take this long to answer
  std::atomic<std::int32_t> concluidas;  // calls answered
};
ObsEco& Obs() { return QVTesteCompartilhado<ObsEco>("eco"); }

// What travels for parameter k of method M: the caller's values and the
// server's answers, both sides build them alike.
template <class M>
std::uint32_t SementeIda(std::size_t k) {
  return M::kSlot * 8u + static_cast<std::uint32_t>(k);
}
template <class M>
std::uint32_t SementeVolta(std::size_t k) {
  return SementeIda<M>(k) + 4;
}

// Servers for every method of the tables: each in value must be its
// sample (else E_INVALIDARG), each out and in/out value is answered with
// its sample, in/out ones after their old contents are freed.
template <class M, class... A>
HRESULT Eco(A&&... args) {
  ++Obs().chamadas;
  std::this_thread::sleep_for(std::chrono::milliseconds(Obs().msEspera.load()));
  const auto argumentos = std::forward_as_tuple(args...);
  bool aceito = true;
  QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
    using T = typename P::Tipo;
    auto&& a = std::get<k>(argumentos);
    if constexpr (P::kDirecao == EQVDirecao::Ent) aceito = aceito && QVTesteIgualAmostra<T>(a, SementeIda<M>(k));
    if constexpr (P::kDirecao == EQVDirecao::EntSai) {
      aceito = aceito && QVTesteIgualAmostra<T>(*a, SementeIda<M>(k));
      QVLiberaValor(a);
    }
    if constexpr (P::kSai) *a = QVTesteAmostraValor<T>(SementeVolta<M>(k));
  });
  ++Obs().concluidas;
  return aceito && !Obs().recusa ? S_OK : E_INVALIDARG;
}

#define QV_ECO(I, slot, nome, ...)                                                                 \
  HRESULT nome(QV_PP_MAPA(QV_PARAMETRO_SERVIDOR, __VA_ARGS__)) override {                          \
    return Eco<QVMetodo<I, slot>>(QV_PP_MAPA(QV_PARAMETRO_ARGUMENTO, __VA_ARGS__));                \
  }

template <class Base>
class TEco : public Base {
 public:
  TEco() { ++Obs().criados; }
  ~TEco() override { ++Obs().destruidos; }
  // Function 0 gives back no record (the out value stays null).
  HRESULT FuncaoGenerica(std::uint32_t ulFuncao, const _REG_DF_FUNCAO_GENERICAPS& regInps,
                         _REG_DF_FUNCAO_GENERICAPS** ppregOutps) override {
    return ulFuncao == 0 ? S_OK : Eco<QVMetodo<IQVUnknown, 6>>(ulFuncao, regInps, ppregOutps);
  }
};
class CEcoAtendimento final : public TEco<CGeServidorAtendimento> {
 public:
  QV_METODOS_IQVGE_ATENDIMENTO(QV_ECO, IQVGE_Atendimento)
};
class CEcoProjeto final : public TEco<CGeProjetoBase> {
 public:
  QV_METODOS_IQVGE_PROJETO(QV_ECO, IQVGE_Projeto)
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

class Transporte : public ::testing::Test {
 protected:
  void SetUp() override {
    QVTesteLimpaLog();
    Obs().criados = Obs().destruidos = Obs().chamadas = Obs().msEspera = Obs().concluidas = 0;
    Obs().recusa = false;
    m_pServidor = std::make_unique<CQVServidorTeste>("eco");
    ASSERT_TRUE(m_pServidor->Pronto()) << m_pServidor->Processo().Erros();
    ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = m_pServidor->Socket()}, &m_pConexao), S_OK);
  }

  template <class I>
  CQVComPtr<I> Cria(bool inicializa = true) {
    CQVComPtr<I> p;
    const CLSID& clsid = std::is_same_v<I, IQVGE_Projeto> ? CLSID_QVGE_Projeto : CLSID_QVGE_Atendimento;
    EXPECT_EQ(m_pConexao->CriaObjeto(clsid, QVInterface<I>::kIid, p.ppv()), S_OK);
    if (p && inicializa) {
      EXPECT_EQ(p->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
    }
    return p;
  }
  CQVComPtr<IQVGE_Atendimento> Atendimento(bool inicializa = true) { return Cria<IQVGE_Atendimento>(inicializa); }
  CQVComPtr<IQVGE_Projeto> Projeto(bool inicializa = true) { return Cria<IQVGE_Projeto>(inicializa); }

  std::unique_ptr<CQVServidorTeste> m_pServidor;
  std::shared_ptr<CQVConexaoZelkorin> m_pConexao;
};

// Calls f.template operator()<M>() for every method of I's table that
// reaches the server (FuncaoGenerica and the business ones).
template <class I, class F>
void ParaCadaMetodoDoServidor(F&& f) {
  QVParaCadaMetodo<I>([&]<class M>() {
    if constexpr (M::kSlot >= 6) f.template operator()<M>();
  });
}

// The caller's side of a call of M: its samples in the in and in/out
// values, junk in the out ones (which the proxy must overwrite without
// freeing).
template <class M>
void PreparaChamada(CQVValoresChamada<M>& v) {
  QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
    if constexpr (P::kEntra)
      v.template Valor<k>() = QVTesteAmostraValor<typename P::Tipo>(SementeIda<M>(k));
    else
      std::memset(static_cast<void*>(&v.template Valor<k>()), 0xAB, sizeof(typename P::Tipo));
  });
}

// Every method answers hr. On success each value comes back as the server
// answered it (its in ones untouched); on failure the out values come back
// zero and the in/out ones exactly as they were passed (the same bytes, the
// same pointers). Gives how many methods were called.
template <class I>
int CadaMetodo(I* objeto, HRESULT hr) {
  int metodos = 0;
  ParaCadaMetodoDoServidor<I>([&]<class M>() {
    SCOPED_TRACE(M::kNome);
    ++metodos;
    CQVValoresChamada<M> v;
    PreparaChamada(v);
    typename CQVValoresChamada<M>::Valores antes;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      std::memcpy(static_cast<void*>(&std::get<k>(antes)), &v.template Valor<k>(), sizeof(typename P::Tipo));
    });
    EXPECT_EQ(v.Chama(objeto), hr);
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      SCOPED_TRACE(M::kNomesParametros[k]);
      const auto& valor = v.template Valor<k>();
      if (SUCCEEDED(hr)) {
        EXPECT_TRUE(QVTesteIgualAmostra(valor, P::kSai ? SementeVolta<M>(k) : SementeIda<M>(k)));
        return;
      }
      typename P::Tipo esperado = std::get<k>(antes);
      if constexpr (P::kDirecao == EQVDirecao::Sai) QVZeraValor(&esperado);
      EXPECT_EQ(std::memcmp(&valor, &esperado, sizeof esperado), 0);
    });
  });
  return metodos;
}

// One value of a call or an answer made by hand.
using Valor = std::function<void(zk::Valor::Builder)>;
Valor Numero(std::int64_t n) {
  return [n](zk::Valor::Builder b) { b.setNumero(n); };
}
template <class T>
Valor Registro(T registro) {
  std::string fixo, anexos;
  QVMarshal(registro, &fixo, &anexos);
  QVLibera(&registro);
  return [=](zk::Valor::Builder b) {
    b.initRegistro().setFixo(QVDataDe(fixo));
    b.getRegistro().setAnexos(QVDataDe(anexos));
  };
}

// A server in this process that answers every method of I with its
// samples, the last one spoilt (a text of an odd length, which is not a
// value of any other kind either), or with one value when the method has
// none: the client's side of answers that are not what the method gives
// back. (The generated server class inherits its virtual destructor from a
// virtual base, which the warning does not follow.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
template <class I>
class CRespostaEstragada final : public zk::Objeto::Server {
 public:
  kj::Promise<void> chama(ChamaContext c) override {
    ParaCadaMetodoDoServidor<I>([&]<class M>() {
      if (M::kSlot != c.getParams().getSlot()) return;
      auto saidas = c.getResults().initSaidas(std::max(QVQuantasSaidas<M>, 1u));
      unsigned n = 0;
      QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
        if constexpr (P::kSai) {
          auto valor = QVTesteAmostraValor<typename P::Tipo>(SementeVolta<M>(k));
          QVEscreveValor(valor, saidas[n++]);
          QVLiberaValor(&valor);
        }
      });
      if (n > 0)
        saidas[n - 1].setTexto(QVDataDe("abc"));
      else
        saidas[0].setNumero(0);
    });
    return kj::READY_NOW;
  }
};
#pragma GCC diagnostic pop

}  // namespace

TEST_F(Transporte, CadaMetodoLevaETrazSeusValoresIntactos) {
  CadaMetodo(Atendimento().get(), S_OK);
  CadaMetodo(Projeto().get(), S_OK);
  // A record the callee allocates may come back as none.
  auto* saida = reinterpret_cast<_REG_DF_FUNCAO_GENERICAPS*>(1);
  EXPECT_EQ(Projeto()->FuncaoGenerica(0, Zerado<_REG_DF_FUNCAO_GENERICAPS>(), &saida), S_OK);
  EXPECT_EQ(saida, nullptr);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TEST_F(Transporte, ChamadaQueFalhaZeraAsSaidasEPreservaAsEntradasSaidas) {
  // Not initialised: every call fails in the frame.
  CadaMetodo(Atendimento(false).get(), QVHr(0x81080A04u));
  CadaMetodo(Projeto(false).get(), QVHr(0x81080A04u));
  EXPECT_EQ(Obs().chamadas, 0);
  // Servers that fill their out values and then fail: nothing of what they
  // filled reaches the caller (nor leaks in the server).
  Obs().recusa = true;
  const int metodos = CadaMetodo(Atendimento().get(), E_INVALIDARG) + CadaMetodo(Projeto().get(), E_INVALIDARG);
  EXPECT_EQ(Obs().chamadas, metodos);
  // An in/out value the caller does not give is refused before it travels;
  // an out value it does not ask for is not delivered.
  EXPECT_EQ(Projeto()->Grava(nullptr), E_POINTER);
  Obs().recusa = false;
  auto ponteiros = Amostra<_REG_LISTA_PONTEIROS_PS>(SementeIda<QVMetodo<IQVGE_Atendimento, 8>>(0));
  EXPECT_EQ(Atendimento()->BuscaRegistros(ponteiros, nullptr), S_OK);
  QVLibera(&ponteiros);
}

TEST_F(Transporte, DadosRuinsSaoRecusadosAntesDoObjetoEOServidorContinua) {
  CQVServidorTeste estrito("eco", kLimites);
  ASSERT_TRUE(estrito.Pronto());
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = estrito.Socket()}, &conexao), S_OK);
  auto Cria = [&](const CLSID& clsid, std::size_t tamanho) {
    auto req = conexao->Fabrica().criaObjetoRequest();
    req.setClsid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&clsid), tamanho));
    std::optional<capnp::Response<zk::Fabrica::CriaObjetoResults>> r;
    EXPECT_EQ(conexao->Chama(req, &r), S_OK);
    return r;
  };
  EXPECT_EQ(Cria(CLSID_QVGE_Atendimento, 3)->getHr(), RPC_X_BAD_STUB_DATA);
  EXPECT_EQ(Cria(QVGuid("{00000000-0000-0000-0000-000000000001}"), sizeof(CLSID))->getHr(), REGDB_E_CLASSNOTREG);
  auto objeto = Cria(CLSID_QVGE_Atendimento, sizeof(CLSID))->getObjeto();
  auto Chama = [&](std::uint16_t slot, const std::vector<Valor>& valores) {
    auto req = objeto.chamaRequest();
    req.setSlot(slot);
    auto entradas = req.initEntradas(static_cast<unsigned>(valores.size()));
    for (unsigned i = 0; i < valores.size(); ++i) valores[i](entradas[i]);
    std::optional<capnp::Response<zk::Objeto::ChamaResults>> r;
    const HRESULT hr = conexao->Chama(req, &r);
    return FAILED(hr) ? hr : r->getHr();
  };
  ASSERT_EQ(Chama(3, {Registro(QVTesteInicializaPS())}), S_OK);

  // Records at and over the limits. What the record marshaller refuses of
  // itself (sizes, cut or surplus data, texts) its own tests cover.
  const auto Representantes = [](std::uint32_t n) {
    auto r = Zerado<_REG_ATENDIMENTO_PS>();
    r.lQtdRepresentante = n;
    r.pRepresentante = Novo<std::uint32_t>(n);
    return Registro(r);
  };
  const auto Horas = [](std::size_t caracteres) {
    auto r = Zerado<_REG_FILTRO_REL_CONTROLE_HORAS>();
    r.bsProjeto = QVBstrFromUtf8(std::string(caracteres, 'p'));
    return Registro(r);
  };
  const Valor um = Representantes(1);
  const Valor grande = Registro(Amostra<_REG_ATENDIMENTO_PS>(sizeof(_REG_ATENDIMENTO_PS)));  // over 4096 bytes
  const struct {
    const char* caso;
    std::uint16_t slot;
    std::vector<Valor> entradas;
    HRESULT hr;
  } kCasos[] = {
      {"registro acima do limite de bytes", 13, {Numero(1), Numero(0), grande}, RPC_X_BAD_STUB_DATA},
      {"contagem acima do limite", 13, {Numero(1), Numero(0), Representantes(11)}, RPC_X_BAD_STUB_DATA},
      {"string acima do limite", 23, {Horas(65)}, RPC_X_BAD_STUB_DATA},
      {"número fora da largura", 13, {Numero(70000), Numero(0), um}, RPC_X_BAD_STUB_DATA},
      {"número negativo", 19, {Numero(-1)}, RPC_X_BAD_STUB_DATA},
      {"registro no lugar de número", 19, {um}, RPC_X_BAD_STUB_DATA},
      {"número no lugar de registro", 23, {Numero(5)}, RPC_X_BAD_STUB_DATA},
      {"parâmetros de menos", 13, {Numero(1), Numero(0)}, RPC_X_BAD_STUB_DATA},
      {"parâmetros demais", 19, {Numero(1), Numero(2)}, RPC_X_BAD_STUB_DATA},
      {"slot do IUnknown", 2, {}, HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE)},
      {"slot além da interface", 25, {}, HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE)},
      // At a limit a value passes (and the server, which wants its sample,
      // answers for itself).
      {"string no limite", 23, {Horas(64)}, E_INVALIDARG},
      {"contagem no limite", 13, {Numero(1), Numero(0), Representantes(10)}, E_INVALIDARG},
  };
  for (const auto& c : kCasos) {
    SCOPED_TRACE(c.caso);
    EXPECT_EQ(Chama(c.slot, c.entradas), c.hr);
  }
  EXPECT_EQ(Obs().chamadas, 2);  // only those at the limits reached the server
  EXPECT_EQ(QVTesteLinhasCom("hr = QVLeValor(v, p, limites)\thr = 0X800706F7"), 7u);
  EXPECT_EQ(QVTesteLinhasCom("parametro = RegAtendimentoPs"), 2u);
  EXPECT_EQ(QVTesteLinhasCom("hr = RPC_X_BAD_STUB_DATA\thr = 0X800706F7"), 3u);  // the factory's, two counts
  EXPECT_EQ(QVTesteLinhasCom("RPC_S_PROCNUM_OUT_OF_RANGE"), 2u);
  EXPECT_EQ(Chama(4, {}), S_OK);  // the object and its connection live on
}

TEST_F(Transporte, RespostaRuimEhRecusadaInteiraPeloCliente) {
  CQVComPtr<IQVGE_Atendimento> a;
  ASSERT_EQ(QVCriaProxy(m_pConexao, kj::heap<CRespostaEstragada<IQVGE_Atendimento>>(), IID_IQVGE_Atendimento,
                        IID_IQVGE_Atendimento, a.ppv()),
            S_OK);
  CQVComPtr<IQVGE_Projeto> p;
  ASSERT_EQ(QVCriaProxy(m_pConexao, kj::heap<CRespostaEstragada<IQVGE_Projeto>>(), IID_IQVGE_Projeto,
                        IID_IQVGE_Projeto, p.ppv()),
            S_OK);
  const int metodos = CadaMetodo(a.get(), RPC_X_BAD_STUB_DATA) + CadaMetodo(p.get(), RPC_X_BAD_STUB_DATA);
  // Each refusal logged once; a value refused names its method and parameter.
  EXPECT_EQ(QVTesteLinhasCom("\thr = 0X800706F7"), static_cast<std::size_t>(metodos));
  EXPECT_EQ(QVTesteLinhasCom("metodo = BuscaPonteiros\tparametro = RegClientes"), 1u);
}

TEST_F(Transporte, LiberarOProxyOuMatarOClienteEncerraOObjetoNoServidor) {
  auto a = Atendimento();
  auto p = Projeto();
  EXPECT_EQ(Obs().criados, 2);
  a.Release();
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 1; }));
  p.Release();
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 2; }));

  CQVProcessoTeste cliente({"--cliente-teste", "--socket", m_pServidor->Socket(), "--classe",
                            QVGuidFormat(CLSID_QVGE_Projeto)});
  ASSERT_TRUE(cliente.EsperaLinha("pronto")) << cliente.Erros();
  EXPECT_EQ(Obs().criados, 3);
  EXPECT_EQ(Obs().destruidos, 2);
  EXPECT_TRUE(WIFSIGNALED(cliente.Termina(SIGKILL)));
  EXPECT_TRUE(QVTesteEsperaQue([] { return Obs().destruidos == 3; }));
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

TEST_F(Transporte, ChamadaSemRespostaNoPrazoDaTempoEsgotado) {
  // The company's database is opened (its files made) by an object of an
  // unhurried connection, and stays open while it lives: the hurried
  // object's initialisation only joins it.
  CQVComPtr<IQVGE_Atendimento> primeiro;
  ASSERT_EQ(m_pConexao->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, primeiro.ppv()), S_OK);
  ASSERT_EQ(primeiro->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  std::shared_ptr<CQVConexaoZelkorin> apressada;
  ASSERT_EQ(CQVConexaoZelkorin::Conecta({.sSocket = m_pServidor->Socket(), .ulTempoLimiteMs = 100}, &apressada),
            S_OK);
  CQVComPtr<IQVGE_Atendimento> a;
  ASSERT_EQ(apressada->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, a.ppv()), S_OK);
  ASSERT_EQ(a->Inicializa_Padrao(QVTesteInicializaPS()), S_OK);
  using M = QVMetodo<IQVGE_Atendimento, 19>;  // ConsistirNumeroAtendimentoPS
  const auto numero = QVTesteAmostraValor<std::uint32_t>(SementeIda<M>(0));
  std::int32_t resposta = 0;
  Obs().msEspera = 300;
  EXPECT_EQ(a->ConsistirNumeroAtendimentoPS(numero, &resposta), RPC_E_TIMEOUT);
  // The connection is still good once the server is free again, and the
  // late answer is not taken for the next one.
  Obs().msEspera = 0;
  ASSERT_TRUE(QVTesteEsperaQue([] { return Obs().concluidas == 1; }));
  EXPECT_EQ(a->ConsistirNumeroAtendimentoPS(numero, &resposta), S_OK);
  EXPECT_TRUE(QVTesteIgualAmostra(resposta, SementeVolta<M>(1)));
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
  // A server that dies: its clients find the connection lost at once, and
  // log it once; its socket stays behind, and the next server replaces it.
  tcp.Processo().Termina(SIGKILL);
  EXPECT_EQ(objeto->KeepAlive(&ok), RPC_E_DISCONNECTED);
  EXPECT_EQ(objeto->KeepAlive(&ok), RPC_E_DISCONNECTED);
  EXPECT_EQ(QVTesteLinhasCom("hr = RPC_E_DISCONNECTED\t"), 1u);
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
