// The server's identity and its two business interfaces.
//
// Both interfaces derive from IQVUnknown (slots 3..6) and continue at slot 7;
// the order of the methods below is the slot order and must never change.
// Records passed "in" travel by value, "out" and "in/out" records by pointer;
// whatever an out record owns afterwards belongs to the caller, also after a
// failure (then its counts are 0 and its pointers null).
#pragma once

#include <cstdint>

#include "core/QVRPCDLL/IQVUnknown.h"
#include "ge/zelkorin/ZelkorinRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVGuid.h"

// Type library ZELKORINLib 1.0, locale 1046.
inline constexpr GUID LIBID_ZELKORINLib = QVGuid("{69816F98-7D2B-4909-A22F-8752CE7748EB}");
inline constexpr std::uint16_t kZelkorinLibVersaoMaior = 1;
inline constexpr std::uint16_t kZelkorinLibVersaoMenor = 0;
inline constexpr std::uint32_t kZelkorinLibLocale = 1046;

inline constexpr IID IID_IQVGE_Atendimento = QVGuid("{0F537427-7E93-41AB-878D-E88FB7EA13B0}");
inline constexpr IID IID_IQVGE_Projeto = QVGuid("{5EF9A8A6-E6ED-432D-9F61-2D3F8493CAAD}");
inline constexpr CLSID CLSID_QVGE_Atendimento = QVGuid("{360862BF-A33B-49DD-8E13-C0E70DE9C704}");
inline constexpr CLSID CLSID_QVGE_Projeto = QVGuid("{87EABE28-DC83-4C70-8B1C-5F1B4F2142DF}");
inline constexpr GUID APPID_Zelkorin = QVGuid("{5A1D1C7F-FDE8-4D2D-B2C3-E44406DF3222}");

// Service calls (atendimentos): search, read, write, settings and reports.
struct IQVGE_Atendimento : IQVUnknown {
  // slot 7: positions of the calls matching a filter, and their clients.
  virtual HRESULT BuscaPonteiros(_REG_FILTRO_ATENDIMENTO_PS RegFiltroPs, _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                                 _REG_CLIENTES_ATENDIMENTO_PS* RegClientes) = 0;
  // slot 8: the call records at the given positions.
  virtual HRESULT BuscaRegistros(_REG_LISTA_PONTEIROS_PS RegPonteirosPs,
                                 _REG_LISTA_REGISTROS_PS* RegRegistrosPs) = 0;
  // slot 9: positions of the scheduled service lines matching an agenda filter.
  virtual HRESULT BuscaPonteirosAgenda(_REG_FILTRO_AGENDA_PS RegFiltroPs,
                                       _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs) = 0;
  // slot 10: the scheduled service lines at the given positions.
  virtual HRESULT BuscaRegistrosAgenda(_REG_LISTA_PONTEIROS_AGENDA RegPonteiros,
                                       _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs) = 0;
  // slot 11: reads one call completely.
  virtual HRESULT LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS* RegAtendimento) = 0;
  // slot 12: reads one call without its dependent lists.
  virtual HRESULT LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao,
                                     _REG_ATENDIMENTO_PS* RegAtendimento) = 0;
  // slot 13: writes a call (position 0: a new one) and answers where it went.
  virtual HRESULT GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao, _REG_ATENDIMENTO_PS RegAtendimentoPs,
                                   std::uint32_t* lPosicaoGravada) = 0;
  // slot 14: reads the company's service-call settings.
  virtual HRESULT LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t dwFlags) = 0;
  // slot 15: writes the company's service-call settings.
  virtual HRESULT GravaPropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS RegPropriedadesPs, std::uint32_t dwFlags) = 0;
  // slot 16: lists the report layouts for service calls.
  virtual HRESULT BuscaLeiautesAtendimento(BSTR* bsListaLeiautes) = 0;
  // slot 17: lists the report-designer layouts for service calls.
  virtual HRESULT BuscaLeiautesAtendimentoDFCLAY(BSTR* bsListaLeiautes) = 0;
  // slot 18: lists the model layouts for service calls.
  virtual HRESULT BuscaLeiautesAtendimentoDFCMOD(BSTR* bsListaLeiautes) = 0;
  // slot 19: tells whether a call number is not used by another call.
  virtual HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento,
                                               std::int32_t* pbNumeroNaoDuplicado) = 0;
  // slot 20: report of the filtered calls grouped by the given kind.
  virtual HRESULT GeraRelatorioAgrupamento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorio,
                                           std::uint8_t cTipoAgrupamento) = 0;
  // slot 21: report of the filtered calls by period.
  virtual HRESULT GeraRelatorioPeriodo(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) = 0;
  // slot 22: report of the filtered calls one by one.
  virtual HRESULT GeraRelatorioAtendimento(_REG_RELATORIO_ATENDIMENTO_PS RegRelatorioPs) = 0;
  // slot 23: hours-control report per project and client.
  virtual HRESULT GeraRelatorioControleHoras(_REG_FILTRO_REL_CONTROLE_HORAS RegFiltro) = 0;
  // slot 24: scheduling report over a date range.
  virtual HRESULT GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO* regRelConsultaAgendamento) = 0;

 protected:
  ~IQVGE_Atendimento() = default;
};

// Projects that service lines are booked against.
struct IQVGE_Projeto : IQVUnknown {
  // slot 7: positions of the projects matching a filter.
  virtual HRESULT BuscaPonteiros(_REG_FILTRO_PROJETO_PS RegFiltro, _REG_PTR_PROJETO_PS* pRegPonteiros) = 0;
  // slot 8: the project records at the given positions.
  virtual HRESULT BuscaRegistros(_REG_PTR_PROJETO_PS RegPonteiros, _REG_LISTA_PROJETOS_PS* pRegLista) = 0;
  // slot 9: reads one project.
  virtual HRESULT LeRegistro(std::uint32_t lPtr, _REG_PROJETO_ATENDIMENTO_PS* regps) = 0;
  // slot 10: saves a project and its texts at its lPos (0: a new one).
  virtual HRESULT Grava(_REG_PROJETO_ATENDIMENTO_PS* regProjeto) = 0;

 protected:
  ~IQVGE_Projeto() = default;
};
