#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"

#include "platform/QVBstr.h"
#include "platform/QVCodePage.h"

HRESULT QVValidaLista(std::uint32_t lPonteiro, std::uint32_t n, QVUInt uiQtdRegistros) {
  if (n == 0) return S_OK;
  if (lPonteiro == 0) return E_QVCR_TENTATIVA_LER_POSICAO_ZERO;
  if (std::uint64_t{lPonteiro} + n - 1 > uiQtdRegistros) return E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO;
  return S_OK;
}

HRESULT QVEventosParaPs(const CQVDadosGE_ListaEventos& dados, _REG_GE_LISTA_EVENTO_GOOGLEPS& lista) {
  const auto n = static_cast<std::uint32_t>(dados.m_eventos.size());
  lista.lQuantidadeEventos = n;
  HRESULT hr = QVAlocaLista(lista.pListaEventos, n);
  if (FAILED(hr)) {
    lista.lQuantidadeEventos = 0;
    return hr;
  }
  for (std::uint32_t i = 0; i < n && SUCCEEDED(hr); ++i) {
    const CQVDadosGE_EventoAgenda& evento = dados.m_eventos[i];
    _REG_GE_EVENTO_GOOGLEPS& ps = lista.pListaEventos[i];
    ps.usUsuarioEvento = evento.usUsuarioEvento;
    ps.lPonteiroTextoIDAgenda = evento.lPonteiroTextoIDAgenda;
    ps.lPonteiroTextoIDEvento = evento.lPonteiroTextoIDEvento;
    hr = QVTextoPsDefine(&ps.rIDEvento, evento.sIDEvento);
    if (SUCCEEDED(hr)) hr = QVTextoPsDefine(&ps.rIDAgenda, evento.sIDAgenda);
  }
  return hr;
}

void QVEventosParaDados(const _REG_GE_LISTA_EVENTO_GOOGLEPS& lista, CQVDadosGE_ListaEventos& dados) {
  dados.m_eventos.clear();
  for (std::uint32_t i = 0; i < lista.lQuantidadeEventos; ++i) {
    const _REG_GE_EVENTO_GOOGLEPS& ps = lista.pListaEventos[i];
    CQVDadosGE_EventoAgenda evento;
    evento.usUsuarioEvento = ps.usUsuarioEvento;
    evento.sIDEvento = QVTextoPsLe(ps.rIDEvento);
    evento.sIDAgenda = QVTextoPsLe(ps.rIDAgenda);
    dados.m_eventos.push_back(std::move(evento));
  }
}

std::string QVTextoArquivoDoBstr(BSTR bs) { return bs == nullptr ? std::string() : QVUtf8ToAnsi(QVBstrToUtf8(bs)); }
