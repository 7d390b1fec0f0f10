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
  HRESULT FuncaoGenerica(std::uint32_t ulFuncao, const _REG_DF_FUNCAO_GENERICAPS& regInps,
                         _REG_DF_FUNCAO_GENERICAPS** ppregOutps) override {
    return Eco<QVMetodo<IQVUnknown, 6>>(ulFuncao, regInps, ppregOutps);
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

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

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

template <class I>
void CadaMetodoIdaEVolta(I* objeto) {
  ParaCadaMetodoDoServidor<I>([&]<class M>() {
    SCOPED_TRACE(M::kNome);
    CQVValoresChamada<M> v;
    PreparaChamada(v);
    ASSERT_EQ(v.Chama(objeto), S_OK);
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      EXPECT_TRUE(QVTesteIgualAmostra(v.template Valor<k>(), P::kSai ? SementeVolta<M>(k) : SementeIda<M>(k)))
          << M::kNomesParametros[k];
    });
  });
}

// Every method answers hr; its out values come back zero, its in/out ones
// exactly as they were passed (the same bytes, the same pointers). Gives
// how many methods were called.
template <class I>
int CadaMetodoFalhaSemEfeito(I* objeto, HRESULT hr) {
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
      typename P::Tipo esperado = std::get<k>(antes);
      if constexpr (P::kDirecao == EQVDirecao::Sai) QVZeraValor(&esperado);
      EXPECT_EQ(std::memcmp(&v.template Valor<k>(), &esperado, sizeof esperado), 0) << M::kNomesParametros[k];
    });
  });
  return metodos;
}

// One value of a call made by hand.
using Valor = std::function<void(zk::Valor::Builder)>;
Valor Numero(std::int64_t n) {
  return [n](zk::Valor::Builder b) { b.setNumero(n); };
}
Valor Bytes(const std::string& fixo, const std::string& anexos) {
  return [=](zk::Valor::Builder b) {
    b.initRegistro().setFixo(QVDataDe(fixo));
    b.getRegistro().setAnexos(QVDataDe(anexos));
  };
}
template <class T>
Valor Registro(T registro) {
  std::string fixo, anexos;
  QVMarshal(registro, &fixo, &anexos);
  QVLibera(&registro);
  return Bytes(fixo, anexos);
}
Valor Texto(const std::string& bytes) {
  return [=](zk::Valor::Builder b) { b.setTexto(QVDataDe(bytes)); };
}

}  // namespace

TEST_F(Transporte, CadaMetodoLevaETrazSeusValoresIntactos) {
  CadaMetodoIdaEVolta(Atendimento().get());
  CadaMetodoIdaEVolta(Projeto().get());
  EXPECT_TRUE(QVTesteLinhasErro().empty());
}

