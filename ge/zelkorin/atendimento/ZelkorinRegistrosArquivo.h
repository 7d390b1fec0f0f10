// Stored records of the service-call (atendimento) database: the layouts of
// the data files, byte for byte. Sizes and every offset are asserted below
// each struct and must never change: the files outlive the program. All
// integers little-endian. A table of every layout: docs/stored-layouts.md.
//
// Conventions shared by every record:
//  - lPonteiro... / lPtr... fields that name a record of this database are
//    1-based positions in the file of that record (0: none); lists are a
//    count and the position of the first record, the others following it.
//  - Texts of the wire's system strings live in the text files and the
//    records hold their positions (0: no text).
//  - A wire bool32 is stored as one byte: 0, or 1 for any non-zero value.
//  - cFiller bytes are written as zero and ignored on reading.
//
// The call and service records are packed: their older versions placed
// values at offsets the conversion of old files keeps (the call's first 88
// bytes are those of the 128-byte record of the first version, and the
// service's values at 164..281 those of the first service layout), so
// several 32- and 64-bit values are not aligned.
#pragma once

#include <cstddef>
#include <cstdint>

#include "df/qvlibex/QVRegistrosDF.h"

#pragma pack(push, 1)

// ---- The service call: "GEATTEC2" + period, one file per month ---------------

