#include "ge/zelkorin/ZelkorinRegistros.h"

#include <iterator>

// Two kinds of tables live here.
//
// Records whose ownership stays inside this file are described by constexpr
// tables: they are constant-initialised, so any code may use them at any
// time, static initialisation included.
//
// Records that embed a support-library record (_REG_DF_TEXTOPS,
// _REG_DF_LISTA_QVDMCPS), directly or through a sub-record, can only reach
// that descriptor through QVDescritor<>(), which is not a constant
// expression. Their tables are function-local statics, built on first use;
// that keeps them independent of the order in which translation units are
// initialised.

namespace {

// ---- Search -----------------------------------------------------------------

constexpr QVCampoPonteiro kCamposIeCampo[] = {QV_CAMPO_TEXTO(IE_CAMPO_DATA_PS, pcTexto, ulTamanhoTexto)};
constexpr QVDescritorRegistro kIeCampo{"IE_CAMPO_DATA_PS", sizeof(IE_CAMPO_DATA_PS), kCamposIeCampo};

// The 20 linked-information values are embedded by value, each owning its
// own text: one entry per element.
#define QV_INFO_PLUS(i) QV_CAMPO_ANINHADO(_REG_FILTRO_ATENDIMENTO_PS, ieInfoPlus[i], kIeCampo)
constexpr QVCampoPonteiro kCamposFiltroAtendimento[] = {
    QV_INFO_PLUS(0),
    QV_INFO_PLUS(1),
    QV_INFO_PLUS(2),
    QV_INFO_PLUS(3),
    QV_INFO_PLUS(4),
    QV_INFO_PLUS(5),
    QV_INFO_PLUS(6),
    QV_INFO_PLUS(7),
    QV_INFO_PLUS(8),
    QV_INFO_PLUS(9),
    QV_INFO_PLUS(10),
    QV_INFO_PLUS(11),
    QV_INFO_PLUS(12),
    QV_INFO_PLUS(13),
    QV_INFO_PLUS(14),
    QV_INFO_PLUS(15),
    QV_INFO_PLUS(16),
    QV_INFO_PLUS(17),
    QV_INFO_PLUS(18),
    QV_INFO_PLUS(19),
    QV_CAMPO_ARRAY(_REG_FILTRO_ATENDIMENTO_PS, arrMA, iQtdeMA),
    QV_CAMPO_ARRAY(_REG_FILTRO_ATENDIMENTO_PS, arrlPos, iQtdePos),
};
#undef QV_INFO_PLUS
static_assert(std::size(kCamposFiltroAtendimento) == kQVQtdInfoPlusFiltro + 2);
static_assert(kCamposFiltroAtendimento[kQVQtdInfoPlusFiltro - 1].offset ==
              offsetof(_REG_FILTRO_ATENDIMENTO_PS, ieInfoPlus) +
                  (kQVQtdInfoPlusFiltro - 1) * sizeof(IE_CAMPO_DATA_PS));
constexpr QVDescritorRegistro kFiltroAtendimento{"_REG_FILTRO_ATENDIMENTO_PS", sizeof(_REG_FILTRO_ATENDIMENTO_PS),
                                                 kCamposFiltroAtendimento};

constexpr QVCampoPonteiro kCamposListaPonteiros[] = {
    QV_CAMPO_ARRAY(_REG_LISTA_PONTEIROS_PS, pPonteiro, iQuantidadePonteiros)};
constexpr QVDescritorRegistro kListaPonteiros{"_REG_LISTA_PONTEIROS_PS", sizeof(_REG_LISTA_PONTEIROS_PS),
                                              kCamposListaPonteiros};

constexpr QVCampoPonteiro kCamposClientes[] = {
    QV_CAMPO_ARRAY(_REG_CLIENTES_ATENDIMENTO_PS, pClientes, iQuantidadeClientes)};
constexpr QVDescritorRegistro kClientes{"_REG_CLIENTES_ATENDIMENTO_PS", sizeof(_REG_CLIENTES_ATENDIMENTO_PS),
                                        kCamposClientes};

// ---- Agenda -----------------------------------------------------------------

constexpr QVDescritorRegistro kFiltroAgenda{"_REG_FILTRO_AGENDA_PS", sizeof(_REG_FILTRO_AGENDA_PS), {}};

constexpr QVCampoPonteiro kCamposListaPonteirosAgenda[] = {
    QV_CAMPO_ARRAY(_REG_LISTA_PONTEIROS_AGENDA, pPonteiros, lQuantidade)};
constexpr QVDescritorRegistro kListaPonteirosAgenda{"_REG_LISTA_PONTEIROS_AGENDA",
                                                    sizeof(_REG_LISTA_PONTEIROS_AGENDA),
                                                    kCamposListaPonteirosAgenda};

constexpr QVCampoPonteiro kCamposListaServicosAgenda[] = {
    QV_CAMPO_ARRAY(_REG_LISTA_SERVICOS_AGENDA_PS, pServicos, lQuantidade)};
constexpr QVDescritorRegistro kListaServicosAgenda{"_REG_LISTA_SERVICOS_AGENDA_PS",
                                                   sizeof(_REG_LISTA_SERVICOS_AGENDA_PS),
                                                   kCamposListaServicosAgenda};

// ---- Sub-records of a service call ------------------------------------------

constexpr QVCampoPonteiro kCamposRetencoes[] = {
    QV_CAMPO_ARRAY(_REG_RETENCOES_PS, pRegDeducoesBCINSS, iQtdDeducaoBCINSS)};
constexpr QVDescritorRegistro kRetencoes{"_REG_RETENCOES_PS", sizeof(_REG_RETENCOES_PS), kCamposRetencoes};

constexpr QVCampoPonteiro kCamposEfdReinf[] = {
    QV_CAMPO_ARRAY(tagREG_EFD_REINF_ITENS_NFPS, pRegProcessosRetAjuiz, iQuantidadeProcessosRetAjuiz),
    QV_CAMPO_ARRAY(tagREG_EFD_REINF_ITENS_NFPS, pRegProcessosRetAdic, iQuantidadeProcessosRetAdic),
};
constexpr QVDescritorRegistro kEfdReinf{"tagREG_EFD_REINF_ITENS_NFPS", sizeof(tagREG_EFD_REINF_ITENS_NFPS),
                                        kCamposEfdReinf};

constexpr QVCampoPonteiro kCamposClassificacao[] = {
    QV_CAMPO_ARRAY(_REG_CLASSIFICACAO_GE_PS, pGerenciais, lQuantidadeGerencial)};
constexpr QVDescritorRegistro kClassificacao{"_REG_CLASSIFICACAO_GE_PS", sizeof(_REG_CLASSIFICACAO_GE_PS),
                                             kCamposClassificacao};

constexpr QVCampoPonteiro kCamposServico[] = {
    QV_CAMPO_BSTR(_REG_SERVICO_ATENDIMENTO_PS, bsComentario),
    QV_CAMPO_BSTR(_REG_SERVICO_ATENDIMENTO_PS, bsResultado),
    QV_CAMPO_BSTR(_REG_SERVICO_ATENDIMENTO_PS, bsDescricao),
    QV_CAMPO_BSTR(_REG_SERVICO_ATENDIMENTO_PS, bsFiller),
    QV_CAMPO_ANINHADO(_REG_SERVICO_ATENDIMENTO_PS, regRetencoes, kRetencoes),
    QV_CAMPO_ANINHADO(_REG_SERVICO_ATENDIMENTO_PS, regEFD_REINF, kEfdReinf),
    QV_CAMPO_REGISTROS(_REG_SERVICO_ATENDIMENTO_PS, pClassificacoes, iQuantidadeClassificacao, kClassificacao),
    QV_CAMPO_ARRAY(_REG_SERVICO_ATENDIMENTO_PS, pSessoes, iQuantidadeSessao),
};
constexpr QVDescritorRegistro kServico{"_REG_SERVICO_ATENDIMENTO_PS", sizeof(_REG_SERVICO_ATENDIMENTO_PS),
                                       kCamposServico};

// RegPisCofinsPs owns nothing and is not listed.
constexpr QVCampoPonteiro kCamposDespesa[] = {
    QV_CAMPO_BSTR(_REG_DESPESA_ATENDIMENTO_PS, bsComentario),
    QV_CAMPO_BSTR(_REG_DESPESA_ATENDIMENTO_PS, bsDescricao),
    QV_CAMPO_REGISTROS(_REG_DESPESA_ATENDIMENTO_PS, pClassificacoes, iQuantidadeClassificacao, kClassificacao),
};
constexpr QVDescritorRegistro kDespesa{"_REG_DESPESA_ATENDIMENTO_PS", sizeof(_REG_DESPESA_ATENDIMENTO_PS),
                                       kCamposDespesa};

// ---- Report requests --------------------------------------------------------

constexpr QVCampoPonteiro kCamposRelatorio[] = {
    QV_CAMPO_ANINHADO(_REG_RELATORIO_ATENDIMENTO_PS, RegFiltroPs, kFiltroAtendimento)};
constexpr QVDescritorRegistro kRelatorio{"_REG_RELATORIO_ATENDIMENTO_PS", sizeof(_REG_RELATORIO_ATENDIMENTO_PS),
                                         kCamposRelatorio};

constexpr QVCampoPonteiro kCamposFiltroRelControleHoras[] = {
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsRazaoSocial),
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsComponente),
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsArqTemp),
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsRelatorio),
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsProjeto),
    QV_CAMPO_BSTR(_REG_FILTRO_REL_CONTROLE_HORAS, bsFiller),
};
constexpr QVDescritorRegistro kFiltroRelControleHoras{"_REG_FILTRO_REL_CONTROLE_HORAS",
                                                      sizeof(_REG_FILTRO_REL_CONTROLE_HORAS),
                                                      kCamposFiltroRelControleHoras};

