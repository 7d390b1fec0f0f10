#include "ge/zelkorin/transport/ZelkorinRpcStubs.h"

#include <cstring>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "platform/QVTaskMem.h"

namespace {

// The limits of the running server; set once before it serves.
QVLimitesMarshal g_limites;

const QVLimitesMarshal& Limites() { return g_limites; }

// One capnp method: the status of its HRESULT twin goes in the answer.
#define QV_ATENDE(Interface, metodo, Metodo)                              \
  kj::Promise<void> metodo(zk::Interface::Server::Metodo##Context c) override { \
    c.getResults().setHr(Metodo(c.getParams(), c.getResults()));          \
    return kj::READY_NOW;                                                 \
  }

}  // namespace

// The server side of one client object: each method receives the call's
// records (refusing bad data before the object sees it), calls the object
// and sends back what it answered: the out records only when the call
// succeeded. The stub holds the client's reference; dropping the stub (the
// client released it, or its connection went) releases the object.
template <class ServidorCapnp, class I>
class TQVStub : public ServidorCapnp {
 public:
  explicit TQVStub(CQVComPtr<I> objeto) : m_pObjeto(std::move(objeto)) {}

  QV_ATENDE(QVUnknown, inicializaPadrao, InicializaPadrao)
  QV_ATENDE(QVUnknown, keepAlive, KeepAlive)
  QV_ATENDE(QVUnknown, getUltimoErro, GetUltimoErro)
  QV_ATENDE(QVUnknown, funcaoGenerica, FuncaoGenerica)

 protected:
  I* Objeto() const { return m_pObjeto.get(); }

 private:
  HRESULT InicializaPadrao(zk::QVUnknown::InicializaPadraoParams::Reader p,
                           zk::QVUnknown::InicializaPadraoResults::Builder) {
    CQVRegistroLocal<_REG_DF_INICIALIZAPS> reg;
    QV_CHECK(QVDeRegistro(p.getRegps(), &reg.r, Limites()));
    return Objeto()->Inicializa_Padrao(reg.r);
  }

  HRESULT KeepAlive(zk::QVUnknown::KeepAliveParams::Reader, zk::QVUnknown::KeepAliveResults::Builder r) {
    std::int32_t bOK = 0;
    const HRESULT hr = Objeto()->KeepAlive(&bOK);
    r.setBOK(bOK);
    return hr;
  }

  HRESULT GetUltimoErro(zk::QVUnknown::GetUltimoErroParams::Reader, zk::QVUnknown::GetUltimoErroResults::Builder r) {
    CQVRegistroLocal<_REG_DF_ERROPS> erro;
    const HRESULT hr = Objeto()->GetUltimoErro(&erro.r);
    if (SUCCEEDED(hr)) QVParaRegistro(erro.r, r.initErro());
    return hr;
  }

  HRESULT FuncaoGenerica(zk::QVUnknown::FuncaoGenericaParams::Reader p,
                         zk::QVUnknown::FuncaoGenericaResults::Builder r) {
    CQVRegistroLocal<_REG_DF_FUNCAO_GENERICAPS> entrada;
    QV_CHECK(QVDeRegistro(p.getRegInps(), &entrada.r, Limites()));
    _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
    const HRESULT hr = Objeto()->FuncaoGenerica(p.getUlFuncao(), entrada.r, &saida);
    if (saida != nullptr) {
      if (SUCCEEDED(hr)) {
        r.setTemSaida(true);
        QVParaRegistro(*saida, r.initSaida());
      }
      QVLibera(saida);
      CoTaskMemFree(saida);
    }
    return hr;
  }

  CQVComPtr<I> m_pObjeto;
};

class CQVStubAtendimento final : public TQVStub<zk::Atendimento::Server, IQVGE_Atendimento> {
 public:
  using TQVStub::TQVStub;