struct REG_ATENDIMENTO_V2 {
  // Bytes 0..87: the first version's fields, where it had them.
  std::uint32_t lPonteiroCliente;
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroComentario;  // text
  std::uint32_t lPonteiroComentarioAgendamento;  // text
  std::uint32_t lNumeroAtendimento;  // unique over all months
  std::uint32_t lPonteiroServicoAtend;  // first service (iQuantidadeServicoAtend)
  std::uint32_t lPonteiroDespesa;  // first expense (iQuantidadeDespesa)
  // 28..37 held the first version's five 16-bit values, now widened at 250..281.
  std::uint32_t lPonteiroCliente2;
  std::uint32_t lPonteiroFilial;
  std::uint16_t iHoraInicialAgendamento;
  std::uint8_t cNumeroImpressao;
  char cChave[20];  // the wire's 16 bytes; the first version's 20
  char cContato[20];  // the wire's first 20 bytes; the last 4 at cContatoFim
  std::uint8_t cImportacao;
  std::uint32_t lPonteiroMensagem;
  std::uint32_t lPonteiroMensagemAgendamento;
  // From 88 on: the current version.
  char szEmailExecutor[72];
  char szCargoSetor[64];
  char cContrato[24];
  std::uint16_t iHoraFinalAgendamento;
  // 250..281: the first version's 16-bit dates and counts, widened.
  std::uint32_t iDataEmissao;
  std::uint32_t iDataVencimento;
  std::uint32_t iDataAgendamento;
  std::uint32_t iDataFaturamento;
  std::uint32_t iDataConclusao;
  std::uint32_t lPonteiroContrato;
  std::uint32_t iQuantidadeServicoAtend;
  std::uint32_t iQuantidadeDespesa;
  char cContatoFim[4];
  char szCodigoTributacaoISSSomarItensNF[3];
  std::uint8_t cOrigemAcompServ;
  std::uint8_t cSituacaoTributariaSomarItensNF;
  std::uint8_t cSomarItensNF;
  std::uint8_t cNotaFiscalEletronica;
  std::uint8_t cConferido;
  std::uint8_t bCancelado;
  std::uint8_t bFaturado;
  std::uint8_t bReembolsado;
  std::uint8_t bWeb;
  std::uint8_t bEhAtendExcedente;
  std::uint8_t bListarDescricaoServEmail;
  std::uint8_t bListarComentarioNaAgenda;
  std::uint8_t cFiller1[21];
  std::uint32_t lPonteiroAcompServOrigem;
  std::uint32_t lPonteiroDescricaoSomarItensNF;  // text
  std::uint32_t lPonteiroSitServicoSomarItensNF;
  std::uint32_t lPonteiroRecolhimentoSomarItensNF;
  std::uint32_t lPonteiroUnMedidaSomarItensNF;
  std::uint32_t lPonteiroRetencoesSomarItensNF;  // REG_RETENCOES_ATENDIMENTO_V1
  std::uint32_t lPonteiroServicoSomarItensNF;
  std::uint32_t lCodigoServRPSSomarItensNF;
  std::uint32_t lPonteiroPISCOFINSSomarItensNF;  // REG_PIS_COFINS_ATENDIMENTO_V1
  std::uint32_t lPonteiroEFD_REINFSomarItensNF;  // REG_EFD_REINF_V1 of the call's month
  std::uint32_t lPonteiroSituacaoServicoSugestao;
  std::uint32_t lPtrRepresentante;  // first representative (lQtdRepresentante)
  std::uint32_t lQtdRepresentante;
  std::uint32_t lPonteiroClassificacao;  // first classification (lQuantidadeClassificacao)
  std::uint32_t lQuantidadeClassificacao;
  std::uint32_t lVersaoRegistro;
  std::uint32_t lPonteiroEventoAgenda;  // the suite's list of calendar events
  std::uint32_t lPonteiroListaPosIntegracoesACM;  // first follow-up reference in the month's group member
  std::uint32_t lQtdPosIntegracoesACM;
  std::int64_t i64NumeroNF;
  // Who last changed the call, and when.
  std::uint16_t iHoraMinutoUltAlteracao;
  std::uint32_t lUsuarioUltAlteracao;
  std::uint32_t iDataUltAlteracao;
  std::uint8_t cFiller2[96];
};
static_assert(sizeof(REG_ATENDIMENTO_V2) == 512);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroCliente, 0);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroExecutor, 4);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroComentario, 8);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroComentarioAgendamento, 12);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lNumeroAtendimento, 16);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroServicoAtend, 20);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroDespesa, 24);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroCliente2, 28);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroFilial, 32);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iHoraInicialAgendamento, 36);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cNumeroImpressao, 38);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cChave, 39);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cContato, 59);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cImportacao, 79);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroMensagem, 80);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroMensagemAgendamento, 84);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, szEmailExecutor, 88);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, szCargoSetor, 160);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cContrato, 224);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iHoraFinalAgendamento, 248);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataEmissao, 250);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataVencimento, 254);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataAgendamento, 258);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataFaturamento, 262);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataConclusao, 266);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroContrato, 270);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iQuantidadeServicoAtend, 274);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iQuantidadeDespesa, 278);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cContatoFim, 282);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, szCodigoTributacaoISSSomarItensNF, 286);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cOrigemAcompServ, 289);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cSituacaoTributariaSomarItensNF, 290);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cSomarItensNF, 291);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cNotaFiscalEletronica, 292);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cConferido, 293);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bCancelado, 294);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bFaturado, 295);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bReembolsado, 296);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bWeb, 297);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bEhAtendExcedente, 298);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bListarDescricaoServEmail, 299);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, bListarComentarioNaAgenda, 300);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cFiller1, 301);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroAcompServOrigem, 322);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroDescricaoSomarItensNF, 326);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroSitServicoSomarItensNF, 330);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroRecolhimentoSomarItensNF, 334);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroUnMedidaSomarItensNF, 338);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroRetencoesSomarItensNF, 342);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroServicoSomarItensNF, 346);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lCodigoServRPSSomarItensNF, 350);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroPISCOFINSSomarItensNF, 354);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroEFD_REINFSomarItensNF, 358);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroSituacaoServicoSugestao, 362);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPtrRepresentante, 366);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lQtdRepresentante, 370);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroClassificacao, 374);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lQuantidadeClassificacao, 378);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lVersaoRegistro, 382);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroEventoAgenda, 386);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lPonteiroListaPosIntegracoesACM, 390);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lQtdPosIntegracoesACM, 394);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, i64NumeroNF, 398);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iHoraMinutoUltAlteracao, 406);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, lUsuarioUltAlteracao, 408);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, iDataUltAlteracao, 412);
QV_ASSERT_CAMPO(REG_ATENDIMENTO_V2, cFiller2, 416);

