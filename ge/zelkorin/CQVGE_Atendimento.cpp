#include "ge/zelkorin/CQVGE_Atendimento.h"

using S = CGeServidorAtendimento;

const CQVGE_Atendimento::Frame::Identidade CQVGE_Atendimento::kIdentidade{
    IID_IQVGE_Atendimento, "T_QVUnknown<struct IQVGE_Atendimento,class CGeServidorAtendimento>"};

CQVGE_Atendimento::CQVGE_Atendimento(Frame::FabricaServidor fabrica) : Frame(kIdentidade, std::move(fabrica)) {}

HRESULT CQVGE_Atendimento::BuscaPonteiros(_REG_FILTRO_ATENDIMENTO_PS RegFiltroPs,
                                          _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                                          _REG_CLIENTES_ATENDIMENTO_PS* RegClientes) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaPonteiros",
                      [&](S& s) { return s.BuscaPonteiros(RegFiltroPs, RegListaPonteirosPs, RegClientes); });
}

HRESULT CQVGE_Atendimento::BuscaRegistros(_REG_LISTA_PONTEIROS_PS RegPonteirosPs,
                                          _REG_LISTA_REGISTROS_PS* RegRegistrosPs) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaRegistros",
                      [&](S& s) { return s.BuscaRegistros(RegPonteirosPs, RegRegistrosPs); });
}

HRESULT CQVGE_Atendimento::BuscaPonteirosAgenda(_REG_FILTRO_AGENDA_PS RegFiltroPs,
                                                _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaPonteirosAgenda",
                      [&](S& s) { return s.BuscaPonteirosAgenda(RegFiltroPs, RegListaPonteirosPs); });
}

HRESULT CQVGE_Atendimento::BuscaRegistrosAgenda(_REG_LISTA_PONTEIROS_AGENDA RegPonteiros,
                                                _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaRegistrosAgenda",
                      [&](S& s) { return s.BuscaRegistrosAgenda(RegPonteiros, RegListaServicosPs); });
}

HRESULT CQVGE_Atendimento::LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao,
                                         _REG_ATENDIMENTO_PS* RegAtendimento) {
  return ChamaNegocio("CQVGE_Atendimento::LeAtendimento",
                      [&](S& s) { return s.LeAtendimento(iMA, lPosicao, RegAtendimento); });
}

HRESULT CQVGE_Atendimento::LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao,
                                              _REG_ATENDIMENTO_PS* RegAtendimento) {
  return ChamaNegocio("CQVGE_Atendimento::LeAtendimentoLight",
                      [&](S& s) { return s.LeAtendimentoLight(iMA, lPosicao, RegAtendimento); });
}

HRESULT CQVGE_Atendimento::GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao,
                                            _REG_ATENDIMENTO_PS RegAtendimentoPs, std::uint32_t* lPosicaoGravada) {
  return ChamaNegocio("CQVGE_Atendimento::GravaAtendimento",
                      [&](S& s) { return s.GravaAtendimento(iMA, lPosicao, RegAtendimentoPs, lPosicaoGravada); });
}

HRESULT CQVGE_Atendimento::LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t dwFlags) {
  return ChamaNegocio("CQVGE_Atendimento::LePropriedades",
                      [&](S& s) { return s.LePropriedades(RegPropriedadesPs, dwFlags); });
}

HRESULT CQVGE_Atendimento::GravaPropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS RegPropriedadesPs,
                                             std::uint32_t dwFlags) {
  return ChamaNegocio("CQVGE_Atendimento::GravaPropriedades",
                      [&](S& s) { return s.GravaPropriedades(RegPropriedadesPs, dwFlags); });
}

HRESULT CQVGE_Atendimento::BuscaLeiautesAtendimento(BSTR* bsListaLeiautes) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaLeiautesAtendimento",
                      [&](S& s) { return s.BuscaLeiautesAtendimento(bsListaLeiautes); });
}

HRESULT CQVGE_Atendimento::BuscaLeiautesAtendimentoDFCLAY(BSTR* bsListaLeiautes) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaLeiautesAtendimentoDFCLAY",
                      [&](S& s) { return s.BuscaLeiautesAtendimentoDFCLAY(bsListaLeiautes); });
}

HRESULT CQVGE_Atendimento::BuscaLeiautesAtendimentoDFCMOD(BSTR* bsListaLeiautes) {
  return ChamaNegocio("CQVGE_Atendimento::BuscaLeiautesAtendimentoDFCMOD",
                      [&](S& s) { return s.BuscaLeiautesAtendimentoDFCMOD(bsListaLeiautes); });
}

HRESULT CQVGE_Atendimento::ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento,
                                                        std::int32_t* pbNumeroNaoDuplicado) {
  return ChamaNegocio("CQVGE_Atendimento::ConsistirNumeroAtendimentoPS",
                      [&](S& s) { return s.ConsistirNumeroAtendimentoPS(lNumeroAtendimento, pbNumeroNaoDuplicado); });
}

HRESULT CQVGE_Atendimento::GeraRelatorioAgrupamento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorio,
                                                    std::uint8_t cTipoAgrupamento) {
  return ChamaNegocio("CQVGE_Atendimento::GeraRelatorioAgrupamento",
                      [&](S& s) { return s.GeraRelatorioAgrupamento(RegRelatorio, cTipoAgrupamento); });
}

HRESULT CQVGE_Atendimento::GeraRelatorioPeriodo(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) {
  return ChamaNegocio("CQVGE_Atendimento::GeraRelatorioPeriodo",
                      [&](S& s) { return s.GeraRelatorioPeriodo(RegRelatorioPs); });
}

HRESULT CQVGE_Atendimento::GeraRelatorioAtendimento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) {
  return ChamaNegocio("CQVGE_Atendimento::GeraRelatorioAtendimento",
                      [&](S& s) { return s.GeraRelatorioAtendimento(RegRelatorioPs); });
}

HRESULT CQVGE_Atendimento::GeraRelatorioControleHoras(_REG_FILTRO_REL_CONTROLE_HORAS RegFiltro) {
  return ChamaNegocio("CQVGE_Atendimento::GeraRelatorioControleHoras",
                      [&](S& s) { return s.GeraRelatorioControleHoras(RegFiltro); });
}

HRESULT CQVGE_Atendimento::GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* regRelConsultaAgendamento) {
  return ChamaNegocio("CQVGE_Atendimento::GeraRelatorioConsultaAgendamento",
                      [&](S& s) { return s.GeraRelatorioConsultaAgendamento(regRelConsultaAgendamento); });
}