  QV_ATENDE(Atendimento, buscaPonteiros, BuscaPonteiros)
  QV_ATENDE(Atendimento, buscaRegistros, BuscaRegistros)
  QV_ATENDE(Atendimento, buscaPonteirosAgenda, BuscaPonteirosAgenda)
  QV_ATENDE(Atendimento, buscaRegistrosAgenda, BuscaRegistrosAgenda)
  QV_ATENDE(Atendimento, leAtendimento, LeAtendimento)
  QV_ATENDE(Atendimento, leAtendimentoLight, LeAtendimentoLight)
  QV_ATENDE(Atendimento, gravaAtendimento, GravaAtendimento)
  QV_ATENDE(Atendimento, lePropriedades, LePropriedades)
  QV_ATENDE(Atendimento, gravaPropriedades, GravaPropriedades)
  QV_ATENDE(Atendimento, buscaLeiautesAtendimento, BuscaLeiautesAtendimento)
  QV_ATENDE(Atendimento, buscaLeiautesAtendimentoDFCLAY, BuscaLeiautesAtendimentoDFCLAY)
  QV_ATENDE(Atendimento, buscaLeiautesAtendimentoDFCMOD, BuscaLeiautesAtendimentoDFCMOD)
  QV_ATENDE(Atendimento, consistirNumeroAtendimentoPS, ConsistirNumeroAtendimentoPS)
  QV_ATENDE(Atendimento, geraRelatorioAgrupamento, GeraRelatorioAgrupamento)
  QV_ATENDE(Atendimento, geraRelatorioPeriodo, GeraRelatorioPeriodo)
  QV_ATENDE(Atendimento, geraRelatorioAtendimento, GeraRelatorioAtendimento)
  QV_ATENDE(Atendimento, geraRelatorioControleHoras, GeraRelatorioControleHoras)
  QV_ATENDE(Atendimento, geraRelatorioConsultaAgendamento, GeraRelatorioConsultaAgendamento)

 private:
  using A = zk::Atendimento;

  HRESULT BuscaPonteiros(A::BuscaPonteirosParams::Reader p, A::BuscaPonteirosResults::Builder r) {
    CQVRegistroLocal<_REG_FILTRO_ATENDIMENTO_PS> filtro;
    QV_CHECK(QVDeRegistro(p.getRegFiltroPs(), &filtro.r, Limites()));
    CQVRegistroLocal<_REG_LISTA_PONTEIROS_PS> ponteiros;
    CQVRegistroLocal<_REG_CLIENTES_ATENDIMENTO_PS> clientes;
    const HRESULT hr = Objeto()->BuscaPonteiros(filtro.r, &ponteiros.r, &clientes.r);
    if (SUCCEEDED(hr)) {
      QVParaRegistro(ponteiros.r, r.initRegListaPonteirosPs());
      QVParaRegistro(clientes.r, r.initRegClientes());
    }
    return hr;
  }

  HRESULT BuscaRegistros(A::BuscaRegistrosParams::Reader p, A::BuscaRegistrosResults::Builder r) {
    CQVRegistroLocal<_REG_LISTA_PONTEIROS_PS> ponteiros;
    QV_CHECK(QVDeRegistro(p.getRegPonteirosPs(), &ponteiros.r, Limites()));
    CQVRegistroLocal<_REG_LISTA_REGISTROS_PS> registros;
    const HRESULT hr = Objeto()->BuscaRegistros(ponteiros.r, &registros.r);
    if (SUCCEEDED(hr)) QVParaRegistro(registros.r, r.initRegRegistrosPs());
    return hr;
  }

  HRESULT BuscaPonteirosAgenda(A::BuscaPonteirosAgendaParams::Reader p, A::BuscaPonteirosAgendaResults::Builder r) {
    CQVRegistroLocal<_REG_FILTRO_AGENDA_PS> filtro;
    QV_CHECK(QVDeRegistro(p.getRegFiltroPs(), &filtro.r, Limites()));
    CQVRegistroLocal<_REG_LISTA_PONTEIROS_AGENDA> ponteiros;
    const HRESULT hr = Objeto()->BuscaPonteirosAgenda(filtro.r, &ponteiros.r);
    if (SUCCEEDED(hr)) QVParaRegistro(ponteiros.r, r.initRegListaPonteirosPs());
    return hr;
  }

