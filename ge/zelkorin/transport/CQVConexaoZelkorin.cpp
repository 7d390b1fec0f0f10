#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"

#include <capnp/rpc-twoparty.h>
#include <csignal>
#include <cstring>
#include <kj/async-io.h>

#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/transport/ZelkorinProxies.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"

namespace {

// The event loop of this thread, shared by its connections and destroyed
// with the last of them.
std::shared_ptr<kj::AsyncIoContext> LacoDaThread() {
  thread_local std::weak_ptr<kj::AsyncIoContext> t_laco;
  if (auto p = t_laco.lock()) return p;
  // A server that goes away mid-write must not end the client.
  std::signal(SIGPIPE, SIG_IGN);
  auto p = std::make_shared<kj::AsyncIoContext>(kj::setupAsyncIo());
  t_laco = p;
  return p;
}

class CErrosTarefa final : public kj::TaskSet::ErrorHandler {
 public:
  void taskFailed(kj::Exception&&) override {}  // a lost connection is reported by the next call
};

// The class object registered in a client process for one of the server's
// classes: it makes the objects through its connection while it lasts.
class CFabricaRemota final : public TQVObjetoCom<IClassFactory> {
 public:
  CFabricaRemota(std::weak_ptr<CQVConexaoZelkorin> conexao, REFCLSID clsid)
      : TQVObjetoCom(IID_IClassFactory), m_Conexao(std::move(conexao)), m_Clsid(clsid) {}

  HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (pUnkOuter != nullptr) return CLASS_E_NOAGGREGATION;
    const std::shared_ptr<CQVConexaoZelkorin> conexao = m_Conexao.lock();
    if (!conexao) QV_RETURN(RPC_E_DISCONNECTED);
    QV_CHECK(conexao->CriaObjeto(m_Clsid, riid, ppv));
    return S_OK;
  }
  HRESULT LockServer(bool) override { return S_OK; }

 private:
  std::weak_ptr<CQVConexaoZelkorin> m_Conexao;
  const CLSID m_Clsid;
};

}  // namespace

HRESULT CQVConexaoZelkorin::Conecta(const QVOpcoesConexao& opcoes, std::shared_ptr<CQVConexaoZelkorin>* pp) {
  pp->reset();
  std::shared_ptr<CQVConexaoZelkorin> c(new CQVConexaoZelkorin());
  c->m_Opcoes = opcoes;
  c->m_pIo = LacoDaThread();
  kj::AsyncIoContext& io = *c->m_pIo;
  const std::string endereco = !opcoes.sEndereco.empty() ? opcoes.sEndereco : "unix:" + opcoes.sSocket;
  bool expirou = false;
  KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() {
                auto conecta = io.provider->getNetwork()
                                   .parseAddress(endereco)
                                   .then([](kj::Own<kj::NetworkAddress>&& addr) { return addr->connect(); })
                                   .then([](kj::Own<kj::AsyncIoStream>&& s) { return kj::Maybe<kj::Own<kj::AsyncIoStream>>(kj::mv(s)); })
                                   .exclusiveJoin(io.provider->getTimer()
                                                      .afterDelay(opcoes.ulTempoLimiteMs * kj::MILLISECONDS)
                                                      .then([]() { return kj::Maybe<kj::Own<kj::AsyncIoStream>>(); }));
                KJ_IF_MAYBE(s, conecta.wait(io.waitScope)) {
                  c->m_Stream = kj::mv(*s);
                } else {
                  expirou = true;
                }
              })) {
    QVLogaFalhaHrEm("CQVConexaoZelkorin::Conecta", "ge/zelkorin/transport/CQVConexaoZelkorin", __LINE__,
                    e->getDescription().cStr(), HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
    return HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
  }
  if (expirou) QV_RETURN(RPC_E_TIMEOUT);

  c->m_Rede = kj::heap<capnp::TwoPartyVatNetwork>(*c->m_Stream, capnp::rpc::twoparty::Side::CLIENT,
                                                  QVOpcoesLeitura(opcoes.limites));
  c->m_Rpc = kj::heap<capnp::RpcSystem<capnp::rpc::twoparty::VatId>>(capnp::makeRpcClient(*c->m_Rede));
  capnp::MallocMessageBuilder vat(8);
  auto servidor = vat.initRoot<capnp::rpc::twoparty::VatId>();
  servidor.setSide(capnp::rpc::twoparty::Side::SERVER);
  c->m_Fabrica = c->m_Rpc->bootstrap(servidor).castAs<zk::Fabrica>();
  c->m_Erros = kj::heap<CErrosTarefa>();
  c->m_Tarefas = kj::heap<kj::TaskSet>(*c->m_Erros);
  CQVConexaoZelkorin* bruto = c.get();
  c->m_Tarefas->add(c->m_Rede->onDisconnect().then([bruto]() { bruto->MarcaDesconectada(); }));
  *pp = std::move(c);
  return S_OK;
}

