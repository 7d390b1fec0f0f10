// Wire records of the technical-service (atendimento) and project interfaces.
//
// Every record below is a wire format: plain standard-layout structs whose
// sizes and offsets are asserted after each one and must never change. All
// integers are little-endian. "ptr" fields are 64-bit pointers to arrays
// allocated with CoTaskMemAlloc and owned by the receiver, each with a count
// field in the same record; a count of 0 travels with a null pointer. bstr
// fields are system strings, also owned by the receiver. Reserved fields
// (...Filler, vFiler, pFiller) are written as zero and ignored on reading;
// pFiller is never followed.
//
// Field types: u8/u16/u32/u64 and i32/i64 are <cstdint> integers; bool32 is
// std::int32_t (0 false); currency is std::int64_t scaled by 10,000; char[n]
// is 8-bit text zero-terminated inside the field. Dates (iData..., iPeriodo...,
// iEmissao...) are day numbers, iMA a month code, iHora... hour-and-minute,
// l/iPonteiro.../lPtr.../lPos 1-based record positions (0 = none).
//
//   record                              size  owns
//   IE_CAMPO_DATA_PS                     40   pcTexto[ulTamanhoTexto]
//   _REG_FILTRO_ATENDIMENTO_PS         1112   ieInfoPlus[20], arrMA, arrlPos
//   _REG_LISTA_PONTEIROS_PS / _AGENDA    24   pPonteiro / pPonteiros
//   _REG_CLIENTES_ATENDIMENTO_PS         24   pClientes
//   _REG_LISTA_REGISTROS_PS              24   pRegistros (_REG_ATENDIMENTO_PS)
//   _REG_LISTA_SERVICOS_AGENDA_PS        24   pServicos
//   _REG_ATENDIMENTO_PS                 816   services, expenses, representatives,
//                                             classifications, 4 bstr, calendar
//                                             events, follow-up references,
//                                             withholdings, EFD-REINF processes
//   _REG_SERVICO_ATENDIMENTO_PS         480   4 bstr, withholdings, EFD-REINF,
//                                             classifications, sessions
//   _REG_DESPESA_ATENDIMENTO_PS         216   2 bstr, classifications
//   _REG_CLASSIFICACAO_GE_PS             56   pGerenciais
//   _REG_PROPRIEDADES_ATENDIMENTO_PS    520   rNomeCliente2
//   _REG_RELATORIO_ATENDIMENTO_PS      1416   RegFiltroPs
//   _REG_FILTRO_REL_CONTROLE_HORAS       72   6 bstr
//   _REG_REL_CONSULTA_AGENDAMENTO        48   regLista (4 bstr each), 2 bstr
//   project records                   24-72   texts, pPonteiros, pRegistros
#pragma once

#include <cstddef>
#include <cstdint>

#include "df/qvlibex/QVDescritorRegistro.h"
#include "df/qvlibex/QVRegistrosDF.h"
#include "platform/QVBstr.h"

// ---- Linked-information ("info plus") fields --------------------------------

// Identifies a linked-information field. Each block of 50 leaves room for the
// numbered free fields of one kind: dates, months, texts, and values with 0,
// 2, 4 and 8 decimal places.
enum IE_E_CAMPO : std::uint32_t {
  IE_CAMPO_LIVRE_DMA_0 = 0x8C000000u,
  IE_CAMPO_LIVRE_MA_0 = IE_CAMPO_LIVRE_DMA_0 + 50,
  IE_CAMPO_LIVRE_TEXTO_0 = IE_CAMPO_LIVRE_MA_0 + 50,
  IE_CAMPO_LIVRE_V0_0 = IE_CAMPO_LIVRE_TEXTO_0 + 50,
  IE_CAMPO_LIVRE_V2_0 = IE_CAMPO_LIVRE_V0_0 + 50,
  IE_CAMPO_LIVRE_V4_0 = IE_CAMPO_LIVRE_V2_0 + 50,
  IE_CAMPO_LIVRE_V8_0 = IE_CAMPO_LIVRE_V4_0 + 50,
  IE_CAMPO_INF_COMPL_COD = IE_CAMPO_LIVRE_V8_0 + 50,
  IE_CAMPO_HORA = IE_CAMPO_INF_COMPL_COD + 50,
  IE_CAMPO_COUNT = IE_CAMPO_HORA + 50,
};
static_assert(IE_CAMPO_COUNT == 0x8C0001C2u);

// One linked-information value: a number or date in BinaryData, or a text.
struct IE_CAMPO_DATA_PS {
  std::uint8_t BinaryData[8];
  std::uint8_t cFiller[8];
  std::int32_t id;  // an IE_E_CAMPO
  std::uint32_t ulTamanhoTexto;
  std::uint8_t* pcTexto;
  void* pFiller;
};
static_assert(sizeof(IE_CAMPO_DATA_PS) == 40);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, BinaryData, 0);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, cFiller, 8);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, id, 16);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, ulTamanhoTexto, 20);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, pcTexto, 24);
QV_ASSERT_CAMPO(IE_CAMPO_DATA_PS, pFiller, 32);

// ---- Search of service calls ------------------------------------------------

inline constexpr std::size_t kQVQtdInfoPlusFiltro = 20;

