// The technical-service server: one per client object of QVGE_Atendimento.
// It connects the client's session to the company's service-call database
// (CGeServidorAtendimentoDatabase, shared by every object of the company in
// the process) and answers the business methods of the interface (the frame
// in CQVGE_Atendimento calls the method of the same name). Business methods
// are virtual so that a server can be stood in for in tests of the frame.
//
// A stored call is a tree: the call record of its month's call file, and
// below it services (with sessions, withholdings and their deductions,
// EFD-REINF data and its judicial processes, classifications and their
// management shares), expenses (with PIS/COFINS data and classifications),
// representatives, classifications, texts, tax records for the sum of the
// invoice items, calendar events (kept by the suite) and follow-up
// references (the month's group member). Reading assembles the tree into
// _REG_ATENDIMENTO_PS; writing stores it, children before parents, the call
// record last. How wire records map to stored ones: docs/stored-layouts.md;
// the rules of positions and lists: docs/atendimento.md.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "core/qvdatabase/QVDataBaseFacade.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"
#include "ge/zelkorin/atendimento/CGeServidorAtendimentoDatabase.h"
#include "ge/zelkorin/atendimento/CQVIndiceNumeros.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "suite/servicedata/QVDadosGE.h"

class CGeServidorAtendimento
    : public CQVDataBaseFacade<CQVDataBase_GE_AtendimentoTecnico, CQVBaseParaRotinas> {
 public:
  CGeServidorAtendimento() = default;
  ~CGeServidorAtendimento() override;

  std::uint32_t GetModulo() const override { return QV_GE; }
  // The company's data directory for the module (set by OnInicializa).
  const std::string& GetDiretorioDados() const { return m_sDiretorioDados; }

  // The business methods, one per line of the interface's table
  // (ZelkorinInterfaces.h).
  QV_METODOS_IQVGE_ATENDIMENTO(QV_DECLARA_METODO_SERVIDOR, CGeServidorAtendimento)

 protected:
  HRESULT OnInicializa() override;
  // Brings the company's files to the current layouts before the database
  // opens (once per company and process, under the facade's lock).
  HRESULT ExecutaConversao() override;
  // The migration of a company whose files are of an older version
  // (usVersao < 2). Not available in this server: it answers
  // E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO with one error line and
  // leaves every file as it is.
  [[nodiscard]] virtual HRESULT ConverteVersaoAnterior(std::uint16_t usVersao);

  // ---- reading (each reads its own record first, then its children) ----
  // The call at a position of the current month's call file, converted;
  // with bCompleto its whole tree (LeAtendimento below), else the record only.
  [[nodiscard]] HRESULT LeAtendimentoArquivo(std::uint32_t lPosicao, _REG_ATENDIMENTO_PS& atendimento,
                                             bool bCompleto, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Fills the sub-records of a call whose record was converted into
  // atendimento (counts and first positions set). bEventos: also the
  // calendar events of the suite.
  [[nodiscard]] HRESULT LeAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB, bool bEventos = true);
  [[nodiscard]] HRESULT LeServicosAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeSessoesServico(_REG_SERVICO_ATENDIMENTO_PS& servico,
                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeDespesasAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeRepresentantes(_REG_ATENDIMENTO_PS& atendimento,
                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // A list of classifications: count and first position in, array out.
  [[nodiscard]] HRESULT LeListaClassificacoes(std::uint32_t lQuantidade, std::uint32_t lPonteiro,
                                              _REG_CLASSIFICACAO_GE_PS*& pClassificacoes,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeClassificacao(std::uint32_t lPosicao, _REG_CLASSIFICACAO_GE_PS& classificacao,
                                        CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeGerencial(std::uint32_t lPosicao, _REG_GERENCIAL_GE_PS& gerencial,
                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Position 0: no record (the wire record stays empty).
  [[nodiscard]] HRESULT LeRetencoes(std::uint32_t lPosicao, _REG_RETENCOES_PS& retencoes,
                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeDeducoes(_REG_RETENCOES_PS& retencoes, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LePisCofins(std::uint32_t lPosicao, _REG_PIS_COFINS_GE_PS& pisCofins,
                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeEFD_REINF(std::uint32_t lPosicao, tagREG_EFD_REINF_ITENS_NFPS& efd,
                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT LeEFD_REINFProcJur(std::uint32_t lPonteiro, std::uint16_t iQuantidade,
                                           tagREG_EFD_PROCESSO_JURIDICO_NFPS*& pProcessos,
                                           CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The call's follow-up references of a month (its group member).
  [[nodiscard]] HRESULT LePonteirosIntegracaoACM(std::uint64_t uiChaveArquivo, _REG_ATENDIMENTO_PS& atendimento);
  // A text of the call text file into a system string (position 0: none).
  [[nodiscard]] HRESULT LeString(std::uint32_t lPonteiro, BSTR& bs, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  // ---- writing (each writes its children first, its own record last) ----
  // Every write function gets the wire record to store and the one stored
  // now at the same place of the tree (read back before anything is
  // written; all zero for a new one), whose positions it reuses: a record
  // is rewritten in place, a list whose count did not grow is rewritten
  // over its old run, a grown list is written as a fresh run at the end of
  // its file. The positions written are returned in the stored record.
  [[nodiscard]] HRESULT GravaDespesasAtendimento(const _REG_ATENDIMENTO_PS& atendimento,
                                                 const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaServicosAtendimento(const _REG_ATENDIMENTO_PS& atendimento,
                                                 const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaSessoesServico(const _REG_SERVICO_ATENDIMENTO_PS& servico,
                                            const _REG_SERVICO_ATENDIMENTO_PS& antigo, REG_SERVICO_ATENDIMENTO_V3& reg,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaRepresentantes(const _REG_ATENDIMENTO_PS& atendimento, const _REG_ATENDIMENTO_PS& antigo,
                                            REG_ATENDIMENTO_V2& reg, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaListaClassificacoes(std::uint32_t lQuantidade, std::uint32_t& lPonteiro,
                                                 const _REG_CLASSIFICACAO_GE_PS* pClassificacoes,
                                                 std::uint32_t lQuantidadeAntiga,
                                                 const _REG_CLASSIFICACAO_GE_PS* pAntigas,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaClassificacao(const _REG_CLASSIFICACAO_GE_PS& classificacao,
                                           const _REG_CLASSIFICACAO_GE_PS* pAntiga,
                                           REG_CLASSIFICACAO_ATENDIMENTO_V1& reg,
                                           CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaGerencial(std::uint32_t& lPosicao, const _REG_CLASSIFICACAO_GE_PS& classificacao,
                                       const _REG_CLASSIFICACAO_GE_PS* pAntiga,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // lPosicao: in, the stored record's position (0: none yet); out, where it went.
  [[nodiscard]] HRESULT GravaRetencoes(std::uint32_t& lPosicao, const _REG_RETENCOES_PS& retencoes,
                                       const _REG_RETENCOES_PS& antigas,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaDeducoes(std::uint32_t& lPosicao, const _REG_RETENCOES_PS& retencoes,
                                      const _REG_RETENCOES_PS& antigas,
                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaPisCofins(std::uint32_t& lPosicao, const _REG_PIS_COFINS_GE_PS& pisCofins,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaEFD_REINF(std::uint32_t& lPosicao, const tagREG_EFD_REINF_ITENS_NFPS& efd,
                                       const tagREG_EFD_REINF_ITENS_NFPS& antigo,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // A list of judicial processes: lPonteiro in, the stored run's first
  // position (iQuantidadeAntiga records); out, where the list went.
  [[nodiscard]] HRESULT GravaEFD_REINFProcJur(std::uint32_t& lPonteiro, std::uint16_t iQuantidade,
                                              const tagREG_EFD_PROCESSO_JURIDICO_NFPS* pProcessos,
                                              std::uint16_t iQuantidadeAntiga,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT GravaPonteirosIntegracaoACM(std::uint64_t uiChaveArquivo, const _REG_ATENDIMENTO_PS& atendimento,
                                                    const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg);
  // A text of the call text file: kept when unchanged, rewritten in place
  // when of the same length, else written anew at the end (the old text
  // stays, unreferenced: no compaction of the whole file on a save); an
  // empty text is position 0.
  [[nodiscard]] HRESULT GravaString(const std::string& sTexto, std::uint32_t lPonteiroAntigo,
                                    const std::string& sAntigo, std::uint32_t& lPonteiro,
                                    CQVTextFile& arquivo);
  [[nodiscard]] HRESULT GravaString(BSTR bsTexto, std::uint32_t lPonteiroAntigo, BSTR bsAntigo,
                                    std::uint32_t& lPonteiro, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  // ---- numbering ----
  // The numbers of every stored call but the one at (iMA, lPosicao)
  // (lPosicao 0: none excluded), from the process's index of the company's
  // numbers (CQVIndiceNumeros.h), brought up to date first: only months
  // whose call file changed are read again, the current one from memory,
  // the others read-only. No month is selected, no file changes.
  [[nodiscard]] HRESULT LeNumerosAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, CQVNumerosAtendimento& numeros,
                                             CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The number a save of the call at (iMA, lPosicao) stores: from the
  // number asked for upward (0 counts as taken), the first no other call
  // has. A clash is resolved by counting up, not by taking the highest + 1.
  [[nodiscard]] HRESULT ConsistirNumeroAtendimentoGravacao(std::uint32_t& lNumeroAtendimento, std::uint16_t iMA,
                                                           std::uint32_t lPosicao,
                                                           CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Raises the settings' next suggested number to lNumeroAtendimento + 1
  // when that is greater; never lowers it. Not a change of the user's:
  // no transaction-log row.
  [[nodiscard]] HRESULT AtualizaNovoNumeroSugestao(std::uint32_t lNumeroAtendimento,
                                                   CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  // ---- the follow-up integration ----
  // Called for every service of the call once all are written, with its
  // stored record as read back from lPonteiroServico (the services of a
  // call are consecutive). A service linked to a follow-up
  // (lIdentificadorServicoAcompanhamento not 0) refreshes its entry there
  // and the follow-up's value of services (docs/atendimento.md).
  [[nodiscard]] virtual HRESULT AtualizaDadosAcompanhamentoIntegrado(
      const _REG_ATENDIMENTO_PS& atendimento, const REG_SERVICO_ATENDIMENTO_V3& regServAtendimento,
      std::uint32_t lPonteiroServico, CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Called once the call record is written, still under the mark.
  // regDMCAtendimento names it (position and month); the call as stored,
  // with the positions the server gave its sub-records, is the record of
  // m_ArqAtendimento at that position (the month is the current one);
  // atendimento is the client's record. Every service to integrate that
  // is not linked yet is attached to a follow-up of the call that takes it
  // or to a new one (docs/atendimento.md).
  [[nodiscard]] virtual HRESULT InsereServicoAcompanhamentoIntegrado(const _REG_ATENDIMENTO_PS& atendimento,
                                                                     const REG_QVDMC& regDMCAtendimento,
                                                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

 private:
  // Checks of a method's arguments, each writing the one error line of its
  // refusal with the argument at fault (callers tolerate the status, so as
  // not to write it twice): the object initialised, a valid month, a call's
  // position, a record whose counts agree with its lists (no null list
  // under a count, at any depth).
  [[nodiscard]] HRESULT ValidaServidor() const;
  [[nodiscard]] HRESULT ValidaMes(std::uint16_t iMA) const;
  [[nodiscard]] HRESULT ValidaAtendimentoPs(const _REG_ATENDIMENTO_PS& atendimento) const;
  // A call of the current month's call file (iMA names it for the line).
  // LeAtendimento (bCompleto) and LeAtendimentoLight.
  [[nodiscard]] HRESULT LeAtendimentoPs(std::uint16_t iMA, std::uint32_t lPosicao,
                                        _REG_ATENDIMENTO_PS* RegAtendimento, bool bCompleto);
  [[nodiscard]] HRESULT ValidaPosicao(std::uint16_t iMA, std::uint32_t lPosicao,
                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The settings record and the second client's label, stored.
  [[nodiscard]] HRESULT GravaPropriedadesArquivo(const _REG_PROPRIEDADES_ATENDIMENTO_PS& RegPropriedadesPs,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  std::string m_sDiretorioDados;

  // ---- follow-up integration (atendimento/CGeServidorAtendimentoAcompanhamento.cpp) ----
  // A follow-up of the call with the integration record that ties them.
  struct AcompanhamentoIntegrado;
  // A service of the call being attached to a follow-up: its stored record
  // and position, its class, and the call it belongs to.
  struct ServicoIntegracao;
  // The call's follow-ups, in the order of its reference list.
  using MapAcompanhamentos = std::vector<AcompanhamentoIntegrado>;

  // The follow-ups named by the call's reference list (each once).
  [[nodiscard]] HRESULT CarregaMapAcompanhamentos(const REG_ATENDIMENTO_V2& regAtendimento,
                                                  std::uint64_t uiChaveArquivo,
                                                  MapAcompanhamentos& mapIntegAcompanhamento);
  // The service's catalogue record and the title service of its
  // classification (none: class 0).
  [[nodiscard]] HRESULT LeClasseServico(ServicoIntegracao& servico);
  // Whether an existing follow-up takes the service; when it does, the
  // service's entry is added to it (not yet written).
  [[nodiscard]] HRESULT AtualizaServicoAcompanhamentoExistente(CQVDadosGE_AcompanhamentoServico& dadosAcompanhamento,
                                                               const ServicoIntegracao& servico,
                                                               bool& bAtualizouServico);
  // A new follow-up for the service, inserted, added to the map and to the
  // call's reference list, then tied to the service.
  [[nodiscard]] HRESULT InsereNovoAcompanhamento(const ServicoIntegracao& servico,
                                                 MapAcompanhamentos& mapIntegAcompanhamento,
                                                 REG_ATENDIMENTO_V2& regAtendimento,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Appends an integration reference to the call's list and rewrites the
  // call record at lPosicao of the current month (regAtendimento follows).
  [[nodiscard]] HRESULT AtualizaPonteirosInteg_ACM(
      std::uint64_t uiChaveArquivo, REG_ATENDIMENTO_V2& regAtendimento, std::uint32_t lPosicao,
      const CQVDadosGE_DadosIntegracaoAcompanhamentoServico& dadosIntegracaoGerada,
      CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Writes the follow-up with its entries, takes back the entries as the
  // suite numbered them, and stores the follow-up's identity in the
  // service's record.
  [[nodiscard]] HRESULT AtualizaACM_ServicoATTEC(AcompanhamentoIntegrado& acompanhamento,
                                                 const ServicoIntegracao& servico,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The value of the services performed for a follow-up: the call being
  // written (its client record) first, then the other calls of the
  // follow-up, each entry counted once.
  [[nodiscard]] HRESULT CalculaValorServicosMesmaOrigem(const AcompanhamentoIntegrado& acompanhamento,
                                                        const _REG_ATENDIMENTO_PS& atendimento, QVMoeda& vValorServicos,
                                                        CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The calls that may perform services of a follow-up.
  [[nodiscard]] HRESULT BuscaAtendimentosMesmaOrigem(const AcompanhamentoIntegrado& acompanhamento,
                                                     std::set<REG_QVDMC>& atendimentos);
  // The stored services of the call dmcAtendimento of any month, without
  // selecting a month; none for a reference that names no stored call.
  [[nodiscard]] HRESULT LeServicosGravadosAtendimento(const REG_QVDMC& dmcAtendimento,
                                                      std::vector<REG_SERVICO_ATENDIMENTO_V3>& servicos,
                                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

  // ---- search and agenda (atendimento/CGeServidorAtendimentoBusca.cpp) ----
 public:
  // The searches behind the four wire methods, for the reports and the
  // follow-up integration too: over pGEAtendimentoDB when one is given,
  // else over a read-only database of this company opened for the call and
  // closed at its end. The database's Trava() is held throughout (a search
  // selects months). The out record is cleared first and filled only on
  // success; whatever it holds then is the caller's. Bad input (a null
  // array under a count, a month code that is no month, position 0, a
  // position past its month's end) is refused with one error line before
  // anything is handed out. A failure inside the per-call test is thrown
  // (CFiltro.h).
  [[nodiscard]] HRESULT BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs,
                                       _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                                       _REG_CLIENTES_ATENDIMENTO_PS* RegClientes,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT BuscaRegistros(const _REG_LISTA_PONTEIROS_PS& RegPonteirosPs,
                                       _REG_LISTA_REGISTROS_PS* RegRegistrosPs,
                                       CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS& RegFiltroPs,
                                             _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs,
                                             CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  [[nodiscard]] HRESULT BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA& RegPonteiros,
                                             _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs,
                                             CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // The months a search reads, ascending: those with a call file, within
  // the tree's range when both its dates are set, else within the settings'
  // emission months (a bound of 0 not applied) unless cIgnorarDatasEmissao.
  [[nodiscard]] HRESULT MesesDaBusca(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs, std::vector<std::uint16_t>* pMeses,
                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB);

 private:
  // The numbers' index takes the number a save of this process wrote
  // (CQVIndiceNumeros.h); never fails the save.
  void RegistraNumeroGravado(std::uint16_t iMA, std::uint32_t lPosicao, std::uint32_t lNumeroAtendimento,
                             CGeServidorAtendimentoDatabase* pGEAtendimentoDB);
  // Runs a search over pGEAtendimentoDB, or over a read-only database of
  // its own when it is null, under the database's Trava().
  template <class F>
  [[nodiscard]] HRESULT ComBancoDaBusca(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, F&& busca);
};
