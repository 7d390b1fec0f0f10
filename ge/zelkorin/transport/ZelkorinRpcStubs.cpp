#include "ge/zelkorin/transport/ZelkorinRpcStubs.h"

#include <array>
#include <cstring>
#include <string>
#include <tuple>

#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"

namespace {

// The limits of the running server; set once before it serves.
QVLimitesMarshal g_limites;

}  // namespace

// The server side of one client object of business interface I: a call is
// dispatched by its slot to the method of I's table, which reads the in and
// in/out parameters (refusing bad data before the object sees anything),
// calls the object with the out ones zeroed, and sends the out and in/out
// ones back only when the call succeeded. Every value is freed after the
// call, sent or not. The stub holds the client's reference; dropping the
// stub (the client released it, or its connection went) releases the
// object.
template <class I>
class TQVStub final : public zk::Objeto::Server {
 public:
  explicit TQVStub(CQVComPtr<I> objeto) : m_pObjeto(std::move(objeto)) {}

  kj::Promise<void> chama(ChamaContext c) override {
    const zk::Objeto::ChamaParams::Reader p = c.getParams();
    c.getResults().setHr(Chama(p.getSlot(), p.getEntradas(), c.getResults()));
    return kj::READY_NOW;
  }

 private:
  using Entradas = capnp::List<zk::Valor>::Reader;
  using Resultados = zk::Objeto::ChamaResults::Builder;
  using Despachante = HRESULT (*)(I*, Entradas, Resultados);

  HRESULT Chama(std::uint16_t slot, Entradas entradas, Resultados resultados) {
    // Indexed by slot - 3: IQVUnknown's methods, then the interface's own.
    static constexpr auto kDespacho = []<class... M>(std::tuple<M...>*) {
      return std::array<Despachante, sizeof...(M)>{&Despacha<M>...};
    }(static_cast<QVMetodosDe<I>*>(nullptr));
    if (slot < 3 || slot - 3u >= kDespacho.size()) QV_RETURN(HRESULT_FROM_WIN32(RPC_S_PROCNUM_OUT_OF_RANGE));
    return kDespacho[slot - 3](m_pObjeto.get(), entradas, resultados);
  }

  template <class M>
  static HRESULT Despacha(I* objeto, Entradas entradas, Resultados resultados) {
    if (entradas.size() != QVQuantasEntradas<M>) {
      QVLogaFalhaHr(QV_LOCAL, "RPC_X_BAD_STUB_DATA", RPC_X_BAD_STUB_DATA,
                    {{"metodo", std::string(M::kNome)}, {"entradas", std::to_string(entradas.size())}});
      return RPC_X_BAD_STUB_DATA;
    }
    CQVValoresChamada<M> valores;
    HRESULT hr = S_OK;
    std::uint32_t n = 0;
    // In the method's order, up to the first that does not read.
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kEntra)
        if (SUCCEEDED(hr)) hr = QVLeParametro<M, k>(entradas[n++], &valores.template Valor<k>(), g_limites);
    });
    if (FAILED(hr)) return hr;

    hr = valores.Chama(objeto);
    if (FAILED(hr)) return hr;
    auto saidas = resultados.initSaidas(QVQuantasSaidas<M>);
    n = 0;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kSai) QVEscreveValor(valores.template Valor<k>(), saidas[n++]);
    });
    return hr;
  }

  CQVComPtr<I> m_pObjeto;
};

namespace {

// The class factory one connection sees: objects of the classes registered
// in this process, each handed out as its own capability with the business
// interface it implements.
class CQVFabricaRpc final : public zk::Fabrica::Server {
 public:
  kj::Promise<void> criaObjeto(CriaObjetoContext c) override {
    c.getResults().setHr(CriaObjeto(c.getParams(), c.getResults()));
    return kj::READY_NOW;
  }

 private:
  HRESULT CriaObjeto(zk::Fabrica::CriaObjetoParams::Reader p, zk::Fabrica::CriaObjetoResults::Builder r) {
    const capnp::Data::Reader bytes = p.getClsid();
    if (bytes.size() != sizeof(CLSID)) QV_RETURN(RPC_X_BAD_STUB_DATA);
    CLSID clsid;
    std::memcpy(&clsid, bytes.begin(), sizeof clsid);
    CQVComPtr<IQVUnknown> objeto;
    QV_CHECK(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IQVUnknown, objeto.ppv()));
    const bool oferecido = [&]<class... I>(std::tuple<I...>*) {
      return (Oferece<I>(objeto.get(), r) || ...);
    }(static_cast<QVInterfacesZelkorin*>(nullptr));
    if (!oferecido) QV_RETURN(E_NOINTERFACE);
    return S_OK;
  }

  template <class I>
  static bool Oferece(IQVUnknown* objeto, zk::Fabrica::CriaObjetoResults::Builder r) {
    CQVComPtr<I> negocio;
    if (FAILED(objeto->QueryInterface(QVInterface<I>::kIid, negocio.ppv()))) return false;
    r.setObjeto(kj::heap<TQVStub<I>>(std::move(negocio)));
    r.setIid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&QVInterface<I>::kIid), sizeof(IID)));
    return true;
  }
};

}  // namespace

void QVDefineLimitesStubs(const QVLimitesMarshal& limites) { g_limites = limites; }

kj::Own<zk::Fabrica::Server> QVCriaFabricaRpc() { return kj::heap<CQVFabricaRpc>(); }
