#include "ge/zelkorin/atendimento/ZelkorinConversaoRegistros.h"

#include <cstdio>
#include <cstring>

#include "df/qvlibex/QVDatas.h"

namespace {

// A wire bool32 on disk: one byte, 0 or 1.
std::uint8_t Byte(std::int32_t b) { return b != 0 ? 1 : 0; }
std::int32_t Bool32(std::uint8_t c) { return c != 0 ? 1 : 0; }

// A text field copied between fields of different sizes: at most the
// smaller size, always terminated inside the destination, the rest zero.
template <std::size_t N, std::size_t M>
void CopiaTexto(char (&destino)[N], const char (&origem)[M]) {
  std::memset(destino, 0, N);
  std::size_t n = 0;
  while (n < M && n + 1 < N && origem[n] != '\0') ++n;
  std::memcpy(destino, origem, n);
}

// Same-size fields travel byte for byte.
template <std::size_t N>
void CopiaCampo(char (&destino)[N], const char (&origem)[N]) {
  std::memcpy(destino, origem, N);
}

}  // namespace

void QVAtendimentoParaArquivo(const _REG_ATENDIMENTO_PS& ps, REG_ATENDIMENTO_V2& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.lPonteiroCliente = ps.lPonteiroCliente;
  r.lPonteiroExecutor = ps.lPonteiroExecutor;
  r.lNumeroAtendimento = ps.lNumeroAtendimento;
  r.lPonteiroCliente2 = ps.lPonteiroCliente2;
  r.lPonteiroFilial = ps.lPonteiroFilial;
  r.iHoraInicialAgendamento = ps.iHoraInicialAgendamento;
  r.cNumeroImpressao = ps.cNumeroImpressao;
  CopiaTexto(r.cChave, ps.cChave);
  // The contact's 24 bytes: the first 20 where the first version kept it,
  // the last 4 beside the current fields.
  std::memcpy(r.cContato, ps.cContato, sizeof r.cContato);
  std::memcpy(r.cContatoFim, ps.cContato + sizeof r.cContato, sizeof r.cContatoFim);
  r.cImportacao = ps.cImportacao;
  r.lPonteiroMensagem = ps.lPonteiroMensagem;
  r.lPonteiroMensagemAgendamento = ps.lPonteiroMensagemAgendamento;
  CopiaCampo(r.szEmailExecutor, ps.szEmailExecutor);
  CopiaCampo(r.szCargoSetor, ps.szCargoSetor);
  CopiaCampo(r.cContrato, ps.cContrato);
  r.iHoraFinalAgendamento = ps.iHoraFinalAgendamento;
  r.iDataEmissao = ps.iDataEmissao;
  r.iDataVencimento = ps.iDataVencimento;
  r.iDataAgendamento = ps.iDataAgendamento;
  r.iDataFaturamento = ps.iDataFaturamento;
  r.iDataConclusao = ps.iDataConclusao;
  r.lPonteiroContrato = ps.lPonteiroContrato;
  r.iQuantidadeServicoAtend = ps.iQuantidadeServicoAtend;
  r.iQuantidadeDespesa = ps.iQuantidadeDespesa;
  CopiaCampo(r.szCodigoTributacaoISSSomarItensNF, ps.szCodigoTributacaoISSSomarItensNF);
  r.cOrigemAcompServ = ps.cOrigemAcompServ;
  r.cSituacaoTributariaSomarItensNF = ps.cSituacaoTributariaSomarItensNF;
  r.cSomarItensNF = ps.cSomarItensNF;
  r.cNotaFiscalEletronica = ps.cNotaFiscalEletronica;
  r.cConferido = ps.cConferido;
  r.bCancelado = Byte(ps.bCancelado);
  r.bFaturado = Byte(ps.bFaturado);
  r.bReembolsado = Byte(ps.bReembolsado);
  r.bWeb = Byte(ps.bWeb);
  r.bEhAtendExcedente = Byte(ps.bEhAtendExcedente);
  r.bListarDescricaoServEmail = Byte(ps.bListarDescricaoServEmail);
  r.bListarComentarioNaAgenda = Byte(ps.bListarComentarioNaAgenda);
  r.lPonteiroAcompServOrigem = ps.lPonteiroAcompServOrigem;
  r.lPonteiroSitServicoSomarItensNF = ps.lPonteiroSitServicoSomarItensNF;
  r.lPonteiroRecolhimentoSomarItensNF = ps.lPonteiroRecolhimentoSomarItensNF;
  r.lPonteiroUnMedidaSomarItensNF = ps.lPonteiroUnMedidaSomarItensNF;
  r.lPonteiroServicoSomarItensNF = ps.lPonteiroServicoSomarItensNF;
  r.lCodigoServRPSSomarItensNF = ps.lCodigoServRPSSomarItensNF;
  r.lPonteiroSituacaoServicoSugestao = ps.lPonteiroSituacaoServicoSugestao;
  r.lQtdRepresentante = ps.lQtdRepresentante;
  r.lQuantidadeClassificacao = ps.lQuantidadeClassificacao;
  r.lVersaoRegistro = ps.lVersaoRegistro;
  r.lQtdPosIntegracoesACM = ps.regListaPonteirosIntegACM.ulQuantidade;
  r.i64NumeroNF = ps.i64NumeroNF;
  r.iHoraMinutoUltAlteracao = ps.UltAlteracaoAtTec.iHoraMinuto;
  r.lUsuarioUltAlteracao = ps.UltAlteracaoAtTec.lUsuario;
  r.iDataUltAlteracao = ps.UltAlteracaoAtTec.iData;
}

