#include "ge/zelkorin/transport/ZelkorinProxies.h"

#include <atomic>
#include <cstring>

#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "platform/QVTaskMem.h"

namespace {

template <class T>
void Zera(T* p) {
  if (p != nullptr) std::memset(static_cast<void*>(p), 0, sizeof *p);
}

// An in/out record: replaced by what the server answered, freeing what the
// caller's copy owned; left as it was when the answer does not unmarshal.
template <class T>
HRESULT Substitui(zk::Registro::Reader r, T* p, const QVLimitesMarshal& limites) {
  CQVRegistroLocal<T> novo;
  QV_CHECK(QVDeRegistro(r, &novo.r, limites));
  QVLibera(p);
  std::memcpy(static_cast<void*>(p), &novo.r, sizeof *p);
  std::memset(static_cast<void*>(&novo.r), 0, sizeof novo.r);
  return S_OK;
}

template <class R>
using Resposta = std::optional<capnp::Response<R>>;

}  // namespace

// What both proxies share: the object's identity, its reference count and
// the four methods of IQVUnknown.
template <class I, class Cap>
class TQVProxy : public I {
 public:
  TQVProxy(std::shared_ptr<CQVConexaoZelkorin> conexao, Cap cap, REFIID iid)
      : m_pConexao(std::move(conexao)), m_Cap(std::move(cap)), m_Iid(iid) {}
  virtual ~TQVProxy() {
    // Dropping the capability releases the object in the server; the
    // release goes out at once.
    m_Cap.reset();
    m_pConexao->Bombeia();
  }
  TQVProxy(const TQVProxy&) = delete;
  TQVProxy& operator=(const TQVProxy&) = delete;

  HRESULT QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IQVUnknown || riid == m_Iid) {
      *ppv = static_cast<I*>(this);
      AddRef();
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  std::uint32_t AddRef() override { return ++m_cReferencias; }
  std::uint32_t Release() override {
    const std::uint32_t n = --m_cReferencias;
    if (n == 0) delete this;
    return n;
  }

  HRESULT Inicializa_Padrao(_REG_DF_INICIALIZAPS regps) override {
    auto req = Objeto().inicializaPadraoRequest();
    QVParaRegistro(regps, req.initRegps());
    Resposta<zk::QVUnknown::InicializaPadraoResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT KeepAlive(std::int32_t* pbOK) override {
    Zera(pbOK);
    auto req = Objeto().keepAliveRequest();
    Resposta<zk::QVUnknown::KeepAliveResults> r;
    QV_CHECK(Chama(req, &r));
    if (pbOK != nullptr) *pbOK = r->getBOK();
    return r->getHr();
  }

  HRESULT GetUltimoErro(_REG_DF_ERROPS* pregErrops) override {
    Zera(pregErrops);
    auto req = Objeto().getUltimoErroRequest();
    Resposta<zk::QVUnknown::GetUltimoErroResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr) && pregErrops != nullptr) QV_CHECK(QVDeRegistro(r->getErro(), pregErrops, Limites()));
    return hr;
  }

  HRESULT FuncaoGenerica(std::uint32_t ulFuncao, _REG_DF_FUNCAO_GENERICAPS regInps,
                         _REG_DF_FUNCAO_GENERICAPS** ppregOutps) override {
    if (ppregOutps != nullptr) *ppregOutps = nullptr;
    auto req = Objeto().funcaoGenericaRequest();
    req.setUlFuncao(ulFuncao);
    QVParaRegistro(regInps, req.initRegInps());
    Resposta<zk::QVUnknown::FuncaoGenericaResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (FAILED(hr) || !r->getTemSaida() || ppregOutps == nullptr) return hr;
    auto* saida = static_cast<_REG_DF_FUNCAO_GENERICAPS*>(CoTaskMemAlloc(sizeof(_REG_DF_FUNCAO_GENERICAPS)));
    if (saida == nullptr) QV_RETURN(E_OUTOFMEMORY);
    const HRESULT hrSaida = QVDeRegistro(r->getSaida(), saida, Limites());
    if (FAILED(hrSaida)) {
      CoTaskMemFree(saida);
      QV_CHECK(hrSaida);
    }
    *ppregOutps = saida;
    return hr;
  }

 protected:
  Cap& Objeto() { return *m_Cap; }
  const QVLimitesMarshal& Limites() const { return m_pConexao->Opcoes().limites; }
  template <class P, class R>
  HRESULT Chama(capnp::Request<P, R>& req, Resposta<R>* pResposta) {
    return m_pConexao->Chama(req, pResposta);
  }

 private:
  std::shared_ptr<CQVConexaoZelkorin> m_pConexao;
  std::optional<Cap> m_Cap;
  const IID m_Iid;
  std::atomic<std::uint32_t> m_cReferencias{1};
};