CQVConexaoZelkorin::~CQVConexaoZelkorin() {
  RevogaClasses();
  m_Fabrica = nullptr;
  // Lets the last releases go out before the connection closes.
  Bombeia();
}

void CQVConexaoZelkorin::MarcaDesconectada() {
  if (m_bDesconectada) return;
  m_bDesconectada = true;
  // Logged once, when the loss is found; later calls answer at once.
  (void)QV_LOGA(RPC_E_DISCONNECTED);
}

void CQVConexaoZelkorin::Bombeia() {
  if (m_pIo) m_pIo->waitScope.poll();
}

HRESULT CQVConexaoZelkorin::Espera(kj::Promise<void>&& promessa) {
  kj::AsyncIoContext& io = *m_pIo;
  // The deadline is read off the clock itself: the loop's own notion of
  // now moves only while the loop runs, and a client idle for longer than
  // the limit would otherwise time out at once.
  const kj::TimePoint prazo =
      kj::systemPreciseMonotonicClock().now() + m_Opcoes.ulTempoLimiteMs * kj::MILLISECONDS;
  bool expirou = false;
  auto comPrazo = promessa.exclusiveJoin(io.provider->getTimer().atTime(prazo).then([&expirou]() { expirou = true; }));
  KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() { comPrazo.wait(io.waitScope); })) {
    if (e->getType() == kj::Exception::Type::DISCONNECTED || m_bDesconectada) {
      MarcaDesconectada();
      return RPC_E_DISCONNECTED;
    }
    QVLogaFalhaHrEm("CQVConexaoZelkorin::Espera", "ge/zelkorin/transport/CQVConexaoZelkorin", __LINE__,
                    e->getDescription().cStr(), RPC_E_SERVERFAULT);
    return RPC_E_SERVERFAULT;
  }
  if (expirou) QV_RETURN(RPC_E_TIMEOUT);
  return S_OK;
}

HRESULT CQVConexaoZelkorin::CriaObjeto(REFCLSID clsid, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  auto req = m_Fabrica.criaObjetoRequest();
  req.setClsid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&clsid), sizeof clsid));
  std::optional<capnp::Response<zk::Fabrica::CriaObjetoResults>> resposta;
  QV_CHECK(Chama(req, &resposta));
  const HRESULT hr = resposta->getHr();
  if (FAILED(hr)) return hr;
  const capnp::Data::Reader iid = resposta->getIid();
  if (iid.size() != sizeof(IID)) QV_RETURN(RPC_X_BAD_STUB_DATA);
  IID iidNegocio;
  std::memcpy(&iidNegocio, iid.begin(), sizeof iidNegocio);
  QV_CHECK(QVCriaProxy(shared_from_this(), resposta->getObjeto(), iidNegocio, riid, ppv));
  return hr;
}

HRESULT CQVConexaoZelkorin::RegistraClasses() {
  const CLSID* classes[2] = {&CLSID_QVGE_Atendimento, &CLSID_QVGE_Projeto};
  for (int i = 0; i < 2; ++i) {
    if (m_cookies[i] != 0) continue;
    auto* fabrica = new CFabricaRemota(weak_from_this(), *classes[i]);
    const HRESULT hr = CoRegisterClassObject(*classes[i], fabrica, &m_cookies[i]);
    fabrica->Release();  // the registry holds its own reference
    QV_CHECK(hr);
  }
  return S_OK;
}

void CQVConexaoZelkorin::RevogaClasses() {
  for (std::uint32_t& cookie : m_cookies) {
    if (cookie != 0) QV_LOGA(CoRevokeClassObject(cookie));
    cookie = 0;
  }
}