TEST_F(Transporte, ChamadaQueFalhaZeraAsSaidasEPreservaAsEntradasSaidas) {
  // Not initialised: every call fails in the frame.
  CadaMetodoFalhaSemEfeito(Atendimento(false).get(), QVHr(0x81080A04u));
  CadaMetodoFalhaSemEfeito(Projeto(false).get(), QVHr(0x81080A04u));
  EXPECT_EQ(Obs().chamadas, 0);
  // Servers that fill their out values and then fail: nothing of what they
  // filled reaches the caller (nor leaks in the server).
  Obs().recusa = true;
  const int metodos = CadaMetodoFalhaSemEfeito(Atendimento().get(), E_INVALIDARG) +
                      CadaMetodoFalhaSemEfeito(Projeto().get(), E_INVALIDARG);
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

  std::string fixo, anexos;
  auto atendimento = Amostra<_REG_ATENDIMENTO_PS>(sizeof(_REG_ATENDIMENTO_PS));
  QVMarshal(atendimento, &fixo, &anexos);
  QVLibera(&atendimento);
  ASSERT_GT(anexos.size(), 4096u);
  auto pequeno = Zerado<_REG_ATENDIMENTO_PS>();
  pequeno.lQtdRepresentante = 3;
  pequeno.pRepresentante = Novo<std::uint32_t>(3);
  std::string fixoPequeno, anexosPequeno;
  QVMarshal(pequeno, &fixoPequeno, &anexosPequeno);
  QVLibera(&pequeno);
  std::string fixoOnze = fixoPequeno;
  const std::uint32_t onze = 11;  // over the elements limit
  std::memcpy(fixoOnze.data() + offsetof(_REG_ATENDIMENTO_PS, lQtdRepresentante), &onze, 4);
  auto propriedades = Amostra<_REG_PROPRIEDADES_ATENDIMENTO_PS>(1);
  std::string fixoProp, anexosProp;
  QVMarshal(propriedades, &fixoProp, &anexosProp);
  QVLibera(&propriedades);
  ASSERT_EQ(anexosProp.back(), '\0');  // its only text, last
  auto Horas = [](std::size_t caracteres) {
    auto horas = Zerado<_REG_FILTRO_REL_CONTROLE_HORAS>();
    horas.bsProjeto = QVBstrFromUtf8(std::string(caracteres, 'p'));
    return Registro(horas);
  };

  const struct {
    const char* caso;
    std::uint16_t slot;
    std::vector<Valor> entradas;
    HRESULT hr;
  } kCasos[] = {
      {"registro acima do limite de bytes", 13, {Numero(1), Numero(0), Bytes(fixo, anexos)}, RPC_X_BAD_STUB_DATA},
      {"fixo curto", 13, {Numero(1), Numero(0), Bytes(fixoPequeno.substr(1), anexosPequeno)}, RPC_X_BAD_STUB_DATA},
      {"fixo longo", 13, {Numero(1), Numero(0), Bytes(fixoPequeno + "x", anexosPequeno)}, RPC_X_BAD_STUB_DATA},
      {"anexos cortados", 13, {Numero(1), Numero(0), Bytes(fixoPequeno, anexosPequeno.substr(1))}, RPC_X_BAD_STUB_DATA},
      {"anexos sobrando", 13, {Numero(1), Numero(0), Bytes(fixoPequeno, anexosPequeno + "x")}, RPC_X_BAD_STUB_DATA},
      {"contagem acima do limite", 13, {Numero(1), Numero(0), Bytes(fixoOnze, std::string(44, '\1'))}, RPC_X_BAD_STUB_DATA},
      {"texto sem o zero final", 15, {Bytes(fixoProp, anexosProp.substr(0, anexosProp.size() - 1) + "x"), Numero(0)},
       RPC_X_BAD_STUB_DATA},
      {"string acima do limite", 23, {Horas(65)}, RPC_X_BAD_STUB_DATA},
      {"string de tamanho ímpar", 19, {Texto("abc")}, RPC_X_BAD_STUB_DATA},
      {"número fora da largura", 13, {Numero(70000), Numero(0), Bytes(fixoPequeno, anexosPequeno)}, RPC_X_BAD_STUB_DATA},
      {"número negativo", 19, {Numero(-1)}, RPC_X_BAD_STUB_DATA},
      {"registro no lugar de número", 19, {Bytes(fixoPequeno, anexosPequeno)}, RPC_X_BAD_STUB_DATA},
      {"número no lugar de registro", 23, {Numero(5)}, RPC_X_BAD_STUB_DATA},
      {"parâmetros de menos", 15, {Bytes(fixoProp, anexosProp)}, RPC_X_BAD_STUB_DATA},
      {"parâmetros demais", 19, {Numero(1), Numero(2)}, RPC_X_BAD_STUB_DATA},
      {"slot do IUnknown", 2, {}, HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE)},
      {"slot além da interface", 25, {}, HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE)},
      // At the limit a string passes (and the server, which wants its
      // sample, answers for itself).
      {"string no limite", 23, {Horas(64)}, E_INVALIDARG},
  };
  for (const auto& c : kCasos) {
    SCOPED_TRACE(c.caso);
    EXPECT_EQ(Chama(c.slot, c.entradas), c.hr);
  }
  EXPECT_EQ(Obs().chamadas, 1);  // only the last reached the server
  EXPECT_EQ(LinhasCom("hr = QVLeValor(v, p, limites)\thr = 0X800706F7"), 13u);
  EXPECT_EQ(LinhasCom("parametro = RegAtendimentoPs"), 6u);
  EXPECT_EQ(LinhasCom("hr = RPC_X_BAD_STUB_DATA\thr = 0X800706F7"), 3u);  // one of the factory's, two counts
  EXPECT_EQ(LinhasCom("RPC_S_PROCNUM_OUT_OF_RANGE"), 2u);

  // The object and the server live on.
  auto resposta = [&] {
    auto req = objeto.chamaRequest();
    req.setSlot(4);
    std::optional<capnp::Response<zk::Objeto::ChamaResults>> r;
    EXPECT_EQ(conexao->Chama(req, &r), S_OK);
    return r;
  }();
  EXPECT_EQ(resposta->getHr(), S_OK);
  ASSERT_EQ(resposta->getSaidas().size(), 1u);
  EXPECT_EQ(resposta->getSaidas()[0].getNumero(), 1);
  CQVComPtr<IQVUnknown> outro;
  ASSERT_EQ(conexao->CriaObjeto(CLSID_QVGE_Projeto, IID_IQVUnknown, outro.ppv()), S_OK);
  std::int32_t ok = 0;
  EXPECT_EQ(outro->KeepAlive(&ok), S_OK);
}
// A server in this process that answers what the test says: the client's
// side of answers that are not what the method gives back. (The generated
// server class inherits its virtual destructor from a virtual base, which
// the warning does not follow.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
class CRespostaDada final : public zk::Objeto::Server {
 public:
  explicit CRespostaDada(const std::vector<Valor>* pSaidas) : m_pSaidas(pSaidas) {}
  kj::Promise<void> chama(ChamaContext c) override {
    auto saidas = c.getResults().initSaidas(static_cast<unsigned>(m_pSaidas->size()));
    for (unsigned i = 0; i < m_pSaidas->size(); ++i) (*m_pSaidas)[i](saidas[i]);
    return kj::READY_NOW;
  }