class CQVProxyAtendimento final : public TQVProxy<IQVGE_Atendimento, zk::Atendimento::Client> {
 public:
  using TQVProxy::TQVProxy;
  using A = zk::Atendimento;

  HRESULT BuscaPonteiros(_REG_FILTRO_ATENDIMENTO_PS RegFiltroPs, _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                         _REG_CLIENTES_ATENDIMENTO_PS* RegClientes) override {
    Zera(RegListaPonteirosPs);
    Zera(RegClientes);
    auto req = Objeto().buscaPonteirosRequest();
    QVParaRegistro(RegFiltroPs, req.initRegFiltroPs());
    Resposta<A::BuscaPonteirosResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (FAILED(hr)) return hr;
    QV_CHECK(QVDeRegistro(r->getRegListaPonteirosPs(), RegListaPonteirosPs, Limites()));
    const HRESULT hrClientes = QVDeRegistro(r->getRegClientes(), RegClientes, Limites());
    if (FAILED(hrClientes)) {
      QVLibera(RegListaPonteirosPs);
      Zera(RegListaPonteirosPs);
      QV_CHECK(hrClientes);
    }
    return hr;
  }

  HRESULT BuscaRegistros(_REG_LISTA_PONTEIROS_PS RegPonteirosPs, _REG_LISTA_REGISTROS_PS* RegRegistrosPs) override {
    Zera(RegRegistrosPs);
    auto req = Objeto().buscaRegistrosRequest();
    QVParaRegistro(RegPonteirosPs, req.initRegPonteirosPs());
    Resposta<A::BuscaRegistrosResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegRegistrosPs(), RegRegistrosPs, Limites()));
    return hr;
  }

  HRESULT BuscaPonteirosAgenda(_REG_FILTRO_AGENDA_PS RegFiltroPs,
                               _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs) override {
    Zera(RegListaPonteirosPs);
    auto req = Objeto().buscaPonteirosAgendaRequest();
    QVParaRegistro(RegFiltroPs, req.initRegFiltroPs());
    Resposta<A::BuscaPonteirosAgendaResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegListaPonteirosPs(), RegListaPonteirosPs, Limites()));
    return hr;
  }

  HRESULT BuscaRegistrosAgenda(_REG_LISTA_PONTEIROS_AGENDA RegPonteiros,
                               _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs) override {
    Zera(RegListaServicosPs);
    auto req = Objeto().buscaRegistrosAgendaRequest();
    QVParaRegistro(RegPonteiros, req.initRegPonteiros());
    Resposta<A::BuscaRegistrosAgendaResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegListaServicosPs(), RegListaServicosPs, Limites()));
    return hr;
  }

  HRESULT LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento) override {
    Zera(RegAtendimento);
    auto req = Objeto().leAtendimentoRequest();
    req.setIMA(iMA);
    req.setLPosicao(lPosicao);
    Resposta<A::LeAtendimentoResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegAtendimento(), RegAtendimento, Limites()));
    return hr;
  }

  HRESULT LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao,
                             _REG_ATENDIMENTO_PS* RegAtendimento) override {
    Zera(RegAtendimento);
    auto req = Objeto().leAtendimentoLightRequest();
    req.setIMA(iMA);
    req.setLPosicao(lPosicao);
    Resposta<A::LeAtendimentoLightResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegAtendimento(), RegAtendimento, Limites()));
    return hr;
  }

  HRESULT GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS RegAtendimentoPs,
                           std::uint32_t* lPosicaoGravada) override {
    Zera(lPosicaoGravada);
    auto req = Objeto().gravaAtendimentoRequest();
    req.setIMA(iMA);
    req.setLPosicao(lPosicao);
    QVParaRegistro(RegAtendimentoPs, req.initRegAtendimentoPs());
    Resposta<A::GravaAtendimentoResults> r;
    QV_CHECK(Chama(req, &r));
    if (lPosicaoGravada != nullptr) *lPosicaoGravada = r->getLPosicaoGravada();
    return r->getHr();
  }

  HRESULT LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t dwFlags) override {
    Zera(RegPropriedadesPs);
    auto req = Objeto().lePropriedadesRequest();
    req.setDwFlags(dwFlags);
    Resposta<A::LePropriedadesResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegPropriedadesPs(), RegPropriedadesPs, Limites()));
    return hr;
  }

  HRESULT GravaPropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS RegPropriedadesPs, std::uint32_t dwFlags) override {
    auto req = Objeto().gravaPropriedadesRequest();
    QVParaRegistro(RegPropriedadesPs, req.initRegPropriedadesPs());
    req.setDwFlags(dwFlags);
    Resposta<A::GravaPropriedadesResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT BuscaLeiautesAtendimento(BSTR* bsListaLeiautes) override {
    auto req = Objeto().buscaLeiautesAtendimentoRequest();
    return Lista(req, bsListaLeiautes);
  }
  HRESULT BuscaLeiautesAtendimentoDFCLAY(BSTR* bsListaLeiautes) override {
    auto req = Objeto().buscaLeiautesAtendimentoDFCLAYRequest();
    return Lista(req, bsListaLeiautes);
  }
  HRESULT BuscaLeiautesAtendimentoDFCMOD(BSTR* bsListaLeiautes) override {
    auto req = Objeto().buscaLeiautesAtendimentoDFCMODRequest();
    return Lista(req, bsListaLeiautes);
  }

  HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento,
                                       std::int32_t* pbNumeroNaoDuplicado) override {
    Zera(pbNumeroNaoDuplicado);
    auto req = Objeto().consistirNumeroAtendimentoPSRequest();
    req.setLNumeroAtendimento(lNumeroAtendimento);
    Resposta<A::ConsistirNumeroAtendimentoPSResults> r;
    QV_CHECK(Chama(req, &r));
    if (pbNumeroNaoDuplicado != nullptr) *pbNumeroNaoDuplicado = r->getPbNumeroNaoDuplicado();
    return r->getHr();
  }

  HRESULT GeraRelatorioAgrupamento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorio,
                                   std::uint8_t cTipoAgrupamento) override {
    auto req = Objeto().geraRelatorioAgrupamentoRequest();
    QVParaRegistro(RegRelatorio, req.initRegRelatorio());
    req.setCTipoAgrupamento(cTipoAgrupamento);
    Resposta<A::GeraRelatorioAgrupamentoResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT GeraRelatorioPeriodo(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) override {
    auto req = Objeto().geraRelatorioPeriodoRequest();
    QVParaRegistro(RegRelatorioPs, req.initRegRelatorioPs());
    Resposta<A::GeraRelatorioPeriodoResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT GeraRelatorioAtendimento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) override {
    auto req = Objeto().geraRelatorioAtendimentoRequest();
    QVParaRegistro(RegRelatorioPs, req.initRegRelatorioPs());
    Resposta<A::GeraRelatorioAtendimentoResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT GeraRelatorioControleHoras(_REG_FILTRO_REL_CONTROLE_HORAS RegFiltro) override {
    auto req = Objeto().geraRelatorioControleHorasRequest();
    QVParaRegistro(RegFiltro, req.initRegFiltro());
    Resposta<A::GeraRelatorioControleHorasResults> r;
    QV_CHECK(Chama(req, &r));
    return r->getHr();
  }

  HRESULT GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* regRelConsultaAgendamento) override {
    if (regRelConsultaAgendamento == nullptr) QV_RETURN(E_POINTER);
    auto req = Objeto().geraRelatorioConsultaAgendamentoRequest();
    QVParaRegistro(*regRelConsultaAgendamento, req.initRegRelConsultaAgendamento());
    Resposta<A::GeraRelatorioConsultaAgendamentoResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr))
      QV_CHECK(Substitui(r->getRegRelConsultaAgendamento(), regRelConsultaAgendamento, Limites()));
    return hr;
  }

 private:
  // The three layout lists.
  template <class P, class R>
  HRESULT Lista(capnp::Request<P, R>& req, BSTR* pbs) {
    if (pbs != nullptr) *pbs = nullptr;
    Resposta<R> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r.value().getHr();
    if (SUCCEEDED(hr) && pbs != nullptr) QV_CHECK(QVDeBstr(r.value().getBsListaLeiautes(), pbs, Limites()));
    return hr;
  }
};

