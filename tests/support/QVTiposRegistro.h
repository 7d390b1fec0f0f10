// Every record kind that has an ownership descriptor, for the tests and
// the fuzz target that go over all of them.
#pragma once

#include <array>
#include <tuple>

#include "df/qvlibex/QVRegistrosDF.h"
#include "ge/zelkorin/ZelkorinRegistros.h"

using QVTodosOsRegistros =
    std::tuple<IE_CAMPO_DATA_PS, _REG_FILTRO_ATENDIMENTO_PS, _REG_LISTA_PONTEIROS_PS, _REG_CLIENTES_ATENDIMENTO_PS,
               _REG_LISTA_REGISTROS_PS, _REG_FILTRO_AGENDA_PS, _REG_LISTA_PONTEIROS_AGENDA,
               _REG_LISTA_SERVICOS_AGENDA_PS, _REG_GE_EVENTO_GOOGLEPS, _REG_GE_LISTA_EVENTO_GOOGLEPS,
               _REG_RETENCOES_PS, tagREG_EFD_REINF_ITENS_NFPS, _REG_CLASSIFICACAO_GE_PS,
               _REG_SERVICO_ATENDIMENTO_PS, _REG_DESPESA_ATENDIMENTO_PS, _REG_ATENDIMENTO_PS,
               _REG_PROPRIEDADES_ATENDIMENTO_PS, _REG_RELATORIO_ATENDIMENTO_PS, _REG_FILTRO_REL_CONTROLE_HORAS,
               _REG_AGENDAMENTO_REL, _REG_LISTA_AGENDAMENTO_REL, _REG_REL_CONSULTA_AGENDAMENTO,
               _REG_FILTRO_PROJETO_PS, _REG_PTR_PROJETO_PS, _REG_PROJETO_ATENDIMENTO_PS, _REG_LISTA_PROJETOS_PS,
               _REG_DF_TEXTOPS, _REG_DF_FUNCAO_GENERICAPS, _REG_DF_INICIALIZAPS, _REG_DF_ERROPS,
               _REG_DF_LISTA_QVDMCPS>;

// Calls f.template operator()<T>() for each kind.
template <class F>
void QVParaCadaRegistro(F&& f) {
  [&]<class... T>(std::tuple<T...>*) { (f.template operator()<T>(), ...); }(static_cast<QVTodosOsRegistros*>(nullptr));
}

// Their descriptors.
inline const auto& QVDescritoresDeTodos() {
  static const auto descritores = []<class... T>(std::tuple<T...>*) {
    return std::array<const QVDescritorRegistro*, sizeof...(T)>{&QVDescritor<T>()...};
  }(static_cast<QVTodosOsRegistros*>(nullptr));
  return descritores;
}