constexpr QVCampoPonteiro kCamposAgendamentoRel[] = {
    QV_CAMPO_BSTR(_REG_AGENDAMENTO_REL, bsExecutor),
    QV_CAMPO_BSTR(_REG_AGENDAMENTO_REL, bsHoraInicial),
    QV_CAMPO_BSTR(_REG_AGENDAMENTO_REL, bsHoraFinal),
    QV_CAMPO_BSTR(_REG_AGENDAMENTO_REL, bsCliente),
};
constexpr QVDescritorRegistro kAgendamentoRel{"_REG_AGENDAMENTO_REL", sizeof(_REG_AGENDAMENTO_REL),
                                              kCamposAgendamentoRel};

constexpr QVCampoPonteiro kCamposListaAgendamentoRel[] = {
    QV_CAMPO_REGISTROS(_REG_LISTA_AGENDAMENTO_REL, pAgendamentos, lQuantidade, kAgendamentoRel)};
constexpr QVDescritorRegistro kListaAgendamentoRel{"_REG_LISTA_AGENDAMENTO_REL", sizeof(_REG_LISTA_AGENDAMENTO_REL),
                                                   kCamposListaAgendamentoRel};

constexpr QVCampoPonteiro kCamposRelConsultaAgendamento[] = {
    QV_CAMPO_ANINHADO(_REG_REL_CONSULTA_AGENDAMENTO, regLista, kListaAgendamentoRel),
    QV_CAMPO_BSTR(_REG_REL_CONSULTA_AGENDAMENTO, bsArqTemp),
    QV_CAMPO_BSTR(_REG_REL_CONSULTA_AGENDAMENTO, bsFiller),
};
constexpr QVDescritorRegistro kRelConsultaAgendamento{"_REG_REL_CONSULTA_AGENDAMENTO",
                                                      sizeof(_REG_REL_CONSULTA_AGENDAMENTO),
                                                      kCamposRelConsultaAgendamento};

