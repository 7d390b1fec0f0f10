// T_QVUnknown<I, S>: the frame every client call passes through, over an
// interface I (derived from IQVUnknown) and the server class S (derived from
// CQVBaseParaRotinas) that does the work.
//
// Life cycle of one client object:
//
//   Created ──Inicializa_Padrao ok──▶ Initialised ──discard code──▶ Discarded
//      ▲  │                              │  ▲                          │
//      │  └──Inicializa_Padrao fails─────┘  └── Inicializa_Padrao ─────┘ (0x81080AA8)
//      └────────── failed Inicializa_Padrao leaves the server in place
//   Any state ──last Release──▶ Released (destructor; the server is
//   destroyed inside the guard and finalises its data).
//
//  1. Created (constructor): the server object is made inside the guard;
//     m_hrConstruct keeps the outcome, and a failure is one error line,
//     "m_hrConstruct". Business calls answer 0x81080A04; KeepAlive and
//     GetUltimoErro work.
//  2. Initialised (Inicializa_Padrao): the record's version, CRC-64 and
//     required fields are checked in that order, the record is copied, and
//     the server's session base connects and opens the company's data.
//  3. Every business call (ChamaNegocio) answers 0x81080A04 at once, with
//     nothing logged, timed or counted, unless the server exists and is
//     initialised; otherwise it runs the standard frame (ExecutaFrame):
//     timing, invalid-parameter handler, log scope and trace, default
//     access, structured-exception guard, exception translation, logging,
//     discard rule and usage statistics.
//  4. Discarded: a call that returned normally with a structured-exception
//     status (0x8004EAC5..0x8004EADB, 0x8004EE47) destroys the server;
//     what it held may be corrupt. The client must make a new object.
//
// The business methods themselves are the interface's method table expanded
// with QV_REPASSA_AO_SERVIDOR in the class that instantiates the frame.
//
// Invariants: no exception leaves a method of this class; the frame takes no
// lock of its own (calls on one object are serialised by the host); every
// line the frame writes for its own routines (construction, destruction,
// initialisation, generic function) names them with one spelling,
// "<template name>::<routine>", in the log, the trace and the statistics.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/QVRPCDLL/IQVUnknown.h"
#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVTranslate.h"
#include "platform/QVClock.h"
#include "platform/QVCodePage.h"
#include "suite/analytics/QVEstatisticasUso.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"

// One business method of the table, in the class that instantiates the
// frame: the standard frame around the server's method of the same name,
// under the name "Classe::Metodo" ("CQVGE_Atendimento::LeAtendimento").
#define QV_REPASSA_AO_SERVIDOR(Classe, slot, nome, ...)                                          \
  HRESULT nome(QV_PP_MAPA(QV_PARAMETRO_DECLARADO, __VA_ARGS__)) override {                       \
    return ChamaNegocio(#Classe "::" #nome, [&](auto& servidor) -> HRESULT {                      \
      return servidor.nome(QV_PP_MAPA(QV_PARAMETRO_ARGUMENTO, __VA_ARGS__));                     \
    });                                                                                           \
  }

template <class I, class S>
class T_QVUnknown : public TQVObjetoCom<I> {
 public:
  using FabricaServidor = std::function<std::unique_ptr<S>()>;

  // nomeTemplate: "T_QVUnknown<struct IQVGE_Atendimento,class
  // CGeServidorAtendimento>", the name of the frame's own routines.
  explicit T_QVUnknown(const char* nomeTemplate, FabricaServidor fabrica = {})
      : TQVObjetoCom<I>(QVInterface<I>::kIid, IID_IQVUnknown),
        m_sNomeTemplate(nomeTemplate),
        m_sNomeInicializa(m_sNomeTemplate + "::Inicializa_Padrao"),
        m_sNomeFuncaoGenerica(m_sNomeTemplate + "::FuncaoGenerica"),
        m_Perfil(this) {
    std::memset(&m_regInicializacao, 0, sizeof m_regInicializacao);
    QVContaObjeto(+1);
    m_hrConstruct = Guardado([&]() -> HRESULT {
      m_pServidor = fabrica ? fabrica() : std::make_unique<S>();
      return m_pServidor ? S_OK : E_OUTOFMEMORY;
    });
    if (FAILED(m_hrConstruct))
      QVLogaFalhaHrEm(m_sNomeTemplate + "::T_QVUnknown", kFonte, __LINE__, "m_hrConstruct", m_hrConstruct);
  }

  ~T_QVUnknown() override {
    DestroiServidor(m_sNomeTemplate + "::~T_QVUnknown");
    QVContaObjeto(-1);
  }

  // ---- IQVUnknown ----