class CQVProxyProjeto final : public TQVProxy<IQVGE_Projeto, zk::Projeto::Client> {
 public:
  using TQVProxy::TQVProxy;
  using P = zk::Projeto;

  HRESULT BuscaPonteiros(_REG_FILTRO_PROJETO_PS RegFiltro, _REG_PTR_PROJETO_PS* pRegPonteiros) override {
    Zera(pRegPonteiros);
    auto req = Objeto().buscaPonteirosRequest();
    QVParaRegistro(RegFiltro, req.initRegFiltro());
    Resposta<P::BuscaPonteirosResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getPRegPonteiros(), pRegPonteiros, Limites()));
    return hr;
  }

  HRESULT BuscaRegistros(_REG_PTR_PROJETO_PS RegPonteiros, _REG_LISTA_PROJETOS_PS* pRegLista) override {
    Zera(pRegLista);
    auto req = Objeto().buscaRegistrosRequest();
    QVParaRegistro(RegPonteiros, req.initRegPonteiros());
    Resposta<P::BuscaRegistrosResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getPRegLista(), pRegLista, Limites()));
    return hr;
  }

  HRESULT LeRegistro(std::uint32_t lPtr, _REG_PROJETO_ATENDIMENTO_PS* regps) override {
    Zera(regps);
    auto req = Objeto().leRegistroRequest();
    req.setLPtr(lPtr);
    Resposta<P::LeRegistroResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(QVDeRegistro(r->getRegps(), regps, Limites()));
    return hr;
  }

  HRESULT Grava(_REG_PROJETO_ATENDIMENTO_PS* regProjeto) override {
    if (regProjeto == nullptr) QV_RETURN(E_POINTER);
    auto req = Objeto().gravaRequest();
    QVParaRegistro(*regProjeto, req.initRegProjeto());
    Resposta<P::GravaResults> r;
    QV_CHECK(Chama(req, &r));
    const HRESULT hr = r->getHr();
    if (SUCCEEDED(hr)) QV_CHECK(Substitui(r->getRegProjeto(), regProjeto, Limites()));
    return hr;
  }
};

HRESULT QVCriaProxy(const std::shared_ptr<CQVConexaoZelkorin>& conexao, zk::QVUnknown::Client objeto,
                    REFIID iidNegocio, REFIID riid, void** ppv) {
  *ppv = nullptr;
  IQVUnknown* proxy = nullptr;
  if (iidNegocio == IID_IQVGE_Atendimento) {
    proxy = new CQVProxyAtendimento(conexao, objeto.castAs<zk::Atendimento>(), iidNegocio);
  } else if (iidNegocio == IID_IQVGE_Projeto) {
    proxy = new CQVProxyProjeto(conexao, objeto.castAs<zk::Projeto>(), iidNegocio);
  } else {
    QV_RETURN(E_NOINTERFACE);
  }
  const HRESULT hr = proxy->QueryInterface(riid, ppv);
  proxy->Release();  // the creator's reference; QueryInterface added the caller's
  return hr;
}