void QVAtendimentoParaPs(const REG_ATENDIMENTO_V2& r, _REG_ATENDIMENTO_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.lPonteiroCliente = r.lPonteiroCliente;
  ps.lPonteiroExecutor = r.lPonteiroExecutor;
  ps.lPonteiroComentario = r.lPonteiroComentario;
  ps.lPonteiroComentarioAgendamento = r.lPonteiroComentarioAgendamento;
  ps.lNumeroAtendimento = r.lNumeroAtendimento;
  ps.lPonteiroServicoAtend = r.lPonteiroServicoAtend;
  ps.lPonteiroDespesa = r.lPonteiroDespesa;
  ps.lPonteiroCliente2 = r.lPonteiroCliente2;
  ps.lPonteiroFilial = r.lPonteiroFilial;
  ps.iHoraInicialAgendamento = r.iHoraInicialAgendamento;
  ps.cNumeroImpressao = r.cNumeroImpressao;
  CopiaTexto(ps.cChave, r.cChave);
  std::memcpy(ps.cContato, r.cContato, sizeof r.cContato);
  std::memcpy(ps.cContato + sizeof r.cContato, r.cContatoFim, sizeof r.cContatoFim);
  ps.cImportacao = r.cImportacao;
  ps.lPonteiroMensagem = r.lPonteiroMensagem;
  ps.lPonteiroMensagemAgendamento = r.lPonteiroMensagemAgendamento;
  CopiaCampo(ps.szEmailExecutor, r.szEmailExecutor);
  CopiaCampo(ps.szCargoSetor, r.szCargoSetor);
  CopiaCampo(ps.cContrato, r.cContrato);
  ps.iHoraFinalAgendamento = r.iHoraFinalAgendamento;
  ps.iDataEmissao = r.iDataEmissao;
  ps.iDataVencimento = r.iDataVencimento;
  ps.iDataAgendamento = r.iDataAgendamento;
  ps.iDataFaturamento = r.iDataFaturamento;
  ps.iDataConclusao = r.iDataConclusao;
  ps.lPonteiroContrato = r.lPonteiroContrato;
  ps.iQuantidadeServicoAtend = r.iQuantidadeServicoAtend;
  ps.iQuantidadeDespesa = r.iQuantidadeDespesa;
  CopiaCampo(ps.szCodigoTributacaoISSSomarItensNF, r.szCodigoTributacaoISSSomarItensNF);
  ps.cOrigemAcompServ = r.cOrigemAcompServ;
  ps.cSituacaoTributariaSomarItensNF = r.cSituacaoTributariaSomarItensNF;
  ps.cSomarItensNF = r.cSomarItensNF;
  ps.cNotaFiscalEletronica = r.cNotaFiscalEletronica;
  ps.cConferido = r.cConferido;
  ps.bCancelado = Bool32(r.bCancelado);
  ps.bFaturado = Bool32(r.bFaturado);
  ps.bReembolsado = Bool32(r.bReembolsado);
  ps.bWeb = Bool32(r.bWeb);
  ps.bEhAtendExcedente = Bool32(r.bEhAtendExcedente);
  ps.bListarDescricaoServEmail = Bool32(r.bListarDescricaoServEmail);
  ps.bListarComentarioNaAgenda = Bool32(r.bListarComentarioNaAgenda);
  ps.lPonteiroAcompServOrigem = r.lPonteiroAcompServOrigem;
  ps.lPonteiroDescricaoSomarItensNF = r.lPonteiroDescricaoSomarItensNF;
  ps.lPonteiroSitServicoSomarItensNF = r.lPonteiroSitServicoSomarItensNF;
  ps.lPonteiroRecolhimentoSomarItensNF = r.lPonteiroRecolhimentoSomarItensNF;
  ps.lPonteiroUnMedidaSomarItensNF = r.lPonteiroUnMedidaSomarItensNF;
  ps.lPonteiroRetencoesSomarItensNF = r.lPonteiroRetencoesSomarItensNF;
  ps.lPonteiroServicoSomarItensNF = r.lPonteiroServicoSomarItensNF;
  ps.lCodigoServRPSSomarItensNF = r.lCodigoServRPSSomarItensNF;
  ps.lPonteiroPISCOFINSSomarItensNF = r.lPonteiroPISCOFINSSomarItensNF;
  ps.lPonteiroEFD_REINFSomarItensNF = r.lPonteiroEFD_REINFSomarItensNF;
  ps.lPonteiroSituacaoServicoSugestao = r.lPonteiroSituacaoServicoSugestao;
  ps.lPtrRepresentante = r.lPtrRepresentante;
  ps.lQtdRepresentante = r.lQtdRepresentante;
  ps.lPonteiroClassificacao = r.lPonteiroClassificacao;
  ps.lQuantidadeClassificacao = r.lQuantidadeClassificacao;
  ps.lVersaoRegistro = r.lVersaoRegistro;
  ps.lPonteiroEventoAgenda = r.lPonteiroEventoAgenda;
  ps.lPonteiroListaPosIntegracoesACM = r.lPonteiroListaPosIntegracoesACM;
  ps.regListaPonteirosIntegACM.ulQuantidade = r.lQtdPosIntegracoesACM;
  ps.i64NumeroNF = r.i64NumeroNF;
  ps.UltAlteracaoAtTec.iHoraMinuto = r.iHoraMinutoUltAlteracao;
  ps.UltAlteracaoAtTec.lUsuario = r.lUsuarioUltAlteracao;
  ps.UltAlteracaoAtTec.iData = r.iDataUltAlteracao;
}