// ---- A service of a call: "GEATSRVV3" + period, one file per month -----------

struct REG_SERVICO_ATENDIMENTO_V3 {
  char szOutros1[32];
  char szOutros2[32];
  std::uint32_t lIdentificadorServicoAcompanhamento;
  std::uint8_t cFiller1[4];
  std::uint64_t rDMCAcompanhamentoGerado;
  std::uint64_t dmcRegIntegracaoAcompanhamento;
  std::uint8_t bServicoExcedente;
  std::uint8_t cIntegrarAcompServ;
  std::uint8_t cFiller2[74];
  // 164..281: where the first service layout's values were carried.
  std::uint8_t cSituacao;
  std::uint8_t cSitTributaria;
  std::int64_t vValor;
  std::int64_t vTotalHoras;
  std::int64_t vValorTotal;
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroServico;
  std::uint32_t lPonteiroComentario;  // text
  std::uint32_t lPonteiroResultado;  // text
  std::uint32_t lPonteiroExecutor;
  std::uint32_t lPonteiroSessao;  // first session (iQuantidadeSessao)
  std::uint32_t lPonteiroClassificacao;  // first classification (iQuantidadeClassificacao)
  std::uint32_t lPonteiroDescricao;  // text
  std::uint32_t lPonteiroTabPreco;
  std::uint32_t lPonteiroTipoRecolhimento;
  std::uint32_t lPtrProjeto;
  std::uint32_t lPonteiroSitServico;
  std::uint32_t iDataRetorno;
  std::uint32_t iDataSaida;
  std::uint32_t lPonteiroRetencoes;  // REG_RETENCOES_ATENDIMENTO_V1
  std::uint32_t lPonteiroEFD_REINF;  // REG_EFD_REINF_V1 of the call's month
  std::uint32_t lPonteiroACSGerado;
  std::uint16_t iQuantidadeClassificacao;
  std::uint16_t iQuantidadeSessao;
  std::uint16_t iMaACSGerado;
  std::uint16_t iHoraConclusao;
  std::uint8_t cFiller3[6];
  std::uint8_t cControleHoras;
  std::uint8_t bCobrar;
  char szCodigoTributacaoISS[3];
  std::uint8_t cFiller4;
  std::uint32_t iDataConclusao;
  std::uint8_t cFiller5[102];
};
static_assert(sizeof(REG_SERVICO_ATENDIMENTO_V3) == 384);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, szOutros1, 0);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, szOutros2, 32);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lIdentificadorServicoAcompanhamento, 64);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cFiller1, 68);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, rDMCAcompanhamentoGerado, 72);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, dmcRegIntegracaoAcompanhamento, 80);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, bServicoExcedente, 88);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cIntegrarAcompServ, 89);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cFiller2, 90);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cSituacao, 164);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cSitTributaria, 165);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, vValor, 166);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, vTotalHoras, 174);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, vValorTotal, 182);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lCodigo, 190);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroServico, 194);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroComentario, 198);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroResultado, 202);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroExecutor, 206);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroSessao, 210);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroClassificacao, 214);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroDescricao, 218);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroTabPreco, 222);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroTipoRecolhimento, 226);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPtrProjeto, 230);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroSitServico, 234);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iDataRetorno, 238);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iDataSaida, 242);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroRetencoes, 246);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroEFD_REINF, 250);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, lPonteiroACSGerado, 254);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iQuantidadeClassificacao, 258);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iQuantidadeSessao, 260);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iMaACSGerado, 262);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iHoraConclusao, 264);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cFiller3, 266);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cControleHoras, 272);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, bCobrar, 273);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, szCodigoTributacaoISS, 274);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cFiller4, 277);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, iDataConclusao, 278);
QV_ASSERT_CAMPO(REG_SERVICO_ATENDIMENTO_V3, cFiller5, 282);