  HRESULT BuscaRegistrosAgenda(A::BuscaRegistrosAgendaParams::Reader p, A::BuscaRegistrosAgendaResults::Builder r) {
    CQVRegistroLocal<_REG_LISTA_PONTEIROS_AGENDA> ponteiros;
    QV_CHECK(QVDeRegistro(p.getRegPonteiros(), &ponteiros.r, Limites()));
    CQVRegistroLocal<_REG_LISTA_SERVICOS_AGENDA_PS> servicos;
    const HRESULT hr = Objeto()->BuscaRegistrosAgenda(ponteiros.r, &servicos.r);
    if (SUCCEEDED(hr)) QVParaRegistro(servicos.r, r.initRegListaServicosPs());
    return hr;
  }

  HRESULT LeAtendimento(A::LeAtendimentoParams::Reader p, A::LeAtendimentoResults::Builder r) {
    CQVRegistroLocal<_REG_ATENDIMENTO_PS> reg;
    const HRESULT hr = Objeto()->LeAtendimento(p.getIMA(), p.getLPosicao(), &reg.r);
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegAtendimento());
    return hr;
  }

  HRESULT LeAtendimentoLight(A::LeAtendimentoLightParams::Reader p, A::LeAtendimentoLightResults::Builder r) {
    CQVRegistroLocal<_REG_ATENDIMENTO_PS> reg;
    const HRESULT hr = Objeto()->LeAtendimentoLight(p.getIMA(), p.getLPosicao(), &reg.r);
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegAtendimento());
    return hr;
  }

  HRESULT GravaAtendimento(A::GravaAtendimentoParams::Reader p, A::GravaAtendimentoResults::Builder r) {
    CQVRegistroLocal<_REG_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegAtendimentoPs(), &reg.r, Limites()));
    std::uint32_t lPosicaoGravada = 0;
    const HRESULT hr = Objeto()->GravaAtendimento(p.getIMA(), p.getLPosicao(), reg.r, &lPosicaoGravada);
    r.setLPosicaoGravada(lPosicaoGravada);
    return hr;
  }

  HRESULT LePropriedades(A::LePropriedadesParams::Reader p, A::LePropriedadesResults::Builder r) {
    CQVRegistroLocal<_REG_PROPRIEDADES_ATENDIMENTO_PS> reg;
    const HRESULT hr = Objeto()->LePropriedades(&reg.r, p.getDwFlags());
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegPropriedadesPs());
    return hr;
  }

  HRESULT GravaPropriedades(A::GravaPropriedadesParams::Reader p, A::GravaPropriedadesResults::Builder) {
    CQVRegistroLocal<_REG_PROPRIEDADES_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegPropriedadesPs(), &reg.r, Limites()));
    return Objeto()->GravaPropriedades(reg.r, p.getDwFlags());
  }

  // The three layout lists: the string goes back when the call succeeded.
  template <class R>
  static HRESULT DevolveLista(HRESULT hr, BSTR bs, R r) {
    if (SUCCEEDED(hr)) r.setBsListaLeiautes(QVDataDeBstr(bs));
    SysFreeString(bs);
    return hr;
  }

  HRESULT BuscaLeiautesAtendimento(A::BuscaLeiautesAtendimentoParams::Reader,
                                   A::BuscaLeiautesAtendimentoResults::Builder r) {
    BSTR bs = nullptr;
    const HRESULT hr = Objeto()->BuscaLeiautesAtendimento(&bs);
    return DevolveLista(hr, bs, r);
  }

  HRESULT BuscaLeiautesAtendimentoDFCLAY(A::BuscaLeiautesAtendimentoDFCLAYParams::Reader,
                                         A::BuscaLeiautesAtendimentoDFCLAYResults::Builder r) {
    BSTR bs = nullptr;
    const HRESULT hr = Objeto()->BuscaLeiautesAtendimentoDFCLAY(&bs);
    return DevolveLista(hr, bs, r);
  }

  HRESULT BuscaLeiautesAtendimentoDFCMOD(A::BuscaLeiautesAtendimentoDFCMODParams::Reader,
                                         A::BuscaLeiautesAtendimentoDFCMODResults::Builder r) {
    BSTR bs = nullptr;
    const HRESULT hr = Objeto()->BuscaLeiautesAtendimentoDFCMOD(&bs);
    return DevolveLista(hr, bs, r);
  }

  HRESULT ConsistirNumeroAtendimentoPS(A::ConsistirNumeroAtendimentoPSParams::Reader p,
                                       A::ConsistirNumeroAtendimentoPSResults::Builder r) {
    std::int32_t bNaoDuplicado = 0;
    const HRESULT hr = Objeto()->ConsistirNumeroAtendimentoPS(p.getLNumeroAtendimento(), &bNaoDuplicado);
    r.setPbNumeroNaoDuplicado(bNaoDuplicado);
    return hr;
  }

  HRESULT GeraRelatorioAgrupamento(A::GeraRelatorioAgrupamentoParams::Reader p,
                                   A::GeraRelatorioAgrupamentoResults::Builder) {
    CQVRegistroLocal<_REG_RELATORIO_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegRelatorio(), &reg.r, Limites()));
    return Objeto()->GeraRelatorioAgrupamento(reg.r, p.getCTipoAgrupamento());
  }

  HRESULT GeraRelatorioPeriodo(A::GeraRelatorioPeriodoParams::Reader p, A::GeraRelatorioPeriodoResults::Builder) {
    CQVRegistroLocal<_REG_RELATORIO_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegRelatorioPs(), &reg.r, Limites()));
    return Objeto()->GeraRelatorioPeriodo(reg.r);
  }

  HRESULT GeraRelatorioAtendimento(A::GeraRelatorioAtendimentoParams::Reader p,
                                   A::GeraRelatorioAtendimentoResults::Builder) {
    CQVRegistroLocal<_REG_RELATORIO_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegRelatorioPs(), &reg.r, Limites()));
    return Objeto()->GeraRelatorioAtendimento(reg.r);
  }

  HRESULT GeraRelatorioControleHoras(A::GeraRelatorioControleHorasParams::Reader p,
                                     A::GeraRelatorioControleHorasResults::Builder) {
    CQVRegistroLocal<_REG_FILTRO_REL_CONTROLE_HORAS> reg;
    QV_CHECK(QVDeRegistro(p.getRegFiltro(), &reg.r, Limites()));
    return Objeto()->GeraRelatorioControleHoras(reg.r);
  }

  HRESULT GeraRelatorioConsultaAgendamento(A::GeraRelatorioConsultaAgendamentoParams::Reader p,
                                           A::GeraRelatorioConsultaAgendamentoResults::Builder r) {
    CQVRegistroLocal<_REG_REL_CONSULTA_AGENDAMENTO> reg;
    QV_CHECK(QVDeRegistro(p.getRegRelConsultaAgendamento(), &reg.r, Limites()));
    const HRESULT hr = Objeto()->GeraRelatorioConsultaAgendamento(&reg.r);
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegRelConsultaAgendamento());
    return hr;
  }
};