struct _REG_FILTRO_ATENDIMENTO_PS {
  IE_CAMPO_DATA_PS ieInfoPlus[kQVQtdInfoPlusFiltro];
  char cDescricaoServico[104];
  char cContrato[24];
  std::uint8_t bOrigemGerenciador;
  std::uint8_t bOrigemWeb;
  std::uint8_t bOrigemImportacao;
  std::uint8_t cNivelDataTree;
  std::uint8_t cIgnorarDatasEmissao;
  std::uint8_t cConferido;
  std::uint8_t cNaoConferido;
  std::uint8_t cOrigemIntegracaoAcompanhamento;
  std::uint8_t cSomenteNaoFaturados;
  std::uint8_t szFiller[7];
  std::int32_t iQtdeMA;
  std::int32_t iQtdePos;
  std::int32_t bPendente;
  std::int32_t bRealizado;
  std::int32_t bAtivo;
  std::int32_t bCancelado;
  std::int32_t bFiltrarAtivoECancelado;
  std::int32_t bListarExecutoresPermissoesIguais;
  std::int32_t bVerificarTituloServico;
  std::int32_t bFiller;
  std::uint32_t lNumeroAtendimento;
  std::uint32_t lPonteiroCliente;
  std::uint32_t lPonteiroCliente2;
  std::uint32_t lPonteiroClienteParaFaturamento;
  std::uint32_t lPonteiroServico;
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroMunicipio;
  std::uint32_t lPonteiroFilial;
  std::uint32_t lPonteiroContrato;
  std::uint32_t lPtrProjeto;
  std::uint32_t lClienteSelecionadoTree;
  std::uint32_t lPosHeaderInfoPlus;
  std::uint32_t dwState;
  std::uint32_t dwStateMask;
  std::uint32_t iDataFaturamentoInicio;
  std::uint32_t iDataFaturamentoFim;
  std::uint32_t iPeriodoInicio;
  std::uint32_t iPeriodoFim;
  std::uint32_t iDataConclusaoInicial;
  std::uint32_t iDataConclusaoFinal;
  std::uint32_t iDataSaidaInicial;
  std::uint32_t iDataSaidaFinal;
  std::uint32_t iDataAgendInicial;
  std::uint32_t iDataAgendFinal;
  std::uint32_t iDataTreeInicial;
  std::uint32_t iDataTreeFinal;
  std::uint64_t regDMCIntegracaoAcompanhamento;
  std::uint16_t* arrMA;  // iQtdeMA month codes
  std::uint32_t* arrlPos;  // iQtdePos positions
};
static_assert(sizeof(_REG_FILTRO_ATENDIMENTO_PS) == 1112);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, ieInfoPlus, 0);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cDescricaoServico, 800);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cContrato, 904);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bOrigemGerenciador, 928);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bOrigemWeb, 929);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bOrigemImportacao, 930);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cNivelDataTree, 931);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cIgnorarDatasEmissao, 932);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cConferido, 933);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cNaoConferido, 934);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cOrigemIntegracaoAcompanhamento, 935);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, cSomenteNaoFaturados, 936);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, szFiller, 937);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iQtdeMA, 944);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iQtdePos, 948);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bPendente, 952);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bRealizado, 956);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bAtivo, 960);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bCancelado, 964);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bFiltrarAtivoECancelado, 968);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bListarExecutoresPermissoesIguais, 972);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bVerificarTituloServico, 976);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, bFiller, 980);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lNumeroAtendimento, 984);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroCliente, 988);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroCliente2, 992);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroClienteParaFaturamento, 996);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroServico, 1000);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroExecutor, 1004);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroMunicipio, 1008);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroFilial, 1012);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPonteiroContrato, 1016);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPtrProjeto, 1020);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lClienteSelecionadoTree, 1024);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, lPosHeaderInfoPlus, 1028);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, dwState, 1032);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, dwStateMask, 1036);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataFaturamentoInicio, 1040);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataFaturamentoFim, 1044);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iPeriodoInicio, 1048);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iPeriodoFim, 1052);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataConclusaoInicial, 1056);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataConclusaoFinal, 1060);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataSaidaInicial, 1064);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataSaidaFinal, 1068);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataAgendInicial, 1072);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataAgendFinal, 1076);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataTreeInicial, 1080);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, iDataTreeFinal, 1084);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, regDMCIntegracaoAcompanhamento, 1088);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, arrMA, 1096);
QV_ASSERT_CAMPO(_REG_FILTRO_ATENDIMENTO_PS, arrlPos, 1104);

struct _REG_PONTEIRO_ATENDIMENTO_PS {
  std::uint16_t iMA;
  std::uint16_t iFiller;
  std::uint32_t lPonteiroAtendimento;
};
static_assert(sizeof(_REG_PONTEIRO_ATENDIMENTO_PS) == 8);
QV_ASSERT_CAMPO(_REG_PONTEIRO_ATENDIMENTO_PS, iMA, 0);
QV_ASSERT_CAMPO(_REG_PONTEIRO_ATENDIMENTO_PS, iFiller, 2);
QV_ASSERT_CAMPO(_REG_PONTEIRO_ATENDIMENTO_PS, lPonteiroAtendimento, 4);

struct _REG_LISTA_PONTEIROS_PS {
  std::uint32_t iQuantidadePonteiros;
  std::uint32_t lFiller;
  void* pFiller;
  _REG_PONTEIRO_ATENDIMENTO_PS* pPonteiro;
};
static_assert(sizeof(_REG_LISTA_PONTEIROS_PS) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_PS, iQuantidadePonteiros, 0);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_PS, lFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_PS, pPonteiro, 16);

struct _REG_CLIENTES_ATENDIMENTO_PS {
  std::uint32_t iQuantidadeClientes;
  std::uint32_t iFiller;
  void* pFiller;
  std::uint32_t* pClientes;  // client positions
};
static_assert(sizeof(_REG_CLIENTES_ATENDIMENTO_PS) == 24);
QV_ASSERT_CAMPO(_REG_CLIENTES_ATENDIMENTO_PS, iQuantidadeClientes, 0);
QV_ASSERT_CAMPO(_REG_CLIENTES_ATENDIMENTO_PS, iFiller, 4);
QV_ASSERT_CAMPO(_REG_CLIENTES_ATENDIMENTO_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_CLIENTES_ATENDIMENTO_PS, pClientes, 16);

struct _REG_ATENDIMENTO_PS;

struct _REG_LISTA_REGISTROS_PS {
  std::uint32_t iQuantidadeRegistros;
  std::uint32_t iFiller;
  void* pFiller;
  _REG_ATENDIMENTO_PS* pRegistros;
};
static_assert(sizeof(_REG_LISTA_REGISTROS_PS) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_REGISTROS_PS, iQuantidadeRegistros, 0);
QV_ASSERT_CAMPO(_REG_LISTA_REGISTROS_PS, iFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_REGISTROS_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_REGISTROS_PS, pRegistros, 16);

// ---- Agenda -----------------------------------------------------------------

struct _REG_FILTRO_AGENDA_PS {
  std::uint8_t cFiller[15];
  std::uint8_t cSituacao;
  std::uint16_t iDataSaida;
  std::uint16_t iFiller[3];
  std::uint32_t lUsuario;
  std::uint32_t lFiller;
};
static_assert(sizeof(_REG_FILTRO_AGENDA_PS) == 32);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, cFiller, 0);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, cSituacao, 15);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, iDataSaida, 16);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, iFiller, 18);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, lUsuario, 24);
QV_ASSERT_CAMPO(_REG_FILTRO_AGENDA_PS, lFiller, 28);

struct _REG_PONTEIRO_AGENDA {
  std::uint16_t iMA;
  std::uint16_t iFiller[3];
  std::uint32_t lPonteiroAtTec;  // the service call
  std::uint32_t lPonteiroServ;  // the service line inside it
};
static_assert(sizeof(_REG_PONTEIRO_AGENDA) == 16);
QV_ASSERT_CAMPO(_REG_PONTEIRO_AGENDA, iMA, 0);
QV_ASSERT_CAMPO(_REG_PONTEIRO_AGENDA, iFiller, 2);
QV_ASSERT_CAMPO(_REG_PONTEIRO_AGENDA, lPonteiroAtTec, 8);
QV_ASSERT_CAMPO(_REG_PONTEIRO_AGENDA, lPonteiroServ, 12);