void QVServicoParaArquivo(const _REG_SERVICO_ATENDIMENTO_PS& ps, REG_SERVICO_ATENDIMENTO_V3& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  CopiaCampo(r.szOutros1, ps.szOutros1);
  CopiaCampo(r.szOutros2, ps.szOutros2);
  r.lIdentificadorServicoAcompanhamento = ps.lIdentificadorServicoAcompanhamento;
  r.rDMCAcompanhamentoGerado = ps.rDMCAcompanhamentoGerado;
  r.dmcRegIntegracaoAcompanhamento = ps.dmcRegIntegracaoAcompanhamento;
  r.bServicoExcedente = Byte(ps.bServicoExcedente);
  r.cIntegrarAcompServ = ps.cIntegrarAcompServ;
  r.cSituacao = ps.cSituacao;
  r.cSitTributaria = ps.cSitTributaria;
  r.vValor = ps.vValor;
  r.vTotalHoras = ps.vTotalHoras;
  r.vValorTotal = ps.vValorTotal;
  r.lCodigo = ps.lCodigo;
  r.lPonteiroServico = ps.lPonteiroServico;
  r.lPonteiroExecutor = ps.lPonteiroExecutor;
  r.lPonteiroTabPreco = ps.lPonteiroTabPreco;
  r.lPonteiroTipoRecolhimento = ps.lPonteiroTipoRecolhimento;
  r.lPtrProjeto = ps.lPtrProjeto;
  r.lPonteiroSitServico = ps.lPonteiroSitServico;
  r.iDataRetorno = ps.iDataRetorno;
  r.iDataSaida = ps.iDataSaida;
  r.lPonteiroACSGerado = ps.lPonteiroACSGerado;
  r.iQuantidadeClassificacao = ps.iQuantidadeClassificacao;
  r.iQuantidadeSessao = ps.iQuantidadeSessao;
  r.iMaACSGerado = ps.iMaACSGerado;
  r.iHoraConclusao = ps.iHoraConclusao;
  r.cControleHoras = ps.cControleHoras;
  r.bCobrar = Byte(ps.bCobrar);
  CopiaCampo(r.szCodigoTributacaoISS, ps.szCodigoTributacaoISS);
  r.iDataConclusao = ps.iDataConclusao;
}