  HRESULT Inicializa_Padrao(_REG_DF_INICIALIZAPS regps) override {
    // A refusal is logged under the routine's name, as the frame names it.
#define QV_RECUSA_INICIALIZACAO(codigo) return Recusa(codigo, #codigo, __LINE__)
    if (regps.usVersaoVireo != kQVVersaoSistema) QV_RECUSA_INICIALIZACAO(E_QVCR_VERSAO_INCOMPATIVEL);
    if (QVCrcInicializaPS(regps) != regps.uiCRC) QV_RECUSA_INICIALIZACAO(E_QVCR_CRC_INICIALIZACAO_INVALIDO);
    if (regps.szAplicativo[0] == '\0' || regps.szModuleName[0] == '\0' || regps.szArquivoFonte[0] == '\0' ||
        regps.ulLinhaFonte == 0 || regps.cControle != 'B')
      QV_RECUSA_INICIALIZACAO(E_QVCR_ESTRUTURA_INICIALIZACAO_INVALIDA);
#undef QV_RECUSA_INICIALIZACAO
    std::memcpy(&m_regInicializacao, &regps, sizeof regps);
    const HRESULT hr = ExecutaFrame(m_sNomeInicializa, [&]() -> HRESULT {
      if (!m_pServidor) return E_QVCR_OBJETO_SERVIDOR_INEXISTENTE;
      return m_pServidor->Inicializa(m_regInicializacao);
    });
    if (FAILED(hr)) std::memset(&m_regInicializacao, 0, sizeof m_regInicializacao);
    return hr;
  }

  // Writes through pbOK without a null test: a client that passes no
  // pointer has broken the interface's contract.
  HRESULT KeepAlive(std::int32_t* pbOK) override {
    *pbOK = 1;
    return S_OK;
  }

  HRESULT GetUltimoErro(_REG_DF_ERROPS* pregErrops) override {
    if (pregErrops == nullptr) return S_OK;
    std::memset(pregErrops, 0, sizeof *pregErrops);
    if (m_pServidor) m_pServidor->GetErro().CopiarPara(pregErrops);
    return S_OK;
  }

  HRESULT FuncaoGenerica(std::uint32_t ulFuncao, _REG_DF_FUNCAO_GENERICAPS regInps,
                         _REG_DF_FUNCAO_GENERICAPS** ppregOutps) override {
    return ChamaNegocio(m_sNomeFuncaoGenerica, [&](S& servidor) -> HRESULT {
      if (ulFuncao == QV_FUNCAO_GENERICA_ESTATISTICAS_USO)
        return QVRespondeEstatisticasUso(m_Estatisticas, regInps, ppregOutps);
      return servidor.FuncaoGenerica(ulFuncao, regInps, ppregOutps);
    });
  }

  // ---- what the frame holds, for the host and the tests ----

  HRESULT GetHrConstruct() const { return m_hrConstruct; }
  bool TemServidor() const { return m_pServidor != nullptr; }
  S* GetServidor() const { return m_pServidor.get(); }
  const _REG_DF_INICIALIZAPS& GetRegistroInicializacao() const { return m_regInicializacao; }
  const QVMapaEstatisticas& GetEstatisticas() const { return m_Estatisticas; }

 protected:
  // A business method: step 1 (no server, or not initialised: 0x81080A04
  // and nothing else), then the standard frame around f(server).
  template <class F>
  HRESULT ChamaNegocio(std::string_view nomeCompleto, F&& f) {
    if (!m_pServidor || !m_pServidor->EstaInicializado()) return E_QVCR_SERVIDOR_NAO_INICIALIZADO;
    return ExecutaFrame(nomeCompleto, [&]() -> HRESULT { return f(*m_pServidor); });
  }

 private:
  static constexpr const char* kFonte = "core/QVRPCDLL/T_QVUnknown";

  // The identity of the frame's log lines: the server's once it has one,
  // with the client's initialisation record for the caller's columns.
  class CPerfil final : public IQVDF_Profiler {
   public:
    explicit CPerfil(const T_QVUnknown* pFrame) : m_pFrame(pFrame) {}
    std::string GetEmpresa() const override {
      if (m_pFrame->m_pServidor && !m_pFrame->m_pServidor->GetEmpresa().empty())
        return m_pFrame->m_pServidor->GetEmpresa();
      return QVAnsiToUtf8(QVLeCampoTexto(m_pFrame->m_regInicializacao.szEmpresa));
    }
    std::uint16_t GetUsuario() const override {
      return static_cast<std::uint16_t>(m_pFrame->m_regInicializacao.ulUsuario);
    }
    std::uint32_t GetNumeroSessao() const override { return m_pFrame->m_regInicializacao.ulNumeroSessao; }
    const _REG_DF_INICIALIZAPS* GetRegistroInicializacao() const override {
      return m_pFrame->m_regInicializacao.usVersaoVireo != 0 ? &m_pFrame->m_regInicializacao : nullptr;
    }

   private:
    const T_QVUnknown* m_pFrame;
  };

