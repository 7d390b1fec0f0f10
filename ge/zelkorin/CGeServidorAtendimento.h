// The technical-service server: one per client object of QVGE_Atendimento.
// It connects the client's session to the company's data and answers the
// business methods of the interface (the frame in CQVGE_Atendimento calls
// the method of the same name). Business methods are virtual so that a
// server can be stood in for in tests of the frame.
#pragma once

#include <cstdint>
#include <string>

#include "ge/zelkorin/ZelkorinRegistros.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"

class CGeServidorAtendimento : public CQVBaseParaRotinas {
 public:
  CGeServidorAtendimento() = default;
  ~CGeServidorAtendimento() override;

  std::uint32_t GetModulo() const override { return QV_GE; }
  // The company's data directory for the module (set by OnInicializa).
  const std::string& GetDiretorioDados() const { return m_sDiretorioDados; }

  virtual HRESULT BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs,
                                 _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs, _REG_CLIENTES_ATENDIMENTO_PS* RegClientes);
  virtual HRESULT BuscaRegistros(const _REG_LISTA_PONTEIROS_PS& RegPonteirosPs, _REG_LISTA_REGISTROS_PS* RegRegistrosPs);
  virtual HRESULT BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS& RegFiltroPs,
                                       _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs);
  virtual HRESULT BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA& RegPonteiros,
                                       _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs);
  virtual HRESULT LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento);
  virtual HRESULT LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento);
  virtual HRESULT GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, const _REG_ATENDIMENTO_PS& RegAtendimentoPs,
                                   std::uint32_t* lPosicaoGravada);
  virtual HRESULT LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t dwFlags);
  virtual HRESULT GravaPropriedades(const _REG_PROPRIEDADES_ATENDIMENTO_PS& RegPropriedadesPs, std::uint32_t dwFlags);
  virtual HRESULT BuscaLeiautesAtendimento(BSTR* bsListaLeiautes);
  virtual HRESULT BuscaLeiautesAtendimentoDFCLAY(BSTR* bsListaLeiautes);
  virtual HRESULT BuscaLeiautesAtendimentoDFCMOD(BSTR* bsListaLeiautes);
  virtual HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento, std::int32_t* pbNumeroNaoDuplicado);
  virtual HRESULT GeraRelatorioAgrupamento(const _REG_RELATORIO_ATENDIMENTO_PS& RegRelatorio,
                                           std::uint8_t cTipoAgrupamento);
  virtual HRESULT GeraRelatorioPeriodo(const _REG_RELATORIO_ATENDIMENTO_PS& RegRelatorioPs);
  virtual HRESULT GeraRelatorioAtendimento(const _REG_RELATORIO_ATENDIMENTO_PS& RegRelatorioPs);
  virtual HRESULT GeraRelatorioControleHoras(const _REG_FILTRO_REL_CONTROLE_HORAS& RegFiltro);
  virtual HRESULT GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* regRelConsultaAgendamento);

 protected:
  HRESULT OnInicializa() override;

 private:
  std::string m_sDiretorioDados;
};