void QVServicoParaPs(const REG_SERVICO_ATENDIMENTO_V3& r, _REG_SERVICO_ATENDIMENTO_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  CopiaCampo(ps.szOutros1, r.szOutros1);
  CopiaCampo(ps.szOutros2, r.szOutros2);
  ps.lIdentificadorServicoAcompanhamento = r.lIdentificadorServicoAcompanhamento;
  ps.rDMCAcompanhamentoGerado = r.rDMCAcompanhamentoGerado;
  ps.dmcRegIntegracaoAcompanhamento = r.dmcRegIntegracaoAcompanhamento;
  ps.bServicoExcedente = Bool32(r.bServicoExcedente);
  ps.cIntegrarAcompServ = r.cIntegrarAcompServ;
  ps.cSituacao = r.cSituacao;
  ps.cSitTributaria = r.cSitTributaria;
  ps.vValor = r.vValor;
  ps.vTotalHoras = r.vTotalHoras;
  ps.vValorTotal = r.vValorTotal;
  ps.lCodigo = r.lCodigo;
  ps.lPonteiroServico = r.lPonteiroServico;
  ps.lPonteiroComentario = r.lPonteiroComentario;
  ps.lPonteiroResultado = r.lPonteiroResultado;
  ps.lPonteiroExecutor = r.lPonteiroExecutor;
  ps.lPonteiroSessao = r.lPonteiroSessao;
  ps.lPonteiroClassificacao = r.lPonteiroClassificacao;
  ps.lPonteiroDescricao = r.lPonteiroDescricao;
  ps.lPonteiroTabPreco = r.lPonteiroTabPreco;
  ps.lPonteiroTipoRecolhimento = r.lPonteiroTipoRecolhimento;
  ps.lPtrProjeto = r.lPtrProjeto;
  ps.lPonteiroSitServico = r.lPonteiroSitServico;
  ps.iDataRetorno = r.iDataRetorno;
  ps.iDataSaida = r.iDataSaida;
  ps.lPonteiroRetencoes = r.lPonteiroRetencoes;
  ps.lPonteiroEFD_REINF = r.lPonteiroEFD_REINF;
  ps.lPonteiroACSGerado = r.lPonteiroACSGerado;
  ps.iQuantidadeClassificacao = r.iQuantidadeClassificacao;
  ps.iQuantidadeSessao = r.iQuantidadeSessao;
  ps.iMaACSGerado = r.iMaACSGerado;
  ps.iHoraConclusao = r.iHoraConclusao;
  ps.cControleHoras = r.cControleHoras;
  ps.bCobrar = Bool32(r.bCobrar);
  CopiaCampo(ps.szCodigoTributacaoISS, r.szCodigoTributacaoISS);
  ps.iDataConclusao = r.iDataConclusao;
}

void QVDespesaParaArquivo(const _REG_DESPESA_ATENDIMENTO_PS& ps, REG_DESPESA_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.lCodigo = ps.lCodigo;
  r.lKmInicial = ps.lKmInicial;
  r.lKmFinal = ps.lKmFinal;
  r.lPonteiroTipoRecolhimento = ps.lPonteiroTipoRecolhimento;
  r.iGradeContabil = ps.iGradeContabil;
  r.lPonteiroUnidadeMedida = ps.lPonteiroUnidadeMedida;
  r.lPonteiroSitServico = ps.lPonteiroSitServico;
  r.iHoraInicial = ps.iHoraInicial;
  r.iHoraFinal = ps.iHoraFinal;
  r.iQuantidadeClassificacao = ps.iQuantidadeClassificacao;
  CopiaCampo(r.szCodigoTributacaoISS, ps.szCodigoTributacaoISS);
  r.cSitTributaria = ps.cSitTributaria;
  r.bCobrar = Byte(ps.bCobrar);
  r.bFaturar = Byte(ps.bFaturar);
  r.bDemonstrativo = Byte(ps.bDemonstrativo);
  r.cConsiderarHora = ps.cConsiderarHora;
  r.vValor = ps.vValor;
  r.vValorUnitarioHora = ps.vValorUnitarioHora;
  r.vValorUnitarioKM = ps.vValorUnitarioKM;
}

