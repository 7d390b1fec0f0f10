// The JSON table of every wire record: every field in the order of the
// record, its kind picked from its C++ type and its name (ZelkorinJson.h).
// A list names its count; the count is then marked as such. Each table is
// checked where it is built: its fields cover every byte of the record once,
// in order, so a field left out or a wrong size does not compile.
#include <array>
#include <cstddef>

#include "ge/zelkorin/json/ZelkorinJson.h"

#define QVJ(campo) QVJsonCampoDe<decltype(QVJ_R::campo)>(#campo, offsetof(QVJ_R, campo))
#define QVJ_LISTA_DE(campo, contagem, tabela)                                                    \
  QVJsonLista<decltype(QVJ_R::campo), decltype(QVJ_R::contagem)>(#campo, offsetof(QVJ_R, campo), \
                                                                 offsetof(QVJ_R, contagem), &(tabela))
#define QVJ_LISTA(campo, contagem) \
  QVJ_LISTA_DE(campo, contagem, QVJsonTabela<std::remove_pointer_t<decltype(QVJ_R::campo)>>)
#define QVJ_TEXTO(campo, contagem)                                \
  QVJsonLista<decltype(QVJ_R::campo), decltype(QVJ_R::contagem)>( \
      #campo, offsetof(QVJ_R, campo), offsetof(QVJ_R, contagem), nullptr, EQVJsonCampo::TextoPtr)
#define QVJ_BLOCO(campo, contagem)                                \
  QVJsonLista<decltype(QVJ_R::campo), decltype(QVJ_R::contagem)>( \
      #campo, offsetof(QVJ_R, campo), offsetof(QVJ_R, contagem), nullptr, EQVJsonCampo::Bloco)
#define QVJ_NOME(T) QVJ_NOME_(T)
#define QVJ_NOME_(T) #T
#define QVJ_TABELA_COMO(bValor, ...)                                                                           \
  template <>                                                                                                  \
  const QVJsonRegistro& QVJsonTabela<QVJ_R>() {                                                                \
    static constexpr auto kCampos = QVJsonMarcaContagens(std::array{__VA_ARGS__});                             \
    static_assert(QVJsonCobre(kCampos, sizeof(QVJ_R)), QVJ_NOME(QVJ_R) ": every byte is a field or a filler"); \
    static constexpr QVJsonRegistro kTabela{QVJ_NOME(QVJ_R), sizeof(QVJ_R), kCampos, bValor};                  \
    return kTabela;                                                                                            \
  }
#define QVJ_TABELA(...) QVJ_TABELA_COMO(false, __VA_ARGS__)
// Printed as the value of its one visible field.
#define QVJ_TABELA_VALOR(...) QVJ_TABELA_COMO(true, __VA_ARGS__)

// The integers of lists: one field at offset 0, printed as the element.
namespace {
template <class T, EQVJsonCampo tipo>
constexpr QVJsonCampo kInteiroLista[] = {QVJsonCampo{"", 0, sizeof(T), tipo, sizeof(T), false}};
}  // namespace
const QVJsonRegistro& QVJsonTabelaU32() {
  static constexpr QVJsonRegistro kTabela{"u32", 4, kInteiroLista<std::uint32_t, EQVJsonCampo::Inteiro>, true};
  return kTabela;
}
const QVJsonRegistro& QVJsonTabelaU64() {
  static constexpr QVJsonRegistro kTabela{"u64", 8, kInteiroLista<std::uint64_t, EQVJsonCampo::Inteiro>, true};
  return kTabela;
}
const QVJsonRegistro& QVJsonTabelaMeses() {
  static constexpr QVJsonRegistro kTabela{"iMA", 2, kInteiroLista<std::uint16_t, EQVJsonCampo::MesAno>, true};
  return kTabela;
}

// ---- support records ----

#define QVJ_R _REG_DF_TEXTOPS
QVJ_TABELA_VALOR(QVJ(ulQtdBytes), QVJ(cFiller), QVJ_TEXTO(pTexto, ulQtdBytes), QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_DF_FUNCAO_GENERICAPS
QVJ_TABELA(QVJ(ulQtdBytes), QVJ(cFiller), QVJ_BLOCO(pListaBytes, ulQtdBytes), QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_DF_INICIALIZAPS
QVJ_TABELA(QVJ(ulUsuario), QVJ(ulNumeroSessao), QVJ(ulLinhaFonte), QVJ(ulFiller), QVJ(usVersaoVireo), QVJ(usFiller),
           QVJ(szEmpresa), QVJ(szAplicativo), QVJ(szModuleName), QVJ(szArquivoFonte), QVJ(szNomeUsuarioDominio),
           QVJ(cControle), QVJ(cWTS), QVJ(szFiller), QVJ(uiCRC))
#undef QVJ_R

#define QVJ_R _REG_DF_ERROPS
QVJ_TABELA(QVJ(hr), QVJ(nCodigoErro), QVJ(lCodigoMensagem), QVJ(iRegistro), QVJ(iItem), QVJ(lCodigoCampo),
           QVJ(nModuloMensagem), QVJ(nTipoErro), QVJ(usNumeroServidor), QVJ(cMensagem), QVJ(szEmpresa), QVJ(cFiller))
#undef QVJ_R

#define QVJ_R _REG_DF_LISTA_QVDMCPS
QVJ_TABELA(QVJ(ulQuantidade), QVJ(cFiller), QVJ_LISTA_DE(pLista, ulQuantidade, QVJsonTabelaU64), QVJ(pFiller))
#undef QVJ_R

// ---- search of service calls ----

#define QVJ_R IE_CAMPO_DATA_PS
QVJ_TABELA(QVJ(BinaryData), QVJ(cFiller), QVJ(id), QVJ(ulTamanhoTexto), QVJ_TEXTO(pcTexto, ulTamanhoTexto),
           QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_FILTRO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(ieInfoPlus), QVJ(cDescricaoServico), QVJ(cContrato), QVJ(bOrigemGerenciador), QVJ(bOrigemWeb),
           QVJ(bOrigemImportacao), QVJ(cNivelDataTree), QVJ(cIgnorarDatasEmissao), QVJ(cConferido), QVJ(cNaoConferido),
           QVJ(cOrigemIntegracaoAcompanhamento), QVJ(cSomenteNaoFaturados), QVJ(szFiller), QVJ(iQtdeMA), QVJ(iQtdePos),
           QVJ(bPendente), QVJ(bRealizado), QVJ(bAtivo), QVJ(bCancelado), QVJ(bFiltrarAtivoECancelado),
           QVJ(bListarExecutoresPermissoesIguais), QVJ(bVerificarTituloServico), QVJ(bFiller), QVJ(lNumeroAtendimento),
           QVJ(lPonteiroCliente), QVJ(lPonteiroCliente2), QVJ(lPonteiroClienteParaFaturamento), QVJ(lPonteiroServico),
           QVJ(lPonteiroExecutor), QVJ(lPonteiroMunicipio), QVJ(lPonteiroFilial), QVJ(lPonteiroContrato),
           QVJ(lPtrProjeto), QVJ(lClienteSelecionadoTree), QVJ(lPosHeaderInfoPlus), QVJ(dwState), QVJ(dwStateMask),
           QVJ(iDataFaturamentoInicio), QVJ(iDataFaturamentoFim), QVJ(iPeriodoInicio), QVJ(iPeriodoFim),
           QVJ(iDataConclusaoInicial), QVJ(iDataConclusaoFinal), QVJ(iDataSaidaInicial), QVJ(iDataSaidaFinal),
           QVJ(iDataAgendInicial), QVJ(iDataAgendFinal), QVJ(iDataTreeInicial), QVJ(iDataTreeFinal),
           QVJ(regDMCIntegracaoAcompanhamento), QVJ_LISTA_DE(arrMA, iQtdeMA, QVJsonTabelaMeses),
           QVJ_LISTA_DE(arrlPos, iQtdePos, QVJsonTabelaU32))
#undef QVJ_R

#define QVJ_R _REG_PONTEIRO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(iMA), QVJ(iFiller), QVJ(lPonteiroAtendimento))
#undef QVJ_R

#define QVJ_R _REG_LISTA_PONTEIROS_PS
QVJ_TABELA(QVJ(iQuantidadePonteiros), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA(pPonteiro, iQuantidadePonteiros))
#undef QVJ_R

#define QVJ_R _REG_CLIENTES_ATENDIMENTO_PS
QVJ_TABELA(QVJ(iQuantidadeClientes), QVJ(iFiller), QVJ(pFiller),
           QVJ_LISTA_DE(pClientes, iQuantidadeClientes, QVJsonTabelaU32))
#undef QVJ_R

#define QVJ_R _REG_LISTA_REGISTROS_PS
QVJ_TABELA(QVJ(iQuantidadeRegistros), QVJ(iFiller), QVJ(pFiller), QVJ_LISTA(pRegistros, iQuantidadeRegistros))
#undef QVJ_R

// ---- agenda ----

#define QVJ_R _REG_FILTRO_AGENDA_PS
QVJ_TABELA(QVJ(cFiller), QVJ(cSituacao), QVJ(iDataSaida), QVJ(iFiller), QVJ(lUsuario), QVJ(lFiller))
#undef QVJ_R

#define QVJ_R _REG_PONTEIRO_AGENDA
QVJ_TABELA(QVJ(iMA), QVJ(iFiller), QVJ(lPonteiroAtTec), QVJ(lPonteiroServ))
#undef QVJ_R

#define QVJ_R _REG_LISTA_PONTEIROS_AGENDA
QVJ_TABELA(QVJ(lQuantidade), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA(pPonteiros, lQuantidade))
#undef QVJ_R

#define QVJ_R _REG_SERVICO_AGENDA_PS
QVJ_TABELA(QVJ(lPonteiroCliente), QVJ(lPonteiroServico), QVJ(lPonteiroExecutor), QVJ(lPonteiroAtendTec),
           QVJ(iDataSaida), QVJ(iFiller), QVJ(szCodigo))
#undef QVJ_R

#define QVJ_R _REG_LISTA_SERVICOS_AGENDA_PS
QVJ_TABELA(QVJ(lQuantidade), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA(pServicos, lQuantidade))
#undef QVJ_R

// ---- the service call and its parts ----

#define QVJ_R _ULT_ALTERACAO_ATTEC
QVJ_TABELA(QVJ(iHoraMinuto), QVJ(iFiller), QVJ(lUsuario), QVJ(iData))
#undef QVJ_R

#define QVJ_R _REG_GE_EVENTO_GOOGLEPS
QVJ_TABELA(QVJ(usUsuarioEvento), QVJ(cFiller), QVJ(lPonteiroTextoIDAgenda), QVJ(lPonteiroTextoIDEvento), QVJ(rIDEvento),
           QVJ(rIDAgenda))
#undef QVJ_R

#define QVJ_R _REG_GE_LISTA_EVENTO_GOOGLEPS
QVJ_TABELA(QVJ(lQuantidadeEventos), QVJ(lFiller), QVJ_LISTA(pListaEventos, lQuantidadeEventos), QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_DEDUCOES_BC_INSS_PS
QVJ_TABELA(QVJ(vValorDeducao), QVJ(cDescricao), QVJ(cDeducaoEmPercentual), QVJ(cTipo), QVJ(cFiller))
#undef QVJ_R

#define QVJ_R _REG_RETENCOES_PS
QVJ_TABELA(QVJ(lCodigoReceitaPIS), QVJ(lCodigoReceitaCOFINS), QVJ(lCodigoReceitaCSLL), QVJ(lPtrDeducaoBCINSS),
           QVJ(iAliqIRRF), QVJ(iAliqPIS), QVJ(iAliqCOFINS), QVJ(iAliqCSLL), QVJ(iAliqISS), QVJ(iISSRetido),
           QVJ(iAliqINSS), QVJ(iPercRedBCISS), QVJ(iQtdDeducaoBCINSS), QVJ(iFiller), QVJ(cManterRetencoesCadServicos),
           QVJ(cFiller), QVJ_LISTA(pRegDeducoesBCINSS, iQtdDeducaoBCINSS), QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_PIS_COFINS_GE_PS
QVJ_TABELA(QVJ(vFtrIncidenciaPis), QVJ(vFtrIncidenciaCofins), QVJ(vAliqDiferenPis), QVJ(vAliqDiferenCofins),
           QVJ(lContaSped), QVJ(lGerencSped), QVJ(lCstPis), QVJ(lCstCofins), QVJ(lNaturezaReceita),
           QVJ(cNaturezaReceita))
#undef QVJ_R

#define QVJ_R tagREG_EFD_PROCESSO_JURIDICO_NFPS
QVJ_TABELA(QVJ(vValor), QVJ(lPonteiroProcesso), QVJ(lPonteiroSuspensao))
#undef QVJ_R

#define QVJ_R tagREG_EFD_REINF_ITENS_NFPS
QVJ_TABELA(QVJ(vValorRetencoesServSubContratado), QVJ(vValorRetencoesAjuizada), QVJ(vValorServInsalubridade15Anos),
           QVJ(vValorServInsalubridade20Anos), QVJ(vValorServInsalubridade25Anos), QVJ(vValorAdicRetencaoInsalubridade),
           QVJ(vValorRetencaoAdicAjuizada), QVJ(vFiler), QVJ(lPonteiroProcessoRetAjuiz), QVJ(lPonteiroProcessoRetAdic),
           QVJ(iQuantidadeProcessosRetAjuiz), QVJ(iQuantidadeProcessosRetAdic), QVJ(cFiller),
           QVJ_LISTA(pRegProcessosRetAjuiz, iQuantidadeProcessosRetAjuiz),
           QVJ_LISTA(pRegProcessosRetAdic, iQuantidadeProcessosRetAdic))
#undef QVJ_R

#define QVJ_R _REG_GERENCIAL_GE_PS
QVJ_TABELA(QVJ(vValor), QVJ(lPonteiroContaGerencial), QVJ(lPonteiroContaContabil))
#undef QVJ_R

#define QVJ_R _REG_CLASSIFICACAO_GE_PS
QVJ_TABELA(QVJ(vValor), QVJ(vQuantidade), QVJ(lCodigo), QVJ(lPonteiroClassificacao), QVJ(lPonteiroGerencial),
           QVJ(lQuantidadeGerencial), QVJ(iFilial), QVJ(cFiller), QVJ_LISTA(pGerenciais, lQuantidadeGerencial),
           QVJ(pFiller))
#undef QVJ_R

#define QVJ_R _REG_SESSAO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(iHoraInicial), QVJ(iHoraFinal), QVJ(iFiller))
#undef QVJ_R

#define QVJ_R _REG_SERVICO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(cChave), QVJ(szCodigoTributacaoISS), QVJ(cSituacao), QVJ(cSitTributaria), QVJ(cControleHoras),
           QVJ(cIntegrarAcompServ), QVJ(cFiller), QVJ(szOutros1), QVJ(szOutros2), QVJ(iQuantidadeClassificacao),
           QVJ(iQuantidadeSessao), QVJ(iHoraConclusao), QVJ(iMaACSGerado), QVJ(bCobrar), QVJ(bServicoExcedente),
           QVJ(lCodigo), QVJ(lPonteiroServico), QVJ(lPonteiroComentario), QVJ(lPonteiroResultado),
           QVJ(lPonteiroExecutor), QVJ(lPonteiroSessao), QVJ(lPonteiroClassificacao), QVJ(lPonteiroDescricao),
           QVJ(lPonteiroTabPreco), QVJ(lPonteiroTipoRecolhimento), QVJ(lPonteiroRetencoes), QVJ(lPtrProjeto),
           QVJ(lPonteiroSitServico), QVJ(lPonteiroEFD_REINF), QVJ(lPonteiroACSGerado), QVJ(lFiller), QVJ(bsComentario),
           QVJ(bsResultado), QVJ(bsDescricao), QVJ(bsFiller), QVJ(vValor), QVJ(vTotalHoras), QVJ(vValorTotal),
           QVJ(iDataRetorno), QVJ(iDataConclusao), QVJ(iDataSaida), QVJ(lIdentificadorServicoAcompanhamento),
           QVJ(rDMCAcompanhamentoGerado), QVJ(dmcRegIntegracaoAcompanhamento), QVJ(regRetencoes), QVJ(regEFD_REINF),
           QVJ_LISTA(pClassificacoes, iQuantidadeClassificacao), QVJ_LISTA(pSessoes, iQuantidadeSessao))
#undef QVJ_R

#define QVJ_R _REG_DESPESA_ATENDIMENTO_PS
QVJ_TABELA(QVJ(cChave), QVJ(szCodigoTributacaoISS), QVJ(cSitTributaria), QVJ(iHoraInicial), QVJ(iHoraFinal),
           QVJ(iQuantidadeClassificacao), QVJ(iFiller), QVJ(bCobrar), QVJ(bFaturar), QVJ(bDemonstrativo), QVJ(bFiller),
           QVJ(lCodigo), QVJ(lPonteiroComentario), QVJ(lPonteiroClassificacao), QVJ(lPonteiroDescricao),
           QVJ(lKmInicial), QVJ(lKmFinal), QVJ(lPonteiroTipoRecolhimento), QVJ(iGradeContabil), QVJ(lPonteiroPisCofins),
           QVJ(lPonteiroUnidadeMedida), QVJ(lPonteiroSitServico), QVJ(lFiller), QVJ(vValor), QVJ(vValorUnitarioHora),
           QVJ(vValorUnitarioKM), QVJ(vFiller), QVJ(cConsiderarHora), QVJ(szFiller), QVJ(RegPisCofinsPs),
           QVJ(bsComentario), QVJ(bsDescricao), QVJ(pFiller), QVJ_LISTA(pClassificacoes, iQuantidadeClassificacao))
#undef QVJ_R

#define QVJ_R _REG_ATENDIMENTO_PS
QVJ_TABELA(QVJ(szEmailExecutor), QVJ(szCargoSetor), QVJ(cContato), QVJ(cContrato), QVJ(cChave), QVJ(cNumeroImpressao),
           QVJ(cImportacao), QVJ(cOrigemAcompServ), QVJ(cSituacaoTributariaSomarItensNF),
           QVJ(szCodigoTributacaoISSSomarItensNF), QVJ(cSomarItensNF), QVJ(cNotaFiscalEletronica), QVJ(cConferido),
           QVJ(szFiller), QVJ(iFiller), QVJ(iHoraInicialAgendamento), QVJ(iHoraFinalAgendamento), QVJ(bCancelado),
           QVJ(bFaturado), QVJ(bReembolsado), QVJ(bWeb), QVJ(bEhAtendExcedente), QVJ(bListarDescricaoServEmail),
           QVJ(bListarComentarioNaAgenda), QVJ(bFiller), QVJ(lPonteiro), QVJ(lPonteiroCliente), QVJ(lPonteiroCliente2),
           QVJ(lPonteiroMensagem), QVJ(lPonteiroComentario), QVJ(lNumeroAtendimento), QVJ(lPonteiroServicoAtend),
           QVJ(lPonteiroDespesa), QVJ(lPonteiroFilial), QVJ(lPonteiroContrato), QVJ(lPonteiroExecutor),
           QVJ(lPonteiroComentarioAgendamento), QVJ(lPonteiroMensagemAgendamento), QVJ(iQuantidadeServicoAtend),
           QVJ(iQuantidadeDespesa), QVJ(lPonteiroAcompServOrigem), QVJ(lPonteiroDescricaoSomarItensNF),
           QVJ(lPonteiroSitServicoSomarItensNF), QVJ(lPonteiroRecolhimentoSomarItensNF),
           QVJ(lPonteiroUnMedidaSomarItensNF), QVJ(lPonteiroRetencoesSomarItensNF), QVJ(lPonteiroServicoSomarItensNF),
           QVJ(lCodigoServRPSSomarItensNF), QVJ(lPonteiroPISCOFINSSomarItensNF), QVJ(lPonteiroEFD_REINFSomarItensNF),
           QVJ(lPonteiroSituacaoServicoSugestao), QVJ(lPtrRepresentante), QVJ(lQtdRepresentante),
           QVJ(lPonteiroClassificacao), QVJ(lQuantidadeClassificacao), QVJ(lVersaoRegistro), QVJ(lPonteiroEventoAgenda),
           QVJ(lPonteiroListaPosIntegracoesACM), QVJ(lFiller), QVJ(iDataEmissao), QVJ(iDataFaturamento),
           QVJ(iDataVencimento), QVJ(iDataAgendamento), QVJ(iDataConclusao), QVJ(iFillerDma), QVJ(i64NumeroNF),
           QVJ(UltAlteracaoAtTec), QVJ(bsComentario), QVJ(bsComentarioAgendamento), QVJ(bsDescricaoSomarItensNF),
           QVJ(bsFiller), QVJ(regListaEventosGoogle), QVJ(regListaPonteirosIntegACM), QVJ(regRetencoesSomarItensNF),
           QVJ(RegPisCofinsPsSomarItensNF), QVJ(regEFDREINFPsSomarItensNF),
           QVJ_LISTA(pServicos, iQuantidadeServicoAtend), QVJ_LISTA(pDespesas, iQuantidadeDespesa),
           QVJ_LISTA_DE(pRepresentante, lQtdRepresentante, QVJsonTabelaU32),
           QVJ_LISTA(pClassificacoes, lQuantidadeClassificacao))
#undef QVJ_R

// ---- settings and report requests ----

#define QVJ_R _REG_PROPRIEDADES_ATENDIMENTO_PS
QVJ_TABELA(QVJ(cLeiauteQV), QVJ(cLeiauteWord), QVJ(bInformarServico), QVJ(bInformarQtdTotalHoras),
           QVJ(bAlterarDataHoraConclusao), QVJ(cConverteuServicos), QVJ(cConverteuServicoParaV2),
           QVJ(cConverteuUSHORTParaULONG), QVJ(cSugerirClassificacaoGerencial), QVJ(cSugerirCobrarServicos),
           QVJ(cEmailDocumento), QVJ(cEmailFormulario), QVJ(cNomeClienteAssunto), QVJ(cNomeClienteAnexo),
           QVJ(cSugerirAgendamentoPrimeiroServico), QVJ(cEnviarEmailAutomatico), QVJ(cListarDescricaoServicoNaNF),
           QVJ(cFiller), QVJ(bImpressaoWord), QVJ(bSugerirNumero), QVJ(bAlterarNumAtend), QVJ(bAlterarDataDeEmissao),
           QVJ(bInformarDataConclusao), QVJ(bControleDeHoras), QVJ(lPonteiroHistorico), QVJ(lProximoNumero),
           QVJ(lPtrNomeSttCliente2), QVJ(lQtdDiasEmAtrasoParaBloquearTitulo), QVJ(lCorConferido), QVJ(iEmissaoInicial),
           QVJ(iEmissaoFinal), QVJ(szOutros1), QVJ(szOutros2), QVJ(rNomeCliente2))
#undef QVJ_R

#define QVJ_R _REG_RELATORIO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(cArquivoTmp), QVJ(cRelatorio), QVJ(cRazaoSocial), QVJ(cComponente), QVJ(RegFiltroPs))
#undef QVJ_R

#define QVJ_R _REG_FILTRO_REL_CONTROLE_HORAS
QVJ_TABELA(QVJ(bTodosProjetos), QVJ(bTodosProjetosTodosClientes), QVJ(lPtrProjeto), QVJ(lCliente), QVJ(iDataInicial),
           QVJ(iDataFinal), QVJ(bsRazaoSocial), QVJ(bsComponente), QVJ(bsArqTemp), QVJ(bsRelatorio), QVJ(bsProjeto),
           QVJ(bsFiller))
#undef QVJ_R

#define QVJ_R _REG_AGENDAMENTO_REL
QVJ_TABELA(QVJ(lNumeroAtendimento), QVJ(iData), QVJ(bsExecutor), QVJ(bsHoraInicial), QVJ(bsHoraFinal), QVJ(bsCliente))
#undef QVJ_R

#define QVJ_R _REG_LISTA_AGENDAMENTO_REL
QVJ_TABELA(QVJ(lQuantidade), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA(pAgendamentos, lQuantidade))
#undef QVJ_R

#define QVJ_R _REG_REL_CONSULTA_AGENDAMENTO
QVJ_TABELA(QVJ(iDataInicial), QVJ(iDataFinal), QVJ(regLista), QVJ(bsArqTemp), QVJ(bsFiller))
#undef QVJ_R

// ---- projects ----

#define QVJ_R _REG_FILTRO_PROJETO_PS
QVJ_TABELA(QVJ(rNome), QVJ(rCodigo), QVJ(lPonteiroCliente), QVJ(lFiller), QVJ(cRemoverInativos), QVJ(szFiller))
#undef QVJ_R

#define QVJ_R _REG_PTR_PROJETO_PS
QVJ_TABELA(QVJ(lQtd), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA_DE(pPonteiros, lQtd, QVJsonTabelaU32))
#undef QVJ_R

#define QVJ_R _REG_PROJETO_ATENDIMENTO_PS
QVJ_TABELA(QVJ(rCodigo), QVJ(rNome), QVJ(lPonteiroCodigo), QVJ(lPonteiroNome), QVJ(lPonteiroCliente), QVJ(lPos),
           QVJ(cProjetoInativo), QVJ(szFiller))
#undef QVJ_R

#define QVJ_R _REG_LISTA_PROJETOS_PS
QVJ_TABELA(QVJ(iQuantidadeRegistros), QVJ(lFiller), QVJ(pFiller), QVJ_LISTA(pRegistros, iQuantidadeRegistros))
#undef QVJ_R