struct _REG_LISTA_PONTEIROS_AGENDA {
  std::uint32_t lQuantidade;
  std::uint32_t lFiller;
  void* pFiller;
  _REG_PONTEIRO_AGENDA* pPonteiros;
};
static_assert(sizeof(_REG_LISTA_PONTEIROS_AGENDA) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_AGENDA, lQuantidade, 0);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_AGENDA, lFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_AGENDA, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_PONTEIROS_AGENDA, pPonteiros, 16);

struct _REG_SERVICO_AGENDA_PS {
  std::uint32_t lPonteiroCliente;
  std::uint32_t lPonteiroServico;
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroAtendTec;
  std::uint32_t iDataSaida;
  std::uint32_t iFiller;
  char szCodigo[24];
};
static_assert(sizeof(_REG_SERVICO_AGENDA_PS) == 48);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, lPonteiroCliente, 0);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, lPonteiroServico, 4);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, lPonteiroExecutor, 8);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, lPonteiroAtendTec, 12);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, iDataSaida, 16);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, iFiller, 20);
QV_ASSERT_CAMPO(_REG_SERVICO_AGENDA_PS, szCodigo, 24);

struct _REG_LISTA_SERVICOS_AGENDA_PS {
  std::uint32_t lQuantidade;
  std::uint32_t lFiller;
  void* pFiller;
  _REG_SERVICO_AGENDA_PS* pServicos;
};
static_assert(sizeof(_REG_LISTA_SERVICOS_AGENDA_PS) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_SERVICOS_AGENDA_PS, lQuantidade, 0);
QV_ASSERT_CAMPO(_REG_LISTA_SERVICOS_AGENDA_PS, lFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_SERVICOS_AGENDA_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_SERVICOS_AGENDA_PS, pServicos, 16);

// ---- Sub-records of a service call ------------------------------------------

// Who last changed the call, and when.
struct _ULT_ALTERACAO_ATTEC {
  std::uint16_t iHoraMinuto;
  std::uint16_t iFiller[3];
  std::uint32_t lUsuario;
  std::uint32_t iData;
};
static_assert(sizeof(_ULT_ALTERACAO_ATTEC) == 16);
QV_ASSERT_CAMPO(_ULT_ALTERACAO_ATTEC, iHoraMinuto, 0);
QV_ASSERT_CAMPO(_ULT_ALTERACAO_ATTEC, iFiller, 2);
QV_ASSERT_CAMPO(_ULT_ALTERACAO_ATTEC, lUsuario, 8);
QV_ASSERT_CAMPO(_ULT_ALTERACAO_ATTEC, iData, 12);

// The external calendar's identifiers of the call's appointment, per user.
struct _REG_GE_EVENTO_GOOGLEPS {
  std::uint16_t usUsuarioEvento;
  std::uint8_t cFiller[6];
  std::uint32_t lPonteiroTextoIDAgenda;
  std::uint32_t lPonteiroTextoIDEvento;
  _REG_DF_TEXTOPS rIDEvento;
  _REG_DF_TEXTOPS rIDAgenda;
};
static_assert(sizeof(_REG_GE_EVENTO_GOOGLEPS) == 64);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, usUsuarioEvento, 0);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, cFiller, 2);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, lPonteiroTextoIDAgenda, 8);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, lPonteiroTextoIDEvento, 12);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, rIDEvento, 16);
QV_ASSERT_CAMPO(_REG_GE_EVENTO_GOOGLEPS, rIDAgenda, 40);

struct _REG_GE_LISTA_EVENTO_GOOGLEPS {
  std::uint32_t lQuantidadeEventos;
  std::uint32_t lFiller;
  _REG_GE_EVENTO_GOOGLEPS* pListaEventos;
  void* pFiller;
};
static_assert(sizeof(_REG_GE_LISTA_EVENTO_GOOGLEPS) == 24);
QV_ASSERT_CAMPO(_REG_GE_LISTA_EVENTO_GOOGLEPS, lQuantidadeEventos, 0);
QV_ASSERT_CAMPO(_REG_GE_LISTA_EVENTO_GOOGLEPS, lFiller, 4);
QV_ASSERT_CAMPO(_REG_GE_LISTA_EVENTO_GOOGLEPS, pListaEventos, 8);
QV_ASSERT_CAMPO(_REG_GE_LISTA_EVENTO_GOOGLEPS, pFiller, 16);

struct _REG_DEDUCOES_BC_INSS_PS {
  std::int64_t vValorDeducao;
  char cDescricao[256];
  std::uint8_t cDeducaoEmPercentual;
  std::uint8_t cTipo;
  std::uint8_t cFiller[6];
};
static_assert(sizeof(_REG_DEDUCOES_BC_INSS_PS) == 272);
QV_ASSERT_CAMPO(_REG_DEDUCOES_BC_INSS_PS, vValorDeducao, 0);
QV_ASSERT_CAMPO(_REG_DEDUCOES_BC_INSS_PS, cDescricao, 8);
QV_ASSERT_CAMPO(_REG_DEDUCOES_BC_INSS_PS, cDeducaoEmPercentual, 264);
QV_ASSERT_CAMPO(_REG_DEDUCOES_BC_INSS_PS, cTipo, 265);
QV_ASSERT_CAMPO(_REG_DEDUCOES_BC_INSS_PS, cFiller, 266);

// Tax withholdings of a call or of a service line.
struct _REG_RETENCOES_PS {
  std::uint32_t lCodigoReceitaPIS;
  std::uint32_t lCodigoReceitaCOFINS;
  std::uint32_t lCodigoReceitaCSLL;
  std::uint32_t lPtrDeducaoBCINSS;
  std::uint16_t iAliqIRRF;
  std::uint16_t iAliqPIS;
  std::uint16_t iAliqCOFINS;
  std::uint16_t iAliqCSLL;
  std::uint16_t iAliqISS;
  std::uint16_t iISSRetido;
  std::uint16_t iAliqINSS;
  std::uint16_t iPercRedBCISS;
  std::uint16_t iQtdDeducaoBCINSS;
  std::uint16_t iFiller[3];
  std::uint8_t cManterRetencoesCadServicos;
  std::uint8_t cFiller[7];
  _REG_DEDUCOES_BC_INSS_PS* pRegDeducoesBCINSS;  // iQtdDeducaoBCINSS
  void* pFiller;
};
static_assert(sizeof(_REG_RETENCOES_PS) == 64);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, lCodigoReceitaPIS, 0);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, lCodigoReceitaCOFINS, 4);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, lCodigoReceitaCSLL, 8);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, lPtrDeducaoBCINSS, 12);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqIRRF, 16);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqPIS, 18);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqCOFINS, 20);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqCSLL, 22);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqISS, 24);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iISSRetido, 26);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iAliqINSS, 28);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iPercRedBCISS, 30);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iQtdDeducaoBCINSS, 32);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, iFiller, 34);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, cManterRetencoesCadServicos, 40);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, cFiller, 41);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, pRegDeducoesBCINSS, 48);
QV_ASSERT_CAMPO(_REG_RETENCOES_PS, pFiller, 56);