void QVDespesaParaPs(const REG_DESPESA_ATENDIMENTO_V1& r, _REG_DESPESA_ATENDIMENTO_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.lCodigo = r.lCodigo;
  ps.lPonteiroComentario = r.lPonteiroComentario;
  ps.lPonteiroClassificacao = r.lPonteiroClassificacao;
  ps.lPonteiroDescricao = r.lPonteiroDescricao;
  ps.lKmInicial = r.lKmInicial;
  ps.lKmFinal = r.lKmFinal;
  ps.lPonteiroTipoRecolhimento = r.lPonteiroTipoRecolhimento;
  ps.iGradeContabil = r.iGradeContabil;
  ps.lPonteiroPisCofins = r.lPonteiroPisCofins;
  ps.lPonteiroUnidadeMedida = r.lPonteiroUnidadeMedida;
  ps.lPonteiroSitServico = r.lPonteiroSitServico;
  ps.iHoraInicial = r.iHoraInicial;
  ps.iHoraFinal = r.iHoraFinal;
  ps.iQuantidadeClassificacao = r.iQuantidadeClassificacao;
  CopiaCampo(ps.szCodigoTributacaoISS, r.szCodigoTributacaoISS);
  ps.cSitTributaria = r.cSitTributaria;
  ps.bCobrar = Bool32(r.bCobrar);
  ps.bFaturar = Bool32(r.bFaturar);
  ps.bDemonstrativo = Bool32(r.bDemonstrativo);
  ps.cConsiderarHora = r.cConsiderarHora;
  ps.vValor = r.vValor;
  ps.vValorUnitarioHora = r.vValorUnitarioHora;
  ps.vValorUnitarioKM = r.vValorUnitarioKM;
}

void QVClassificacaoParaArquivo(const _REG_CLASSIFICACAO_GE_PS& ps, REG_CLASSIFICACAO_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.vValor = ps.vValor;
  r.vQuantidade = ps.vQuantidade;
  r.lCodigo = ps.lCodigo;
  r.lPonteiroClassificacao = ps.lPonteiroClassificacao;
  r.lQuantidadeGerencial = ps.lQuantidadeGerencial;
  r.iFilial = ps.iFilial;
}

void QVClassificacaoParaPs(const REG_CLASSIFICACAO_ATENDIMENTO_V1& r, _REG_CLASSIFICACAO_GE_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.vValor = r.vValor;
  ps.vQuantidade = r.vQuantidade;
  ps.lCodigo = r.lCodigo;
  ps.lPonteiroClassificacao = r.lPonteiroClassificacao;
  ps.lPonteiroGerencial = r.lPonteiroGerencial;
  ps.lQuantidadeGerencial = r.lQuantidadeGerencial;
  ps.iFilial = r.iFilial;
}

void QVGerencialParaArquivo(const _REG_GERENCIAL_GE_PS& ps, REG_GERENCIAL_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.vValor = ps.vValor;
  r.lPonteiroContaGerencial = ps.lPonteiroContaGerencial;
  r.lPonteiroContaContabil = ps.lPonteiroContaContabil;
}

void QVGerencialParaPs(const REG_GERENCIAL_ATENDIMENTO_V1& r, _REG_GERENCIAL_GE_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.vValor = r.vValor;
  ps.lPonteiroContaGerencial = r.lPonteiroContaGerencial;
  ps.lPonteiroContaContabil = r.lPonteiroContaContabil;
}

void QVSessaoParaArquivo(const _REG_SESSAO_ATENDIMENTO_PS& ps, REG_SESSAO_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.iHoraInicial = ps.iHoraInicial;
  r.iHoraFinal = ps.iHoraFinal;
}

void QVSessaoParaPs(const REG_SESSAO_ATENDIMENTO_V1& r, _REG_SESSAO_ATENDIMENTO_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.iHoraInicial = r.iHoraInicial;
  ps.iHoraFinal = r.iHoraFinal;
}

