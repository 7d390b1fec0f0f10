// The class QVGE_Atendimento: the call frame over IQVGE_Atendimento and its
// server, CGeServidorAtendimento. Each business method passes its arguments
// unchanged to the server's method of the same name through the frame.
#pragma once

#include "core/QVRPCDLL/T_QVUnknown.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/ZelkorinInterfaces.h"

class CQVGE_Atendimento : public T_QVUnknown<IQVGE_Atendimento, CGeServidorAtendimento> {
 public:
  using Frame = T_QVUnknown<IQVGE_Atendimento, CGeServidorAtendimento>;
  static const Frame::Identidade kIdentidade;

  explicit CQVGE_Atendimento(Frame::FabricaServidor fabrica = {});

  HRESULT BuscaPonteiros(_REG_FILTRO_ATENDIMENTO_PS RegFiltroPs, _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                         _REG_CLIENTES_ATENDIMENTO_PS* RegClientes) override;
  HRESULT BuscaRegistros(_REG_LISTA_PONTEIROS_PS RegPonteirosPs, _REG_LISTA_REGISTROS_PS* RegRegistrosPs) override;
  HRESULT BuscaPonteirosAgenda(_REG_FILTRO_AGENDA_PS RegFiltroPs,
                               _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs) override;
  HRESULT BuscaRegistrosAgenda(_REG_LISTA_PONTEIROS_AGENDA RegPonteiros,
                               _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs) override;
  HRESULT LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento) override;
  HRESULT LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento) override;
  HRESULT GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS RegAtendimentoPs,
                           std::uint32_t* lPosicaoGravada) override;
  HRESULT LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t dwFlags) override;
  HRESULT GravaPropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS RegPropriedadesPs, std::uint32_t dwFlags) override;
  HRESULT BuscaLeiautesAtendimento(BSTR* bsListaLeiautes) override;
  HRESULT BuscaLeiautesAtendimentoDFCLAY(BSTR* bsListaLeiautes) override;
  HRESULT BuscaLeiautesAtendimentoDFCMOD(BSTR* bsListaLeiautes) override;
  HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento, std::int32_t* pbNumeroNaoDuplicado) override;
  HRESULT GeraRelatorioAgrupamento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorio, std::uint8_t cTipoAgrupamento) override;
  HRESULT GeraRelatorioPeriodo(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) override;
  HRESULT GeraRelatorioAtendimento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) override;
  HRESULT GeraRelatorioControleHoras(_REG_FILTRO_REL_CONTROLE_HORAS RegFiltro) override;
  HRESULT GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* regRelConsultaAgendamento) override;
};