struct _REG_PIS_COFINS_GE_PS {
  std::int64_t vFtrIncidenciaPis;
  std::int64_t vFtrIncidenciaCofins;
  std::int64_t vAliqDiferenPis;
  std::int64_t vAliqDiferenCofins;
  std::uint32_t lContaSped;
  std::uint32_t lGerencSped;
  std::uint32_t lCstPis;
  std::uint32_t lCstCofins;
  std::uint32_t lNaturezaReceita;
  char cNaturezaReceita[4];
};
static_assert(sizeof(_REG_PIS_COFINS_GE_PS) == 56);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, vFtrIncidenciaPis, 0);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, vFtrIncidenciaCofins, 8);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, vAliqDiferenPis, 16);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, vAliqDiferenCofins, 24);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, lContaSped, 32);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, lGerencSped, 36);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, lCstPis, 40);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, lCstCofins, 44);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, lNaturezaReceita, 48);
QV_ASSERT_CAMPO(_REG_PIS_COFINS_GE_PS, cNaturezaReceita, 52);

// A judicial process backing a withholding, with the amount it covers.
struct tagREG_EFD_PROCESSO_JURIDICO_NFPS {
  std::int64_t vValor;
  std::uint32_t lPonteiroProcesso;
  std::uint32_t lPonteiroSuspensao;
};
static_assert(sizeof(tagREG_EFD_PROCESSO_JURIDICO_NFPS) == 16);
QV_ASSERT_CAMPO(tagREG_EFD_PROCESSO_JURIDICO_NFPS, vValor, 0);
QV_ASSERT_CAMPO(tagREG_EFD_PROCESSO_JURIDICO_NFPS, lPonteiroProcesso, 8);
QV_ASSERT_CAMPO(tagREG_EFD_PROCESSO_JURIDICO_NFPS, lPonteiroSuspensao, 12);

// Amounts for the EFD-REINF return of an invoice item.
struct tagREG_EFD_REINF_ITENS_NFPS {
  std::int64_t vValorRetencoesServSubContratado;
  std::int64_t vValorRetencoesAjuizada;
  std::int64_t vValorServInsalubridade15Anos;
  std::int64_t vValorServInsalubridade20Anos;
  std::int64_t vValorServInsalubridade25Anos;
  std::int64_t vValorAdicRetencaoInsalubridade;
  std::int64_t vValorRetencaoAdicAjuizada;
  std::int64_t vFiler[4];
  std::uint32_t lPonteiroProcessoRetAjuiz;
  std::uint32_t lPonteiroProcessoRetAdic;
  std::uint16_t iQuantidadeProcessosRetAjuiz;
  std::uint16_t iQuantidadeProcessosRetAdic;
  std::uint8_t cFiller[28];
  tagREG_EFD_PROCESSO_JURIDICO_NFPS* pRegProcessosRetAjuiz;  // iQuantidadeProcessosRetAjuiz
  tagREG_EFD_PROCESSO_JURIDICO_NFPS* pRegProcessosRetAdic;  // iQuantidadeProcessosRetAdic
};
static_assert(sizeof(tagREG_EFD_REINF_ITENS_NFPS) == 144);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorRetencoesServSubContratado, 0);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorRetencoesAjuizada, 8);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorServInsalubridade15Anos, 16);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorServInsalubridade20Anos, 24);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorServInsalubridade25Anos, 32);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorAdicRetencaoInsalubridade, 40);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vValorRetencaoAdicAjuizada, 48);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, vFiler, 56);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, lPonteiroProcessoRetAjuiz, 88);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, lPonteiroProcessoRetAdic, 92);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, iQuantidadeProcessosRetAjuiz, 96);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, iQuantidadeProcessosRetAdic, 98);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, cFiller, 100);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, pRegProcessosRetAjuiz, 128);
QV_ASSERT_CAMPO(tagREG_EFD_REINF_ITENS_NFPS, pRegProcessosRetAdic, 136);

// A management (cost-centre) account share of a classification.
struct _REG_GERENCIAL_GE_PS {
  std::int64_t vValor;
  std::uint32_t lPonteiroContaGerencial;
  std::uint32_t lPonteiroContaContabil;
};
static_assert(sizeof(_REG_GERENCIAL_GE_PS) == 16);
QV_ASSERT_CAMPO(_REG_GERENCIAL_GE_PS, vValor, 0);
QV_ASSERT_CAMPO(_REG_GERENCIAL_GE_PS, lPonteiroContaGerencial, 8);
QV_ASSERT_CAMPO(_REG_GERENCIAL_GE_PS, lPonteiroContaContabil, 12);

struct _REG_CLASSIFICACAO_GE_PS {
  std::int64_t vValor;
  std::int64_t vQuantidade;
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroClassificacao;
  std::uint32_t lPonteiroGerencial;
  std::uint32_t lQuantidadeGerencial;
  std::uint32_t iFilial;
  std::uint8_t cFiller[4];
  _REG_GERENCIAL_GE_PS* pGerenciais;  // lQuantidadeGerencial
  void* pFiller;
};
static_assert(sizeof(_REG_CLASSIFICACAO_GE_PS) == 56);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, vValor, 0);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, vQuantidade, 8);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, lCodigo, 16);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, lPonteiroClassificacao, 20);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, lPonteiroGerencial, 24);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, lQuantidadeGerencial, 28);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, iFilial, 32);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, cFiller, 36);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, pGerenciais, 40);
QV_ASSERT_CAMPO(_REG_CLASSIFICACAO_GE_PS, pFiller, 48);