void QVRetencoesParaArquivo(const _REG_RETENCOES_PS& ps, REG_RETENCOES_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.lCodigoReceitaPIS = ps.lCodigoReceitaPIS;
  r.lCodigoReceitaCOFINS = ps.lCodigoReceitaCOFINS;
  r.lCodigoReceitaCSLL = ps.lCodigoReceitaCSLL;
  r.iAliqIRRF = ps.iAliqIRRF;
  r.iAliqPIS = ps.iAliqPIS;
  r.iAliqCOFINS = ps.iAliqCOFINS;
  r.iAliqCSLL = ps.iAliqCSLL;
  r.iAliqISS = ps.iAliqISS;
  r.iISSRetido = ps.iISSRetido;
  r.iAliqINSS = ps.iAliqINSS;
  r.iPercRedBCISS = ps.iPercRedBCISS;
  r.iQtdDeducaoBCINSS = ps.iQtdDeducaoBCINSS;
  r.cManterRetencoesCadServicos = ps.cManterRetencoesCadServicos;
}

void QVRetencoesParaPs(const REG_RETENCOES_ATENDIMENTO_V1& r, _REG_RETENCOES_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.lCodigoReceitaPIS = r.lCodigoReceitaPIS;
  ps.lCodigoReceitaCOFINS = r.lCodigoReceitaCOFINS;
  ps.lCodigoReceitaCSLL = r.lCodigoReceitaCSLL;
  ps.lPtrDeducaoBCINSS = r.lPtrDeducaoBCINSS;
  ps.iAliqIRRF = r.iAliqIRRF;
  ps.iAliqPIS = r.iAliqPIS;
  ps.iAliqCOFINS = r.iAliqCOFINS;
  ps.iAliqCSLL = r.iAliqCSLL;
  ps.iAliqISS = r.iAliqISS;
  ps.iISSRetido = r.iISSRetido;
  ps.iAliqINSS = r.iAliqINSS;
  ps.iPercRedBCISS = r.iPercRedBCISS;
  ps.iQtdDeducaoBCINSS = r.iQtdDeducaoBCINSS;
  ps.cManterRetencoesCadServicos = r.cManterRetencoesCadServicos;
}

void QVDeducaoParaArquivo(const _REG_DEDUCOES_BC_INSS_PS& ps, REG_DEDUCOES_BCINSS_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.vValorDeducao = ps.vValorDeducao;
  r.cDeducaoEmPercentual = ps.cDeducaoEmPercentual;
  r.cTipo = ps.cTipo;
}

void QVDeducaoParaPs(const REG_DEDUCOES_BCINSS_ATENDIMENTO_V1& r, _REG_DEDUCOES_BC_INSS_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.vValorDeducao = r.vValorDeducao;
  ps.cDeducaoEmPercentual = r.cDeducaoEmPercentual;
  ps.cTipo = r.cTipo;
}

void QVPisCofinsParaArquivo(const _REG_PIS_COFINS_GE_PS& ps, REG_PIS_COFINS_ATENDIMENTO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.vFtrIncidenciaPis = ps.vFtrIncidenciaPis;
  r.vFtrIncidenciaCofins = ps.vFtrIncidenciaCofins;
  r.vAliqDiferenPis = ps.vAliqDiferenPis;
  r.vAliqDiferenCofins = ps.vAliqDiferenCofins;
  r.lContaSped = ps.lContaSped;
  r.lGerencSped = ps.lGerencSped;
  r.lCstPis = ps.lCstPis;
  r.lCstCofins = ps.lCstCofins;
  r.lNaturezaReceita = ps.lNaturezaReceita;
  CopiaCampo(r.cNaturezaReceita, ps.cNaturezaReceita);
}

void QVPisCofinsParaPs(const REG_PIS_COFINS_ATENDIMENTO_V1& r, _REG_PIS_COFINS_GE_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.vFtrIncidenciaPis = r.vFtrIncidenciaPis;
  ps.vFtrIncidenciaCofins = r.vFtrIncidenciaCofins;
  ps.vAliqDiferenPis = r.vAliqDiferenPis;
  ps.vAliqDiferenCofins = r.vAliqDiferenCofins;
  ps.lContaSped = r.lContaSped;
  ps.lGerencSped = r.lGerencSped;
  ps.lCstPis = r.lCstPis;
  ps.lCstCofins = r.lCstCofins;
  ps.lNaturezaReceita = r.lNaturezaReceita;
  CopiaCampo(ps.cNaturezaReceita, r.cNaturezaReceita);
}