  // The guard and the translation without the rest of the frame, for the
  // construction and destruction of the server object: the caller logs.
  template <class F>
  static HRESULT Guardado(F&& f, bool* pExcecao = nullptr) {
    try {
      return QVChamaComGuardaSEH(f);
    } catch (...) {
      const HRESULT hr = QVTranslateThrownExceptionToHresult();
      QVLiberaExcecaoLancada();
      if (pExcecao != nullptr) *pExcecao = true;
      return hr;
    }
  }

  HRESULT Recusa(HRESULT hr, const char* codigo, int linha) {
    QVLogaFalhaHrEm(m_sNomeInicializa, kFonte, linha, codigo, hr);
    return hr;
  }

  // Steps 2 to 10 of the standard frame.
  template <class F>
  HRESULT ExecutaFrame(std::string_view nomeCompleto, F&& f) {
    const std::int64_t inicio = QVSteadyTicks100ns();
    Sleep(0);
    CQVEscopoParametroInvalido escopoParametro(nomeCompleto);
    CQVEscopoLog escopoLog(&m_Perfil);
    const bool rastreando = QVProfilerRastreamentoLigado();
    if (rastreando) Rastreia(EQVTipoProfiler::Entrou, nomeCompleto, 0);

    const std::string empresa = m_pServidor ? m_Perfil.GetEmpresa() : std::string();
    const std::uint16_t codigo = m_pServidor ? static_cast<std::uint16_t>(m_pServidor->GetModulo()) : 0;
    bool registrouAcesso = false;
    if (m_pServidor) {
      CQVBaseParaRotinas* base = m_pServidor->GetBaseParaRotinas();
      if (base != nullptr && base->EstaInicializado()) {
        CQVBaseParaRotinas::SetAcessoDefault(base);
        registrouAcesso = true;
      }
    }

    HRESULT hr = S_OK;
    bool excecao = false;
    try {
      hr = QVChamaComGuardaSEH(f);
      if (FAILED(hr)) QVLogaFalhaHrEm(nomeCompleto, kFonte, __LINE__, "pfInSEHFuncao()", hr);
    } catch (...) {
      hr = QVTranslateThrownExceptionToHresult();
      QVLiberaExcecaoLancada();
      QVLogaFalhaHrEm(nomeCompleto, kFonte, __LINE__, "QVTranslateThrownExceptionToHresult()", hr);
      excecao = true;
    }

    if (!excecao && QVEhCodigoSEH(hr)) {
      DestroiServidor(nomeCompleto);
    } else if (FAILED(hr) && m_pServidor && m_pServidor->GetUltimoHR() != hr) {
      // The server did not say what went wrong: the client still gets the
      // status and its description from GetUltimoErro.
      m_pServidor->SetErro(hr, codigo);
    }
    // Cleared after every call (also after an exception): the pointer must
    // never outlive the call it was set for.
    if (registrouAcesso) CQVBaseParaRotinas::SetAcessoDefault(nullptr);

    const auto ms = static_cast<std::uint64_t>((QVSteadyTicks100ns() - inicio) / 10000);
    std::string classe, metodo;
    QVSeparaNomeMetodo(nomeCompleto, &classe, &metodo);
    const std::uint32_t hoje = QVHoje();
    QVAdicionaEstatistica(m_Estatisticas, empresa, hoje, classe, metodo, codigo, ms);
    QVEstatisticasProcesso().Adiciona(empresa, hoje, classe, metodo, codigo, ms);
    if (rastreando) Rastreia(EQVTipoProfiler::Saiu, nomeCompleto, static_cast<std::int64_t>(ms));
    return hr;
  }

  // Takes the server out of the frame and destroys it inside the guard. A
  // destructor that faults leaves the object unfreed: after a fault its
  // memory is not to be trusted.
  void DestroiServidor(std::string_view nome) {
    if (!m_pServidor) return;
    S* servidor = m_pServidor.release();
    bool excecao = false;
    const HRESULT hr = Guardado(
        [&]() -> HRESULT {
          delete servidor;
          return S_OK;
        },
        &excecao);
    if (excecao)
      QVLogaFalhaHrEm(nome, kFonte, __LINE__, "QVTranslateThrownExceptionToHresult()", hr);
    else if (FAILED(hr))
      QVLogaFalhaHrEm(nome, kFonte, __LINE__, "pfInSEHFuncao()", hr);
  }

  void Rastreia(EQVTipoProfiler tipo, std::string_view nome, std::int64_t ms) {
    QVRegistroProfiler reg;
    reg.tipo = tipo;
    reg.sink = &m_Perfil;
    reg.classeFuncao = nome;
    reg.duracaoMs = ms;
    QVProfilerEscreve(reg);
  }

  const std::string m_sNomeTemplate;
  const std::string m_sNomeInicializa;
  const std::string m_sNomeFuncaoGenerica;
  CPerfil m_Perfil;
  _REG_DF_INICIALIZAPS m_regInicializacao;
  std::unique_ptr<S> m_pServidor;
  HRESULT m_hrConstruct = S_OK;
  QVMapaEstatisticas m_Estatisticas;
};