// One work session of a service line.
struct _REG_SESSAO_ATENDIMENTO_PS {
  std::uint16_t iHoraInicial;
  std::uint16_t iHoraFinal;
  std::uint16_t iFiller[2];
};
static_assert(sizeof(_REG_SESSAO_ATENDIMENTO_PS) == 8);
QV_ASSERT_CAMPO(_REG_SESSAO_ATENDIMENTO_PS, iHoraInicial, 0);
QV_ASSERT_CAMPO(_REG_SESSAO_ATENDIMENTO_PS, iHoraFinal, 2);
QV_ASSERT_CAMPO(_REG_SESSAO_ATENDIMENTO_PS, iFiller, 4);

// One service line of a call.
struct _REG_SERVICO_ATENDIMENTO_PS {
  char cChave[12];
  char szCodigoTributacaoISS[3];
  std::uint8_t cSituacao;
  std::uint8_t cSitTributaria;
  std::uint8_t cControleHoras;
  std::uint8_t cIntegrarAcompServ;
  std::uint8_t cFiller[5];
  char szOutros1[32];
  char szOutros2[32];
  std::uint16_t iQuantidadeClassificacao;
  std::uint16_t iQuantidadeSessao;
  std::uint16_t iHoraConclusao;
  std::uint16_t iMaACSGerado;
  std::int32_t bCobrar;
  std::int32_t bServicoExcedente;
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroServico;
  std::uint32_t lPonteiroComentario;
  std::uint32_t lPonteiroResultado;
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroSessao;
  std::uint32_t lPonteiroClassificacao;
  std::uint32_t lPonteiroDescricao;
  std::uint32_t lPonteiroTabPreco;
  std::uint32_t lPonteiroTipoRecolhimento;
  std::uint32_t lPonteiroRetencoes;
  std::uint32_t lPtrProjeto;
  std::uint32_t lPonteiroSitServico;
  std::uint32_t lPonteiroEFD_REINF;
  std::uint32_t lPonteiroACSGerado;
  std::uint32_t lFiller;
  BSTR bsComentario;
  BSTR bsResultado;
  BSTR bsDescricao;
  BSTR bsFiller;
  std::int64_t vValor;
  std::int64_t vTotalHoras;
  std::int64_t vValorTotal;
  std::uint32_t iDataRetorno;
  std::uint32_t iDataConclusao;
  std::uint32_t iDataSaida;
  std::uint32_t lIdentificadorServicoAcompanhamento;
  std::uint64_t rDMCAcompanhamentoGerado;
  std::uint64_t dmcRegIntegracaoAcompanhamento;
  _REG_RETENCOES_PS regRetencoes;
  tagREG_EFD_REINF_ITENS_NFPS regEFD_REINF;
  _REG_CLASSIFICACAO_GE_PS* pClassificacoes;  // iQuantidadeClassificacao
  _REG_SESSAO_ATENDIMENTO_PS* pSessoes;  // iQuantidadeSessao
};
static_assert(sizeof(_REG_SERVICO_ATENDIMENTO_PS) == 480);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cChave, 0);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, szCodigoTributacaoISS, 12);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cSituacao, 15);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cSitTributaria, 16);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cControleHoras, 17);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cIntegrarAcompServ, 18);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, cFiller, 19);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, szOutros1, 24);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, szOutros2, 56);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iQuantidadeClassificacao, 88);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iQuantidadeSessao, 90);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iHoraConclusao, 92);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iMaACSGerado, 94);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bCobrar, 96);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bServicoExcedente, 100);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lCodigo, 104);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroServico, 108);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroComentario, 112);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroResultado, 116);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroExecutor, 120);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroSessao, 124);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroClassificacao, 128);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroDescricao, 132);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroTabPreco, 136);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroTipoRecolhimento, 140);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroRetencoes, 144);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPtrProjeto, 148);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroSitServico, 152);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroEFD_REINF, 156);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lPonteiroACSGerado, 160);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lFiller, 164);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bsComentario, 168);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bsResultado, 176);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bsDescricao, 184);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, bsFiller, 192);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, vValor, 200);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, vTotalHoras, 208);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, vValorTotal, 216);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iDataRetorno, 224);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iDataConclusao, 228);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, iDataSaida, 232);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, lIdentificadorServicoAcompanhamento, 236);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, rDMCAcompanhamentoGerado, 240);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, dmcRegIntegracaoAcompanhamento, 248);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, regRetencoes, 256);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, regEFD_REINF, 320);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, pClassificacoes, 464);
QV_ASSERT_CAMPO(_REG_SERVICO_ATENDIMENTO_PS, pSessoes, 472);

// One expense line of a call.
struct _REG_DESPESA_ATENDIMENTO_PS {
  char cChave[12];
  char szCodigoTributacaoISS[3];
  std::uint8_t cSitTributaria;
  std::uint16_t iHoraInicial;
  std::uint16_t iHoraFinal;
  std::uint16_t iQuantidadeClassificacao;
  std::uint16_t iFiller;
  std::int32_t bCobrar;
  std::int32_t bFaturar;
  std::int32_t bDemonstrativo;
  std::int32_t bFiller;
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroComentario;
  std::uint32_t lPonteiroClassificacao;
  std::uint32_t lPonteiroDescricao;
  std::uint32_t lKmInicial;
  std::uint32_t lKmFinal;
  std::uint32_t lPonteiroTipoRecolhimento;
  std::uint32_t iGradeContabil;
  std::uint32_t lPonteiroPisCofins;
  std::uint32_t lPonteiroUnidadeMedida;
  std::uint32_t lPonteiroSitServico;
  std::uint32_t lFiller;
  std::int64_t vValor;
  std::int64_t vValorUnitarioHora;
  std::int64_t vValorUnitarioKM;
  std::int64_t vFiller;
  std::uint8_t cConsiderarHora;
  std::uint8_t szFiller[7];
  _REG_PIS_COFINS_GE_PS RegPisCofinsPs;
  BSTR bsComentario;
  BSTR bsDescricao;
  void* pFiller;
  _REG_CLASSIFICACAO_GE_PS* pClassificacoes;  // iQuantidadeClassificacao
};
static_assert(sizeof(_REG_DESPESA_ATENDIMENTO_PS) == 216);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, cChave, 0);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, szCodigoTributacaoISS, 12);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, cSitTributaria, 15);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, iHoraInicial, 16);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, iHoraFinal, 18);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, iQuantidadeClassificacao, 20);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, iFiller, 22);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bCobrar, 24);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bFaturar, 28);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bDemonstrativo, 32);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bFiller, 36);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lCodigo, 40);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroComentario, 44);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroClassificacao, 48);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroDescricao, 52);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lKmInicial, 56);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lKmFinal, 60);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroTipoRecolhimento, 64);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, iGradeContabil, 68);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroPisCofins, 72);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroUnidadeMedida, 76);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lPonteiroSitServico, 80);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, lFiller, 84);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, vValor, 88);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, vValorUnitarioHora, 96);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, vValorUnitarioKM, 104);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, vFiller, 112);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, cConsiderarHora, 120);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, szFiller, 121);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, RegPisCofinsPs, 128);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bsComentario, 184);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, bsDescricao, 192);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, pFiller, 200);
QV_ASSERT_CAMPO(_REG_DESPESA_ATENDIMENTO_PS, pClassificacoes, 208);