// ---- Projects ---------------------------------------------------------------

constexpr QVCampoPonteiro kCamposPtrProjeto[] = {QV_CAMPO_ARRAY(_REG_PTR_PROJETO_PS, pPonteiros, lQtd)};
constexpr QVDescritorRegistro kPtrProjeto{"_REG_PTR_PROJETO_PS", sizeof(_REG_PTR_PROJETO_PS), kCamposPtrProjeto};

}  // namespace

template <> const QVDescritorRegistro& QVDescritor<IE_CAMPO_DATA_PS>() { return kIeCampo; }
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_ATENDIMENTO_PS>() { return kFiltroAtendimento; }
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PONTEIROS_PS>() { return kListaPonteiros; }
template <> const QVDescritorRegistro& QVDescritor<_REG_CLIENTES_ATENDIMENTO_PS>() { return kClientes; }
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_AGENDA_PS>() { return kFiltroAgenda; }
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PONTEIROS_AGENDA>() { return kListaPonteirosAgenda; }
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_SERVICOS_AGENDA_PS>() { return kListaServicosAgenda; }
template <> const QVDescritorRegistro& QVDescritor<_REG_RETENCOES_PS>() { return kRetencoes; }
template <> const QVDescritorRegistro& QVDescritor<tagREG_EFD_REINF_ITENS_NFPS>() { return kEfdReinf; }
template <> const QVDescritorRegistro& QVDescritor<_REG_CLASSIFICACAO_GE_PS>() { return kClassificacao; }
template <> const QVDescritorRegistro& QVDescritor<_REG_SERVICO_ATENDIMENTO_PS>() { return kServico; }
template <> const QVDescritorRegistro& QVDescritor<_REG_DESPESA_ATENDIMENTO_PS>() { return kDespesa; }
template <> const QVDescritorRegistro& QVDescritor<_REG_RELATORIO_ATENDIMENTO_PS>() { return kRelatorio; }
template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_REL_CONTROLE_HORAS>() {
  return kFiltroRelControleHoras;
}
template <> const QVDescritorRegistro& QVDescritor<_REG_AGENDAMENTO_REL>() { return kAgendamentoRel; }
template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_AGENDAMENTO_REL>() { return kListaAgendamentoRel; }
template <> const QVDescritorRegistro& QVDescritor<_REG_REL_CONSULTA_AGENDAMENTO>() {
  return kRelConsultaAgendamento;
}
template <> const QVDescritorRegistro& QVDescritor<_REG_PTR_PROJETO_PS>() { return kPtrProjeto; }