#pragma pack(pop)

// ---- An expense of a call: "GeAtDsp" + period, one file per month ------------

struct REG_DESPESA_ATENDIMENTO_V1 {
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroComentario;  // text
  std::uint32_t lPonteiroClassificacao;  // first classification (iQuantidadeClassificacao)
  std::uint32_t lPonteiroDescricao;  // text
  std::uint32_t lKmInicial;
  std::uint32_t lKmFinal;
  std::uint32_t lPonteiroTipoRecolhimento;
  std::uint32_t iGradeContabil;
  std::uint32_t lPonteiroPisCofins;  // REG_PIS_COFINS_ATENDIMENTO_V1
  std::uint32_t lPonteiroUnidadeMedida;
  std::uint32_t lPonteiroSitServico;
  std::uint16_t iHoraInicial;
  std::uint16_t iHoraFinal;
  std::uint16_t iQuantidadeClassificacao;
  char szCodigoTributacaoISS[3];
  std::uint8_t cSitTributaria;
  std::uint8_t bCobrar;
  std::uint8_t bFaturar;
  std::uint8_t bDemonstrativo;
  std::uint8_t cConsiderarHora;
  std::uint8_t cFiller1[6];
  std::int64_t vValor;
  std::int64_t vValorUnitarioHora;
  std::int64_t vValorUnitarioKM;
  std::uint8_t cFiller2[120];
};
static_assert(sizeof(REG_DESPESA_ATENDIMENTO_V1) == 208);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lCodigo, 0);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroComentario, 4);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroClassificacao, 8);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroDescricao, 12);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lKmInicial, 16);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lKmFinal, 20);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroTipoRecolhimento, 24);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, iGradeContabil, 28);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroPisCofins, 32);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroUnidadeMedida, 36);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, lPonteiroSitServico, 40);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, iHoraInicial, 44);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, iHoraFinal, 46);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, iQuantidadeClassificacao, 48);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, szCodigoTributacaoISS, 50);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, cSitTributaria, 53);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, bCobrar, 54);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, bFaturar, 55);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, bDemonstrativo, 56);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, cConsiderarHora, 57);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, cFiller1, 58);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, vValor, 64);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, vValorUnitarioHora, 72);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, vValorUnitarioKM, 80);
QV_ASSERT_CAMPO(REG_DESPESA_ATENDIMENTO_V1, cFiller2, 88);

// ---- A classification of a call, service or expense: "GEAtCla" + period ------

struct REG_CLASSIFICACAO_ATENDIMENTO_V1 {
  std::int64_t vValor;
  std::int64_t vQuantidade;
  std::uint32_t lCodigo;
  std::uint32_t lPonteiroClassificacao;  // the classification of the master data
  std::uint32_t lPonteiroGerencial;  // first management share (lQuantidadeGerencial)
  std::uint32_t lQuantidadeGerencial;
  std::uint32_t iFilial;
  std::uint8_t cFiller[28];
};
static_assert(sizeof(REG_CLASSIFICACAO_ATENDIMENTO_V1) == 64);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, vValor, 0);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, vQuantidade, 8);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, lCodigo, 16);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, lPonteiroClassificacao, 20);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, lPonteiroGerencial, 24);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, lQuantidadeGerencial, 28);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, iFilial, 32);
QV_ASSERT_CAMPO(REG_CLASSIFICACAO_ATENDIMENTO_V1, cFiller, 36);

// ---- A management share of a classification: "GEAtGer" + period -------------

struct REG_GERENCIAL_ATENDIMENTO_V1 {
  std::int64_t vValor;
  std::uint32_t lPonteiroContaGerencial;
  std::uint32_t lPonteiroContaContabil;
  std::uint8_t cFiller[16];
};
static_assert(sizeof(REG_GERENCIAL_ATENDIMENTO_V1) == 32);
QV_ASSERT_CAMPO(REG_GERENCIAL_ATENDIMENTO_V1, vValor, 0);
QV_ASSERT_CAMPO(REG_GERENCIAL_ATENDIMENTO_V1, lPonteiroContaGerencial, 8);
QV_ASSERT_CAMPO(REG_GERENCIAL_ATENDIMENTO_V1, lPonteiroContaContabil, 12);
QV_ASSERT_CAMPO(REG_GERENCIAL_ATENDIMENTO_V1, cFiller, 16);

