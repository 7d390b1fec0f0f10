#include "ge/zelkorin/transport/ZelkorinProxies.h"

#include <tuple>

#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"

// The client side of one object whose business interface is I: every method
// of I's table (IQVUnknown's included) is one generic call through Executa.
template <class I>
class TQVProxy : public TQVObjetoCom<I> {
 public:
  TQVProxy(std::shared_ptr<CQVConexaoZelkorin> conexao, zk::Objeto::Client cap)
      : TQVObjetoCom<I>(QVInterface<I>::kIid, IID_IQVUnknown), m_pConexao(std::move(conexao)), m_Cap(std::move(cap)) {}
  ~TQVProxy() override {
    // Dropping the capability releases the object in the server; the
    // release goes out at once.
    m_Cap.reset();
    m_pConexao->Bombeia();
  }

  QV_METODOS_IQVUNKNOWN(QV_IMPLEMENTA_METODO, IQVUnknown)

  // Method M with the caller's arguments: out values zeroed first; in and
  // in/out ones sent; on success the answer's out and in/out values are read
  // whole before any is handed to the caller, so that a call either delivers
  // every one of them or leaves the out ones zero and the in/out ones as the
  // caller passed them.
  template <class M, class... A>
  HRESULT Executa(A&... args) {
    const std::tuple<A&...> argumentos(args...);
    bool falta = false;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kDirecao == EQVDirecao::EntSai) falta = falta || std::get<k>(argumentos) == nullptr;
      if constexpr (P::kDirecao == EQVDirecao::Sai)
        if (std::get<k>(argumentos) != nullptr) QVZeraValor(std::get<k>(argumentos));
    });
    if (falta) QV_RETURN(E_POINTER);

    auto req = m_Cap->chamaRequest();
    req.setSlot(M::kSlot);
    auto entradas = req.initEntradas(QVQuantasEntradas<M>);
    std::uint32_t n = 0;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kDirecao == EQVDirecao::Ent) QVEscreveValor(std::get<k>(argumentos), entradas[n++]);
      if constexpr (P::kDirecao == EQVDirecao::EntSai) QVEscreveValor(*std::get<k>(argumentos), entradas[n++]);
    });
    std::optional<capnp::Response<zk::Objeto::ChamaResults>> r;
    QV_CHECK(m_pConexao->Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (FAILED(hr)) return hr;

    const auto saidas = r->getSaidas();
    if (saidas.size() != QVQuantasSaidas<M>) QV_RETURN(RPC_X_BAD_STUB_DATA);
    CQVValoresChamada<M> recebidos;
    HRESULT hrLe = S_OK;
    n = 0;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kSai)
        if (SUCCEEDED(hrLe)) hrLe = QVLeParametro<M, k>(saidas[n++], &recebidos.template Valor<k>(), Limites());
    });
    if (FAILED(hrLe)) return hrLe;
    QVParaCadaParametro<M>([&]<std::size_t k, class P>() {
      if constexpr (P::kSai) {
        auto* destino = std::get<k>(argumentos);
        if (destino == nullptr) return;  // an out value the caller did not ask for
        if constexpr (P::kDirecao == EQVDirecao::EntSai) QVLiberaValor(destino);
        recebidos.template Entrega<k>(destino);
      }
    });
    return hr;
  }

 private:
  const QVLimitesMarshal& Limites() const { return m_pConexao->Opcoes().limites; }

  std::shared_ptr<CQVConexaoZelkorin> m_pConexao;
  std::optional<zk::Objeto::Client> m_Cap;
};

// The proxy of each business interface: its own table on top of IQVUnknown's.
template <class I>
class CQVProxy;
#define QV_PROXY_DE(I, TABELA)                        \
  template <>                                         \
  class CQVProxy<I> final : public TQVProxy<I> {      \
   public:                                            \
    using TQVProxy<I>::TQVProxy;                      \
    TABELA(QV_IMPLEMENTA_METODO, I)                   \
  };
QV_PROXY_DE(IQVGE_Atendimento, QV_METODOS_IQVGE_ATENDIMENTO)
QV_PROXY_DE(IQVGE_Projeto, QV_METODOS_IQVGE_PROJETO)

HRESULT QVCriaProxy(const std::shared_ptr<CQVConexaoZelkorin>& conexao, zk::Objeto::Client objeto,
                    REFIID iidNegocio, REFIID riid, void** ppv) {
  *ppv = nullptr;
  IQVUnknown* proxy = nullptr;
  [&]<class... I>(std::tuple<I...>*) {
    ((proxy == nullptr && iidNegocio == QVInterface<I>::kIid ? void(proxy = new CQVProxy<I>(conexao, objeto)) : void()),
     ...);
  }(static_cast<QVInterfacesZelkorin*>(nullptr));
  if (proxy == nullptr) QV_RETURN(E_NOINTERFACE);
  const HRESULT hr = proxy->QueryInterface(riid, ppv);
  proxy->Release();  // the creator's reference; QueryInterface added the caller's
  return hr;
}