// ---- Records that reach the support-library descriptors ----------------------

template <> const QVDescritorRegistro& QVDescritor<_REG_GE_EVENTO_GOOGLEPS>() {
  static const QVCampoPonteiro campos[] = {
      QV_CAMPO_ANINHADO(_REG_GE_EVENTO_GOOGLEPS, rIDEvento, QVDescritor<_REG_DF_TEXTOPS>()),
      QV_CAMPO_ANINHADO(_REG_GE_EVENTO_GOOGLEPS, rIDAgenda, QVDescritor<_REG_DF_TEXTOPS>()),
  };
  static const QVDescritorRegistro d{"_REG_GE_EVENTO_GOOGLEPS", sizeof(_REG_GE_EVENTO_GOOGLEPS), campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_GE_LISTA_EVENTO_GOOGLEPS>() {
  static const QVCampoPonteiro campos[] = {QV_CAMPO_REGISTROS(_REG_GE_LISTA_EVENTO_GOOGLEPS, pListaEventos,
                                                              lQuantidadeEventos,
                                                              QVDescritor<_REG_GE_EVENTO_GOOGLEPS>())};
  static const QVDescritorRegistro d{"_REG_GE_LISTA_EVENTO_GOOGLEPS", sizeof(_REG_GE_LISTA_EVENTO_GOOGLEPS),
                                     campos};
  return d;
}

// RegPisCofinsPsSomarItensNF and UltAlteracaoAtTec own nothing and are not
// listed.
template <> const QVDescritorRegistro& QVDescritor<_REG_ATENDIMENTO_PS>() {
  static const QVCampoPonteiro campos[] = {
      QV_CAMPO_BSTR(_REG_ATENDIMENTO_PS, bsComentario),
      QV_CAMPO_BSTR(_REG_ATENDIMENTO_PS, bsComentarioAgendamento),
      QV_CAMPO_BSTR(_REG_ATENDIMENTO_PS, bsDescricaoSomarItensNF),
      QV_CAMPO_BSTR(_REG_ATENDIMENTO_PS, bsFiller),
      QV_CAMPO_ANINHADO(_REG_ATENDIMENTO_PS, regListaEventosGoogle, QVDescritor<_REG_GE_LISTA_EVENTO_GOOGLEPS>()),
      QV_CAMPO_ANINHADO(_REG_ATENDIMENTO_PS, regListaPonteirosIntegACM, QVDescritor<_REG_DF_LISTA_QVDMCPS>()),
      QV_CAMPO_ANINHADO(_REG_ATENDIMENTO_PS, regRetencoesSomarItensNF, kRetencoes),
      QV_CAMPO_ANINHADO(_REG_ATENDIMENTO_PS, regEFDREINFPsSomarItensNF, kEfdReinf),
      QV_CAMPO_REGISTROS(_REG_ATENDIMENTO_PS, pServicos, iQuantidadeServicoAtend, kServico),
      QV_CAMPO_REGISTROS(_REG_ATENDIMENTO_PS, pDespesas, iQuantidadeDespesa, kDespesa),
      QV_CAMPO_ARRAY(_REG_ATENDIMENTO_PS, pRepresentante, lQtdRepresentante),
      QV_CAMPO_REGISTROS(_REG_ATENDIMENTO_PS, pClassificacoes, lQuantidadeClassificacao, kClassificacao),
  };
  static const QVDescritorRegistro d{"_REG_ATENDIMENTO_PS", sizeof(_REG_ATENDIMENTO_PS), campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_REGISTROS_PS>() {
  static const QVCampoPonteiro campos[] = {QV_CAMPO_REGISTROS(_REG_LISTA_REGISTROS_PS, pRegistros,
                                                              iQuantidadeRegistros, QVDescritor<_REG_ATENDIMENTO_PS>())};
  static const QVDescritorRegistro d{"_REG_LISTA_REGISTROS_PS", sizeof(_REG_LISTA_REGISTROS_PS), campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_PROPRIEDADES_ATENDIMENTO_PS>() {
  static const QVCampoPonteiro campos[] = {
      QV_CAMPO_ANINHADO(_REG_PROPRIEDADES_ATENDIMENTO_PS, rNomeCliente2, QVDescritor<_REG_DF_TEXTOPS>())};
  static const QVDescritorRegistro d{"_REG_PROPRIEDADES_ATENDIMENTO_PS", sizeof(_REG_PROPRIEDADES_ATENDIMENTO_PS),
                                     campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_FILTRO_PROJETO_PS>() {
  static const QVCampoPonteiro campos[] = {
      QV_CAMPO_ANINHADO(_REG_FILTRO_PROJETO_PS, rNome, QVDescritor<_REG_DF_TEXTOPS>()),
      QV_CAMPO_ANINHADO(_REG_FILTRO_PROJETO_PS, rCodigo, QVDescritor<_REG_DF_TEXTOPS>()),
  };
  static const QVDescritorRegistro d{"_REG_FILTRO_PROJETO_PS", sizeof(_REG_FILTRO_PROJETO_PS), campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>() {
  static const QVCampoPonteiro campos[] = {
      QV_CAMPO_ANINHADO(_REG_PROJETO_ATENDIMENTO_PS, rCodigo, QVDescritor<_REG_DF_TEXTOPS>()),
      QV_CAMPO_ANINHADO(_REG_PROJETO_ATENDIMENTO_PS, rNome, QVDescritor<_REG_DF_TEXTOPS>()),
  };
  static const QVDescritorRegistro d{"_REG_PROJETO_ATENDIMENTO_PS", sizeof(_REG_PROJETO_ATENDIMENTO_PS), campos};
  return d;
}

template <> const QVDescritorRegistro& QVDescritor<_REG_LISTA_PROJETOS_PS>() {
  static const QVCampoPonteiro campos[] = {QV_CAMPO_REGISTROS(_REG_LISTA_PROJETOS_PS, pRegistros,
                                                              iQuantidadeRegistros,
                                                              QVDescritor<_REG_PROJETO_ATENDIMENTO_PS>())};
  static const QVDescritorRegistro d{"_REG_LISTA_PROJETOS_PS", sizeof(_REG_LISTA_PROJETOS_PS), campos};
  return d;
}