class CQVStubProjeto final : public TQVStub<zk::Projeto::Server, IQVGE_Projeto> {
 public:
  using TQVStub::TQVStub;

  QV_ATENDE(Projeto, buscaPonteiros, BuscaPonteiros)
  QV_ATENDE(Projeto, buscaRegistros, BuscaRegistros)
  QV_ATENDE(Projeto, leRegistro, LeRegistro)
  QV_ATENDE(Projeto, grava, Grava)

 private:
  using P = zk::Projeto;

  HRESULT BuscaPonteiros(P::BuscaPonteirosParams::Reader p, P::BuscaPonteirosResults::Builder r) {
    CQVRegistroLocal<_REG_FILTRO_PROJETO_PS> filtro;
    QV_CHECK(QVDeRegistro(p.getRegFiltro(), &filtro.r, Limites()));
    CQVRegistroLocal<_REG_PTR_PROJETO_PS> ponteiros;
    const HRESULT hr = Objeto()->BuscaPonteiros(filtro.r, &ponteiros.r);
    if (SUCCEEDED(hr)) QVParaRegistro(ponteiros.r, r.initPRegPonteiros());
    return hr;
  }

  HRESULT BuscaRegistros(P::BuscaRegistrosParams::Reader p, P::BuscaRegistrosResults::Builder r) {
    CQVRegistroLocal<_REG_PTR_PROJETO_PS> ponteiros;
    QV_CHECK(QVDeRegistro(p.getRegPonteiros(), &ponteiros.r, Limites()));
    CQVRegistroLocal<_REG_LISTA_PROJETOS_PS> lista;
    const HRESULT hr = Objeto()->BuscaRegistros(ponteiros.r, &lista.r);
    if (SUCCEEDED(hr)) QVParaRegistro(lista.r, r.initPRegLista());
    return hr;
  }