// ---- Service call -----------------------------------------------------------

struct _REG_ATENDIMENTO_PS {
  char szEmailExecutor[72];
  char szCargoSetor[64];
  char cContato[24];
  char cContrato[24];
  char cChave[16];
  std::uint8_t cNumeroImpressao;
  std::uint8_t cImportacao;
  std::uint8_t cOrigemAcompServ;
  std::uint8_t cSituacaoTributariaSomarItensNF;
  char szCodigoTributacaoISSSomarItensNF[3];
  std::uint8_t cSomarItensNF;
  std::uint8_t cNotaFiscalEletronica;
  std::uint8_t cConferido;
  std::uint8_t szFiller[6];
  std::uint16_t iFiller[2];
  std::uint16_t iHoraInicialAgendamento;
  std::uint16_t iHoraFinalAgendamento;
  std::int32_t bCancelado;
  std::int32_t bFaturado;
  std::int32_t bReembolsado;
  std::int32_t bWeb;
  std::int32_t bEhAtendExcedente;
  std::int32_t bListarDescricaoServEmail;
  std::int32_t bListarComentarioNaAgenda;
  std::int32_t bFiller;
  std::uint32_t lPonteiro;
  std::uint32_t lPonteiroCliente;
  std::uint32_t lPonteiroCliente2;
  std::uint32_t lPonteiroMensagem;
  std::uint32_t lPonteiroComentario;
  std::uint32_t lNumeroAtendimento;
  std::uint32_t lPonteiroServicoAtend;
  std::uint32_t lPonteiroDespesa;
  std::uint32_t lPonteiroFilial;
  std::uint32_t lPonteiroContrato;
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroComentarioAgendamento;
  std::uint32_t lPonteiroMensagemAgendamento;
  std::uint32_t iQuantidadeServicoAtend;
  std::uint32_t iQuantidadeDespesa;
  std::uint32_t lPonteiroAcompServOrigem;
  std::uint32_t lPonteiroDescricaoSomarItensNF;
  std::uint32_t lPonteiroSitServicoSomarItensNF;
  std::uint32_t lPonteiroRecolhimentoSomarItensNF;
  std::uint32_t lPonteiroUnMedidaSomarItensNF;
  std::uint32_t lPonteiroRetencoesSomarItensNF;
  std::uint32_t lPonteiroServicoSomarItensNF;
  std::uint32_t lCodigoServRPSSomarItensNF;
  std::uint32_t lPonteiroPISCOFINSSomarItensNF;
  std::uint32_t lPonteiroEFD_REINFSomarItensNF;
  std::uint32_t lPonteiroSituacaoServicoSugestao;
  std::uint32_t lPtrRepresentante;
  std::uint32_t lQtdRepresentante;
  std::uint32_t lPonteiroClassificacao;
  std::uint32_t lQuantidadeClassificacao;
  std::uint32_t lVersaoRegistro;
  std::uint32_t lPonteiroEventoAgenda;
  std::uint32_t lPonteiroListaPosIntegracoesACM;
  std::uint32_t lFiller;
  std::uint32_t iDataEmissao;
  std::uint32_t iDataFaturamento;
  std::uint32_t iDataVencimento;
  std::uint32_t iDataAgendamento;
  std::uint32_t iDataConclusao;
  std::uint32_t iFillerDma;
  std::int64_t i64NumeroNF;  // invoice number
  _ULT_ALTERACAO_ATTEC UltAlteracaoAtTec;
  BSTR bsComentario;
  BSTR bsComentarioAgendamento;
  BSTR bsDescricaoSomarItensNF;
  BSTR bsFiller;
  _REG_GE_LISTA_EVENTO_GOOGLEPS regListaEventosGoogle;
  _REG_DF_LISTA_QVDMCPS regListaPonteirosIntegACM;  // follow-up references
  _REG_RETENCOES_PS regRetencoesSomarItensNF;
  _REG_PIS_COFINS_GE_PS RegPisCofinsPsSomarItensNF;
  tagREG_EFD_REINF_ITENS_NFPS regEFDREINFPsSomarItensNF;
  _REG_SERVICO_ATENDIMENTO_PS* pServicos;  // iQuantidadeServicoAtend
  _REG_DESPESA_ATENDIMENTO_PS* pDespesas;  // iQuantidadeDespesa
  std::uint32_t* pRepresentante;  // lQtdRepresentante representative codes
  _REG_CLASSIFICACAO_GE_PS* pClassificacoes;  // lQuantidadeClassificacao
};
static_assert(sizeof(_REG_ATENDIMENTO_PS) == 816);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, szEmailExecutor, 0);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, szCargoSetor, 72);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cContato, 136);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cContrato, 160);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cChave, 184);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cNumeroImpressao, 200);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cImportacao, 201);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cOrigemAcompServ, 202);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cSituacaoTributariaSomarItensNF, 203);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, szCodigoTributacaoISSSomarItensNF, 204);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cSomarItensNF, 207);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cNotaFiscalEletronica, 208);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, cConferido, 209);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, szFiller, 210);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iFiller, 216);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iHoraInicialAgendamento, 220);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iHoraFinalAgendamento, 222);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bCancelado, 224);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bFaturado, 228);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bReembolsado, 232);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bWeb, 236);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bEhAtendExcedente, 240);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bListarDescricaoServEmail, 244);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bListarComentarioNaAgenda, 248);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bFiller, 252);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiro, 256);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroCliente, 260);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroCliente2, 264);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroMensagem, 268);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroComentario, 272);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lNumeroAtendimento, 276);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroServicoAtend, 280);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroDespesa, 284);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroFilial, 288);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroContrato, 292);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroExecutor, 296);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroComentarioAgendamento, 300);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroMensagemAgendamento, 304);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iQuantidadeServicoAtend, 308);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iQuantidadeDespesa, 312);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroAcompServOrigem, 316);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroDescricaoSomarItensNF, 320);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroSitServicoSomarItensNF, 324);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroRecolhimentoSomarItensNF, 328);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroUnMedidaSomarItensNF, 332);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroRetencoesSomarItensNF, 336);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroServicoSomarItensNF, 340);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lCodigoServRPSSomarItensNF, 344);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroPISCOFINSSomarItensNF, 348);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroEFD_REINFSomarItensNF, 352);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroSituacaoServicoSugestao, 356);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPtrRepresentante, 360);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lQtdRepresentante, 364);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroClassificacao, 368);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lQuantidadeClassificacao, 372);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lVersaoRegistro, 376);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroEventoAgenda, 380);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lPonteiroListaPosIntegracoesACM, 384);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, lFiller, 388);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iDataEmissao, 392);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iDataFaturamento, 396);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iDataVencimento, 400);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iDataAgendamento, 404);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iDataConclusao, 408);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, iFillerDma, 412);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, i64NumeroNF, 416);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, UltAlteracaoAtTec, 424);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bsComentario, 440);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bsComentarioAgendamento, 448);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bsDescricaoSomarItensNF, 456);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, bsFiller, 464);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, regListaEventosGoogle, 472);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, regListaPonteirosIntegACM, 496);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, regRetencoesSomarItensNF, 520);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, RegPisCofinsPsSomarItensNF, 584);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, regEFDREINFPsSomarItensNF, 640);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, pServicos, 784);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, pDespesas, 792);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, pRepresentante, 800);
QV_ASSERT_CAMPO(_REG_ATENDIMENTO_PS, pClassificacoes, 808);