// ---- A work session of a service: "GEAtSes" + period -------------------------

struct REG_SESSAO_ATENDIMENTO_V1 {
  std::uint16_t iHoraInicial;
  std::uint16_t iHoraFinal;
  std::uint16_t iFiller[2];
};
static_assert(sizeof(REG_SESSAO_ATENDIMENTO_V1) == 8);
QV_ASSERT_CAMPO(REG_SESSAO_ATENDIMENTO_V1, iHoraInicial, 0);
QV_ASSERT_CAMPO(REG_SESSAO_ATENDIMENTO_V1, iHoraFinal, 2);
QV_ASSERT_CAMPO(REG_SESSAO_ATENDIMENTO_V1, iFiller, 4);

// ---- EFD-REINF amounts of a service or of a call: "GEATEFDV1" + period --------

struct REG_EFD_REINF_V1 {
  std::int64_t vValorRetencoesServSubContratado;
  std::int64_t vValorRetencoesAjuizada;
  std::int64_t vValorServInsalubridade15Anos;
  std::int64_t vValorServInsalubridade20Anos;
  std::int64_t vValorServInsalubridade25Anos;
  std::int64_t vValorAdicRetencaoInsalubridade;
  std::int64_t vValorRetencaoAdicAjuizada;
  std::uint32_t lPonteiroProcessoRetAjuiz;  // first REG_GE_EFD_PROC_RET (iQuantidadeProcessosRetAjuiz)
  std::uint32_t lPonteiroProcessoRetAdic;  // first REG_GE_EFD_PROC_RET (iQuantidadeProcessosRetAdic)
  std::uint16_t iQuantidadeProcessosRetAjuiz;
  std::uint16_t iQuantidadeProcessosRetAdic;
  std::uint8_t cFiller[60];
};
static_assert(sizeof(REG_EFD_REINF_V1) == 128);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorRetencoesServSubContratado, 0);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorRetencoesAjuizada, 8);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorServInsalubridade15Anos, 16);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorServInsalubridade20Anos, 24);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorServInsalubridade25Anos, 32);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorAdicRetencaoInsalubridade, 40);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, vValorRetencaoAdicAjuizada, 48);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, lPonteiroProcessoRetAjuiz, 56);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, lPonteiroProcessoRetAdic, 60);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, iQuantidadeProcessosRetAjuiz, 64);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, iQuantidadeProcessosRetAdic, 66);
QV_ASSERT_CAMPO(REG_EFD_REINF_V1, cFiller, 68);

// ---- Withholdings of a service or of a call: "GEAtRet", one file -------------

struct REG_RETENCOES_ATENDIMENTO_V1 {
  std::uint32_t lCodigoReceitaPIS;
  std::uint32_t lCodigoReceitaCOFINS;
  std::uint32_t lCodigoReceitaCSLL;
  std::uint32_t lPtrDeducaoBCINSS;  // first deduction (iQtdDeducaoBCINSS)
  std::uint16_t iAliqIRRF;
  std::uint16_t iAliqPIS;
  std::uint16_t iAliqCOFINS;
  std::uint16_t iAliqCSLL;
  std::uint16_t iAliqISS;
  std::uint16_t iISSRetido;
  std::uint16_t iAliqINSS;
  std::uint16_t iPercRedBCISS;
  std::uint16_t iQtdDeducaoBCINSS;
  std::uint8_t cManterRetencoesCadServicos;
  std::uint8_t cFiller[29];
};
static_assert(sizeof(REG_RETENCOES_ATENDIMENTO_V1) == 64);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, lCodigoReceitaPIS, 0);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, lCodigoReceitaCOFINS, 4);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, lCodigoReceitaCSLL, 8);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, lPtrDeducaoBCINSS, 12);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqIRRF, 16);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqPIS, 18);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqCOFINS, 20);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqCSLL, 22);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqISS, 24);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iISSRetido, 26);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iAliqINSS, 28);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iPercRedBCISS, 30);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, iQtdDeducaoBCINSS, 32);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, cManterRetencoesCadServicos, 34);
QV_ASSERT_CAMPO(REG_RETENCOES_ATENDIMENTO_V1, cFiller, 35);

