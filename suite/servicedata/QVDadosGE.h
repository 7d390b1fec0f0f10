// The data objects of the GE module that the suite's follow-up records
// ("acompanhamento de serviços", ACM), calendar events, module settings
// and projects exchange with the server.
//
// A follow-up tracks services from opening to completion. It is a record
// of the suite, named by a REG_QVDMC (position = its pointer, month key =
// the month of its opening date); its services are entries numbered from 1
// (lIdentificador) inside it. A class entry (bClasse) stands for the title
// service of the classification the follow-up's services belong to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "df/qvlibex/QVDmc.h"
#include "df/qvlibex/QVMoeda.h"

// Reading modes of LeAcompanhamentoServico.
inline constexpr std::uint32_t GE_ACM_LER_TUDO = 0;
inline constexpr std::uint32_t GE_ACM_LER_SOMENTE_SERVICO = 1;  // the services; the header stays empty but for dmc

// Origins of a follow-up.
inline constexpr std::uint8_t kQVOrigemAcmManual = 0;
inline constexpr std::uint8_t kQVOrigemAcmWeb = 1;
inline constexpr std::uint8_t kQVOrigemAcmAtendimento = 2;  // created by a service call's integration

// Situations of a follow-up and of its services.
inline constexpr std::uint8_t kQVAcmPendente = 0;
inline constexpr std::uint8_t kQVAcmRealizado = 1;

class CQVDadosGE_ServicoAcompanhamentoServico {
 public:
  std::uint32_t lIdentificador = 0;     // inside the follow-up, from 1; 0 until written
  std::uint32_t lPonteiroServico = 0;   // the catalogue's service
  std::uint32_t lPonteiroClasse = 0;    // the title service of its classification (0: none)
  bool bClasse = false;                 // the class entry
  std::uint32_t lPonteiroExecutor = 0;  // a user
  std::uint8_t cSituacao = kQVAcmPendente;
  std::uint32_t iDataPrevista = 0;
  std::uint32_t iDataConclusao = 0;
  QVMoeda vQuantidade = 0;  // hours or units
  QVMoeda vValor = 0;       // total value
  REG_QVDMC dmcAtendimento;                     // the service call that performs it
  std::uint32_t lPonteiroServicoAtendimento = 0;  // its record in that month's service file
  std::string sDescricao;

  void SetClasse(std::uint32_t lPonteiro) { lPonteiroClasse = lPonteiro; }
  void SetPonteiroServico(std::uint32_t lPonteiro) { lPonteiroServico = lPonteiro; }
  // Turns the entry into the class entry of its title service: no executor,
  // quantity, value or call of its own.
  void PreparaParaSerClasse();
};

class CQVDadosGE_AcompanhamentoServico {
 public:
  REG_QVDMC dmc;  // its own reference; empty until inserted
  std::uint32_t lPonteiroCliente = 0;
  std::uint32_t lPonteiroFilial = 0;
  std::uint32_t iDataAbertura = 0;
  std::uint32_t iDataConclusao = 0;
  std::uint8_t cSituacao = kQVAcmPendente;
  std::uint8_t cOrigemRegistro = kQVOrigemAcmManual;
  std::int64_t i64NumeroNF = 0;
  std::uint16_t usVersaoRegistro = 0;
  QVMoeda vValorServicos = 0;  // the value of the services performed through service calls
  std::string sObservacao;
  std::vector<CQVDadosGE_ServicoAcompanhamentoServico> m_servicos;

  void SetDataAbertura(std::uint32_t iData) { iDataAbertura = iData; }
  void SetOrigemRegistro(std::uint8_t c) { cOrigemRegistro = c; }
  void SetNumeroNF(std::int64_t i64) { i64NumeroNF = i64; }
  void SetVersaoRegistro(std::uint16_t us) { usVersaoRegistro = us; }
  void RemoveTodosServicos() { m_servicos.clear(); }
  void AdicionaServicos(const std::vector<CQVDadosGE_ServicoAcompanhamentoServico>& servicos) {
    m_servicos.insert(m_servicos.end(), servicos.begin(), servicos.end());
  }
  // The non-class entry for a service of a call (not yet numbered).
  static CQVDadosGE_ServicoAcompanhamentoServico CriaNovoServicoAcompanhamento(
      std::uint32_t lPonteiroServico, std::uint32_t lPonteiroClasse, std::uint32_t lPonteiroExecutor,
      QVMoeda vQuantidade, QVMoeda vValor, std::uint32_t iDataPrevista);
  const CQVDadosGE_ServicoAcompanhamentoServico* ProcuraServico(std::uint32_t lIdentificador) const;
  // The class entry (the first), or null.
  const CQVDadosGE_ServicoAcompanhamentoServico* GetClasse() const;
};

// The integration record that ties a follow-up to the service call that
// created it; named by its own reference (position = its pointer, month
// key = the call's month).
struct CQVDadosGE_DadosIntegracaoAcompanhamentoServico {
  REG_QVDMC dmcIntegracao;
  REG_QVDMC dmcAcompanhamento;
  REG_QVDMC dmcAtendimento;
};

// The follow-up module's settings for the company (defaults when the
// company has none stored).
class CQVDadosGE_PropriedadesAcompanhamento {
 public:
  bool bPermitirAcompanhamentoClassesDiferentes = false;
  std::uint8_t cOrigemPadrao = kQVOrigemAcmAtendimento;  // origin given to follow-ups of calls
  std::uint16_t usVersaoRegistro = 1;                     // record version given to new follow-ups
  bool GetPermitirAcompanhamentoClassesDiferentes() const { return bPermitirAcompanhamentoClassesDiferentes; }
};

// The company's master settings for the module (LeMestre): its
// identification for report headings and the report options.
struct CQVDadosGE_Mestre {
  std::string sRazaoSocial;
  std::string sNomeFantasia;
  std::string sCnpj;
  std::string sInscricaoEstadual;
  std::string sEndereco;
  std::string sMunicipio;  // "Nome/UF"
  std::string sTelefone;
  std::string sEmail;
  bool bRelatoriosPorFaturamento = false;  // reports list invoices of the calls' period
};

// One calendar event of a call's appointment, per user: the calendar's and
// the event's identifiers at the calendar service.
struct CQVDadosGE_EventoAgenda {
  std::uint16_t usUsuarioEvento = 0;
  std::uint32_t lPonteiroTextoIDAgenda = 0;  // filled on reading: the event's pointer in the store
  std::uint32_t lPonteiroTextoIDEvento = 0;  // the same
  std::string sIDAgenda;
  std::string sIDEvento;
};

struct CQVDadosGE_ListaEventos {
  std::vector<CQVDadosGE_EventoAgenda> m_eventos;
};

// A project of the suite (the projects other modules keep).
struct CQVDadosGE_Projeto {
  std::uint32_t lPonteiro = 0;  // 0: new
  std::string sCodigo;
  std::string sNome;
  std::uint32_t lPonteiroCliente = 0;
  bool bInativo = false;
};