// ---- Settings ---------------------------------------------------------------

struct _REG_PROPRIEDADES_ATENDIMENTO_PS {
  char cLeiauteQV[200];  // print layout of the suite's own report designer
  char cLeiauteWord[200];  // word-processor layout
  std::uint8_t bInformarServico;
  std::uint8_t bInformarQtdTotalHoras;
  std::uint8_t bAlterarDataHoraConclusao;
  std::uint8_t cConverteuServicos;
  std::uint8_t cConverteuServicoParaV2;
  std::uint8_t cConverteuUSHORTParaULONG;
  std::uint8_t cSugerirClassificacaoGerencial;
  std::uint8_t cSugerirCobrarServicos;
  std::uint8_t cEmailDocumento;
  std::uint8_t cEmailFormulario;
  std::uint8_t cNomeClienteAssunto;
  std::uint8_t cNomeClienteAnexo;
  std::uint8_t cSugerirAgendamentoPrimeiroServico;
  std::uint8_t cEnviarEmailAutomatico;
  std::uint8_t cListarDescricaoServicoNaNF;
  std::uint8_t cFiller[5];
  std::int32_t bImpressaoWord;
  std::int32_t bSugerirNumero;
  std::int32_t bAlterarNumAtend;
  std::int32_t bAlterarDataDeEmissao;
  std::int32_t bInformarDataConclusao;
  std::int32_t bControleDeHoras;
  std::uint32_t lPonteiroHistorico;
  std::uint32_t lProximoNumero;  // next suggested call number
  std::uint32_t lPtrNomeSttCliente2;
  std::uint32_t lQtdDiasEmAtrasoParaBloquearTitulo;
  std::uint32_t lCorConferido;  // colour
  std::uint32_t iEmissaoInicial;
  std::uint32_t iEmissaoFinal;
  char szOutros1[12];
  char szOutros2[12];
  _REG_DF_TEXTOPS rNomeCliente2;  // label used for the second client
};
static_assert(sizeof(_REG_PROPRIEDADES_ATENDIMENTO_PS) == 520);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cLeiauteQV, 0);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cLeiauteWord, 200);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bInformarServico, 400);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bInformarQtdTotalHoras, 401);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bAlterarDataHoraConclusao, 402);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cConverteuServicos, 403);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cConverteuServicoParaV2, 404);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cConverteuUSHORTParaULONG, 405);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cSugerirClassificacaoGerencial, 406);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cSugerirCobrarServicos, 407);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cEmailDocumento, 408);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cEmailFormulario, 409);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cNomeClienteAssunto, 410);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cNomeClienteAnexo, 411);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cSugerirAgendamentoPrimeiroServico, 412);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cEnviarEmailAutomatico, 413);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cListarDescricaoServicoNaNF, 414);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, cFiller, 415);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bImpressaoWord, 420);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bSugerirNumero, 424);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bAlterarNumAtend, 428);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bAlterarDataDeEmissao, 432);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bInformarDataConclusao, 436);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, bControleDeHoras, 440);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, lPonteiroHistorico, 444);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, lProximoNumero, 448);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, lPtrNomeSttCliente2, 452);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, lQtdDiasEmAtrasoParaBloquearTitulo, 456);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, lCorConferido, 460);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, iEmissaoInicial, 464);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, iEmissaoFinal, 468);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, szOutros1, 472);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, szOutros2, 484);
QV_ASSERT_CAMPO(_REG_PROPRIEDADES_ATENDIMENTO_PS, rNomeCliente2, 496);

// ---- Report requests --------------------------------------------------------

struct _REG_RELATORIO_ATENDIMENTO_PS {
  char cArquivoTmp[100];  // output temporary file
  char cRelatorio[100];  // report name
  char cRazaoSocial[100];  // company legal name for the heading
  char cComponente[4];
  _REG_FILTRO_ATENDIMENTO_PS RegFiltroPs;
};
static_assert(sizeof(_REG_RELATORIO_ATENDIMENTO_PS) == 1416);
QV_ASSERT_CAMPO(_REG_RELATORIO_ATENDIMENTO_PS, cArquivoTmp, 0);
QV_ASSERT_CAMPO(_REG_RELATORIO_ATENDIMENTO_PS, cRelatorio, 100);
QV_ASSERT_CAMPO(_REG_RELATORIO_ATENDIMENTO_PS, cRazaoSocial, 200);
QV_ASSERT_CAMPO(_REG_RELATORIO_ATENDIMENTO_PS, cComponente, 300);
QV_ASSERT_CAMPO(_REG_RELATORIO_ATENDIMENTO_PS, RegFiltroPs, 304);

struct _REG_FILTRO_REL_CONTROLE_HORAS {
  std::int32_t bTodosProjetos;
  std::int32_t bTodosProjetosTodosClientes;
  std::uint32_t lPtrProjeto;
  std::uint32_t lCliente;
  std::uint32_t iDataInicial;
  std::uint32_t iDataFinal;
  BSTR bsRazaoSocial;
  BSTR bsComponente;
  BSTR bsArqTemp;
  BSTR bsRelatorio;
  BSTR bsProjeto;
  BSTR bsFiller;
};
static_assert(sizeof(_REG_FILTRO_REL_CONTROLE_HORAS) == 72);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bTodosProjetos, 0);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bTodosProjetosTodosClientes, 4);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, lPtrProjeto, 8);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, lCliente, 12);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, iDataInicial, 16);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, iDataFinal, 20);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsRazaoSocial, 24);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsComponente, 32);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsArqTemp, 40);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsRelatorio, 48);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsProjeto, 56);
QV_ASSERT_CAMPO(_REG_FILTRO_REL_CONTROLE_HORAS, bsFiller, 64);