  HRESULT LeRegistro(P::LeRegistroParams::Reader p, P::LeRegistroResults::Builder r) {
    CQVRegistroLocal<_REG_PROJETO_ATENDIMENTO_PS> reg;
    const HRESULT hr = Objeto()->LeRegistro(p.getLPtr(), &reg.r);
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegps());
    return hr;
  }

  HRESULT Grava(P::GravaParams::Reader p, P::GravaResults::Builder r) {
    CQVRegistroLocal<_REG_PROJETO_ATENDIMENTO_PS> reg;
    QV_CHECK(QVDeRegistro(p.getRegProjeto(), &reg.r, Limites()));
    const HRESULT hr = Objeto()->Grava(&reg.r);
    if (SUCCEEDED(hr)) QVParaRegistro(reg.r, r.initRegProjeto());
    return hr;
  }
};

// The class factory one connection sees: objects of the classes registered
// in this process, each handed out as its own capability.
class CQVFabricaRpc final : public zk::Fabrica::Server {
 public:
  QV_ATENDE(Fabrica, criaObjeto, CriaObjeto)

 private:
  HRESULT CriaObjeto(zk::Fabrica::CriaObjetoParams::Reader p, zk::Fabrica::CriaObjetoResults::Builder r) {
    const capnp::Data::Reader bytes = p.getClsid();
    if (bytes.size() != sizeof(CLSID)) QV_RETURN(RPC_X_BAD_STUB_DATA);
    CLSID clsid;
    std::memcpy(&clsid, bytes.begin(), sizeof clsid);
    CQVComPtr<IQVUnknown> objeto;
    QV_CHECK(CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IQVUnknown, objeto.ppv()));
    CQVComPtr<IQVGE_Atendimento> atendimento;
    CQVComPtr<IQVGE_Projeto> projeto;
    if (SUCCEEDED(objeto->QueryInterface(IID_IQVGE_Atendimento, atendimento.ppv()))) {
      r.setObjeto(kj::heap<CQVStubAtendimento>(std::move(atendimento)));
      r.setIid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&IID_IQVGE_Atendimento), sizeof(IID)));
    } else if (SUCCEEDED(objeto->QueryInterface(IID_IQVGE_Projeto, projeto.ppv()))) {
      r.setObjeto(kj::heap<CQVStubProjeto>(std::move(projeto)));
      r.setIid(capnp::Data::Reader(reinterpret_cast<const kj::byte*>(&IID_IQVGE_Projeto), sizeof(IID)));
    } else {
      QV_RETURN(E_NOINTERFACE);
    }
    return S_OK;
  }
};

void QVDefineLimitesStubs(const QVLimitesMarshal& limites) { g_limites = limites; }

kj::Own<zk::Fabrica::Server> QVCriaFabricaRpc() { return kj::heap<CQVFabricaRpc>(); }
