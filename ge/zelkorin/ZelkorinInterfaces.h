// The server's identity and its two business interfaces.
//
// Both interfaces derive from IQVUnknown (slots 3..6) and continue at slot 7;
// the slots are the wire's method numbers and never change. Whatever an out
// record owns afterwards belongs to the caller, also after a failure (then
// its counts are 0 and its pointers null).
#pragma once

#include <cstdint>
#include <tuple>

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

// The business interfaces, as method tables (core/QVRPCDLL/QVMetodos.h),
// one line per method whatever its length: the line is everything the
// transport, the frame and the tests know of the method; the server classes
// implement the method of the same name. A new method goes after the last.

// Service calls (atendimentos): search, read, write, settings and reports.
#define QV_METODOS_IQVGE_ATENDIMENTO(X, ctx) \
  /* positions of the calls matching a filter, and their clients */ \
  X(ctx, 7, BuscaPonteiros, (Ent, _REG_FILTRO_ATENDIMENTO_PS, RegFiltroPs), (Sai, _REG_LISTA_PONTEIROS_PS, RegListaPonteirosPs), (Sai, _REG_CLIENTES_ATENDIMENTO_PS, RegClientes)) \
  /* the call records at the given positions */ \
  X(ctx, 8, BuscaRegistros, (Ent, _REG_LISTA_PONTEIROS_PS, RegPonteirosPs), (Sai, _REG_LISTA_REGISTROS_PS, RegRegistrosPs)) \
  /* positions of the scheduled service lines matching an agenda filter */ \
  X(ctx, 9, BuscaPonteirosAgenda, (Ent, _REG_FILTRO_AGENDA_PS, RegFiltroPs), (Sai, _REG_LISTA_PONTEIROS_AGENDA, RegListaPonteirosPs)) \
  /* the scheduled service lines at the given positions */ \
  X(ctx, 10, BuscaRegistrosAgenda, (Ent, _REG_LISTA_PONTEIROS_AGENDA, RegPonteiros), (Sai, _REG_LISTA_SERVICOS_AGENDA_PS, RegListaServicosPs)) \
  /* reads one call completely */ \
  X(ctx, 11, LeAtendimento, (Ent, std::uint16_t, iMA), (Ent, std::uint32_t, lPosicao), (Sai, _REG_ATENDIMENTO_PS, RegAtendimento)) \
  /* reads one call without its dependent lists */ \
  X(ctx, 12, LeAtendimentoLight, (Ent, std::uint16_t, iMA), (Ent, std::uint32_t, lPosicao), (Sai, _REG_ATENDIMENTO_PS, RegAtendimento)) \
  /* writes a call (position 0: a new one) and answers where it went */ \
  X(ctx, 13, GravaAtendimento, (Ent, std::uint16_t, iMA), (Ent, std::uint32_t, lPosicao), (Ent, _REG_ATENDIMENTO_PS, RegAtendimentoPs), (Sai, std::uint32_t, lPosicaoGravada)) \
  /* reads the company's service-call settings */ \
  X(ctx, 14, LePropriedades, (Sai, _REG_PROPRIEDADES_ATENDIMENTO_PS, RegPropriedadesPs), (Ent, std::uint32_t, dwFlags)) \
  /* writes the company's service-call settings */ \
  X(ctx, 15, GravaPropriedades, (Ent, _REG_PROPRIEDADES_ATENDIMENTO_PS, RegPropriedadesPs), (Ent, std::uint32_t, dwFlags)) \
  /* lists the report layouts for service calls */ \
  X(ctx, 16, BuscaLeiautesAtendimento, (Sai, BSTR, bsListaLeiautes)) \
  /* lists the report-designer layouts for service calls */ \
  X(ctx, 17, BuscaLeiautesAtendimentoDFCLAY, (Sai, BSTR, bsListaLeiautes)) \
  /* lists the model layouts for service calls */ \
  X(ctx, 18, BuscaLeiautesAtendimentoDFCMOD, (Sai, BSTR, bsListaLeiautes)) \
  /* tells whether a call number is not used by another call */ \
  X(ctx, 19, ConsistirNumeroAtendimentoPS, (Ent, std::uint32_t, lNumeroAtendimento), (Sai, std::int32_t, pbNumeroNaoDuplicado)) \
  /* report of the filtered calls grouped by the given kind */ \
  X(ctx, 20, GeraRelatorioAgrupamento, (Ent, _REG_RELATORIO_ATENDIMENTO_PS, RegRelatorio), (Ent, std::uint8_t, cTipoAgrupamento)) \
  /* report of the filtered calls by period */ \
  X(ctx, 21, GeraRelatorioPeriodo, (Ent, _REG_RELATORIO_ATENDIMENTO_PS, RegRelatorioPs)) \
  /* report of the filtered calls one by one */ \
  X(ctx, 22, GeraRelatorioAtendimento, (Ent, _REG_RELATORIO_ATENDIMENTO_PS, RegRelatorioPs)) \
  /* hours-control report per project and client */ \
  X(ctx, 23, GeraRelatorioControleHoras, (Ent, _REG_FILTRO_REL_CONTROLE_HORAS, RegFiltro)) \
  /* scheduling report over a date range */ \
  X(ctx, 24, GeraRelatorioConsultaAgendamento, (EntSai, _REG_REL_CONSULTA_AGENDAMENTO, regRelConsultaAgendamento))

struct IQVGE_Atendimento : IQVUnknown {
  QV_METODOS_IQVGE_ATENDIMENTO(QV_DECLARA_METODO, IQVGE_Atendimento)

 protected:
  ~IQVGE_Atendimento() = default;
};
QV_DESCREVE_INTERFACE(IQVGE_Atendimento, IQVUnknown, IID_IQVGE_Atendimento, QV_METODOS_IQVGE_ATENDIMENTO)

// Projects that service lines are booked against.
#define QV_METODOS_IQVGE_PROJETO(X, ctx) \
  /* positions of the projects matching a filter */ \
  X(ctx, 7, BuscaPonteiros, (Ent, _REG_FILTRO_PROJETO_PS, RegFiltro), (Sai, _REG_PTR_PROJETO_PS, pRegPonteiros)) \
  /* the project records at the given positions */ \
  X(ctx, 8, BuscaRegistros, (Ent, _REG_PTR_PROJETO_PS, RegPonteiros), (Sai, _REG_LISTA_PROJETOS_PS, pRegLista)) \
  /* reads one project */ \
  X(ctx, 9, LeRegistro, (Ent, std::uint32_t, lPtr), (Sai, _REG_PROJETO_ATENDIMENTO_PS, regps)) \
  /* saves a project and its texts at its lPos (0: a new one) */ \
  X(ctx, 10, Grava, (EntSai, _REG_PROJETO_ATENDIMENTO_PS, regProjeto))

struct IQVGE_Projeto : IQVUnknown {
  QV_METODOS_IQVGE_PROJETO(QV_DECLARA_METODO, IQVGE_Projeto)

 protected:
  ~IQVGE_Projeto() = default;
};
QV_DESCREVE_INTERFACE(IQVGE_Projeto, IQVUnknown, IID_IQVGE_Projeto, QV_METODOS_IQVGE_PROJETO)

// The business interfaces the server's classes implement, for the code that
// goes over all of them (the transport's factory and proxies).
using QVInterfacesZelkorin = std::tuple<IQVGE_Atendimento, IQVGE_Projeto>;