struct _REG_AGENDAMENTO_REL {
  std::uint32_t lNumeroAtendimento;
  std::uint32_t iData;
  BSTR bsExecutor;
  BSTR bsHoraInicial;
  BSTR bsHoraFinal;
  BSTR bsCliente;
};
static_assert(sizeof(_REG_AGENDAMENTO_REL) == 40);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, lNumeroAtendimento, 0);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, iData, 4);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, bsExecutor, 8);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, bsHoraInicial, 16);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, bsHoraFinal, 24);
QV_ASSERT_CAMPO(_REG_AGENDAMENTO_REL, bsCliente, 32);

struct _REG_LISTA_AGENDAMENTO_REL {
  std::uint32_t lQuantidade;
  std::uint32_t lFiller;
  void* pFiller;
  _REG_AGENDAMENTO_REL* pAgendamentos;  // lQuantidade
};
static_assert(sizeof(_REG_LISTA_AGENDAMENTO_REL) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_AGENDAMENTO_REL, lQuantidade, 0);
QV_ASSERT_CAMPO(_REG_LISTA_AGENDAMENTO_REL, lFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_AGENDAMENTO_REL, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_AGENDAMENTO_REL, pAgendamentos, 16);

struct _REG_REL_CONSULTA_AGENDAMENTO {
  std::uint32_t iDataInicial;
  std::uint32_t iDataFinal;
  _REG_LISTA_AGENDAMENTO_REL regLista;
  BSTR bsArqTemp;
  BSTR bsFiller;
};
static_assert(sizeof(_REG_REL_CONSULTA_AGENDAMENTO) == 48);
QV_ASSERT_CAMPO(_REG_REL_CONSULTA_AGENDAMENTO, iDataInicial, 0);
QV_ASSERT_CAMPO(_REG_REL_CONSULTA_AGENDAMENTO, iDataFinal, 4);
QV_ASSERT_CAMPO(_REG_REL_CONSULTA_AGENDAMENTO, regLista, 8);
QV_ASSERT_CAMPO(_REG_REL_CONSULTA_AGENDAMENTO, bsArqTemp, 32);
QV_ASSERT_CAMPO(_REG_REL_CONSULTA_AGENDAMENTO, bsFiller, 40);

// ---- Projects ---------------------------------------------------------------

struct _REG_FILTRO_PROJETO_PS {
  _REG_DF_TEXTOPS rNome;
  _REG_DF_TEXTOPS rCodigo;
  std::uint32_t lPonteiroCliente;
  std::uint32_t lFiller;
  std::uint8_t cRemoverInativos;
  std::uint8_t szFiller[7];
};
static_assert(sizeof(_REG_FILTRO_PROJETO_PS) == 64);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, rNome, 0);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, rCodigo, 24);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, lPonteiroCliente, 48);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, lFiller, 52);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, cRemoverInativos, 56);
QV_ASSERT_CAMPO(_REG_FILTRO_PROJETO_PS, szFiller, 57);

struct _REG_PTR_PROJETO_PS {
  std::uint32_t lQtd;
  std::uint32_t lFiller;
  void* pFiller;
  std::uint32_t* pPonteiros;  // lQtd project positions
};
static_assert(sizeof(_REG_PTR_PROJETO_PS) == 24);
QV_ASSERT_CAMPO(_REG_PTR_PROJETO_PS, lQtd, 0);
QV_ASSERT_CAMPO(_REG_PTR_PROJETO_PS, lFiller, 4);
QV_ASSERT_CAMPO(_REG_PTR_PROJETO_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_PTR_PROJETO_PS, pPonteiros, 16);

struct _REG_PROJETO_ATENDIMENTO_PS {
  _REG_DF_TEXTOPS rCodigo;
  _REG_DF_TEXTOPS rNome;
  std::uint32_t lPonteiroCodigo;
  std::uint32_t lPonteiroNome;
  std::uint32_t lPonteiroCliente;
  std::uint32_t lPos;
  std::uint8_t cProjetoInativo;
  std::uint8_t szFiller[7];
};
static_assert(sizeof(_REG_PROJETO_ATENDIMENTO_PS) == 72);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, rCodigo, 0);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, rNome, 24);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, lPonteiroCodigo, 48);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, lPonteiroNome, 52);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, lPonteiroCliente, 56);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, lPos, 60);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, cProjetoInativo, 64);
QV_ASSERT_CAMPO(_REG_PROJETO_ATENDIMENTO_PS, szFiller, 65);

struct _REG_LISTA_PROJETOS_PS {
  std::uint32_t iQuantidadeRegistros;
  std::uint32_t lFiller;
  void* pFiller;
  _REG_PROJETO_ATENDIMENTO_PS* pRegistros;
};
static_assert(sizeof(_REG_LISTA_PROJETOS_PS) == 24);
QV_ASSERT_CAMPO(_REG_LISTA_PROJETOS_PS, iQuantidadeRegistros, 0);
QV_ASSERT_CAMPO(_REG_LISTA_PROJETOS_PS, lFiller, 4);
QV_ASSERT_CAMPO(_REG_LISTA_PROJETOS_PS, pFiller, 8);
QV_ASSERT_CAMPO(_REG_LISTA_PROJETOS_PS, pRegistros, 16);

// ---- Descriptors ------------------------------------------------------------
// Every record that owns memory or crosses an interface. Records that own
// nothing and only travel inside arrays (sessions, management shares,
// pointers, INSS deductions, judicial processes) are copied as plain bytes.

template <> const QVDescritorRegistro& QVDescritor<IE_CAMPO_DATA_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PONTEIROS_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_CLIENTES_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_REGISTROS_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_AGENDA_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PONTEIROS_AGENDA>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_SERVICOS_AGENDA_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_GE_EVENTO_GOOGLEPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_GE_LISTA_EVENTO_GOOGLEPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_RETENCOES_PS>();
template <> const QVDescritorRegistro& QVDescritor<tagREG_EFD_REINF_ITENS_NFPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_CLASSIFICACAO_GE_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_SERVICO_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_DESPESA_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_PROPRIEDADES_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_RELATORIO_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_REL_CONTROLE_HORAS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_AGENDAMENTO_REL>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_AGENDAMENTO_REL>();
template <> const QVDescritorRegistro& QVDescritor<_REG_REL_CONSULTA_AGENDAMENTO>();
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_PROJETO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_PTR_PROJETO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PROJETOS_PS>();