// ---- A deduction from the INSS base of a withholding: "GEAtDedu", one file ---

struct REG_DEDUCOES_BCINSS_ATENDIMENTO_V1 {
  std::int64_t vValorDeducao;
  std::uint32_t lPtrDescricao;  // text of "GeAtDsDe"
  std::uint8_t cDeducaoEmPercentual;
  std::uint8_t cTipo;
  std::uint8_t cFiller[18];
};
static_assert(sizeof(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1) == 32);
QV_ASSERT_CAMPO(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1, vValorDeducao, 0);
QV_ASSERT_CAMPO(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1, lPtrDescricao, 8);
QV_ASSERT_CAMPO(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1, cDeducaoEmPercentual, 12);
QV_ASSERT_CAMPO(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1, cTipo, 13);
QV_ASSERT_CAMPO(REG_DEDUCOES_BCINSS_ATENDIMENTO_V1, cFiller, 14);

// ---- PIS/COFINS of an expense or of a call: "GEATPC", one file ---------------

struct REG_PIS_COFINS_ATENDIMENTO_V1 {
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
  std::uint8_t cFiller[72];
};
static_assert(sizeof(REG_PIS_COFINS_ATENDIMENTO_V1) == 128);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, vFtrIncidenciaPis, 0);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, vFtrIncidenciaCofins, 8);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, vAliqDiferenPis, 16);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, vAliqDiferenCofins, 24);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, lContaSped, 32);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, lGerencSped, 36);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, lCstPis, 40);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, lCstCofins, 44);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, lNaturezaReceita, 48);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, cNaturezaReceita, 52);
QV_ASSERT_CAMPO(REG_PIS_COFINS_ATENDIMENTO_V1, cFiller, 56);

// ---- A representative of a call: "GEATRPS", one file, one code per record ----

using REG_REPRESENTANTE_ATENDIMENTO = std::uint32_t;

// ---- A judicial process of an EFD-REINF record: "GeProcJurEFDATTEC" ----------

struct REG_GE_EFD_PROC_RET {
  std::int64_t vValor;
  std::uint32_t lPonteiroProcesso;
  std::uint32_t lPonteiroSuspensao;
};
static_assert(sizeof(REG_GE_EFD_PROC_RET) == 16);
QV_ASSERT_CAMPO(REG_GE_EFD_PROC_RET, vValor, 0);
QV_ASSERT_CAMPO(REG_GE_EFD_PROC_RET, lPonteiroProcesso, 8);
QV_ASSERT_CAMPO(REG_GE_EFD_PROC_RET, lPonteiroSuspensao, 12);

// ---- The version of the database's layouts: "GEATENDIMENTOTECNICOVS.dat" -----

// The layouts above are version 2; a record of zeros (no file) is version 0.
inline constexpr std::uint16_t kQVVersaoAtendimentoTecnico = 2;

struct REG_GE_ATENDIMENTOTECNICO_VERSAO {
  std::uint16_t usVersao;
  std::uint8_t cFiller[14];
};
static_assert(sizeof(REG_GE_ATENDIMENTOTECNICO_VERSAO) == 16);
QV_ASSERT_CAMPO(REG_GE_ATENDIMENTOTECNICO_VERSAO, usVersao, 0);
QV_ASSERT_CAMPO(REG_GE_ATENDIMENTOTECNICO_VERSAO, cFiller, 2);