void QVEFDParaArquivo(const tagREG_EFD_REINF_ITENS_NFPS& ps, REG_EFD_REINF_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  r.vValorRetencoesServSubContratado = ps.vValorRetencoesServSubContratado;
  r.vValorRetencoesAjuizada = ps.vValorRetencoesAjuizada;
  r.vValorServInsalubridade15Anos = ps.vValorServInsalubridade15Anos;
  r.vValorServInsalubridade20Anos = ps.vValorServInsalubridade20Anos;
  r.vValorServInsalubridade25Anos = ps.vValorServInsalubridade25Anos;
  r.vValorAdicRetencaoInsalubridade = ps.vValorAdicRetencaoInsalubridade;
  r.vValorRetencaoAdicAjuizada = ps.vValorRetencaoAdicAjuizada;
  r.iQuantidadeProcessosRetAjuiz = ps.iQuantidadeProcessosRetAjuiz;
  r.iQuantidadeProcessosRetAdic = ps.iQuantidadeProcessosRetAdic;
}

void QVEFDParaPs(const REG_EFD_REINF_V1& r, tagREG_EFD_REINF_ITENS_NFPS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  ps.vValorRetencoesServSubContratado = r.vValorRetencoesServSubContratado;
  ps.vValorRetencoesAjuizada = r.vValorRetencoesAjuizada;
  ps.vValorServInsalubridade15Anos = r.vValorServInsalubridade15Anos;
  ps.vValorServInsalubridade20Anos = r.vValorServInsalubridade20Anos;
  ps.vValorServInsalubridade25Anos = r.vValorServInsalubridade25Anos;
  ps.vValorAdicRetencaoInsalubridade = r.vValorAdicRetencaoInsalubridade;
  ps.vValorRetencaoAdicAjuizada = r.vValorRetencaoAdicAjuizada;
  ps.lPonteiroProcessoRetAjuiz = r.lPonteiroProcessoRetAjuiz;
  ps.lPonteiroProcessoRetAdic = r.lPonteiroProcessoRetAdic;
  ps.iQuantidadeProcessosRetAjuiz = r.iQuantidadeProcessosRetAjuiz;
  ps.iQuantidadeProcessosRetAdic = r.iQuantidadeProcessosRetAdic;
}

void QVProcessoParaArquivo(const tagREG_EFD_PROCESSO_JURIDICO_NFPS& ps, REG_GE_EFD_PROC_RET& r) {
  r.vValor = ps.vValor;
  r.lPonteiroProcesso = ps.lPonteiroProcesso;
  r.lPonteiroSuspensao = ps.lPonteiroSuspensao;
}

void QVProcessoParaPs(const REG_GE_EFD_PROC_RET& r, tagREG_EFD_PROCESSO_JURIDICO_NFPS& ps) {
  ps.vValor = r.vValor;
  ps.lPonteiroProcesso = r.lPonteiroProcesso;
  ps.lPonteiroSuspensao = r.lPonteiroSuspensao;
}

void QVPropriedadesParaArquivo(const _REG_PROPRIEDADES_ATENDIMENTO_PS& ps, REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1& r) {
  std::memset(static_cast<void*>(&r), 0, sizeof r);
  CopiaCampo(r.cLeiauteQV, ps.cLeiauteQV);
  CopiaCampo(r.cLeiauteWord, ps.cLeiauteWord);
  r.bImpressaoWord = Byte(ps.bImpressaoWord);
  r.bSugerirNumero = Byte(ps.bSugerirNumero);
  r.bAlterarNumAtend = Byte(ps.bAlterarNumAtend);
  r.bAlterarDataDeEmissao = Byte(ps.bAlterarDataDeEmissao);
  r.bInformarDataConclusao = Byte(ps.bInformarDataConclusao);
  r.bControleDeHoras = Byte(ps.bControleDeHoras);
  r.bInformarServico = ps.bInformarServico;
  r.cSugerirClassificacaoGerencial = ps.cSugerirClassificacaoGerencial;
  r.cEmailDocumento = ps.cEmailDocumento;
  r.cEmailFormulario = ps.cEmailFormulario;
  r.cNomeClienteAssunto = ps.cNomeClienteAssunto;
  r.cNomeClienteAnexo = ps.cNomeClienteAnexo;
  r.cListarDescricaoServicoNaNF = ps.cListarDescricaoServicoNaNF;
  r.bInformarQtdTotalHoras = ps.bInformarQtdTotalHoras;
  r.bAlterarDataHoraConclusao = ps.bAlterarDataHoraConclusao;
  r.cSugerirCobrarServicos = ps.cSugerirCobrarServicos;
  r.cSugerirAgendamentoPrimeiroServico = ps.cSugerirAgendamentoPrimeiroServico;
  r.cEnviarEmailAutomatico = ps.cEnviarEmailAutomatico;
  r.cConverteuServicos = ps.cConverteuServicos;
  r.cConverteuServicoParaV2 = ps.cConverteuServicoParaV2;
  r.cConverteuUSHORTParaULONG = ps.cConverteuUSHORTParaULONG;
  r.lProximoNumero = ps.lProximoNumero;
  r.lPonteiroHistorico = ps.lPonteiroHistorico;
  r.lQtdDiasEmAtrasoParaBloquearTitulo = ps.lQtdDiasEmAtrasoParaBloquearTitulo;
  r.lCorConferido = ps.lCorConferido;
  r.iEmissaoInicial = ps.iEmissaoInicial;
  r.iEmissaoFinal = ps.iEmissaoFinal;
  CopiaCampo(r.szOutros1, ps.szOutros1);
  CopiaCampo(r.szOutros2, ps.szOutros2);
}