 private:
  const std::vector<Valor>* m_pSaidas;
};
#pragma GCC diagnostic pop

TEST_F(Transporte, RespostaRuimEhRecusadaInteiraPeloCliente) {
  std::vector<Valor> saidas;
  CQVComPtr<IQVGE_Atendimento> a;
  ASSERT_EQ(QVCriaProxy(m_pConexao, kj::heap<CRespostaDada>(&saidas), IID_IQVGE_Atendimento,
                        IID_IQVGE_Atendimento, a.ppv()),
            S_OK);
  auto lista = Amostra<_REG_LISTA_PONTEIROS_PS>(1);
  std::string fixoLista, anexosLista;
  QVMarshal(lista, &fixoLista, &anexosLista);
  QVLibera(&lista);
  const auto zero = [](const auto& r) {
    std::remove_cvref_t<decltype(r)> z;
    QVZeraValor(&z);
    return std::memcmp(&r, &z, sizeof r) == 0;
  };
  _REG_ATENDIMENTO_PS reg;
  _REG_LISTA_PONTEIROS_PS ponteiros;
  _REG_CLIENTES_ATENDIMENTO_PS clientes;
  BSTR bs;
  auto agenda = Amostra<_REG_REL_CONSULTA_AGENDAMENTO>(5);
  const auto agendaAntes = agenda;
  const auto filtro = Zerado<_REG_FILTRO_ATENDIMENTO_PS>();

  const struct {
    const char* caso;
    std::vector<Valor> saidas;
    std::function<HRESULT()> chama;
    std::function<bool()> semEfeito;
  } kCasos[] = {
      {"sem saídas", {}, [&] { return a->LeAtendimento(1, 1, &reg); }, [&] { return zero(reg); }},
      {"número no lugar do registro", {Numero(1)}, [&] { return a->LeAtendimento(1, 1, &reg); },
       [&] { return zero(reg); }},
      {"o segundo registro ruim", {Bytes(fixoLista, anexosLista), Bytes(std::string(3, '\0'), "")},
       [&] { return a->BuscaPonteiros(filtro, &ponteiros, &clientes); },
       [&] { return zero(ponteiros) && zero(clientes); }},
      {"string de tamanho ímpar", {Texto("abc")}, [&] { return a->BuscaLeiautesAtendimento(&bs); },
       [&] { return bs == nullptr; }},
      {"entrada e saída ruim", {Numero(0)}, [&] { return a->GeraRelatorioConsultaAgendamento(&agenda); },
       [&] { return std::memcmp(&agenda, &agendaAntes, sizeof agenda) == 0; }},
  };
  for (const auto& c : kCasos) {
    SCOPED_TRACE(c.caso);
    saidas = c.saidas;
    EXPECT_EQ(c.chama(), RPC_X_BAD_STUB_DATA);
    EXPECT_TRUE(c.semEfeito());
  }
  QVLibera(&agenda);
  EXPECT_EQ(LinhasCom("\tmetodo = "), 4u);  // the count mismatch names no parameter

  // A record the callee allocates may come back as none.
  saidas = {[](zk::Valor::Builder b) { b.setNenhum(); }};
  _REG_DF_FUNCAO_GENERICAPS* saida = reinterpret_cast<_REG_DF_FUNCAO_GENERICAPS*>(1);
  EXPECT_EQ(a->FuncaoGenerica(1, Zerado<_REG_DF_FUNCAO_GENERICAPS>(), &saida), S_OK);
  EXPECT_EQ(saida, nullptr);
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