// ---- The module's service-call settings: "GEATTPROP.dat" ---------------------
//
// The conversion from the settings of the previous layout ("GEAtProV2.dat",
// 512 bytes) fills it as the comments say (old offsets in brackets); the
// fields it does not name start at zero.

struct REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 {
  char cLeiauteQV[200];  // [12]
  char cLeiauteWord[200];  // [212]
  // The old flag byte [412], one bit each: 0, 1, 2, 3, 5, 6, 7 (bit 4 is dropped).
  std::uint8_t bImpressaoWord;
  std::uint8_t bSugerirNumero;
  std::uint8_t bAlterarNumAtend;
  std::uint8_t bAlterarDataDeEmissao;
  std::uint8_t bInformarDataConclusao;
  std::uint8_t bControleDeHoras;
  std::uint8_t bInformarServico;
  std::uint8_t cSugerirClassificacaoGerencial;  // [413]
  std::uint8_t cEmailDocumento;  // [465]
  std::uint8_t cEmailFormulario;  // [464]
  std::uint8_t cNomeClienteAssunto;  // [466]
  std::uint8_t cNomeClienteAnexo;  // [467]
  std::uint8_t cListarDescricaoServicoNaNF;  // 1 after the conversion
  std::uint8_t bInformarQtdTotalHoras;
  std::uint8_t bAlterarDataHoraConclusao;
  std::uint8_t cSugerirCobrarServicos;
  std::uint8_t cSugerirAgendamentoPrimeiroServico;
  std::uint8_t cEnviarEmailAutomatico;
  std::uint8_t cConverteuServicos;
  std::uint8_t cConverteuServicoParaV2;
  std::uint8_t cConverteuUSHORTParaULONG;
  std::uint8_t cFiller1[3];
  std::uint32_t lProximoNumero;  // [0] next suggested call number; only grows
  std::uint32_t lPonteiroHistorico;  // [4]
  std::uint32_t lQtdDiasEmAtrasoParaBloquearTitulo;  // [418]
  std::uint32_t lCorConferido;  // [468]
  // Month codes of the search's default emission range ([424], [428]; old
  // values of 34441 and above, no month, become 0).
  std::uint32_t iEmissaoInicial;
  std::uint32_t iEmissaoFinal;
  std::uint32_t lPonteiroNomeCliente2;  // text of "GEATTPROPTXT.dat" (old [414], a text of "GeAtStrV1")
  char szOutros1[12];  // [432]
  char szOutros2[12];  // [444]
  std::uint8_t cFiller2[164];
};
static_assert(sizeof(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1) == 640);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cLeiauteQV, 0);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cLeiauteWord, 200);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bImpressaoWord, 400);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bSugerirNumero, 401);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bAlterarNumAtend, 402);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bAlterarDataDeEmissao, 403);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bInformarDataConclusao, 404);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bControleDeHoras, 405);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bInformarServico, 406);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cSugerirClassificacaoGerencial, 407);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cEmailDocumento, 408);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cEmailFormulario, 409);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cNomeClienteAssunto, 410);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cNomeClienteAnexo, 411);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cListarDescricaoServicoNaNF, 412);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bInformarQtdTotalHoras, 413);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, bAlterarDataHoraConclusao, 414);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cSugerirCobrarServicos, 415);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cSugerirAgendamentoPrimeiroServico, 416);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cEnviarEmailAutomatico, 417);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cConverteuServicos, 418);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cConverteuServicoParaV2, 419);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cConverteuUSHORTParaULONG, 420);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cFiller1, 421);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, lProximoNumero, 424);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, lPonteiroHistorico, 428);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, lQtdDiasEmAtrasoParaBloquearTitulo, 432);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, lCorConferido, 436);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, iEmissaoInicial, 440);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, iEmissaoFinal, 444);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, lPonteiroNomeCliente2, 448);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, szOutros1, 452);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, szOutros2, 464);
QV_ASSERT_CAMPO(REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1, cFiller2, 476);