void QVPropriedadesParaPs(const REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1& r, _REG_PROPRIEDADES_ATENDIMENTO_PS& ps) {
  std::memset(static_cast<void*>(&ps), 0, sizeof ps);
  CopiaCampo(ps.cLeiauteQV, r.cLeiauteQV);
  CopiaCampo(ps.cLeiauteWord, r.cLeiauteWord);
  ps.bImpressaoWord = Bool32(r.bImpressaoWord);
  ps.bSugerirNumero = Bool32(r.bSugerirNumero);
  ps.bAlterarNumAtend = Bool32(r.bAlterarNumAtend);
  ps.bAlterarDataDeEmissao = Bool32(r.bAlterarDataDeEmissao);
  ps.bInformarDataConclusao = Bool32(r.bInformarDataConclusao);
  ps.bControleDeHoras = Bool32(r.bControleDeHoras);
  ps.bInformarServico = r.bInformarServico;
  ps.cSugerirClassificacaoGerencial = r.cSugerirClassificacaoGerencial;
  ps.cEmailDocumento = r.cEmailDocumento;
  ps.cEmailFormulario = r.cEmailFormulario;
  ps.cNomeClienteAssunto = r.cNomeClienteAssunto;
  ps.cNomeClienteAnexo = r.cNomeClienteAnexo;
  ps.cListarDescricaoServicoNaNF = r.cListarDescricaoServicoNaNF;
  ps.bInformarQtdTotalHoras = r.bInformarQtdTotalHoras;
  ps.bAlterarDataHoraConclusao = r.bAlterarDataHoraConclusao;
  ps.cSugerirCobrarServicos = r.cSugerirCobrarServicos;
  ps.cSugerirAgendamentoPrimeiroServico = r.cSugerirAgendamentoPrimeiroServico;
  ps.cEnviarEmailAutomatico = r.cEnviarEmailAutomatico;
  ps.cConverteuServicos = r.cConverteuServicos;
  ps.cConverteuServicoParaV2 = r.cConverteuServicoParaV2;
  ps.cConverteuUSHORTParaULONG = r.cConverteuUSHORTParaULONG;
  ps.lProximoNumero = r.lProximoNumero;
  ps.lPonteiroHistorico = r.lPonteiroHistorico;
  ps.lPtrNomeSttCliente2 = r.lPonteiroNomeCliente2;
  ps.lQtdDiasEmAtrasoParaBloquearTitulo = r.lQtdDiasEmAtrasoParaBloquearTitulo;
  ps.lCorConferido = r.lCorConferido;
  ps.iEmissaoInicial = r.iEmissaoInicial;
  ps.iEmissaoFinal = r.iEmissaoFinal;
  CopiaCampo(ps.szOutros1, r.szOutros1);
  CopiaCampo(ps.szOutros2, r.szOutros2);
}

void QVChaveRegistroMes(char (&cChave)[12], std::uint16_t iMA, std::uint32_t lPosicao) {
  int ano = 0, mes = 0;
  if (!QVMesAnoDecompoe(iMA, &ano, &mes)) ano = mes = 0;
  // At most "MMAA-" and ten digits: the buffer never cuts it.
  char texto[24];
  std::snprintf(texto, sizeof texto, "%02d%02d-%06u", mes, ano % 100, static_cast<unsigned>(lPosicao));
  std::memset(cChave, 0, sizeof cChave);
  std::memcpy(cChave, texto, std::min(std::strlen(texto), sizeof cChave - 1));
}
